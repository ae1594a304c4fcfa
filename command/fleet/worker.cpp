#include "command/fleet/worker.h"

#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <utility>

#include "command/base/unusable.h"

namespace {

// Between the two processes, which are the same program: a machine's name behind its size, and a line behind this.
struct TLineHeader {
  std::uint32_t size;  // of the line, bytes
  std::uint32_t hasFailed;
};

/// Sends header and text as one message, so that their receiver is woken once.
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
  return Send(descriptor, TLineHeader{static_cast<std::uint32_t>(line.text.size()), line.hasFailed ? 1U : 0U},
              line.text);
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

/// Interrupting is the parent's to answer, and a worker does not outlive it.
void PrepareProcess(pid_t parent) {
  std::signal(SIGINT, SIG_IGN);
  std::signal(SIGTERM, SIG_DFL);
  sigset_t none;
  sigemptyset(&none);
  sigprocmask(SIG_SETMASK, &none, nullptr);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(0);  // it ended before that was said
}

[[noreturn]] void Serve(int descriptor, const TWorker::TWork& work) {
  std::string machine;
  while (ReceiveMachine(descriptor, machine) && SendLine(descriptor, work(machine))) continue;
  _exit(0);
}

}  // namespace

TWorker::TWorker(const TWork& work, const std::vector<int>& others) {
  int ends[2];
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
    throw TUnusable(std::string("no worker process can be reached: ") + std::strerror(errno) + "; take fewer --jobs");
  }
  const pid_t parent = getpid();
  m_process = fork();
  if (m_process == 0) {
    PrepareProcess(parent);
    for (const int other : others) close(other);
    close(ends[0]);
    Serve(ends[1], work);
  }
  close(ends[1]);
  m_descriptor = ends[0];
  if (m_process < 0) {
    const std::string reason = std::strerror(errno);
    close(m_descriptor);
    throw TUnusable("no worker process can be started: " + reason + "; take fewer --jobs");
  }
}

TWorker::~TWorker() {
  close(m_descriptor);
  if (m_process < 0) return;
  kill(m_process, SIGTERM);
  while (waitpid(m_process, nullptr, 0) < 0 && errno == EINTR) continue;
}

bool TWorker::Give(TTask task) {
  if (!SendMachine(m_descriptor, task.machine)) return false;
  m_tasks.push_back(std::move(task));
  return true;
}

bool TWorker::Receive() {
  char piece[65536];
  const ssize_t count = recv(m_descriptor, piece, sizeof piece, MSG_DONTWAIT);
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
  TMachineLine line = {m_received.substr(sizeof header, header.size), header.hasFailed != 0};
  m_received.erase(0, sizeof header + header.size);
  const std::size_t number = m_tasks.front().number;
  m_tasks.pop_front();
  return std::pair(number, std::move(line));
}

std::string TWorker::DescribeDeath() {
  int status = 0;
  while (waitpid(m_process, &status, 0) < 0 && errno == EINTR) continue;
  m_process = -1;
  if (!WIFSIGNALED(status)) return "ended with status " + std::to_string(WEXITSTATUS(status));
  return "was ended by signal " + std::to_string(WTERMSIG(status)) + " (" + strsignal(WTERMSIG(status)) + ")";
}
