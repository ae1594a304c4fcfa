#include "command/cim_server/cim_operations.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cstdint>
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
constexpr TErrorCode kInvalidContext = {21, "CIM_ERR_INVALID_ENUMERATION_CONTEXT"};
constexpr TErrorCode kInvalidTimeout = {22, "CIM_ERR_INVALID_OPERATION_TIMEOUT"};
constexpr TErrorCode kNoFilter = {25, "CIM_ERR_FILTERED_ENUMERATION_NOT_SUPPORTED"};
constexpr TErrorCode kNoContinuation = {26, "CIM_ERR_CONTINUATION_ON_ERROR_NOT_SUPPORTED"};
constexpr TErrorCode kLimitsExceeded = {27, "CIM_ERR_SERVER_LIMITS_EXCEEDED"};

class TCimError : public std::runtime_error {
 public:
  TCimError(TErrorCode code, const std::string& reason)
      : std::runtime_error(std::string(code.name) + ": " + reason), m_number(code.number) {}
  int GetNumber() const { return m_number; }

 private:
  int m_number;
};

/// The parameters of an operation. The case of their names is ignored.
class TParameters {
 public:
  explicit TParameters(const TCimRequest& request) : m_request(request) {}

  /// Null if the client gave none.
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

  /// A uint32; nothing if the client gave none.
  std::optional<std::uint32_t> FindNumber(const char* name) const {
    const std::string* const text = Find<std::string>(name);
    if (text == nullptr) return std::nullopt;
    std::uint32_t number = 0;
    const char* const end = text->data() + text->size();
    const std::from_chars_result result = std::from_chars(text->data(), end, number);
    if (result.ec == std::errc() && result.ptr == end) return number;
    throw TCimError(kInvalidParameter, std::string(name) + " is no number of 32 bits");
  }

  /// The class that a parameter names, in the request's namespace; null if it names none. Throws `code` for an unknown
  /// class.
  const TCimClass* FindClass(const char* name, TErrorCode code) const {
    const TClassName* const className = Find<TClassName>(name);
    if (className == nullptr) return nullptr;
    const TCimClass* const found = FindCimClass(className->name);
    if (found == nullptr || !IsSameName(found->nameSpace, m_request.nameSpace)) {
      throw TCimError(code, "class " + className->name);
    }
    return found;
  }

  const TCimClass& RequireClass(const char* name, TErrorCode code) const {
    Require<TClassName>(name);
    return *FindClass(name, code);
  }

  const std::string& GetNamespace() const { return m_request.nameSpace; }

 private:
  const TParameterValue* FindValue(const char* name) const {
    for (const auto& [given, value] : m_request.parameters) {
      if (IsSameName(given, name)) return &value;
    }
    return nullptr;
  }

  const TCimRequest& m_request;
};

/// The numbers of the instances that an operation returns, in the order of the model.
typedef std::set<std::size_t> TNumbers;

struct TCall;

struct TOperation {
  const char* name;
  bool needsInstances;
  std::vector<const char*> parameters;  // all that it has in DSP0200
  void (*answer)(const TCall& call);    // writes the content of IMETHODRESPONSE
  TNumbers (*find)(const TCall& call);  // null unless the operation returns many instances
  void (*write)(const TCall& call, const TCimInstance& instance, TXmlWriter& xml);  // writes one of them
};

struct TCall {
  const TOperation& operation;
  const TParameters& parameters;
  const TCimModel& model;
  TEnumerations& enumerations;
  const TShown shown;  // which parts of an instance are written
  const std::string& host;
  TXmlWriter& xml;
};

TShown GetShown(const TParameters& parameters) {
  TShown shown;
  if (const auto* const properties = parameters.Find<std::vector<std::string>>("PropertyList")) {
    shown.properties.emplace(properties->begin(), properties->end());
  }
  shown.hasOrigin = parameters.GetFlag("IncludeClassOrigin", false);
  if (!parameters.GetFlag("DeepInheritance", true)) {
    shown.ofClass = parameters.FindClass("ClassName", kInvalidClass);
  }
  return shown;
}

TShown GetShownOfClass(const TCall& call) {
  TShown shown = call.shown;
  shown.ofClass = nullptr;
  shown.hasQualifiers = call.parameters.GetFlag("IncludeQualifiers", true);
  shown.isLocalOnly = call.parameters.GetFlag("LocalOnly", true);
  return shown;
}

std::size_t RequireInstance(const TCall& call, const char* parameter) {
  const TObjectName& name = call.parameters.Require<TObjectName>(parameter);
  const std::optional<std::size_t> number = call.model.Find(name);
  const bool isHere =
      number && IsSameName(call.model.GetInstances()[*number].declaration->nameSpace, call.parameters.GetNamespace());
  if (!isHere) throw TCimError(kNotFound, "no such instance of class " + name.className);
  return *number;
}

// Functions that write an instance, one for each kind of operation.

void WriteNamedInstance(const TCall& call, const TCimInstance& instance, TXmlWriter& xml) {
  xml.Open("VALUE.NAMEDINSTANCE");
  WriteInstanceName(xml, instance.name);
  WriteInstance(xml, instance, call.shown);
  xml.Close();
}

void WriteName(const TCall&, const TCimInstance& instance, TXmlWriter& xml) { WriteInstanceName(xml, instance.name); }

void WritePath(const TCall& call, const TCimInstance& instance, TXmlWriter& xml) {
  WriteInstancePath(xml, instance, call.host);
}

void WriteObjectPath(const TCall& call, const TCimInstance& instance, TXmlWriter& xml) {
  xml.Open("OBJECTPATH");
  WritePath(call, instance, xml);
  xml.Close();
}

void WriteWithPath(const TCall& call, const TCimInstance& instance, TXmlWriter& xml, const char* element) {
  xml.Open(element);
  WritePath(call, instance, xml);
  WriteInstance(xml, instance, call.shown);
  xml.Close();
}

void WriteObject(const TCall& call, const TCimInstance& instance, TXmlWriter& xml) {
  WriteWithPath(call, instance, xml, "VALUE.OBJECTWITHPATH");
}

void WriteInstanceWithPath(const TCall& call, const TCimInstance& instance, TXmlWriter& xml) {
  WriteWithPath(call, instance, xml, "VALUE.INSTANCEWITHPATH");
}

// Functions that find the instances of an operation.

TNumbers FindInstances(const TCall& call) {
  const TCimClass& wanted = call.parameters.RequireClass("ClassName", kInvalidClass);
  const std::vector<TCimInstance>& instances = call.model.GetInstances();
  TNumbers found;
  for (std::size_t number = 0; number < instances.size(); ++number) {
    if (instances[number].declaration->IsA(wanted)) found.insert(found.end(), number);
  }
  return found;
}

bool IsOpening(const TCall& call) { return call.operation.name[0] == 'O'; }

/// The instance whose associations are asked for. DSP0200 also allows a class, except for an operation that opens an
/// enumeration.
std::size_t RequireSource(const TCall& call) {
  if (IsOpening(call)) return RequireInstance(call, "InstanceName");
  if (call.parameters.IsClass("ObjectName")) {
    throw TCimError(kNotSupported, "the associations of a class; name an instance");
  }
  return RequireInstance(call, "ObjectName");
}

bool IsOfClass(const TCimInstance& instance, const TCimClass* wanted) {
  return wanted == nullptr || instance.declaration->IsA(*wanted);
}

/// True if the client named no role, or this one.
bool IsRole(const TCall& call, const char* parameter, const std::string& role) {
  const std::string* const wanted = call.parameters.Find<std::string>(parameter);
  return wanted == nullptr || wanted->empty() || IsSameName(*wanted, role);
}

/// The links of the source that the client asks for, by associations of a class (null: of any class).
std::vector<TCimLink> FindLinks(const TCall& call, const TCimClass* associationClass) {
  std::vector<TCimLink> links;
  for (const TCimLink& link : call.model.GetLinksTo(RequireSource(call))) {
    const TCimInstance& association = call.model.GetInstances()[link.association];
    if (IsOfClass(association, associationClass) && IsRole(call, "Role", link.role)) links.push_back(link);
  }
  return links;
}

TNumbers FindReferences(const TCall& call) {
  const TCimClass* const resultClass = call.parameters.FindClass("ResultClass", kInvalidParameter);
  TNumbers references;
  for (const TCimLink& link : FindLinks(call, resultClass)) references.insert(link.association);
  return references;
}

TNumbers FindAssociators(const TCall& call) {
  const TCimClass* const resultClass = call.parameters.FindClass("ResultClass", kInvalidParameter);
  TNumbers associators;
  for (const TCimLink& near : FindLinks(call, call.parameters.FindClass("AssocClass", kInvalidParameter))) {
    for (const TCimLink& far : call.model.GetLinksOf(near.association)) {
      const bool isOther = far.role != near.role;
      if (!isOther || !IsRole(call, "ResultRole", far.role)) continue;
      if (IsOfClass(call.model.GetInstances()[far.object], resultClass)) associators.insert(far.object);
    }
  }
  return associators;
}

// Functions that answer, one for each kind of operation.

void AnswerAtOnce(const TCall& call) {
  call.xml.Open("IRETURNVALUE");
  for (const std::size_t number : call.operation.find(call)) {
    call.operation.write(call, call.model.GetInstances()[number], call.xml);
  }
  call.xml.Close();
}

void WriteOutParameter(TXmlWriter& xml, const char* name, const char* type, const std::string& value) {
  xml.Open("PARAMVALUE", {{"NAME", name}, {"PARAMTYPE", type}});
  xml.Text("VALUE", value);
  xml.Close();
}

/// `context`: of the remaining objects; empty if none are left.
void WriteSequence(TXmlWriter& xml, const std::string& context) {
  WriteOutParameter(xml, "EnumerationContext", "string", context);
  WriteOutParameter(xml, "EndOfSequence", "boolean", context.empty() ? "TRUE" : "FALSE");
}

/// How long an enumeration is kept without being used.
std::chrono::seconds GetTimeout(const TCall& call) {
  constexpr std::uint32_t byDefault = 60;
  const std::uint32_t seconds = call.parameters.FindNumber("OperationTimeout").value_or(byDefault);
  const std::chrono::seconds timeout(seconds);
  if (seconds != 0 && timeout <= TEnumerations::kMaxTimeout) return timeout;
  throw TCimError(kInvalidTimeout,
                  "OperationTimeout is 1 to " + std::to_string(TEnumerations::kMaxTimeout.count()) + " seconds");
}

void RefuseWhatCannotBeOpened(const TCall& call) {
  for (const char* const name : {"FilterQueryLanguage", "FilterQuery"}) {
    const std::string* const query = call.parameters.Find<std::string>(name);
    if (query != nullptr && !query->empty()) throw TCimError(kNoFilter, name);
  }
  if (call.parameters.GetFlag("ContinueOnError", false)) throw TCimError(kNoContinuation, "ContinueOnError is TRUE");
}

bool IsOfPaths(const TOperation& operation) { return operation.write == WritePath; }

void Open(const TCall& call) {
  RefuseWhatCannotBeOpened(call);
  TEnumeration rest = {call.parameters.GetNamespace(), IsOfPaths(call.operation), {}, GetTimeout(call)};
  std::uint32_t left = call.parameters.FindNumber("MaxObjectCount").value_or(0);
  call.xml.Open("IRETURNVALUE");
  for (const std::size_t number : call.operation.find(call)) {
    TXmlWriter later;
    call.operation.write(call, call.model.GetInstances()[number], left > 0 ? call.xml : later);
    if (left > 0) {
      --left;
    } else {
      rest.objects.push_back(later.GetText());
    }
  }
  call.xml.Close();
  const bool isAll = rest.objects.empty();
  const std::string context = isAll ? "" : call.enumerations.Open(std::move(rest));
  if (!isAll && context.empty()) {
    throw TCimError(kLimitsExceeded,
                    "too many enumerations are open, or they hold too much; close one, or ask without "
                    "Open");
  }
  WriteSequence(call.xml, context);
}

/// Throws TCimError unless the context belongs to an enumeration of the request's namespace.
TEnumeration& RequireEnumeration(const TCall& call, const std::string& context) {
  TEnumeration* const found = call.enumerations.Find(context);
  if (found == nullptr || !IsSameName(found->nameSpace, call.parameters.GetNamespace())) {
    throw TCimError(kInvalidContext, "no such enumeration is open");
  }
  return *found;
}

void Pull(const TCall& call, bool isOfPaths) {
  const std::string& context = call.parameters.Require<std::string>("EnumerationContext");
  call.parameters.Require<std::string>("MaxObjectCount");
  std::uint32_t left = *call.parameters.FindNumber("MaxObjectCount");
  TEnumeration& enumeration = RequireEnumeration(call, context);
  if (enumeration.isOfPaths != isOfPaths) {
    throw TCimError(kInvalidContext, enumeration.isOfPaths ? "it is of paths" : "it is of instances");
  }
  call.xml.Open("IRETURNVALUE");
  for (; left > 0 && !enumeration.objects.empty(); --left) {
    call.xml.Append(enumeration.objects.front());
    enumeration.objects.pop_front();
  }
  call.xml.Close();
  const bool isEnd = enumeration.objects.empty();
  WriteSequence(call.xml, isEnd ? "" : context);
  if (isEnd) call.enumerations.Close(context);
}

void PullInstances(const TCall& call) { Pull(call, false); }
void PullPaths(const TCall& call) { Pull(call, true); }

void CloseEnumeration(const TCall& call) {
  const std::string& context = call.parameters.Require<std::string>("EnumerationContext");
  RequireEnumeration(call, context);
  call.enumerations.Close(context);
}

void GetInstance(const TCall& call) {
  const TCimInstance& instance = call.model.GetInstances()[RequireInstance(call, "InstanceName")];
  call.xml.Open("IRETURNVALUE");
  WriteInstance(call.xml, instance, call.shown);
  call.xml.Close();
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
  call.xml.Open("IRETURNVALUE");
  if (const TCimProperty* const property = instance.Find(name)) WriteValue(call.xml, *property);
  call.xml.Close();
}

void GetClass(const TCall& call) {
  const TCimClass& found = call.parameters.RequireClass("ClassName", kNotFound);
  call.xml.Open("IRETURNVALUE");
  WriteClass(call.xml, found, GetShownOfClass(call));
  call.xml.Close();
}

/// The subclasses of the class that the client names, or the classes without a superclass if it names none. With
/// DeepInheritance also all classes below these.
std::vector<const TCimClass*> FindClasses(const TCall& call) {
  const TCimClass* const superclass = call.parameters.FindClass("ClassName", kInvalidClass);
  const bool isDeep = call.parameters.GetFlag("DeepInheritance", false);
  std::vector<const TCimClass*> classes;
  for (const TCimClass& candidate : GetCimClasses()) {
    const bool isHere = IsSameName(candidate.nameSpace, call.parameters.GetNamespace());
    const bool isBelow = candidate.superclass == superclass || (superclass == nullptr && isDeep);
    if (isHere && isBelow) classes.push_back(&candidate);
  }
  return classes;
}

void EnumerateClasses(const TCall& call) {
  const TShown shown = GetShownOfClass(call);
  call.xml.Open("IRETURNVALUE");
  for (const TCimClass* const found : FindClasses(call)) WriteClass(call.xml, *found, shown);
  call.xml.Close();
}

void EnumerateClassNames(const TCall& call) {
  call.xml.Open("IRETURNVALUE");
  for (const TCimClass* const found : FindClasses(call)) call.xml.Empty("CLASSNAME", {{"NAME", found->name}});
  call.xml.Close();
}

void EnumerateQualifiers(const TCall& call) {
  call.xml.Open("IRETURNVALUE");
  for (const TCimQualifier& qualifier : kCimQualifiers) WriteQualifierDeclaration(call.xml, qualifier);
  call.xml.Close();
}

void GetQualifier(const TCall& call) {
  const std::string& name = call.parameters.Require<std::string>("QualifierName");
  const auto* const found =
      std::find_if(std::begin(kCimQualifiers), std::end(kCimQualifiers),
                   [&](const TCimQualifier& qualifier) { return IsSameName(qualifier.declaration.name, name); });
  if (found == std::end(kCimQualifiers)) throw TCimError(kNotFound, "qualifier " + name);
  call.xml.Open("IRETURNVALUE");
  WriteQualifierDeclaration(call.xml, *found);
  call.xml.Close();
}

typedef std::vector<const char*> TNames;

TNames operator+(TNames first, const TNames& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

const std::vector<TOperation>& GetOperations() {
  static const TNames shown = {"IncludeQualifiers", "IncludeClassOrigin", "PropertyList"};
  static const TNames ofClass = TNames{"ClassName", "LocalOnly", "DeepInheritance"} + shown;
  static const TNames associated = {"AssocClass", "ResultClass", "Role", "ResultRole"};
  static const TNames referring = {"ResultClass", "Role"};
  static const TNames opened = {"FilterQueryLanguage", "FilterQuery", "OperationTimeout", "ContinueOnError",
                                "MaxObjectCount"};
  static const TNames pulled = {"EnumerationContext", "MaxObjectCount"};
  static const TNames object = {"ObjectName"};
  static const TNames instance = {"InstanceName"};
  static const std::vector<TOperation> operations = {
      {"EnumerateInstances", true, ofClass, AnswerAtOnce, FindInstances, WriteNamedInstance},
      {"EnumerateInstanceNames", true, {"ClassName"}, AnswerAtOnce, FindInstances, WriteName},
      {"GetInstance", true, instance + TNames{"LocalOnly"} + shown, GetInstance, nullptr, nullptr},
      {"GetProperty", true, instance + TNames{"PropertyName"}, GetProperty, nullptr, nullptr},
      {"Associators", true, object + associated + shown, AnswerAtOnce, FindAssociators, WriteObject},
      {"AssociatorNames", true, object + associated, AnswerAtOnce, FindAssociators, WriteObjectPath},
      {"References", true, object + referring + shown, AnswerAtOnce, FindReferences, WriteObject},
      {"ReferenceNames", true, object + referring, AnswerAtOnce, FindReferences, WriteObjectPath},
      {"OpenEnumerateInstances", true, ofClass + opened, Open, FindInstances, WriteInstanceWithPath},
      {"OpenEnumerateInstancePaths", true, TNames{"ClassName"} + opened, Open, FindInstances, WritePath},
      {"OpenAssociatorInstances", true, instance + associated + shown + opened, Open, FindAssociators,
       WriteInstanceWithPath},
      {"OpenAssociatorInstancePaths", true, instance + associated + opened, Open, FindAssociators, WritePath},
      {"OpenReferenceInstances", true, instance + referring + shown + opened, Open, FindReferences,
       WriteInstanceWithPath},
      {"OpenReferenceInstancePaths", true, instance + referring + opened, Open, FindReferences, WritePath},
      {"PullInstancesWithPath", false, pulled, PullInstances, nullptr, nullptr},
      {"PullInstancePaths", false, pulled, PullPaths, nullptr, nullptr},
      {"CloseEnumeration", false, {"EnumerationContext"}, CloseEnumeration, nullptr, nullptr},
      {"GetClass", false, TNames{"ClassName", "LocalOnly"} + shown, GetClass, nullptr, nullptr},
      {"EnumerateClasses",
       false,
       {"ClassName", "DeepInheritance", "LocalOnly", "IncludeQualifiers", "IncludeClassOrigin"},
       EnumerateClasses,
       nullptr,
       nullptr},
      {"EnumerateClassNames", false, {"ClassName", "DeepInheritance"}, EnumerateClassNames, nullptr, nullptr},
      {"EnumerateQualifiers", false, {}, EnumerateQualifiers, nullptr, nullptr},
      {"GetQualifier", false, {"QualifierName"}, GetQualifier, nullptr, nullptr},
  };
  return operations;
}

const TOperation* FindOperation(const std::string& name) {
  const auto& operations = GetOperations();
  const auto found = std::find_if(operations.begin(), operations.end(),
                                  [&](const TOperation& operation) { return IsSameName(operation.name, name); });
  return found == operations.end() ? nullptr : &*found;
}

/// Flags must be TRUE or FALSE even if they make no difference.
void CheckFlags(const TParameters& parameters) {
  for (const char* const name :
       {"LocalOnly", "DeepInheritance", "IncludeQualifiers", "IncludeClassOrigin", "ContinueOnError"}) {
    parameters.GetFlag(name, false);
  }
}

/// Each parameter must be one of the operation's, and appear only once.
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

/// Throws TCimError if the request is wrong whatever instances exist.
const TOperation& RequireOperation(const TCimRequest& request) {
  const bool isServed =
      IsSameName(request.nameSpace, kCimNamespace) || IsSameName(request.nameSpace, kInteropNamespace);
  if (!isServed) throw TCimError(kInvalidNamespace, request.nameSpace);
  const TOperation* const operation = FindOperation(request.operation);
  if (operation == nullptr) throw TCimError(kNotSupported, request.operation);
  CheckParameters(request, *operation);
  CheckFlags(TParameters(request));
  return *operation;
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

TCimAnswer WriteError(const TCimRequest& request, const TCimError& error) {
  const auto write = [&](TXmlWriter& xml) {
    xml.Empty("ERROR", {{"CODE", std::to_string(error.GetNumber())}, {"DESCRIPTION", ToXmlText(error.what())}});
  };
  return {WriteAnswer(request, write), error.GetNumber()};
}

}  // namespace

bool NeedsInstances(const TCimRequest& request) try {
  return RequireOperation(request).needsInstances;
} catch (const TCimError&) {
  return false;
}

TCimAnswer AnswerCim(const TCimRequest& request, const TCimModel& model, TEnumerations& enumerations,
                     const std::string& host) try {
  const TOperation& operation = RequireOperation(request);
  const TParameters parameters(request);
  const auto write = [&](TXmlWriter& xml) {
    operation.answer({operation, parameters, model, enumerations, GetShown(parameters), host, xml});
  };
  return {WriteAnswer(request, write), 0};
} catch (const TCimError& error) {
  return WriteError(request, error);
}

TCimAnswer AnswerFailure(const TCimRequest& request, const std::string& reason) {
  return WriteError(request, TCimError(kFailed, reason));
}
