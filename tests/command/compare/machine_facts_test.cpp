#include "command/compare/machine_facts.h"

#include <gmock/gmock.h>

#include "command/edid/identity.h"
#include "tests/command/compare/compared_answer.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAreArray;

TEST(MonitorIdentity, IsThatOfTheEdid) {
  const TEdid edid = MakeEdid("a", "S1", 7);
  const TMonitor monitor = TAnswerBuilder().Monitor(edid, "card0-DP-1").Build().monitors.at(0);
  EXPECT_EQ(monitor.identity, Identify({ReadEdidFacts(edid), edid}).text);
  EXPECT_TRUE(monitor.isNumbered);
}

TEST(MonitorIdentity, IsNumberedByOneSerialNumber) {
  EXPECT_TRUE(TAnswerBuilder().Monitor(MakeEdid("a", "S1")).Build().monitors.at(0).isNumbered);
  EXPECT_TRUE(TAnswerBuilder().Monitor(MakeEdid("a", "", 7)).Build().monitors.at(0).isNumbered);
  EXPECT_FALSE(TAnswerBuilder().Monitor(MakeEdid("a", "")).Build().monitors.at(0).isNumbered);
}

TEST(MonitorIdentity, IsOneForByteEqualEdidsWhereverTheyHang) {
  const TEdid edid = MakeEdid("a", "S1");
  const TMachineFacts facts = TAnswerBuilder().Monitor(edid, "card0-DP-1").Monitor(edid, "card0-DP-2").Build();
  for (const TMonitor& monitor : facts.monitors) {
    EXPECT_EQ(monitor.identity, Identify({ReadEdidFacts(edid), edid}).text);
    EXPECT_FALSE(monitor.isNumbered);
  }
}

TEST(MachineFacts, AreThoseOfTheMonitorWithItsModesAndWithoutItsPlace) {
  const TMachineFacts facts =
      TAnswerBuilder()
          .Monitor(MakeEdid("A190", "S1"), "card0-DP-1",
                   {{"Gamma", 2.2}, {"SystemName", "ws-17"}, {"ManufacturingDate", "20100405060000.000000+120"}})
          .Instance("QRXSG_MonitorResolution", {{"SettingID", R"(Monitor 1\ Setting 2)"},
                                                {"HorizontalResolution", 800},
                                                {"VerticalResolution", 600},
                                                {"RefreshRate", 60}})
          .Instance("QRXSG_MonitorResolution", {{"SettingID", R"(Monitor 1\ Setting 1)"},
                                                {"HorizontalResolution", 1280},
                                                {"VerticalResolution", 1024},
                                                {"RefreshRate", 75}})
          .Build();
  ASSERT_THAT(facts.monitors, SizeIs(1));
  const TMonitor& monitor = facts.monitors[0];
  EXPECT_EQ(monitor.output.connector, "card0-DP-1");
  EXPECT_EQ(monitor.output.deviceId, "Monitor 1");
  EXPECT_EQ(monitor.output.edid, MakeEdid("A190", "S1"));
  EXPECT_THAT(monitor.modes, ElementsAre("1280x1024@75Hz", "800x600@60Hz"));
  EXPECT_THAT(monitor.properties, ElementsAre(Pair("Gamma", 2.2)));
}

TEST(MachineFacts, AreNotRepeatedForEveryOutputThatNamesTheSameMonitor) {
  TReadAnswer answer;
  const TEdid edid = MakeEdid("A190", "S1");
  answer.outputs = {{"Monitor 1", "", edid}, {"Monitor 1", "", edid}};
  answer.requests = {{kAllClasses,
                      {{"QRXSG_DesktopMonitor", {{"DeviceID", "Monitor 1"}, {"Gamma", 2.2}}},
                       {"QRXSG_MonitorResolution", {{"SettingID", R"(Monitor 1\ Setting 1)"}, {"RefreshRate", 60}}}}}};
  const TMachineFacts facts = MakeFacts(answer);
  ASSERT_THAT(facts.monitors, SizeIs(2));
  EXPECT_THAT(facts.monitors[0].properties, ElementsAre(Pair("Gamma", 2.2)));
  EXPECT_THAT(facts.monitors[0].modes, ElementsAre("x@60Hz"));
  EXPECT_THAT(facts.monitors[1].properties, IsEmpty());
  EXPECT_THAT(facts.monitors[1].modes, IsEmpty());
}

TEST(MachineFacts, HaveAMonitorThatThePluginDoesNotReport) {
  const TMachineFacts facts = TAnswerBuilder().Unlisted(MakeEdid("A190", "S1")).Build();
  ASSERT_THAT(facts.monitors, SizeIs(1));
  EXPECT_FALSE(facts.monitors[0].IsListed());
}

TEST(MachineFacts, AreThoseOfAControllerWithItsHeads) {
  const TMachineFacts facts = TAnswerBuilder()
                                  .Controller("PCI:1:0:0", {{"Name", "Card"}, {"DeviceID", "Left"}})
                                  .Head("PCI:1:0:0", "Right", {{"CurrentVerticalResolution", 600}})
                                  .Head("PCI:1:0:0", "Left", {{"HeadNumber", 1}})
                                  .Head("PCI:2:0:0", "Other", {{"CurrentVerticalResolution", 768}})
                                  .Build();
  ASSERT_THAT(facts.controllers, SizeIs(1));
  const TController& controller = facts.controllers[0];
  EXPECT_EQ(controller.identity, "PCI:1:0:0");
  EXPECT_EQ(controller.deviceId, "Left");
  EXPECT_THAT(controller.properties, ElementsAre(Pair("Name", "Card")));
  ASSERT_THAT(controller.heads, SizeIs(2));
  EXPECT_EQ(controller.heads[0].name, "Left");
  EXPECT_THAT(controller.heads[0].properties, IsEmpty());
  EXPECT_EQ(controller.heads[1].name, "Right");
  EXPECT_THAT(controller.heads[1].properties, ElementsAre(Pair("CurrentVerticalResolution", 600)));
}

TEST(MachineFacts, HaveEachOfTheHeadsThatAreCalledAlike) {
  const TMachineFacts facts = TAnswerBuilder()
                                  .Controller("PCI:1:0:0", {})
                                  .Head("PCI:1:0:0", "Left", {{"Name", "First"}})
                                  .Head("PCI:1:0:0", "Left", {{"Name", "Second"}})
                                  .Build();
  ASSERT_THAT(facts.controllers, SizeIs(1));
  ASSERT_THAT(facts.controllers[0].heads, SizeIs(2));
  EXPECT_THAT(facts.controllers[0].heads[1].properties, ElementsAre(Pair("Name", "Second")));
}

TEST(MachineFacts, AreThoseOfTheLastRequestThatAskedForTheClass) {
  const TMachineFacts facts = TAnswerBuilder()
                                  .Controller("PCI:1:0:0", {{"Name", "Old"}})
                                  .Controller("PCI:2:0:0", {})
                                  .AskAgain()
                                  .Controller("PCI:1:0:0", {{"Name", "New"}})
                                  .Build();
  ASSERT_THAT(facts.controllers, SizeIs(1));
  EXPECT_THAT(facts.controllers[0].properties, ElementsAre(Pair("Name", "New")));
}

TEST(MachineFacts, CountADeviceOnceThatARequestAskedForTwice) {
  const TMachineFacts facts = TAnswerBuilder()
                                  .Classes({"QRXSG_VideoController", "QRXSG_VideoController"})
                                  .Controller("PCI:1:0:0", {})
                                  .Controller("PCI:1:0:0", {})
                                  .Build();
  EXPECT_THAT(facts.controllers, SizeIs(1));
}

TEST(MachineFacts, AreUnpackedAsTheyWerePacked) {
  const TMachineFacts facts = TAnswerBuilder()
                                  .Monitor(MakeEdid("A190", "S1"), "card0-DP-1", {{"Name", "\xE9"}, {"Gamma", 2.2}})
                                  .Instance("QRXSG_MonitorResolution", {{"SettingID", R"(Monitor 1\ Setting 1)"}})
                                  .Controller("PCI:1:0:0", {{"Name", "Card"}})
                                  .Head("PCI:1:0:0", "Left", {{"Name", nullptr}})
                                  .Build();
  const TMachineFacts unpacked = Unpack(Pack(facts));
  EXPECT_EQ(unpacked.error, std::nullopt);
  EXPECT_THAT(unpacked.classes, UnorderedElementsAreArray(kAllClasses));
  ASSERT_THAT(unpacked.monitors, SizeIs(1));
  EXPECT_EQ(unpacked.monitors[0].identity, facts.monitors[0].identity);
  EXPECT_EQ(unpacked.monitors[0].output.edid, facts.monitors[0].output.edid);
  EXPECT_EQ(unpacked.monitors[0].output.connector, "card0-DP-1");
  EXPECT_EQ(unpacked.monitors[0].output.deviceId, "Monitor 1");
  EXPECT_THAT(unpacked.monitors[0].modes, ElementsAre("x@Hz"));
  EXPECT_THAT(unpacked.monitors[0].properties, ElementsAre(Pair("Gamma", 2.2), Pair("Name", "\xE9")));
  ASSERT_THAT(unpacked.controllers, SizeIs(1));
  EXPECT_EQ(unpacked.controllers[0].identity, "PCI:1:0:0");
  EXPECT_THAT(unpacked.controllers[0].properties, ElementsAre(Pair("Name", "Card")));
  ASSERT_THAT(unpacked.controllers[0].heads, SizeIs(1));
  EXPECT_EQ(unpacked.controllers[0].heads[0].name, "Left");
  EXPECT_THAT(unpacked.controllers[0].heads[0].properties, ElementsAre(Pair("Name", nullptr)));
}

TEST(MachineFacts, KeepWhyAMachineCouldNotBeAskedWhenPacked) {
  TMachineFacts facts;
  facts.error = "no such folder";
  EXPECT_EQ(Unpack(Pack(facts)).error, "no such folder");
}

TEST(ConnectorName, IsTheKernels) {
  for (const char* const name : {"card0-DP-1", "card12-eDP-1"}) EXPECT_TRUE(IsConnector(name)) << name;
  for (const char* const name : {"", "card", "card-1", "card0", "Card0-Left", "my-card0-1"}) {
    EXPECT_FALSE(IsConnector(name)) << name;
  }
}

TEST(CardName, IsTheKernels) {
  for (const char* const name : {"card0", "card12"}) EXPECT_TRUE(IsCard(name)) << name;
  for (const char* const name : {"", "card", "card-1", "card0-DP-1", "Card0", "my-card0"}) {
    EXPECT_FALSE(IsCard(name)) << name;
  }
}
