#include "command/cim_server/cim_xml_reader.h"

#include <algorithm>

#include "command/base/xml_reader.h"

namespace {

constexpr unsigned int kBadRequest = 400;
constexpr unsigned int kNotImplemented = 501;

[[noreturn]] void RefuseAsInvalid(const std::string& reason) {
  throw TRefused(kBadRequest, "request-not-valid", reason);
}

const std::string& RequireAttribute(const TXmlElement& element, const char* name) {
  const std::string* const value = element.FindAttribute(name);
  if (value == nullptr || value->empty()) RefuseAsInvalid("<" + element.name + "> has no " + name);
  return *value;
}

/// The only child of an element.
const TXmlElement& RequireChild(const TXmlElement& element) {
  if (element.children.size() != 1) RefuseAsInvalid("<" + element.name + "> holds other than one element");
  return element.children.front();
}

const TXmlElement& RequireChild(const TXmlElement& element, const char* name) {
  const TXmlElement& child = RequireChild(element);
  if (child.name == name) return child;
  RefuseAsInvalid("<" + element.name + "> holds <" + child.name + "> instead of <" + name + ">");
}

/// Requires only the major version: later minor versions are compatible.
void RequireVersion(const TXmlElement& element, const char* attribute, const char* major, const char* cimError) {
  const std::string version = RequireAttribute(element, attribute);
  if (version.rfind(major, 0) == 0) return;
  throw TRefused(kNotImplemented, cimError, std::string(attribute) + " is " + version + " and not " + major + "x");
}

TObjectName ReadInstanceName(const TXmlElement& element);

/// The instance name. VALUE.REFERENCE, and paths that name host and namespace, may enclose it.
TObjectName ReadReference(const TXmlElement& element) {
  if (element.name == "INSTANCENAME") return ReadInstanceName(element);
  const std::vector<TXmlElement>& children = element.children;
  const bool isAround = element.name == "VALUE.REFERENCE" || element.name == "INSTANCEPATH" ||
                        element.name == "LOCALINSTANCEPATH" || element.name == "OBJECTPATH";
  if (!isAround || children.empty()) RefuseAsInvalid("<" + element.name + "> is no name of an instance");
  return ReadReference(children.back());
}

TKeyBinding ReadKey(const std::string& name, const TXmlElement& element) {
  if (element.name == "KEYVALUE") return {name, element.text};
  return {name, "", std::make_shared<const TObjectName>(ReadReference(element))};
}

TObjectName ReadInstanceName(const TXmlElement& element) {
  TObjectName name = {RequireAttribute(element, "CLASSNAME"), {}};
  for (const TXmlElement& child : element.children) {
    if (child.name == "KEYBINDING") {
      name.keys.push_back(ReadKey(RequireAttribute(child, "NAME"), RequireChild(child)));
    } else {
      name.keys.push_back(ReadKey("", child));
    }
  }
  return name;
}

std::vector<std::string> ReadTexts(const TXmlElement& element) {
  std::vector<std::string> texts;
  for (const TXmlElement& child : element.children) {
    if (child.name != "VALUE") RefuseAsInvalid("<" + element.name + "> holds <" + child.name + "> instead of <VALUE>");
    texts.push_back(child.text);
  }
  return texts;
}

TParameterValue ReadValue(const TXmlElement& element) {
  if (element.name == "VALUE") return element.text;
  if (element.name == "VALUE.ARRAY") return ReadTexts(element);
  if (element.name == "CLASSNAME") return TClassName{RequireAttribute(element, "NAME")};
  if (element.name == "INSTANCENAME" || element.name == "VALUE.REFERENCE") return ReadReference(element);
  return TOtherElement{};
}

void AddParameter(TCimRequest& request, const TXmlElement& element) {
  if (element.name != "IPARAMVALUE") RefuseAsInvalid("<IMETHODCALL> holds <" + element.name + ">");
  const bool isNull = element.children.empty();
  request.parameters.emplace_back(RequireAttribute(element, "NAME"),
                                  isNull ? TParameterValue() : ReadValue(RequireChild(element)));
}

std::string ReadNamespace(const TXmlElement& path) {
  std::string name;
  for (const TXmlElement& child : path.children) {
    if (child.name != "NAMESPACE") RefuseAsInvalid("<LOCALNAMESPACEPATH> holds <" + child.name + ">");
    name += (name.empty() ? "" : "/") + RequireAttribute(child, "NAME");
  }
  return name;
}

void ReadCall(TCimRequest& request, const TXmlElement& call) {
  request.operation = RequireAttribute(call, "NAME");
  const std::vector<TXmlElement>& children = call.children;
  if (children.empty() || children.front().name != "LOCALNAMESPACEPATH") {
    RefuseAsInvalid("<IMETHODCALL> does not begin with <LOCALNAMESPACEPATH>");
  }
  request.nameSpace = ReadNamespace(children.front());
  std::for_each(children.begin() + 1, children.end(), [&](const TXmlElement& child) { AddParameter(request, child); });
}

const TXmlElement& RequireSimpleRequest(const TXmlElement& message) {
  const TXmlElement& request = RequireChild(message);
  if (request.name == "MULTIREQ" || request.name == "MULTIEXPREQ") {
    throw TRefused(kNotImplemented, "multiple-requests-unsupported", "one operation a message, please");
  }
  if (request.name == "SIMPLEEXPREQ") {
    throw TRefused(kNotImplemented, "unsupported-operation", "export messages are not taken");
  }
  if (request.name != "SIMPLEREQ") RefuseAsInvalid("<MESSAGE> holds <" + request.name + ">, which is no request");
  return request;
}

const TXmlElement& RequireIntrinsicCall(const TXmlElement& request) {
  const std::vector<TXmlElement>& children = request.children;  // correlators may come first
  if (children.empty()) RefuseAsInvalid("<SIMPLEREQ> is empty");
  if (children.back().name == "METHODCALL") {
    throw TRefused(kNotImplemented, "unsupported-operation", "the classes have no methods");
  }
  if (children.back().name != "IMETHODCALL") RefuseAsInvalid("<SIMPLEREQ> holds <" + children.back().name + ">");
  return children.back();
}

TXmlElement ParseXml(const std::string& text) try { return ReadXml(text); } catch (const TXmlFault& fault) {
  throw TRefused(kBadRequest, "request-not-well-formed", fault.what());
}

}  // namespace

TCimRequest ReadCimRequest(const std::string& text) {
  const TXmlElement cim = ParseXml(text);
  if (cim.name != "CIM") RefuseAsInvalid("the document is <" + cim.name + "> instead of <CIM>");
  RequireVersion(cim, "CIMVERSION", "2.", "unsupported-cim-version");
  RequireVersion(cim, "DTDVERSION", "2.", "unsupported-dtd-version");
  const TXmlElement& message = RequireChild(cim, "MESSAGE");
  RequireVersion(message, "PROTOCOLVERSION", "1.", "unsupported-protocol-version");
  TCimRequest request;
  request.messageId = RequireAttribute(message, "ID");
  ReadCall(request, RequireIntrinsicCall(RequireSimpleRequest(message)));
  return request;
}
