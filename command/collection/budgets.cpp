#include "command/collection/budgets.h"

#include <poll.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>
#include <algorithm>
#include <csignal>
#include <fstream>
#include <new>
#include <string>
#include <utility>

namespace {

std::string gLine;
int gStatus = 1;

/// A signal handler: it may call only functions such as poll, write and _exit.
void End(int) {
  pollfd errors = {STDERR_FILENO, POLLOUT, 0};
  // A reader that reads nothing must not keep the process from ending.
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

constexpr rlim_t kBudget = rlim_t{2} * 1024 * 1024 * 1024;

volatile bool gHasRunOut = false;
rlim_t gUsersLimit = RLIM_INFINITY;  // the user's own limit, if it is lower than the budget

[[noreturn]] void NoteThatItRanOut() {
  gHasRunOut = true;
  throw std::bad_alloc();
}

/// The mapped address space in bytes. It can be large: a sanitizer maps terabytes before main begins.
rlim_t CountMapped() {
  rlim_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
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

void LimitMemory() {
  if (std::get_new_handler() == NoteThatItRanOut) return;
  std::set_new_handler(NoteThatItRanOut);
  rlimit limit = {};
  if (getrlimit(RLIMIT_AS, &limit) != 0) return;
  const rlim_t own = CountMapped() + kBudget;
  if (limit.rlim_cur < own) {
    gUsersLimit = limit.rlim_cur;
    return;
  }
  limit.rlim_cur = own;
  static_cast<void>(setrlimit(RLIMIT_AS, &limit));
}

bool HasMemoryRunOut() { return gHasRunOut; }

std::string DescribeMemoryLimit() {
  if (gUsersLimit == RLIM_INFINITY) return "needs more than 2 GiB of memory, the most that one machine may take";
  return "needs more memory than the limit set for this process, " + std::to_string(gUsersLimit / 1024) +
         " KiB; raise it (ulimit -v)";
}
