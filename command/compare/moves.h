// Monitors that went from one machine of a fleet to another.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "command/compare/difference_report.h"

/// How many machines of each side have a monitor.
struct TMachinesOf {
  std::size_t before = 0;
  std::size_t after = 0;
};

class TMoves {
 public:
  // Counts the monitors of a machine of one side.
  void CountOld(const TMachineFacts& machine);
  void CountNew(const TMachineFacts& machine);

  /// Makes one move of each monitor that is gone from one machine and came to another, where its identity is made of a
  /// serial number that no two machines of one side have. The move stays in the place of what came. Returns those that
  /// came or are gone with a serial number that several machines of one side have: it is doubtful, and moves nothing.
  std::vector<TDoubtfulSerial> Find(std::vector<TMachineReport>& reports) const;

 private:
  std::unordered_map<std::string, TMachinesOf> m_counts;  // by identity
};

/// Leaves out what left to another machine; and of a machine that came or is gone as a whole, all but what moved.
void RemoveWhatIsNotTold(TMachineReport& report);
