#include "displayinfo/fleet/worker.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>

namespace {

TMachineLine Echo(const std::string& machine) { return {machine + "\n", machine.empty()}; }

/// Until the worker is done with its machine, or has died.
TWorker::EState Wait(TWorker& worker) {
  TWorker::EState state = TWorker::EState::kBusy;
  while (state == TWorker::EState::kBusy) {
    pollfd descriptor = {worker.GetDescriptor(), POLLIN, 0};
    poll(&descriptor, 1, -1);
    state = worker.Receive();
  }
  return state;
}

TMachineLine Work(TWorker& worker, const std::string& machine) {
  EXPECT_TRUE(worker.Give(0, machine));
  EXPECT_EQ(Wait(worker), TWorker::EState::kDone);
  return worker.TakeLine();
}

}  // namespace

TEST(Worker, TurnsAMachineIntoItsLine) {
  TWorker worker(Echo, {});
  const TMachineLine line = Work(worker, "a");
  EXPECT_EQ(line.text, "a\n");
  EXPECT_FALSE(line.hasFailed);
}

TEST(Worker, TellsThatAMachineFailed) {
  TWorker worker(Echo, {});
  EXPECT_TRUE(Work(worker, "").hasFailed);
}

TEST(Worker, IsBusyUntilItsLineIsTaken) {
  TWorker worker(Echo, {});
  EXPECT_TRUE(worker.IsIdle());
  EXPECT_TRUE(worker.Give(7, "a"));
  EXPECT_FALSE(worker.IsIdle());
  EXPECT_EQ(worker.GetNumber(), 7U);
  EXPECT_EQ(worker.GetMachine(), "a");
  Wait(worker);
  worker.TakeLine();
  EXPECT_TRUE(worker.IsIdle());
}

TEST(Worker, WorksInAProcessOfItsOwn) {
  const pid_t parent = getpid();
  TWorker worker(
      [parent](const std::string&) {
        return TMachineLine{getpid() == parent ? "here" : "there", false};
      },
      {});
  EXPECT_EQ(Work(worker, "a").text, "there");
}

TEST(Worker, TakesOneMachineAfterTheOther) {
  TWorker worker(Echo, {});
  for (int number = 0; number < 100; ++number) {
    const std::string machine = std::to_string(number);
    EXPECT_EQ(Work(worker, machine).text, machine + "\n");
  }
}

TEST(Worker, HandsOverLinesOfAnyLength) {
  TWorker worker(Echo, {});
  for (const std::size_t size : {std::size_t{0}, std::size_t{65528}, std::size_t{65529}, std::size_t{5'000'000}}) {
    EXPECT_EQ(Work(worker, std::string(size, 'x')).text.size(), size + 1);
  }
}

TEST(Worker, TellsHowItDied) {
  TWorker worker([](const std::string&) -> TMachineLine { std::abort(); }, {});
  ASSERT_TRUE(worker.Give(0, "a"));
  EXPECT_EQ(Wait(worker), TWorker::EState::kDied);
  EXPECT_EQ(worker.DescribeDeath(), "was ended by signal 6 (Aborted)");
}

TEST(Worker, TellsTheStatusWithWhichItEnded) {
  TWorker worker([](const std::string&) -> TMachineLine { _exit(3); }, {});
  ASSERT_TRUE(worker.Give(0, "a"));
  EXPECT_EQ(Wait(worker), TWorker::EState::kDied);
  EXPECT_EQ(worker.DescribeDeath(), "ended with status 3");
}

TEST(Worker, TellsThatItDiedBeforeItWasGivenAMachine) {
  TWorker worker([](const std::string&) -> TMachineLine { _exit(0); }, {});
  ASSERT_TRUE(worker.Give(0, "a"));
  EXPECT_EQ(Wait(worker), TWorker::EState::kDied);
  EXPECT_FALSE(worker.Give(1, "b"));
}

TEST(Worker, IsNotInterruptedWithItsParent) {
  TWorker worker(
      [](const std::string&) {
        std::raise(SIGINT);
        return TMachineLine{"still here", false};
      },
      {});
  EXPECT_EQ(Work(worker, "a").text, "still here");
}
