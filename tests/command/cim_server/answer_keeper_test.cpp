#include "command/cim_server/answer_keeper.h"

#include <gtest/gtest.h>

namespace {

typedef std::function<void()> TWake;

/// A keeper whose collections are counted, and whose clock and alarm the test controls.
class AnswerKeeper : public testing::Test {
 protected:
  /// Asks, and appends what is told once it is: the reason of a failure, or "instances", and a space.
  void Ask(std::string& told) {
    m_keeper.Ask(
        {[&told](const TCollected& collected) { told += (collected.model ? "instances" : collected.failure) + " "; },
         [] { return true; }});
  }

  std::string Ask() {
    std::string told;
    Ask(told);
    return told;
  }

  static TCollected MakeModel() { return {std::make_shared<const TCimModel>(), "", {}}; }
  static TCollected MakeFailure(const std::string& reason) { return {nullptr, reason, {}}; }

  void Pass(std::chrono::milliseconds time) { m_now += time; }

  void Wake() {
    const TWake wake = std::move(m_wake);
    m_wake = nullptr;
    wake();
  }

  /// Makes an answer that is too old, and begins the next collection.
  void MakeOld() {
    m_keeper.Start();
    m_keeper.Put(MakeModel());
    Pass(std::chrono::hours(1));
  }

  int m_collections = 0;
  std::chrono::steady_clock::time_point m_now;
  std::chrono::milliseconds m_wakeTime{-1};
  TWake m_wake;
  TAnswerKeeper m_keeper = TAnswerKeeper(
      std::chrono::seconds(60), [this] { ++m_collections; }, [this] { return m_now; },
      [this](std::chrono::milliseconds time, TWake wake) {
        m_wakeTime = time;
        m_wake = std::move(wake);
      });
};

}  // namespace

TEST_F(AnswerKeeper, CollectsAtTheStart) {
  m_keeper.Start();
  EXPECT_EQ(m_collections, 1);
}

TEST_F(AnswerKeeper, LetsThoseWhoAskWaitForTheFirstCollectionHoweverLong) {
  m_keeper.Start();
  std::string told;
  Ask(told);
  Pass(std::chrono::hours(1));
  Ask(told);
  EXPECT_EQ(told, "");
  EXPECT_FALSE(m_wake);
  m_keeper.Put(MakeModel());
  EXPECT_EQ(told, "instances instances ");
  EXPECT_EQ(m_collections, 1);
}

TEST_F(AnswerKeeper, TellsAnAnswerAtOnceAsLongAsItIsNotTooOld) {
  m_keeper.Start();
  m_keeper.Put(MakeModel());
  Pass(std::chrono::seconds(60));
  EXPECT_EQ(Ask(), "instances ");
  EXPECT_EQ(m_collections, 1);
}

TEST_F(AnswerKeeper, LetsThoseWhoAskWaitForANewAnswerWhenTheOldOneIsTooOld) {
  MakeOld();
  std::string told;
  Ask(told);
  Ask(told);
  EXPECT_EQ(m_collections, 2);
  EXPECT_EQ(told, "");
  m_keeper.Put(MakeFailure("new"));
  EXPECT_EQ(told, "new new ");
}

TEST_F(AnswerKeeper, TellsTheOldAnswerAfterTwoSeconds) {
  MakeOld();
  std::string first;
  std::string second;
  Ask(first);
  EXPECT_EQ(m_wakeTime, std::chrono::seconds(2));
  Pass(std::chrono::milliseconds(1500));
  Ask(second);
  Pass(std::chrono::milliseconds(500));
  Wake();
  EXPECT_EQ(first, "instances ");
  EXPECT_EQ(second, "");
  EXPECT_EQ(m_wakeTime, std::chrono::milliseconds(1500));
  Pass(std::chrono::milliseconds(1500));
  Wake();
  EXPECT_EQ(second, "instances ");
  EXPECT_FALSE(m_wake);
  EXPECT_EQ(m_collections, 2);
}

TEST_F(AnswerKeeper, WakesOnceForAllWhoWait) {
  MakeOld();
  std::string told;
  Ask(told);
  Pass(std::chrono::milliseconds(500));
  Ask(told);
  EXPECT_EQ(m_wakeTime, std::chrono::seconds(2));
}

TEST_F(AnswerKeeper, DoesNotWakeTooEarly) {
  MakeOld();
  std::string first;
  std::string second;
  Ask(first);
  m_now += std::chrono::microseconds(100);
  Ask(second);
  m_now += std::chrono::microseconds(1'999'900);
  Wake();
  EXPECT_EQ(m_wakeTime, std::chrono::milliseconds(1));
}

TEST_F(AnswerKeeper, WakesInVainWhenTheAnswerCameInTime) {
  MakeOld();
  std::string told;
  Ask(told);
  m_keeper.Put(MakeModel());
  Pass(std::chrono::seconds(2));
  Wake();
  EXPECT_EQ(told, "instances ");
  EXPECT_FALSE(m_wake);
}

TEST_F(AnswerKeeper, RepeatsACollectionThatFailedOnceASecondAtMost) {
  m_keeper.Start();
  m_keeper.Put(MakeFailure("it died"));
  for (int request = 0; request < 1000; ++request) EXPECT_EQ(Ask(), "it died ");
  Pass(std::chrono::seconds(1));
  EXPECT_EQ(Ask(), "it died ");
  EXPECT_EQ(m_collections, 1);
  Pass(std::chrono::milliseconds(1));
  std::string told;
  Ask(told);
  EXPECT_EQ(m_collections, 2);
  m_keeper.Put(MakeModel());
  EXPECT_EQ(told, "instances ");
}

TEST_F(AnswerKeeper, ForgetsThoseWhoHaveGoneBeforeAnotherWaits) {
  m_keeper.Start();
  const auto held = std::make_shared<int>();
  m_keeper.Ask({[held](const TCollected&) { FAIL() << "told to nobody"; }, [] { return false; }});
  EXPECT_EQ(held.use_count(), 2);
  std::string told;
  Ask(told);
  EXPECT_EQ(held.use_count(), 1);
  m_keeper.Put(MakeModel());
  EXPECT_EQ(told, "instances ");
}

TEST(AnswerKeeperAlone, TakesACollectionThatEndsAtOnce) {
  TAnswerKeeper* self = nullptr;
  TAnswerKeeper keeper(
      std::chrono::seconds(60),
      [&] {
        self->Put({nullptr, "no process", {}});
      },
      std::chrono::steady_clock::now, [](std::chrono::milliseconds, const TWake&) {});
  self = &keeper;
  keeper.Start();
  std::string told;
  keeper.Ask({[&](const TCollected& collected) { told = collected.failure; }, [] { return true; }});
  EXPECT_EQ(told, "no process");
}

TEST_F(AnswerKeeper, CollectsAgainForWhoAsksAfterTheMachineHasChanged) {
  m_keeper.Start();
  m_keeper.Put(MakeModel());
  m_keeper.Drop();
  EXPECT_EQ(m_collections, 1);  // only when somebody asks
  std::string told;
  Ask(told);
  EXPECT_EQ(told, "");
  EXPECT_EQ(m_collections, 2);
  m_keeper.Put(MakeModel());
  EXPECT_EQ(told, "instances ");
  EXPECT_EQ(Ask(), "instances ");
  EXPECT_EQ(m_collections, 2);
}

TEST_F(AnswerKeeper, CollectsAgainWhenTheMachineHasChangedDuringACollection) {
  m_keeper.Start();
  m_keeper.Drop();
  m_keeper.Put(MakeModel());
  std::string told;
  Ask(told);
  EXPECT_EQ(told, "");
  EXPECT_EQ(m_collections, 2);
}
