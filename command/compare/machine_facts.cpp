#include "command/compare/machine_facts.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <nlohmann/json.hpp>
#include <utility>

#include "command/base/base64.h"
#include "command/base/text_encoding.h"
#include "command/edid/edid_facts.h"
#include "embedded_host/schema.h"

using nlohmann::json;

namespace {

/// Properties that say which device it is, or where it stands in a row: of all devices alike. A controller's
/// OtherIdentifyingInfo repeats its DeviceID.
constexpr const char* kPlaces[] = {"CreationClassName", "SystemCreationClassName", "SystemName",
                                   "DeviceID",          "OtherIdentifyingInfo",    "HeadNumber"};

constexpr const char* kDisplayId = "DisplayId";

template <std::size_t size>
bool IsOneOf(const char* const (&names)[size], const std::string& name) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

std::string Quote(const std::string& text) { return json(ToUtf8(text)).dump(); }

/// The text of a string; any other value as JSON has it.
std::string GetText(const TFacts& properties, const char* name) {
  const auto found = properties.find(name);
  if (found == properties.end()) return std::string();
  const json value = json::parse(found->second);
  return value.is_string() ? value.get<std::string>() : found->second;
}

/// Each once: several requests may have asked for a class, and one may have committed an instance again.
std::vector<TReadInstance> Select(const TReadAnswer& answer, const std::string& className) {
  std::vector<TReadInstance> selected;
  std::map<std::pair<std::string, std::string>, std::size_t> positions;
  for (const TReadInstance& instance : answer.instances) {
    if (instance.className != className) continue;
    // Controllers on different buses may have the same path: two sections of one name.
    const std::pair key(instance.path, GetText(instance.properties, kDisplayId));
    const auto [position, isNew] = positions.emplace(key, selected.size());
    if (isNew) selected.push_back(instance);
    if (!isNew) selected[position->second] = instance;
  }
  return selected;
}

// Monitors.

bool IsSerial(const std::string& text) {
  return std::any_of(text.begin(), text.end(),
                     [](unsigned char byte) { return std::isalnum(byte) != 0 && byte != '0'; });
}

std::string EncodeEdid(const std::vector<std::uint8_t>& edid) {
  return EncodeBase64(std::string(edid.begin(), edid.end()));
}

std::string IdentifyMonitor(const TEdidFacts& facts, const std::vector<std::uint8_t>& edid) {
  const bool hasText = IsSerial(facts.serialText);
  if (!facts.isVersion1 || (!facts.serialNumber && !hasText)) return EncodeEdid(edid);
  return json({facts.manufacturer, facts.productCode, facts.serialNumber.value_or(0),
               hasText ? ToUtf8(facts.serialText) : std::string()})
      .dump();
}

TFacts DescribeMonitor(const TEdidFacts& edid, const TReadOutput& output) {
  TFacts description;
  if (edid.isVersion1) {
    if (!edid.maker.empty()) description["manufacturer"] = Quote(edid.maker);
    description["productCode"] = std::to_string(edid.productCode);
    if (edid.serialNumber) description["serialNumber"] = std::to_string(*edid.serialNumber);
    if (!edid.name.empty()) description["name"] = Quote(edid.name);
    if (!edid.serialText.empty()) description["serial"] = Quote(edid.serialText);
  }
  if (!output.connector.empty()) description["connector"] = Quote(output.connector);
  if (!output.deviceId.empty()) description["deviceID"] = Quote(output.deviceId);
  return description;
}

/// The modes of each monitor, such as "1280x1024@60Hz", by its DeviceID.
std::map<std::string, std::multiset<std::string>> CollectModes(const TReadAnswer& answer) {
  std::map<std::string, std::multiset<std::string>> modes;
  for (const TReadInstance& mode : Select(answer, kMonitorResolutionClass)) {
    const std::string id = GetText(mode.properties, "SettingID");
    modes[id.substr(0, id.rfind("\\ Setting "))].insert(GetText(mode.properties, "HorizontalResolution") + "x" +
                                                        GetText(mode.properties, "VerticalResolution") + "@" +
                                                        GetText(mode.properties, "RefreshRate") + "Hz");
  }
  return modes;
}

std::vector<TDevice> MakeMonitors(const TReadAnswer& answer) {
  std::map<std::string, TFacts> properties;  // by DeviceID
  for (const TReadInstance& monitor : Select(answer, kDesktopMonitorClass)) {
    properties[GetText(monitor.properties, "DeviceID")] = monitor.properties;
  }
  auto modes = CollectModes(answer);
  std::vector<TDevice> monitors;
  for (const TReadOutput& output : answer.outputs) {
    if (output.edid.empty()) continue;
    const TEdidFacts edid = ReadEdidFacts(output.edid);
    TDevice monitor = {IdentifyMonitor(edid, output.edid), DescribeMonitor(edid, output), {}};
    monitor.facts[kEdidFact] = Quote(EncodeEdid(output.edid));
    monitor.facts[kListedFact] = output.deviceId.empty() ? "false" : "true";
    if (!output.deviceId.empty()) {
      // Only the first of several outputs with one DeviceID, which no plug-in makes: copies for each could be endless.
      for (const auto& [name, value] : std::exchange(properties[output.deviceId], {})) {
        if (!IsOneOf(kPlaces, name)) monitor.facts[name] = value;
      }
      monitor.facts[kModesFact] = json(std::exchange(modes[output.deviceId], {})).dump();
    }
    monitors.push_back(std::move(monitor));
  }
  return monitors;
}

// Controllers.

/// What a head says that its controller does not: its own mode and monitor.
void AddHead(const TReadInstance& head, TDevice& controller, json& names) {
  const std::string name = GetText(head.properties, "DeviceID");
  if (!IsConnector(name)) names.push_back(name);
  for (const auto& [property, value] : head.properties) {
    // The monitor at a connector is told of as one.
    if (property == "MonitorString" && IsConnector(name)) continue;
    if (IsHeadProperty(property)) controller.facts[kHeadPrefix + name + ": " + property] = value;
  }
}

TDevice MakeController(const TReadInstance& instance) {
  TDevice controller = {GetText(instance.properties, kDisplayId), {}, {}};
  for (const auto& [name, value] : instance.properties) {
    if (name == kDisplayId || name == "DeviceID" || name == "Name") controller.description[name] = value;
    if (name != kDisplayId && !IsOneOf(kPlaces, name)) controller.facts[name] = value;
  }
  return controller;
}

/// A head belongs to the controller of its display id; to the first where two have the same.
std::vector<TDevice> MakeControllers(const TReadAnswer& answer) {
  std::vector<TDevice> controllers;
  std::map<std::string, std::size_t> positions;  // by display id
  for (const TReadInstance& instance : Select(answer, kVideoControllerClass)) {
    controllers.push_back(MakeController(instance));
    positions.emplace(controllers.back().identity, controllers.size() - 1);
  }
  std::vector<json> names(controllers.size(), json::array());
  for (const TReadInstance& head : Select(answer, kVideoHeadClass)) {
    const auto position = positions.find(GetText(head.properties, kDisplayId));
    if (position != positions.end()) AddHead(head, controllers[position->second], names[position->second]);
  }
  for (std::size_t index = 0; index < controllers.size(); ++index) {
    std::sort(names[index].begin(), names[index].end());
    controllers[index].facts[kHeadsFact] = names[index].dump();
  }
  return controllers;
}

json PackDevices(const std::vector<TDevice>& devices) {
  json packed = json::array();
  for (const TDevice& device : devices)
    packed.push_back(json::array({device.identity, device.description, device.facts}));
  return packed;
}

std::vector<TDevice> UnpackDevices(const json& packed) {
  std::vector<TDevice> devices;
  for (const json& device : packed) devices.push_back({device[0], device[1].get<TFacts>(), device[2].get<TFacts>()});
  return devices;
}

}  // namespace

bool IsHeadProperty(const std::string& name) {
  constexpr const char* properties[] = {"CurrentBitsPerPixel", "CurrentHorizontalResolution",
                                        "CurrentVerticalResolution", "MonitorString"};
  return IsOneOf(properties, name);
}

std::optional<std::string> GetHead(const std::string& fact) {
  if (fact.compare(0, std::strlen(kHeadPrefix), kHeadPrefix) != 0) return std::nullopt;
  return fact.substr(std::strlen(kHeadPrefix), fact.rfind(": ") - std::strlen(kHeadPrefix));
}

bool IsConnector(const std::string& name) {
  constexpr std::size_t prefix = 4;  // "card"
  const std::size_t dash = name.find_first_not_of("0123456789", prefix);
  return name.compare(0, prefix, "card") == 0 && dash != std::string::npos && dash > prefix && name[dash] == '-';
}

TMachineFacts MakeFacts(const TReadAnswer& answer) {
  TMachineFacts machine = {answer.error, answer.classes, {}, MakeMonitors(answer), MakeControllers(answer)};
  for (const TReadOutput& output : answer.outputs) {
    if (!output.edid.empty()) machine.connected.insert(output.connector);
  }
  return machine;
}

std::string Pack(const TMachineFacts& machine) {
  const json error = machine.error ? json(*machine.error) : json();
  std::string text;
  json::to_cbor(json::array({error, machine.classes, machine.connected, PackDevices(machine.monitors),
                             PackDevices(machine.controllers)}),
                text);
  return text;
}

TMachineFacts Unpack(const std::string& text) {
  const json packed = json::from_cbor(text);
  TMachineFacts machine;
  if (packed[0].is_string()) machine.error = packed[0].get<std::string>();
  machine.classes = packed[1].get<std::set<std::string>>();
  machine.connected = packed[2].get<std::set<std::string>>();
  machine.monitors = UnpackDevices(packed[3]);
  machine.controllers = UnpackDevices(packed[4]);
  return machine;
}
