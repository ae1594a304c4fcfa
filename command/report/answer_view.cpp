#include "command/report/answer_view.h"

#include <algorithm>
#include <map>
#include <set>

#include "command/base/text_encoding.h"
#include "command/base/utc_time.h"
#include "command/collection/plugin_texts.h"

namespace {

/// The only head for which `isIt` is true; null if there is none or more than one. All instances of one head count as
/// one.
template <typename TIsIt>
const TInstanceView* FindOnly(const TInstances& heads, TIsIt isIt) {
  const TInstanceView* found = nullptr;
  for (const TInstanceView& head : heads) {
    if (!isIt(head)) continue;
    const bool isSame =
        found == nullptr || (found->Path() == head.Path() && found->Text("HeadNumber") == head.Text("HeadNumber"));
    if (!isSame) return nullptr;
    found = &head;
  }
  return found;
}

}  // namespace

std::string ShowSystemName(const TAnswerIdentity& identity) {
  return identity.systemName.empty() ? "A system without a name" : ToPrintable(identity.systemName);
}

std::string DescribeCollection(const TAnswerIdentity& identity) {
  const std::string shown = "hown by displayinfo " + identity.version;
  return identity.collected.empty() ? "S" + shown : "Collected " + ShowUtcTime(identity.collected) + ", s" + shown;
}

TRequestView::TRequestView(const TRequestAnswer& request) : m_request(request) {
  for (const auto& instance : request.instances) m_instances[instance->GetDeclaration().name].emplace_back(*instance);
  JoinVideo();
  JoinMonitors();
}

/// Joins by display id, as the association does, since a request need not have asked for the association.
void TRequestView::JoinVideo() {
  std::multimap<std::string, std::size_t> byDisplay;
  std::map<std::pair<std::string, std::string>, std::size_t> positions;
  for (const TInstanceView& controller : Select(kVideoControllerClass)) {
    const std::string displayId = controller.Text("DisplayId");
    const auto [position, isNew] = positions.emplace(std::pair(controller.Path(), displayId), m_controllers.size());
    if (!isNew) {
      m_controllers[position->second].controller = controller;
      continue;
    }
    if (controller.Has("DisplayId")) byDisplay.emplace(displayId, m_controllers.size());
    m_controllers.push_back({controller, {}});
  }
  for (const TInstanceView& head : Select(kVideoHeadClass)) {
    const auto [begin, end] = byDisplay.equal_range(head.Text("DisplayId"));
    for (auto found = begin; found != end; ++found) m_controllers[found->second].heads.push_back(head);
    if (begin == end) m_looseHeads.push_back(head);
  }
}

void TRequestView::JoinMonitors() {
  std::map<std::string, std::size_t> positions;  // by device id
  for (const TInstanceView& monitor : Select(kDesktopMonitorClass)) {
    const std::string id = monitor.Text("DeviceID");
    positions.emplace(id, m_monitors.size());
    m_monitors.push_back({id, monitor, {}});
  }
  for (const TInstanceView& mode : Select(kMonitorResolutionClass)) {
    const std::string id = GetMonitorOfMode(mode.Text("SettingID"));
    const auto [position, isNew] = positions.emplace(id, m_monitors.size());
    if (isNew) m_monitors.push_back({id, std::nullopt, {}});
    m_monitors[position->second].modes.push_back(mode);
  }
}

bool TRequestView::Asks(EPart part) const {
  return std::any_of(m_request.classes.begin(), m_request.classes.end(),
                     [&](const std::string& name) { return IsOf(name, part); });
}

const TInstanceView* TRequestView::FindHead(const TMonitorView& monitor, const TOutput* output) const {
  const TInstances& heads = Select(kVideoHeadClass);
  const std::string connector = output == nullptr ? std::string() : ToPrintable(output->connector);
  const auto isAtConnector = [&](const TInstanceView& head) {
    return !connector.empty() && head.Text("DeviceID") == connector;
  };
  if (const TInstanceView* const head = FindOnly(heads, isAtConnector)) return head;
  const std::string model = monitor.monitor ? monitor.monitor->Text("Name") : std::string();
  const auto hasModel = [&](const TMonitorView& other) {
    return other.monitor && other.monitor->Text("Name") == model;
  };
  const auto namesModel = [&](const TInstanceView& head) { return head.Text("MonitorString") == model; };
  if (!model.empty() && std::count_if(m_monitors.begin(), m_monitors.end(), hasModel) == 1) {
    if (const TInstanceView* const head = FindOnly(heads, namesModel)) return head;
  }
  return FindOnly(heads, [](const TInstanceView&) { return true; });
}

std::vector<std::string> TRequestView::GetComplaints(EPart part) const {
  const std::string marker = kServesClass;
  std::vector<std::string> complaints;
  std::set<std::string> known;
  bool concerns = false;
  for (const TLogEntry& entry : m_request.log) {
    const std::size_t begin = entry.message.find(marker);
    if (begin != std::string::npos) {
      const std::string rest = entry.message.substr(begin + marker.size());
      concerns = IsOf(rest.substr(0, rest.size() - 1), part);
    } else if (concerns && entry.severity <= NQRXZELT20::ILogger::kStatus) {
      const std::string text = ToPrintable(entry.message);
      if (known.insert(text).second) complaints.push_back(text);
    }
  }
  return complaints;
}

const TInstances& TRequestView::Select(const std::string& className) const {
  static const TInstances none;
  const auto found = m_instances.find(className);
  return found == m_instances.end() ? none : found->second;
}

bool IsConfigured(const TInstanceView* head, unsigned int width, unsigned int height) {
  return head != nullptr && head->Has("CurrentHorizontalResolution") &&
         head->Number("CurrentHorizontalResolution") == width && head->Number("CurrentVerticalResolution") == height;
}

std::string WriteRefresh(const TEdidMode& mode) { return WriteFixed(mode.refresh, 3); }

std::string WriteDiagonal(double inches) { return WriteFixed(inches, 1); }

const TOutput* FindOutput(const TAnswer& answer, const std::string& id) {
  const auto output = std::find_if(answer.outputs.begin(), answer.outputs.end(), [&](const TOutput& candidate) {
    return !id.empty() && (candidate.deviceId == id || candidate.modesId == id);
  });
  return output == answer.outputs.end() ? nullptr : &*output;
}

std::vector<TOutputRow> DescribeProblems(const TOutput& output) {
  std::vector<TOutputRow> rows;
  if (!output.facts || !output.facts->isVersion1) return rows;
  for (const std::string& sentence : output.facts->contradictions) {
    rows.push_back({"Problem", ToPrintable(sentence), ERowPlace::kProblem});
  }
  return rows;
}

std::string GetEdidSource(const TAnswer& answer, const TOutput& output) {
  const auto& describe = answer.edidOrigin.describe;
  return describe ? ToPrintable(describe(output.unit)) : std::string();
}

std::vector<std::string> ExplainUnlisted(const TAnswer& answer) {
  std::vector<std::string> sentences;
  for (const TOutput& output : answer.outputs) {
    if (IsUnlisted(output)) sentences.push_back(ExplainUnlisted(output));
  }
  return sentences;
}
