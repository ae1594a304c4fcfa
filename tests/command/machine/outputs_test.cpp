#include "command/machine/outputs.h"

#include <gmock/gmock.h>

#include "tests/support/edid_builder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

typedef std::map<unsigned int, std::string> TConnectors;
typedef std::map<unsigned int, TDamagedEdid> TDamages;

std::vector<std::uint8_t> MakeEdid(const std::string& name) { return TEdidBuilder().Name(0, name).Build(); }

TVirtualBiosConfiguration MakeBios(const std::vector<std::vector<std::uint8_t>>& edids) {
  TVirtualBiosConfiguration bios;
  for (const auto& edid : edids) bios.units[static_cast<unsigned int>(bios.units.size())].edid = edid;
  return bios;
}

/// Of each output its device id, or the reason why it has none.
std::vector<std::string> Describe(const TVirtualBiosConfiguration& bios, const TConnectors& connectors = {},
                                  int systemType = 2, const TDamages& damages = {}) {
  std::vector<std::string> texts;
  for (const TOutput& output : MakeOutputs(bios, connectors, damages, systemType)) {
    EXPECT_NE(output.deviceId.has_value(), !output.reason.empty());
    texts.push_back(output.deviceId.value_or(output.reason));
  }
  return texts;
}

const std::vector<std::uint8_t> kA = MakeEdid("A");
const std::vector<std::uint8_t> kB = MakeEdid("B");

}  // namespace

TEST(Outputs, OfMonitorsHaveTheirDeviceIds) {
  EXPECT_THAT(Describe(MakeBios({kA, kB, kA})), ElementsAre("Monitor 1", "Monitor 2", "Monitor 3"));
}

TEST(Outputs, TellTheUnitAndTheConnectorAndKeepTheEdid) {
  const std::vector<TOutput> outputs = MakeOutputs(MakeBios({kA}), {{0, "card0-DP-1"}}, {}, 2);
  ASSERT_EQ(outputs.size(), 1U);
  EXPECT_EQ(outputs[0].unit, 0U);
  EXPECT_EQ(outputs[0].connector, "card0-DP-1");
  EXPECT_EQ(outputs[0].edid, kA);
  EXPECT_EQ(outputs[0].facts->name, "A");
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

TEST(Outputs, WithoutAnEdidAreNamedWhenTheirConnectorIsKnown) {
  const std::vector<TOutput> outputs = MakeOutputs(MakeBios({kA, {}}), {{2, "card0-Virtual-1"}}, {}, 2);
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
  const std::vector<TOutput> outputs = MakeOutputs(MakeBios({{}}), {{0, "card0-DP-1"}}, {{0, {"", "is empty"}}}, 2);
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
