// A process of its own that turns machines into lines of the fleet's answer: what kills it costs one machine alone.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <deque>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// What the answer says of one machine.
struct TMachineLine {
  std::string text;  // with its line end
  bool hasFailed;    // it holds an error
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
  /// process that are none of the worker's business. Throws TUnusable when the system has no room for another process.
  TWorker(const TWork& work, const std::vector<int>& others);
  /// Ends the process, whatever it does.
  ~TWorker();
  TWorker(const TWorker&) = delete;
  TWorker& operator=(const TWorker&) = delete;

  /// Hands over a machine, which waits until those before are done; false when the process cannot be reached.
  bool Give(TTask task);

  /// What it has not done yet; it is at work on the first.
  const std::deque<TTask>& GetTasks() const { return m_tasks; }

  /// What to wait for (with poll); then Receive takes what has come. False when the process has died.
  int GetDescriptor() const { return m_descriptor; }
  bool Receive();

  /// The next line that has come whole, and the number of its machine.
  std::optional<std::pair<std::size_t, TMachineLine>> TakeLine();

  /// How the process ended, once Receive has said that it died: "was ended by signal 11 (Segmentation fault)".
  std::string DescribeDeath();

 private:
  pid_t m_process = -1;
  int m_descriptor = -1;
  std::deque<TTask> m_tasks;
  std::string m_received;  // lines, each behind its header
};
