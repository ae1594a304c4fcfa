#include <gmock/gmock.h>

#include "tests/command/edid/edid_texts.h"

using testing::ElementsAre;
using testing::StrEq;

namespace {

TEdidFacts ReadBlocks(const std::vector<std::uint8_t>& dataBlocks) {
  return ReadEdidFacts(TEdidBuilder().Cta(dataBlocks).Build());
}

const std::vector<std::uint8_t> kHdmi = {0x67, 0x03, 0x0C, 0x00, 0x10, 0x00, 0x38, 60};
const std::vector<std::uint8_t> kForum = {0x6B, 0xD8, 0x5D, 0xC4, 1, 120, 0x80, 0x60, 0, 0x30, 144, 0x80};
const std::vector<std::uint8_t> kFreeSync = {0x68, 0x1A, 0x00, 0x00, 1, 1, 40, 165, 0};

}  // namespace

TEST(VendorBlocks, TellTheLinkOfHdmi) {
  const auto hdmi = ReadBlocks(kHdmi).hdmi;
  ASSERT_TRUE(hdmi);
  EXPECT_EQ(hdmi->maxTmdsClock, 300U);
  EXPECT_STREQ(hdmi->fixedRateLink, "");
  EXPECT_FALSE(hdmi->hasCompression);
  EXPECT_THAT(hdmi->deepColourBits, ElementsAre(10, 12));
}

TEST(VendorBlocks, TellTheFasterLinkOfHdmiForum) {
  for (const auto& blocks : {Join(kHdmi, kForum), Join(kForum, kHdmi)}) {
    const auto hdmi = ReadBlocks(blocks).hdmi;
    ASSERT_TRUE(hdmi);
    EXPECT_EQ(hdmi->maxTmdsClock, 600U);
    EXPECT_STREQ(hdmi->fixedRateLink, "4 lanes at 12 Gbps");
    EXPECT_TRUE(hdmi->hasCompression);
    EXPECT_THAT(hdmi->deepColourBits, ElementsAre(10, 12));
  }
}

TEST(VendorBlocks, TellTheFastestLinkOfAllBlocksOfHdmiForum) {
  std::vector<std::uint8_t> other = kForum;
  for (const std::uint8_t link : std::vector<std::uint8_t>{0x00, 0x30, 0xF0}) {
    other[7] = link;
    for (const auto& blocks : {Join(kForum, other), Join(other, kForum)}) {
      EXPECT_STREQ(ReadBlocks(blocks).hdmi->fixedRateLink, "4 lanes at 12 Gbps");
    }
  }
}

TEST(VendorBlocks, TellTheLinkOfHdmiForumWithoutItsIdentifier) {
  const auto hdmi = ReadBlocks({0xEA, 0x79, 0, 0, 1, 120, 0x80, 0x60, 0, 0x30, 144}).hdmi;
  ASSERT_TRUE(hdmi);
  EXPECT_EQ(hdmi->maxTmdsClock, 600U);
  EXPECT_STREQ(hdmi->fixedRateLink, "4 lanes at 12 Gbps");
}

TEST(VendorBlocks, TellOfCompressionInAnyBlockOfHdmiForum) {
  std::vector<std::uint8_t> other = kForum;
  other[11] = 0;
  EXPECT_FALSE(ReadBlocks(other).hdmi.value().hasCompression);
  EXPECT_TRUE(ReadBlocks(Join(kForum, other)).hdmi.value().hasCompression);
}

TEST(VendorBlocks, TellNoRateOfALinkThatIsNotGiven) {
  std::vector<std::uint8_t> none = kHdmi;
  none[7] = 0;
  EXPECT_EQ(ReadBlocks(none).hdmi.value().maxTmdsClock, std::nullopt);
}

TEST(VendorBlocks, TellEachDepthOfSeveralBlocksOnce) {
  EXPECT_THAT(ReadBlocks(Join(kHdmi, kHdmi)).hdmi.value().deepColourBits, ElementsAre(10, 12));
}

TEST(VendorBlocks, TellTheDepthsOfSeveralBlocksInAscendingOrder) {
  std::vector<std::uint8_t> deepest = kHdmi;
  deepest[6] = 0x40;
  EXPECT_THAT(ReadBlocks(Join(deepest, kHdmi)).hdmi->deepColourBits, ElementsAre(10, 12, 16));
}

TEST(VendorBlocks, HaveNoLatencyOfInterlacedVideoWithoutThatOfOtherVideo) {
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta({0x6C, 0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 60, 0x60, 0, 0x40, 1, 4})),
              ElementsAre("4096x2160@24 hdmi vic", "3840x2160@30 hdmi vic"));
}

TEST(VendorBlocks, TellTheModesOfHdmiAfterItsLatencies) {
  EXPECT_THAT(WriteModes(TEdidBuilder().Cta({0x6E, 0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 60, 0xA0, 1, 1, 0, 0x40, 1, 4})),
              ElementsAre("4096x2160@24 hdmi vic", "3840x2160@30 hdmi vic"));
}

TEST(VendorBlocks, TellTheRefreshRangeOfFreeSyncBeforeThatOfHdmi) {
  for (const auto& blocks : {Join(kFreeSync, kForum), Join(kForum, kFreeSync)}) {
    const auto range = ReadBlocks(blocks).refreshRange;
    ASSERT_TRUE(range);
    EXPECT_EQ(range->min, 40U);
    EXPECT_EQ(range->max, 165U);
    EXPECT_STREQ(range->from, "FreeSync");
  }
}

TEST(VendorBlocks, TellTheFirstRefreshRangeOfSeveralBlocksOfOneKind) {
  std::vector<std::uint8_t> other = kFreeSync;
  other[6] = 30;
  EXPECT_EQ(ReadBlocks(Join(kFreeSync, other)).refreshRange.value().min, 40U);
}

TEST(VendorBlocks, TellNoRefreshRangeThatBeginsAtZero) {
  std::vector<std::uint8_t> none = kFreeSync;
  none[6] = 0;
  EXPECT_FALSE(ReadBlocks(none).refreshRange);
  EXPECT_STREQ(ReadBlocks(Join(none, kForum)).refreshRange.value().from, "HDMI");
}

TEST(VendorBlocks, TellTheRefreshRangeOfHdmi) {
  std::vector<std::uint8_t> forum = kForum;
  forum[9] = 0x70;  // the upper bits of 400 Hz
  const auto range = ReadBlocks(forum).refreshRange;
  ASSERT_TRUE(range);
  EXPECT_EQ(range->min, 48U);
  EXPECT_EQ(range->max, 400U);
  EXPECT_STREQ(range->from, "HDMI");
  forum[9] = 0x30;
  forum[10] = 0;
  EXPECT_EQ(ReadBlocks(forum).refreshRange->max, std::nullopt);
}

TEST(VendorBlocks, TellNoUpperEndOfARefreshRangeThatIsCutOff) {
  EXPECT_EQ(ReadBlocks({0x69, 0xD8, 0x5D, 0xC4, 1, 120, 0x80, 0x60, 0, 0x70}).refreshRange->max, std::nullopt);
}

TEST(VendorBlocks, TellTheRangeOfBrightness) {
  const auto hdr = ReadBlocks({0xE6, 6, 0x0D, 1, 103, 77, 84}).hdr;
  ASSERT_TRUE(hdr);
  EXPECT_THAT(hdr->transfers, ElementsAre(StrEq("SDR"), StrEq("PQ"), StrEq("HLG")));
  EXPECT_EQ(hdr->maxLuminance, 465.49);
  EXPECT_EQ(hdr->maxFrameAverageLuminance, 265.047);
  EXPECT_EQ(hdr->minLuminance, 0.505);
}

TEST(VendorBlocks, TellEachTransferFunctionOnce) {
  const auto hdr = ReadBlocks({0xE3, 6, 0x05, 1, 0xE3, 6, 0x0D, 1}).hdr;
  ASSERT_TRUE(hdr);
  EXPECT_THAT(hdr->transfers, ElementsAre(StrEq("SDR"), StrEq("PQ"), StrEq("HLG")));
}

TEST(VendorBlocks, TellNoBrightnessThatIsNotGiven) {
  const auto hdr = ReadBlocks({0xE6, 6, 0x0D, 1, 0, 0, 84}).hdr;
  ASSERT_TRUE(hdr);
  EXPECT_EQ(hdr->maxLuminance, std::nullopt);
  EXPECT_EQ(hdr->maxFrameAverageLuminance, std::nullopt);
  EXPECT_EQ(hdr->minLuminance, std::nullopt);
}

TEST(VendorBlocks, TellNoLowestBrightnessOfABlockThatIsCutOff) {
  EXPECT_EQ(ReadBlocks({0xE5, 6, 0x0D, 1, 103, 77}).hdr.value().minLuminance, std::nullopt);
}

TEST(VendorBlocks, NameHdr10PlusAndDolbyVisionWithTheirVersions) {
  const auto hdr = ReadBlocks({0xE5, 1, 0x8B, 0x84, 0x90, 1, 0xE5, 1, 0x46, 0xD0, 0x00, 0x44}).hdr;
  ASSERT_TRUE(hdr);
  EXPECT_EQ(hdr->hdr10Plus, "1");
  EXPECT_EQ(hdr->dolbyVision, "V2");
}
