#include "command/cim_server/cim_xml_reader.h"

#include <algorithm>
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <optional>
#include <sstream>

#include "command/cim_server/xml_syntax.h"

namespace {

using boost::property_tree::ptree;

constexpr unsigned int kBadRequest = 400;
constexpr unsigned int kNotImplemented = 501;
constexpr const char* kAttributes = "<xmlattr>";  // PropertyTree's name for them

/// An element, which its tree does not name.
struct TElement {
  std::string name;
  const ptree* tree;
};

[[noreturn]] void RefuseAsInvalid(const std::string& reason) {
  throw TRefused(kBadRequest, "request-not-valid", reason);
}

std::optional<std::string> FindAttribute(const TElement& element, const char* name) {
  const auto attributes = element.tree->find(kAttributes);
  if (attributes == element.tree->not_found()) return std::nullopt;
  const auto attribute = attributes->second.find(name);
  if (attribute == attributes->second.not_found()) return std::nullopt;
  return attribute->second.data();
}

std::string RequireAttribute(const TElement& element, const char* name) {
  const std::optional<std::string> value = FindAttribute(element, name);
  if (!value || value->empty()) RefuseAsInvalid("<" + element.name + "> has no " + name);
  return *value;
}

std::vector<TElement> GetChildren(const TElement& element) {
  std::vector<TElement> children;
  for (const auto& [name, tree] : *element.tree) {
    if (name != kAttributes) children.push_back({name, &tree});
  }
  return children;
}

/// The one element in another.
TElement RequireChild(const TElement& element) {
  const std::vector<TElement> children = GetChildren(element);
  if (children.size() != 1) RefuseAsInvalid("<" + element.name + "> holds other than one element");
  return children.front();
}

TElement RequireChild(const TElement& element, const char* name) {
  TElement child = RequireChild(element);
  if (child.name != name)
    RefuseAsInvalid("<" + element.name + "> holds <" + child.name + "> instead of <" + name + ">");
  return child;
}

/// The first number of a version decides who understands it.
void RequireVersion(const TElement& element, const char* attribute, const char* major, const char* cimError) {
  const std::string version = RequireAttribute(element, attribute);
  if (version.rfind(major, 0) == 0) return;
  throw TRefused(kNotImplemented, cimError, std::string(attribute) + " is " + version + " and not " + major + "x");
}

TObjectName ReadInstanceName(const TElement& element);

/// The instance name, without what may enclose it: VALUE.REFERENCE, and the paths that name host and namespace.
TObjectName ReadReference(const TElement& element) {
  if (element.name == "INSTANCENAME") return ReadInstanceName(element);
  const std::vector<TElement> children = GetChildren(element);
  const bool isAround = element.name == "VALUE.REFERENCE" || element.name == "INSTANCEPATH" ||
                        element.name == "LOCALINSTANCEPATH" || element.name == "OBJECTPATH";
  if (!isAround || children.empty()) RefuseAsInvalid("<" + element.name + "> is no name of an instance");
  return ReadReference(children.back());
}

TKeyBinding ReadKey(const std::string& name, const TElement& element) {
  if (element.name == "KEYVALUE") return {name, element.tree->data()};
  return {name, "", std::make_shared<const TObjectName>(ReadReference(element))};
}

TObjectName ReadInstanceName(const TElement& element) {
  TObjectName name = {RequireAttribute(element, "CLASSNAME"), {}};
  for (const TElement& child : GetChildren(element)) {
    if (child.name == "KEYBINDING") {
      name.keys.push_back(ReadKey(RequireAttribute(child, "NAME"), RequireChild(child)));
    } else {
      name.keys.push_back(ReadKey("", child));
    }
  }
  return name;
}

std::vector<std::string> ReadTexts(const TElement& element) {
  std::vector<std::string> texts;
  for (const TElement& child : GetChildren(element)) {
    if (child.name != "VALUE") RefuseAsInvalid("<" + element.name + "> holds <" + child.name + "> instead of <VALUE>");
    texts.push_back(child.tree->data());
  }
  return texts;
}

TParameterValue ReadValue(const TElement& element) {
  if (element.name == "VALUE") return element.tree->data();
  if (element.name == "VALUE.ARRAY") return ReadTexts(element);
  if (element.name == "CLASSNAME") return TClassName{RequireAttribute(element, "NAME")};
  if (element.name == "INSTANCENAME" || element.name == "VALUE.REFERENCE") return ReadReference(element);
  return TOtherElement{};
}

void AddParameter(TCimRequest& request, const TElement& element) {
  if (element.name != "IPARAMVALUE") RefuseAsInvalid("<IMETHODCALL> holds <" + element.name + ">");
  const bool isNull = GetChildren(element).empty();
  request.parameters.emplace_back(RequireAttribute(element, "NAME"),
                                  isNull ? TParameterValue() : ReadValue(RequireChild(element)));
}

std::string ReadNamespace(const TElement& path) {
  std::string name;
  for (const TElement& child : GetChildren(path)) {
    if (child.name != "NAMESPACE") RefuseAsInvalid("<LOCALNAMESPACEPATH> holds <" + child.name + ">");
    name += (name.empty() ? "" : "/") + RequireAttribute(child, "NAME");
  }
  return name;
}

void ReadCall(TCimRequest& request, const TElement& call) {
  request.operation = RequireAttribute(call, "NAME");
  const std::vector<TElement> children = GetChildren(call);
  if (children.empty() || children.front().name != "LOCALNAMESPACEPATH") {
    RefuseAsInvalid("<IMETHODCALL> does not begin with <LOCALNAMESPACEPATH>");
  }
  request.nameSpace = ReadNamespace(children.front());
  std::for_each(children.begin() + 1, children.end(), [&](const TElement& child) { AddParameter(request, child); });
}

TElement RequireSimpleRequest(const TElement& message) {
  TElement request = RequireChild(message);
  if (request.name == "MULTIREQ" || request.name == "MULTIEXPREQ") {
    throw TRefused(kNotImplemented, "multiple-requests-unsupported", "one operation a message, please");
  }
  if (request.name == "SIMPLEEXPREQ") {
    throw TRefused(kNotImplemented, "unsupported-operation", "export messages are not taken");
  }
  if (request.name != "SIMPLEREQ") RefuseAsInvalid("<MESSAGE> holds <" + request.name + ">, which is no request");
  return request;
}

TElement RequireIntrinsicCall(const TElement& request) {
  const std::vector<TElement> children = GetChildren(request);  // correlators may come first
  if (children.empty()) RefuseAsInvalid("<SIMPLEREQ> is empty");
  if (children.back().name == "METHODCALL") {
    throw TRefused(kNotImplemented, "unsupported-operation", "the classes have no methods");
  }
  if (children.back().name != "IMETHODCALL") RefuseAsInvalid("<SIMPLEREQ> holds <" + children.back().name + ">");
  return children.back();
}

ptree ParseXml(const std::string& text) try {
  RequireWellFormedXml(text);
  ptree tree;
  std::istringstream stream(text);
  read_xml(stream, tree, boost::property_tree::xml_parser::no_comments);
  return tree;
} catch (const TXmlFault& fault) {
  throw TRefused(kBadRequest, "request-not-well-formed", fault.what());
} catch (const boost::property_tree::xml_parser_error& error) {
  throw TRefused(kBadRequest, "request-not-well-formed", error.message());
}

}  // namespace

TCimRequest ReadCimRequest(const std::string& text) {
  const ptree document = ParseXml(text);
  const TElement cim = RequireChild({"the document", &document}, "CIM");
  RequireVersion(cim, "CIMVERSION", "2.", "unsupported-cim-version");
  RequireVersion(cim, "DTDVERSION", "2.", "unsupported-dtd-version");
  const TElement message = RequireChild(cim, "MESSAGE");
  RequireVersion(message, "PROTOCOLVERSION", "1.", "unsupported-protocol-version");
  TCimRequest request;
  request.messageId = RequireAttribute(message, "ID");
  ReadCall(request, RequireIntrinsicCall(RequireSimpleRequest(message)));
  return request;
}
