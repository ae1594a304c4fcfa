// A worker process, which makes a line of the answer for each machine. A crash loses only one machine.
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

/// The answer's line for one machine.
struct TMachineLine {
  std::string text;     // with its line end
  bool hasFailed;       // the line reports an error
  bool isLast = false;  // the process ends after handing over the line, since it is not fit for another machine
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
  /// process, which the worker closes. `timeout`: for each machine. Throws TUnusable if the system has no room for
  /// another process.
  TWorker(const TWork& work, const std::vector<int>& others, std::chrono::seconds timeout);
  /// Kills the process, but does not wait for its end, which may never come: the system can hold a process, for example
  /// while a file server does not answer.
  ~TWorker();
  TWorker(const TWorker&) = delete;
  TWorker& operator=(const TWorker&) = delete;

  /// Hands over a machine, which waits until those before it are done. False if the process cannot be reached; it then
  /// ends. At most two machines of 4096 bytes each may be on their way: they fit into the socket's buffer, so this
  /// never waits for the worker, which may itself be waiting for this process to take a line.
  bool Give(TTask task);

  /// Unfinished tasks in order; the first one is running.
  const std::deque<TTask>& GetTasks() const { return m_tasks; }

  /// The descriptor to wait for with poll.
  int GetDescriptor() const { return m_socket.Get(); }
  /// Takes what has come. False if the process has died.
  bool Receive();

  /// The next complete line, and the number of its machine; nothing if none has come yet.
  std::optional<std::pair<std::size_t, TMachineLine>> TakeLine();

  /// Waits for the next line. If the process dies first, returns a line that says so.
  TMachineLine WaitForLine();

  /// The bytes of received lines that were not taken yet.
  std::size_t GetHeldSize() const { return m_received.size(); }

  /// Counts time in which the worker could have handed over its line against the running task.
  void Spend(std::chrono::nanoseconds time);
  /// The time that the running task has left; never more than the timeout.
  std::chrono::nanoseconds GetTimeLeft() const { return m_timeLeft; }
  bool IsLate() const { return !m_tasks.empty() && m_timeLeft.count() <= 0; }

  /// True once its last line was taken. The process then ends by itself, and another worker must do its tasks.
  bool HasRetired() const { return m_hasRetired; }

  /// How the process ended, after Receive has returned false: "was ended by signal 11 (Segmentation fault)".
  std::string DescribeDeath();

  /// The signal that ended the process, after DescribeDeath; 0 if none did.
  int GetSignal() const { return m_signal; }

  /// In a worker's process: hands over the line of the running task, and ends the process.
  [[noreturn]] static void EndWith(const TMachineLine& line);

 private:
  std::chrono::nanoseconds m_timeout;
  std::chrono::nanoseconds m_timeLeft;  // of the running task
  TDescriptor m_socket;
  pid_t m_process = -1;
  int m_signal = 0;
  bool m_hasRetired = false;
  std::deque<TTask> m_tasks;
  std::string m_received;  // lines, each after its header
};
