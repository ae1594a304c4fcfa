#include "command/report/text_report.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <vector>

#include "command/report/answer_identity.h"
#include "command/report/empty_classes.h"
#include "command/report/monitor_facts.h"
#include "command/report/output_view.h"
#include "command/report/request_view.h"

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

// The rows under a device: a label, and how its text comes out of what is known of it. Rows without text are left out.
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

/// Width, height and rate of a mode, which sort by the size of the picture.
struct TModeOrder {
  explicit TModeOrder(const TInstanceView& mode)
      : width(mode.Number("HorizontalResolution")),
        height(mode.Number("VerticalResolution")),
        rate(mode.Number("RefreshRate")) {}

  bool operator>(const TModeOrder& other) const {
    const auto key = [](const TModeOrder& mode) {
      return std::tuple(std::uint64_t{mode.width} * mode.height, mode.width, mode.rate);
    };
    return key(*this) > key(other);
  }

  unsigned int width;
  unsigned int height;
  unsigned int rate;
};

/// The plug-in has rates in whole Hz.
bool IsPreferred(const TInstanceView& mode, const TOutput* output) {
  if (output == nullptr || !output->facts || !output->facts->preferredMode) return false;
  const TPreferredMode& preferred = *output->facts->preferredMode;
  const TModeOrder order(mode);
  return order.width == preferred.width && order.height == preferred.height &&
         std::lround(preferred.refresh) == static_cast<long>(order.rate);
}

// What marks a mode in the list of modes, and what the mark says.
constexpr const char* kConfiguredMark = "*";
constexpr const char* kConfiguredLegend = "* the resolution that the configuration names";
constexpr const char* kPreferredMark = "+";
constexpr const char* kPreferredLegend = "+ the mode that the monitor prefers";

/// The text of one request.
class TRequestReport {
 public:
  TRequestReport(const TAnswer& answer, const TRequestAnswer& request, const TMakerNames& makers,
                 const TTextLines& lines)
      : m_answer(answer), m_request(request), m_makers(makers), m_lines(lines), m_view(request) {}

  std::string Make() const {
    std::string text;
    if (m_view.Asks(EPart::kVideo)) text += MakeVideo() + MakeComplaints(EPart::kVideo);
    if (m_view.Asks(EPart::kMonitors)) {
      text += (text.empty() ? "" : "\n") + MakeMonitors() + MakeComplaints(EPart::kMonitors);
    }
    return text;
  }

 private:
  std::string MakeVideo() const {
    std::string text = "Video controllers\n";
    if (!m_answer.xconfigOrigin.empty()) text += m_lines.Wrap("  X configuration ", m_answer.xconfigOrigin);
    for (const auto& [controller, heads] : m_view.GetControllers()) {
      text += MakeTitle("  ", controller.Text("DeviceID"), controller.Text("Name"));
      text += MakeRows("    ", kControllerRows, controller);
      for (const TInstanceView& head : heads) text += MakeHead("    ", head);
    }
    for (const TInstanceView& head : m_view.GetLooseHeads()) text += MakeHead("  ", head);
    if (m_view.GetControllers().empty() && m_view.GetLooseHeads().empty()) {
      text += MakeLinks(kHeadOfVideoControllerClass, "Links of heads to controllers: ");
    }
    return text + MakeGaps(EPart::kVideo);
  }

  /// How many there are, for a request that asked for links only.
  std::string MakeLinks(const char* className, const char* label) const {
    const std::size_t count = m_view.Select(className).size();
    return count == 0 ? "" : m_lines.Wrap("  ", label + std::to_string(count));
  }

  /// What is not among the answer, and why.
  std::string MakeGaps(EPart part) const {
    std::string text;
    bool isEmpty = !HasInstances(m_request, part);
    for (const std::string& sentence : ExplainGaps(m_answer, m_request, part)) {
      text += m_lines.Wrap(isEmpty ? "  None: " : "  ", sentence + ".");
      isEmpty = false;  // only the first sentence is the cause
    }
    return text;
  }

  std::string MakeHead(const std::string& indent, const TInstanceView& head) const {
    return MakeTitle(indent, "Head " + head.Text("HeadNumber"), head.Text("DeviceID")) +
           MakeRows(indent + "  ", kHeadRows, head);
  }

  std::string MakeMonitors() const {
    std::string text = "Monitors\n";
    for (const TMonitorView& monitor : m_view.GetMonitors()) text += MakeMonitor(monitor);
    if (m_view.GetMonitors().empty()) text += MakeLinks(kMonitorSettingClass, "Links of monitors to modes: ");
    return text + MakeGaps(EPart::kMonitors);
  }

  std::string MakeMonitor(const TMonitorView& view) const {
    const TOutput* const output = FindOutput(m_answer, view.id);
    std::string text = MakeTitle("  ", view.id, view.monitor ? view.monitor->Text("Name") : "");
    const TMonitorFacts facts = DescribeMonitor(output, view.monitor ? &*view.monitor : nullptr, m_makers);
    if (view.monitor) {
      text += MakeRows("    ", kMonitorRows, TMonitorParts{*view.monitor, facts});
      text += MakeRow("EDID read from", GetEdidSource(*view.monitor, m_answer));
      if (output != nullptr) text += MakeHeader(*output, facts);
    }
    return text + MakeRow("Preferred mode", facts.preferredMode) + MakeModes(view.modes, output);
  }

  /// A serial number that the monitor's facts have already is not repeated.
  std::string MakeHeader(const TOutput& output, const TMonitorFacts& facts) const {
    std::string text;
    for (const auto& [label, content] : DescribeHeader(m_answer, output)) {
      if (content != facts.serialNumber) text += MakeRow(label, content);
    }
    return text;
  }

  std::string MakeModes(TInstances modes, const TOutput* output) const {
    std::stable_sort(modes.begin(), modes.end(), [](const TInstanceView& left, const TInstanceView& right) {
      return TModeOrder(left) > TModeOrder(right);
    });
    std::vector<std::string> texts;
    bool hasConfigured = false;
    bool hasPreferred = false;
    for (const TInstanceView& mode : modes) {
      const bool isConfigured = m_view.IsConfigured(mode);
      const bool isPreferred = IsPreferred(mode, output);
      hasConfigured = hasConfigured || isConfigured;
      hasPreferred = hasPreferred || isPreferred;
      texts.push_back(mode.Text("HorizontalResolution") + "x" + mode.Text("VerticalResolution") + "@" +
                      mode.Text("RefreshRate") + mode.Unit("RefreshRate") + (isConfigured ? kConfiguredMark : "") +
                      (isPreferred ? kPreferredMark : ""));
    }
    return MakeRow("Modes", JoinTexts(texts)) + MakeRow("", hasConfigured ? kConfiguredLegend : "") +
           MakeRow("", hasPreferred ? kPreferredLegend : "");
  }

  std::string MakeComplaints(EPart part) const {
    std::string text;
    for (const std::string& complaint : m_view.GetComplaints(part)) text += m_lines.Wrap("    ", complaint);
    return text.empty() ? text : "  The plug-in says:\n" + text;
  }

  std::string MakeTitle(const std::string& indent, const std::string& id, const std::string& name) const {
    return m_lines.Wrap(indent, name.empty() || name == id ? id : id + ": " + name);
  }

  template <typename T, std::size_t count>
  std::string MakeRows(const std::string& indent, const TRow<T> (&rows)[count], const T& device) const {
    std::string text;
    for (const TRow<T>& row : rows) text += m_lines.MakeRow(indent, row.label, row.text(device));
    return text;
  }

  /// Of a monitor.
  std::string MakeRow(const char* label, const std::string& text) const { return m_lines.MakeRow("    ", label, text); }

  const TAnswer& m_answer;
  const TRequestAnswer& m_request;
  const TMakerNames& m_makers;
  const TTextLines& m_lines;
  const TRequestView m_view;
};

}  // namespace

std::string MakeTextReport(const TAnswer& answer, const TMakerNames& makers, std::size_t width) {
  const TTextLines lines(width);
  std::string text =
      lines.Wrap("", ShowSystemName(answer.identity)) + lines.Wrap("", DescribeCollection(answer.identity));
  for (const TRequestAnswer& request : answer.requests) {
    text += "\n";
    if (answer.requests.size() > 1) text += lines.Wrap("Request: ", JoinTexts(request.classes));
    text += TRequestReport(answer, request, makers, lines).Make();
  }
  return text;
}
