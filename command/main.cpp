// displayinfo: shows what the plug-in says of a machine, or of many; captures this machine; compares machines; answers
// CIM clients; prints the classes.
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <ctime>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>

#include "command/base/privileges.h"
#include "command/base/remark.h"
#include "command/base/standard_output.h"
#include "command/base/text_encoding.h"
#include "command/base/time_zone.h"
#include "command/base/unusable.h"
#include "command/base/utc_time.h"
#include "command/capture/capture.h"
#include "command/cim_server/serve.h"
#include "command/collection/budgets.h"
#include "command/collection/collection.h"
#include "command/collection/plugin_library.h"
#include "command/collection/plugin_texts.h"
#include "command/collection/worker.h"
#include "command/compare/compare.h"
#include "command/fleet/fleet.h"
#include "command/machine/captured_machine.h"
#include "command/machine/machine.h"
#include "command/machine/memory_files.h"
#include "command/machine/this_machine.h"
#include "command/options.h"
#include "command/report/answer_view.h"
#include "command/report/csv_report.h"
#include "command/report/html/fleet_page.h"
#include "command/report/html/html_report.h"
#include "command/report/json_report.h"
#include "command/report/machine_summary.h"
#include "command/report/maker_names.h"
#include "command/report/mof_report.h"
#include "command/report/schema_document.h"
#include "command/report/text_report.h"
#include "command/watch.h"
#include "embedded_host/schema.h"

namespace {

constexpr int kDone = 0;
constexpr int kUnusable = 1;
constexpr int kNotCompared = 2;  // for compare, whose status 1 means that there are differences

TMachine ReadNamedMachine(const std::string& name) {
  return name == "-" ? ReadStandardInput() : ReadCapturedMachine(name);
}

TMachine ChooseMachine(const TOptions& options) {
  if (!options.machines.empty()) return ReadNamedMachine(options.machines.front());
  return MakeThisMachine(options.edidSource, options.xconfigSource);
}

/// The named plug-in, or else the usual one.
std::filesystem::path ChoosePlugin(const TOptions& options) { return options.plugin ? *options.plugin : FindPlugin(); }

/// True if one terminal shows the text report right below standard error, so that nothing needs to be said twice.
bool IsReportBelow(const TOptions& options) {
  return options.format.value_or(EFormat::kText) == EFormat::kText && isatty(STDOUT_FILENO) == 1 &&
         isatty(STDERR_FILENO) == 1;
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

ELogPart GetLogPart(const TOptions& options) { return options.hasLog ? ELogPart::kKept : ELogPart::kLeftOut; }

/// Limits the time of a collection while the result lives. `captured`: the machine; nothing: this machine.
std::optional<TTimeLimit> LimitTime(std::chrono::seconds timeout, const std::optional<std::string>& captured) {
  const std::string name = captured ? ToMessage(*captured) + ":" : "this machine";
  return std::optional<TTimeLimit>(std::in_place, timeout,
                                   "displayinfo: " + name + " " + DescribeTimeout(timeout) + "\n");
}

/// Says how to use what was captured.
std::string DescribeCapture(const TCaptureOptions& capture) {
  const std::string asked = capture.machine ? *capture.machine : "this machine";
  const std::string target = capture.target.string();
  return (target == "-" ? "captured; saved as FILE.json, displayinfo --machine FILE.json"
                        : "captured; displayinfo --machine " + target) +
         " answers as " + asked + " does" + (capture.hasConfiguration ? "" : " without its X configuration") +
         (capture.isAnonymous ? ", but for what was replaced" : "");
}

/// Shows what is missing in the capture.
void ShowMissing(const TMachine& machine) {
  ShowRemark(machine.getBiosFailure());
  for (const auto& [unit, damage] : machine.damagedEdids) ShowRemark(Describe(damage, "it is not captured"));
}

/// Called in the process that captures, which reads the machine and writes nothing.
TMachineLine CaptureApart(const TOptions& options, const TCaptureOptions& capture) {
  if (capture.machine) DropPrivileges(true);
  OnThrowingPlugin([](const std::string& reason) { TWorker::EndWith({reason, true}); });
  std::optional<TMachine> machine;
  TMachineLine line = {"", true, true};
  try {
    line.text = WithinMemory([&] {
      machine = capture.machine ? ReadNamedMachine(*capture.machine)
                                : MakeThisMachine(options.edidSource, options.xconfigSource);
      if (!capture.hasConfiguration)
        machine->host.files = std::make_shared<TMemoryFiles>(std::map<std::string, std::string>());
      return Pack(MakeCapture(*machine, ChoosePlugin(options), capture.target, capture.isAnonymous,
                              [] { DropPrivileges(true); }));
    });
    line.hasFailed = false;
  } catch (const std::exception& error) {
    line.text = error.what();
  }
  if (machine) ShowMissing(*machine);  // it may be the reason
  return line;
}

/// Another process, without rights to write, reads the machine, which a stranger may have captured. This one keeps its
/// rights, so that it can write where the user may, and only writes what it is given.
int RunCapture(const TOptions& options, const TCaptureOptions& capture) {
  std::optional<TTimeLimit> limit = LimitTime(options.timeout, capture.machine);
  TWorker worker([&](const std::string&) { return CaptureApart(options, capture); }, {}, options.timeout);
  if (!worker.Give({0, ""})) throw TUnusable("the process that reads the machine cannot be reached; try again");
  const TMachineLine line = worker.WaitForLine();
  if (line.hasFailed) throw TUnusable(line.text);
  if (capture.target == "-") limit.reset();  // the reader may take its time
  const TCapture captured = UnpackCapture(line.text);
  WriteCapture(captured, capture.target);
  for (const std::string& remark : captured.remarks) ShowRemark(remark);
  ShowRemark(DescribeCapture(capture));
  return kDone;
}

int RunComparison(const TOptions& options, TCompareOptions compare) {
  compare.plugin = ChoosePlugin(options);
  compare.timeout = options.timeout;
  return Compare(compare);
}

int RunWatch(const TOptions& options) {
  Watch({options.timeout, ChoosePlugin(options)});
  return kDone;
}

int RunServer(const TOptions& options, TServeOptions serve) {
  serve.edidSource = options.edidSource;
  serve.xconfigSource = options.xconfigSource;
  serve.timeout = options.timeout;
  serve.plugin = ChoosePlugin(options);
  Serve(serve);
  return kDone;
}

/// Summarizes each machine in its worker, and writes the summary by `write`.
TFleetAnswer SummarizeEach(std::string (*write)(const TMachineSummary&)) {
  TFleetAnswer answers;
  answers.makeLines = [write, makers = TMakerNames(FindMakerList())](const std::string& machine,
                                                                     const TAnswer& answer) {
    return write(Summarize(machine, answer, makers));
  };
  answers.makeErrorLine = [write](const std::string& machine, const std::string& reason) {
    return write(SummarizeFailure(machine, reason));
  };
  return answers;
}

TFleetAnswer MakeFleetCsv() {
  TFleetAnswer answers = SummarizeEach(MakeCsvRows);
  answers.head = MakeCsvHead();
  return answers;
}

TFleetAnswer MakeFleetPage() {
  TFleetAnswer answers = SummarizeEach(TFleetPage::MakeLine);
  const auto page = std::make_shared<TFleetPage>();
  answers.take = [page](const std::string& lines) {
    page->Take(lines);
    return true;
  };
  answers.finish = [page](bool isWhole) {
    page->Write(WriteUtcTime(std::time(nullptr)), isWhole, WriteStandardOutput);
  };
  return answers;
}

/// How the answer for a fleet is written.
TFleetAnswer ChooseFleetAnswer(const TOptions& options) {
  switch (options.format.value_or(EFormat::kJson)) {
    case EFormat::kRows:
      return {MakeMachineRows, MakeErrorLine};
    case EFormat::kCsv:
      return MakeFleetCsv();
    case EFormat::kHtml:
      return MakeFleetPage();
    default:
      break;
  }
  const auto makeLine = [log = GetLogPart(options)](const std::string& machine, const TAnswer& answer) {
    return MakeMachineLine(machine, answer, log);
  };
  return {makeLine, MakeErrorLine};
}

unsigned int CountJobs(const TOptions& options) {
  return options.jobs ? *options.jobs : std::clamp(std::thread::hardware_concurrency(), 1U, kMaxJobs);
}

int RunFleet(const TOptions& options) {
  DropPrivileges(true);
  return CollectFleet({options.machineList ? TMachineList::Open(*options.machineList) : TMachineList(options.machines),
                       options.resume ? TFinishedMachines(*options.resume) : TFinishedMachines(), options.requests,
                       ChoosePlugin(options), CountJobs(options), options.timeout, options.logLevel,
                       ChooseFleetAnswer(options)});
}

/// The machine's name in rows and tables.
std::string GetMachineName(const TOptions& options, const TMachine& machine) {
  return options.machines.empty() ? machine.host.systemName : options.machines.front();
}

std::string MakeReport(const TOptions& options, const TMachine& machine, const TAnswer& answer) {
  switch (options.format.value_or(EFormat::kText)) {
    case EFormat::kJson:
      return MakeJsonReport(answer, GetLogPart(options));
    case EFormat::kRows:
      return MakeRows(GetMachineName(options, machine), answer);
    case EFormat::kCsv:
      return MakeCsvHead() +
             MakeCsvRows(Summarize(GetMachineName(options, machine), answer, TMakerNames(FindMakerList())));
    case EFormat::kMof:
      return MakeMofReport(answer);
    case EFormat::kHtml:
      return MakeHtmlReport(answer, TMakerNames(FindMakerList()));
    case EFormat::kText:
      break;
  }
  return MakeTextReport(answer, TMakerNames(FindMakerList()), ChooseTextWidth(GetTerminalWidth()));
}

std::string Answer(const TOptions& options) {
  const TMachine machine = ChooseMachine(options);
  std::set<std::string> shown;
  bool isInReport = false;
  const auto showLog = [&](const TLogEntry& entry) {
    // The report already has what the plug-in says while it serves a class.
    isInReport = isInReport || (IsReportBelow(options) && entry.message.find(kServesClass) != std::string::npos);
    if (isInReport && !options.logLevel) return;
    if (entry.severity > options.logLevel.value_or(NQRXZELT20::ILogger::kStatus)) return;
    // The plug-in repeats messages for each class. With --log-level, all of them are shown.
    if (!options.logLevel && !shown.insert(entry.message).second) return;
    std::cerr << GetSeverityName(entry.severity) << ": " << ToPrintable(entry.message) << '\n';
  };
  // Never destroyed: the process ends soon, and that is faster.
  static const TAnswer& answer = *new TAnswer(Collect(machine, ChoosePlugin(options), options.requests, showLog));
  DropPrivileges(true);
  if (!IsReportBelow(options) || !answer.outputs.empty()) ShowRemark(machine.getBiosFailure());
  const std::vector<std::string> remarks = IsReportBelow(options) ? answer.notes : ListRemarks(machine, answer);
  for (const std::string& remark : remarks) ShowRemark(remark);
  return MakeReport(options, machine, answer);
}

int Run(const TOptions& options) {
  if (!options.machines.empty()) DropPrivileges(true);  // captured machines only have to be read
  std::optional<TTimeLimit> limit =
      LimitTime(options.timeout, options.machines.empty() ? std::nullopt : std::optional(options.machines.front()));
  const std::string report = WithinMemory([&] { return Answer(options); });
  limit.reset();  // the reader of the answer may take its time
  DropPrivileges(false);
  WriteStandardOutput(report);
  return kDone;
}

int RunSubcommand(const TCommandLine& line) {
  LoadTimeZone();
  switch (line.subcommand) {
    case ESubcommand::kCapture:
      return RunCapture(line.options, line.capture);
    case ESubcommand::kCompare:
      return RunComparison(line.options, line.compare);
    case ESubcommand::kWatch:
      return RunWatch(line.options);
    case ESubcommand::kServe:
      return RunServer(line.options, line.serve);
    case ESubcommand::kSchema:
      WriteStandardOutput(MakeSchemaDocument(line.schemaFormat));
      return kDone;
    case ESubcommand::kNone:
      break;
  }
  return line.options.IsFleet() ? RunFleet(line.options) : Run(line.options);
}

}  // namespace

int main(int argumentCount, char** arguments) {
  KeepStandardDescriptors();
  // write() then reports a closed pipe, or a file that may not grow (ulimit -f).
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  int failed = kUnusable;
  try {
    const TCommandLine line = ParseCommandLine(argumentCount, arguments);
    if (line.exitStatus) return *line.exitStatus;
    if (line.subcommand == ESubcommand::kCompare) failed = kNotCompared;
    return RunSubcommand(line);
  } catch (const std::exception& error) {
    std::cerr << "displayinfo: " << ToMessage(error.what()) << '\n';
    return failed;
  }
}
