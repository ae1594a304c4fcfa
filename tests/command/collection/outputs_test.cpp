#include "command/collection/outputs.h"

#include <gmock/gmock.h>

#include <cmath>
#include <set>
#include <tuple>

#include "command/machine/captured_machine.h"
#include "realmode/choose_bios.h"
#include "tests/support/answer_test.h"
#include "tests/support/captured_machine_builder.h"
#include "tests/support/edid_builder.h"
#include "tests/support/time_zone.h"

using NQRXZELT20::TCIMDateTime;
using NQRXZELT20::TCIMValue;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

typedef std::map<unsigned int, std::string> TConnectors;
typedef std::map<unsigned int, TDamagedEdid> TDamages;

std::vector<std::uint8_t> MakeEdid(const std::string& name) { return TEdidBuilder().Name(0, name).Build(); }

TVirtualBiosConfiguration MakeBios(const std::vector<std::vector<std::uint8_t>>& edids) {
  TVirtualBiosConfiguration bios;
  for (const auto& edid : edids) bios.units[static_cast<unsigned int>(bios.units.size())].edid = edid;
  return bios;
}

/// A captured machine with that BIOS and without a configuration.
TMachine MakeMachine(const TVirtualBiosConfiguration& bios) {
  TMachine machine = ReadCapturedMachine(TCapturedMachineBuilder().GetPath());
  machine.bios = std::make_shared<TVirtualVideoBios>(bios);
  machine.getUnits = [bios] { return bios; };
  return machine;
}

/// The outputs as a plug-in's answer has them.
std::vector<TOutput> Ask(const TMachine& machine, const TRequest& request = {"QRXSG_DesktopMonitor"},
                         const char* plugin = PLUGIN_FILE) {
  const std::vector<TOutput> outputs = Collect(machine, plugin, {request}, {}).outputs;
  ChooseVideoBios(nullptr);
  return outputs;
}

/// The device id of each output, or the reason why it has none.
std::vector<std::string> Describe(const std::vector<TOutput>& outputs) {
  std::vector<std::string> texts;
  for (const TOutput& output : outputs) {
    EXPECT_NE(output.deviceId.has_value(), !GetReason(output).empty());
    texts.push_back(output.deviceId.value_or(GetReason(output)));
  }
  return texts;
}

std::vector<std::string> Describe(const TVirtualBiosConfiguration& bios, const TConnectors& connectors = {},
                                  int systemType = 2, const TDamages& damages = {}) {
  TMachine machine = MakeMachine(bios);
  machine.connectors = connectors;
  machine.damagedEdids = damages;
  machine.host.systemType = systemType;
  return Describe(Ask(machine));
}

const std::vector<std::uint8_t> kA = MakeEdid("A");
const std::vector<std::uint8_t> kB = MakeEdid("B");

}  // namespace

TEST(Outputs, KnowWhatMayHelpWhereAnEdidIsMissingOrDamaged) {
  TMachine machine = MakeMachine(MakeBios({kA}));
  machine.connectors = {{0, "card0-DP-1"}, {1, "card0-DP-2"}};
  machine.damagedEdids[2] = {"edid/2.bin", "is empty", "copy it again"};
  const std::vector<TOutput> outputs = Ask(machine);
  ASSERT_THAT(outputs, SizeIs(3));
  EXPECT_EQ(outputs[0].cure, "");
  EXPECT_THAT(outputs[1].cure, testing::StartsWith("connect the monitor without the switch"));
  EXPECT_EQ(outputs[2].cure, "copy it again");
}

TEST(Outputs, WithAnEdidHaveNoCure) {
  const std::vector<TOutput> outputs = Ask(MakeMachine(MakeBios({kA, kA})));
  ASSERT_THAT(outputs, SizeIs(2));
  EXPECT_EQ(outputs[1].cure, "");
}

TEST(Outputs, AreNamedByTheirConnectorsInPrintableText) {
  TOutput output;
  output.unit = 1;
  EXPECT_EQ(GetName(output), "unit 1");
  output.connector = "card0-DP-1\x1b";
  EXPECT_EQ(GetName(output), "card0-DP-1\\x1b (unit 1)");
}

TEST(Outputs, OfMonitorsHaveTheirDeviceIds) {
  EXPECT_THAT(Describe(MakeBios({kA, kB, kA})), ElementsAre("Monitor 1", "Monitor 2", "Monitor 3"));
}

TEST(Outputs, TellTheUnitAndTheConnectorAndKeepTheEdid) {
  TMachine machine = MakeMachine(MakeBios({kA}));
  machine.connectors = {{0, "card0-DP-1"}};
  machine.paths = {{0, "0000:01:00.0/DP-1"}};
  const std::vector<TOutput> outputs = Ask(machine);
  ASSERT_EQ(outputs.size(), 1U);
  EXPECT_EQ(outputs[0].path, "0000:01:00.0/DP-1");
  EXPECT_EQ(outputs[0].unit, 0U);
  EXPECT_EQ(outputs[0].connector, "card0-DP-1");
  EXPECT_EQ(outputs[0].edid, kA);
  EXPECT_EQ(outputs[0].facts->name, "A");
}

TEST(Outputs, OfEqualEdidsAreIdentifiedByTheirConnectors) {
  TMachine machine = MakeMachine(MakeBios({kA, kB, kA}));
  machine.connectors = {{0, "card0-DP-1"}, {1, "card0-DP-2"}, {2, "card0-DP-3"}};
  const std::vector<TOutput> outputs = Ask(machine);
  ASSERT_THAT(outputs, SizeIs(3));
  EXPECT_THAT(outputs[0].identity.text, testing::EndsWith("card0-DP-1"));
  EXPECT_THAT(outputs[2].identity.text, testing::EndsWith("card0-DP-3"));
}

TEST(Outputs, OfMonitorsAreJoinedWhateverBlanksTheirNamesBeginWith) {
  EXPECT_THAT(Describe(MakeBios({MakeEdid(" A")})), ElementsAre("Monitor 1"));
}

TEST(Outputs, HaveTheFirstModeOfTheHighestRateForTheFastest) {
  const std::vector<TEdidMode> modes = {{1920, 1080, 60}, {1280, 1024, 75.025}, {1024, 768, 75.029}, {800, 600, 60}};
  const auto getWidth = [&](auto getRate) { return FindFastest(modes, getRate).width; };
  EXPECT_EQ(getWidth([](const TEdidMode& mode) { return mode.refresh; }), 1024U);
  EXPECT_EQ(getWidth([](const TEdidMode& mode) { return static_cast<int>(mode.refresh); }), 1280U);
}

TEST(Outputs, ThatRepeatTheUnitBeforeSayIt) {
  EXPECT_THAT(Describe(MakeBios({kA, kA, kB})),
              ElementsAre("Monitor 1", "its EDID repeats that of unit 0",
                          "the plug-in stopped at unit 1, whose EDID repeats that of unit 0"));
}

TEST(Outputs, OfAnotherVersionSayIt) {
  EXPECT_THAT(Describe(MakeBios({kA, TEdidBuilder().Version(2, 0).Build(), kB})),
              ElementsAre("Monitor 1", "its EDID is not one of version 1",
                          "the plug-in stopped at unit 1, whose EDID is not one of version 1"));
}

TEST(Outputs, BeyondAMissingUnitSayIt) {
  TVirtualBiosConfiguration bios = MakeBios({kA});
  bios.units[2].edid = kB;
  EXPECT_THAT(Describe(bios), ElementsAre("Monitor 1", "the plug-in stopped at unit 1, whose EDID is missing"));
}

TEST(Outputs, BeyondAMissingUnitSayWhyThereIsNoMonitorAtAll) {
  TVirtualBiosConfiguration bios;
  bios.units[1].edid = kA;
  bios.present = false;
  EXPECT_THAT(Describe(bios), ElementsAre("there is no video BIOS"));
}

TEST(Outputs, WithoutAnEdidAreNamedWhenTheirConnectorIsKnown) {
  TMachine machine = MakeMachine(MakeBios({kA, {}}));
  machine.connectors = {{2, "card0-Virtual-1"}};
  const std::vector<TOutput> outputs = Ask(machine);
  ASSERT_EQ(outputs.size(), 2U);
  EXPECT_EQ(outputs[1].unit, 2U);
  EXPECT_FALSE(outputs[1].facts);
}

TEST(Outputs, WithoutAnEdidSayItWhenItIsTheirTurn) {
  EXPECT_THAT(Describe(MakeBios({kA}), {{1, "card0-Virtual-1"}}), ElementsAre("Monitor 1", "its EDID is missing"));
}

TEST(Outputs, OfAUnitThatFailsAtOnceSayIt) {
  for (const bool isError : {false, true}) {
    TVirtualBiosConfiguration bios = MakeBios({kA, kB});
    (isError ? bios.units[0].errorAtBlock : bios.units[0].failAtBlock) = 0;
    EXPECT_THAT(Describe(bios),
                ElementsAre("its EDID cannot be read: the video BIOS fails at its first block",
                            "the plug-in stopped at unit 0, whose EDID cannot be read: the video BIOS fails at its "
                            "first block"));
  }
}

TEST(Outputs, OfAUnitThatFailsAtALaterBlockAreMonitors) {
  TVirtualBiosConfiguration bios = MakeBios({kA, kB});
  bios.units[0].failAtBlock = 1;
  EXPECT_THAT(Describe(bios), ElementsAre("Monitor 1", "Monitor 2"));
}

TEST(Outputs, OfABiosThatIgnoresTheUnitAreOne) {
  TVirtualBiosConfiguration bios = MakeBios({kA, kB});
  bios.ignoresUnit = true;
  EXPECT_THAT(Describe(bios),
              ElementsAre("Monitor 1", "its EDID is not asked for: the video BIOS answers as unit 0 for every unit"));
}

TEST(Outputs, OfDamagedEdidsSayWhatIsWrongEvenWhereThePlugInDoesNotGetTo) {
  TVirtualBiosConfiguration bios = MakeBios({kA, {}, kB, {}});
  const TDamages damages = {{1, {"", "is empty"}}, {3, {"", "has 1 byte"}}};
  EXPECT_THAT(Describe(bios, {}, 2, damages),
              ElementsAre("Monitor 1", "its EDID is empty", "the plug-in stopped at unit 1, whose EDID is empty",
                          "its EDID has 1 byte"));
  bios.present = false;
  EXPECT_THAT(Describe(bios, {}, 2, damages), ElementsAre("there is no video BIOS", "its EDID is empty",
                                                          "there is no video BIOS", "its EDID has 1 byte"));
}

TEST(Outputs, OfDamagedEdidsAreNamedByTheirConnectors) {
  TMachine machine = MakeMachine(MakeBios({{}}));
  machine.connectors = {{0, "card0-DP-1"}};
  machine.damagedEdids = {{0, {"", "is empty"}}};
  const std::vector<TOutput> outputs = Ask(machine);
  ASSERT_EQ(outputs.size(), 1U);
  EXPECT_EQ(outputs[0].connector, "card0-DP-1");
  EXPECT_EQ(outputs[0].reason, "its EDID is empty");
}

TEST(Outputs, SayWhyThereIsNoMonitorAtAll) {
  TVirtualBiosConfiguration absent = MakeBios({kA});
  absent.present = false;
  EXPECT_THAT(Describe(absent), ElementsAre("there is no video BIOS"));
  TVirtualBiosConfiguration full = MakeBios({kA});
  full.memory = false;
  EXPECT_THAT(Describe(full), ElementsAre("the video BIOS has no memory for its answer"));
  EXPECT_THAT(Describe(MakeBios({kA}), {}, 1),
              ElementsAre("the plug-in calls the video BIOS of a system of type 2 only"));
}

TEST(Outputs, AreJoinedWithAnAnswerThatListsThemInAnotherOrder) {
  const TMachine machine = MakeMachine(MakeBios({kA, MakeEdid("C")}));
  EXPECT_THAT(Describe(Ask(machine, {"QRXSG_DesktopMonitor"}, LISTING_PLUGIN_FILE)),
              ElementsAre("Screen 8", "Screen 7"));
}

TEST(Outputs, ThatAnAnswerLeavesOutSayIt) {
  const TMachine machine = MakeMachine(MakeBios({kA, kB, MakeEdid("C")}));
  EXPECT_THAT(Describe(Ask(machine, {"QRXSG_DesktopMonitor"}, LISTING_PLUGIN_FILE)),
              ElementsAre("Screen 8", "the answer has no monitor of such an EDID", "Screen 7"));
}

TEST(Outputs, SayThatMonitorsWereNotAskedFor) {
  for (const TRequest& request : {TRequest{}, TRequest{"QRXSG_VideoController"}, TRequest{"QRXSG_MonitorResolution"}}) {
    EXPECT_THAT(Describe(Ask(MakeMachine(MakeBios({kA, kA})), request)),
                ElementsAre("monitors were not asked for", "monitors were not asked for"));
  }
}

TEST(Outputs, AreUnlistedOnlyWhereSomethingIsWrongWithThem) {
  const std::vector<TOutput> outputs = Ask(MakeMachine(MakeBios({kA, kA})), {"QRXSG_MonitorResolution"});
  ASSERT_THAT(outputs, SizeIs(2));
  EXPECT_FALSE(IsUnlisted(outputs[0]));
  EXPECT_TRUE(IsUnlisted(outputs[1]));
  EXPECT_EQ(ExplainUnlisted(outputs[1]), "unit 1 is not listed: its EDID repeats that of unit 0");
}

TEST(Outputs, OfEdidsThatDifferOnlyInTheirChecksumAreBothListed) {
  const std::vector<std::uint8_t> damaged = TEdidBuilder().Name(0, "A").Byte(127, kA[127] ^ 1U).Build();
  for (const TOutput& output : Ask(MakeMachine(MakeBios({kA, damaged})), {"QRXSG_MonitorResolution"})) {
    EXPECT_FALSE(IsUnlisted(output)) << output.reason;
  }
}

TEST(Outputs, HaveTheIdOfTheirModesEvenWhereOnlyThoseWereAskedFor) {
  const TMachine machine = MakeMachine(
      MakeBios({TEdidBuilder().Name(0, "A").Established(1, 0).Build(),
                TEdidBuilder().Name(0, "B").Established(1, 1).Build(), TEdidBuilder().Version(2, 0).Build()}));
  for (const TRequest& request :
       {TRequest{"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution"}, TRequest{"QRXSG_MonitorResolution"}}) {
    const std::vector<TOutput> outputs = Ask(machine, request);
    ASSERT_THAT(outputs, SizeIs(3));
    EXPECT_EQ(outputs[0].modesId, "Monitor 1");
    EXPECT_EQ(outputs[1].modesId, "Monitor 2");
    EXPECT_EQ(outputs[2].modesId, "");
  }
}

TEST(Outputs, TellWhichOfTheirModesTheAnswerHas) {
  const std::vector<std::uint8_t> edid =
      TEdidBuilder().Name(0, "A").Established(0x20, 0x01).DetailedTiming(1, false).Build();
  const std::vector<TOutput> outputs =
      Ask(MakeMachine(MakeBios({edid})), {"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution"});
  ASSERT_THAT(outputs, SizeIs(1));
  std::vector<std::tuple<unsigned int, long, bool>> modes;  // the width, the rate in mHz, and whether it is there
  for (const TEdidMode& mode : outputs[0].facts->modes) {
    modes.emplace_back(mode.width, std::lround(mode.refresh * 1000), IsInClasses(outputs[0], mode));
  }
  // The plug-in lists no detailed timings, and its rates are in whole Hz.
  EXPECT_THAT(modes, ElementsAre(std::tuple(1280U, 75025L, true), std::tuple(1280U, 60020L, false),
                                 std::tuple(640U, 59940L, true)));
}

TEST(Outputs, WithoutModesInTheAnswerHaveNoneThere) {
  const std::vector<std::uint8_t> edid = TEdidBuilder().Name(0, "A").DetailedTiming(1, false).Build();
  const std::vector<TOutput> outputs =
      Ask(MakeMachine(MakeBios({edid})), {"QRXSG_DesktopMonitor", "QRXSG_MonitorResolution"});
  ASSERT_THAT(outputs, SizeIs(1));
  EXPECT_EQ(outputs[0].resolutions, std::set<TListedResolution>());
}

// Each of the plug-in's own dates is recognised, even in a time zone with daylight saving.
TEST(Outputs, AreJoinedWhateverTheDate) {
  const TTimeZone zone("Europe/Berlin");
  for (unsigned int week = 0; week <= 256; week += week < 56 ? 1 : 50) {
    for (const unsigned int year : {1990U, 1993U, 1994U, 2012U, 2038U, 2100U, 2245U}) {
      const TMachine machine = MakeMachine(MakeBios({TEdidBuilder().Name(0, "A").Made(week % 256, year).Build()}));
      EXPECT_THAT(Describe(Ask(machine)), ElementsAre("Monitor 1")) << week << " of " << year;
    }
  }
}

// The zone of daylight saving is a day ahead, so the plug-in's dates in summer are a day off.
TEST(Outputs, AreJoinedWhereTheClocksSkippedADay) {
  const TTimeZone zone("AAA12BBB-12,J60/0,J300/0");
  const TMachine machine = MakeMachine(MakeBios({TEdidBuilder().Name(0, "A").Made(26, 2012).Build()}));
  EXPECT_THAT(Describe(Ask(machine)), ElementsAre("Monitor 1"));
}

namespace {

class JoinedOutput : public TAnswerTest {
 protected:
  /// The output of a machine with one EDID, which has every fact, and of an answer with one monitor, whose properties
  /// are given.
  std::string Join(const TValues& values) {
    Commit("QRXSG_DesktopMonitor", values);
    EndRequest({"QRXSG_DesktopMonitor"});
    const std::vector<std::uint8_t> edid =
        TEdidBuilder().Manufacturer("ACM").Name(0, "Acme A190 ").Serial(1, "A190-1").Made(14, 2008).Build();
    return JoinOutputs(MakeMachine(MakeBios({edid})), {answer.requests.back()}).at(0).deviceId.value_or("none");
  }

  static TCIMValue MakeDate(unsigned int day) {
    TCIMDateTime date;
    date.Set(2008, 4, day, 6, 0, 0, 0, 0);
    return TCIMValue(date);
  }
};

}  // namespace

TEST_F(JoinedOutput, HasTheMonitorThatSaysTheSame) {
  const TValues monitor = MakeFullMonitor();
  EXPECT_EQ(Join(monitor), "Monitor 1");
}

TEST_F(JoinedOutput, HasNoMonitorOfAnotherMakerNameSerialNumberOrDate) {
  const std::pair<const char*, TCIMValue> others[] = {{"MonitorManufacturer", TCIMValue("ACN")},
                                                      {"Name", TCIMValue("Acme A170")},
                                                      {"SerialNumber", TCIMValue("A190-2")},
                                                      {"ManufacturingDate", MakeDate(8)}};
  for (const auto& [property, value] : others) {
    TValues monitor = MakeFullMonitor();
    monitor[property] = value;
    EXPECT_EQ(Join(monitor), "none") << property;
  }
}

TEST_F(JoinedOutput, HasAMonitorThatSaysLessWhereNoneSaysAll) {
  for (const char* const property : {"MonitorManufacturer", "Name", "SerialNumber", "ManufacturingDate"}) {
    TValues monitor = MakeFullMonitor();
    monitor[property] = TCIMValue();
    EXPECT_EQ(Join(monitor), "Monitor 1") << property;
  }
}

TEST_F(JoinedOutput, HasTheMonitorThatSaysMore) {
  TValues monitor = MakeFullMonitor();
  monitor["DeviceID"] = TCIMValue("Monitor 2");
  Commit("QRXSG_DesktopMonitor", monitor);
  monitor["DeviceID"] = TCIMValue("Monitor 1");
  monitor["SerialNumber"] = TCIMValue();
  EXPECT_EQ(Join(monitor), "Monitor 2");
  monitor["DeviceID"] = TCIMValue("Monitor 3");
  Commit("QRXSG_DesktopMonitor", monitor);
  EXPECT_EQ(Join(MakeFullMonitor()), "Monitor 1");
}

TEST_F(JoinedOutput, HasTheMonitorThatWasCommittedLastOfThoseOfOnePath) {
  TValues monitor = MakeFullMonitor();
  monitor["Name"] = TCIMValue("Acme A170");
  Commit("QRXSG_DesktopMonitor", monitor);
  EXPECT_EQ(Join(MakeFullMonitor()), "Monitor 1");
}

TEST_F(JoinedOutput, OfAnotherVersionHasNoMonitor) {
  Commit("QRXSG_DesktopMonitor", {{"DeviceID", TCIMValue("Monitor 1")}});
  EndRequest({"QRXSG_DesktopMonitor"});
  const TMachine machine = MakeMachine(MakeBios({TEdidBuilder().Version(2, 0).Build()}));
  EXPECT_EQ(JoinOutputs(machine, answer.requests).at(0).deviceId, std::nullopt);
}

namespace {

/// The modes of an answer to a request for these only.
class JoinedModes : public TAnswerTest {
 protected:
  void CommitMode(const std::string& monitor, unsigned int width, unsigned int height) {
    Commit("QRXSG_MonitorResolution", {{"SettingID", TCIMValue(monitor + "\\ Setting " + std::to_string(++m_count))},
                                       {"HorizontalResolution", TCIMValue(width)},
                                       {"VerticalResolution", TCIMValue(height)},
                                       {"RefreshRate", TCIMValue(60U)}});
  }

  /// The monitor whose modes each output has.
  std::vector<std::string> Join(const std::vector<std::vector<std::uint8_t>>& edids) {
    EndRequest({"QRXSG_MonitorResolution"});
    std::vector<std::string> ids;
    for (const TOutput& output : JoinOutputs(MakeMachine(MakeBios(edids)), answer.requests)) {
      ids.push_back(output.modesId);
    }
    return ids;
  }

  /// 640 x 480, and also 800 x 600.
  const std::vector<std::uint8_t> m_one = TEdidBuilder().Name(0, "A").Established(0x20, 0).Build();
  const std::vector<std::uint8_t> m_both = TEdidBuilder().Name(0, "B").Established(0x21, 0).Build();

 private:
  unsigned int m_count = 0;
};

}  // namespace

TEST_F(JoinedModes, AreOfTheOutputThatHasAllTheirSizes) {
  CommitMode("Monitor 1", 640, 480);
  CommitMode("Monitor 1", 800, 600);
  EXPECT_THAT(Join({m_one, m_both}), ElementsAre("", "Monitor 1"));
}

TEST_F(JoinedModes, AreOfNoOutputThatHasOnlyTheirWidths) {
  CommitMode("Monitor 1", 640, 400);
  EXPECT_THAT(Join({m_one}), ElementsAre(""));
}

TEST_F(JoinedModes, AreOfOneOutputEach) {
  CommitMode("Monitor 1", 640, 480);
  CommitMode("Monitor 2", 640, 480);
  EXPECT_THAT(Join({m_one, m_both}), ElementsAre("Monitor 1", "Monitor 2"));
}

TEST_F(JoinedModes, AreOfNoOutputWithAFault) {
  CommitMode("Monitor 1", 1280, 1024);
  const std::vector<std::uint8_t> another = TEdidBuilder().Version(1, 3).Name(0, "A").Established(0x20, 1).Build();
  EXPECT_THAT(Join({m_one, {}, another}), ElementsAre("", ""));
}
