// Many machines: lines for each, in the order of their list, the work spread over worker processes.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "command/base/standard_output.h"
#include "command/collection/collection.h"
#include "command/fleet/finished_machines.h"
#include "command/fleet/machine_list.h"
#include "host/logger.h"

/// What is said of each machine, and what becomes of it.
struct TFleetAnswer {
  /// Writes a machine's answer, or why there is none: a line, or several, each with its end. Called in the workers.
  std::function<std::string(const std::string& machine, const TAnswer& answer)> makeLines;
  std::function<std::string(const std::string& machine, const std::string& reason)> makeErrorLine;
  std::string head = {};  // lines before those of the machines
  /// Takes complete lines, and returns false to end the run.
  std::function<bool(const std::string& lines)> take = WriteStandardOutput;
  /// Called after the last lines. `isWhole`: false when a signal ended the run.
  std::function<void(bool isWhole)> finish = [](bool) {};
};

struct TFleet {
  TMachineList machines;
  TFinishedMachines finished;  // these are skipped
  std::vector<TRequest> requests;
  std::filesystem::path plugin;
  unsigned int jobs;             // worker processes, at least 1
  std::chrono::seconds timeout;  // for each machine; its line is an error when it takes longer
  /// What of the log goes to standard error too, each line after its machine's name.
  std::optional<NQRXZELT20::ILogger::EZELTLogSeverity> logLevel;
  TFleetAnswer answer;
};

/// Hands the lines over to the answer. The exit status: 0, 1 when a machine failed, or 128 and the number of the
/// signal that ended the run, after a complete line. Throws TUnusable when the run cannot go on.
int CollectFleet(TFleet fleet);
