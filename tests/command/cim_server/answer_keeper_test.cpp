#include "command/cim_server/answer_keeper.h"

#include <gtest/gtest.h>

namespace {

/// A keeper whose collections are counted and whose clock stands.
class AnswerKeeper : public testing::Test {
 protected:
  /// What it tells: the reason of a failure, "instances", or "nothing yet".
  std::string Ask() {
    std::string told = "nothing yet";
    m_keeper.Ask([&](const TCollected& collected) { told = collected.model ? "instances" : collected.failure; });
    return told;
  }

  static TCollected MakeModel() { return {std::make_shared<const TCimModel>(), ""}; }

  int m_collections = 0;
  std::chrono::steady_clock::time_point m_now;
  TAnswerKeeper m_keeper = TAnswerKeeper(
      std::chrono::seconds(60), [this] { ++m_collections; }, [this] { return m_now; });
};

}  // namespace

TEST_F(AnswerKeeper, CollectsAtTheStart) {
  m_keeper.Start();
  EXPECT_EQ(m_collections, 1);
}

TEST_F(AnswerKeeper, LetsThoseWhoAskWaitForTheFirstCollection) {
  m_keeper.Start();
  std::string told;
  m_keeper.Ask([&](const TCollected&) { told += "a"; });
  m_keeper.Ask([&](const TCollected&) { told += "b"; });
  EXPECT_EQ(told, "");
  m_keeper.Put(MakeModel());
  EXPECT_EQ(told, "ab");
  EXPECT_EQ(m_collections, 1);
}

TEST_F(AnswerKeeper, CollectsAnewWhenTheAnswerIsTooOld) {
  m_keeper.Start();
  m_keeper.Put(MakeModel());
  m_now += std::chrono::seconds(60);
  EXPECT_EQ(Ask(), "instances");
  EXPECT_EQ(m_collections, 1);
  m_now += std::chrono::seconds(1);
  EXPECT_EQ(Ask(), "instances");
  EXPECT_EQ(m_collections, 2);
}

TEST_F(AnswerKeeper, CollectsOnceAtATime) {
  m_keeper.Start();
  m_keeper.Put(MakeModel());
  m_now += std::chrono::hours(1);
  Ask();
  Ask();
  EXPECT_EQ(m_collections, 2);
}

TEST_F(AnswerKeeper, TellsTheOldAnswerUntilTheNewOneIsThere) {
  m_keeper.Start();
  m_keeper.Put({nullptr, "old"});
  EXPECT_EQ(Ask(), "old");
  EXPECT_EQ(Ask(), "old");
  m_keeper.Put(MakeModel());
  EXPECT_EQ(Ask(), "instances");
}

TEST_F(AnswerKeeper, TellsAFailureAndTriesAgainAtOnce) {
  m_keeper.Start();
  m_keeper.Put(MakeModel());
  m_now += std::chrono::hours(1);
  Ask();
  m_keeper.Put({nullptr, "it died"});
  EXPECT_EQ(m_collections, 2);
  EXPECT_EQ(Ask(), "it died");
  EXPECT_EQ(m_collections, 3);
}

TEST(AnswerKeeperAlone, TakesACollectionThatEndsAtOnce) {
  TAnswerKeeper* self = nullptr;
  TAnswerKeeper keeper(
      std::chrono::seconds(60),
      [&] {
        self->Put({nullptr, "no process"});
      },
      std::chrono::steady_clock::now);
  self = &keeper;
  keeper.Start();
  std::string told;
  keeper.Ask([&](const TCollected& collected) { told = collected.failure; });
  EXPECT_EQ(told, "no process");
}
