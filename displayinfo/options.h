// The command line.
#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "displayinfo/collection.h"
#include "host/logger.h"

enum class EFormat { kText, kJson, kMof, kHtml };
enum class ESchemaFormat { kText, kMof, kJsonSchema };

struct TOptions {
  std::optional<std::filesystem::path> machine;  // a captured machine; this one when absent
  std::vector<TRequest> requests;                // at least one
  EEdidSource edidSource = EEdidSource::kAuto;
  EFormat format = EFormat::kText;
  NQRXZELT20::ILogger::EZELTLogSeverity logLevel = NQRXZELT20::ILogger::kStatus;
  std::optional<std::filesystem::path> plugin;  // looked for when absent
};

/// Either the options, or the format in which to print the classes, or the exit status of a command that is done: after
/// --help, --version or wrong usage, which has been explained on standard error.
struct TCommandLine {
  TOptions options;
  std::optional<ESchemaFormat> schemaFormat;
  std::optional<int> exitStatus;
};

TCommandLine ParseCommandLine(int argumentCount, char** arguments);
