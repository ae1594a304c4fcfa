// A process of its own that turns machines into lines of the fleet's answer: what kills it costs one machine alone.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// What the answer says of one machine.
struct TMachineLine {
  std::string text;  // with its line end
  bool hasFailed;    // it holds an error
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

  bool IsIdle() const { return !m_isBusy; }

  /// Hands a machine, which has that number, to the idle worker; false when its process has died meanwhile.
  bool Give(std::size_t number, const std::string& machine);
  std::size_t GetNumber() const { return m_number; }
  const std::string& GetMachine() const { return m_machine; }

  /// What to wait for (with poll) while the worker is busy; then Receive takes what has come.
  int GetDescriptor() const { return m_descriptor; }
  enum class EState { kBusy, kDone, kDied };
  EState Receive();

  /// The line, once Receive has said that it is done; the worker is idle then.
  TMachineLine TakeLine();

  /// How the process ended, once Receive has said that it died: "was ended by signal 11 (Segmentation fault)".
  std::string DescribeDeath();

 private:
  pid_t m_process = -1;
  int m_descriptor = -1;
  bool m_isBusy = false;
  std::size_t m_number = 0;
  std::string m_machine;
  std::string m_received;  // of the answer: its header, then the line
};
