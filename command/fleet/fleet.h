// Many machines: one line of JSON for each, in the order of their list, the work spread over worker processes.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "command/collection/collection.h"
#include "command/fleet/finished_machines.h"
#include "command/fleet/machine_list.h"
#include "host/logger.h"

struct TFleet {
  TMachineList machines;
  TFinishedMachines finished;  // these are skipped
  std::vector<TRequest> requests;
  std::filesystem::path plugin;
  unsigned int jobs;             // worker processes, at least 1
  std::chrono::seconds timeout;  // for each machine; its line is an error when it takes longer
  /// What of the log goes to standard error too, each line after its machine's name.
  std::optional<NQRXZELT20::ILogger::EZELTLogSeverity> logLevel;
  /// Writes a machine's answer: a line, or several, each with its end.
  std::function<std::string(const std::string& machine, const TAnswer& answer)> makeLines;
};

/// Writes the lines to standard output. The exit status: 0, 1 when a machine failed, or 128 and the number of the
/// signal that ended the run, after a complete line. Throws TUnusable when the run cannot go on.
int CollectFleet(TFleet fleet);
