// The embedded host's log: keeps every message, and hands each on as it comes.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/logger.h"

struct TLogEntry {
  NQRXZELT20::ILogger::EZELTLogSeverity severity;
  std::string message;

  bool operator==(const TLogEntry& other) const { return severity == other.severity && message == other.message; }
};

/// "error", "warning", "status", "debug" or "verbose".
HOST_API const char* GetSeverityName(NQRXZELT20::ILogger::EZELTLogSeverity severity);

class HOST_API TLog : public NQRXZELT20::ILogger {
 public:
  /// `listener` hears of each message when it is written; it may be empty.
  explicit TLog(std::function<void(const TLogEntry&)> listener = {});

  void Write(EZELTLogSeverity severity, const std::string& message) override;

  /// Every message so far, in order.
  const std::vector<TLogEntry>& GetEntries() const;

 private:
  std::function<void(const TLogEntry&)> m_listener;
  std::vector<TLogEntry> m_entries;
};
