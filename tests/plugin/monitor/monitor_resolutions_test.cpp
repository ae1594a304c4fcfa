#include <gmock/gmock.h>

#include "edid/layout.h"
#include "plugin/monitor/monitor_info.h"
#include "tests/support/edid_builder.h"
#include "tests/support/lrmi_double.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ILogger;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MonitorResolutions : public testing::Test {
 protected:
  TTestHost host;
  TLrmiDouble lrmi;
  TMonitorInfo monitor{host.GetClass("QRXSG_MonitorResolution"), TTestHost::Provider()};

  std::vector<PropertyMap> DecodeMaps(const TEdidBuilder& builder) {
    std::vector<std::uint8_t> bytes = builder.Build();
    return monitor.GetResolutionInfo(bytes.data(), 128);
  }

  /// "number: width x height @ refresh" of each mode of "Monitor 1".
  std::vector<std::string> Decode(const TEdidBuilder& builder) {
    monitor.SetDeviceId("Monitor 1");
    std::vector<std::string> modes;
    for (const PropertyMap& map : DecodeMaps(builder)) {
      const auto text = [&](const char* name) { return static_cast<std::string>(map.at(name)); };
      EXPECT_EQ(text("SettingID").substr(0, 19), "Monitor 1\\ Setting ");
      modes.push_back(text("SettingID").substr(19) + ": " + text("HorizontalResolution") + " x " +
                      text("VerticalResolution") + " @ " + text("RefreshRate"));
    }
    return modes;
  }

  std::string DecodeScanMode(const TEdidBuilder& builder) {
    monitor.SetDeviceId("Monitor 1");
    TEdidBuilder withMode = builder;
    return Describe(DecodeMaps(withMode.Established(1, 0)).at(0).at("ScanMode"));
  }
};

}  // namespace

TEST_F(MonitorResolutions, HaveAllTheirProperties) {
  monitor.SetDeviceId("Monitor 3");
  const std::vector<PropertyMap> maps = DecodeMaps(TEdidBuilder().Established(0x01, 0).DetailedTiming(0, false));
  ASSERT_EQ(maps.size(), 1U);
  EXPECT_EQ(Describe(maps[0]), (TDescribed{{"SettingID", "string Monitor 3\\ Setting 1"},
                                           {"HorizontalResolution", "uint32 800"},
                                           {"VerticalResolution", "uint32 600"},
                                           {"RefreshRate", "uint32 60"},
                                           {"ScanMode", "uint16 4"}}));
}

TEST_F(MonitorResolutions, AreOneForEachEstablishedTimingFromTheLowestBit) {
  EXPECT_THAT(Decode(TEdidBuilder().Established(0xFF, 0xFF)),
              ElementsAre("1: 800 x 600 @ 60", "2: 800 x 600 @ 56", "3: 640 x 480 @ 75", "4: 640 x 480 @ 72",
                          "5: 640 x 480 @ 67", "6: 640 x 480 @ 60", "7: 720 x 400 @ 88", "8: 720 x 400 @ 70",
                          "9: 1280 x 1024 @ 75", "10: 1024 x 768 @ 75", "11: 1024 x 768 @ 70", "12: 1024 x 768 @ 60",
                          "13: 1024 x 768 @ 87", "14: 832 x 624 @ 75", "15: 800 x 600 @ 75", "16: 800 x 600 @ 72"));
}

TEST_F(MonitorResolutions, AreNumberedOnlyWhereABitIsSet) {
  EXPECT_THAT(Decode(TEdidBuilder().Established(0x21, 0)), ElementsAre("1: 800 x 600 @ 60", "2: 640 x 480 @ 60"));
}

TEST_F(MonitorResolutions, DoNotReadTheManufacturersTimings) {
  EXPECT_THAT(Decode(TEdidBuilder().Byte(37, 0xFF)), IsEmpty());
}

TEST_F(MonitorResolutions, HaveTheHeightOfTheirAspectCode) {
  EXPECT_THAT(Decode(TEdidBuilder()
                         .Standard(0, 0xD1, 0xC0)
                         .Standard(1, 0x81, 0x80)
                         .Standard(2, 0x61, 0x40)
                         .Standard(3, 0xA9, 0x00)),
              ElementsAre("1: 1920 x 1080 @ 60", "2: 1280 x 1024 @ 60", "3: 1024 x 768 @ 60", "4: 1600 x 1000 @ 60"));
}

TEST_F(MonitorResolutions, ReadAspectCodeZeroAsSixteenToTenInEveryRevision) {
  for (const unsigned int revision : {0U, 1U, 2U, 3U, 4U}) {
    EXPECT_THAT(Decode(TEdidBuilder().Version(1, revision).Standard(0, 0xA9, 0x00)),
                ElementsAre("1: 1600 x 1000 @ 60"));
  }
}

TEST_F(MonitorResolutions, TruncateTheHeight) {
  EXPECT_THAT(Decode(TEdidBuilder().Standard(0, 0x02, 0x00).Standard(1, 0x02, 0x80).Standard(2, 0x02, 0xFF)),
              ElementsAre("1: 264 x 165 @ 60", "2: 264 x 211 @ 60", "3: 264 x 148 @ 123"));
}

TEST_F(MonitorResolutions, SkipUnusedStandardTimingsAndTheirNumbers) {
  EXPECT_THAT(
      Decode(TEdidBuilder().Standard(0, 1, 1).Standard(1, 0, 0x40).Standard(2, 1, 0x40).Standard(7, 0x61, 0x40)),
      ElementsAre("1: 1024 x 768 @ 60"));
}

TEST_F(MonitorResolutions, NumberTheStandardTimingsAfterTheEstablished) {
  EXPECT_THAT(Decode(TEdidBuilder().Established(0x20, 0).Standard(0, 0x61, 0x40)),
              ElementsAre("1: 640 x 480 @ 60", "2: 1024 x 768 @ 60"));
}

TEST_F(MonitorResolutions, AreNoneOfAnEdidWithoutTimingsWithoutAMessage) {
  EXPECT_THAT(
      Decode(TEdidBuilder().DetailedTiming(0, false).DetailedTiming(1, false).DetailedTiming(2, false).DetailedTiming(
          3, false)),
      IsEmpty());
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(MonitorResolutions, TakeTheScanModeOfTheFirstDetailedTiming) {
  EXPECT_EQ(DecodeScanMode(TEdidBuilder()), "uint16 2");
  EXPECT_EQ(DecodeScanMode(TEdidBuilder().DetailedTiming(0, false)), "uint16 4");
  EXPECT_EQ(DecodeScanMode(TEdidBuilder().DetailedTiming(0, true)), "uint16 5");
  EXPECT_EQ(DecodeScanMode(TEdidBuilder().Name(0, "N").DetailedTiming(1, true).DetailedTiming(2, false)), "uint16 5");
  EXPECT_EQ(DecodeScanMode(TEdidBuilder().DetailedTiming(3, false)), "uint16 4");
}

TEST_F(MonitorResolutions, NeedADeviceId) {
  EXPECT_THAT(DecodeMaps(TEdidBuilder().Established(1, 0)), IsEmpty());
  EXPECT_EQ(host.log.GetEntries(),
            (std::vector<TLogEntry>{{ILogger::kStatus, "Monitor Resolution : Could not get Device ID"}}));
}

TEST_F(MonitorResolutions, NeedAnEdidOfVersionOne) {
  EXPECT_THAT(Decode(TEdidBuilder().Established(1, 0).Version(2, 0)), IsEmpty());
  EXPECT_EQ(host.log.GetEntries(),
            (std::vector<TLogEntry>{{ILogger::kStatus, "EDID structure for monitor is not valid or not supported"}}));
}
