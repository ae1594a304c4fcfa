// Reads the command line.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "command/cim_server/serve.h"
#include "command/collection/collection.h"
#include "command/compare/compare.h"
#include "command/machine/this_machine.h"
#include "host/logger.h"

// In the order of their words in the table of options.
enum class EFormat { kText, kJson, kRows, kCsv, kMof, kHtml };
enum class ESchemaFormat { kText, kMof, kJsonSchema };

enum class ESubcommand { kNone, kCapture, kCompare, kWatch, kServe, kSchema };

constexpr unsigned int kMaxJobs = 1000;

struct TOptions {
  std::vector<std::string> machines;                 // captured machines; this machine if empty and without a list
  std::optional<std::filesystem::path> machineList;  // a file with their names; "-" for standard input
  std::optional<std::filesystem::path> resume;       // what an earlier run over many machines has written
  std::optional<unsigned int> jobs;                  // worker processes for many machines; absent: one per core
  std::chrono::seconds timeout{60};                  // for each machine
  std::vector<TRequest> requests;                    // at least one
  EEdidSource edidSource = EEdidSource::kAuto;
  EXconfigSource xconfigSource = EXconfigSource::kAuto;
  std::optional<EFormat> format;
  bool hasLog = true;  // for JSON
  std::optional<NQRXZELT20::ILogger::EZELTLogSeverity> logLevel;
  std::optional<std::filesystem::path> plugin;  // if absent, FindPlugin looks for it

  /// The answer is one for many machines.
  bool IsFleet() const { return machineList || machines.size() > 1; }
};

/// What `displayinfo capture` writes, and where to.
struct TCaptureOptions {
  std::filesystem::path target;        // "-" for standard output
  std::optional<std::string> machine;  // a captured machine; if absent this machine, as the options say
  bool isAnonymous = false;
  bool hasConfiguration = true;  // false: the X configuration is left out
};

/// What the command must do. Of the subcommands' options, only those of `subcommand` are set.
struct TCommandLine {
  std::optional<int> exitStatus;  // set if nothing is left to do: after --help, --version, or wrong usage
  ESubcommand subcommand = ESubcommand::kNone;
  TOptions options;  // for a collection; also those that a subcommand shares with it
  TCaptureOptions capture;
  TCompareOptions compare;  // without its plug-in and its time limit
  TServeOptions serve;      // without its plug-in, its time limit and its sources
  ESchemaFormat schemaFormat = ESchemaFormat::kText;
};

/// Throws TUnusable if something that was asked for, such as the help, cannot be written.
TCommandLine ParseCommandLine(int argumentCount, char** arguments);
