#include "command/cim_server/collecting_worker.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <csignal>

#include "command/report/json_report.h"
#include "tests/command/cim_server/cim_answer.h"

namespace {

constexpr std::chrono::seconds kLong(60);

/// The result of the collection.
TCollected Collect(TCollectingWorker& worker) {
  if (auto failed = worker.Begin()) return std::move(*failed);
  while (true) {
    pollfd descriptor = {worker.GetDescriptor(), POLLIN, 0};
    poll(&descriptor, 1, -1);
    if (auto collected = worker.Take()) return std::move(*collected);
  }
}

TMachineLine MakeAnswer(const std::string&) { return {MakeTwoMonitorsJson(), false}; }

}  // namespace

TEST(CollectingWorker, BringsTheInstances) {
  TCollectingWorker worker(MakeAnswer, kLong, true);
  const TCollected collected = Collect(worker);
  ASSERT_NE(collected.model, nullptr) << collected.failure;
  EXPECT_EQ(collected.model->GetInstances().size(), 9U);  // three of them of the server
  EXPECT_NE(Collect(worker).model, nullptr);
}

TEST(CollectingWorker, BringsTheRemarksThatComeBeforeTheAnswer) {
  TCollectingWorker worker(
      [](const std::string&) {
        return TMachineLine{"one\ntwo\n" + MakeTwoMonitorsJson(), false};
      },
      kLong, true);
  const TCollected collected = Collect(worker);
  ASSERT_NE(collected.model, nullptr) << collected.failure;
  EXPECT_EQ(collected.remarks, (std::vector<std::string>{"one", "two"}));
}

TEST(CollectingWorker, KeepsTheStarterWhenACollectorEnds) {
  TCollectingWorker worker(
      [](const std::string&) {
        return TMachineLine{MakeTwoMonitorsJson(), false, true};
      },
      kLong, false);
  for (int round = 0; round < 3; ++round) EXPECT_NE(Collect(worker).model, nullptr);
}

TEST(CollectingWorker, BringsTheReasonOfAFailure) {
  TCollectingWorker worker(
      [](const std::string&) {
        return TMachineLine{MakeErrorLine("", "no such machine"), true};
      },
      kLong, true);
  const TCollected collected = Collect(worker);
  EXPECT_EQ(collected.model, nullptr);
  EXPECT_EQ(collected.failure, "no such machine");
}

TEST(CollectingWorker, TellsThatACollectorDied) {
  TCollectingWorker worker([](const std::string&) -> TMachineLine { std::abort(); }, kLong, true);
  for (int round = 0; round < 2; ++round) {
    EXPECT_NE(Collect(worker).failure.find("was ended by signal 6"), std::string::npos);
  }
}

TEST(CollectingWorker, GivesUpACollectorThatHangs) {
  TCollectingWorker worker(
      [](const std::string&) -> TMachineLine {
        raise(SIGSTOP);
        return {"", true};
      },
      std::chrono::seconds(1), true);
  EXPECT_NE(Collect(worker).failure.find("collecting took longer than 1 s; --timeout SECONDS"), std::string::npos);
}

TEST(CollectingWorker, TellsThatAnAnswerCannotBeUsed) {
  TCollectingWorker worker([](const std::string&) { return TMachineLine{"{}\n", false}; }, kLong, true);
  EXPECT_NE(Collect(worker).failure.find("the answer cannot be used"), std::string::npos);
}

TEST(CollectingWorker, ReplacesAStarterThatDied) {
  // The collector's parent is the starter.
  TCollectingWorker worker(
      [](const std::string&) -> TMachineLine {
        kill(getppid(), SIGKILL);
        while (true) pause();
      },
      kLong, true);
  for (int round = 0; round < 2; ++round) {
    const std::string failure = Collect(worker).failure;
    EXPECT_NE(failure.find("starts collections was ended by signal 9"), std::string::npos) << failure;
  }
}

TEST(CollectingWorker, DoesNotReplaceAStarterWithPrivileges) {
  TCollectingWorker worker(
      [](const std::string&) -> TMachineLine {
        kill(getppid(), SIGKILL);
        while (true) pause();
      },
      kLong, false);
  Collect(worker);
  EXPECT_NE(Collect(worker).failure.find("start displayinfo serve anew"), std::string::npos);
}
