#include <gmock/gmock.h>

#include "tests/command/edid/edid_texts.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// 1280 x 720 at 60 Hz in 18 bytes.
const std::vector<std::uint8_t> kTiming = {0x01, 0x1D, 0x00, 0x72, 0x51, 0xD0, 0x1E, 0x20, 0x6E,
                                           0x28, 0x55, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x1E};

TEdidFacts ReadCta(const std::vector<std::uint8_t>& dataBlocks) {
  return ReadEdidFacts(TEdidBuilder().Cta(dataBlocks).Build());
}

}  // namespace

TEST(CtaExtension, DeclaresModesByVideoCodes) {
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta({0x46, 16, 0x80 | 20, 3, 118, 218, 6})),
              ElementsAre("4096x2160@100 vic", "3840x2160@120 vic", "1920x1080@60 vic", "1920x1080i@50 vic",
                          "1440x480i@59.94 vic", "720x480@59.94 vic"));
}

TEST(CtaExtension, DeclaresNoModeByCodesThatAreReserved) {
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta({0x44, 0, 128, 220, 255})), IsEmpty());
}

TEST(CtaExtension, DeclaresDetailedTimingsAfterItsDataBlocks) {
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta({0x41, 16}, kTiming)),
              ElementsAre("1920x1080@60 vic", "1280x720@60 cta detailed"));
}

TEST(CtaExtension, HasOnlyTimingsBeforeRevisionThree) {
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta({0x41, 16}, kTiming).Byte(edid::kBlockSize + 1, 2)),
              ElementsAre("1280x720@60 cta detailed"));
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta({0x41, 16}, kTiming).Byte(edid::kBlockSize + 1, 0)), IsEmpty());
}

TEST(CtaExtension, TellsModesThatWorkOnlyWithYcbcr420) {
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta({0x41, 95, 0xE2, 14, 97})),
              ElementsAre("3840x2160@60 vic, 4:2:0 only", "3840x2160@30 vic"));
}

TEST(CtaExtension, TellsModesThatWorkWithYcbcr420TooByTheirBits) {
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta({0x43, 97, 96, 16, 0xE2, 15, 0x02})),
              ElementsAre("3840x2160@60 vic", "3840x2160@50 vic, 4:2:0 too", "1920x1080@60 vic"));
}

TEST(CtaExtension, TellsThatAllModesWorkWithYcbcr420ByAMapWithoutBits) {
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta({0x42, 97, 16, 0xE1, 15})),
              ElementsAre("3840x2160@60 vic, 4:2:0 too", "1920x1080@60 vic, 4:2:0 too"));
}

TEST(CtaExtension, TellsTheFormatsOfSound) {
  const std::vector<TAudioFormat> audio = ReadCta({0x29, 0x09, 0x07, 0x07, 0x15, 0x50, 0x00, 0x7A, 0x04, 0x58}).audio;
  ASSERT_EQ(audio.size(), 3U);
  EXPECT_EQ(audio[0].name, "Linear PCM");
  EXPECT_EQ(audio[0].channels, 2U);
  EXPECT_THAT(audio[0].sampleRates, ElementsAre(32, 44.1, 48));
  EXPECT_THAT(audio[0].sampleSizes, ElementsAre(16, 20, 24));
  EXPECT_EQ(audio[1].name, "AC-3");
  EXPECT_EQ(audio[1].channels, 6U);
  EXPECT_THAT(audio[1].sampleSizes, IsEmpty());
  EXPECT_EQ(audio[2].name, "MPEG-H 3D Audio");
  EXPECT_EQ(audio[2].channels, std::nullopt);
}

TEST(CtaExtension, TellsTheChannelsAndSampleSizesOfSoundInThreeDimensions) {
  const std::vector<TAudioFormat> audio = ReadCta({0x26, 0xFB, 0x84, 0x6A, 0x7D, 0x04, 0x33}).audio;
  ASSERT_EQ(audio.size(), 2U);
  EXPECT_EQ(audio[0].name, "L-PCM 3D Audio");
  EXPECT_EQ(audio[0].channels, 28U);
  EXPECT_THAT(audio[0].sampleRates, ElementsAre(48));
  EXPECT_THAT(audio[0].sampleSizes, ElementsAre(20));
  EXPECT_EQ(audio[1].name, "MPEG-4 AAC LC");
  EXPECT_EQ(audio[1].channels, 6U);
  EXPECT_THAT(audio[1].sampleSizes, IsEmpty());
}

TEST(CtaExtension, TellsNoSoundOfABlockThatEndsWithinADescriptor) {
  EXPECT_THAT(ReadCta({0x22, 0x09, 0x07}).audio, IsEmpty());
}

TEST(CtaExtension, TellsSpeakersAndColorimetry) {
  const TEdidFacts facts = ReadCta({0x83, 0x05, 0x00, 0x00, 0xE3, 5, 0x81, 0x83});
  EXPECT_THAT(facts.speakers, ElementsAre(testing::StrEq("FL/FR"), testing::StrEq("FC")));
  EXPECT_THAT(facts.colorimetry,
              ElementsAre(testing::StrEq("xvYCC601"), testing::StrEq("BT2020RGB"), testing::StrEq("ST2113RGB")));
}

TEST(CtaExtension, TellsASpeakerOfSeveralBlocksOnce) {
  EXPECT_THAT(ReadCta({0x83, 0x01, 0x00, 0x00, 0x83, 0x05, 0x00, 0x00}).speakers,
              ElementsAre(testing::StrEq("FL/FR"), testing::StrEq("FC")));
}

TEST(CtaExtension, TellsNoColorimetryOfABlockThatIsCutOff) {
  EXPECT_THAT(ReadCta({0xE2, 5, 0x81}).colorimetry, IsEmpty());
}

TEST(CtaExtension, EndsWhereItsBytesDo) {
  // A data block that claims to have 31 bytes, but begins at the last byte before the checksum.
  std::vector<std::uint8_t> blocks(122, 0);
  blocks.push_back(0x5F);
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta(blocks).Byte(edid::kBlockSize + 2, 255)), IsEmpty());
}
