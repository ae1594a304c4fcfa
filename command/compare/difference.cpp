#include "command/compare/difference.h"

#include <algorithm>
#include <deque>
#include <map>
#include <set>
#include <unordered_map>
#include <utility>

#include "command/base/json.h"
#include "command/report/device_rows.h"
#include "command/report/mode_order.h"
#include "embedded_host/schema.h"

using nlohmann::json;

namespace {

constexpr const char* kMonitorString = "MonitorString";

/// The identity of each monitor, by its connector.
typedef std::map<std::string, std::string> TConnected;

TConnected ListConnected(const TMachineFacts& machine) {
  TConnected connected;
  for (const TMonitor& monitor : machine.monitors) connected.emplace(monitor.output.connector, monitor.identity);
  return connected;
}

void EraseHeadProperties(TProperties& properties) {
  for (auto property = properties.begin(); property != properties.end();) {
    property = IsHeadProperty(property->first) ? properties.erase(property) : std::next(property);
  }
}

/// False if the controller has connectors, but none of them has a mode: the kernel shows the modes of a card only to
/// those who may open its device.
bool ShowsModes(const TController& controller) {
  const auto isConnector = [](const THead& head) { return IsConnector(head.name); };
  const auto hasMode = [](const THead& head) { return head.properties.count("CurrentHorizontalResolution") != 0; };
  return std::none_of(controller.heads.begin(), controller.heads.end(), isConnector) ||
         std::any_of(controller.heads.begin(), controller.heads.end(), hasMode);
}

/// Reduces each device to the facts that the two machines can be compared by.
class TComparableFacts {
 public:
  TComparableFacts(const TMachineFacts& before, const TMachineFacts& after)
      : m_before(before), m_after(after), m_old(ListConnected(before)), m_new(ListConnected(after)) {
    for (const TMachineFacts* const machine : {&before, &after}) {
      for (const TController& controller : machine->controllers) {
        if (!ShowsModes(controller)) m_withoutModes.insert(controller.identity);
      }
    }
  }

  bool AreAsked(const char* className) const {
    return m_before.classes.count(className) != 0 && m_after.classes.count(className) != 0;
  }

  TMonitor Choose(TMonitor monitor) const {
    if (!AreAsked(kMonitorResolutionClass)) monitor.modes.clear();
    return monitor;
  }

  TController Choose(TController controller) const {
    if (AreAsked(kVideoHeadClass)) {
      // Each head reports its own.
      EraseHeadProperties(controller.properties);
      for (THead& head : controller.heads) ChooseHead(head, controller.identity);
      return controller;
    }
    controller.heads.clear();
    // The controller repeats what its first head says, which may have another monitor on the other side.
    if (IsConnector(controller.deviceId)) EraseHeadProperties(controller.properties);
    return controller;
  }

 private:
  /// `controller`: its identity.
  void ChooseHead(THead& head, const std::string& controller) const {
    if (!IsConnector(head.name)) return;
    // A change of the monitor at a connector is reported as such. Its mode changes with it, which is no change of the
    // controller.
    head.properties.erase(kMonitorString);
    const bool isComparable = HasSameMonitor(head.name) && m_withoutModes.count(controller) == 0;
    if (!isComparable) EraseHeadProperties(head.properties);
  }

  bool HasSameMonitor(const std::string& connector) const {
    const auto before = m_old.find(connector);
    const auto after = m_new.find(connector);
    if (before == m_old.end() || after == m_new.end()) return (before == m_old.end()) == (after == m_new.end());
    return before->second == after->second;
  }

  const TMachineFacts& m_before;
  const TMachineFacts& m_after;
  const TConnected m_old;
  const TConnected m_new;
  std::set<std::string> m_withoutModes;  // identities of controllers whose modes one side could not see
};

TPropertyValue Get(const TProperties& properties, const std::string& name) {
  const auto found = properties.find(name);
  return found == properties.end() ? TPropertyValue() : found->second;
}

void AddProperties(const TProperties& before, const TProperties& after, std::vector<TChange>& changes) {
  const auto add = [&](const std::string& name) {
    const TPropertyValue left = Get(before, name);
    const TPropertyValue right = Get(after, name);
    if (left != right) changes.push_back({name, TChanged<TPropertyValue>{left, right}});
  };
  for (const auto& [name, value] : before) add(name);
  for (const auto& [name, value] : after) {
    if (before.count(name) == 0) add(name);
  }
}

template <typename TFact>
void AddFact(const std::string& name, const TFact& before, const TFact& after, std::vector<TChange>& changes) {
  if (before != after) changes.push_back({name, TChanged<TFact>{before, after}});
}

std::vector<TChange> Sort(std::vector<TChange> changes) {
  std::stable_sort(changes.begin(), changes.end(),
                   [](const TChange& left, const TChange& right) { return left.name < right.name; });
  return changes;
}

TOutput ReadOutput(const TEdid& edid) {
  TOutput output;
  output.facts = ReadEdidFacts(edid);
  return output;
}

/// What people read of an EDID, except limits and versions, which are also among the plug-in's properties.
TProperties DescribeFacts(const TOutput& output) {
  TProperties facts;
  for (const TOutputRow& row : DescribeEdid(output)) {
    if (row.place != ERowPlace::kFolded) facts[row.label] = row.text;
  }
  return facts;
}

TModes ListEdidModes(const TOutput& output) {
  TModes modes;
  for (const TShownMode& mode : ListModes({}, &output)) modes.push_back(WriteMode(mode));
  std::sort(modes.begin(), modes.end());
  return modes;
}

void AddEdid(const TEdid& before, const TEdid& after, std::vector<TChange>& changes) {
  if (before == after) return;
  changes.push_back({"EDID", TChanged<TEdid>{before, after}});
  const TOutput old = ReadOutput(before);
  const TOutput now = ReadOutput(after);
  AddProperties(DescribeFacts(old), DescribeFacts(now), changes);
  AddFact("Modes of the EDID", ListEdidModes(old), ListEdidModes(now), changes);
}

std::vector<TChange> ListChanges(const TMonitor& before, const TMonitor& after) {
  std::vector<TChange> changes;
  AddEdid(before.output.edid, after.output.edid, changes);
  AddFact<TPropertyValue>("Listed", before.IsListed(), after.IsListed(), changes);
  // If only one side lists the monitor, the plug-in's properties are no further differences.
  if (before.IsListed() == after.IsListed()) {
    AddFact("Modes", before.modes, after.modes, changes);
    AddProperties(before.properties, after.properties, changes);
  }
  return Sort(std::move(changes));
}

/// A head and its controller, which repeats some of its properties.
struct THeadOf {
  const THead& head;
  const TController& controller;

  bool Repeats(const std::string& name) const { return Get(head.properties, name) == Get(controller.properties, name); }
};

/// Leaves out changes that the controller repeats: they are reported as the controller's.
void AddHead(const THeadOf& before, const THeadOf& after, std::vector<TChange>& changes) {
  std::vector<TChange> all;
  AddProperties(before.head.properties, after.head.properties, all);
  for (TChange& change : all) {
    if (before.Repeats(change.name) && after.Repeats(change.name)) continue;
    changes.push_back({"Head " + after.head.name + ": " + change.name, std::move(change.fact)});
  }
}

/// Heads of one name are paired in their order.
void AddHeads(const TController& before, const TController& after, std::vector<TChange>& changes) {
  auto head = after.heads.begin();
  for (const THead& old : before.heads) {
    head = std::find_if(head, after.heads.end(), [&](const THead& other) { return other.name >= old.name; });
    if (head == after.heads.end()) return;
    if (head->name == old.name) AddHead({old, before}, {*head++, after}, changes);
  }
}

TPropertyValue ListNames(const std::vector<THead>& heads) {
  TPropertyValue names = json::array();
  for (const THead& head : heads) names.push_back(head.name);
  return names;
}

/// True if the heads come from the configuration that the command makes from what the kernel knows: one head for each
/// monitor, or one that stands for the card.
bool AreMade(const std::vector<THead>& heads) {
  if (heads.size() == 1 && IsCard(heads.front().name)) return true;
  return std::all_of(heads.begin(), heads.end(), [](const THead& head) { return IsConnector(head.name); });
}

std::vector<TChange> ListChanges(const TController& before, const TController& after) {
  std::vector<TChange> changes;
  AddProperties(before.properties, after.properties, changes);
  AddHeads(before, after, changes);
  // Made heads come and go with their monitors, which are reported themselves.
  if (!AreMade(before.heads) || !AreMade(after.heads)) {
    AddFact("Heads", ListNames(before.heads), ListNames(after.heads), changes);
  }
  return Sort(std::move(changes));
}

// A key is equal for equal devices.

std::string MakeKey(const TMonitor& monitor) {
  return PackJson(json::array(
      {monitor.identity, json::binary(monitor.output.edid), monitor.IsListed(), monitor.modes, monitor.properties}));
}

std::string MakeKey(const TController& controller) {
  json heads = json::array();
  for (const THead& head : controller.heads) heads.push_back(json::array({head.name, head.properties}));
  return PackJson(json::array({controller.identity, controller.properties, heads}));
}

/// A device, and what can be compared of it.
template <typename TDevice>
struct TCandidate {
  const TDevice* device;
  TDevice comparable;
};

/// Pairs the devices of two lists and compares each pair. Equal ones are paired first, so that devices of one identity
/// give the smallest difference.
template <typename TDevice>
std::vector<TDeviceDifference<TDevice>> ComparePairs(const std::vector<TDevice>& before,
                                                     const std::vector<TDevice>& after,
                                                     const TComparableFacts& comparable) {
  std::unordered_map<std::string, std::deque<const TDevice*>> equals;  // of `before`, by their keys
  for (const TDevice& device : before) equals[MakeKey(comparable.Choose(device))].push_back(&device);

  std::vector<TCandidate<TDevice>> unequal;
  for (const TDevice& device : after) {
    TDevice chosen = comparable.Choose(device);
    const auto equal = equals.find(MakeKey(chosen));
    if (equal == equals.end() || equal->second.empty()) {
      unequal.push_back({&device, std::move(chosen)});
    } else {
      equal->second.pop_front();
    }
  }

  std::map<std::string, std::deque<TCandidate<TDevice>>> left;  // of `before`, by identity
  for (const TDevice& device : before) {
    TDevice chosen = comparable.Choose(device);
    auto& devices = equals[MakeKey(chosen)];
    if (devices.empty() || devices.front() != &device) continue;
    devices.pop_front();
    left[device.identity].push_back({&device, std::move(chosen)});
  }

  std::vector<TDeviceDifference<TDevice>> differences;
  for (const auto& [device, chosen] : unequal) {
    auto& candidates = left[device->identity];
    if (candidates.empty()) {
      differences.push_back({EState::kCame, *device, {}});
      continue;
    }
    std::vector<TChange> changes = ListChanges(candidates.front().comparable, chosen);
    if (!changes.empty()) differences.push_back({EState::kChanged, *device, std::move(changes)});
    candidates.pop_front();
  }
  for (const auto& [identity, devices] : left) {
    for (const auto& [device, chosen] : devices) differences.push_back({EState::kGone, *device, {}});
  }
  return differences;
}

}  // namespace

bool AreComparable(const TMachineFacts& before, const TMachineFacts& after) {
  const TComparableFacts comparable(before, after);
  return comparable.AreAsked(kDesktopMonitorClass) || comparable.AreAsked(kVideoControllerClass);
}

TMonitorDifferences ListMonitors(const TMachineFacts& machine, EState state) {
  TMonitorDifferences differences;
  if (machine.classes.count(kDesktopMonitorClass) == 0) return differences;
  for (const TMonitor& monitor : machine.monitors) differences.push_back({state, monitor, {}});
  return differences;
}

TMachineDifference Compare(const TMachineFacts& before, const TMachineFacts& after) {
  const TComparableFacts comparable(before, after);
  TMachineDifference difference;
  if (comparable.AreAsked(kDesktopMonitorClass)) {
    difference.monitors = ComparePairs(before.monitors, after.monitors, comparable);
  }
  if (comparable.AreAsked(kVideoControllerClass)) {
    difference.controllers = ComparePairs(before.controllers, after.controllers, comparable);
  }
  return difference;
}
