#include "command/compare/difference.h"

#include <gmock/gmock.h>

#include "tests/command/compare/compared_answer.h"

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

const std::vector<std::uint8_t> kLeft = MakeEdid("A190", "S1");
const std::vector<std::uint8_t> kRight = MakeEdid("A190", "S2");
const std::vector<std::uint8_t> kNameless = MakeEdid("", "");

/// "changed Gamma 2.2 2.4", a line for each change.
template <typename TDevice>
std::vector<std::string> List(const std::vector<TDeviceDifference<TDevice>>& differences) {
  std::vector<std::string> lines;
  for (const auto& difference : differences) {
    const char* const states[] = {"came", "gone", "changed"};
    std::string line = states[static_cast<int>(difference.state)];
    for (const TChange& change : difference.changes) {
      line += " " + change.name;
      std::visit([&](const auto& fact) { line += " " + json(fact.before).dump() + " " + json(fact.after).dump(); },
                 change.fact);
    }
    lines.push_back(line);
  }
  return lines;
}

std::vector<std::string> CompareMonitors(const TAnswerBuilder& before, const TAnswerBuilder& after) {
  const TMachineDifference difference = Compare(before.Build(), after.Build());
  EXPECT_THAT(difference.controllers, IsEmpty());
  return List(difference.monitors);
}

std::vector<std::string> CompareControllers(const TAnswerBuilder& before, const TAnswerBuilder& after) {
  return List(Compare(before.Build(), after.Build()).controllers);
}

/// A monitor at a connector, and the connector's mode.
struct TConnected {
  const char* connector;
  std::vector<std::uint8_t> edid;
  int height;
};

/// A machine whose configuration was made from what the kernel knows.
TAnswerBuilder MakeKernelMachine(const std::vector<TConnected>& all) {
  TAnswerBuilder answer;
  answer.Controller("PCI:0:2:0", {{"Name", "Card"}, {"DeviceID", all.empty() ? "card0" : all.front().connector}});
  if (all.empty()) answer.Head("PCI:0:2:0", "card0", {{"Name", "Card"}});
  for (const TConnected& output : all) {
    answer.Monitor(output.edid, output.connector)
        .Head("PCI:0:2:0", output.connector,
              {{"Name", "Card"},
               {"CurrentHorizontalResolution", 800},
               {"CurrentVerticalResolution", output.height},
               {"MonitorString", {"Of " + std::to_string(output.height)}}});
  }
  return answer;
}

}  // namespace

TEST(MonitorDifference, IsNoneBetweenEqualOnes) {
  EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kLeft), TAnswerBuilder().Monitor(kLeft)), IsEmpty());
}

TEST(MonitorDifference, TellsWhatCameAndWhatIsGone) {
  EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kLeft), TAnswerBuilder().Monitor(kRight)),
              ElementsAre("came", "gone"));
}

TEST(MonitorDifference, IsNoneForOneAtAnotherPlace) {
  EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kLeft, "card0-DP-1").Monitor(kRight, "card0-DP-2"),
                              TAnswerBuilder().Monitor(kRight, "card0-DP-1").Monitor(kLeft, "card0-HDMI-A-1")),
              IsEmpty());
}

TEST(MonitorDifference, TellsThatADockedMonitorIsGoneAndNotThatTheOtherHasChanged) {
  EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kLeft).Monitor(kRight), TAnswerBuilder().Monitor(kRight)),
              ElementsAre("gone"));
}

TEST(MonitorDifference, TellsTheChangedProperties) {
  EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kLeft, "", {{"Gamma", 2.2}, {"Name", "a"}, {"Old", 1}}),
                              TAnswerBuilder().Monitor(kLeft, "", {{"Gamma", 2.4}, {"Name", "a"}, {"New", 2}})),
              ElementsAre("changed Gamma 2.2 2.4 New null 2 Old 1 null"));
}

TEST(MonitorDifference, TellsAnotherEdidOfTheSameMonitor) {
  const std::vector<std::uint8_t> edid =
      TEdidBuilder().Manufacturer("ACM").Name(0, "A190").Serial(1, "S1").Gamma(9).Build();
  const auto differences =
      Compare(TAnswerBuilder().Monitor(kLeft).Build(), TAnswerBuilder().Monitor(edid).Build()).monitors;
  ASSERT_THAT(differences, SizeIs(1));
  ASSERT_THAT(differences[0].changes, SizeIs(1));
  EXPECT_EQ(differences[0].changes[0].name, "EDID");
}

TEST(MonitorDifference, TellsWhatAnotherEdidSaysOfTheMonitor) {
  const std::vector<std::uint8_t> edid = TEdidBuilder()
                                             .Manufacturer("ACM")
                                             .Name(0, "A190")
                                             .Serial(1, "S1")
                                             .ImageSize(38, 30)
                                             .RangeLimits(2, 56, 76, 30, 83, 14)
                                             .Established(0x20, 0)
                                             .Build();
  const auto differences = Compare(TAnswerBuilder().Unlisted(kLeft).Build(), TAnswerBuilder().Unlisted(edid).Build());
  ASSERT_THAT(differences.monitors, SizeIs(1));
  const std::vector<TChange>& changes = differences.monitors[0].changes;
  std::vector<std::string> names;
  for (const TChange& change : changes) names.push_back(change.name);
  ASSERT_THAT(names, ElementsAre("EDID", "Highest rate", "Largest mode", "Modes of the EDID", "Picture"));
  const auto& picture = std::get<TChanged<TPropertyValue>>(changes[4].fact);
  EXPECT_EQ(picture.before, TPropertyValue());
  EXPECT_EQ(picture.after, TPropertyValue("380 x 300 mm, 19.1 inches"));
  EXPECT_THAT(std::get<TChanged<TModes>>(changes[3].fact).after, ElementsAre("640x480@59.94Hz"));
}

TEST(MonitorDifference, CountsMonitorsThatNothingTellsApart) {
  EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kNameless).Monitor(kLeft).Monitor(kNameless),
                              TAnswerBuilder().Monitor(kNameless).Monitor(kLeft)),
              ElementsAre("gone"));
  EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kNameless),
                              TAnswerBuilder().Monitor(kNameless).Monitor(kNameless).Monitor(kNameless)),
              ElementsAre("came", "came"));
}

TEST(MonitorDifference, IsTheSmallestBetweenMonitorsThatNothingTellsApart) {
  EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kLeft, "", {{"Gamma", 1}}).Monitor(kLeft, "", {{"Gamma", 2}}),
                              TAnswerBuilder().Monitor(kLeft, "", {{"Gamma", 2}}).Monitor(kLeft, "", {{"Gamma", 3}})),
              ElementsAre("changed Gamma 1 3"));
}

TEST(MonitorDifference, SaysOnlyThatAMonitorIsNoLongerReported) {
  EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kLeft, "", {{"Gamma", 1}}), TAnswerBuilder().Unlisted(kLeft)),
              ElementsAre("changed Listed true false"));
}

TEST(MonitorDifference, LeavesOutWhatOneSideWasNotAskedFor) {
  const TAnswerBuilder all = TAnswerBuilder().Monitor(kLeft).Instance(
      "QRXSG_MonitorResolution",
      {{"SettingID", R"(Monitor 1\ Setting 1)"}, {"HorizontalResolution", 800}, {"VerticalResolution", 600}});
  EXPECT_THAT(CompareMonitors(all, TAnswerBuilder().Classes({"QRXSG_DesktopMonitor"}).Monitor(kLeft)), IsEmpty());
  EXPECT_THAT(CompareMonitors(all, TAnswerBuilder().Classes({"QRXSG_VideoHead"})), IsEmpty());
  EXPECT_THAT(CompareMonitors(all, TAnswerBuilder().Monitor(kLeft)), SizeIs(1));
}

TEST(MonitorDifference, IsNoneOfAMachineThatWasNotAskedForMonitors) {
  TAnswerBuilder machine = TAnswerBuilder().Unlisted(kLeft);
  EXPECT_THAT(List(ListMonitors(machine.Build(), EState::kCame)), ElementsAre("came"));
  EXPECT_THAT(ListMonitors(machine.Classes({"QRXSG_VideoController"}).Build(), EState::kCame), IsEmpty());
}

TEST(ControllerDifference, TellsWhatCameIsGoneAndHasChanged) {
  EXPECT_THAT(CompareControllers(TAnswerBuilder().Controller("PCI:1:0:0", {{"Name", "a"}}).Controller("PCI:2:0:0", {}),
                                 TAnswerBuilder().Controller("PCI:3:0:0", {}).Controller("PCI:1:0:0", {{"Name", "b"}})),
              ElementsAre("came", "changed Name \"a\" \"b\"", "gone"));
}

TEST(ControllerDifference, TellsTheModeOfEachHeadOnce) {
  const auto make = [](int height) {
    return TAnswerBuilder()
        .Controller("PCI:1:0:0", {{"CurrentVerticalResolution", height}})
        .Head("PCI:1:0:0", "Left", {{"CurrentVerticalResolution", height}});
  };
  EXPECT_THAT(CompareControllers(make(600), make(768)),
              ElementsAre("changed Head Left: CurrentVerticalResolution 600 768"));
}

TEST(ControllerDifference, TellsTheModeOfTheControllerWhereHeadsWereNotAskedFor) {
  const auto make = [](int height) {
    return TAnswerBuilder()
        .Classes({"QRXSG_VideoController"})
        .Controller("PCI:1:0:0", {{"CurrentVerticalResolution", height}});
  };
  EXPECT_THAT(CompareControllers(make(600), make(768)), ElementsAre("changed CurrentVerticalResolution 600 768"));
  EXPECT_THAT(CompareControllers(make(600).Head("PCI:1:0:0", "Left", {}), make(600)), IsEmpty());
}

TEST(ControllerDifference, TellsAHeadThatWasTakenAway) {
  const TAnswerBuilder one = TAnswerBuilder().Controller("PCI:1:0:0", {}).Head("PCI:1:0:0", "Left", {});
  EXPECT_THAT(CompareControllers(TAnswerBuilder(one).Head("PCI:1:0:0", "Right", {}), one),
              ElementsAre(R"(changed Heads ["Left","Right"] ["Left"])"));
}

TEST(ControllerDifference, IsNoneWhenAMonitorOfAKernelsConnectorIsAnotherOne) {
  const TAnswerBuilder both = MakeKernelMachine({{"card0-DP-1", kLeft, 600}, {"card0-HDMI-A-1", kRight, 768}});
  const TAnswerBuilder swapped = MakeKernelMachine({{"card0-DP-1", kRight, 768}, {"card0-HDMI-A-1", kLeft, 600}});
  const TAnswerBuilder replaced = MakeKernelMachine({{"card0-DP-1", kNameless, 480}, {"card0-HDMI-A-1", kRight, 768}});
  const TAnswerBuilder one = MakeKernelMachine({{"card0-HDMI-A-1", kRight, 768}});
  const TAnswerBuilder none = MakeKernelMachine({});
  for (const TAnswerBuilder& other : {swapped, replaced, one, none}) {
    EXPECT_THAT(Compare(both.Build(), other.Build()).controllers, IsEmpty());
    EXPECT_THAT(Compare(other.Build(), both.Build()).controllers, IsEmpty());
  }
}

TEST(ControllerDifference, IsNoneWhereOnlyOneSideKnowsTheMonitorOfAKernelsConnector) {
  const TAnswerBuilder known = MakeKernelMachine({{"card0-DP-1", kLeft, 600}});
  const TAnswerBuilder unknown =
      TAnswerBuilder()
          .Controller("PCI:0:2:0", {{"Name", "Card"}, {"DeviceID", "card0-DP-1"}})
          .Head("PCI:0:2:0", "card0-DP-1",
                {{"Name", "Card"}, {"CurrentHorizontalResolution", 800}, {"CurrentVerticalResolution", 768}});
  EXPECT_THAT(Compare(known.Build(), unknown.Build()).controllers, IsEmpty());
  EXPECT_THAT(Compare(unknown.Build(), known.Build()).controllers, IsEmpty());
}

TEST(ControllerDifference, TellsTheModeOfAKernelsConnectorWithTheSameMonitor) {
  EXPECT_THAT(CompareControllers(MakeKernelMachine({{"card0-DP-1", kLeft, 600}}),
                                 MakeKernelMachine({{"card0-DP-1", kLeft, 768}})),
              ElementsAre("changed Head card0-DP-1: CurrentVerticalResolution 600 768"));
}

TEST(ControllerDifference, SaysNothingOfTheModesThatOneSideCouldNotSee) {
  const TAnswerBuilder seen = MakeKernelMachine({{"card0-DP-1", kLeft, 600}});
  const TAnswerBuilder unseen = TAnswerBuilder()
                                    .Controller("PCI:0:2:0", {{"Name", "Card"}, {"DeviceID", "card0-DP-1"}})
                                    .Monitor(kLeft, "card0-DP-1")
                                    .Head("PCI:0:2:0", "card0-DP-1", {{"Name", "Card"}});
  EXPECT_THAT(CompareControllers(seen, unseen), IsEmpty());
  EXPECT_THAT(CompareControllers(unseen, seen), IsEmpty());
}

TEST(ControllerDifference, SaysNothingOfAKernelsConnectorWhereHeadsWereNotAskedFor) {
  const auto make = [](const char* head, int height) {
    return TAnswerBuilder()
        .Classes({"QRXSG_VideoController"})
        .Controller("PCI:1:0:0", {{"DeviceID", head}, {"CurrentVerticalResolution", height}});
  };
  EXPECT_THAT(CompareControllers(make("card0-DP-1", 600), make("card0-DP-2", 768)), IsEmpty());
  EXPECT_THAT(CompareControllers(make("Left", 600), make("Left", 768)), SizeIs(1));
}

TEST(ControllerDifference, TellsThatHeadsOfAConfigurationTookThePlaceOfTheKernels) {
  EXPECT_THAT(
      CompareControllers(MakeKernelMachine({}),
                         TAnswerBuilder().Controller("PCI:0:2:0", {{"Name", "Card"}}).Head("PCI:0:2:0", "Left", {})),
      ElementsAre(R"(changed Heads ["card0"] ["Left"])"));
}

TEST(ControllerDifference, TellsOfEachOfTheHeadsThatAreCalledAlike) {
  const auto make = [](int first, int second) {
    return TAnswerBuilder()
        .Controller("PCI:1:0:0", {})
        .Head("PCI:1:0:0", "Left", {{"CurrentVerticalResolution", first}})
        .Head("PCI:1:0:0", "Left", {{"CurrentVerticalResolution", second}});
  };
  EXPECT_THAT(CompareControllers(make(600, 768), make(480, 768)),
              ElementsAre("changed Head Left: CurrentVerticalResolution 600 480"));
  EXPECT_THAT(
      CompareControllers(
          make(600, 768),
          TAnswerBuilder().Controller("PCI:1:0:0", {}).Head("PCI:1:0:0", "Left", {{"CurrentVerticalResolution", 600}})),
      ElementsAre(R"(changed Heads ["Left","Left"] ["Left"])"));
}

TEST(ControllerDifference, TellsOfAHeadWhatItsControllerDoesNotSay) {
  const auto make = [](const char* first, const char* second) {
    return TAnswerBuilder()
        .Controller("PCI:1:0:0", {{"Name", first}})
        .Head("PCI:1:0:0", "Left", {{"Name", first}})
        .Head("PCI:1:0:0", "Right", {{"Name", second}});
  };
  EXPECT_THAT(CompareControllers(make("a", "a"), make("b", "b")), ElementsAre("changed Name \"a\" \"b\""));
  EXPECT_THAT(CompareControllers(make("a", "a"), make("b", "a")), ElementsAre("changed Name \"a\" \"b\""));
  EXPECT_THAT(CompareControllers(make("a", "a"), make("a", "b")), ElementsAre("changed Head Right: Name \"a\" \"b\""));
  EXPECT_THAT(CompareControllers(make("a", "b"), make("a", "a")), ElementsAre("changed Head Right: Name \"b\" \"a\""));
}

TEST(Difference, TakesNoPropertyOfAStrangersForAFactOfItsOwn) {
  for (const char* const name : {"EDID", "Listed", "Modes", "Heads", "Head Left: Name"}) {
    EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kLeft, "", {{name, "!"}}),
                                TAnswerBuilder().Monitor(kLeft, "", {{name, 5}})),
                ElementsAre("changed " + std::string(name) + " \"!\" 5"));
    EXPECT_THAT(CompareControllers(TAnswerBuilder().Controller("PCI:1:0:0", {{name, {nullptr, "a"}}}),
                                   TAnswerBuilder().Controller("PCI:1:0:0", {})),
                ElementsAre("changed " + std::string(name) + " [null,\"a\"] null"));
  }
}

TEST(Difference, IsNoneBetweenAPropertyThatIsNullAndOneThatIsMissing) {
  EXPECT_THAT(
      CompareMonitors(TAnswerBuilder().Monitor(kLeft, "", {{"Gamma", nullptr}}), TAnswerBuilder().Monitor(kLeft)),
      IsEmpty());
}

TEST(Difference, IsNoneBetweenTwoWaysToWriteANumber) {
  EXPECT_THAT(CompareMonitors(TAnswerBuilder().Monitor(kLeft, "", {{"Gamma", 1.0}}),
                              TAnswerBuilder().Monitor(kLeft, "", {{"Gamma", 1}})),
              IsEmpty());
}
