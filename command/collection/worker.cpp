#include "command/collection/worker.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <utility>

#include "command/base/unusable.h"

namespace {

// The two processes are the same program. The parent sends a machine's name after its size; the worker sends a line
// after this header.
struct TLineHeader {
  std::uint32_t size;  // of the line, bytes
  std::uint16_t hasFailed;
  std::uint16_t isLast;
};

int gParent = -1;  // in a worker: the socket to its parent

// Processes that were killed and may not have ended yet.
std::vector<pid_t> gKilled;

/// Reaps the killed processes that have ended.
void ReapKilled() {
  const auto hasEnded = [](pid_t process) { return waitpid(process, nullptr, WNOHANG) != 0; };
  gKilled.erase(std::remove_if(gKilled.begin(), gKilled.end(), hasEnded), gKilled.end());
}

/// Sends header and text as one message, so that the receiver is woken only once.
template <typename THeader>
bool Send(int descriptor, const THeader& header, const std::string& text) {
  const std::string message = std::string(reinterpret_cast<const char*>(&header), sizeof header) + text;
  for (std::size_t sent = 0; sent < message.size();) {
    const ssize_t count = send(descriptor, message.data() + sent, message.size() - sent, MSG_NOSIGNAL);
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) sent += static_cast<std::size_t>(count);
  }
  return true;
}

bool SendMachine(int descriptor, const std::string& machine) {
  return Send(descriptor, static_cast<std::uint32_t>(machine.size()), machine);
}

bool SendLine(int descriptor, const TMachineLine& line) {
  const TLineHeader header = {static_cast<std::uint32_t>(line.text.size()), line.hasFailed, line.isLast};
  return Send(descriptor, header, line.text);
}

bool Receive(int descriptor, void* data, std::size_t size) {
  return size == 0 || recv(descriptor, data, size, MSG_WAITALL) == static_cast<ssize_t>(size);
}

bool ReceiveMachine(int descriptor, std::string& machine) {
  std::uint32_t size = 0;
  if (!Receive(descriptor, &size, sizeof size)) return false;
  machine.resize(size);
  return Receive(descriptor, machine.data(), size);
}

/// Removes the parent's handler of a signal. An ignored signal stays ignored.
void DropHandler(int signal) {
  struct sigaction action = {};
  sigaction(signal, nullptr, &action);
  if (action.sa_handler != SIG_IGN) std::signal(signal, SIG_DFL);
}

/// Only the parent answers Ctrl-C, and the worker ends when the parent does.
void PrepareProcess(pid_t parent) {
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGTERM, SIG_DFL);
  for (const int signal : {SIGHUP, SIGXCPU}) DropHandler(signal);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  prctl(PR_SET_PDEATHSIG, SIGKILL);   // works even on a stopped worker
  if (getppid() != parent) _exit(0);  // the parent ended before the call
}

[[noreturn]] void Serve(const TWorker::TWork& work) {
  std::string machine;
  while (ReceiveMachine(gParent, machine)) {
    const TMachineLine line = work(machine);
    if (line.isLast) TWorker::EndWith(line);
    if (!SendLine(gParent, line)) break;
  }
  _exit(0);
}

[[noreturn]] void Fail(const char* what) {
  throw TUnusable(what + std::string(": ") + std::strerror(errno) + "; take fewer --jobs");
}

}  // namespace

TWorker::TWorker(const TWork& work, const std::vector<int>& others, std::chrono::seconds timeout)
    : m_timeout(timeout), m_timeLeft(timeout) {
  ReapKilled();
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) Fail("no worker process can be reached");
  m_socket = TDescriptor(ends[0]);
  const TDescriptor workersEnd(ends[1]);
  const pid_t parent = getpid();
  m_process = fork();
  if (m_process < 0) Fail("no worker process can be started");
  if (m_process > 0) return;
  PrepareProcess(parent);
  for (const int other : others) close(other);
  m_socket.Close();
  gParent = workersEnd.Get();
  Serve(work);
}

TWorker::~TWorker() {
  if (m_process >= 0) {
    kill(m_process, SIGKILL);
    gKilled.push_back(m_process);
  }
  ReapKilled();
}

void TWorker::EndWith(const TMachineLine& line) {
  static_cast<void>(SendLine(gParent, {line.text, line.hasFailed, true}));
  _exit(0);
}

void TWorker::Spend(std::chrono::nanoseconds time) {
  if (!m_tasks.empty()) m_timeLeft -= time;
}

bool TWorker::Give(TTask task) {
  if (!SendMachine(m_socket.Get(), task.machine)) {
    shutdown(m_socket.Get(), SHUT_RDWR);  // the process may have a part of the name, and would wait for the rest
    return false;
  }
  if (m_tasks.empty()) m_timeLeft = m_timeout;
  m_tasks.push_back(std::move(task));
  return true;
}

bool TWorker::Receive() {
  char piece[65536];
  const ssize_t count = recv(m_socket.Get(), piece, sizeof piece, MSG_DONTWAIT);
  if (count < 0 && (errno == EINTR || errno == EAGAIN)) return true;
  if (count <= 0) return false;
  m_received.append(piece, static_cast<std::size_t>(count));
  return true;
}

std::optional<std::pair<std::size_t, TMachineLine>> TWorker::TakeLine() {
  TLineHeader header = {};
  if (m_received.size() < sizeof header) return std::nullopt;
  std::memcpy(&header, m_received.data(), sizeof header);
  if (m_received.size() < sizeof header + header.size) return std::nullopt;
  TMachineLine line = {m_received.substr(sizeof header, header.size), header.hasFailed != 0, header.isLast != 0};
  m_received.erase(0, sizeof header + header.size);
  const std::size_t number = m_tasks.front().number;
  m_tasks.pop_front();
  m_timeLeft = m_timeout;
  m_hasRetired = line.isLast;
  return std::pair(number, std::move(line));
}

TMachineLine TWorker::WaitForLine() {
  while (true) {
    pollfd descriptor = {m_socket.Get(), POLLIN, 0};
    static_cast<void>(poll(&descriptor, 1, -1));
    const bool isAlive = Receive();
    if (auto line = TakeLine()) return std::move(line->second);
    if (!isAlive) return {"the process that had it to do " + DescribeDeath(), true};
  }
}

std::string TWorker::DescribeDeath() {
  // The worker is ending, or has closed its socket and goes on. The signal ends it in the second case; in the first it
  // keeps its own status.
  kill(m_process, SIGKILL);
  int status = 0;
  constexpr int maxLooks = 30'000;  // 30 s with the pauses: a busy machine takes long to free gigabytes
  constexpr useconds_t pause = 1000;
  for (int look = 0; waitpid(m_process, &status, WNOHANG) != m_process; ++look) {
    if (look == maxLooks) return "neither works nor ends";
    usleep(pause);
  }
  m_process = -1;
  if (!WIFSIGNALED(status)) return "ended with status " + std::to_string(WEXITSTATUS(status));
  m_signal = WTERMSIG(status);
  return "was ended by signal " + std::to_string(m_signal) + " (" + strsignal(m_signal) + ")";
}
