// displayinfo: collects what the plug-in has to say about one machine, and shows it.
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstring>
#include <iostream>
#include <string>

#include "displayinfo/collection.h"
#include "displayinfo/html_report.h"
#include "displayinfo/json_report.h"
#include "displayinfo/machine.h"
#include "displayinfo/mof_report.h"
#include "displayinfo/options.h"
#include "displayinfo/plugin_library.h"
#include "displayinfo/privileges.h"
#include "displayinfo/schema_document.h"
#include "displayinfo/text_encoding.h"
#include "displayinfo/text_report.h"

namespace {

constexpr int kDone = 0;
constexpr int kUnusable = 1;

/// Writes the whole answer to standard output. A reader that has gone away is no error: it had enough.
void WriteAnswer(const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = write(STDOUT_FILENO, text.data() + written, text.size() - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno == EPIPE) {
      return;
    } else if (errno != EINTR) {
      throw TUnusable(std::string("standard output cannot be written: ") + std::strerror(errno));
    }
  }
}

TMachine ChooseMachine(const TOptions& options) {
  if (options.machine) return ReadCapturedMachine(*options.machine);
  return MakeThisMachine(options.edidSource);
}

std::string MakeSchemaDocument(ESchemaFormat format) {
  switch (format) {
    case ESchemaFormat::kMof:
      return MakeSchemaMof();
    case ESchemaFormat::kJsonSchema:
      return MakeJsonSchema();
    case ESchemaFormat::kText:
      break;
  }
  return MakeSchemaText();
}

std::string MakeReport(EFormat format, const TAnswer& answer, const TEdidOrigin& origin) {
  switch (format) {
    case EFormat::kJson:
      return MakeJsonReport(answer);
    case EFormat::kMof:
      return MakeMofReport(answer);
    case EFormat::kHtml:
      return MakeHtmlReport(answer, origin);
    case EFormat::kText:
      break;
  }
  return MakeTextReport(answer, origin);
}

int Run(const TOptions& options) {
  if (options.machine) DropPrivileges(true);  // what others captured is read with no more than it takes
  const TMachine machine = ChooseMachine(options);
  const auto showLog = [&](const TLogEntry& entry) {
    if (entry.severity > options.logLevel) return;
    std::cerr << GetSeverityName(entry.severity) << ": " << ToPrintable(entry.message) << '\n';
  };
  const TAnswer answer = Collect(machine, options.plugin.value_or(FindPlugin()), options.requests, showLog);
  DropPrivileges(false);
  const std::string biosFailure = machine.getBiosFailure();
  if (!biosFailure.empty()) std::cerr << "displayinfo: " << biosFailure << '\n';
  WriteAnswer(MakeReport(options.format, answer, machine.edidOrigin));
  return kDone;
}

}  // namespace

int main(int argumentCount, char** arguments) {
  std::signal(SIGPIPE, SIG_IGN);  // a closed pipe shows in write() instead
  const TCommandLine line = ParseCommandLine(argumentCount, arguments);
  if (line.exitStatus) return *line.exitStatus;
  try {
    if (!line.schemaFormat) return Run(line.options);
    WriteAnswer(MakeSchemaDocument(*line.schemaFormat));
    return kDone;
  } catch (const std::exception& error) {
    std::cerr << "displayinfo: " << ToPrintable(error.what()) << '\n';
    return kUnusable;
  }
}
