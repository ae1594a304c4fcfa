#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <initializer_list>

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

/// What a mode gives and what is logged, by following the rules step by step.
struct TPlainMode {
  TDescribed properties = {{"CurrentBitsPerPixel", "uint32 24"}};
  std::vector<TLogEntry> log;

  explicit TPlainMode(const std::string& mode) {
    const std::vector<std::string> tokens = Split(mode);
    if (tokens.empty()) return;
    Insert("CurrentHorizontalResolution", tokens[0], "horizontal resolution from" + tokens[0]);
    if (tokens.size() > 1) Insert("CurrentVerticalResolution", tokens[1], "vertical resolution from " + tokens[0]);
  }

 private:
  static std::vector<std::string> Split(const std::string& mode) {
    std::vector<std::string> tokens;
    std::string token;
    bool hasDelimiter = false;  // apart from one at the very beginning
    std::size_t start = mode[0] == 'x' ? 1 : 0;
    for (std::size_t position = start; position < mode.size(); ++position) {
      if (mode[position] != 'x') continue;
      hasDelimiter = true;
      token = mode.substr(start, position - start);
      if (!token.empty()) tokens.push_back(token);
      start = position + 1;
    }
    if (!hasDelimiter) return mode[0] == 'x' ? tokens : std::vector<std::string>{mode};
    if (start < mode.size()) token = mode.substr(start);
    if (!token.empty()) tokens.push_back(token);
    return tokens;
  }

  void Insert(const char* property, const std::string& token, const std::string& failure) {
    if (token.find_first_not_of('7') == std::string::npos) {
      properties[property] = "uint32 " + token;
    } else {
      log.push_back({ILogger::kDebug, "Could not convert to integer " + failure});
    }
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

TEST_F(ScreenValues, AreOnlyTheMonitorWhenNoSubsectionHasTheDefaultDepth) {
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

TEST_F(ScreenValues, NameTheWholeModeWithoutAnX) {
  Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", "auto"}});
  ExpectLog({"Could not convert to integer horizontal resolution fromauto"});
}

TEST_F(ScreenValues, TryNothingOfAModeWithoutPieces) {
  for (const char* mode : {"x", "xx", "xxx", "x600", "x768 800x600"}) {
    EXPECT_EQ(Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", mode}}),
              (TDescribed{{"CurrentBitsPerPixel", "uint32 24"}}))
        << mode;
  }
  ExpectLog({});
}

TEST_F(ScreenValues, TakeWidthAndHeightFromTheFirstTwoPieces) {
  for (const auto& [mode, width, height] : std::initializer_list<std::array<const char*, 3>>{
           {"1024x768", "1024", "768"},
           {"1024x768x", "1024", "768"},
           {"1024x768x60", "1024", "768"},
           {"1024xx768", "1024", "768"},
           {"x7x8", "7", "8"},
           {"x1024x", "1024", "1024"},
       }) {
    TVideoInfo fresh(host.GetClass("QRXSG_VideoController"), TTestHost::Provider());
    fresh.GetScreenValues({{{"Device", "D"}, {"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", mode}}}, "D",
                          monitorName);
    EXPECT_EQ(Describe(fresh.GetDeviceProperties()),
              (TDescribed{{"CurrentBitsPerPixel", "uint32 24"},
                          {"CurrentHorizontalResolution", std::string("uint32 ") + width},
                          {"CurrentVerticalResolution", std::string("uint32 ") + height}}))
        << mode;
  }
  ExpectLog({});
}

TEST_F(ScreenValues, TakeTheOnlyPieceAfterTwoDelimitersForTheWidth) {
  EXPECT_EQ(Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", "xx768"}}),
            (TDescribed{{"CurrentBitsPerPixel", "uint32 24"}, {"CurrentHorizontalResolution", "uint32 768"}}));
}

TEST_F(ScreenValues, AgreeWithThePlainRulesForEveryShortMode) {
  const std::string letters = "x7w";
  std::size_t modes = 0;
  for (std::size_t length = 1; length <= 7; ++length) {
    for (std::size_t number = 0; number < static_cast<std::size_t>(std::pow(letters.size(), length)); ++number) {
      std::string mode;
      for (std::size_t rest = number; mode.size() < length; rest /= letters.size()) mode += letters[rest % 3];
      TVideoInfo fresh(host.GetClass("QRXSG_VideoController"), TTestHost::Provider());
      host.Forget();
      fresh.GetScreenValues({{{"Device", "D"}, {"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", mode}}}, "D",
                            monitorName);
      const TPlainMode plain(mode);
      ASSERT_EQ(Describe(fresh.GetDeviceProperties()), plain.properties) << mode;
      ASSERT_EQ(host.log.GetEntries(), plain.log) << mode;
      ++modes;
    }
  }
  EXPECT_EQ(modes, 3279U);
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

TEST_F(ScreenValues, UseOnlyTheModesOfTheSameNumber) {
  EXPECT_EQ(Read({{"DefaultDepth", "24"}, {"Depth2", "24"}, {"Modes1", "640x480"}, {"Modes22", "1x2"}}),
            (TDescribed{{"CurrentBitsPerPixel", "uint32 24"}}));
}

TEST_F(ScreenValues, KeepWhatWasInsertedBefore) {
  Read({{"DefaultDepth", "24"}, {"Depth1", "24"}, {"Modes1", "1024x768"}});
  EXPECT_EQ(Read({{"DefaultDepth", "8"}, {"Depth1", "8"}, {"Modes1", "640x480"}}).at("CurrentBitsPerPixel"),
            "uint32 24");
}
