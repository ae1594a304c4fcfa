#include "command/collection/time_limit.h"

#include <poll.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <utility>

namespace {

std::string gLine;
int gStatus = 1;

/// A signal handler: it may call no more than poll, write and _exit.
void End(int) {
  pollfd errors = {STDERR_FILENO, POLLOUT, 0};
  // A reader that takes nothing must not keep the process from ending.
  if (poll(&errors, 1, 0) == 1) static_cast<void>(!write(STDERR_FILENO, gLine.data(), gLine.size()));
  _exit(gStatus);
}

void SetTimer(std::chrono::milliseconds time) {
  constexpr int perSecond = 1000;
  itimerval timer = {};
  timer.it_value.tv_sec = static_cast<time_t>(time.count() / perSecond);
  timer.it_value.tv_usec = static_cast<suseconds_t>(time.count() % perSecond * perSecond);
  setitimer(ITIMER_REAL, &timer, nullptr);
}

}  // namespace

std::string DescribeTimeout(std::chrono::seconds limit) {
  return "took longer than " + std::to_string(limit.count()) + " s; --timeout SECONDS gives it longer";
}

TTimeLimit::TTimeLimit(std::chrono::milliseconds limit, std::string line, int status) {
  gLine = std::move(line);
  gStatus = status;
  std::signal(SIGALRM, End);
  sigset_t alarm;  // the program that started the command may have blocked it
  sigemptyset(&alarm);
  sigaddset(&alarm, SIGALRM);
  sigprocmask(SIG_UNBLOCK, &alarm, nullptr);
  SetTimer(limit);
}

TTimeLimit::~TTimeLimit() {
  SetTimer(std::chrono::milliseconds(0));
  std::signal(SIGALRM, SIG_DFL);
}
