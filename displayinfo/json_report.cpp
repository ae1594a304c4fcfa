#include "displayinfo/json_report.h"

#include <cstdlib>
#include <nlohmann/json.hpp>

#include "displayinfo/text_encoding.h"

using nlohmann::ordered_json;
using NQRXZELT20::TCIMValue;

namespace {

ordered_json MakeValue(const TCIMValue& value) {
  typedef TCIMValue::TCIMType TType;
  if (value.IsArray()) {
    ordered_json elements = ordered_json::array();
    for (const TCIMValue& element : value.GetElements()) elements.push_back(MakeValue(element));
    return elements;
  }
  const std::string text = value;
  switch (value.GetType().GetCode()) {
    case TType::kNull:
      return nullptr;
    case TType::kBoolean:
      return value.GetBoolean();
    case TType::kUint8:
    case TType::kUint16:
    case TType::kUint32:
      return value.GetUnsigned();
    case TType::kReal32:
      // The shortest text of the float, read as a double, is written as that same text.
      return std::strtod(text.c_str(), nullptr);
    case TType::kString:
    case TType::kDateTime:
    case TType::kReference:
      break;
  }
  return ToUtf8(text);
}

ordered_json MakeInstance(const TStoredInstance& instance) {
  ordered_json properties = ordered_json::object();
  for (const auto& [name, value] : instance.GetProperties()) {
    properties[name] = {{"type", GetTypeName(value.GetType(), value.IsArray())}, {"value", MakeValue(value)}};
  }
  return {{"class", instance.GetDeclaration().name},
          {"path", ToUtf8(instance.GetPathText())},
          {"properties", std::move(properties)}};
}

ordered_json MakeLog(const std::vector<TLogEntry>& entries) {
  ordered_json log = ordered_json::array();
  for (const TLogEntry& entry : entries) {
    log.push_back({{"severity", GetSeverityName(entry.severity)}, {"message", ToUtf8(entry.message)}});
  }
  return log;
}

ordered_json MakeRequest(const TRequestAnswer& request) {
  ordered_json instances = ordered_json::array();
  for (const auto& instance : request.instances) instances.push_back(MakeInstance(*instance));
  return {{"classes", request.classes}, {"instances", std::move(instances)}, {"log", MakeLog(request.log)}};
}

}  // namespace

std::string MakeJsonReport(const TAnswer& answer) {
  ordered_json requests = ordered_json::array();
  for (const TRequestAnswer& request : answer.requests) requests.push_back(MakeRequest(request));
  const TPluginIdentity& plugin = answer.plugin;
  const ordered_json report = {{"plugin",
                                {{"name", plugin.name},
                                 {"version", plugin.version},
                                 {"interfaceVersion", plugin.interfaceVersion},
                                 {"type", plugin.type}}},
                               {"requests", std::move(requests)},
                               {"log", MakeLog(answer.log)}};
  return report.dump(2) + "\n";
}
