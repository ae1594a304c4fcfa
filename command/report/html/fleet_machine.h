// What the page of many machines keeps of each machine, and the line in which a worker process hands it over.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "command/report/machine_summary.h"

struct TFleetMonitor {
  std::string maker, model, serialNumber, identity, made, largestMode, connector;
  bool isListed;            // by the plug-in
  unsigned int year, week;  // 0 if unknown
};

struct TFleetMachine {
  std::string name, systemName, collected;
  bool hasAnswered;
  std::vector<std::string> controllers, problems;
  std::vector<TFleetMonitor> monitors;
};

/// The machine as a line, with its line end.
std::string WriteFleetMachine(const TMachineSummary& machine);

/// `line`: from WriteFleetMachine.
TFleetMachine ReadFleetMachine(std::string_view line);
