#include "command/collection/worker.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

#include "tests/support/pipe.h"
#include "tests/support/running_process.h"

namespace {

constexpr std::chrono::seconds kTimeout(60);

TMachineLine Echo(const std::string& machine) { return {machine + "\n", machine.empty()}; }

/// Waits for the next line; nothing if the worker dies before.
std::optional<std::pair<std::size_t, TMachineLine>> Wait(TWorker& worker) {
  bool isAlive = true;
  while (true) {
    if (auto line = worker.TakeLine()) return line;
    if (!isAlive) return std::nullopt;
    pollfd descriptor = {worker.GetDescriptor(), POLLIN, 0};
    poll(&descriptor, 1, -1);
    isAlive = worker.Receive();
  }
}

TMachineLine Work(TWorker& worker, const std::string& machine) {
  EXPECT_TRUE(worker.Give({0, machine}));
  return Wait(worker).value().second;
}

}  // namespace

TEST(Worker, TurnsAMachineIntoItsLine) {
  TWorker worker(Echo, {}, kTimeout);
  const TMachineLine line = Work(worker, "a");
  EXPECT_EQ(line.text, "a\n");
  EXPECT_FALSE(line.hasFailed);
}

TEST(Worker, TellsThatAMachineFailed) {
  TWorker worker(Echo, {}, kTimeout);
  EXPECT_TRUE(Work(worker, "").hasFailed);
}

TEST(Worker, KnowsWhatItHasNotDoneYet) {
  TWorker worker(Echo, {}, kTimeout);
  EXPECT_TRUE(worker.GetTasks().empty());
  EXPECT_TRUE(worker.Give({7, "a"}));
  EXPECT_TRUE(worker.Give({9, "b"}));
  ASSERT_EQ(worker.GetTasks().size(), 2U);
  EXPECT_EQ(worker.GetTasks()[0].number, 7U);
  EXPECT_EQ(worker.GetTasks()[0].machine, "a");
  Wait(worker);
  ASSERT_EQ(worker.GetTasks().size(), 1U);
  EXPECT_EQ(worker.GetTasks()[0].machine, "b");
}

TEST(Worker, TakesMachinesWhileItIsAtWork) {
  TWorker worker(Echo, {}, kTimeout);
  EXPECT_TRUE(worker.Give({7, "a"}));
  EXPECT_TRUE(worker.Give({9, "b"}));
  const auto first = Wait(worker).value();
  const auto second = Wait(worker).value();
  EXPECT_EQ(first.first, 7U);
  EXPECT_EQ(first.second.text, "a\n");
  EXPECT_EQ(second.first, 9U);
  EXPECT_EQ(second.second.text, "b\n");
}

TEST(Worker, WorksInAProcessOfItsOwn) {
  const pid_t parent = getpid();
  TWorker worker(
      [parent](const std::string&) {
        return TMachineLine{getpid() == parent ? "here" : "there", false};
      },
      {}, kTimeout);
  EXPECT_EQ(Work(worker, "a").text, "there");
}

TEST(Worker, TakesOneMachineAfterTheOther) {
  TWorker worker(Echo, {}, kTimeout);
  for (int number = 0; number < 100; ++number) {
    const std::string machine = std::to_string(number);
    EXPECT_EQ(Work(worker, machine).text, machine + "\n");
  }
}

TEST(Worker, HandsOverLinesOfAnyLength) {
  TWorker worker(Echo, {}, kTimeout);
  for (const std::size_t size : {std::size_t{0}, std::size_t{65528}, std::size_t{65529}, std::size_t{5'000'000}}) {
    std::string machine(size, '\0');
    for (std::size_t index = 0; index < size; ++index) machine[index] = static_cast<char>('a' + index % 23);
    EXPECT_EQ(Work(worker, machine).text, Echo(machine).text);
  }
}

TEST(Worker, CanBeEndedBySignalsThatItsParentBlocks) {
  sigset_t blocked;
  sigset_t before;
  sigemptyset(&blocked);
  sigaddset(&blocked, SIGTERM);
  sigprocmask(SIG_BLOCK, &blocked, &before);
  const auto isBlocked = [](const std::string&) -> TMachineLine {
    sigset_t own;
    sigprocmask(SIG_SETMASK, nullptr, &own);
    return {sigismember(&own, SIGTERM) != 0 ? "blocked" : "free", false};
  };
  TWorker worker(isBlocked, {}, kTimeout);
  EXPECT_EQ(Work(worker, "a").text, "free");
  sigprocmask(SIG_SETMASK, &before, nullptr);
}

TEST(Worker, DropsItsParentsHandlersButKeepsIgnoringWhatThatIgnores) {
  std::signal(SIGHUP, [](int) {});
  std::signal(SIGTERM, SIG_IGN);
  std::signal(SIGXCPU, SIG_IGN);
  const auto list = [](const std::string&) -> TMachineLine {
    std::string text;
    for (const int signal : {SIGHUP, SIGTERM, SIGXCPU}) {
      struct sigaction action = {};
      sigaction(signal, nullptr, &action);
      text += action.sa_handler == SIG_DFL ? "default " : action.sa_handler == SIG_IGN ? "ignored " : "handled ";
    }
    return {text, false};
  };
  TWorker worker(list, {}, kTimeout);
  EXPECT_EQ(Work(worker, "a").text, "default default ignored ");
  for (const int signal : {SIGHUP, SIGTERM, SIGXCPU}) std::signal(signal, SIG_DFL);
}

TEST(Worker, ClosesTheDescriptorsOfOthers) {
  const TPipe others;
  TWorker worker(
      [&](const std::string&) {
        return TMachineLine{fcntl(others.writing.Get(), F_GETFD) < 0 ? "closed" : "open", false};
      },
      {others.writing.Get()}, kTimeout);
  EXPECT_EQ(Work(worker, "a").text, "closed");
}

TEST(Worker, IsReachedThroughADescriptorThatNoProgramInherits) {
  const TWorker worker(Echo, {}, kTimeout);
  EXPECT_EQ(fcntl(worker.GetDescriptor(), F_GETFD), FD_CLOEXEC);
}

TEST(Worker, TellsHowItDied) {
  TWorker worker([](const std::string&) -> TMachineLine { std::abort(); }, {}, kTimeout);
  ASSERT_TRUE(worker.Give({0, "a"}));
  EXPECT_EQ(Wait(worker), std::nullopt);
  EXPECT_EQ(worker.DescribeDeath(), "was ended by signal 6 (Aborted)");
  EXPECT_EQ(worker.GetTasks().front().machine, "a");
}

TEST(Worker, TellsTheStatusWithWhichItEnded) {
  TWorker worker([](const std::string&) -> TMachineLine { _exit(3); }, {}, kTimeout);
  ASSERT_TRUE(worker.Give({0, "a"}));
  EXPECT_EQ(Wait(worker), std::nullopt);
  EXPECT_EQ(worker.DescribeDeath(), "ended with status 3");
}

TEST(Worker, TellsWhoWaitsForItsLineThatItDied) {
  TWorker worker([](const std::string&) -> TMachineLine { _exit(3); }, {}, kTimeout);
  ASSERT_TRUE(worker.Give({0, "a"}));
  const TMachineLine line = worker.WaitForLine();
  EXPECT_EQ(line.text, "the process that had it to do ended with status 3");
  EXPECT_TRUE(line.hasFailed);
}

TEST(Worker, IsKilledWhenItClosesItsSocketAndGoesOn) {
  TWorker worker(
      [](const std::string&) -> TMachineLine {
        for (int descriptor = STDERR_FILENO + 1; descriptor < 1024; ++descriptor) close(descriptor);
        while (true) pause();
      },
      {}, kTimeout);
  ASSERT_TRUE(worker.Give({0, "a"}));
  EXPECT_EQ(Wait(worker), std::nullopt);
  EXPECT_EQ(worker.DescribeDeath(), "was ended by signal 9 (Killed)");
}

TEST(Worker, HandsOverTheLinesFromBeforeItDied) {
  TWorker worker([](const std::string& machine) { return machine == "fatal" ? _exit(3), Echo("") : Echo(machine); }, {},
                 kTimeout);
  ASSERT_TRUE(worker.Give({0, "a"}));
  ASSERT_TRUE(worker.Give({1, "fatal"}));
  EXPECT_EQ(Wait(worker).value().second.text, "a\n");
  EXPECT_EQ(Wait(worker), std::nullopt);
  EXPECT_EQ(worker.GetTasks().front().machine, "fatal");
}

TEST(Worker, TakesNothingOnceItsProcessHasEnded) {
  TWorker worker([](const std::string&) -> TMachineLine { _exit(0); }, {}, kTimeout);
  ASSERT_TRUE(worker.Give({0, "a"}));
  EXPECT_EQ(Wait(worker), std::nullopt);
  EXPECT_FALSE(worker.Give({1, "b"}));
}

TEST(Worker, IsNotInterruptedWithItsParent) {
  std::signal(SIGINT, SIG_DFL);  // a shell may have started this with another
  TWorker worker(
      [](const std::string&) {
        std::raise(SIGINT);
        return TMachineLine{"still here", false};
      },
      {}, kTimeout);
  EXPECT_EQ(Work(worker, "a").text, "still here");
}

TEST(Worker, DoesNotOutliveItsParentWhateverItDoes) {
  TPipe work;
  const pid_t parent = fork();
  if (parent == 0) {
    TWorker worker(
        [&](const std::string&) -> TMachineLine {
          if (write(work.writing.Get(), "w", 1) != 1) _exit(1);
          while (true) pause();
        },
        {}, kTimeout);
    worker.Give({0, "a"});
    while (true) pause();
  }
  work.writing.Close();
  char byte = 0;
  ASSERT_EQ(read(work.reading.Get(), &byte, 1), 1);
  kill(parent, SIGKILL);
  EXPECT_EQ(read(work.reading.Get(), &byte, 1), 0);  // nobody holds the other end any more
  waitpid(parent, nullptr, 0);
}

TEST(Worker, IsLateOnceAMachineHasHadItsTime) {
  TWorker worker(Echo, {}, kTimeout);
  EXPECT_FALSE(worker.IsLate());
  ASSERT_TRUE(worker.Give({0, "a"}));
  EXPECT_EQ(worker.GetTimeLeft(), kTimeout);
  worker.Spend(std::chrono::seconds(59));
  EXPECT_EQ(worker.GetTimeLeft(), std::chrono::seconds(1));
  EXPECT_FALSE(worker.IsLate());
  worker.Spend(std::chrono::seconds(1));
  EXPECT_TRUE(worker.IsLate());
}

TEST(Worker, HasTheWholeTimeForEachMachine) {
  TWorker worker(Echo, {}, kTimeout);
  ASSERT_TRUE(worker.Give({0, "a"}));
  ASSERT_TRUE(worker.Give({1, "b"}));
  worker.Spend(std::chrono::seconds(59));
  ASSERT_TRUE(Wait(worker));
  EXPECT_EQ(worker.GetTimeLeft(), kTimeout);
  worker.Spend(std::chrono::seconds(61));
  EXPECT_TRUE(worker.IsLate());
  ASSERT_TRUE(Wait(worker));
  EXPECT_FALSE(worker.IsLate());
}

TEST(Worker, IsNeverLateWhileItHasNothingToDo) {
  TWorker worker(Echo, {}, kTimeout);
  worker.Spend(std::chrono::hours(1));
  EXPECT_FALSE(worker.IsLate());
  ASSERT_TRUE(worker.Give({0, "a"}));
  EXPECT_EQ(worker.GetTimeLeft(), kTimeout);
}

TEST(Worker, IsKilledWhateverItIgnoresAndIsNotWaitedFor) {
  const auto block = [](const std::string&) -> TMachineLine {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) std::signal(signal, SIG_IGN);
    while (true) pause();
  };
  pid_t process = -1;
  {
    TWorker worker(block, {}, kTimeout);
    process = GetChildren(getpid()).back();
    ASSERT_TRUE(worker.Give({0, "a"}));
    ASSERT_TRUE(WaitUntil([&] { return HasSignal(process, "SigIgn", SIGHUP); }));
  }
  EXPECT_TRUE(WaitUntil([&] { return HasEnded(process); }));
}

TEST(Worker, EndsAfterItsLastLine) {
  TWorker worker(
      [](const std::string& machine) {
        return TMachineLine{machine, true, machine == "last"};
      },
      {}, kTimeout);
  ASSERT_TRUE(worker.Give({0, "a"}));
  ASSERT_TRUE(worker.Give({1, "last"}));
  EXPECT_EQ(Wait(worker).value().second.text, "a");
  EXPECT_FALSE(worker.HasRetired());
  EXPECT_EQ(Wait(worker).value().second.text, "last");
  EXPECT_TRUE(worker.HasRetired());
  EXPECT_EQ(Wait(worker), std::nullopt);
  EXPECT_EQ(worker.DescribeDeath(), "ended with status 0");
}

TEST(Worker, MayEndWithALineInTheMidstOfItsWork) {
  const TPipe gate;
  TWorker worker(
      [&](const std::string&) -> TMachineLine {
        char byte = 0;
        static_cast<void>(read(gate.reading.Get(), &byte, 1) == 1);
        TWorker::EndWith({"the end", true});
      },
      {}, kTimeout);
  ASSERT_TRUE(worker.Give({7, "a"}));
  ASSERT_TRUE(worker.Give({8, "b"}));
  ASSERT_EQ(write(gate.writing.Get(), "x", 1), 1);
  const auto line = Wait(worker).value();
  EXPECT_EQ(line.first, 7U);
  EXPECT_EQ(line.second.text, "the end");
  EXPECT_TRUE(line.second.hasFailed);
  EXPECT_TRUE(worker.HasRetired());
  EXPECT_EQ(worker.GetTasks().front().machine, "b");
}

// This process hands over machines even while the worker waits for its line to be taken.
TEST(Worker, TakesTheLongestNamesWhileItsLineIsNotTaken) {
  const std::string name(4096, 'x');
  TWorker worker(
      [](const std::string& machine) {
        return TMachineLine{machine + std::string(5'000'000, 'y'), false};
      },
      {}, kTimeout);
  ASSERT_TRUE(worker.Give({0, name}));
  pollfd line = {worker.GetDescriptor(), POLLIN, 0};
  ASSERT_EQ(poll(&line, 1, -1), 1);
  ASSERT_TRUE(worker.Give({1, name}));
  ASSERT_TRUE(worker.Give({2, name}));
  for (int count = 0; count < 3; ++count) EXPECT_EQ(Wait(worker).value().second.text.size(), 5'004'096U);
}

TEST(Worker, LeavesNoDeadProcessBehind) {
  for (int count = 0; count < 100; ++count) TWorker(Echo, {}, kTimeout);
  EXPECT_TRUE(WaitUntil([] {
    const TWorker worker(Echo, {}, kTimeout);  // takes note of those before
    int dead = 0;
    for (const pid_t child : GetChildren(getpid())) dead += HasEnded(child) ? 1 : 0;
    return dead == 0;
  }));
}
