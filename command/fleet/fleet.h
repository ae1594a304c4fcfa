// Collects from many machines in worker processes, and writes lines for each in the order of their list.
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

/// How the lines of each machine are made, and where they go.
struct TFleetAnswer {
  /// Write a machine's answer, or why there is none: one or more lines with their line ends. Called in the workers.
  std::function<std::string(const std::string& machine, const TAnswer& answer)> makeLines;
  std::function<std::string(const std::string& machine, const std::string& reason)> makeErrorLine;
  std::string head = {};  // the lines before those of the machines
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
  std::chrono::seconds timeout;  // for each machine; if it takes longer, its line is an error
  /// Log entries up to this severity are also written to standard error, each after its machine's name.
  std::optional<NQRXZELT20::ILogger::EZELTLogSeverity> logLevel;
  TFleetAnswer answer;
};

/// Hands the lines over to the answer. Returns the exit status: 0, or 1 if a machine failed, or 128 plus the number of
/// the signal that ended the run, after a complete line. Throws TUnusable if the run cannot go on.
int CollectFleet(TFleet fleet);
