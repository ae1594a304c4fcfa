#include "command/report/json_report.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <utility>

#include "command/base/json_writer.h"
#include "command/base/unusable.h"
#include "command/collection/output_keys.h"

using NQRXZELT20::TCIMValue;

namespace {

constexpr std::size_t kMaxLine = std::size_t{64} * 1024 * 1024;  // bytes

/// Always has a point or an exponent, so that a reader in any programming language takes the number as a real.
std::string MakeJsonReal(const TCIMValue& value) {
  if (!std::isfinite(value.GetReal())) return "null";
  const std::string text = value;
  return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

void WriteValue(TJsonWriter& json, const TCIMValue& value) {
  typedef TCIMValue::TCIMType TType;
  if (value.IsArray()) {
    json.BeginArray();
    for (const TCIMValue& element : value.GetElements()) WriteValue(json, element);
    json.EndArray();
    return;
  }
  switch (value.GetType().GetCode()) {
    case TType::kNull:
      return json.Literal("null");
    case TType::kBoolean:
    case TType::kUint8:
    case TType::kUint16:
    case TType::kUint32:
      return json.Literal(static_cast<std::string>(value));
    case TType::kReal32:
      return json.Literal(MakeJsonReal(value));
    case TType::kString:
    case TType::kDateTime:
    case TType::kReference:
      break;
  }
  json.String(value.GetText());
}

void WriteInstance(TJsonWriter& json, const TStoredInstance& instance) {
  json.BeginObject();
  json.Member("class", instance.GetDeclaration().name);
  json.Member("path", instance.GetPathText());
  json.Key("properties");
  json.BeginObject();
  for (const auto& [name, value] : instance.GetProperties()) {
    json.Key(name);
    json.BeginObject();
    json.Member("type", GetTypeName(value.GetType(), value.IsArray()));
    json.Key("value");
    WriteValue(json, value);
    json.EndObject();
  }
  json.EndObject();
  json.EndObject();
}

void WriteLog(TJsonWriter& json, const std::vector<TLogEntry>& entries) {
  json.Key("log");
  json.BeginArray();
  for (const TLogEntry& entry : entries) {
    json.BeginObject();
    json.Member("severity", GetSeverityName(entry.severity));
    json.Member("message", entry.message);
    json.EndObject();
  }
  json.EndArray();
}

void WriteRequest(TJsonWriter& json, const TRequestAnswer& request, ELogPart log) {
  json.BeginObject();
  json.Member("classes", request.classes);
  json.Key("instances");
  json.BeginArray();
  for (const auto& instance : request.instances) WriteInstance(json, *instance);
  json.EndArray();
  if (log == ELogPart::kKept) WriteLog(json, request.log);
  json.EndObject();
}

void WritePlugin(TJsonWriter& json, const TPluginIdentity& plugin) {
  json.Key("plugin");
  json.BeginObject();
  json.Member("name", plugin.name);
  json.Member("version", plugin.version);
  json.Member("interfaceVersion", plugin.interfaceVersion);
  json.Member("type", plugin.type);
  json.EndObject();
}

void WriteKeyValue(TJsonWriter& json, std::monostate) { json.Literal("null"); }
void WriteKeyValue(TJsonWriter& json, bool value) { json.Literal(value ? "true" : "false"); }
void WriteKeyValue(TJsonWriter& json, const TNumber& value) { json.Literal(value.text); }
void WriteKeyValue(TJsonWriter& json, const std::string& value) { json.String(value); }

template <typename T>
void WriteKeyValue(TJsonWriter& json, const std::vector<T>& values) {
  json.BeginArray();
  for (const T& value : values) WriteKeyValue(json, value);
  json.EndArray();
}

/// Leaves out keys without a value, except those that every output has. `begin` is called before each key that is
/// written.
template <typename TBegin>
void WriteKeys(TJsonWriter& json, const TKeyGroup& group, const TOutput& output, std::size_t element, TBegin begin) {
  for (const TOutputKey* const key : group.keys) {
    const TKeyValue value = key->get(output, element);
    if (std::holds_alternative<std::monostate>(value) && !IsAlwaysThere(*key)) continue;
    begin();
    json.Key(key->name);
    std::visit([&](const auto& known) { WriteKeyValue(json, known); }, value);
  }
}

void WriteGroup(TJsonWriter& json, const TKeyGroup& group, const TOutput& output) {
  bool isOpen = false;
  WriteKeys(json, group, output, 0, [&] {
    if (std::exchange(isOpen, true)) return;
    json.Key(group.name);
    json.BeginObject();
  });
  if (isOpen) json.EndObject();
}

/// Leaves out an array without objects.
void WriteArray(TJsonWriter& json, const TKeyGroup& group, const TOutput& output) {
  const std::size_t count = group.count(output);
  if (count == 0) return;
  json.Key(group.name);
  json.BeginArray();
  for (std::size_t element = 0; element < count; ++element) {
    json.BeginObject();
    WriteKeys(json, group, output, element, [] {});
    json.EndObject();
  }
  json.EndArray();
}

void WriteOutputMembers(TJsonWriter& json, const TOutput& output) {
  for (const TKeyGroup& group : GetKeyGroups()) {
    if (group.count != nullptr) {
      WriteArray(json, group, output);
    } else if (*group.name != '\0') {
      WriteGroup(json, group, output);
    } else {
      WriteKeys(json, group, output, 0, [] {});
    }
  }
}

void WriteOutputs(TJsonWriter& json, const std::vector<TOutput>& outputs) {
  json.Key("outputs");
  json.BeginArray();
  for (const TOutput& output : outputs) {
    json.BeginObject();
    WriteOutputMembers(json, output);
    json.EndObject();
  }
  json.EndArray();
}

/// The members of the answer's object.
void WriteAnswer(TJsonWriter& json, const TAnswer& answer, ELogPart log) {
  WritePlugin(json, answer.plugin);
  json.Key("requests");
  json.BeginArray();
  for (const TRequestAnswer& request : answer.requests) WriteRequest(json, request, log);
  json.EndArray();
  WriteOutputs(json, answer.outputs);
  if (log == ELogPart::kKept) WriteLog(json, answer.log);
}

void WriteInstanceMembers(TJsonWriter& json, const TStoredInstance& instance) {
  json.Member("class", instance.GetDeclaration().name);
  json.Member("path", instance.GetPathText());
  for (const auto& [name, value] : instance.GetProperties()) {
    json.Key(name);
    WriteValue(json, value);
  }
}

/// Writes the rows of an answer. Throws std::length_error if they have more than `maxSize` bytes.
class TRows {
 public:
  TRows(const std::string& machine, const TAnswerIdentity& identity, std::size_t maxSize)
      : m_machine(machine), m_identity(identity), m_json(TJsonWriter::ELayout::kOneLine, maxSize) {}

  /// Adds a row. `write`: writes its members after those that all rows have.
  template <typename TWrite>
  void Add(TWrite write) {
    m_json.BeginObject();
    m_json.Member("machine", m_machine);
    if (!m_identity.collected.empty()) m_json.Member("collected", m_identity.collected);
    m_json.Member("version", m_identity.version);
    write(m_json);
    m_json.EndObject();
    m_json.EndLine();
  }

  std::string Take() { return m_json.TakeText(); }

 private:
  const std::string& m_machine;
  const TAnswerIdentity& m_identity;
  TJsonWriter m_json;
};

std::string MakeRows(const std::string& machine, const TAnswer& answer, std::size_t maxSize) {
  TRows rows(machine, answer.identity, maxSize);
  for (const TRequestAnswer& request : answer.requests) {
    for (const auto& instance : request.instances) {
      rows.Add([&](TJsonWriter& json) { WriteInstanceMembers(json, *instance); });
    }
  }
  for (const TOutput& output : answer.outputs) {
    rows.Add([&](TJsonWriter& json) {
      json.Member("class", "output");
      WriteOutputMembers(json, output);
    });
  }
  return rows.Take();
}

[[noreturn]] void FailAsTooLarge() { throw TUnusable("its answer is larger than 64 MiB"); }

}  // namespace

std::string MakeJsonReport(const TAnswer& answer, ELogPart log) {
  TJsonWriter json(TJsonWriter::ELayout::kIndented);
  json.BeginObject();
  WriteAnswer(json, answer, log);
  json.EndObject();
  json.EndLine();
  return json.TakeText();
}

std::string MakeMachineLine(const std::string& machine, const TAnswer& answer, ELogPart log,
                            std::string (*change)(const std::string& text)) try {
  TJsonWriter json(TJsonWriter::ELayout::kOneLine, kMaxLine);
  json.ChangeStrings(change);
  json.BeginObject();
  json.Member("machine", machine);
  WriteAnswer(json, answer, log);
  json.EndObject();
  json.EndLine();
  return json.TakeText();
} catch (const std::length_error&) {
  FailAsTooLarge();
}

std::string MakeRows(const std::string& machine, const TAnswer& answer) {
  return MakeRows(machine, answer, std::numeric_limits<std::size_t>::max());
}

std::string MakeMachineRows(const std::string& machine, const TAnswer& answer) try {
  return MakeRows(machine, answer, kMaxLine);
} catch (const std::length_error&) {
  FailAsTooLarge();
}

std::string MakeErrorLine(const std::string& machine, const std::string& reason) {
  TJsonWriter json(TJsonWriter::ELayout::kOneLine);
  json.BeginObject();
  json.Member("machine", machine);
  json.Member("error", reason);
  json.EndObject();
  json.EndLine();
  return json.TakeText();
}
