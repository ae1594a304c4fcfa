#include "command/compare/machine_facts.h"

#include <algorithm>
#include <cstring>
#include <deque>
#include <iterator>
#include <utility>

#include "command/base/json.h"
#include "command/collection/plugin_texts.h"
#include "command/edid/edid_facts.h"
#include "command/edid/identity.h"
#include "embedded_host/schema.h"

using nlohmann::json;

namespace {

constexpr const char* kDisplayId = "DisplayId";
constexpr const char* kDeviceId = "DeviceID";
constexpr const char* kSystemName = "SystemName";

/// Properties that name the device or number it. A controller's OtherIdentifyingInfo repeats its DeviceID.
constexpr const char* kPlaces[] = {"CreationClassName", "SystemCreationClassName", "SystemName",
                                   kDeviceId,           "OtherIdentifyingInfo",    "HeadNumber",
                                   kDisplayId};

/// Not compared: the day and hour at which a week began depend on the time zone, and the EDID has the week itself.
constexpr const char* kManufacturingDate = "ManufacturingDate";

constexpr const char* kCard = "card";

// Values of TIdentity::from for an identity without a serial number.
constexpr const char* kEdid = "edid";
constexpr const char* kConnector = "connector";

bool IsFrom(const TIdentity& identity, const char* origin) { return std::strcmp(identity.from, origin) == 0; }

template <std::size_t size>
bool IsOneOf(const char* const (&names)[size], const std::string& name) {
  return std::find(std::begin(names), std::end(names), name) != std::end(names);
}

/// All properties except those in kPlaces.
TProperties WithoutPlaces(const TProperties& properties) {
  TProperties others;
  std::copy_if(properties.begin(), properties.end(), std::inserter(others, others.end()),
               [](const auto& property) { return !IsOneOf(kPlaces, property.first); });
  return others;
}

/// The class's instances in the last request that asked for it. A request that names the class several times has all
/// its instances as often; the last ones count.
std::vector<const TReadInstance*> Select(const TReadAnswer& answer, const char* className) {
  std::vector<const TReadInstance*> selected;
  for (auto request = answer.requests.rbegin(); request != answer.requests.rend(); ++request) {
    const auto times = std::count(request->classes.begin(), request->classes.end(), className);
    if (times == 0) continue;
    for (const TReadInstance& instance : request->instances) {
      if (instance.className == className) selected.push_back(&instance);
    }
    const auto once = static_cast<std::ptrdiff_t>(selected.size()) / times;
    selected.erase(selected.begin(), selected.end() - once);
    break;
  }
  return selected;
}

// Monitors.

/// The identities of the outputs that have an EDID, in their order. EDIDs that are equal in all bytes have the same
/// identity here, whatever their connectors.
std::vector<TIdentity> Identify(const std::vector<TReadOutput>& outputs) {
  std::deque<TEdidFacts> facts;
  std::vector<TPlacedMonitor> monitors;
  for (const TReadOutput& output : outputs) {
    if (output.edid.empty()) continue;
    facts.push_back(ReadEdidFacts(output.edid));
    monitors.push_back({{facts.back(), output.edid}, std::string()});
  }
  std::vector<TIdentity> identities = IdentifyAll(monitors);
  for (TIdentity& identity : identities) {
    if (IsFrom(identity, kConnector)) identity.text.pop_back();  // the "@" before an empty place
  }
  return identities;
}

/// The modes of each monitor, by its DeviceID.
std::map<std::string, TModes> CollectModes(const TReadAnswer& answer) {
  std::map<std::string, TModes> modes;
  for (const TReadInstance* const mode : Select(answer, kMonitorResolutionClass)) {
    const std::string id = FindText(mode->properties, "SettingID");
    modes[GetMonitorOfMode(id)].push_back(FindText(mode->properties, "HorizontalResolution") + "x" +
                                          FindText(mode->properties, "VerticalResolution") + "@" +
                                          FindText(mode->properties, "RefreshRate") + "Hz");
  }
  for (auto& [id, list] : modes) std::sort(list.begin(), list.end());
  return modes;
}

std::vector<TMonitor> MakeMonitors(const TReadAnswer& answer) {
  std::map<std::string, TProperties> properties;  // by DeviceID
  for (const TReadInstance* const monitor : Select(answer, kDesktopMonitorClass)) {
    TProperties& others = properties[FindText(monitor->properties, kDeviceId)];
    others = WithoutPlaces(monitor->properties);
    others.erase(kManufacturingDate);
  }
  auto modes = CollectModes(answer);
  const std::vector<TIdentity> identities = Identify(answer.outputs);
  std::vector<TMonitor> monitors;
  for (const TReadOutput& output : answer.outputs) {
    if (output.edid.empty()) continue;
    const TIdentity& identity = identities[monitors.size()];
    const bool isNumbered = !IsFrom(identity, kEdid) && !IsFrom(identity, kConnector);
    TMonitor monitor = {identity.text, isNumbered, output, {}, {}};
    if (monitor.IsListed()) {
      // Only the first of several outputs with one DeviceID gets them: no plug-in makes such outputs, and a hostile
      // answer could ask for endless copies.
      monitor.properties = std::exchange(properties[output.deviceId], {});
      monitor.modes = std::exchange(modes[output.deviceId], {});
    }
    monitors.push_back(std::move(monitor));
  }
  return monitors;
}

// Controllers.

/// A head belongs to the first controller with its display id.
std::vector<TController> MakeControllers(const TReadAnswer& answer) {
  std::vector<TController> controllers;
  std::map<std::string, std::size_t> positions;  // by display id
  for (const TReadInstance* const instance : Select(answer, kVideoControllerClass)) {
    const TProperties& properties = instance->properties;
    const std::string displayId = FindText(properties, kDisplayId);
    positions.emplace(displayId, controllers.size());
    controllers.push_back({displayId, FindText(properties, kDeviceId), WithoutPlaces(properties), {}});
  }
  for (const TReadInstance* const head : Select(answer, kVideoHeadClass)) {
    const auto position = positions.find(FindText(head->properties, kDisplayId));
    if (position == positions.end()) continue;
    controllers[position->second].heads.push_back(
        {FindText(head->properties, kDeviceId), WithoutPlaces(head->properties)});
  }
  for (TController& controller : controllers) {
    std::stable_sort(controller.heads.begin(), controller.heads.end(),
                     [](const THead& left, const THead& right) { return left.name < right.name; });
  }
  return controllers;
}

// Packing.

json PackMonitor(const TMonitor& monitor) {
  return json::array({monitor.identity, monitor.isNumbered, monitor.output.deviceId, monitor.output.connector,
                      json::binary(monitor.output.edid), monitor.modes, monitor.properties});
}

TMonitor UnpackMonitor(const json& packed) {
  return {
      packed[0], packed[1], {packed[2], packed[3], packed[4].get_binary()}, packed[5], packed[6].get<TProperties>()};
}

json PackController(const TController& controller) {
  json heads = json::array();
  for (const THead& head : controller.heads) heads.push_back(json::array({head.name, head.properties}));
  return json::array({controller.identity, controller.deviceId, controller.properties, heads});
}

TController UnpackController(const json& packed) {
  TController controller = {packed[0], packed[1], packed[2].get<TProperties>(), {}};
  for (const json& head : packed[3]) controller.heads.push_back({head[0], head[1].get<TProperties>()});
  return controller;
}

template <typename TDevice>
json PackAll(const std::vector<TDevice>& devices, json (*pack)(const TDevice&)) {
  json packed = json::array();
  for (const TDevice& device : devices) packed.push_back(pack(device));
  return packed;
}

/// The rest of the name after "card" and a number; nothing if it does not begin so.
std::optional<std::string> GetAfterCard(const std::string& name) {
  const std::size_t number = std::strlen(kCard);
  if (name.compare(0, number, kCard) != 0) return std::nullopt;
  const std::size_t end = std::min(name.find_first_not_of("0123456789", number), name.size());
  if (end == number) return std::nullopt;
  return name.substr(end);
}

}  // namespace

std::string FindText(const TProperties& properties, const char* name) {
  const auto found = properties.find(name);
  if (found == properties.end()) return std::string();
  return found->second.is_string() ? found->second.get<std::string>() : WriteJson(found->second);
}

bool IsHeadProperty(const std::string& name) {
  constexpr const char* properties[] = {"CurrentBitsPerPixel", "CurrentHorizontalResolution",
                                        "CurrentVerticalResolution", "MonitorString"};
  return IsOneOf(properties, name);
}

bool IsConnector(const std::string& name) { return GetAfterCard(name).value_or("")[0] == '-'; }

bool IsCard(const std::string& name) { return GetAfterCard(name) == ""; }

TMachineFacts MakeFacts(const TReadAnswer& answer) {
  TMachineFacts machine = {answer.error, {}, MakeMonitors(answer), MakeControllers(answer)};
  for (const TReadRequest& request : answer.requests) {
    machine.classes.insert(request.classes.begin(), request.classes.end());
  }
  return machine;
}

std::string GetSystemName(const TReadAnswer& answer) {
  for (const TReadRequest& request : answer.requests) {
    for (const TReadInstance& instance : request.instances) {
      std::string name = FindText(instance.properties, kSystemName);
      if (!name.empty()) return name;
    }
  }
  return std::string();
}

std::string Pack(const TMachineFacts& machine) {
  const json error = machine.error ? json(*machine.error) : json();
  return PackJson(json::array(
      {error, machine.classes, PackAll(machine.monitors, PackMonitor), PackAll(machine.controllers, PackController)}));
}

TMachineFacts Unpack(const std::string& text) {
  const json packed = UnpackJson(text);
  TMachineFacts machine;
  if (packed[0].is_string()) machine.error = packed[0].get<std::string>();
  machine.classes = packed[1].get<std::set<std::string>>();
  for (const json& monitor : packed[2]) machine.monitors.push_back(UnpackMonitor(monitor));
  for (const json& controller : packed[3]) machine.controllers.push_back(UnpackController(controller));
  return machine;
}
