#include "command/collection/time_limit.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>

namespace {

constexpr std::chrono::milliseconds kShort(1);

[[noreturn]] void NeverReturn() {
  const TTimeLimit limit(kShort, "too late\n");
  while (true) pause();
}

bool IsArmed() {
  itimerval timer = {};
  getitimer(ITIMER_REAL, &timer);
  return timer.it_value.tv_sec != 0 || timer.it_value.tv_usec != 0;
}

}  // namespace

TEST(TimeLimit, EndsTheProcessWithItsLine) { EXPECT_EXIT(NeverReturn(), testing::ExitedWithCode(1), "^too late\n$"); }

TEST(TimeLimit, EndsAProcessThatWasStartedToIgnoreTimers) {
  const auto run = [] {
    std::signal(SIGALRM, SIG_IGN);
    sigset_t all;
    sigfillset(&all);
    sigprocmask(SIG_BLOCK, &all, nullptr);
    NeverReturn();
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(1), "^too late\n$");
}

TEST(TimeLimit, EndsAProcessWhoseStandardErrorNobodyReads) {
  const auto run = [] {
    int ends[2];
    if (pipe2(ends, O_NONBLOCK) != 0) _exit(7);
    while (write(ends[1], "x", 1) == 1) continue;
    fcntl(ends[1], F_SETFL, 0);  // waits from now on
    dup2(ends[1], STDERR_FILENO);
    NeverReturn();
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(1), "");
}

TEST(TimeLimit, EndsWithItsOwner) {
  {
    const TTimeLimit limit(std::chrono::hours(1), "");
    EXPECT_TRUE(IsArmed());
  }
  EXPECT_FALSE(IsArmed());
}

TEST(TimeLimit, IsDescribedWithItsCure) {
  EXPECT_EQ(DescribeTimeout(std::chrono::seconds(60)), "took longer than 60 s; --timeout SECONDS gives it longer");
}
