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

enum class EFormat { kText, kJson, kRows, kCsv, kMof, kHtml };
enum class ESchemaFormat { kText, kMof, kJsonSchema };

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
};

/// Either the options of a collection, of a capture, of a comparison or of a server, or the format in which to print
/// the classes, or the exit status of a command that is done: after --help, --version or wrong usage, which standard
/// error has explained.
struct TCommandLine {
  TOptions options;
  std::optional<ESchemaFormat> schemaFormat;
  std::optional<TCaptureOptions> capture;
  std::optional<TCompareOptions> compare;  // without its plug-in
  std::optional<TServeOptions> serve;      // without its plug-in
  std::optional<int> exitStatus;
};

/// Throws TUnusable when what was asked for, such as the help, cannot be written.
TCommandLine ParseCommandLine(int argumentCount, char** arguments);
