#include <gmock/gmock.h>

#include "tests/command/edid/edid_texts.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

std::vector<std::string> FindAll(const TEdidBuilder& builder) { return ReadEdidFacts(builder.Build()).contradictions; }

/// A DisplayID extension about product 5 of that maker.
TEdidBuilder& AddProduct(TEdidBuilder& builder, const std::string& maker) {
  std::vector<std::uint8_t> block = {0, 0, 12};
  block.insert(block.end(), maker.begin(), maker.end());
  block.push_back(5);
  block.resize(15);
  return builder.DisplayId(0x12, block);
}

std::vector<std::uint8_t> MakeBase() { return TEdidBuilder().Build(); }

}  // namespace

TEST(Contradictions, AreNoneInASoundEdid) {
  EXPECT_THAT(FindAll(TEdidBuilder().DetailedTiming(0, false).RangeLimits(1, 50, 75, 30, 80, 15).Cta({0x41, 16})),
              IsEmpty());
}

TEST(Contradictions, NameTheBlockWhoseChecksumIsWrong) {
  EXPECT_THAT(FindAll(TEdidBuilder().Cta({}).Byte(edid::kBlockSize + edid::kChecksum, 1)),
              ElementsAre("Block 1 has a wrong checksum."));
}

TEST(Contradictions, TellOfExtensionsThatAreMissing) {
  EXPECT_THAT(FindAll(TEdidBuilder().Byte(edid::kExtensionCount, 2)),
              ElementsAre("It declares 2 extension blocks but has no extension block."));
}

TEST(Contradictions, TellOfMoreExtensionsThanDeclared) {
  EXPECT_THAT(FindAll(TEdidBuilder().Cta({}).Byte(edid::kExtensionCount, 0)),
              ElementsAre("It declares no extension block but has 1 extension block."));
}

TEST(Contradictions, TakeTheNumberOfExtensionsFromTheBlockThatOverridesIt) {
  EXPECT_THAT(FindAll(TEdidBuilder().Cta({0xE2, 0x78, 2}).Cta({}).Byte(edid::kExtensionCount, 1)), IsEmpty());
}

TEST(Contradictions, TellOfTheExtensionsOfAnotherEdid) {
  std::vector<std::uint8_t> other = MakeBase();
  other[edid::kProductCode] = 1;
  EXPECT_THAT(FindAll(TEdidBuilder().Extension(other)), ElementsAre("Block 1 is the base block of another EDID."));
  EXPECT_THAT(FindAll(AddProduct(TEdidBuilder().Manufacturer("DEL"), "ACM")),
              ElementsAre("Its DisplayID extension is about ACM 5, its base block about DEL 0."));
  EXPECT_THAT(FindAll(AddProduct(TEdidBuilder().Manufacturer("DEL"), "DEL")),
              ElementsAre("Its DisplayID extension is about DEL 5, its base block about DEL 0."));
}

TEST(Contradictions, AreNoneWithADisplayIdThatNamesNoMaker) {
  EXPECT_THAT(FindAll(AddProduct(TEdidBuilder().Manufacturer("DEL"), std::string(3, '\0'))), IsEmpty());
}

TEST(Contradictions, TellOfSizesThatDiffer) {
  const std::size_t timing = edid::kDescriptors[0];
  const TEdidBuilder small = TEdidBuilder().DetailedTiming(0, false).ImageSize(60, 34);
  EXPECT_THAT(FindAll(TEdidBuilder(small).Byte(timing + edid::kImageWidth, 100).Byte(timing + edid::kImageHeight, 50)),
              testing::Contains(testing::StartsWith("Its image is 60 x 34 cm, but ")));
}

TEST(Contradictions, AreNoneWhereATimingGivesAnAspectRatio) {
  const std::size_t timing = edid::kDescriptors[0];
  EXPECT_THAT(FindAll(TEdidBuilder()
                          .ImageSize(60, 34)
                          .DetailedTiming(0, false)
                          .Byte(timing + edid::kImageWidth, 16)
                          .Byte(timing + edid::kImageHeight, 9)
                          .Byte(timing + edid::kImageHighBits, 0)),
              IsEmpty());
}

TEST(Contradictions, TellOfAnAspectRatioThatStandsAsASize) {
  EXPECT_THAT(FindAll(TEdidBuilder().ImageSize(16, 9)), ElementsAre("Its image size of 16 x 9 cm is an aspect ratio."));
}

TEST(Contradictions, TellOfAPreferredModeOutsideTheLimits) {
  EXPECT_THAT(FindAll(TEdidBuilder().DetailedTiming(0, false).RangeLimits(1, 70, 75, 30, 60, 10)),
              ElementsAre("Its preferred mode needs 60.020 Hz, but its limits are 70 to 75 Hz.",
                          "Its preferred mode needs 63.981 kHz, but its limits are 30 to 60 kHz.",
                          "Its preferred mode needs a pixel clock of 108.000 MHz, but its limit is 100 MHz."));
}

TEST(Contradictions, AreNoneWhereARateIsOutsideTheLimitsByLessThanOne) {
  EXPECT_THAT(FindAll(TEdidBuilder().DetailedTiming(0, false).RangeLimits(1, 50, 60, 30, 63, 15)), IsEmpty());
  EXPECT_THAT(FindAll(TEdidBuilder().DetailedTiming(0, false).RangeLimits(1, 61, 75, 64, 80, 15)), IsEmpty());
}

TEST(Contradictions, TellOfARateThatExceedsItsLimitByOne) {
  constexpr unsigned int timing[] = {0x01, 0x1D, 0x00, 0x72, 0x51, 0xD0, 0x1E, 0x20};  // 1280 x 720 at 60 Hz
  TEdidBuilder builder;
  for (std::size_t index = 0; index < std::size(timing); ++index) {
    builder.Byte(edid::kDescriptors[0] + index, timing[index]);
  }
  EXPECT_THAT(FindAll(builder.RangeLimits(1, 50, 59, 30, 80, 15)),
              ElementsAre("Its preferred mode needs 60.000 Hz, but its limits are 50 to 59 Hz."));
}

TEST(Contradictions, AreNoneWhereTheClockIsAtItsLimit) {
  const std::size_t timing = edid::kDescriptors[0];
  EXPECT_THAT(FindAll(TEdidBuilder()
                          .DetailedTiming(0, false)
                          .Byte(timing, 11000 & 0xFF)
                          .Byte(timing + 1, 11000 >> 8)
                          .RangeLimits(1, 50, 75, 30, 80, 11)),
              IsEmpty());
}

TEST(Contradictions, AreNoneWithLimitsThatAreUnknown) {
  EXPECT_THAT(FindAll(TEdidBuilder().DetailedTiming(0, false).RangeLimits(1, 0, 0, 0, 0, 0xFF)), IsEmpty());
}

TEST(Contradictions, AreNoneWhereAPanelHasOneRateForALimit) {
  EXPECT_THAT(FindAll(TEdidBuilder().DetailedTiming(0, false).RangeLimits(1, 48, 144, 160, 160, 15)), IsEmpty());
}
