#include <gmock/gmock.h>

#include "plugin/video/video_info.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ILogger;
using testing::IsEmpty;

namespace {

class ScreenValues : public testing::Test {
 protected:
  TTestHost host;
  TVideoInfo video{host.GetClass("QRXSG_VideoController"), TTestHost::Provider()};
  std::string monitorName = "as before";

  /// The properties that a screen of device "D" gives.
  TDescribed Read(SectionRecord screen) {
    screen["Device"] = "D";
    video.GetScreenValues({screen}, "D", monitorName);
    return Describe(video.GetDeviceProperties());
  }

  void ExpectLog(const std::vector<std::string>& messages) const {
    std::vector<TLogEntry> expected;
    for (const std::string& message : messages) expected.push_back({ILogger::kDebug, message});
    EXPECT_EQ(host.log.GetEntries(), expected);
  }
};

}  // namespace

TEST_F(ScreenValues, TakeTheFirstModeOfTheDefaultDepth) {
  EXPECT_EQ(Read({{"DefaultDepth", "24"},
                  {"Depth1", "16"},
                  {"Depth2", "24"},
                  {"Modes1", "640x480"},
                  {"Modes2", "1024x768 800x600"},
                  {"Monitor", "M"}}),
            (TDescribed{{"CurrentBitsPerPixel", "uint32 24"},
                        {"CurrentHorizontalResolution", "uint32 1024"},
                        {"CurrentVerticalResolution", "uint32 768"}}));
  EXPECT_EQ(monitorName, "M");
  ExpectLog({});
}

TEST_F(ScreenValues, AreOfTheFirstScreenThatUsesTheDevice) {
  video.GetScreenValues({{{"DefaultDepth", "8"}, {"Depth1", "8"}},
                         {{"Device", "d"}, {"DefaultDepth", "8"}, {"Depth1", "8"}},
                         {{"Device", "D"}, {"DefaultDepth", "16"}, {"Depth1", "16"}},
                         {{"Device", "D"}, {"DefaultDepth", "24"}, {"Depth1", "24"}, {"Monitor", "M"}}},
                        "D", monitorName);
  EXPECT_EQ(Describe(video.GetDeviceProperties()), (TDescribed{{"CurrentBitsPerPixel", "uint32 16"}}));
  EXPECT_EQ(monitorName, "as before");
}

TEST_F(ScreenValues, AreNoneWithoutAScreen) {
  video.GetScreenValues({}, "D", monitorName);
  EXPECT_THAT(video.GetDeviceProperties(), IsEmpty());
  EXPECT_EQ(monitorName, "as before");
}

TEST_F(ScreenValues, AreTheMonitorAloneWhenNoSubsectionHasTheDefaultDepth) {
  EXPECT_THAT(Read({{"DefaultDepth", "24"}, {"Depth1", "16"}, {"Modes1", "640x480"}, {"Monitor", "M"}}), IsEmpty());
  EXPECT_EQ(monitorName, "M");
}

TEST_F(ScreenValues, AreTheFirstDepthInKeyOrderThatConvertsWithoutADefault) {
  EXPECT_EQ(Read({{"Depth1", "x"}, {"Depth10", "10"}, {"Depth2", "2"}, {"Modes1", "640x480"}, {"Monitor", "M"}}),
            (TDescribed{{"CurrentBitsPerPixel", "uint32 10"}}));
  EXPECT_EQ(monitorName, "as before");
}

TEST_F(ScreenValues, CallADepthThatFailsWithoutADefaultAResolutionAndTryEveryDepth) {
  Read({{"Depth1", "x"}, {"Depth2", "8"}, {"Depth3", "y "}});
  ExpectLog({"Could not convert to integer horizontal resolution fromx",
             "Could not convert to integer horizontal resolution fromy "});
}

TEST_F(ScreenValues, TakeAnEmptyDefaultDepthForNoneAndTryItToo) {
  EXPECT_EQ(Read({{"DefaultDepth", ""}, {"Depth1", "8"}}), (TDescribed{{"CurrentBitsPerPixel", "uint32 8"}}));
  ExpectLog({"Could not convert to integer horizontal resolution from"});
}

TEST_F(ScreenValues, GoOnWithTheNextDepthWhenTheDefaultDoesNotConvert) {
  EXPECT_THAT(Read({{"DefaultDepth", "24 "}, {"Depth1", "24 "}, {"Depth2", "24 "}, {"Modes1", "640x480"}}), IsEmpty());
  ExpectLog(
      {"Could not convert to integer color quality from24 ", "Could not convert to integer color quality from24 "});
}

TEST_F(ScreenValues, NameTheWidthWhenTheHeightFails) {
  EXPECT_EQ(Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", "1024x768i"}}),
            (TDescribed{{"CurrentBitsPerPixel", "uint32 24"}, {"CurrentHorizontalResolution", "uint32 1024"}}));
  ExpectLog({"Could not convert to integer vertical resolution from 1024"});
}

TEST_F(ScreenValues, TryTheHeightWhenTheWidthFails) {
  EXPECT_EQ(Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", "widex768"}}),
            (TDescribed{{"CurrentBitsPerPixel", "uint32 24"}, {"CurrentVerticalResolution", "uint32 768"}}));
  ExpectLog({"Could not convert to integer horizontal resolution fromwide"});
}

TEST_F(ScreenValues, TakeAModeWithoutAnXForTheWidth) {
  EXPECT_EQ(Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", "1024"}}),
            (TDescribed{{"CurrentBitsPerPixel", "uint32 24"}, {"CurrentHorizontalResolution", "uint32 1024"}}));
}

TEST_F(ScreenValues, NameTheWholeModeThatCannotBeSplit) {
  for (const char* mode : {"auto", "x600"}) Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", mode}});
  ExpectLog({"Could not convert to integer horizontal resolution fromauto",
             "Could not convert to integer horizontal resolution fromx600"});
}

TEST_F(ScreenValues, TakeAModeThatEndsInAnXTwice) {
  EXPECT_EQ(Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", "800x"}}),
            (TDescribed{{"CurrentBitsPerPixel", "uint32 24"},
                        {"CurrentHorizontalResolution", "uint32 800"},
                        {"CurrentVerticalResolution", "uint32 800"}}));
}

TEST_F(ScreenValues, HaveNoResolutionOfAnEmptyModesLine) {
  EXPECT_EQ(Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", ""}}),
            (TDescribed{{"CurrentBitsPerPixel", "uint32 24"}}));
  ExpectLog({});
}

TEST_F(ScreenValues, UseTheModesOfTheSameNumberAlone) {
  EXPECT_EQ(Read({{"DefaultDepth", "24"}, {"Depth2", "24"}, {"Modes1", "640x480"}, {"Modes22", "1x2"}}),
            (TDescribed{{"CurrentBitsPerPixel", "uint32 24"}}));
}

TEST_F(ScreenValues, KeepWhatWasInsertedBefore) {
  Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", "1024x768"}});
  EXPECT_EQ(Read({{"DefaultDepth", "8"}, {"Depth1", "8"}, {"Modes1", "640x480"}}).at("CurrentBitsPerPixel"),
            "uint32 24");
}
