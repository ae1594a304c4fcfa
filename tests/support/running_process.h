// A command that a test starts, watches while it runs, and sends signals to.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

/// Checks again and again until the condition holds; false if it never does.
template <typename TCondition>
bool WaitUntil(TCondition holds) {
  for (int look = 0; look < 30000; ++look) {
    if (holds()) return true;
    usleep(1000);
  }
  return false;
}

/// The content of the process's file in /proc; empty if there is none.
inline std::string ReadProcess(pid_t process, const std::string& file) {
  std::ifstream stream("/proc/" + std::to_string(process) + "/" + file, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

/// A line of its status, without its name: "State" gives "S (sleeping)".
inline std::string ReadStatus(pid_t process, const std::string& name) {
  std::istringstream status(ReadProcess(process, "status"));
  for (std::string line; std::getline(status, line);) {
    if (line.compare(0, name.size() + 2, name + ":\t") == 0) return line.substr(name.size() + 2);
  }
  return std::string();
}

/// True if that signal is in the set: "SigCgt" are those that the process handles, "SigIgn" those that it ignores.
inline bool HasSignal(pid_t process, const std::string& set, int signal) {
  const std::string text = ReadStatus(process, set);
  return !text.empty() && (std::stoull(text, nullptr, 16) >> (signal - 1) & 1) != 0;
}

/// True if the process has ended, even if nobody has waited for it yet.
inline bool HasEnded(pid_t process) {
  const std::string state = ReadStatus(process, "State");
  return state.empty() || state[0] == 'Z' || state[0] == 'X';
}

inline std::vector<pid_t> GetChildren(pid_t process) {
  std::istringstream children(ReadProcess(process, "task/" + std::to_string(process) + "/children"));
  return {std::istream_iterator<pid_t>(children), {}};
}

/// The most memory that it has used so far, in KiB.
inline unsigned long GetPeakMemory(pid_t process) {
  std::istringstream text(ReadStatus(process, "VmHWM"));
  unsigned long peak = 0;
  text >> peak;
  return peak;
}

class TRunningProcess {
 public:
  /// Starts a line of shell; begin it with exec for the command to be the process itself.
  explicit TRunningProcess(const std::string& line) : m_process(fork()) {
    if (m_process != 0) return;
    execl("/bin/sh", "sh", "-c", line.c_str(), nullptr);
    _exit(127);
  }
  ~TRunningProcess() {
    if (m_process <= 0) return;
    kill(m_process, SIGKILL);
    waitpid(m_process, nullptr, 0);
  }
  TRunningProcess(const TRunningProcess&) = delete;
  TRunningProcess& operator=(const TRunningProcess&) = delete;

  pid_t GetId() const { return m_process; }
  void Send(int signal) const { kill(m_process, signal); }

  std::vector<pid_t> GetChildren() const { return ::GetChildren(m_process); }

  /// How it ended, as waitpid tells; -1 if it does not end.
  int Wait() {
    int status = -1;
    if (!WaitUntil([&] { return waitpid(m_process, &status, WNOHANG) == m_process; })) return -1;
    m_process = -1;
    return status;
  }

 private:
  pid_t m_process;
};
