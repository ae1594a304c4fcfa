#include "command/collection/budgets.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/time.h>
#include <unistd.h>

#include <csignal>
#include <iostream>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/sanitizers.h"

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

constexpr std::size_t kPiece = std::size_t{16} * 1024 * 1024;

void TakePieces(std::size_t count) {
  std::vector<std::unique_ptr<char[]>> taken;
  while (taken.size() < count) taken.emplace_back(new char[kPiece]);
}

/// Runs `work` within the budget, and ends this process with the result as its message.
template <typename TWork>
[[noreturn]] void RunLimited(const TWork& work) {
  std::string end;
  try {
    end = WithinMemory(work);
  } catch (const TUnusable& failure) {
    end = std::string("unusable: ") + failure.what();
  } catch (const std::exception& failure) {
    end = std::string("another: ") + failure.what();
  }
  std::cerr << end << '\n';
  std::_Exit(0);
}

/// Each test runs in a process of its own: the limit stays with a process.
class MemoryBudget : public testing::Test {
 protected:
  MemoryBudget() { testing::FLAGS_gtest_death_test_style = "threadsafe"; }

  static constexpr const char* kTooMuch =
      "^unusable: needs more than 2 GiB of memory, the most that one machine may "
      "take\n$";
  const testing::ExitedWithCode done{0};
};

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

TEST(TimeLimit, LeavesNoHandlerBehind) {
  { const TTimeLimit limit(std::chrono::hours(1), ""); }
  struct sigaction action = {};
  sigaction(SIGALRM, nullptr, &action);
  EXPECT_EQ(action.sa_handler, SIG_DFL);
}

TEST(TimeLimit, EndsTheProcessWithTheStatusThatItIsGiven) {
  const auto run = [] {
    const TTimeLimit limit(kShort, "too late\n", 2);
    while (true) pause();
  };
  EXPECT_EXIT(run(), testing::ExitedWithCode(2), "^too late\n$");
}

TEST(TimeLimit, IsDescribedWithItsCure) {
  EXPECT_EQ(DescribeTimeout(std::chrono::seconds(60)), "took longer than 60 s; --timeout SECONDS gives it longer");
}

TEST_F(MemoryBudget, LeavesAloneWhatNeedsLess) {
  EXPECT_EXIT(RunLimited([] {
                TakePieces(100);  // 1.6 GiB
                return std::string("enough");
              }),
              done, "^enough\n$");
}

TEST_F(MemoryBudget, SaysWhatLimitTheUserHasSet) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizers need more address space than such a limit leaves";
  const auto run = [] {
    const rlimit limit = {rlim_t{1024} * 1024 * 1024, RLIM_INFINITY};
    setrlimit(RLIMIT_AS, &limit);
    RunLimited([] {
      TakePieces(100);
      return std::string("enough");
    });
  };
  EXPECT_EXIT(run(), done,
              "^unusable: needs more memory than the limit set for this process, 1048576 KiB; raise it .ulimit -v.\n$");
}

TEST_F(MemoryBudget, PassesOnOtherFailures) {
  EXPECT_EXIT(RunLimited([]() -> std::string { throw std::runtime_error("broken"); }), done, "^another: broken\n$");
}

TEST_F(MemoryBudget, FailsWhatNeedsMore) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizer ends the process itself";
  EXPECT_EXIT(RunLimited([] {
                TakePieces(130);
                return std::string("enough");
              }),
              done, kTooMuch);
}

TEST_F(MemoryBudget, DoesNotGrowWithFurtherLimits) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizer ends the process itself";
  EXPECT_EXIT(RunLimited([] {
                std::vector<std::unique_ptr<char[]>> taken;
                while (taken.size() < 100) taken.emplace_back(new char[kPiece]);
                LimitMemory();
                TakePieces(40);
                return std::string("enough");
              }),
              done, kTooMuch);
}

TEST_F(MemoryBudget, FailsWhatNeededMoreAndWentOnWithout) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizer ends the process itself";
  EXPECT_EXIT(RunLimited([] {
                try {
                  TakePieces(130);
                } catch (const std::bad_alloc&) {
                }
                return std::string("incomplete");
              }),
              done, kTooMuch);
}

TEST_F(MemoryBudget, FailsWhatNeededMoreAndFailedWithAnotherReason) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizer ends the process itself";
  EXPECT_EXIT(RunLimited([]() -> std::string {
                try {
                  TakePieces(130);
                } catch (const std::bad_alloc&) {
                  throw std::runtime_error("broken");
                }
                return "enough";
              }),
              done, kTooMuch);
}
