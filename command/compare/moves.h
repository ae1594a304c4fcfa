// Finds monitors that went from one machine of a fleet to another.
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
  // Count the monitors of a machine of one side.
  void CountOld(const TMachineFacts& machine);
  void CountNew(const TMachineFacts& machine);

  /// Finds each monitor that is gone from one machine and came to another, and reports it as moved there. This takes a
  /// serial number that no two machines of one side have. Returns the monitors that came or are gone with a serial
  /// number that several machines of one side have: it is doubtful and proves no move.
  std::vector<TDoubtfulSerial> Find(std::vector<TMachineReport>& reports) const;

 private:
  std::unordered_map<std::string, TMachinesOf> m_counts;  // by identity
};

/// Removes the monitors that left for another machine. Of a machine that came or is gone as a whole, keeps only the
/// monitors that moved.
void RemoveWhatIsNotTold(TMachineReport& report);
