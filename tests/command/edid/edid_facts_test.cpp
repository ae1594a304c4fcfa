#include "command/edid/edid_facts.h"

#include <gmock/gmock.h>

#include "tests/support/edid_builder.h"

using testing::DoubleNear;
using testing::Eq;
using testing::Optional;

namespace {

/// The 18 bytes of a detailed timing: 4K at 59.997 Hz, from a DisplayPort monitor of 2019.
constexpr std::uint8_t k4K[] = {0x4D, 0xD0, 0x00, 0xA0, 0xF0, 0x70, 0x3E, 0x80, 0x30,
                                0x20, 0x35, 0x00, 0x55, 0x50, 0x21, 0x00, 0x00, 0x1A};
/// 1920 x 1080 in two fields of 540 lines, 50 fields per second (CTA-861, video code 20).
constexpr std::uint8_t k1080i50[] = {0x01, 0x1D, 0x80, 0xD0, 0x72, 0x1C, 0x16, 0x20, 0x10,
                                     0x2C, 0x25, 0x80, 0x55, 0x50, 0x21, 0x00, 0x00, 0x9E};

template <std::size_t kSize>
TEdidBuilder WithFirstTiming(const std::uint8_t (&timing)[kSize]) {
  TEdidBuilder builder;
  for (std::size_t index = 0; index < kSize; ++index) builder.Byte(edid::kDescriptors[0] + index, timing[index]);
  return builder;
}

TEdidFacts Read(const TEdidBuilder& builder) { return ReadEdidFacts(builder.Build()); }

TEdidBuilder WithSerialNumber(std::uint32_t number) {
  TEdidBuilder builder;
  for (std::size_t index = 0; index < 4; ++index) {
    builder.Byte(edid::kSerialNumber + index, number >> (8 * index) & 0xFF);
  }
  return builder;
}

}  // namespace

TEST(EdidFacts, TellThePreferredModeWithTheFractionOfItsRate) {
  const auto mode = Read(WithFirstTiming(k4K)).preferredMode;
  ASSERT_TRUE(mode);
  EXPECT_EQ(mode->width, 3840U);
  EXPECT_EQ(mode->height, 2160U);
  EXPECT_EQ(mode->refresh, 59.997);
}

TEST(EdidFacts, TellTheWholePictureAndTheFieldRateOfAnInterlacedMode) {
  const auto mode = Read(WithFirstTiming(k1080i50)).preferredMode;
  ASSERT_TRUE(mode);
  EXPECT_EQ(mode->width, 1920U);
  EXPECT_EQ(mode->height, 1080U);
  EXPECT_EQ(mode->refresh, 50);
}

TEST(EdidFacts, TellNoPreferredModeWhenATextComesFirst) {
  EXPECT_EQ(Read(TEdidBuilder().Name(0, "A")).preferredMode, std::nullopt);
}

TEST(EdidFacts, TellNoPreferredModeOfATimingWithoutPixels) {
  EXPECT_EQ(Read(TEdidBuilder().Byte(edid::kDescriptors[0], 1)).preferredMode, std::nullopt);
}

TEST(EdidFacts, TellTheProductCodeLowByteFirst) {
  EXPECT_EQ(Read(TEdidBuilder().Byte(edid::kProductCode, 0x34).Byte(edid::kProductCode + 1, 0x12)).productCode,
            0x1234U);
}

TEST(EdidFacts, TellTheSerialNumberOfTheHeader) {
  EXPECT_THAT(Read(WithSerialNumber(0x12345678)).serialNumber, Optional(Eq(0x12345678U)));
  EXPECT_THAT(Read(WithSerialNumber(0xFFFFFFFF)).serialNumber, Optional(Eq(0xFFFFFFFFU)));
}

TEST(EdidFacts, TellNoSerialNumberThatIsAFiller) {
  EXPECT_EQ(Read(WithSerialNumber(0)).serialNumber, std::nullopt);
  EXPECT_EQ(Read(WithSerialNumber(0x01010101)).serialNumber, std::nullopt);
}

TEST(EdidFacts, TellTheDiagonalInInches) {
  EXPECT_THAT(Read(TEdidBuilder().ImageSize(60, 34)).diagonalInches, Optional(DoubleNear(27.15, 0.01)));
}

TEST(EdidFacts, TellNoDiagonalOfAnAspectRatioOrAnUnknownSize) {
  EXPECT_EQ(Read(TEdidBuilder().ImageSize(60, 0)).diagonalInches, std::nullopt);
  EXPECT_EQ(Read(TEdidBuilder().ImageSize(0, 34)).diagonalInches, std::nullopt);
}

TEST(EdidFacts, TellTheNameWithoutTheBlanksThatFillItUp) {
  EXPECT_EQ(Read(TEdidBuilder().Name(2, "Acme 27  ")).name, "Acme 27");
  EXPECT_EQ(Read(TEdidBuilder()).name, "");
}

TEST(EdidFacts, TellWhetherTheChecksumOfEveryBlockHolds) {
  const std::vector<std::uint8_t> whole = TEdidBuilder().Extension({0x02}).Build();
  EXPECT_TRUE(ReadEdidFacts(whole).hasValidChecksums);
  for (const std::size_t damaged : {std::size_t{20}, edid::kBlockSize + 1}) {
    std::vector<std::uint8_t> bytes = whole;
    ++bytes[damaged];
    EXPECT_FALSE(ReadEdidFacts(bytes).hasValidChecksums);
  }
}

TEST(EdidFacts, TellOnlyTheChecksumsOfWhatIsNoEdidOfVersionOne) {
  const TEdidFacts other = Read(TEdidBuilder().Version(2, 0).ImageSize(60, 34).Name(0, "A"));
  EXPECT_FALSE(other.isVersion1);
  EXPECT_TRUE(other.hasValidChecksums);
  EXPECT_EQ(other.diagonalInches, std::nullopt);
  EXPECT_EQ(other.name, "");
  EXPECT_FALSE(ReadEdidFacts(std::vector<std::uint8_t>(128)).isVersion1);
}

TEST(EdidFacts, TellTheWeeksOneToFiftyThree) {
  EXPECT_EQ(Read(TEdidBuilder().Made(0, 2020)).made.value().week, std::nullopt);
  EXPECT_EQ(Read(TEdidBuilder().Made(1, 2020)).made.value().week, 1U);
  EXPECT_EQ(Read(TEdidBuilder().Made(53, 2020)).made.value().week, 53U);
  EXPECT_EQ(Read(TEdidBuilder().Made(54, 2020)).made.value().week, std::nullopt);
}

TEST(EdidFacts, TellNoMakerByCodesThatAreNoLetters) {
  const auto read = [](unsigned int first) {  // the code of the first letter; A and A follow
    return Read(TEdidBuilder().Byte(edid::kManufacturer, first << 2).Byte(edid::kManufacturer + 1, 0x21)).maker;
  };
  EXPECT_EQ(read(0), "");
  EXPECT_EQ(read(26), "ZAA");
  EXPECT_EQ(read(27), "");
}

TEST(EdidFacts, TellTheInterfaceAndItsDepthSinceRevisionFour) {
  const auto read = [](unsigned int revision, unsigned int input) {
    const TVideoInput facts = Read(TEdidBuilder().Version(1, revision).Byte(edid::kVideoInput, input)).input;
    return facts.interface + std::string(" ") + std::to_string(facts.colourBits.value_or(0));
  };
  EXPECT_EQ(read(4, 0x95), "DisplayPort 6");
  EXPECT_EQ(read(4, 0xE1), "DVI 16");
  EXPECT_EQ(read(4, 0xF6), " 0");
  EXPECT_EQ(read(3, 0x95), " 0");
}

TEST(EdidFacts, EndAtTheBaseBlockOfAnotherEdid) {
  const std::vector<std::uint8_t> other = TEdidBuilder().Build();
  EXPECT_TRUE(Read(TEdidBuilder().Extension(other).Cta({0x41, 16})).modes.empty());
}

TEST(EdidFacts, TellNoYearBeforeTheStandardsFirstNorThatOfAFiller) {
  EXPECT_FALSE(Read(TEdidBuilder().Made(1, 1993)).made);
  EXPECT_EQ(Read(TEdidBuilder().Made(1, 1994)).made.value().year, 1994U);
  EXPECT_EQ(Read(TEdidBuilder().Made(1, 2244)).made.value().year, 2244U);
  EXPECT_FALSE(Read(TEdidBuilder().Made(1, 2245)).made);
}
