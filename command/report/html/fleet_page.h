// Many machines as one page for a browser or for paper: counts, then the machines and their monitors in the orders that
// people ask for.
#pragma once

#include <deque>
#include <functional>
#include <string>

#include "command/report/html/fleet_machine.h"
#include "command/report/machine_summary.h"

/// Of each machine it keeps only what it shows, about half a kilobyte, until the page is written: the counts at its top
/// need the last machine.
class TFleetPage {
 public:
  /// What the page needs to know of a machine, in a line with its end: the machine may be collected from in another
  /// process.
  static std::string MakeLine(const TMachineSummary& machine);

  /// Takes complete lines, in the order of the machines.
  void Take(const std::string& lines);

  /// Writes the page. `made`: when, as utc_time.h writes it. `isWhole`: false when machines are missing because the run
  /// was stopped. `write`: takes a piece of the page, and returns false to get no more.
  void Write(const std::string& made, bool isWhole, const std::function<bool(const std::string&)>& write) const;

 private:
  std::deque<TFleetMachine> m_machines;
};
