// The command line.
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

// In the order in which the table of options has their words.
enum class EFormat { kText, kJson, kRows, kCsv, kMof, kHtml };
enum class ESchemaFormat { kText, kMof, kJsonSchema };

enum class ESubcommand { kNone, kCapture, kCompare, kWatch, kServe, kSchema };

constexpr unsigned int kMaxJobs = 1000;

struct TOptions {
  std::vector<std::string> machines;                 // captured machines; this one when there is none and no list
  std::optional<std::filesystem::path> machineList;  // a file of their names, "-" for standard input
  std::optional<std::filesystem::path> resume;       // what a run over many machines has written already
  std::optional<unsigned int> jobs;                  // worker processes for many machines; absent: one per core
  std::chrono::seconds timeout{60};                  // for each machine
  std::vector<TRequest> requests;                    // at least one
  EEdidSource edidSource = EEdidSource::kAuto;
  EXconfigSource xconfigSource = EXconfigSource::kAuto;
  std::optional<EFormat> format;
  bool hasLog = true;  // of JSON
  std::optional<NQRXZELT20::ILogger::EZELTLogSeverity> logLevel;
  std::optional<std::filesystem::path> plugin;  // looked for when absent

  /// The answer is one for many machines.
  bool IsFleet() const { return machineList || machines.size() > 1; }
};

/// What `displayinfo capture` writes, and where to.
struct TCaptureOptions {
  std::filesystem::path target;        // "-" for standard output
  std::optional<std::string> machine;  // a captured one; else this one, as the options say
  bool isAnonymous = false;
  bool hasConfiguration = true;  // else the X configuration is left out
};

/// What the command is to do. Of the subcommands' options only those of `subcommand` are set.
struct TCommandLine {
  std::optional<int> exitStatus;  // the command is done: after --help, --version, or wrong usage, which was explained
  ESubcommand subcommand = ESubcommand::kNone;
  TOptions options;  // of a collection; those of them that a subcommand has too
  TCaptureOptions capture;
  TCompareOptions compare;  // without its plug-in and its time limit
  TServeOptions serve;      // without its plug-in, its time limit and its sources
  ESchemaFormat schemaFormat = ESchemaFormat::kText;
};

/// Throws TUnusable when what was asked for, such as the help, cannot be written.
TCommandLine ParseCommandLine(int argumentCount, char** arguments);
