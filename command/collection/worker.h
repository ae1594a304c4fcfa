// A worker process, which turns machines into lines of the fleet's answer: a crash loses one machine.
#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "command/base/descriptor.h"

/// What the answer says of one machine.
struct TMachineLine {
  std::string text;     // with its line end
  bool hasFailed;       // it holds an error
  bool isLast = false;  // the process ends when it has handed over the line: it is not fit for another machine
};

/// A machine and its number in the list.
struct TTask {
  std::size_t number;
  std::string machine;
};

class TWorker {
 public:
  typedef std::function<TMachineLine(const std::string& machine)> TWork;

  /// Starts the process. `work` runs in it, once for each machine, and must not throw. `others`: descriptors of this
  /// process, which the worker closes. `timeout`: for each machine. Throws TUnusable when the system has
  /// no room for another process.
  TWorker(const TWork& work, const std::vector<int>& others, std::chrono::seconds timeout);
  /// Kills the process and does not wait for its end, which may never come: the system can hold a process, for example
  /// while a file server does not answer.
  ~TWorker();
  TWorker(const TWorker&) = delete;
  TWorker& operator=(const TWorker&) = delete;

  /// Hands over a machine, which waits until those before are done; false when the process cannot be reached. At most
  /// two may be on their way, of 4096 bytes each: they fit into what the system holds for a reader. So this never waits
  /// for the worker, which may itself be waiting for this process to take a line.
  bool Give(TTask task);

  /// What it has not done yet; it is at work on the first.
  const std::deque<TTask>& GetTasks() const { return m_tasks; }

  /// What to wait for (with poll); then Receive takes what has come. False when the process has died.
  int GetDescriptor() const { return m_socket.Get(); }
  bool Receive();

  /// The next line that has come whole, and the number of its machine.
  std::optional<std::pair<std::size_t, TMachineLine>> TakeLine();

  /// Waits for the next line; when the process dies before, it is the failure that says so.
  TMachineLine WaitForLine();

  /// Bytes received of lines that were not taken yet.
  std::size_t GetHeldSize() const { return m_received.size(); }

  /// Counts time in which the worker could hand over its line against the machine it is at work on.
  void Spend(std::chrono::nanoseconds time);
  /// What that machine has left; never more than the timeout.
  std::chrono::nanoseconds GetTimeLeft() const { return m_timeLeft; }
  bool IsLate() const { return !m_tasks.empty() && m_timeLeft.count() <= 0; }

  /// True once its last line was taken; the process ends by itself then, and its tasks are for another.
  bool HasRetired() const { return m_hasRetired; }

  /// How the process ended, once Receive has said that it died: "was ended by signal 11 (Segmentation fault)".
  std::string DescribeDeath();

  /// The signal that ended it, once its death was described; 0 when none did.
  int GetSignal() const { return m_signal; }

  /// In a worker's process: hands over the line of the machine it is at work on, and ends.
  [[noreturn]] static void EndWith(const TMachineLine& line);

 private:
  std::chrono::nanoseconds m_timeout;
  std::chrono::nanoseconds m_timeLeft;  // of the machine it is at work on
  TDescriptor m_socket;
  pid_t m_process = -1;
  int m_signal = 0;
  bool m_hasRetired = false;
  std::deque<TTask> m_tasks;
  std::string m_received;  // lines, each after its header
};
