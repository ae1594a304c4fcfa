#include <algorithm>
#include <map>
#include <utility>

#include "command/machine/forms/readers.h"

namespace {

constexpr std::string_view kOutputSign = "EDID for output ";
constexpr std::string_view kBytesSign = "EDID (in hex):";

/// One line of the log: "[    30.503] (II) modeset(0): EDID (in hex):".
struct TLogLine {
  std::string_view source;  // the driver and its screen
  std::string_view message;
};

TLogLine ReadLine(std::string_view line) {
  line = Trim(line);
  if (BeginsWith(line, "[")) line.remove_prefix(std::min(line.find(']') + 1, line.size()));
  line = Trim(line);
  if (BeginsWith(line, "(")) line.remove_prefix(std::min(line.find(')') + 1, line.size()));
  TLogLine result;
  result.source = Trim(TakeUntil(line, ":"));
  result.message = Trim(line.substr(line.empty() ? 0 : 1));
  return result;
}

class TXLog {
 public:
  TFoundMachine Read(std::string_view text) {
    TLines lines(text);
    std::string_view line;
    while (lines.Take(line)) TakeLine(ReadLine(line));
    End();
    TFoundMachine machine;
    for (TRead& read : m_outputs) {
      if (!read.edid.empty()) machine.Add({std::move(read.connector), std::move(read.edid)});
    }
    return machine;
  }

 private:
  struct TRead {
    std::string source;
    std::string connector;  // empty if the log does not name it
    std::string edid;       // empty for an output without a monitor
  };

  void TakeLine(const TLogLine& line) {
    if (BeginsWith(line.message, kOutputSign)) return BeginOutput(line);
    if (BeginsWith(line.message, kBytesSign)) return BeginBytes(line);
    // Other sources may write lines between those of an EDID.
    if (!m_isInBytes || line.source != m_current.source) return;
    m_isInBytes = !line.message.empty() && AppendHex(m_current.edid, line.message);
  }

  void BeginOutput(const TLogLine& line) {
    End();
    m_current = {std::string(line.source), std::string(line.message.substr(kOutputSign.size())), ""};
    m_isInBytes = false;
  }

  void BeginBytes(const TLogLine& line) {
    const bool isNamed = line.source == m_current.source && m_current.edid.empty();
    if (!isNamed) End();
    if (!isNamed) m_current = {std::string(line.source), "", ""};
    m_isInBytes = true;
  }

  /// Keeps what was read; it replaces what the same output said before. An output without a name is the same if its
  /// EDID is equal.
  void End() {
    const bool isNamed = !m_current.connector.empty();
    const auto key = std::make_pair(m_current.source, isNamed ? m_current.connector : m_current.edid);
    const auto before = m_places.find(key);
    if (before != m_places.end()) {
      m_outputs[before->second].edid = std::move(m_current.edid);
    } else if (!m_current.edid.empty() && m_outputs.size() <= kMaxUnits) {
      m_places[key] = m_outputs.size();
      m_outputs.push_back(std::move(m_current));
    }
    m_current = {};
  }

  std::map<std::pair<std::string, std::string>, std::size_t> m_places;  // indexes in m_outputs
  std::vector<TRead> m_outputs;                                         // in the order of the log
  TRead m_current;
  bool m_isInBytes = false;  // the next lines may hold bytes of the current output
};

}  // namespace

std::optional<TFoundMachine> ReadXLog(std::string_view text) {
  if (text.find(kBytesSign) == std::string_view::npos) return std::nullopt;
  return TXLog().Read(text);
}
