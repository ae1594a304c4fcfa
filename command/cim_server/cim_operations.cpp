#include "command/cim_server/cim_operations.h"

#include <algorithm>
#include <optional>
#include <set>
#include <stdexcept>

#include "command/base/xml_text.h"
#include "command/cim_server/cim_xml_writer.h"

namespace {

struct TErrorCode {
  int number;  // DSP0200
  const char* name;
};

constexpr TErrorCode kFailed = {1, "CIM_ERR_FAILED"};
constexpr TErrorCode kInvalidNamespace = {3, "CIM_ERR_INVALID_NAMESPACE"};
constexpr TErrorCode kInvalidParameter = {4, "CIM_ERR_INVALID_PARAMETER"};
constexpr TErrorCode kInvalidClass = {5, "CIM_ERR_INVALID_CLASS"};
constexpr TErrorCode kNotFound = {6, "CIM_ERR_NOT_FOUND"};
constexpr TErrorCode kNotSupported = {7, "CIM_ERR_NOT_SUPPORTED"};
constexpr TErrorCode kNoSuchProperty = {12, "CIM_ERR_NO_SUCH_PROPERTY"};

class TCimError : public std::runtime_error {
 public:
  TCimError(TErrorCode code, const std::string& reason)
      : std::runtime_error(std::string(code.name) + ": " + reason), m_number(code.number) {}
  int GetNumber() const { return m_number; }

 private:
  int m_number;
};

/// The parameters of an operation, by names without regard to case.
class TParameters {
 public:
  explicit TParameters(const TCimRequest& request) : m_request(request) {}

  /// Null when the client gave none.
  template <typename T>
  const T* Find(const char* name) const {
    const TParameterValue* const value = FindValue(name);
    if (value == nullptr || std::holds_alternative<std::monostate>(*value)) return nullptr;
    const T* const typed = std::get_if<T>(value);
    if (typed == nullptr) throw TCimError(kInvalidParameter, std::string(name) + " is of the wrong type");
    return typed;
  }

  template <typename T>
  const T& Require(const char* name) const {
    const T* const value = Find<T>(name);
    if (value == nullptr) throw TCimError(kInvalidParameter, std::string(name) + " is missing");
    return *value;
  }

  bool IsClass(const char* name) const {
    const TParameterValue* const value = FindValue(name);
    return value != nullptr && std::holds_alternative<TClassName>(*value);
  }

  bool GetFlag(const char* name, bool byDefault) const {
    const std::string* const text = Find<std::string>(name);
    if (text == nullptr) return byDefault;
    if (IsSameName(*text, "true")) return true;
    if (IsSameName(*text, "false")) return false;
    throw TCimError(kInvalidParameter, std::string(name) + " is neither TRUE nor FALSE");
  }

  /// The class that a parameter names; null when it names none. Throws `code` for an unknown class.
  const TClassDeclaration* FindClass(const char* name, TErrorCode code) const {
    const TClassName* const className = Find<TClassName>(name);
    if (className == nullptr) return nullptr;
    const TClassDeclaration* const declaration = FindCimClass(className->name);
    if (declaration == nullptr) throw TCimError(code, "class " + className->name);
    return declaration;
  }

  const TClassDeclaration& RequireClass(const char* name, TErrorCode code) const {
    Require<TClassName>(name);
    return *FindClass(name, code);
  }

 private:
  const TParameterValue* FindValue(const char* name) const {
    for (const auto& [given, value] : m_request.parameters) {
      if (IsSameName(given, name)) return &value;
    }
    return nullptr;
  }

  const TCimRequest& m_request;
};

struct TCall {
  const TParameters& parameters;
  const TCimModel& model;
  const std::string& host;
  TXmlWriter& xml;
};

TShown GetShown(const TCall& call, bool showsQualifiers) {
  TShown shown;
  if (const auto* const properties = call.parameters.Find<std::vector<std::string>>("PropertyList")) {
    shown.properties.emplace(properties->begin(), properties->end());
  }
  shown.hasQualifiers = showsQualifiers && call.parameters.GetFlag("IncludeQualifiers", true);
  shown.hasOrigin = call.parameters.GetFlag("IncludeClassOrigin", false);
  return shown;
}

std::size_t RequireInstance(const TCall& call, const char* parameter) {
  const TObjectName& name = call.parameters.Require<TObjectName>(parameter);
  const std::optional<std::size_t> number = call.model.Find(name);
  if (!number) throw TCimError(kNotFound, "no such instance of class " + name.className);
  return *number;
}

// One function for each operation: it writes the content of IRETURNVALUE.

void EnumerateInstances(const TCall& call) {
  const TClassDeclaration& declaration = call.parameters.RequireClass("ClassName", kInvalidClass);
  const TShown shown = GetShown(call, false);
  for (const TCimInstance& instance : call.model.GetInstances()) {
    if (instance.declaration != &declaration) continue;
    call.xml.Open("VALUE.NAMEDINSTANCE");
    WriteInstanceName(call.xml, instance.name);
    WriteInstance(call.xml, instance, shown);
    call.xml.Close();
  }
}

void EnumerateInstanceNames(const TCall& call) {
  const TClassDeclaration& declaration = call.parameters.RequireClass("ClassName", kInvalidClass);
  for (const TCimInstance& instance : call.model.GetInstances()) {
    if (instance.declaration == &declaration) WriteInstanceName(call.xml, instance.name);
  }
}

void GetInstance(const TCall& call) {
  const TShown shown = GetShown(call, false);
  WriteInstance(call.xml, call.model.GetInstances()[RequireInstance(call, "InstanceName")], shown);
}

void GetProperty(const TCall& call) {
  const std::string& name = call.parameters.Require<std::string>("PropertyName");
  const TCimInstance& instance = call.model.GetInstances()[RequireInstance(call, "InstanceName")];
  const auto& declared = instance.declaration->properties;
  const bool isDeclared = std::any_of(declared.begin(), declared.end(), [&](const TPropertyDeclaration& property) {
    return IsSameName(property.name, name);
  });
  if (!isDeclared)
    throw TCimError(kNoSuchProperty, std::string(instance.declaration->name) + " has no property " + name);
  if (const TCimProperty* const property = instance.Find(name)) WriteValue(call.xml, *property);
}

void GetClass(const TCall& call) {
  WriteClass(call.xml, call.parameters.RequireClass("ClassName", kNotFound), GetShown(call, true));
}

/// The subclasses of a class, which are none for each of ours; all classes when none is named.
const std::vector<TClassDeclaration>& GetSubclasses(const TCall& call) {
  static const std::vector<TClassDeclaration> none;
  return call.parameters.FindClass("ClassName", kInvalidClass) == nullptr ? GetSchema() : none;
}

void EnumerateClasses(const TCall& call) {
  const TShown shown = GetShown(call, true);
  for (const TClassDeclaration& declaration : GetSubclasses(call)) WriteClass(call.xml, declaration, shown);
}

void EnumerateClassNames(const TCall& call) {
  for (const TClassDeclaration& declaration : GetSubclasses(call)) {
    call.xml.Empty("CLASSNAME", {{"NAME", declaration.name}});
  }
}

void EnumerateQualifiers(const TCall& call) {
  for (const TQualifier& qualifier : kQualifiers) WriteQualifierDeclaration(call.xml, qualifier);
}

void GetQualifier(const TCall& call) {
  const std::string& name = call.parameters.Require<std::string>("QualifierName");
  const auto* const found = std::find_if(std::begin(kQualifiers), std::end(kQualifiers),
                                         [&](const TQualifier& qualifier) { return IsSameName(qualifier.name, name); });
  if (found == std::end(kQualifiers)) throw TCimError(kNotFound, "qualifier " + name);
  WriteQualifierDeclaration(call.xml, *found);
}

/// The instance whose associations are asked for.
std::size_t RequireSource(const TCall& call) {
  const char* const parameter = "ObjectName";
  if (call.parameters.IsClass(parameter)) {
    throw TCimError(kNotSupported, "the associations of a class; name an instance");
  }
  return RequireInstance(call, parameter);
}

bool IsOfClass(const TCimInstance& instance, const TClassDeclaration* declaration) {
  return declaration == nullptr || instance.declaration == declaration;
}

/// True when the client named no role, or this one.
bool IsRole(const TCall& call, const char* parameter, const std::string& role) {
  const std::string* const wanted = call.parameters.Find<std::string>(parameter);
  return wanted == nullptr || wanted->empty() || IsSameName(*wanted, role);
}

/// The links of the source by associations of a class (any when null), as far as the client asks for them.
std::vector<TCimLink> FindLinks(const TCall& call, const TClassDeclaration* associationClass) {
  std::vector<TCimLink> links;
  for (const TCimLink& link : call.model.GetLinksTo(RequireSource(call))) {
    const TCimInstance& association = call.model.GetInstances()[link.association];
    if (IsOfClass(association, associationClass) && IsRole(call, "Role", link.role)) links.push_back(link);
  }
  return links;
}

std::set<std::size_t> FindReferences(const TCall& call) {
  const TClassDeclaration* const resultClass = call.parameters.FindClass("ResultClass", kInvalidParameter);
  std::set<std::size_t> references;
  for (const TCimLink& link : FindLinks(call, resultClass)) references.insert(link.association);
  return references;
}

std::set<std::size_t> FindAssociators(const TCall& call) {
  const TClassDeclaration* const resultClass = call.parameters.FindClass("ResultClass", kInvalidParameter);
  std::set<std::size_t> associators;
  for (const TCimLink& near : FindLinks(call, call.parameters.FindClass("AssocClass", kInvalidParameter))) {
    for (const TCimLink& far : call.model.GetLinksOf(near.association)) {
      const bool isOther = far.role != near.role;
      if (!isOther || !IsRole(call, "ResultRole", far.role)) continue;
      if (IsOfClass(call.model.GetInstances()[far.object], resultClass)) associators.insert(far.object);
    }
  }
  return associators;
}

void WriteObjects(const TCall& call, const std::set<std::size_t>& numbers) {
  const TShown shown = GetShown(call, false);
  for (const std::size_t number : numbers) {
    const TCimInstance& instance = call.model.GetInstances()[number];
    call.xml.Open("VALUE.OBJECTWITHPATH");
    WriteInstancePath(call.xml, instance.name, call.host);
    WriteInstance(call.xml, instance, shown);
    call.xml.Close();
  }
}

void WritePaths(const TCall& call, const std::set<std::size_t>& numbers) {
  for (const std::size_t number : numbers) {
    call.xml.Open("OBJECTPATH");
    WriteInstancePath(call.xml, call.model.GetInstances()[number].name, call.host);
    call.xml.Close();
  }
}

void Associators(const TCall& call) { WriteObjects(call, FindAssociators(call)); }
void AssociatorNames(const TCall& call) { WritePaths(call, FindAssociators(call)); }
void References(const TCall& call) { WriteObjects(call, FindReferences(call)); }
void ReferenceNames(const TCall& call) { WritePaths(call, FindReferences(call)); }

struct TOperation {
  const char* name;
  bool needsInstances;
  void (*answer)(const TCall& call);
  std::vector<const char*> parameters;  // all that DSP0200 gives it
};

const std::vector<TOperation>& GetOperations() {
  static const std::vector<TOperation> operations = {
      {"EnumerateInstances",
       true,
       EnumerateInstances,
       {"ClassName", "LocalOnly", "DeepInheritance", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"}},
      {"EnumerateInstanceNames", true, EnumerateInstanceNames, {"ClassName"}},
      {"GetInstance",
       true,
       GetInstance,
       {"InstanceName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"}},
      {"GetProperty", true, GetProperty, {"InstanceName", "PropertyName"}},
      {"GetClass",
       false,
       GetClass,
       {"ClassName", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"}},
      {"EnumerateClasses",
       false,
       EnumerateClasses,
       {"ClassName", "DeepInheritance", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin"}},
      {"EnumerateClassNames", false, EnumerateClassNames, {"ClassName", "DeepInheritance"}},
      {"EnumerateQualifiers", false, EnumerateQualifiers, {}},
      {"GetQualifier", false, GetQualifier, {"QualifierName"}},
      {"Associators",
       true,
       Associators,
       {"ObjectName", "AssocClass", "ResultClass", "Role", "ResultRole", "IncludeQualifiers", "IncludeClassOrigin",
        "PropertyList"}},
      {"AssociatorNames", true, AssociatorNames, {"ObjectName", "AssocClass", "ResultClass", "Role", "ResultRole"}},
      {"References",
       true,
       References,
       {"ObjectName", "ResultClass", "Role", "IncludeQualifiers", "IncludeClassOrigin", "PropertyList"}},
      {"ReferenceNames", true, ReferenceNames, {"ObjectName", "ResultClass", "Role"}},
  };
  return operations;
}

const TOperation* FindOperation(const std::string& name) {
  const auto& operations = GetOperations();
  const auto found = std::find_if(operations.begin(), operations.end(),
                                  [&](const TOperation& operation) { return IsSameName(operation.name, name); });
  return found == operations.end() ? nullptr : &*found;
}

/// Each parameter must be one of the operation's, and come once.
void CheckParameters(const TCimRequest& request, const TOperation& operation) {
  std::vector<const char*> left = operation.parameters;
  for (const auto& parameter : request.parameters) {
    const auto found =
        std::find_if(left.begin(), left.end(), [&](const char* name) { return IsSameName(name, parameter.first); });
    if (found == left.end()) {
      throw TCimError(kInvalidParameter,
                      parameter.first + " is no parameter of " + operation.name + ", or comes twice");
    }
    left.erase(found);
  }
}

bool IsServed(const std::string& nameSpace) {
  std::string served;
  for (const char* const part : kCimNamespace) served += (served.empty() ? "" : "/") + std::string(part);
  return IsSameName(nameSpace, served);
}

/// Throws TCimError for a request that no instance can make right.
const TOperation& RequireOperation(const TCimRequest& request) {
  if (!IsServed(request.nameSpace)) throw TCimError(kInvalidNamespace, request.nameSpace);
  const TOperation* const operation = FindOperation(request.operation);
  if (operation == nullptr) throw TCimError(kNotSupported, request.operation);
  CheckParameters(request, *operation);
  return *operation;
}

void WriteReturnValue(TXmlWriter& xml, const TCimRequest& request, const TCimModel& model, const std::string& host) {
  const TParameters parameters(request);
  xml.Open("IRETURNVALUE");
  RequireOperation(request).answer({parameters, model, host, xml});
  xml.Close();
}

/// The whole answer; `write` writes the content of IMETHODRESPONSE.
template <typename TWrite>
std::string WriteAnswer(const TCimRequest& request, TWrite write) {
  TXmlWriter xml;
  xml.Open("CIM", {{"CIMVERSION", "2.0"}, {"DTDVERSION", "2.0"}});
  xml.Open("MESSAGE", {{"ID", request.messageId}, {"PROTOCOLVERSION", "1.0"}});
  xml.Open("SIMPLERSP");
  xml.Open("IMETHODRESPONSE", {{"NAME", request.operation}});
  write(xml);
  for (int element = 0; element < 4; ++element) xml.Close();
  return "<?xml version=\"1.0\" encoding=\"utf-8\" ?>\n" + xml.GetText() + "\n";
}

std::string WriteError(const TCimRequest& request, const TCimError& error) {
  return WriteAnswer(request, [&](TXmlWriter& xml) {
    xml.Empty("ERROR", {{"CODE", std::to_string(error.GetNumber())}, {"DESCRIPTION", ToXmlText(error.what())}});
  });
}

}  // namespace

bool NeedsInstances(const TCimRequest& request) try {
  return RequireOperation(request).needsInstances;
} catch (const TCimError&) {
  return false;
}

std::string AnswerCim(const TCimRequest& request, const TCimModel& model, const std::string& host) try {
  return WriteAnswer(request, [&](TXmlWriter& xml) { WriteReturnValue(xml, request, model, host); });
} catch (const TCimError& error) {
  return WriteError(request, error);
}

std::string AnswerFailure(const TCimRequest& request, const std::string& reason) {
  return WriteError(request, TCimError(kFailed, reason));
}
