#include "command/report/machine_summary.h"

#include <algorithm>
#include <set>
#include <utility>

#include "command/base/text_encoding.h"
#include "command/edid/identity.h"
#include "command/report/answer_view.h"

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

/// The plug-in's instance of the monitor; null if no request asked for it.
const TInstanceView* FindMonitor(const TViews& views, const std::string& id) {
  for (const TRequestView& view : views) {
    for (const TMonitorView& monitor : view.GetMonitors()) {
      if (monitor.id == id && monitor.monitor) return &*monitor.monitor;
    }
  }
  return nullptr;
}

/// The identity made of the serial number, without a connector, so that it is the same on every machine.
std::string IdentifyByNumber(const TOutput& output) {
  if (!output.facts || !output.facts->isVersion1 || !output.facts->serial) return std::string();
  return ToPrintable(Identify({*output.facts, output.edid}).text);
}

TMonitorSummary SummarizeMonitor(const TOutput& output, const TViews& views, const TMakerNames& makers) {
  TMonitorSummary monitor;
  if (output.deviceId) {
    monitor.id = ToPrintable(*output.deviceId);
  } else {
    monitor.notListed = ToPrintable(GetReason(output));
  }
  monitor.connector = ToPrintable(output.connector);
  Shorten(monitor.connector);
  monitor.identity = IdentifyByNumber(output);
  monitor.facts = DescribeMonitor(&output, output.deviceId ? FindMonitor(views, *output.deviceId) : nullptr, makers);
  if (!output.facts || !output.facts->made) return monitor;
  monitor.year = output.facts->made->year;
  monitor.week = output.facts->made->week.value_or(0);
  return monitor;
}

/// The outputs, then the monitors of the answer that belong to no output.
std::vector<TMonitorSummary> SummarizeMonitors(const TAnswer& answer, const TViews& views, const TMakerNames& makers) {
  std::vector<TMonitorSummary> monitors;
  std::set<std::string> known;
  for (const TOutput& output : answer.outputs) {
    if (output.deviceId) known.insert(*output.deviceId);
    monitors.push_back(SummarizeMonitor(output, views, makers));
  }
  for (const TRequestView& view : views) {
    for (const TMonitorView& monitor : view.GetMonitors()) {
      if (!monitor.monitor || !known.insert(monitor.id).second) continue;
      monitors.emplace_back();
      monitors.back().id = monitor.id;
      monitors.back().facts = DescribeMonitor(nullptr, &*monitor.monitor, makers);
    }
  }
  return monitors;
}

/// Says which monitors have equal EDIDs, so that only their connectors tell them apart.
void FindTwins(const std::vector<TOutput>& outputs, std::vector<std::string>& problems) {
  for (auto later = outputs.begin(); later != outputs.end(); ++later) {
    if (later->edid.empty()) continue;
    const auto twin =
        std::find_if(outputs.begin(), later, [&](const TOutput& earlier) { return earlier.edid == later->edid; });
    if (twin == later) continue;
    problems.push_back(GetName(*twin) + " and " + GetName(*later) +
                       " have equal EDIDs: only the connectors tell the monitors apart");
  }
}

std::vector<std::string> ListProblems(const TAnswer& answer) {
  std::vector<std::string> problems = ExplainUnlisted(answer);
  for (const TOutput& output : answer.outputs) {
    if (!output.deviceId || !output.facts || output.facts->hasValidChecksums) continue;
    for (const TOutputRow& problem : DescribeProblems(output)) {
      problems.push_back(ToPrintable(*output.deviceId) + ": " + problem.text.substr(0, problem.text.find_last_of('.')));
    }
  }
  FindTwins(answer.outputs, problems);
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
  summary.monitors = SummarizeMonitors(answer, views, makers);
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
