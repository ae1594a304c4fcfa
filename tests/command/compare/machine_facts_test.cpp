#include "command/compare/machine_facts.h"

#include <gmock/gmock.h>

#include "tests/command/compare/compared_answer.h"

using testing::ElementsAre;
using testing::Pair;
using testing::SizeIs;

namespace {

std::string Identify(const std::vector<std::uint8_t>& edid) {
  return TAnswerBuilder().Monitor(edid).Build().monitors.at(0).identity;
}

std::string IdentifyWithoutHeader() {
  std::vector<std::uint8_t> edid = MakeEdid("a", "serial");
  edid[0] = 1;
  return Identify(edid);
}

std::string EncodeAll(const std::vector<std::uint8_t>& edid) {
  return EncodeBase64(std::string(edid.begin(), edid.end()));
}

}  // namespace

TEST(MonitorIdentity, IsTheMakerTheProductAndBothSerialNumbers) {
  const std::string identity = Identify(MakeEdid("a", "S1", 7));
  EXPECT_EQ(identity, Identify(MakeEdid("another name", "S1", 7)));
  EXPECT_NE(identity, Identify(MakeEdid("a", "S2", 7)));
  EXPECT_NE(identity, Identify(MakeEdid("a", "S1", 8)));
  EXPECT_NE(identity, Identify(TEdidBuilder().Manufacturer("GLX").Name(0, "a").Serial(1, "S1").Byte(12, 7).Build()));
  EXPECT_NE(identity,
            Identify(TEdidBuilder().Manufacturer("ACM").Name(0, "a").Serial(1, "S1").Byte(12, 7).Byte(10, 1).Build()));
}

TEST(MonitorIdentity, IsOneSerialNumberWhereTheOtherIsAFiller) {
  EXPECT_EQ(Identify(MakeEdid("a", "", 7)), Identify(MakeEdid("b", "", 7)));
  EXPECT_EQ(Identify(MakeEdid("a", "00000", 7)), Identify(MakeEdid("a", "", 7)));
  EXPECT_EQ(Identify(MakeEdid("a", "S1", 0x01010101)), Identify(MakeEdid("a", "S1", 0)));
  EXPECT_EQ(Identify(MakeEdid("a", "S1")), Identify(MakeEdid("b", "S1")));
}

TEST(MonitorIdentity, IsTheWholeEdidWhereBothSerialNumbersAreFillers) {
  for (const char* const serial : {"", " ", "0", "000-000"}) {
    for (const unsigned int number : {0U, 0x01010101U}) {
      const std::vector<std::uint8_t> edid = MakeEdid("a", serial, number);
      EXPECT_EQ(Identify(edid), EncodeAll(edid)) << serial << ' ' << number;
    }
  }
}

TEST(MonitorIdentity, IsTheWholeEdidWhereThatIsNotOfVersion1) {
  std::vector<std::uint8_t> edid = MakeEdid("a", "serial");
  edid[0] = 1;
  EXPECT_EQ(IdentifyWithoutHeader(), EncodeAll(edid));
}

TEST(MachineFacts, KnowAMonitorByWhatPeopleReadOfIt) {
  const TMachineFacts facts = TAnswerBuilder().Monitor(MakeEdid("A190", "S1", 7), "card0-DP-1").Build();
  EXPECT_THAT(facts.monitors.at(0).description,
              ElementsAre(Pair("connector", "\"card0-DP-1\""), Pair("deviceID", "\"Monitor 1\""),
                          Pair("manufacturer", "\"ACM\""), Pair("name", "\"A190\""), Pair("productCode", "0"),
                          Pair("serial", "\"S1\""), Pair("serialNumber", "7")));
}

TEST(MachineFacts, AreThoseOfTheMonitorWithItsModesAndWithoutItsPlace) {
  const TMachineFacts facts = TAnswerBuilder()
                                  .Monitor(MakeEdid("A190", "S1"), "", {{"Gamma", "2.2"}, {"SystemName", "\"ws-17\""}})
                                  .Instance("QRXSG_MonitorResolution", "m2",
                                            {{"SettingID", R"("Monitor 1\\ Setting 2")"},
                                             {"HorizontalResolution", "800"},
                                             {"VerticalResolution", "600"},
                                             {"RefreshRate", "60"}})
                                  .Instance("QRXSG_MonitorResolution", "m1",
                                            {{"SettingID", R"("Monitor 1\\ Setting 1")"},
                                             {"HorizontalResolution", "1280"},
                                             {"VerticalResolution", "1024"},
                                             {"RefreshRate", "75"}})
                                  .Build();
  EXPECT_THAT(facts.monitors.at(0).facts,
              ElementsAre(Pair("EDID", '"' + EncodeAll(MakeEdid("A190", "S1")) + '"'), Pair("Gamma", "2.2"),
                          Pair("Listed", "true"), Pair("Modes", R"(["1280x1024@75Hz","800x600@60Hz"])")));
}

TEST(MachineFacts, AreNotRepeatedForEveryOutputThatNamesTheSameMonitor) {
  TReadAnswer answer;
  const std::vector<std::uint8_t> edid = MakeEdid("A190", "S1");
  answer.outputs = {{"Monitor 1", "", edid}, {"Monitor 1", "", edid}};
  answer.instances = {
      {"QRXSG_DesktopMonitor", "p", {{"DeviceID", "\"Monitor 1\""}, {"Gamma", "2.2"}}},
      {"QRXSG_MonitorResolution", "m", {{"SettingID", R"("Monitor 1\\ Setting 1")"}, {"RefreshRate", "60"}}}};
  const TMachineFacts facts = MakeFacts(answer);
  ASSERT_THAT(facts.monitors, SizeIs(2));
  EXPECT_EQ(facts.monitors[0].facts.at("Gamma"), "2.2");
  EXPECT_EQ(facts.monitors[0].facts.at("Modes"), R"(["x@60Hz"])");
  EXPECT_EQ(facts.monitors[1].facts.count("Gamma"), 0U);
  EXPECT_EQ(facts.monitors[1].facts.at("Modes"), "[]");
}

TEST(MachineFacts, HaveAMonitorThatThePluginDoesNotReport) {
  const TMachineFacts facts = TAnswerBuilder().Unlisted(MakeEdid("A190", "S1")).Build();
  ASSERT_THAT(facts.monitors, SizeIs(1));
  EXPECT_EQ(facts.monitors[0].facts.at("Listed"), "false");
}

TEST(MachineFacts, AreThoseOfAControllerWithTheModesOfItsHeads) {
  const TMachineFacts facts =
      TAnswerBuilder()
          .Controller("PCI:1:0:0", {{"Name", "\"Card\""}, {"DeviceID", "\"Left\""}})
          .Head("PCI:1:0:0", "Right", {{"CurrentVerticalResolution", "600"}, {"Name", "\"Card\""}})
          .Head("PCI:1:0:0", "Left", {{"HeadNumber", "1"}})
          .Head("PCI:2:0:0", "Other", {{"CurrentVerticalResolution", "768"}})
          .Build();
  ASSERT_THAT(facts.controllers, SizeIs(1));
  EXPECT_EQ(facts.controllers[0].identity, "PCI:1:0:0");
  EXPECT_THAT(facts.controllers[0].facts, ElementsAre(Pair("Head Right: CurrentVerticalResolution", "600"),
                                                      Pair("Heads", R"(["Left","Right"])"), Pair("Name", "\"Card\"")));
}

TEST(MachineFacts, CountADeviceOnceThatSeveralRequestsAskedFor) {
  TAnswerBuilder answer;
  answer.Controller("PCI:1:0:0", {{"Name", "\"Old\""}}).Controller("PCI:1:0:0", {{"Name", "\"New\""}});
  const TMachineFacts facts = answer.Build();
  ASSERT_THAT(facts.controllers, SizeIs(1));
  EXPECT_EQ(facts.controllers[0].facts.at("Name"), "\"New\"");
}

TEST(MachineFacts, AreUnpackedAsTheyWerePacked) {
  const TMachineFacts facts = TAnswerBuilder()
                                  .Monitor(MakeEdid("A190", "S1"), "card0-DP-1", {{"Name", "\"\\u00e9\""}})
                                  .Controller("PCI:1:0:0", {{"Name", "\"Card\""}})
                                  .Build();
  const TMachineFacts unpacked = Unpack(Pack(facts));
  EXPECT_EQ(unpacked.error, std::nullopt);
  EXPECT_EQ(unpacked.classes, kAllClasses);
  EXPECT_THAT(unpacked.connected, ElementsAre("card0-DP-1"));
  ASSERT_THAT(unpacked.monitors, SizeIs(1));
  EXPECT_EQ(unpacked.monitors[0].identity, facts.monitors[0].identity);
  EXPECT_EQ(unpacked.monitors[0].description, facts.monitors[0].description);
  EXPECT_EQ(unpacked.monitors[0].facts, facts.monitors[0].facts);
  ASSERT_THAT(unpacked.controllers, SizeIs(1));
  EXPECT_EQ(unpacked.controllers[0].facts, facts.controllers[0].facts);
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
