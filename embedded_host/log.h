// The embedded host's log: keeps messages up to a limit, and hands each on as it comes.
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
  /// How many messages are kept: a machine can be made to cause any number of them.
  static constexpr std::size_t kMaxEntries = 1'000'000;

  /// How far the log had come at some time.
  struct TMark {
    std::size_t kept = 0;
    std::size_t leftOut = 0;
  };

  /// `listener` is called with each message that is kept, when it is written, and once when the first one is left out;
  /// it may be empty.
  explicit TLog(std::function<void(const TLogEntry&)> listener = {}, std::size_t maxEntries = kMaxEntries);

  void Write(EZELTLogSeverity severity, const std::string& message) override;

  /// Every message so far, in order. Past the limit, one more entry at the end says how many were left out.
  const std::vector<TLogEntry>& GetEntries() const;

  /// The same; the log is empty afterwards.
  std::vector<TLogEntry> TakeEntries();

  TMark GetMark() const;

  /// The messages since the mark, in order, with an entry for those among them that were left out.
  std::vector<TLogEntry> GetEntriesSince(const TMark& mark) const;

 private:
  std::function<void(const TLogEntry&)> m_listener;
  std::size_t m_maxEntries;
  std::size_t m_leftOut = 0;
  std::vector<TLogEntry> m_entries;
};
