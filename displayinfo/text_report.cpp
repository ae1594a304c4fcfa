#include "displayinfo/text_report.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>
#include <string_view>
#include <vector>

#include "displayinfo/instance_view.h"

namespace {

constexpr std::size_t kWidth = 80;       // columns
constexpr std::size_t kLabelWidth = 18;  // columns, with the blanks behind the label
typedef std::vector<TInstanceView> TInstances;

bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

/// Columns that the text takes: its characters, not its bytes.
std::size_t CountColumns(const std::string& text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

/// The length in bytes of the first `columns` characters.
std::size_t GetLength(std::string_view text, std::size_t columns) {
  std::size_t length = 0;
  for (; length < text.size(); ++length) {
    if (BeginsCharacter(text[length]) && columns-- == 0) break;
  }
  return length;
}

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

TInstances Select(const TInstances& instances, const std::string& className) {
  TInstances selected;
  std::copy_if(instances.begin(), instances.end(), std::back_inserter(selected),
               [&](const TInstanceView& instance) { return instance.Class() == className; });
  return selected;
}

std::string Range(const TInstanceView& instance, const char* min, const char* max, const char* unit) {
  if (!instance.Has(min)) return std::string();
  return instance.Text(min) + " to " + instance.Text(max) + " " + unit;
}

std::string Join(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) {
    if (!text.empty()) joined += (joined.empty() ? "" : ", ") + text;
  }
  return joined;
}

std::string WithUnit(const TInstanceView& instance, const char* name, const char* unit) {
  return instance.Has(name) ? instance.Text(name) + " " + unit : std::string();
}

std::string Size(const TInstanceView& instance, const char* width, const char* height) {
  if (!instance.Has(width) && !instance.Has(height)) return std::string();
  const auto side = [&](const char* name) { return instance.Has(name) ? instance.Text(name) : std::string("?"); };
  return side(width) + " x " + side(height);
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
  return states.empty() ? "none" : Join(states);
}

std::string PictureSize(const TInstanceView& monitor) {
  const std::string size = Size(monitor, "HorizontalImageSize", "VerticalImageSize");
  return size.empty() ? size : size + " cm";
}

std::string ConfiguredMode(const TInstanceView& head) {
  return Join({Size(head, "CurrentHorizontalResolution", "CurrentVerticalResolution"),
               WithUnit(head, "CurrentBitsPerPixel", "bits per pixel")});
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
    {"Video memory", [](const TInstanceView& i) { return WithUnit(i, "VideoRamSize", "bytes"); }},
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
    {"Line rate", [](const TInstanceView& i) { return Range(i, "MinHorizFreq", "MaxHorizFreq", "kHz"); }},
    {"Field rate", [](const TInstanceView& i) { return Range(i, "MinVertFreq", "MaxVertFreq", "Hz"); }},
    {"Pixel clock", [](const TInstanceView& i) { return WithUnit(i, "Bandwidth", "MHz at most"); }},
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

/// What the plug-in logged at status or worse while it served one of these classes, each message once.
std::string GetComplaints(const TRequestAnswer& request, const std::set<std::string>& classes) {
  std::string complaints;
  bool concerns = false;
  for (const TLogEntry& entry : request.log) {
    const std::string marker = "Received request for class ";
    const std::size_t begin = entry.message.find(marker);
    if (begin != std::string::npos) {
      const std::string rest = entry.message.substr(begin + marker.size());
      concerns = classes.count(rest.substr(0, rest.size() - 1)) != 0;
    } else if (concerns && entry.severity <= NQRXZELT20::ILogger::kStatus) {
      const std::string line = Wrap("    ", ToPrintable(entry.message));
      if (complaints.find(line) == std::string::npos) complaints += line;
    }
  }
  return complaints.empty() ? complaints : "  The plug-in says:\n" + complaints;
}

std::string ExplainNoControllers(const TAnswer& answer) {
  const auto found = std::find_if(answer.fileQueries.begin(), answer.fileQueries.end(),
                                  [](const TFileQuery& query) { return query.exists; });
  if (found != answer.fileQueries.end()) return ToPrintable(found->path) + " yields none.";
  if (answer.fileQueries.empty()) return "no X server configuration was asked for.";
  return "none of the " + std::to_string(answer.fileQueries.size()) +
         " X server configuration files that were looked for is there.";
}

/// One request's instances, and the text made of them.
class TRequestReport {
 public:
  TRequestReport(const TAnswer& answer, const TRequestAnswer& request, const TEdidOrigin& origin)
      : m_answer(answer), m_request(request), m_origin(origin) {
    for (const auto& instance : request.instances) m_instances.emplace_back(*instance);
  }

  std::string Make() const {
    std::string text;
    if (Asks(kVideoClasses)) text += MakeVideo();
    if (Asks(kMonitorClasses)) text += (text.empty() ? "" : "\n") + MakeMonitors();
    return text;
  }

 private:
  bool Asks(const std::set<std::string>& classes) const {
    return std::any_of(m_request.classes.begin(), m_request.classes.end(),
                       [&](const std::string& name) { return classes.count(name) != 0; });
  }

  std::string MakeVideo() const {
    const TInstances controllers = Select(m_instances, "QRXSG_VideoController");
    const TInstances heads = Select(m_instances, "QRXSG_VideoHead");
    std::string text = "Video controllers\n";
    if (controllers.empty() && heads.empty()) text += Wrap("  None: ", ExplainNoControllers(m_answer));
    for (const TInstanceView& controller : controllers) {
      text += MakeTitle("  ", controller.Text("DeviceID"), controller.Text("Name"));
      text += MakeRows("    ", kControllerRows, controller);
      for (const TInstanceView& head : heads) {
        if (IsLinked(controller, head)) text += MakeHead("    ", head);
      }
    }
    for (const TInstanceView& head : heads) {
      const bool isShown = std::any_of(controllers.begin(), controllers.end(),
                                       [&](const TInstanceView& controller) { return IsLinked(controller, head); });
      if (!isShown) text += MakeHead("  ", head);
    }
    return text + GetComplaints(m_request, kVideoClasses);
  }

  std::string MakeHead(const std::string& indent, const TInstanceView& head) const {
    return MakeTitle(indent, "Head " + head.Text("HeadNumber"), head.Text("DeviceID")) +
           MakeRows(indent + "  ", kHeadRows, head);
  }

  /// By the display id, which the association goes by too; a request need not have asked for the association.
  static bool IsLinked(const TInstanceView& controller, const TInstanceView& head) {
    return controller.Has("DisplayId") && controller.Text("DisplayId") == head.Text("DisplayId");
  }

  std::string MakeMonitors() const {
    const TInstances monitors = Select(m_instances, "QRXSG_DesktopMonitor");
    std::map<std::string, TInstances> modes = GetModesByMonitor();
    std::string text = "Monitors\n";
    if (monitors.empty() && modes.empty()) text += Wrap("  None: ", m_origin.none);
    for (const TInstanceView& monitor : monitors) {
      text += MakeTitle("  ", monitor.Text("DeviceID"), monitor.Text("Name"));
      text += MakeRows("    ", kMonitorRows, monitor);
      if (m_origin.describe) text += MakeRow("    ", "EDID read from", m_origin.describe(GetUnit(monitor)));
      text += MakeModes(modes[monitor.Text("DeviceID")]);
      modes.erase(monitor.Text("DeviceID"));
    }
    for (const auto& [deviceId, itsModes] : modes) text += MakeTitle("  ", deviceId, "") + MakeModes(itsModes);
    return text + GetComplaints(m_request, kMonitorClasses);
  }

  /// The unit whose EDID made the monitor: a unit without a monitor ends the walk, so "Monitor 1" is unit 0.
  static std::size_t GetUnit(const TInstanceView& monitor) {
    const std::string id = monitor.Text("DeviceID");
    return std::strtoul(id.c_str() + id.find_first_of("0123456789"), nullptr, 10) - 1;
  }

  /// The modes by the device id that their setting ids begin with.
  std::map<std::string, TInstances> GetModesByMonitor() const {
    std::map<std::string, TInstances> modes;
    for (const TInstanceView& mode : Select(m_instances, "QRXSG_MonitorResolution")) {
      const std::string settingId = mode.Text("SettingID");
      modes[settingId.substr(0, settingId.rfind("\\ Setting "))].push_back(mode);
    }
    return modes;
  }

  std::string MakeModes(const TInstances& modes) const {
    std::vector<std::string> texts;
    bool hasConfigured = false;
    for (const TInstanceView& mode : modes) {
      const bool isConfigured = IsConfigured(mode);
      hasConfigured = hasConfigured || isConfigured;
      texts.push_back(mode.Text("HorizontalResolution") + "x" + mode.Text("VerticalResolution") + "@" +
                      mode.Text("RefreshRate") + "Hz" + (isConfigured ? "*" : ""));
    }
    return MakeRow("    ", "Modes", Join(texts)) +
           (hasConfigured ? MakeRow("    ", "", "* the resolution that the configuration names") : "");
  }

  /// True when the configuration sets a head to the mode's resolution.
  bool IsConfigured(const TInstanceView& mode) const {
    const TInstances heads = Select(m_instances, "QRXSG_VideoHead");
    return std::any_of(heads.begin(), heads.end(), [&](const TInstanceView& head) {
      return head.Has("CurrentHorizontalResolution") &&
             head.Text("CurrentHorizontalResolution") == mode.Text("HorizontalResolution") &&
             head.Text("CurrentVerticalResolution") == mode.Text("VerticalResolution");
    });
  }

  static const std::set<std::string> kVideoClasses;
  static const std::set<std::string> kMonitorClasses;

  const TAnswer& m_answer;
  const TRequestAnswer& m_request;
  const TEdidOrigin& m_origin;
  TInstances m_instances;
};

const std::set<std::string> TRequestReport::kVideoClasses = {"QRXSG_VideoController", "QRXSG_VideoHead",
                                                             "QRXSG_HeadOfVideoController"};
const std::set<std::string> TRequestReport::kMonitorClasses = {"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution",
                                                               "QRXSG_MonitorSetting"};

}  // namespace

std::string MakeTextReport(const TAnswer& answer, const TEdidOrigin& origin) {
  std::string text;
  for (const TRequestAnswer& request : answer.requests) {
    if (answer.requests.size() > 1) text += (text.empty() ? "" : "\n") + Wrap("Request: ", Join(request.classes));
    text += TRequestReport(answer, request, origin).Make();
  }
  return text;
}
