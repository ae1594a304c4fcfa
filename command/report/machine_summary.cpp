#include "command/report/machine_summary.h"

#include <algorithm>
#include <utility>

#include "command/base/text_encoding.h"
#include "command/report/output_view.h"
#include "command/report/request_view.h"

namespace {

constexpr std::size_t kMaxColumns = 200;
constexpr std::size_t kMaxTexts = 16;

void Shorten(std::string& text) {
  if (CountColumns(text) > kMaxColumns) text.replace(GetLength(text, kMaxColumns - 1), std::string::npos, "\u2026");
}

void Shorten(std::vector<std::string>& texts) {
  if (texts.size() > kMaxTexts) {
    const std::size_t leftOut = texts.size() - (kMaxTexts - 1);
    texts.resize(kMaxTexts - 1);
    texts.push_back("and " + std::to_string(leftOut) + " more");
  }
  for (std::string& text : texts) Shorten(text);
}

std::string NameController(const TInstanceView& controller) {
  const std::string name = controller.Text("Name");
  return name.empty() ? controller.Text("DeviceID") : name;
}

typedef std::vector<TRequestView> TViews;

std::vector<std::string> ListControllers(const TViews& views) {
  std::vector<std::string> names;
  for (const TRequestView& view : views) {
    for (const TControllerView& controller : view.GetControllers()) {
      names.push_back(NameController(controller.controller));
    }
  }
  return names;
}

/// The plug-in's instance of the monitor; null when no request asked for it.
const TInstanceView* FindMonitor(const TViews& views, const std::string& id) {
  for (const TRequestView& view : views) {
    for (const TMonitorView& monitor : view.GetMonitors()) {
      if (monitor.id == id && monitor.monitor) return &*monitor.monitor;
    }
  }
  return nullptr;
}

TMonitorSummary SummarizeMonitor(const TOutput& output, const TViews& views, const TMakerNames& makers) {
  TMonitorSummary monitor;
  monitor.id = *output.deviceId;
  monitor.connector = ToPrintable(output.connector);
  Shorten(monitor.connector);
  monitor.facts = DescribeMonitor(&output, FindMonitor(views, monitor.id), makers);
  if (!output.facts) return monitor;
  if (output.facts->diagonalInches) monitor.diagonal = WriteDiagonal(*output.facts->diagonalInches);
  if (output.facts->made) {
    monitor.year = output.facts->made->year;
    monitor.week = output.facts->made->week.value_or(0);
  }
  return monitor;
}

bool AreAlike(const TEdidFacts& left, const TEdidFacts& right) {
  return left.maker == right.maker && left.productCode == right.productCode && left.name == right.name &&
         left.serialNumber == right.serialNumber && left.serialText == right.serialText;
}

/// Says which of the monitors that are reported has the same model and serial number as an earlier one.
void FindTwins(const std::vector<const TOutput*>& monitors, std::vector<std::string>& problems) {
  for (auto later = monitors.begin(); later != monitors.end(); ++later) {
    const auto twin = std::find_if(monitors.begin(), later,
                                   [&](const TOutput* earlier) { return AreAlike(*earlier->facts, *(*later)->facts); });
    if (twin == later) continue;
    const bool hasSerial = (*later)->facts->serialNumber || !(*later)->facts->serialText.empty();
    problems.push_back(*(*twin)->deviceId + " and " + *(*later)->deviceId + " cannot be told apart: the same model, " +
                       (hasSerial ? "the same serial number" : "no serial number"));
  }
}

std::vector<std::string> ListProblems(const TAnswer& answer) {
  std::vector<std::string> problems = ExplainUnlisted(answer);
  std::vector<const TOutput*> monitors;
  for (const TOutput& output : answer.outputs) {
    if (!output.deviceId || !output.facts) continue;
    if (!output.facts->hasValidChecksums) {
      problems.push_back(*output.deviceId + ": the checksum of its EDID is wrong, so a byte is damaged");
    }
    monitors.push_back(&output);
  }
  FindTwins(monitors, problems);
  return problems;
}

}  // namespace

TMachineSummary Summarize(const std::string& machine, const TAnswer& answer, const TMakerNames& makers) {
  const TViews views(answer.requests.begin(), answer.requests.end());
  TMachineSummary summary;
  summary.machine = ToPrintable(machine);
  summary.systemName = ToPrintable(answer.identity.systemName);
  summary.collected = answer.identity.collected;
  summary.controllers = ListControllers(views);
  for (const TOutput& output : answer.outputs) {
    if (output.deviceId) summary.monitors.push_back(SummarizeMonitor(output, views, makers));
  }
  summary.problems = ListProblems(answer);
  if (summary.monitors.empty() && summary.problems.empty()) summary.noMonitors = ToPrintable(answer.reasons.noMonitors);
  Shorten(summary.systemName);
  Shorten(summary.controllers);
  Shorten(summary.problems);
  Shorten(summary.noMonitors);
  return summary;
}

TMachineSummary SummarizeFailure(const std::string& machine, const std::string& reason) {
  TMachineSummary summary;
  summary.machine = ToPrintable(machine);
  summary.hasAnswered = false;
  summary.problems.push_back(ToMessage(reason));
  return summary;
}
