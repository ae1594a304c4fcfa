#include "command/report/device_rows.h"

#include <algorithm>
#include <utility>

#include "command/base/text_encoding.h"
#include "command/report/monitor_facts.h"

namespace {

std::string PowerStates(const TInstanceView& monitor) {
  std::vector<std::string> states;
  for (const auto& [property, state] : {std::pair{"DPMSStandby", "standby"}, std::pair{"DPMSSuspend", "suspend"},
                                        std::pair{"DPMSActiveOff", "active off"}}) {
    if (monitor.Text(property) == "true") states.emplace_back(state);
  }
  return states.empty() ? "none" : Join(states);
}

/// The video memory in MiB, or in bytes if it is not a whole number of MiB.
std::string VideoMemory(const TInstanceView& controller) {
  constexpr unsigned int mebibyte = 1024 * 1024;  // bytes
  const unsigned int bytes = controller.Number("VideoRamSize");
  if (bytes == 0 || bytes % mebibyte != 0) return controller.TextWithUnit("VideoRamSize");
  return std::to_string(bytes / mebibyte) + " MiB";
}

/// The text followed by the words; nothing if the text is empty.
std::string Extend(const std::string& text, const char* words) { return text.empty() ? text : text + words; }

std::string ConfiguredMode(const TInstanceView& head) {
  return Join({head.Size("CurrentHorizontalResolution", "CurrentVerticalResolution"),
               Extend(head.TextWithUnit("CurrentBitsPerPixel"), " per pixel")});
}

/// The plug-in's instance of a monitor, and the facts about it as texts.
struct TMonitorParts {
  const TInstanceView* instance;  // null if the answer does not have the monitor
  TMonitorFacts facts;
  std::string notListed, cure, connector, source;

  std::string Text(const char* name) const { return instance == nullptr ? std::string() : instance->Text(name); }
};

// A label, and how its text is made from what is known of the device.
template <typename T>
struct TRow {
  const char* label;
  std::string (*text)(const T&);
  ERowPlace place = ERowPlace::kPlain;
};

const TRow<TInstanceView> kControllerRows[] = {
    {"Display id", [](const TInstanceView& i) { return i.Text("DisplayId"); }},
    {"Chip", [](const TInstanceView& i) { return i.Text("VideoProcessor"); }},
    {"DAC", [](const TInstanceView& i) { return i.Text("DACType"); }},
    {"Video memory", VideoMemory},
};

const TRow<TInstanceView> kHeadRows[] = {
    {"Configured mode", ConfiguredMode},
    {"Monitor model", [](const TInstanceView& i) { return i.Text("MonitorString"); }},
};

// In the order in which people look for them.
const TRow<TMonitorParts> kMonitorRows[] = {
    {"Not listed", [](const TMonitorParts& m) { return m.notListed; }, ERowPlace::kProblem},
    {"What helps", [](const TMonitorParts& m) { return m.cure; }, ERowPlace::kProblem},
    {"Largest mode", [](const TMonitorParts& m) { return m.facts.largestMode; }, ERowPlace::kTop},
    {"Highest rate", [](const TMonitorParts& m) { return m.facts.highestRate; }},
    {"Picture",
     [](const TMonitorParts& m) {
       return Join({m.facts.size, m.facts.diagonal});
     },
     ERowPlace::kTop},
    {"Connector", [](const TMonitorParts& m) { return m.connector; }, ERowPlace::kTop},
    {"Serial number", [](const TMonitorParts& m) { return m.facts.serialNumber; }, ERowPlace::kTop},
    {"Preferred mode", [](const TMonitorParts& m) { return m.facts.preferredMode; }},
    {"HDR", [](const TMonitorParts& m) { return m.facts.hdr; }},
    {"Variable refresh", [](const TMonitorParts& m) { return m.facts.variableRate; }},
    {"Input", [](const TMonitorParts& m) { return m.facts.input; }},
    {"Link", [](const TMonitorParts& m) { return m.facts.link; }},
    {"Sound", [](const TMonitorParts& m) { return m.facts.sound; }},
    {"Manufacturer", [](const TMonitorParts& m) { return m.facts.GetMaker(); }},
    {"Product code", [](const TMonitorParts& m) { return m.facts.productCode; }},
    {"Manufactured", [](const TMonitorParts& m) { return m.facts.made; }},
    {"Line rate", [](const TMonitorParts& m) { return m.facts.lineRate; }, ERowPlace::kFolded},
    {"Field rate", [](const TMonitorParts& m) { return m.facts.fieldRate; }, ERowPlace::kFolded},
    {"Pixel clock", [](const TMonitorParts& m) { return m.facts.pixelClock; }, ERowPlace::kFolded},
    {"Gamma", [](const TMonitorParts& m) { return m.Text("Gamma"); }, ERowPlace::kFolded},
    {"Power saving", [](const TMonitorParts& m) { return m.instance == nullptr ? "" : PowerStates(*m.instance); },
     ERowPlace::kFolded},
    {"Digital interface", [](const TMonitorParts& m) { return m.Text("SupportedDigitalInterface"); },
     ERowPlace::kFolded},
    {"EDID version", [](const TMonitorParts& m) { return m.Text("EDIDVersion"); }, ERowPlace::kFolded},
    {"EDID read from", [](const TMonitorParts& m) { return m.source; }, ERowPlace::kFolded},
};

void AddRow(std::vector<TOutputRow>& rows, const char* label, const std::string& text,
            ERowPlace place = ERowPlace::kPlain) {
  if (!text.empty()) rows.push_back({label, text, place});
}

template <typename T, std::size_t count>
std::vector<TOutputRow> MakeRows(const TRow<T> (&sources)[count], const T& device) {
  std::vector<TOutputRow> rows;
  for (const TRow<T>& source : sources) AddRow(rows, source.label, source.text(device), source.place);
  return rows;
}

std::vector<TOutputRow> DescribeOutput(const TAnswer& answer, const TOutput& output, TMonitorParts parts) {
  parts.connector = ToPrintable(output.path.empty() ? output.connector : output.connector + ", " + output.path);
  parts.source = GetEdidSource(answer, output);
  std::vector<TOutputRow> rows = DescribeProblems(output);
  for (TOutputRow& row : MakeRows(kMonitorRows, parts)) rows.push_back(std::move(row));
  const auto& facts = output.facts;
  const bool hasNumber = facts && facts->isVersion1 && facts->serialNumber;
  const std::string number = hasNumber ? std::to_string(*facts->serialNumber) : std::string();
  if (number != parts.facts.serialNumber) AddRow(rows, "Serial in header", number, ERowPlace::kFolded);
  return rows;
}

}  // namespace

std::vector<TOutputRow> DescribeController(const TInstanceView& controller) {
  return MakeRows(kControllerRows, controller);
}

std::vector<TOutputRow> DescribeHead(const TInstanceView& head) { return MakeRows(kHeadRows, head); }

std::string NameMonitor(const TAnswer& answer, const TMonitorView& view) {
  const TOutput* const output = FindOutput(answer, view.id);
  return DescribeMonitor(output, view.monitor ? &*view.monitor : nullptr, TMakerNames()).model;
}

std::string NameMonitor(const TOutput& output) { return DescribeMonitor(&output, nullptr, TMakerNames()).model; }

std::string SuggestMakerNames(const TAnswer& answer, const TMakerNames& makers) {
  const bool hasMaker = std::any_of(answer.outputs.begin(), answer.outputs.end(),
                                    [](const TOutput& output) { return output.facts && !output.facts->maker.empty(); });
  return hasMaker && makers.IsListMissing() ? "The names of makers come with the package hwdata; install it" : "";
}

std::vector<TOutputRow> DescribeEdid(const TOutput& output) {
  return MakeRows(kMonitorRows, {nullptr, DescribeMonitor(&output, nullptr, TMakerNames()), "", "", "", ""});
}

std::vector<TOutputRow> DescribeMonitor(const TAnswer& answer, const TMonitorView& view, const TMakerNames& makers) {
  const TOutput* const output = FindOutput(answer, view.id);
  const TInstanceView* const instance = view.monitor ? &*view.monitor : nullptr;
  const TMonitorFacts facts = DescribeMonitor(output, instance, makers);
  std::vector<TOutputRow> rows;
  if (instance == nullptr) {
    AddRow(rows, "Preferred mode", facts.preferredMode);
    return rows;
  }
  if (output == nullptr) return MakeRows(kMonitorRows, {instance, facts, "", "", "", ""});
  return DescribeOutput(answer, *output, {instance, facts, "", "", "", ""});
}

std::vector<TOutputRow> DescribeUnlisted(const TAnswer& answer, const TOutput& output, const TMakerNames& makers) {
  return DescribeOutput(answer, output,
                        {nullptr, DescribeMonitor(&output, nullptr, makers), output.reason, output.cure, "", ""});
}
