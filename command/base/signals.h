// Notes the signals that end a run, so that the run can finish its line first.
#pragma once

#include <poll.h>

#include <chrono>
#include <csignal>
#include <optional>
#include <vector>

/// True for the signals by which people, the system or its limits end a run: SIGINT, SIGTERM, SIGHUP, SIGXCPU.
bool IsEndingSignal(int signal);

/// While it lives, the first of each of these signals is noted instead of ending the process; the second one ends it.
/// An ignored SIGHUP (nohup) stays ignored. A process may have only one TSignals at a time.
class TSignals {
 public:
  TSignals();
  ~TSignals();
  TSignals(const TSignals&) = delete;
  TSignals& operator=(const TSignals&) = delete;

  /// The signal that has come, or 0.
  static int Get();
  /// Notes a signal that ended a worker, since most are sent to the whole run.
  static void Note(int signal);

  /// Like poll, but a signal ends the wait even if it came just before. Without `longest` there is no time limit.
  void Wait(std::vector<pollfd>& descriptors, const std::optional<std::chrono::nanoseconds>& longest) const;

 private:
  void NoteNext(int signal);

  sigset_t m_noted;
};
