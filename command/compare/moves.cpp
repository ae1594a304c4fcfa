#include "command/compare/moves.h"

#include <algorithm>
#include <map>
#include <set>

namespace {

typedef TDeviceDifference<TMonitor> TMonitorDifference;

/// The identities made of serial numbers, each once: a monitor may be connected to two outputs of a machine.
std::set<std::string> ListNumbered(const TMachineFacts& machine) {
  std::set<std::string> identities;
  for (const TMonitor& monitor : machine.monitors) {
    if (monitor.isNumbered) identities.insert(monitor.identity);
  }
  return identities;
}

struct TGone {
  const std::string& machine;
  TMonitorDifference& difference;
};

/// The monitors that are gone, by identity.
std::map<std::string, TGone> ListGone(std::vector<TMachineReport>& reports) {
  std::map<std::string, TGone> gone;
  for (TMachineReport& report : reports) {
    for (TMonitorDifference& difference : report.difference.monitors) {
      const TMonitor& monitor = difference.device;
      if (difference.state != EState::kGone || !monitor.isNumbered) continue;
      gone.emplace(monitor.identity, TGone{report.name, difference});
    }
  }
  return gone;
}

/// Turns a monitor that came into a move if the same monitor is gone from another machine.
void Move(TMonitorDifference& came, std::map<std::string, TGone>& gone) {
  const auto origin = gone.find(came.device.identity);
  if (origin == gone.end()) return;
  came.state = EState::kMoved;
  came.origin = origin->second.machine;
  origin->second.difference.state = EState::kLeft;
  gone.erase(origin);
}

}  // namespace

void TMoves::CountOld(const TMachineFacts& machine) {
  for (const std::string& identity : ListNumbered(machine)) ++m_counts[identity].before;
}

void TMoves::CountNew(const TMachineFacts& machine) {
  for (const std::string& identity : ListNumbered(machine)) ++m_counts[identity].after;
}

std::vector<TDoubtfulSerial> TMoves::Find(std::vector<TMachineReport>& reports) const {
  std::map<std::string, TGone> gone = ListGone(reports);
  std::map<std::string, TDoubtfulSerial> doubtful;  // by identity
  for (TMachineReport& report : reports) {
    for (TMonitorDifference& difference : report.difference.monitors) {
      const TMonitor& monitor = difference.device;
      if (difference.state == EState::kChanged || !monitor.isNumbered) continue;
      const TMachinesOf& machines = m_counts.at(monitor.identity);
      if (machines.before > 1 || machines.after > 1) {
        doubtful.emplace(monitor.identity, TDoubtfulSerial{monitor, machines.before, machines.after});
      } else if (difference.state == EState::kCame) {
        Move(difference, gone);
      }
    }
  }
  std::vector<TDoubtfulSerial> all;
  all.reserve(doubtful.size());
  for (auto& [identity, serial] : doubtful) all.push_back(std::move(serial));
  return all;
}

void RemoveWhatIsNotTold(TMachineReport& report) {
  auto& monitors = report.difference.monitors;
  const auto isTold = [&](const TMonitorDifference& difference) {
    if (difference.state == EState::kLeft) return false;
    return report.state == EMachineState::kChanged || difference.state == EState::kMoved;
  };
  monitors.erase(std::stable_partition(monitors.begin(), monitors.end(), isTold), monitors.end());
}
