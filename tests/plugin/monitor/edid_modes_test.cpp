#include "plugin/monitor/edid_modes.h"

#include <gmock/gmock.h>

#include <cstdint>
#include <string>

#include "edid/layout.h"
#include "tests/support/edid_builder.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// "width x height @ refresh" of each mode.
std::vector<std::string> Decode(const TEdidBuilder& builder) {
  std::vector<std::string> modes;
  for (const TMode& mode : DecodeModes(builder.Build().data())) {
    modes.push_back(std::to_string(mode.width) + " x " + std::to_string(mode.height) + " @ " +
                    std::to_string(mode.refresh));
  }
  return modes;
}

/// The mode of a standard timing, calculated exactly as the rules say.
std::vector<std::string> DecodePlainly(unsigned int first, unsigned int second) {
  if (first == 0 || first == 1) return {};
  const unsigned int width = first * 8 + 248;
  const unsigned int heights[] = {(width * 5) >> 3, (width * 3) >> 2, width * 4 / 5, (width * 9) >> 4};
  return {std::to_string(width) + " x " + std::to_string(heights[second >> 6]) + " @ " +
          std::to_string((second & 63) + 60)};
}

}  // namespace

TEST(EdidModes, AreNoneOfABareEdid) { EXPECT_THAT(Decode(TEdidBuilder()), IsEmpty()); }

TEST(EdidModes, AreTheEstablishedThenTheStandardTimings) {
  EXPECT_THAT(
      Decode(TEdidBuilder().Standard(0, 0xD1, 0xC0).Standard(7, 0xA9, 0x00).Established(0x21, 0x01)),
      ElementsAre("800 x 600 @ 60", "640 x 480 @ 60", "1280 x 1024 @ 75", "1920 x 1080 @ 60", "1600 x 1000 @ 60"));
}

TEST(EdidModes, AgreeWithThePlainRulesForEveryStandardTiming) {
  for (unsigned int first = 0; first < 256; ++first) {
    for (unsigned int second = 0; second < 256; ++second) {
      ASSERT_EQ(Decode(TEdidBuilder().Standard(3, first, second)), DecodePlainly(first, second))
          << first << " " << second;
    }
  }
}

TEST(EdidModes, ScanAsTheInterlaceFlagOfTheDetailedTimingSays) {
  for (const bool interlaced : {false, true}) {
    const std::vector<std::uint8_t> edid = TEdidBuilder().DetailedTiming(2, interlaced).Build();
    EXPECT_EQ(DecodeScanMode(&edid[edid::kDescriptors[2]]), interlaced ? 5 : 4);
  }
  EXPECT_EQ(DecodeScanMode(nullptr), 2);
}
