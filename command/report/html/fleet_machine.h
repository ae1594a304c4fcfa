// What the page of many machines keeps of each, and the line in which a worker process hands it over.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "command/report/machine_summary.h"

struct TFleetMonitor {
  std::string maker, model, serialNumber, identity, made, largestMode, connector;
  bool isListed;            // by the plug-in
  unsigned int year, week;  // 0 when not known
};

struct TFleetMachine {
  std::string name, systemName, collected;
  bool hasAnswered;
  std::vector<std::string> controllers, problems;
  std::vector<TFleetMonitor> monitors;
};

/// A line with its end.
std::string WriteFleetMachine(const TMachineSummary& machine);

/// `line`: as WriteFleetMachine wrote it.
TFleetMachine ReadFleetMachine(std::string_view line);
