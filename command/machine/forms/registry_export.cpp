#include <algorithm>
#include <cctype>
#include <charconv>
#include <map>

#include "command/machine/forms/readers.h"
#include "edid/layout.h"

namespace {

constexpr std::string_view kBeginnings[] = {"Windows Registry Editor Version ", "REGEDIT4"};
constexpr std::string_view kOverride = "\\edid_override";
constexpr std::string_view kParameters = "\\device parameters";
constexpr std::string_view kDevices = "\\enum\\";
constexpr std::string_view kUid = "&uid";

/// A monitor. Several control sets may have its key.
struct TMonitor {
  std::string connector;
  std::string edid;
  std::map<std::size_t, std::string> blocks;  // from EDID_OVERRIDE, by number
};

/// For names of keys and values, whose case does not matter.
std::string ToLower(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
  return lower;
}

bool RemoveEnd(std::string& text, std::string_view end) {
  if (text.size() < end.size() || std::string_view(text).substr(text.size() - end.size()) != end) return false;
  text.resize(text.size() - end.size());
  return true;
}

/// The part of the name of a monitor's key that differs between outputs: UID67568640, or the whole last part.
std::string GetConnector(std::string_view device) {
  const std::string_view instance = device.substr(device.rfind('\\') + 1);
  const std::size_t uid = ToLower(instance).rfind(kUid);
  return std::string(uid == std::string_view::npos ? instance : instance.substr(uid + 1));
}

/// The bytes of a value such as hex:00,ff or hex(3):00,ff; nothing if it has another type or holds anything else.
std::optional<std::string> ReadBinary(std::string_view value) {
  const std::string_view type = TakeUntil(value, ":");
  if (value.empty() || !BeginsWith(type, "hex")) return std::nullopt;
  value.remove_prefix(1);
  std::string bytes;
  while (!value.empty()) {
    if (!AppendHex(bytes, Trim(TakeUntil(value, ",")))) return std::nullopt;
    if (!value.empty()) value.remove_prefix(1);
  }
  return bytes;
}

/// The EDID with the blocks that it says it has, as far as they are known.
std::string Complete(const TMonitor& monitor) {
  std::string edid = monitor.edid;
  for (const auto& [number, block] : monitor.blocks) {
    const bool isPromised = number == 0 || (edid.size() > edid::kExtensionCount &&
                                            number <= static_cast<unsigned char>(edid[edid::kExtensionCount]));
    if (isPromised && edid.size() == number * edid::kBlockSize) edid += block;
  }
  return edid;
}

class TExport {
 public:
  TFoundMachine Read(std::string_view text) {
    TLines lines(text);
    std::string_view line;
    while (lines.Take(line)) TakeLine(JoinLines(line, lines));
    TFoundMachine machine;
    for (const auto& [device, monitor] : m_monitors) {
      const std::string edid = Complete(monitor);
      machine.Add({monitor.connector, edid, edid.empty() ? "is not a value of type hex" : ""});
    }
    return machine;
  }

 private:
  /// After a backslash at the end of a line, a value continues in the next line.
  static std::string JoinLines(std::string_view line, TLines& lines) {
    std::string whole(Trim(line));
    while (!whole.empty() && whole.back() == '\\' && lines.Take(line)) {
      whole.pop_back();
      whole += Trim(line);
    }
    return whole;
  }

  void TakeLine(const std::string& line) {
    if (line.empty()) return;
    if (line.front() == '[') EnterKey(std::string_view(line).substr(1, line.rfind(']') - 1));
    if (line.front() == '"') TakeValue(std::string_view(line).substr(1));
  }

  void EnterKey(std::string_view key) {
    std::string device = ToLower(key);
    m_isOverride = RemoveEnd(device, kOverride);
    RemoveEnd(device, kParameters);
    m_connector = GetConnector(key.substr(0, device.size()));
    const std::size_t devices = device.find(kDevices);
    m_device = devices == std::string::npos ? device : device.substr(devices);
  }

  void TakeValue(std::string_view line) {
    const std::string name = ToLower(TakeUntil(line, "\""));
    if (line.size() < 2 || line[1] != '=') return;
    const std::string_view value = line.substr(2);
    if (m_isOverride) TakeBlock(name, value);
    if (!m_isOverride && name == "edid") TakeEdid(value);
  }

  void TakeEdid(std::string_view value) {
    TMonitor* const monitor = FindMonitor();
    if (monitor == nullptr || !monitor->edid.empty()) return;
    monitor->edid = ReadBinary(value).value_or("");
  }

  void TakeBlock(const std::string& name, std::string_view value) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
    const std::optional<std::string> bytes = ReadBinary(value);
    if (error != std::errc() || end != name.data() + name.size() || !bytes || bytes->size() != edid::kBlockSize) return;
    TMonitor* const monitor = FindMonitor();
    if (monitor != nullptr && monitor->blocks.size() < kMaxEdidSize / edid::kBlockSize)
      monitor->blocks[number] = *bytes;
  }

  /// The monitor of the current key; null once there are more than kMaxUnits.
  TMonitor* FindMonitor() {
    const auto found = m_places.find(m_device);
    if (found != m_places.end()) return &m_monitors[found->second].second;
    if (m_monitors.size() > kMaxUnits) return nullptr;
    m_places[m_device] = m_monitors.size();
    m_monitors.push_back({m_device, {m_connector, "", {}}});
    return &m_monitors.back().second;
  }

  std::string m_device;  // the one whose key is being read
  std::string m_connector;
  bool m_isOverride = false;
  std::vector<std::pair<std::string, TMonitor>> m_monitors;  // in the order of the file
  std::map<std::string, std::size_t> m_places;               // indexes in m_monitors, by device
};

}  // namespace

std::optional<TFoundMachine> ReadRegistryExport(std::string_view text) {
  const bool isExport = std::any_of(std::begin(kBeginnings), std::end(kBeginnings),
                                    [&](std::string_view beginning) { return BeginsWith(text, beginning); });
  if (!isExport) return std::nullopt;
  return TExport().Read(text);
}
