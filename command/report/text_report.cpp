#include "command/report/text_report.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "command/report/output_view.h"
#include "command/report/request_view.h"

namespace {

constexpr std::size_t kWidth = 80;       // columns
constexpr std::size_t kLabelWidth = 18;  // columns, with the blanks after the label

/// The text in lines: the first after `head`, the others indented as far. Lines break at blanks where they can; all
/// other blanks stay.
std::string Wrap(const std::string& head, std::string_view text) {
  const std::size_t indent = CountColumns(head);
  const std::size_t room = kWidth - indent;
  std::string wrapped = head;
  for (std::size_t limit = 0; (limit = GetLength(text, room)) < text.size();) {
    const std::size_t blank = text.rfind(' ', limit);
    const bool canBreak = blank != std::string_view::npos && blank > 0;
    wrapped.append(text.substr(0, canBreak ? blank : limit)).append("\n").append(indent, ' ');
    text.remove_prefix(canBreak ? blank + 1 : limit);
  }
  return wrapped.append(text).append("\n");
}

std::string MakeRow(const std::string& indent, const std::string& label, const std::string& text) {
  if (text.empty()) return std::string();
  return Wrap(indent + label + std::string(kLabelWidth - std::min(kLabelWidth, label.size()), ' '), text);
}

std::string Range(const TInstanceView& instance, const char* min, const char* max) {
  return instance.Has(min) ? instance.Text(min) + " to " + instance.TextWithUnit(max) : std::string();
}

std::string Date(const TInstanceView& monitor) {
  const std::string text = monitor.Text("ManufacturingDate");
  return text.empty() ? text : "week of " + text.substr(0, 4) + "-" + text.substr(4, 2) + "-" + text.substr(6, 2);
}

std::string PowerStates(const TInstanceView& monitor) {
  std::vector<std::string> states;
  for (const auto& [property, state] : {std::pair{"DPMSStandby", "standby"}, std::pair{"DPMSSuspend", "suspend"},
                                        std::pair{"DPMSActiveOff", "active off"}}) {
    if (monitor.Text(property) == "true") states.emplace_back(state);
  }
  return states.empty() ? "none" : JoinTexts(states);
}

std::string PictureSize(const TInstanceView& monitor) {
  const std::string size = monitor.Size("HorizontalImageSize", "VerticalImageSize");
  return size.empty() ? size : size + " " + monitor.Unit("HorizontalImageSize");
}

/// The text and the words after it, or nothing.
std::string Extend(const std::string& text, const char* words) { return text.empty() ? text : text + words; }

std::string ConfiguredMode(const TInstanceView& head) {
  return JoinTexts({head.Size("CurrentHorizontalResolution", "CurrentVerticalResolution"),
                    Extend(head.TextWithUnit("CurrentBitsPerPixel"), " per pixel")});
}

// The rows under a device: a label, and how its text comes out of the instance. Rows without text are left out.
struct TRow {
  const char* label;
  std::string (*text)(const TInstanceView&);
};

const TRow kControllerRows[] = {
    {"Display id", [](const TInstanceView& i) { return i.Text("DisplayId"); }},
    {"Chip", [](const TInstanceView& i) { return i.Text("VideoProcessor"); }},
    {"DAC", [](const TInstanceView& i) { return i.Text("DACType"); }},
    {"Video memory", [](const TInstanceView& i) { return i.TextWithUnit("VideoRamSize"); }},
};

const TRow kHeadRows[] = {
    {"Configured mode", ConfiguredMode},
    {"Monitor model", [](const TInstanceView& i) { return i.Text("MonitorString"); }},
};

const TRow kMonitorRows[] = {
    {"Manufacturer", [](const TInstanceView& i) { return i.Text("MonitorManufacturer"); }},
    {"Serial number", [](const TInstanceView& i) { return i.Text("SerialNumber"); }},
    {"Manufactured", Date},
    {"Picture", PictureSize},
    {"Gamma", [](const TInstanceView& i) { return i.Text("Gamma"); }},
    {"Line rate", [](const TInstanceView& i) { return Range(i, "MinHorizFreq", "MaxHorizFreq"); }},
    {"Field rate", [](const TInstanceView& i) { return Range(i, "MinVertFreq", "MaxVertFreq"); }},
    {"Pixel clock", [](const TInstanceView& i) { return Extend(i.TextWithUnit("Bandwidth"), " at most"); }},
    {"Power saving", PowerStates},
    {"Digital interface", [](const TInstanceView& i) { return i.Text("SupportedDigitalInterface"); }},
    {"EDID version", [](const TInstanceView& i) { return i.Text("EDIDVersion"); }},
};

template <std::size_t count>
std::string MakeRows(const std::string& indent, const TRow (&rows)[count], const TInstanceView& instance) {
  std::string text;
  for (const TRow& row : rows) text += MakeRow(indent, row.label, row.text(instance));
  return text;
}

std::string MakeTitle(const std::string& indent, const std::string& id, const std::string& name) {
  return Wrap(indent, name.empty() || name == id ? id : id + ": " + name);
}

/// The text of one request.
class TRequestReport {
 public:
  TRequestReport(const TAnswer& answer, const TRequestAnswer& request) : m_answer(answer), m_view(request) {}

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
    if (!m_answer.xconfigOrigin.empty()) text += Wrap("  X configuration ", m_answer.xconfigOrigin);
    if (m_view.GetControllers().empty() && m_view.GetLooseHeads().empty()) {
      text += Wrap("  None: ", ExplainNoControllers(m_answer));
    }
    for (const auto& [controller, heads] : m_view.GetControllers()) {
      text += MakeTitle("  ", controller.Text("DeviceID"), controller.Text("Name"));
      text += MakeRows("    ", kControllerRows, controller);
      for (const TInstanceView& head : heads) text += MakeHead("    ", head);
    }
    for (const TInstanceView& head : m_view.GetLooseHeads()) text += MakeHead("  ", head);
    return text;
  }

  std::string MakeHead(const std::string& indent, const TInstanceView& head) const {
    return MakeTitle(indent, "Head " + head.Text("HeadNumber"), head.Text("DeviceID")) +
           MakeRows(indent + "  ", kHeadRows, head);
  }

  std::string MakeMonitors() const {
    std::string text = "Monitors\n";
    if (m_view.GetMonitors().empty()) text += Wrap("  None: ", m_answer.edidOrigin.none);
    for (const auto& [id, monitor, modes] : m_view.GetMonitors()) {
      text += MakeTitle("  ", id, monitor ? monitor->Text("Name") : "");
      if (monitor) {
        text += MakeRows("    ", kMonitorRows, *monitor);
        text += MakeRow("    ", "EDID read from", GetEdidSource(*monitor, m_answer));
      }
      text += MakeOutput(id) + MakeModes(modes);
    }
    for (const std::string& sentence : ExplainUnlisted(m_answer)) text += Wrap("  ", sentence + ".");
    return text;
  }

  std::string MakeOutput(const std::string& deviceId) const {
    const TOutput* const output = FindOutput(m_answer, deviceId);
    std::string text;
    if (output == nullptr) return text;
    for (const auto& [label, content] : DescribeOutput(m_answer, *output)) text += MakeRow("    ", label, content);
    return text;
  }

  std::string MakeModes(const TInstances& modes) const {
    std::vector<std::string> texts;
    bool hasConfigured = false;
    for (const TInstanceView& mode : modes) {
      const bool isConfigured = m_view.IsConfigured(mode);
      hasConfigured = hasConfigured || isConfigured;
      texts.push_back(mode.Text("HorizontalResolution") + "x" + mode.Text("VerticalResolution") + "@" +
                      mode.Text("RefreshRate") + mode.Unit("RefreshRate") + (isConfigured ? "*" : ""));
    }
    return MakeRow("    ", "Modes", JoinTexts(texts)) +
           (hasConfigured ? MakeRow("    ", "", "* the resolution that the configuration names") : "");
  }

  std::string MakeComplaints(EPart part) const {
    std::string text;
    for (const std::string& complaint : m_view.GetComplaints(part)) text += Wrap("    ", complaint);
    return text.empty() ? text : "  The plug-in says:\n" + text;
  }

  const TAnswer& m_answer;
  const TRequestView m_view;
};

}  // namespace

std::string MakeTextReport(const TAnswer& answer) {
  std::string text;
  for (const TRequestAnswer& request : answer.requests) {
    if (answer.requests.size() > 1) text += (text.empty() ? "" : "\n") + Wrap("Request: ", JoinTexts(request.classes));
    text += TRequestReport(answer, request).Make();
  }
  return text;
}
