#include "command/report/device_rows.h"

#include "command/report/monitor_facts.h"

namespace {

std::string PowerStates(const TInstanceView& monitor) {
  std::vector<std::string> states;
  for (const auto& [property, state] : {std::pair{"DPMSStandby", "standby"}, std::pair{"DPMSSuspend", "suspend"},
                                        std::pair{"DPMSActiveOff", "active off"}}) {
    if (monitor.Text(property) == "true") states.emplace_back(state);
  }
  return states.empty() ? "none" : JoinTexts(states);
}

/// In MiB, or in bytes where these are not whole MiB.
std::string VideoMemory(const TInstanceView& controller) {
  constexpr unsigned int mebibyte = 1024 * 1024;  // bytes
  const unsigned int bytes = controller.Number("VideoRamSize");
  if (bytes == 0 || bytes % mebibyte != 0) return controller.TextWithUnit("VideoRamSize");
  return std::to_string(bytes / mebibyte) + " MiB";
}

/// The text and the words after it, or nothing.
std::string Extend(const std::string& text, const char* words) { return text.empty() ? text : text + words; }

std::string ConfiguredMode(const TInstanceView& head) {
  return JoinTexts({head.Size("CurrentHorizontalResolution", "CurrentVerticalResolution"),
                    Extend(head.TextWithUnit("CurrentBitsPerPixel"), " per pixel")});
}

/// The plug-in's instance of a monitor, and the facts that people read.
struct TMonitorParts {
  TInstanceView instance;
  TMonitorFacts facts;
};

// A label, and how its text comes out of what is known of the device.
template <typename T>
struct TRow {
  const char* label;
  std::string (*text)(const T&);
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

const TRow<TMonitorParts> kMonitorRows[] = {
    {"Manufacturer", [](const TMonitorParts& m) { return m.facts.GetMaker(); }},
    {"Serial number", [](const TMonitorParts& m) { return m.facts.serialNumber; }},
    {"Product code", [](const TMonitorParts& m) { return m.facts.productCode; }},
    {"Manufactured", [](const TMonitorParts& m) { return m.facts.made; }},
    {"Picture",
     [](const TMonitorParts& m) {
       return JoinTexts({m.facts.size, m.facts.diagonal});
     }},
    {"Input", [](const TMonitorParts& m) { return m.facts.input; }},
    {"Line rate", [](const TMonitorParts& m) { return m.facts.lineRate; }},
    {"Field rate", [](const TMonitorParts& m) { return m.facts.fieldRate; }},
    {"Pixel clock", [](const TMonitorParts& m) { return m.facts.pixelClock; }},
    {"Gamma", [](const TMonitorParts& m) { return m.instance.Text("Gamma"); }},
    {"Power saving", [](const TMonitorParts& m) { return PowerStates(m.instance); }},
    {"Digital interface", [](const TMonitorParts& m) { return m.instance.Text("SupportedDigitalInterface"); }},
    {"EDID version", [](const TMonitorParts& m) { return m.instance.Text("EDIDVersion"); }},
};

void AddRow(std::vector<TOutputRow>& rows, const char* label, const std::string& text) {
  if (!text.empty()) rows.push_back({label, text});
}

template <typename T, std::size_t count>
std::vector<TOutputRow> MakeRows(const TRow<T> (&sources)[count], const T& device) {
  std::vector<TOutputRow> rows;
  for (const TRow<T>& source : sources) AddRow(rows, source.label, source.text(device));
  return rows;
}

}  // namespace

std::vector<TOutputRow> DescribeController(const TInstanceView& controller) {
  return MakeRows(kControllerRows, controller);
}

std::vector<TOutputRow> DescribeHead(const TInstanceView& head) { return MakeRows(kHeadRows, head); }

std::vector<TOutputRow> DescribeMonitor(const TAnswer& answer, const TMonitorView& view, const TMakerNames& makers) {
  const TOutput* const output = FindOutput(answer, view.id);
  const TMonitorFacts facts = DescribeMonitor(output, view.monitor ? &*view.monitor : nullptr, makers);
  std::vector<TOutputRow> rows;
  if (view.monitor) {
    rows = MakeRows(kMonitorRows, {*view.monitor, facts});
    AddRow(rows, "EDID read from", GetEdidSource(*view.monitor, answer));
    if (output != nullptr) {
      for (const auto& [label, text] : DescribeHeader(answer, *output)) {
        if (text != facts.serialNumber) AddRow(rows, label, text);  // the serial number is not said twice
      }
    }
  }
  AddRow(rows, "Preferred mode", facts.preferredMode);
  return rows;
}
