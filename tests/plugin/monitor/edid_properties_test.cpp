#include "plugin/monitor/edid_properties.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <string>
#include <vector>

#include "edid/layout.h"
#include "tests/support/edid_builder.h"
#include "tests/support/properties.h"
#include "tests/support/time_zone.h"

namespace {

typedef std::vector<std::uint8_t> TBytes;

TDescribed DecodeBase(const TEdidBuilder& builder) { return Describe(DecodeBaseBlock(builder.Build().data())); }

/// The digital interface of an EDID in its buffer, with its own length.
std::string DecodeInterface(const TEdidBuilder& builder) {
  TBytes edid = builder.Build();
  const auto length = static_cast<unsigned int>(edid.size());
  edid.resize(edid::kBufferSize);
  const NQRXZELT20::TCIMValue value = DecodeDigitalInterface(edid.data(), length);
  return value.IsNull() ? "none" : Describe(value);
}

/// A descriptor with these bytes from its text on.
std::string DecodeTextOf(const std::string& bytes) {
  TBytes descriptor(18);
  std::copy(bytes.begin(), bytes.end(), descriptor.begin() + 5);
  return DecodeText(descriptor.data());
}

/// The date that many days after 1 January, counted month by month.
std::string CountDays(unsigned int year, unsigned int days) {
  const bool isLeap = year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
  const unsigned int lengths[] = {31, isLeap ? 29U : 28U, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
  unsigned int month = 0;
  for (; month < 12 && days >= lengths[month]; ++month) days -= lengths[month];
  if (month == 12) return CountDays(year + 1, days);
  char text[16];
  std::snprintf(text, sizeof text, "%04u%02u%02u", year, month + 1, days + 1);
  return text;
}

}  // namespace

TEST(EdidProperties, OfABareBaseBlockAreVersionAndPowerStates) {
  EXPECT_EQ(DecodeBase(TEdidBuilder()), (TDescribed{{"EDIDVersion", "real32 1.3"},
                                                    {"DPMSActiveOff", "boolean false"},
                                                    {"DPMSStandby", "boolean false"},
                                                    {"DPMSSuspend", "boolean false"}}));
}

TEST(EdidProperties, OfARichBaseBlockComeFromTheirFixedPlaces) {
  const TTimeZone utc("UTC0");
  EXPECT_EQ(
      DecodeBase(
          TEdidBuilder().Manufacturer("XYZ").Version(1, 4).Made(2, 2010).ImageSize(255, 1).Gamma(255).Features(0x60)),
      (TDescribed{{"MonitorManufacturer", "string XYZ"},
                  {"EDIDVersion", "real32 1.4"},
                  {"ManufacturingDate", "datetime 20100108060000.000000+000"},
                  {"HorizontalImageSize", "uint8 255"},
                  {"VerticalImageSize", "uint8 1"},
                  {"Gamma", "real32 3.55"},
                  {"DPMSActiveOff", "boolean true"},
                  {"DPMSStandby", "boolean false"},
                  {"DPMSSuspend", "boolean true"}}));
}

TEST(EdidProperties, NameTheManufacturerOfEveryWord) {
  for (unsigned int word = 1; word < 0x10000; ++word) {
    const unsigned char bytes[] = {static_cast<unsigned char>(word >> 8), static_cast<unsigned char>(word)};
    const std::string letters = {static_cast<char>('@' + word / 1024 % 32), static_cast<char>('@' + word / 32 % 32),
                                 static_cast<char>('@' + word % 32)};
    ASSERT_EQ(DecodeManufacturer(bytes), letters) << word;
  }
}

TEST(EdidProperties, CountTheDateInWholeWeeksFromTheFirstOfJanuary) {
  const TTimeZone utc("UTC0");
  for (unsigned short year = 1994; year <= 2245; ++year) {
    for (unsigned char week = 1; week <= 54; ++week) {
      ASSERT_EQ(DecodeManufacturingDate(week, year).GetText(), CountDays(year, (week - 1U) * 7) + "060000.000000+000");
    }
  }
}

TEST(EdidProperties, MoveTheTimeOfDayAndNeverTheDateByDaylightSaving) {
  const TTimeZone south("AEST-10AEDT,M10.1.0,M4.1.0/3");
  EXPECT_EQ(DecodeManufacturingDate(1, 2010).GetText(), "20100101060000.000000+660");
  EXPECT_EQ(DecodeManufacturingDate(27, 2010).GetText(), "20100702050000.000000+600");
}

TEST(EdidProperties, TruncateTheOffsetFromUtcToWholeMinutes) {
  const TTimeZone odd("LMT0:19:32");
  EXPECT_EQ(DecodeManufacturingDate(1, 2010).GetText(), "20100101060000.000000-019");
}

TEST(EdidProperties, EndATextAtALineFeedAZeroOrAfterThirteenBytes) {
  EXPECT_EQ(DecodeTextOf("ABC\n         "), "ABC");
  EXPECT_EQ(DecodeTextOf(std::string("AB \0CD", 6)), "AB ");
  EXPECT_EQ(DecodeTextOf("1234567890123"), "1234567890123");
  EXPECT_EQ(DecodeTextOf("\n"), "");
}

TEST(EdidProperties, TellTheThreeKindsOfSlots) {
  TBytes descriptor = {0, 0, 0, 0xFC};
  EXPECT_EQ(DecodeTag(descriptor.data()), 0xFC);
  descriptor[2] = 1;
  EXPECT_EQ(DecodeTag(descriptor.data()), kReservedTag);
  descriptor[1] = 1;
  EXPECT_EQ(DecodeTag(descriptor.data()), kDetailedTiming);
}

TEST(EdidProperties, HaveTheirNumbers) {
  EXPECT_EQ(kReservedTag, -1);
  EXPECT_EQ(kDetailedTiming, -2);
}

TEST(EdidProperties, OfRangeLimitsComeFromTheirPlaces) {
  const TBytes edid = TEdidBuilder().RangeLimits(1, 1, 2, 3, 4, 254).Build();
  EXPECT_EQ(Describe(DecodeRangeLimits(&edid[edid::kDescriptors[1]])), (TDescribed{{"MinVertFreq", "uint8 1"},
                                                                                   {"MaxVertFreq", "uint8 2"},
                                                                                   {"MinHorizFreq", "uint8 3"},
                                                                                   {"MaxHorizFreq", "uint8 4"},
                                                                                   {"Bandwidth", "uint32 2540"}}));
}

TEST(EdidProperties, HaveTheDigitalInterfaceOfTheFirstExtensionOfItsKind) {
  EXPECT_EQ(DecodeInterface(TEdidBuilder()), "none");
  EXPECT_EQ(DecodeInterface(TEdidBuilder().Extension({0x02, 0x03, 0x04})), "none");
  EXPECT_EQ(DecodeInterface(TEdidBuilder().Extension({0x02}).Extension({0x40, 0, 7}).Extension({0x40, 0, 8})),
            "uint8 7");
  EXPECT_EQ(DecodeInterface(TEdidBuilder().Extension({0x40, 0, 0})), "uint8 0");
}

TEST(EdidProperties, HaveNoDigitalInterfaceWhereOneBlockWasRead) {
  TBytes edid = TEdidBuilder().Extension({0x40, 0, 7}).Build();
  edid.resize(edid::kBufferSize);
  EXPECT_TRUE(DecodeDigitalInterface(edid.data(), 128).IsNull());
}
