// Writes many machines as one page for a browser or for paper: counts, then the machines, then their monitors by age,
// model and largest mode.
#pragma once

#include <deque>
#include <functional>
#include <string>

#include "command/report/html/fleet_machine.h"
#include "command/report/machine_summary.h"

/// Keeps only what it shows of each machine, about half a kilobyte, until the page is written. It cannot write earlier,
/// because the counts at the top of the page need the last machine.
class TFleetPage {
 public:
  /// What the page needs to know of a machine, as a line with its line end, since another process may collect from it.
  static std::string MakeLine(const TMachineSummary& machine);

  /// Takes complete lines, in the order of the machines.
  void Take(const std::string& lines);

  /// Writes the page. `made`: the time, as utc_time.h writes it. `isWhole`: false if machines are missing because the
  /// run was stopped. `write`: takes a piece of the page, and returns false to get no more.
  void Write(const std::string& made, bool isWhole, const std::function<bool(const std::string&)>& write) const;

 private:
  std::deque<TFleetMachine> m_machines;
};
