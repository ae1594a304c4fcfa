// The signals by which people end a run that has something to finish.
#pragma once

#include <poll.h>

#include <chrono>
#include <csignal>
#include <optional>
#include <vector>

/// Whether people, the system or its limits end a run by that signal: SIGINT, SIGTERM, SIGHUP, SIGXCPU.
bool IsEndingSignal(int signal);

/// While it lives, the first of these signals is noted instead of ending the process, so that a line can be finished.
/// The second one ends it. A SIGHUP that is ignored, as by nohup, stays so. One at a time in a process.
class TSignals {
 public:
  TSignals();
  ~TSignals();
  TSignals(const TSignals&) = delete;
  TSignals& operator=(const TSignals&) = delete;

  /// The signal that has come, or 0.
  static int Get();
  /// One that came to a worker: most are sent to the whole run.
  static void Note(int signal);

  /// poll, which a signal ends even when it comes just before. Without `longest` it waits for as long as it takes.
  void Wait(std::vector<pollfd>& descriptors, const std::optional<std::chrono::nanoseconds>& longest) const;

 private:
  void NoteNext(int signal);

  sigset_t m_noted;
};
