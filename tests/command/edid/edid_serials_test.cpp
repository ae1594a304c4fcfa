#include "command/edid/edid_serials.h"

#include <gtest/gtest.h>

#include <numeric>

#include "tests/support/edid_builder.h"

namespace {

typedef std::vector<std::uint8_t> TBytes;

std::string Build(const TEdidBuilder& builder) {
  const TBytes bytes = builder.Build();
  return std::string(bytes.begin(), bytes.end());
}

std::string Replace(std::string edid) {
  TSerialFillers().Replace(edid);
  return edid;
}

TEdidBuilder Plain() { return TEdidBuilder().Name(2, "Acme A190"); }

/// The sum of each block's bytes, modulo 256.
std::vector<unsigned int> GetSums(const std::string& edid) {
  std::vector<unsigned int> sums;
  for (std::size_t block = 0; block < edid.size(); block += 128) {
    unsigned int sum = 0;
    for (std::size_t byte = block; byte < block + 128; ++byte) sum += static_cast<unsigned char>(edid[byte]);
    sums.push_back(sum % 256);
  }
  return sums;
}

const TBytes kContainerId = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
const TBytes kFillerId = {1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};

/// Slots with a serial number, before and after.
const TBytes kSerial = {0, 0, 0, 0xFF, 0, 'A', 'B', '\n', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' '};
const TBytes kFiller = {0, 0, 0, 0xFF, 0, '1', '\n', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' ', ' '};

/// A DisplayID extension with these data blocks, and the section's checksum off by `error`.
TBytes MakeDisplayId(const TBytes& blocks, unsigned int error = 0) {
  TBytes section = Join({0x12, 121, 0, 0}, blocks);
  section.resize(4 + 121);
  const unsigned int sum = std::accumulate(section.begin(), section.end(), 0U);
  section.push_back(static_cast<std::uint8_t>(256 - sum % 256 + error));
  return Join({0x70}, section);
}

/// A CTA-861 extension with these data blocks and then these slots.
TBytes MakeCta(const TBytes& blocks, const TBytes& slots) {
  return Join(Join({0x02, 3, static_cast<std::uint8_t>(4 + blocks.size()), 0}, blocks), slots);
}

std::string ReplaceIn(const TBytes& extension) { return Replace(Build(Plain().Extension(extension))); }
std::string Expected(const TBytes& extension) { return Build(Plain().Extension(extension)); }

}  // namespace

TEST(EdidSerials, AreNumberedInTheHeader) {
  EXPECT_EQ(Replace(Build(Plain().Byte(12, 1).Byte(13, 2).Byte(14, 3).Byte(15, 4))), Build(Plain().Byte(12, 1)));
}

TEST(EdidSerials, ThatMeanNoneStay) {
  const std::string ones = Build(Plain().Byte(12, 1).Byte(13, 1).Byte(14, 1).Byte(15, 1));
  EXPECT_EQ(Replace(ones), ones);
  EXPECT_EQ(Replace(Build(Plain())), Build(Plain()));
  EXPECT_EQ(Replace(Build(Plain().Serial(0, ""))), Build(Plain().Serial(0, "")));
}

TEST(EdidSerials, ThatAreZerosStay) {
  TEdidBuilder zeros = Plain().Serial(0, "");
  for (std::size_t byte = 0; byte < edid::kDescriptorTextSize; ++byte) zeros.Byte(54 + 5 + byte, 0);
  EXPECT_EQ(Replace(Build(zeros)), Build(zeros));
}

TEST(EdidSerials, AreNumbersInEveryDescriptorThatHoldsOne) {
  EXPECT_EQ(Replace(Build(Plain().Serial(0, "A1").Serial(3, "0123456789ABC"))),
            Build(Plain().Serial(0, "1").Serial(3, "2")));
}

TEST(EdidSerials, AreReplacedBehindTheEndOfTheTextToo) {
  EXPECT_EQ(Replace(Build(Plain().Serial(0, "A1").Byte(54 + 9, 'x'))), Build(Plain().Serial(0, "1")));
}

TEST(EdidSerials, HaveOneFillerHoweverOftenTheyCome) {
  TSerialFillers fillers;
  std::string edids[] = {Build(Plain().Serial(0, "A").Byte(12, 9)), Build(Plain().Serial(0, "B").Byte(12, 8)),
                         Build(Plain().Serial(0, "A").Byte(12, 8))};
  for (std::string& edid : edids) fillers.Replace(edid);
  EXPECT_EQ(edids[0], Build(Plain().Serial(0, "1").Byte(12, 1)));
  EXPECT_EQ(edids[1], Build(Plain().Serial(0, "2").Byte(12, 2)));
  EXPECT_EQ(edids[2], Build(Plain().Serial(0, "1").Byte(12, 2)));
  EXPECT_EQ(fillers.Describe(), "3 in a descriptor, 3 in a header");
  EXPECT_EQ(fillers.GetTexts(), (std::set<std::string>{"A", "B"}));
}

TEST(EdidSerials, AreNoneInOtherDescriptorsAndExtensions) {
  TEdidBuilder builder = Plain()
                             .DetailedTiming(0, false)
                             .RangeLimits(1, 56, 76, 30, 83, 14)
                             .Extension({0x40, 1, 2, 3})
                             .Extension({0xF0, 2});
  EXPECT_EQ(Replace(Build(builder)), Build(builder));
}

TEST(EdidSerials, AreNoneInATimingThatLooksLikeADescriptor) {
  const std::string timing = Build(Plain().DetailedTiming(0, false).Byte(54, 0).Byte(54 + 3, 0xFF));
  EXPECT_EQ(Replace(timing), timing);
}

TEST(EdidSerials, AreNumbersInTheDescriptorsOfExtensions) {
  EXPECT_EQ(ReplaceIn(MakeCta({0x41, 7}, kSerial)), Expected(MakeCta({0x41, 7}, kFiller)));
  EXPECT_EQ(ReplaceIn(Join({0x10, 1, 1, 0, 0}, kSerial)), Expected(Join({0x10, 1, 1, 0, 0}, kFiller)));
}

TEST(EdidSerials, AreNumbersInTheLastBytesOfAnExtension) {
  const TBytes blocks(127 - 4 - 18);
  EXPECT_EQ(ReplaceIn(MakeCta(blocks, kSerial)), Expected(MakeCta(blocks, kFiller)));
}

TEST(EdidSerials, AreContainerIdsInCtaBlocksOfMicrosoftOnly) {
  const TBytes microsoft = {0x75, 0x5C, 0x12, 0xCA, 3, 7};
  const TBytes another = {0x75, 0x5C, 0x12, 0xCB, 3, 7};
  EXPECT_EQ(ReplaceIn(MakeCta(Join(microsoft, kContainerId), {})), Expected(MakeCta(Join(microsoft, kFillerId), {})));
  EXPECT_EQ(ReplaceIn(MakeCta(Join(another, kContainerId), {})), Expected(MakeCta(Join(another, kContainerId), {})));
}

TEST(EdidSerials, AreInTheProductIdentificationAndTheSerialNumberOfADisplayId) {
  const auto make = [](std::uint8_t tag, std::uint8_t serial, std::uint8_t rest, const TBytes& text) {
    return MakeDisplayId(Join({tag, 0, 12, 'A', 'C', 'M', 1, 2, serial, rest, rest, rest, 5, 20, 0, 0x0A, 0, 4}, text));
  };
  for (const std::uint8_t tag : {std::uint8_t{0x00}, std::uint8_t{0x20}}) {
    EXPECT_EQ(ReplaceIn(make(tag, 77, 66, {'S', 'N', '1', '2'})), Expected(make(tag, 1, 0, {'1', '\n', ' ', ' '})));
  }
}

TEST(EdidSerials, AreTheContainerIdOfADisplayId) {
  EXPECT_EQ(ReplaceIn(MakeDisplayId(Join({0x29, 0, 16}, kContainerId))),
            Expected(MakeDisplayId(Join({0x29, 0, 16}, kFillerId))));
}

TEST(EdidSerials, AreInTheTiledDisplayTopologyOfADisplayId) {
  for (const std::uint8_t tag : {std::uint8_t{0x12}, std::uint8_t{0x28}}) {
    const TBytes before = {tag, 0, 22, 0x82, 1, 0, 0, 1, 2, 3, 4, 0, 0, 0, 0, 0, 'A', 'C', 'M', 1, 2};
    EXPECT_EQ(ReplaceIn(MakeDisplayId(Join(before, {77, 66, 55, 44}))),
              Expected(MakeDisplayId(Join(before, {1, 0, 0, 0}))));
  }
}

TEST(EdidSerials, AreContainerIdsInTheCtaBlocksOfADisplayIdToo) {
  const TBytes block = {0x81, 0, 22, 0x75, 0x5C, 0x12, 0xCA, 3, 7};
  EXPECT_EQ(ReplaceIn(MakeDisplayId(Join(block, kContainerId))), Expected(MakeDisplayId(Join(block, kFillerId))));
}

TEST(EdidSerials, LeaveAWrongChecksumOfADisplayIdAsWrongAsItWas) {
  EXPECT_EQ(ReplaceIn(MakeDisplayId(Join({0x29, 0, 16}, kContainerId), 5)),
            Expected(MakeDisplayId(Join({0x29, 0, 16}, kFillerId), 5)));
}

TEST(EdidSerials, LeaveNothingInExtensionsOfUnknownContent) {
  for (const std::uint8_t tag : {std::uint8_t{0x00}, std::uint8_t{0x20}, std::uint8_t{0x50}, std::uint8_t{0xFF}}) {
    EXPECT_EQ(ReplaceIn({tag, 1, 'S', 'e', 'r', 'i', 'a', 'l'}), Expected({tag, 1, 1}));
  }
}

TEST(EdidSerials, LeaveNothingInACtaExtensionThatDoesNotSayWhereItsPartsAre) {
  EXPECT_EQ(ReplaceIn({0x02, 3, 3, 0, 'S', 'e', 'r', 'i', 'a', 'l'}), Expected({0x02, 3, 3, 0, 1}));
  EXPECT_EQ(ReplaceIn({0x02, 3, 0, 0}), Expected({0x02, 3, 0, 0}));
}

TEST(EdidSerials, LeaveNothingInADisplayIdWhosePartsDoNotEndWhereTheyShould) {
  EXPECT_EQ(ReplaceIn({0x70, 0x12, 255, 9, 9}), Expected({0x70, 0x12, 1}));
  EXPECT_EQ(ReplaceIn({0x70, 0x12, 8, 0, 0, 0x0A, 0, 6, 'S', 'e', 'r', 'i', 'a', 'l'}), Expected({0x70, 0x12, 1}));
}

TEST(EdidSerials, LeaveNothingAfterTheVersionOfABlockOfAnother) {
  std::string edid = Build(Plain().Version(2, 0));
  edid.replace(40, 6, "Serial");
  const std::string replaced = Replace(edid);
  EXPECT_EQ(replaced.substr(0, 20), edid.substr(0, 20));
  EXPECT_EQ(replaced.substr(20, 107), '\1' + std::string(106, '\0'));
  EXPECT_EQ(GetSums(replaced), GetSums(edid));
}

TEST(EdidSerials, LeaveAWrongChecksumAsWrongAsItWas) {
  const std::string right = Build(Plain().Serial(3, "A1"));
  std::string wrong = right;
  wrong[127] = static_cast<char>(wrong[127] + 5);
  std::string expected = Replace(right);
  expected[127] = static_cast<char>(expected[127] + 5);
  EXPECT_EQ(Replace(wrong), expected);
}

TEST(EdidSerials, ChangeNoSumAndNothingOutsideWhateverTheBlocksAre) {
  std::uint32_t random = 1;
  for (int round = 0; round < 20000; ++round) {
    std::string edid(128 * 3, '\0');
    for (char& byte : edid) {
      random = random * 1664525 + 1013904223;
      byte = static_cast<char>(random >> 24);
    }
    constexpr char tags[] = {0x02, 0x10, 0x70, 0x50, '\xFF', 0x40};
    if (round % 2 == 0) edid[18] = 1;
    edid[128] = tags[round % 6];
    edid[256] = tags[round / 6 % 6];
    const std::string replaced = Replace(edid);
    ASSERT_EQ(replaced.size(), edid.size());
    ASSERT_EQ(GetSums(replaced), GetSums(edid)) << round;
  }
}

TEST(EdidSerials, AreNoneInWhatIsNoBlock) { EXPECT_EQ(Replace(std::string(127, 'x')), std::string(127, 'x')); }

TEST(EdidSerials, AreSaidToBeGoneWithABlockThatWasEmptied) {
  TSerialFillers fillers;
  std::string edid = Build(Plain().Extension({0x50, 0x01, 0x02}));
  fillers.Replace(edid);
  EXPECT_EQ(fillers.Describe(), "1 in a block that was emptied");
}
