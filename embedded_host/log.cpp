#include "embedded_host/log.h"

#include <utility>

const char* GetSeverityName(NQRXZELT20::ILogger::EZELTLogSeverity severity) {
  static const char* const names[] = {"error", "warning", "status", "debug", "verbose"};
  return names[severity];
}

TLog::TLog(std::function<void(const TLogEntry&)> listener) : m_listener(std::move(listener)) {}

void TLog::Write(EZELTLogSeverity severity, const std::string& message) {
  m_entries.push_back({severity, message});
  if (m_listener) m_listener(m_entries.back());
}

const std::vector<TLogEntry>& TLog::GetEntries() const { return m_entries; }
