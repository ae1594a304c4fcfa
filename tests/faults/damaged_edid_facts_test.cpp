// Whatever the bytes of an EDID are, reading them ends, and gives modes that have pixels and a rate.
#include <gtest/gtest.h>

#include <random>

#include "tests/command/edid/edid_texts.h"
#include "tests/support/rich_edids.h"

namespace {

void ExpectSoundModes(const std::vector<std::uint8_t>& edid) {
  for (const TListedMode& mode : ReadEdidFacts(edid).modes) {
    ASSERT_GT(mode.width, 0U);
    ASSERT_GT(mode.height, 0U);
    ASSERT_GT(mode.refresh, 0);
  }
}

}  // namespace

TEST(DamagedEdid, IsReadWhicheverBitIsWrong) {
  for (const auto& [name, edid] : MakeRichEdids()) {
    SCOPED_TRACE(name);
    std::vector<std::uint8_t> damaged = edid;
    for (std::size_t offset = edid::kVersion + 1; offset < edid.size(); ++offset) {
      for (const unsigned int change :
           {0x01U, 0x02U, 0x04U, 0x08U, 0x10U, 0x20U, 0x40U, 0x80U, 0xFFU, 0x00U + edid[offset]}) {
        damaged[offset] = static_cast<std::uint8_t>(edid[offset] ^ change);
        ExpectSoundModes(damaged);
      }
      damaged[offset] = edid[offset];
    }
  }
}

TEST(DamagedEdid, IsReadWhenAllOfItsBytesAreRandom) {
  std::mt19937 random(4711);
  const std::vector<std::uint8_t> base = TEdidBuilder().Build();
  for (unsigned int round = 0; round < 2000; ++round) {
    std::vector<std::uint8_t> edid = base;
    for (const std::uint8_t tag : std::vector<std::uint8_t>{0x02, 0x70, 0x10}) {
      edid.push_back(tag);
      while (edid.size() % edid::kBlockSize != 0) edid.push_back(static_cast<std::uint8_t>(random()));
    }
    ExpectSoundModes(edid);
  }
}

TEST(DamagedEdid, IsReadWithTwoHundredAndFiftyFiveExtensions) {
  TEdidBuilder builder;
  for (unsigned int block = 0; block < 255; ++block) builder.Cta(std::vector<std::uint8_t>(120, 0x5F));
  EXPECT_EQ(ReadEdidFacts(builder.Build()).extensions, 255U);
}

TEST(DamagedEdid, OfManyEmptyDataBlocksEnds) {
  EXPECT_TRUE(WriteModes(TEdidBuilder().Cta(std::vector<std::uint8_t>(122, 0))).empty());
  EXPECT_TRUE(WriteModes(TEdidBuilder().DisplayId(0x20, std::vector<std::uint8_t>(120, 0x7F))).empty());
}
