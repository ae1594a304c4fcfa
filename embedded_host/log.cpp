#include "embedded_host/log.h"

#include <algorithm>
#include <utility>

namespace {

/// The entry that replaces messages that were left out.
TLogEntry MakeNote(std::size_t leftOut) {
  return {NQRXZELT20::ILogger::kWarning, std::to_string(leftOut) + " more log messages were left out"};
}

}  // namespace

const char* GetSeverityName(NQRXZELT20::ILogger::EZELTLogSeverity severity) {
  static const char* const names[] = {"error", "warning", "status", "debug", "verbose"};
  return names[severity];
}

TLog::TLog(std::function<void(const TLogEntry&)> listener, std::size_t maxEntries)
    : m_listener(std::move(listener)), m_maxEntries(maxEntries) {}

void TLog::Write(EZELTLogSeverity severity, const std::string& message) {
  if (m_entries.size() < m_maxEntries) {
    m_entries.push_back({severity, message});
    if (m_listener) m_listener(m_entries.back());
    return;
  }
  if (m_leftOut == 0) m_entries.push_back({});
  m_entries.back() = MakeNote(++m_leftOut);
  if (m_leftOut == 1 && m_listener) m_listener({kWarning, "all further log messages are left out"});
}

const std::vector<TLogEntry>& TLog::GetEntries() const { return m_entries; }

std::vector<TLogEntry> TLog::TakeEntries() {
  m_leftOut = 0;
  return std::exchange(m_entries, {});
}

TLog::TMark TLog::GetMark() const { return {std::min(m_entries.size(), m_maxEntries), m_leftOut}; }

std::vector<TLogEntry> TLog::GetEntriesSince(const TMark& mark) const {
  const TMark now = GetMark();
  const auto begin = m_entries.begin();
  std::vector<TLogEntry> entries(begin + static_cast<std::ptrdiff_t>(mark.kept),
                                 begin + static_cast<std::ptrdiff_t>(now.kept));
  if (now.leftOut > mark.leftOut) entries.push_back(MakeNote(now.leftOut - mark.leftOut));
  return entries;
}
