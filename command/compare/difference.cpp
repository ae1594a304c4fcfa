#include "command/compare/difference.h"

#include <algorithm>
#include <deque>
#include <map>
#include <utility>

#include "embedded_host/schema.h"

namespace {

/// Chooses the facts of two machines that can be compared.
class TComparableFacts {
 public:
  TComparableFacts(const TMachineFacts& before, const TMachineFacts& after) : m_before(before), m_after(after) {}

  bool AreAsked(const char* className) const {
    return m_before.classes.count(className) != 0 && m_after.classes.count(className) != 0;
  }

  TFacts Choose(const TFacts& facts) const {
    TFacts chosen;
    std::copy_if(facts.begin(), facts.end(), std::inserter(chosen, chosen.end()),
                 [this](const auto& fact) { return IsComparable(fact.first); });
    return chosen;
  }

 private:
  bool IsComparable(const std::string& fact) const {
    if (fact == kModesFact) return AreAsked(kMonitorResolutionClass);
    const std::optional<std::string> head = GetHead(fact);
    if (head || fact == kHeadsFact) return AreAsked(kVideoHeadClass) && (!head || IsConnectedAlike(*head));
    // The heads tell it themselves, each its own.
    return !IsHeadProperty(fact) || !AreAsked(kVideoHeadClass);
  }

  /// A monitor that comes or goes takes the mode of its connector with it; that is no change of the controller.
  bool IsConnectedAlike(const std::string& head) const {
    return !IsConnector(head) || m_before.connected.count(head) == m_after.connected.count(head);
  }

  const TMachineFacts& m_before;
  const TMachineFacts& m_after;
};

std::vector<TChange> ListChanges(const TFacts& before, const TFacts& after) {
  std::vector<TChange> changes;
  for (const auto& [name, value] : before) {
    const auto found = after.find(name);
    if (found == after.end()) {
      changes.push_back({name, value, std::nullopt});
    } else if (found->second != value) {
      changes.push_back({name, value, found->second});
    }
  }
  for (const auto& [name, value] : after) {
    if (before.count(name) == 0) changes.push_back({name, std::nullopt, value});
  }
  // Of a monitor that is reported on one side only, the plug-in's properties are not further differences.
  const auto listed =
      std::find_if(changes.begin(), changes.end(), [](const TChange& change) { return change.name == kListedFact; });
  if (listed != changes.end()) {
    changes.erase(
        std::remove_if(changes.begin(), changes.end(),
                       [](const TChange& change) { return change.name != kListedFact && change.name != kEdidFact; }),
        changes.end());
  }
  std::sort(changes.begin(), changes.end(),
            [](const TChange& left, const TChange& right) { return left.name < right.name; });
  return changes;
}

/// Devices and what can be compared of each.
typedef std::pair<const TDevice*, TFacts> TCandidate;

/// Takes the devices of two lists together in pairs: first those that are equal, so that the smallest difference is
/// told of devices that nothing tells apart.
std::vector<TDeviceDifference> ComparePairs(const std::vector<TDevice>& before, const std::vector<TDevice>& after,
                                            const TComparableFacts& comparable) {
  std::map<std::pair<std::string, TFacts>, std::deque<const TDevice*>> equals;
  for (const TDevice& device : before) equals[{device.identity, comparable.Choose(device.facts)}].push_back(&device);

  std::vector<TCandidate> unequal;
  for (const TDevice& device : after) {
    TFacts facts = comparable.Choose(device.facts);
    const auto equal = equals.find({device.identity, facts});
    if (equal == equals.end() || equal->second.empty()) {
      unequal.emplace_back(&device, std::move(facts));
    } else {
      equal->second.pop_front();
    }
  }

  std::map<std::string, std::deque<TCandidate>> left;  // of before, by identity
  for (const TDevice& device : before) {
    TFacts facts = comparable.Choose(device.facts);
    auto& devices = equals[{device.identity, facts}];
    if (devices.empty() || devices.front() != &device) continue;
    devices.pop_front();
    left[device.identity].emplace_back(&device, std::move(facts));
  }

  std::vector<TDeviceDifference> differences;
  for (const auto& [device, facts] : unequal) {
    auto& candidates = left[device->identity];
    if (candidates.empty()) {
      differences.push_back({EState::kCame, device->description, {}});
      continue;
    }
    differences.push_back({EState::kChanged, device->description, ListChanges(candidates.front().second, facts)});
    candidates.pop_front();
  }
  for (const auto& [identity, devices] : left) {
    for (const auto& [device, facts] : devices) differences.push_back({EState::kGone, device->description, {}});
  }
  return differences;
}

}  // namespace

bool AreComparable(const TMachineFacts& before, const TMachineFacts& after) {
  const TComparableFacts comparable(before, after);
  return comparable.AreAsked(kDesktopMonitorClass) || comparable.AreAsked(kVideoControllerClass);
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
