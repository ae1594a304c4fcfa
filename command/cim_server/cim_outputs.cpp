#include "command/cim_server/cim_outputs.h"

#include <algorithm>
#include <cstring>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>

#include "command/collection/output_keys.h"

using nlohmann::json;

namespace {

typedef NQRXZELT20::TCIMValue::TCIMType TType;

constexpr const char* kSystemName = "SystemName";
constexpr const char* kModes = "modes";

/// Chooses the mode that a property describes. `modes`: at least one, the largest first.
typedef const json& (*TChoose)(const json& modes);

const json& ChooseLargest(const json& modes) { return modes.front(); }

const json& ChooseFastest(const json& modes) {
  return FindFastest(modes, [](const json& mode) { return mode.at("refresh").get<double>(); });
}

struct TOutputProperty {
  const char* name;
  const char* key;                // of the output, or of a mode
  TChoose choose = nullptr;       // null for a key of the output
  const char* meaning = nullptr;  // null: the same as that of the key
};

constexpr TOutputProperty kProperties[] = {
    {"Unit", "unit"},
    {"Connector", "connector"},
    {"Path", "path"},
    {"Identity", "identity"},
    {"Serial", "serial"},
    {"Maker", "maker"},
    {"Name", "name"},
    {"LargestWidth", "width", ChooseLargest, "The width of the mode with the most pixels."},
    {"LargestHeight", "height", ChooseLargest, "The height of that mode."},
    {"HighestRefresh", "refresh", ChooseFastest, "The highest rate of all modes; of fields for an interlaced mode."},
    {"DeviceID", "deviceID"},
    {"Reason", "reason"},
};

const TOutputKey& FindKey(const char* groupName, const char* name) {
  const auto isNamed = [&](const TOutputKey* key) {
    return std::strcmp(key->group, groupName) == 0 && std::strcmp(key->name, name) == 0;
  };
  for (const TKeyGroup& group : GetKeyGroups()) {
    const auto key = std::find_if(group.keys.begin(), group.keys.end(), isNamed);
    if (key != group.keys.end()) return **key;
  }
  throw std::logic_error(std::string("no output has the key ") + name);
}

TType::ECIMType GetType(const TOutputKey& key) {
  if (key.type == EKeyType::kInteger) return TType::kUint32;
  return key.type == EKeyType::kReal ? TType::kReal32 : TType::kString;
}

TPropertyDeclaration Declare(const TOutputProperty& property) {
  const TOutputKey& key = FindKey(property.choose == nullptr ? "" : kModes, property.key);
  const char* const meaning = property.meaning == nullptr ? key.meaning : property.meaning;
  return {property.name, GetType(key), false, &property == kProperties, key.unit, meaning, ""};
}

json ReadValue(const json& output, const TOutputProperty& property) {
  if (property.choose == nullptr) return output.value(property.key, json());
  const auto modes = output.find(kModes);
  return modes == output.end() || modes->empty() ? json() : property.choose(*modes).at(property.key);
}

}  // namespace

std::vector<TClassDeclaration> MakeOutputClasses() {
  TClassDeclaration output = {kOutputClass,
                              EPart::kMonitors,
                              EKind::kDevice,
                              "An output that a monitor is connected to, even where QRXSG_DesktopMonitor has no "
                              "instance of the monitor.",
                              "the EDIDs of the machine",
                              {{kSystemName, TType::kString, false, true, "", "The name of the computer system.", ""}}};
  for (const TOutputProperty& property : kProperties) output.properties.push_back(Declare(property));
  const TClassDeclaration outputMonitor = {
      kOutputMonitorClass,
      EPart::kMonitors,
      EKind::kAssociation,
      "Links a monitor to the output that it is connected to.",
      "the instances of both classes",
      {{"Antecedent", TType::kReference, false, true, "", "The monitor.", kDesktopMonitorClass},
       {"Dependent", TType::kReference, false, true, "", "The output.", kOutputClass}}};
  return {std::move(output), outputMonitor};
}

json ReadOutput(const json& output, const std::string& systemName) {
  json values = {{kSystemName, systemName}};
  for (const TOutputProperty& property : kProperties) values[property.name] = ReadValue(output, property);
  return values;
}
