// Keeps enumerations that clients pull piece by piece (DSP0200, pulled enumeration operations).
#pragma once

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <string>

/// What a client has not pulled yet.
struct TEnumeration {
  std::string nameSpace;            // of the request that opened it
  bool isOfPaths = false;           // otherwise of instances
  std::deque<std::string> objects;  // the XML of each
  std::chrono::seconds timeout{0};  // how long it is kept without being used
};

class TEnumerations {
 public:
  typedef std::chrono::steady_clock::time_point TTime;

  static constexpr std::size_t kMaxCount = 64;
  static constexpr std::size_t kMaxSize = std::size_t{64} * 1024 * 1024;  // bytes of XML in all of them
  static constexpr std::chrono::seconds kMaxTimeout{600};

  /// `now`: the clock.
  explicit TEnumerations(std::function<TTime()> now = std::chrono::steady_clock::now) : m_now(std::move(now)) {}

  /// Keeps the enumeration and returns its context, a text that nobody can guess; empty if there are too many
  /// enumerations, or they hold too much.
  std::string Open(TEnumeration enumeration);

  /// Finds an enumeration and restarts its timeout. Null if the context is unknown or has expired.
  TEnumeration* Find(const std::string& context);

  void Close(const std::string& context) { m_kept.erase(context); }

 private:
  struct TKept {
    TEnumeration enumeration;
    TTime end;
  };

  void ForgetExpired();
  std::size_t GetSize() const;

  std::function<TTime()> m_now;
  std::map<std::string, TKept> m_kept;  // by context
};
