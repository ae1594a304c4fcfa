#include "command/report/request_view.h"
#include "command/machine/machine.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <set>

namespace {

const std::set<std::string> kVideoClasses = {"QRXSG_VideoController", "QRXSG_VideoHead", "QRXSG_HeadOfVideoController"};
const std::set<std::string> kMonitorClasses = {"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution",
                                               "QRXSG_MonitorSetting"};

const std::set<std::string>& GetClasses(EPart part) { return part == EPart::kVideo ? kVideoClasses : kMonitorClasses; }

std::string GetResolution(const TInstanceView& instance, const char* width, const char* height) {
  return instance.Text(width) + "x" + instance.Text(height);
}

/// The unit whose EDID made the monitor: a unit without a monitor ends the walk, so "Monitor 1" is unit 0.
std::size_t GetUnit(const TInstanceView& monitor) {
  const std::string id = monitor.Text("DeviceID");
  return std::strtoul(id.c_str() + id.find_first_of("0123456789"), nullptr, 10) - 1;
}

}  // namespace

TRequestView::TRequestView(const TRequestAnswer& request) : m_request(request) {
  for (const auto& instance : request.instances) m_instances.emplace_back(*instance);
  JoinVideo();
  JoinMonitors();
}

/// By the display id, which the association goes by too; a request need not have asked for the association.
void TRequestView::JoinVideo() {
  std::multimap<std::string, std::size_t> byDisplay;
  for (const TInstanceView& controller : Select("QRXSG_VideoController")) {
    if (controller.Has("DisplayId")) byDisplay.emplace(controller.Text("DisplayId"), m_controllers.size());
    m_controllers.push_back({controller, {}});
  }
  for (const TInstanceView& head : Select("QRXSG_VideoHead")) {
    const auto [begin, end] = byDisplay.equal_range(head.Text("DisplayId"));
    for (auto found = begin; found != end; ++found) m_controllers[found->second].heads.push_back(head);
    if (begin == end) m_looseHeads.push_back(head);
    if (!head.Has("CurrentHorizontalResolution")) continue;
    m_configured.insert(GetResolution(head, "CurrentHorizontalResolution", "CurrentVerticalResolution"));
  }
}

void TRequestView::JoinMonitors() {
  std::map<std::string, TInstances> modes;  // by the device id that their setting ids begin with
  for (const TInstanceView& mode : Select("QRXSG_MonitorResolution")) {
    const std::string settingId = mode.Text("SettingID");
    modes[settingId.substr(0, settingId.rfind("\\ Setting "))].push_back(mode);
  }
  for (const TInstanceView& monitor : Select("QRXSG_DesktopMonitor")) {
    const std::string id = monitor.Text("DeviceID");
    m_monitors.push_back({id, monitor, modes[id]});
    modes.erase(id);
  }
  for (const auto& [id, itsModes] : modes) m_monitors.push_back({id, std::nullopt, itsModes});
}

bool TRequestView::Asks(EPart part) const {
  return std::any_of(m_request.classes.begin(), m_request.classes.end(),
                     [&](const std::string& name) { return GetClasses(part).count(name) != 0; });
}

bool TRequestView::IsConfigured(const TInstanceView& mode) const {
  return m_configured.count(GetResolution(mode, "HorizontalResolution", "VerticalResolution")) != 0;
}

std::vector<std::string> TRequestView::GetComplaints(EPart part) const {
  std::vector<std::string> complaints;
  std::set<std::string> known;
  bool concerns = false;
  for (const TLogEntry& entry : m_request.log) {
    const std::string marker = "Received request for class ";
    const std::size_t begin = entry.message.find(marker);
    if (begin != std::string::npos) {
      const std::string rest = entry.message.substr(begin + marker.size());
      concerns = GetClasses(part).count(rest.substr(0, rest.size() - 1)) != 0;
    } else if (concerns && entry.severity <= NQRXZELT20::ILogger::kStatus) {
      const std::string text = ToPrintable(entry.message);
      if (known.insert(text).second) complaints.push_back(text);
    }
  }
  return complaints;
}

TInstances TRequestView::Select(const std::string& className) const {
  TInstances selected;
  std::copy_if(m_instances.begin(), m_instances.end(), std::back_inserter(selected),
               [&](const TInstanceView& instance) { return instance.Class() == className; });
  return selected;
}

std::string JoinTexts(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) {
    if (!text.empty()) joined += (joined.empty() ? "" : ", ") + text;
  }
  return joined;
}

std::string GetEdidSource(const TInstanceView& monitor, const TEdidOrigin& origin) {
  return origin.describe ? origin.describe(GetUnit(monitor)) : std::string();
}

std::string ExplainNoControllers(const TAnswer& answer) {
  const auto found = std::find_if(answer.fileQueries.begin(), answer.fileQueries.end(),
                                  [](const TFileQuery& query) { return query.exists; });
  if (found != answer.fileQueries.end()) return ToPrintable(found->path) + " yields none.";
  if (answer.fileQueries.empty()) return "no X server configuration was asked for.";
  return "none of the " + std::to_string(answer.fileQueries.size()) +
         " X server configuration files that were looked for is there.";
}
