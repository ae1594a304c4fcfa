#include <gmock/gmock.h>

#include "tests/command/edid/edid_texts.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEdidFacts ReadDisplayId(const std::vector<std::uint8_t>& dataBlocks) {
  return ReadEdidFacts(TEdidBuilder().DisplayId(0x20, dataBlocks).Build());
}

std::vector<std::string> WriteDisplayIdModes(const std::vector<std::uint8_t>& dataBlocks) {
  return WriteModes(TEdidBuilder().DisplayId(0x12, dataBlocks));
}

/// 1920 x 1080 within 2200 x 1125, in 20 bytes; 148.5 MHz in units of 10 kHz.
const std::vector<std::uint8_t> kTypeI = {0x03, 0x00, 20,   0x01, 0x3A, 0x00, 0x04, 0x7F, 0x07, 0x17, 0x01, 0x57,
                                          0x00, 0x2B, 0x00, 0x37, 0x04, 0x2C, 0x00, 0x03, 0x00, 0x04, 0x00};

/// The topology of a display whose tiles have 1920 x 2160 pixels. `counts`, `place` and `upper`: of its columns and
/// rows.
std::vector<std::uint8_t> MakeTile(std::uint8_t counts, std::uint8_t place, std::uint8_t upper) {
  std::vector<std::uint8_t> block = {0x12, 0, 22, 0x82, counts, place, upper, 0x7F, 0x07, 0x6F, 0x08};
  block.resize(3 + 22);
  return block;
}

}  // namespace

TEST(DisplayId, DeclaresTimingsOfTypeI) {
  EXPECT_THAT(WriteDisplayIdModes(kTypeI), ElementsAre("1920x1080@60 displayid"));
  std::vector<std::uint8_t> interlaced = kTypeI;
  interlaced[6] |= 0x10;
  EXPECT_THAT(WriteDisplayIdModes(interlaced), ElementsAre("1920x1080i@120 displayid"));
}

TEST(DisplayId, DeclaresTimingsOfTypeVIIInKilohertz) {
  std::vector<std::uint8_t> timing = kTypeI;
  timing[0] = 0x22;
  timing[3] = 0x13;  // 148,500 kHz
  timing[4] = 0x44;
  timing[5] = 0x02;
  EXPECT_THAT(WriteDisplayIdModes(timing), ElementsAre("1920x1080@60 displayid"));
}

TEST(DisplayId, DeclaresTimingsOfTypeII) {
  EXPECT_THAT(WriteDisplayIdModes({0x04, 0, 11, 0x5F, 0x3A, 0, 0, 0xEF, 0x42, 0x32, 0x37, 4, 0x2C, 0x12}),
              ElementsAre("1920x1080@60.6 displayid"));
}

TEST(DisplayId, DeclaresTimingsOfTypesIIIAndVAndIXByFormula) {
  EXPECT_THAT(WriteDisplayIdModes({0x05, 0, 6, 0x04, 239, 59, 0x14, 239, 59}),
              ElementsAre("1920x1080@59.963 displayid", "1920x1080@59.934 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x05, 0, 3, 0x24, 239, 59}), ElementsAre("1920x1080@59.963 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x11, 0, 7, 0, 0, 0x7F, 7, 0x37, 4, 59}), ElementsAre("1920x1080@60 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x24, 0, 6, 3, 0x7F, 7, 0x37, 4, 59}), ElementsAre("1920x1080@59.963 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x24, 0, 6, 2, 0x7F, 7, 0x37, 4, 143}), ElementsAre("1920x1080@144 displayid"));
}

TEST(DisplayId, GivesAModeByFormulaEveryPixelOfItsLines) {
  EXPECT_THAT(WriteDisplayIdModes({0x24, 0, 6, 0, 0x55, 5, 0xFF, 2, 59}), ElementsAre("1366x768@59.598 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x24, 0, 6, 2, 0x55, 5, 0xFF, 2, 59}), ElementsAre("1366x768@60 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x2A, 0x00, 6, 3, 0x55, 5, 0xFF, 2, 59}), ElementsAre("1366x768@59.965 displayid"));
}

TEST(DisplayId, DeclaresTimingsByTheCodesOfStandards) {
  EXPECT_THAT(WriteDisplayIdModes({0x06, 0x00, 1, 0x10}), ElementsAre("1024x768@60.004 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x06, 0x40, 1, 0x10}), ElementsAre("1920x1080@60 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x23, 0x80, 1, 0x01}), ElementsAre("3840x2160@30 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x23, 0x08, 2, 0x10, 0x00}), ElementsAre("1024x768@60.004 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x07, 0, 2, 0x00, 0x80}), ElementsAre("1024x768@60.004 displayid"));
  EXPECT_THAT(WriteDisplayIdModes({0x08, 0, 2, 0x00, 0x80}), ElementsAre("1920x1080@60 displayid"));
}

TEST(DisplayId, DeclaresTimingsOfTypeVI) {
  EXPECT_THAT(WriteDisplayIdModes({0x13, 0, 14, 0x13, 0x44, 0x02, 0x7F, 0x07, 0x37, 0x04, 0x17, 88, 1, 44, 0x2C, 4, 5}),
              ElementsAre("1920x1080@60 displayid"));
}

TEST(DisplayId, DeclaresTimingsOfTypeVIAfterALongOne) {
  EXPECT_THAT(WriteDisplayIdModes({0x13, 0,    31,   0x13, 0x44, 0x42, 0x7F, 0x07, 0x37, 0x04, 0x17, 88,   1, 44,
                                   0x2C, 4,    5,    1,    2,    3,  // its last three bytes: a size
                                   0x13, 0x44, 0x02, 0x7F, 0x07, 0xCF, 0x02, 0x17, 88,   1,    44,   0x2C, 4, 5}),
              ElementsAre("1920x1080@60 displayid", "1920x720@88.235 displayid"));
}

TEST(DisplayId, DeclaresTimingsOfTypeX) {
  EXPECT_THAT(WriteDisplayIdModes({0x2A, 0x10, 7, 0x03, 0x7F, 0x07, 0x37, 0x04, 0xDF, 0x01}),
              ElementsAre("1920x1080@480.083 displayid"));
}

TEST(DisplayId, DeclaresTimingsOfTypeXWithALongerBlank) {
  EXPECT_THAT(WriteDisplayIdModes({0x2A, 0x10, 7, 0x03, 0x7F, 0x07, 0x37, 0x04, 0xDF, 0xE1}),
              ElementsAre("1920x1080@480.021 displayid"));
}

TEST(DisplayId, DeclaresTimingsOfTypeXForVideo) {
  EXPECT_THAT(WriteDisplayIdModes({0x2A, 0x10, 7, 0x12, 0x7F, 0x07, 0x37, 0x04, 0x77, 0x00}),
              ElementsAre("1920x1080@119.88 displayid"));
}

TEST(DisplayId, DeclaresTimingsOfTypeXWithAWideBlank) {
  const auto write = [](unsigned char blank) {
    return WriteDisplayIdModes(
        {0x2A, 0x10, 7, 0x13, 0x7F, 0x07, 0x37, 0x04, 0x3B, static_cast<std::uint8_t>(blank << 2)});
  };
  EXPECT_THAT(write(0), ElementsAre("1920x1080@60.042 displayid"));
  EXPECT_THAT(write(5), ElementsAre("1920x1080@60.077 displayid"));
  EXPECT_THAT(write(6), ElementsAre("1920x1080@60.057 displayid"));
  EXPECT_THAT(write(7), ElementsAre("1920x1080@60.071 displayid"));
}

TEST(DisplayId, TellsWhichTimingsOfTypesVIIIAndXWorkWithYcbcr420Too) {
  EXPECT_THAT(WriteDisplayIdModes({0x23, 0x20, 1, 0x10}), ElementsAre("1024x768@60.004 displayid, 4:2:0 too"));
  EXPECT_THAT(WriteDisplayIdModes({0x2A, 0x10, 14, 0x83, 0x7F, 0x07, 0x37, 0x04, 0xDF, 0x01,  //
                                   0x02, 0xFF, 0x04, 0xCF, 0x02, 0x3B, 0x00}),
              ElementsAre("1920x1080@480.083 displayid, 4:2:0 too", "1280x720@59.999 displayid"));
}

TEST(DisplayId, MayHaveDataBlocksOfCta) {
  EXPECT_THAT(WriteDisplayIdModes({0x81, 0, 2, 0x41, 97}), ElementsAre("3840x2160@60 vic"));
}

TEST(DisplayId, TellsThePlaceOfATile) {
  const auto tile = ReadDisplayId(MakeTile(0x10, 0x10, 0x00)).tile;
  ASSERT_TRUE(tile);
  EXPECT_EQ(tile->columns, 2U);
  EXPECT_EQ(tile->rows, 1U);
  EXPECT_EQ(tile->column, 1U);
  EXPECT_EQ(tile->row, 0U);
  EXPECT_EQ(tile->width, 1920U);
  EXPECT_EQ(tile->height, 2160U);
}

TEST(DisplayId, TellsThePlaceOfATileOfALargeDisplay) {
  const auto tile = ReadDisplayId(MakeTile(0x12, 0x34, 0xE4)).tile;
  ASSERT_TRUE(tile);
  EXPECT_EQ(tile->columns, 50U);
  EXPECT_EQ(tile->rows, 35U);
  EXPECT_EQ(tile->column, 19U);
  EXPECT_EQ(tile->row, 4U);
}

TEST(DisplayId, TellsNoPlaceOfATileInABlockThatIsCutOff) {
  EXPECT_FALSE(ReadDisplayId({0x12, 0, 8, 0x82, 0x10, 0x10, 0x00, 0x7F, 0x07, 0x6F, 0x08}).tile);
}

TEST(DisplayId, TellsTheFirstOfSeveralTilesAndSizes) {
  EXPECT_EQ(ReadDisplayId(Join(MakeTile(0x10, 0x10, 0x00), MakeTile(0x30, 0x20, 0x00))).tile.value().columns, 2U);
  const TEdidBuilder sizes =
      TEdidBuilder().ImageSize(60, 34).DisplayId(0x12, {0x01, 0, 12, 0x52, 0x17, 0x25, 0x0D, 0, 0, 0, 0, 0, 0, 0, 0,  //
                                                        0x01, 0, 12, 0x70, 0x17, 0x48, 0x0D, 0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_EQ(ReadEdidFacts(sizes.Build()).imageSize.value().width, 597U);
}

TEST(DisplayId, TellsTheRefreshRangeOfAdaptiveSync) {
  const auto range = ReadDisplayId({0x2B, 0, 6, 0x01, 0, 48, 0x8F, 0x01, 0}).refreshRange;
  ASSERT_TRUE(range);
  EXPECT_EQ(range->min, 48U);
  EXPECT_EQ(range->max, 400U);
  EXPECT_STREQ(range->from, "DisplayID");
}

TEST(DisplayId, TellsNoRefreshRangeOfABlockThatIsCutOff) {
  EXPECT_FALSE(ReadDisplayId({0x2B, 0x10, 6, 0x01, 0, 48, 0x8F, 0x01, 0}).refreshRange);
}

TEST(DisplayId, EndsAtAFillerAndAtABlockThatDoesNotFit) {
  EXPECT_THAT(WriteDisplayIdModes(Join({0, 0, 0}, kTypeI)), IsEmpty());
  EXPECT_THAT(WriteDisplayIdModes({0x06, 0x00, 200, 0x10}), IsEmpty());
}
