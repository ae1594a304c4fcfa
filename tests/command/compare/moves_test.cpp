#include "command/compare/moves.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>

#include "command/edid/edid_facts.h"
#include "tests/command/compare/compared_answer.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;

namespace {

typedef std::vector<std::vector<std::string>> TFleet;  // the serial numbers of the monitors of each machine

TMachineFacts MakeMachine(const std::vector<std::string>& serials) {
  TAnswerBuilder answer;
  for (std::size_t index = 0; index < serials.size(); ++index) {
    // Numbers of their own, since byte-equal EDIDs would be told apart by their connectors.
    answer.Monitor(MakeEdid("A190", serials[index], static_cast<unsigned int>(index)));
  }
  return answer.Build();
}

/// The report about a fleet: "S1: 0 to 1" for a move, otherwise "S1: gone from 0" and "S1: came to 1".
class TTold {
 public:
  TTold(const TFleet& before, const TFleet& after) {
    TMoves finder;
    std::vector<TMachineReport> reports;
    for (std::size_t index = 0; index < before.size(); ++index) {
      const TMachineFacts old = MakeMachine(before[index]);
      const TMachineFacts now = MakeMachine(after[index]);
      finder.CountOld(old);
      finder.CountNew(now);
      reports.push_back({std::to_string(index), EMachineState::kChanged, Compare(old, now)});
    }
    doubtful = finder.Find(reports);
    for (const TMachineReport& report : reports) {
      for (const auto& difference : report.difference.monitors) Add(report.name, difference);
    }
  }

  std::vector<std::string> moves;
  std::vector<std::string> others;
  std::vector<TDoubtfulSerial> doubtful;

 private:
  void Add(const std::string& machine, const TDeviceDifference<TMonitor>& difference) {
    const std::string serial = ReadEdidFacts(difference.device.output.edid).serialText;
    if (difference.state == EState::kMoved) moves.push_back(serial + ": " + difference.origin + " to " + machine);
    if (difference.state == EState::kCame) others.push_back(serial + ": came to " + machine);
    if (difference.state == EState::kGone) others.push_back(serial + ": gone from " + machine);
  }
};

}  // namespace

TEST(Moves, AreTwoWhereThreeMachinesExchangeTwoMonitors) {
  const TTold told({{"S1", "S9"}, {"S2"}, {}}, {{"S9"}, {"S1"}, {"S2"}});
  EXPECT_THAT(told.moves, ElementsAre("S1: 0 to 1", "S2: 1 to 2"));
  EXPECT_THAT(told.others, IsEmpty());
  EXPECT_THAT(told.doubtful, IsEmpty());
}

TEST(Moves, LeaveWhatCameAndWhatIsGoneFromTheWholeFleet) {
  const TTold told({{"S1"}, {"S2"}}, {{"S3"}, {"S2"}});
  EXPECT_THAT(told.moves, IsEmpty());
  EXPECT_THAT(told.others, ElementsAre("S3: came to 0", "S1: gone from 0"));
}

TEST(Moves, AreOfMonitorsWithSerialNumbersOnly) {
  const TTold told({{""}, {}}, {{}, {""}});
  EXPECT_THAT(told.moves, IsEmpty());
  EXPECT_THAT(told.others, ElementsAre(": gone from 0", ": came to 1"));
}

TEST(Moves, AreNotOfASerialNumberThatSeveralMachinesOfOneSideHave) {
  for (const auto& [before, after] : {std::pair<TFleet, TFleet>({{"S1"}, {"S1"}, {}}, {{"S1"}, {}, {"S1"}}),
                                      std::pair<TFleet, TFleet>({{"S1"}, {"S1"}, {}}, {{}, {}, {"S1"}}),
                                      std::pair<TFleet, TFleet>({{"S1"}, {}, {}}, {{}, {"S1"}, {"S1"}})}) {
    const TTold told(before, after);
    EXPECT_THAT(told.moves, IsEmpty());
    EXPECT_THAT(told.others, testing::Not(IsEmpty()));
    ASSERT_THAT(told.doubtful, SizeIs(1));
    EXPECT_EQ(ReadEdidFacts(told.doubtful[0].monitor.output.edid).serialText, "S1");
  }
  EXPECT_THAT(TTold({{"S1"}, {"S1"}}, {{"S1"}, {"S1"}}).doubtful, IsEmpty());
}

TEST(Moves, AreOfAMonitorOnceEvenIfTwoOutputsOfItsNewMachineHaveIt) {
  const TTold told({{"S1"}, {}}, {{}, {"S1", "S1"}});
  EXPECT_THAT(told.moves, ElementsAre("S1: 0 to 1"));
  EXPECT_THAT(told.others, ElementsAre("S1: came to 1"));
}

TEST(Moves, AreAllOfAThousandAndNoOther) {
  constexpr std::size_t machines = 700;
  std::minstd_rand random(7);
  TFleet before(machines);
  TFleet after(machines);
  std::vector<std::string> expected;
  for (int monitor = 0; monitor < 3000; ++monitor) {
    const std::string serial = "M" + std::to_string(monitor);
    const std::size_t from = random() % machines;
    std::size_t to = from;
    while (monitor < 1000 && to == from) to = random() % machines;
    before[from].push_back(serial);
    after[to].push_back(serial);
    if (to != from) expected.push_back(serial + ": " + std::to_string(from) + " to " + std::to_string(to));
  }
  const TTold told(before, after);
  EXPECT_THAT(expected, SizeIs(1000));
  EXPECT_THAT(told.moves, UnorderedElementsAreArray(expected));
  EXPECT_THAT(told.others, IsEmpty());
}
