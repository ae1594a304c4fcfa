// Whatever the bytes of an EDID, reading them ends, and gives only modes that have pixels and a rate.
#include <gtest/gtest.h>

#include <random>

#include "tests/command/edid/edid_texts.h"
#include "tests/support/rich_edids.h"

namespace {

typedef std::vector<std::uint8_t> TBytes;

constexpr unsigned int kMaxExtensions = 255;

TBytes Repeat(const TBytes& bytes, unsigned int count) {
  TBytes repeated;
  for (; count > 0; --count) repeated.insert(repeated.end(), bytes.begin(), bytes.end());
  return repeated;
}

void ExpectSoundModes(const TBytes& edid) {
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
    TBytes damaged = edid;
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
  const TBytes base = TEdidBuilder().Build();
  for (unsigned int round = 0; round < 2000; ++round) {
    TBytes edid = base;
    for (const std::uint8_t tag : TBytes{0x02, 0x70, 0x10}) {
      edid.push_back(tag);
      while (edid.size() % edid::kBlockSize != 0) edid.push_back(static_cast<std::uint8_t>(random()));
    }
    ExpectSoundModes(edid);
  }
}

TEST(DamagedEdid, IsReadWithTwoHundredAndFiftyFiveExtensions) {
  TEdidBuilder cta;
  TEdidBuilder displayId;
  for (unsigned int block = 0; block < kMaxExtensions; ++block) {
    cta.Cta(TBytes(120, 0x5F));
    displayId.DisplayId(0x20, Repeat({0x24, 0, 6, 0, 0x7F, 7, 0x37, 4, 99}, 13));
  }
  EXPECT_EQ(ReadEdidFacts(cta.Build()).extensions, kMaxExtensions);
  EXPECT_EQ(WriteModes(displayId), std::vector<std::string>{"1920x1080@99.898 displayid"});
}

// A map for each of the video codes would be 60 million modes.
TEST(DamagedEdid, TakesNoMoreForManyMapsOfVideoCodesThanForOne) {
  TEdidBuilder builder;
  for (unsigned int block = 0; block < kMaxExtensions; ++block) {
    builder.Cta(block % 2 == 0 ? Repeat({0x5D, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16,
                                         16,   16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16, 16},
                                        4)
                               : Repeat({0xE1, 15}, 60));
  }
  EXPECT_EQ(WriteModes(builder), std::vector<std::string>{"1920x1080@60 vic, 4:2:0 too"});
}

TEST(DamagedEdid, OfManyEmptyDataBlocksEnds) {
  EXPECT_TRUE(WriteModes(TEdidBuilder().Cta(TBytes(122, 0))).empty());
  EXPECT_TRUE(WriteModes(TEdidBuilder().DisplayId(0x20, TBytes(120, 0x7F))).empty());
  for (const std::uint8_t tag : TBytes{0x03, 0x13, 0x24, 0x2A, 0x2B, 0x7F, 0x81}) {
    EXPECT_TRUE(WriteModes(TEdidBuilder().DisplayId(0x20, Repeat({tag, 0x7F, 0}, 40))).empty());
  }
}

TEST(DamagedEdid, IsReadWhateverSizesItsSectionsAndDataBlocksClaim) {
  for (unsigned int size = 0; size < 256; ++size) {
    const auto byte = static_cast<std::uint8_t>(size);
    ExpectSoundModes(TEdidBuilder().DisplayId(0x12, Repeat({0x03, 0, byte}, 40)).Build());
    ExpectSoundModes(TEdidBuilder().DisplayId(0x20, Repeat({0x81, 0, byte}, 40)).Build());
    ExpectSoundModes(TEdidBuilder().Cta(Repeat({byte}, 122)).Build());
    ExpectSoundModes(TEdidBuilder().Cta(Repeat({byte}, 122)).Byte(edid::kBlockSize + 2, size).Build());
    ExpectSoundModes(TEdidBuilder().DisplayId(0x20, Repeat({0x24}, 100)).Byte(edid::kBlockSize + 2, size).Build());
  }
}
