#include <gmock/gmock.h>

#include "tests/command/edid/edid_texts.h"

using testing::Optional;

namespace {

/// A builder whose first timing, 1280 x 1024, gives these millimetres.
TEdidBuilder WithMillimetres(unsigned int width, unsigned int height) {
  const std::size_t timing = edid::kDescriptors[0];
  return TEdidBuilder()
      .DetailedTiming(0, false)
      .Byte(timing + edid::kImageWidth, width & 0xFF)
      .Byte(timing + edid::kImageHeight, height & 0xFF)
      .Byte(timing + edid::kImageHighBits, width >> 8 << 4 | height >> 8);
}

/// A data block of DisplayID with a size of 597 x 336.5 mm.
const std::vector<std::uint8_t> kParameters = {0x01, 0, 12, 0x52, 0x17, 0x25, 0x0D, 0, 0, 0, 0, 0, 0, 0, 0};

/// "597 x 336 mm, 1.78", or only the aspect ratio.
std::string WriteImage(const TEdidBuilder& builder) {
  const TEdidFacts facts = ReadEdidFacts(builder.Build());
  std::ostringstream text;
  if (facts.imageSize) text << facts.imageSize->width << " x " << facts.imageSize->height << " mm, ";
  EXPECT_EQ(facts.imageSize.has_value(), facts.diagonalInches.has_value());
  if (facts.aspectRatio) text << *facts.aspectRatio;
  return text.str();
}

}  // namespace

TEST(ImageSize, IsThatOfThePreferredTimingWhereItAgreesWithTheCentimetres) {
  EXPECT_EQ(WriteImage(WithMillimetres(597, 336).ImageSize(60, 34)), "597 x 336 mm, 1.78");
}

TEST(ImageSize, OfTheTimingDiffersFromTheCentimetresByATenthAtMost) {
  EXPECT_EQ(WriteImage(WithMillimetres(540, 306).ImageSize(60, 34)), "540 x 306 mm, 1.76");
  EXPECT_EQ(WriteImage(WithMillimetres(539, 306).ImageSize(60, 34)), "600 x 340 mm, 1.76");
}

TEST(ImageSize, IsInWholeCentimetresWhereTheTimingContradictsThem) {
  EXPECT_EQ(WriteImage(WithMillimetres(1600, 900).ImageSize(60, 34)), "600 x 340 mm, 1.76");
  EXPECT_EQ(WriteImage(WithMillimetres(0, 0).ImageSize(60, 34)), "600 x 340 mm, 1.76");
  EXPECT_EQ(WriteImage(TEdidBuilder().ImageSize(60, 34)), "600 x 340 mm, 1.76");
}

TEST(ImageSize, IsThatOfDisplayIdWhereNoTimingHasOne) {
  EXPECT_EQ(WriteImage(TEdidBuilder().ImageSize(60, 34).DisplayId(0x12, kParameters)), "597 x 337 mm, 1.77");
}

TEST(ImageSize, IsInWholeCentimetresWhereDisplayIdContradictsThem) {
  EXPECT_EQ(WriteImage(TEdidBuilder().ImageSize(50, 28).DisplayId(0x12, kParameters)), "500 x 280 mm, 1.79");
}

TEST(ImageSize, IsNoneForAnAspectRatio) {
  EXPECT_EQ(WriteImage(TEdidBuilder().Version(1, 4).ImageSize(79, 0)), "1.78");
  EXPECT_EQ(WriteImage(TEdidBuilder().Version(1, 4).ImageSize(0, 79)), "0.56");
  for (const auto& [width, height, ratio] :
       {std::tuple(16U, 9U, "1.78"), {16U, 10U, "1.6"}, {160U, 90U, "1.78"}, {160U, 100U, "1.6"}}) {
    EXPECT_EQ(WriteImage(WithMillimetres(width, height).ImageSize(width, height)), ratio);
  }
}

TEST(ImageSize, MayLookLikeAnAspectRatioWhenATimingAgrees) {
  EXPECT_EQ(WriteImage(WithMillimetres(1600, 900).ImageSize(160, 90)), "1600 x 900 mm, 1.78");
}

TEST(ImageSize, MayLookLikeAnAspectRatioWhenDisplayIdAgrees) {
  const std::vector<std::uint8_t> parameters = {0x01, 0, 12, 0x40, 0x06, 0x84, 0x03, 0, 0, 0, 0, 0, 0, 0, 0};
  EXPECT_EQ(WriteImage(TEdidBuilder().ImageSize(16, 9).DisplayId(0x12, parameters)), "160 x 90 mm, 1.78");
}

TEST(ImageSize, IsNotKnownOfAProjector) { EXPECT_EQ(WriteImage(WithMillimetres(1600, 900).ImageSize(0, 0)), ""); }
