#include <gmock/gmock.h>

#include "tests/command/edid/edid_texts.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A builder whose first slot has these bytes.
TEdidBuilder WithSlot(const std::vector<unsigned int>& bytes) {
  TEdidBuilder builder;
  for (std::size_t index = 0; index < bytes.size(); ++index) {
    builder.Byte(edid::kDescriptors[0] + index, bytes[index]);
  }
  return builder;
}

TEdidBuilder WithTag(unsigned int tag, const std::vector<unsigned int>& content) {
  std::vector<unsigned int> bytes = {0, 0, 0, tag, 0};
  bytes.insert(bytes.end(), content.begin(), content.end());
  return WithSlot(bytes);
}

}  // namespace

TEST(DescriptorSlot, OfOneByteAllOverIsNoTiming) {
  for (const unsigned int byte : {0x01U, 0x20U, 0xFFU}) {
    const TEdidBuilder filler = WithSlot(std::vector<unsigned int>(edid::kDescriptorSize, byte));
    EXPECT_THAT(WriteModes(filler), IsEmpty());
    EXPECT_EQ(ReadEdidFacts(filler.Build()).preferredMode, std::nullopt);
  }
}

TEST(DescriptorSlot, OfAClockThatNoMonitorHasIsNoTiming) {
  const std::size_t clock = edid::kDescriptors[0];
  const TEdidBuilder timing = TEdidBuilder().DetailedTiming(0, false).Byte(clock + 1, 3);
  EXPECT_THAT(WriteModes(TEdidBuilder(timing).Byte(clock, 0xE7)), IsEmpty());
  EXPECT_THAT(WriteModes(TEdidBuilder(timing).Byte(clock, 0xE8)), ElementsAre("1280x1024@5.557 detailed"));
}

TEST(DescriptorSlot, RaisesLimitsSinceRevisionFour) {
  const auto read = [](unsigned int revision, unsigned int offsets) {
    const TEdidBuilder limits = TEdidBuilder()
                                    .Version(1, revision)
                                    .RangeLimits(1, 48, 144, 30, 160, 60)
                                    .Byte(edid::kDescriptors[1] + 4, offsets);
    const auto [lines, fields, clock] = *ReadEdidFacts(limits.Build()).limits;
    return std::vector<unsigned int>{fields.min, fields.max, lines.min, lines.max};
  };
  EXPECT_THAT(read(4, 0x00), ElementsAre(48, 144, 30, 160));
  EXPECT_THAT(read(4, 0x0A), ElementsAre(48, 399, 30, 415));
  EXPECT_THAT(read(4, 0x0F), ElementsAre(303, 399, 285, 415));
  EXPECT_THAT(read(4, 0x05), ElementsAre(48, 144, 30, 160));
  EXPECT_THAT(read(3, 0x0F), ElementsAre(48, 144, 30, 160));
}

TEST(DescriptorSlot, TellsTheFirstOfSeveralLimits) {
  const TEdidBuilder limits = TEdidBuilder().RangeLimits(1, 48, 144, 30, 160, 60).RangeLimits(2, 50, 75, 30, 80, 15);
  EXPECT_EQ(ReadEdidFacts(limits.Build()).limits.value().fields.max, 144U);
}

TEST(DescriptorSlot, TellsNoHighestClockThatIsAFillerBeforeRevisionFour) {
  const auto read = [](unsigned int revision) {
    const TEdidBuilder limits = TEdidBuilder().Version(1, revision).RangeLimits(1, 48, 144, 30, 160, 0xFF);
    return ReadEdidFacts(limits.Build()).limits.value().pixelClock;
  };
  EXPECT_EQ(read(3), std::nullopt);
  EXPECT_EQ(read(4), 2550U);
}

TEST(DescriptorSlot, DeclaresSquareStandardTimingsBeforeRevisionThree) {
  const auto write = [](unsigned int revision) {
    return WriteModes(TEdidBuilder().Version(1, revision).Standard(0, 0x8B, 0x00));
  };
  EXPECT_THAT(write(2), ElementsAre("1360x1360@60 standard"));
  EXPECT_THAT(write(3), ElementsAre("1360x850@60 standard"));
}

TEST(DescriptorSlot, MayBeTheLastBytesOfAVideoTimingExtension) {
  std::vector<std::uint8_t> extension(edid::kChecksum, 1);
  extension[edid::kExtensionTag] = edid::kVideoTimingExtension;
  extension[edid::kVtbDetailed] = extension[edid::kVtbCvt] = 0;
  extension[edid::kVtbStandard] = 61;
  extension[edid::kChecksum - 2] = 0xD1;
  extension[edid::kChecksum - 1] = 0xC0;
  EXPECT_THAT(WriteModes(TEdidBuilder().Extension(extension)), ElementsAre("1920x1080@60 standard"));
}

TEST(DescriptorSlot, DeclaresEstablishedTimingsIII) {
  EXPECT_THAT(WriteModes(WithTag(edid::kTagEstablished3, {10, 0x80, 0, 0, 0, 0, 0x10})),
              ElementsAre("1920x1440@75 established", "640x350@85.08 established"));
}

TEST(DescriptorSlot, DeclaresARateForEachBitOfACvtCode) {
  EXPECT_THAT(WriteModes(WithTag(edid::kTagCvt, {1, 0x1B, 0x24, 0x09, 0, 0, 0, 0, 0, 0, 0, 0, 0})),
              ElementsAre("1920x1080@59.963 cvt", "1920x1080@59.934 cvt"));
}

TEST(DescriptorSlot, DeclaresNoModeByCvtCodesOfAnotherVersion) {
  for (const std::uint8_t version : std::vector<std::uint8_t>{0, 2}) {
    EXPECT_THAT(WriteModes(WithTag(edid::kTagCvt, {version, 0x1B, 0x24, 0x09, 0, 0, 0, 0, 0, 0, 0, 0, 0})), IsEmpty());
  }
}

TEST(DescriptorSlot, LeavesTheBackPorchOfACvtCodeSevenLines) {
  EXPECT_THAT(WriteModes(WithTag(edid::kTagCvt, {1, 0xEF, 0x08, 0x01, 0, 0, 0, 0, 0, 0, 0, 0, 0})),
              ElementsAre("768x480@59.745 cvt"));
}

TEST(DescriptorSlot, DrawsNoAspectRatioFromARoundedWidthOfACvtCode) {
  EXPECT_THAT(WriteModes(WithTag(edid::kTagCvt, {1, 0xEF, 0x04, 0x01, 0, 0, 0, 0, 0, 0, 0, 0, 0})),
              ElementsAre("848x480@59.524 cvt"));
}

TEST(DescriptorSlot, LeavesACvtCodeABlankOfAFifthOfItsLine) {
  EXPECT_THAT(WriteModes(WithTag(edid::kTagCvt, {1, 0xC7, 0x00, 0x08, 0, 0, 0, 0, 0, 0, 0, 0, 0})),
              ElementsAre("528x400@58.979 cvt"));
}

TEST(DescriptorSlot, DeclaresMoreStandardTimings) {
  EXPECT_THAT(WriteModes(WithTag(edid::kTagStandardTimings, {0xD1, 0xC0, 0x8B, 0xC0, 1, 1, 1, 1, 1, 1, 1, 1, 10})),
              ElementsAre("1920x1080@60 standard", "1360x765@60 standard"));
}

TEST(DescriptorSlot, TellsTexts) {
  const TEdidFacts facts =
      ReadEdidFacts(TEdidBuilder().Text(0, edid::kTagText, "LP156WF6-SPB1").Text(1, edid::kTagText, "  ").Build());
  EXPECT_THAT(facts.texts, ElementsAre("LP156WF6-SPB1"));
}

TEST(DescriptorSlot, WithAReservedByteNamesAMonitorThatNoOtherNames) {
  const auto read = [](const TEdidBuilder& builder) { return ReadEdidFacts(builder.Build()).name; };
  const std::size_t reserved = edid::kDescriptors[1] + edid::kDescriptorReserved;
  const TEdidBuilder one = TEdidBuilder().Text(1, edid::kTagName, "Broken").Byte(reserved, 0x1B);
  EXPECT_EQ(read(one), "Broken");
  EXPECT_EQ(read(TEdidBuilder(one).Text(2, edid::kTagName, "Sound")), "Sound");
  EXPECT_EQ(read(TEdidBuilder(one).Text(0, edid::kTagName, "Sound")), "Sound");
}

TEST(DescriptorSlot, MayStandInAnExtension) {
  std::vector<std::uint8_t> name = {0, 0, 0, 0xFC, 0, 'A', 'c', 'm', 'e', 10, 32, 32, 32, 32, 32, 32, 32, 32};
  EXPECT_EQ(ReadEdidFacts(TEdidBuilder().Cta({}, name).Build()).name, "Acme");
}
