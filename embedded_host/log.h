// The embedded host's log: keeps messages up to a limit, and passes each to a listener as it comes.
#pragma once

#include <cstddef>
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
  /// The most messages that are kept, since a machine can be made to cause any number of them.
  static constexpr std::size_t kMaxEntries = 1'000'000;

  /// A position in the log.
  struct TMark {
    std::size_t kept = 0;
    std::size_t leftOut = 0;
  };

  /// `listener` is called for each message that is kept, as it is written, and once when the first one is left out. It
  /// may be empty.
  explicit TLog(std::function<void(const TLogEntry&)> listener = {}, std::size_t maxEntries = kMaxEntries);

  void Write(EZELTLogSeverity severity, const std::string& message) override;

  /// Every message so far, in order. If there were more than the limit, a last entry says how many were left out.
  const std::vector<TLogEntry>& GetEntries() const;

  /// The same; the log is empty afterwards.
  std::vector<TLogEntry> TakeEntries();

  TMark GetMark() const;

  /// The messages since the mark, in order; if any were left out, a last entry says how many.
  std::vector<TLogEntry> GetEntriesSince(const TMark& mark) const;

 private:
  std::function<void(const TLogEntry&)> m_listener;
  std::size_t m_maxEntries;
  std::size_t m_leftOut = 0;
  std::vector<TLogEntry> m_entries;
};
