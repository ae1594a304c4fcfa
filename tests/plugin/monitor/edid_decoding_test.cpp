#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

#include "edid/layout.h"
#include "plugin/monitor/monitor_info.h"
#include "tests/support/edid_builder.h"
#include "tests/support/properties.h"
#include "tests/support/test_host.h"
#include "tests/support/time_zone.h"

using NQRXZELT20::ILogger;
using NQRXZELT20::TCIMDateTime;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// The properties that every valid EDID gives, however little it says.
const TDescribed kAlways = {
    {"DPMSActiveOff", "boolean false"}, {"DPMSStandby", "boolean false"},    {"DPMSSuspend", "boolean false"},
    {"EDIDVersion", "real32 1.3"},      {"OperationalStatus", "uint16[] 2"}, {"StatusDescriptions", "string[] OK"},
};

TDescribed operator+(TDescribed first, const TDescribed& second) {
  first.insert(second.begin(), second.end());
  return first;
}

class EdidDecoding : public testing::Test {
 protected:
  TTestHost host;
  TMonitorInfo monitor{host.GetClass("QRXSG_DesktopMonitor"), TTestHost::Provider()};
  TTimeZone utc{"UTC0"};

  /// Decodes the EDID with its own length.
  TDescribed Decode(const TEdidBuilder& builder) { return Decode(builder, builder.Build().size()); }

  TDescribed Decode(const TEdidBuilder& builder, std::size_t length) {
    edid::TBuffer buffer = {};
    const std::vector<std::uint8_t> bytes = builder.Build();
    std::copy(bytes.begin(), bytes.end(), buffer.begin());
    EXPECT_EQ(monitor.ParseMonitorEdid(buffer.data(), static_cast<unsigned int>(length)), 0);
    return Describe(monitor.GetProperties());
  }

  void ExpectRejected(const TEdidBuilder& builder) {
    std::vector<std::uint8_t> bytes = builder.Build();
    bytes.resize(edid::kBufferSize);
    EXPECT_EQ(monitor.ParseMonitorEdid(bytes.data(), 128), 1);
    EXPECT_THAT(monitor.GetProperties(), IsEmpty());
    EXPECT_EQ(host.log.GetEntries(),
              (std::vector<TLogEntry>{{ILogger::kStatus, "EDID structure for monitor is not valid or not supported"}}));
  }

  std::string DecodeText(const std::string& bytes) {
    std::vector<std::uint8_t> descriptor(18);
    std::copy(bytes.begin(), bytes.end(), descriptor.begin() + 5);
    std::string text = "what was there before";
    monitor.GetMonitorString(descriptor.data(), text);
    return text;
  }

  int DecodeTag(std::vector<std::uint8_t> descriptor) {
    descriptor.resize(18);
    return monitor.GetEdidTag(descriptor.data());
  }
};

}  // namespace

TEST_F(EdidDecoding, GivesAllPropertiesOfARichEdid) {
  const TEdidBuilder builder = TEdidBuilder()
                                   .Manufacturer("ABC")
                                   .Made(1, 2010)
                                   .ImageSize(34, 27)
                                   .Gamma(120)
                                   .Features(0xE0)
                                   .RangeLimits(1, 56, 76, 30, 83, 14)
                                   .Name(2, "Office 17")
                                   .Serial(3, "SN-0001")
                                   .Extension({0x40, 0x01, 0x05});
  EXPECT_EQ(Decode(builder), (TDescribed{
                                 {"Bandwidth", "uint32 140"},
                                 {"DPMSActiveOff", "boolean true"},
                                 {"DPMSStandby", "boolean true"},
                                 {"DPMSSuspend", "boolean true"},
                                 {"Description", "string Office 17"},
                                 {"EDIDVersion", "real32 1.3"},
                                 {"Gamma", "real32 2.2"},
                                 {"HorizontalImageSize", "uint8 34"},
                                 {"ManufacturingDate", "datetime 20100101060000.000000+000"},
                                 {"MaxHorizFreq", "uint8 83"},
                                 {"MaxVertFreq", "uint8 76"},
                                 {"MinHorizFreq", "uint8 30"},
                                 {"MinVertFreq", "uint8 56"},
                                 {"MonitorManufacturer", "string ABC"},
                                 {"Name", "string Office 17"},
                                 {"OperationalStatus", "uint16[] 2"},
                                 {"SerialNumber", "string SN-0001"},
                                 {"StatusDescriptions", "string[] OK"},
                                 {"SupportedDigitalInterface", "uint8 5"},
                                 {"VerticalImageSize", "uint8 27"},
                             }));
}

TEST_F(EdidDecoding, ReadsAnEdidWrittenOutInBytes) {
  // Written byte by byte, without the layout that the builder shares with the decoder.
  edid::TBuffer buffer = {
      0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00,              // header
      0x06, 0xAF, 0x21, 0x43, 0x67, 0x45, 0x23, 0x01,              // AUO, product, serial number
      0x0A, 0x12, 0x01, 0x04,                                      // week 10 of 2008, version 1.4
      0x90, 0x22, 0x1B, 0x78, 0xA0,                                // digital, 34 x 27 cm, 2.2, bits
      0x25, 0x15, 0x9B, 0x55, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54,  // colours
      0x21, 0x08, 0x00,                                            // established timings
      0x81, 0x80, 0x01, 0x01, 0xD1, 0xC0, 0x01, 0x01,              // standard timings
      0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01,              //
      0x30, 0x2A, 0x00, 0x98, 0x51, 0x00, 0x2A, 0x40, 0x30,        // detailed timing, interlaced
      0x70, 0x13, 0x00, 0x52, 0x0E, 0x11, 0x00, 0x00, 0x9E,        //
      0x00, 0x00, 0x00, 0xFD, 0x00, 0x38, 0x4C, 0x1E, 0x53,        // 56-76 Hz, 30-83 kHz
      0x0E, 0x00, 0x0A, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20,        // 140 MHz
      0x00, 0x00, 0x00, 0xFC, 0x00, 'P',  'a',  'n',  'e',         // name
      'l',  ' ',  '7',  0x0A, 0x20, 0x20, 0x20, 0x20, 0x20,        //
      0x00, 0x00, 0x00, 0xFF, 0x00, 'S',  'N',  '-',  '0',         // serial number
      '0',  '0',  '1',  '2',  '3',  '4',  '5',  '6',  '7',         //
      0x01, 0x00,                                                  // one extension, checksum
      0x40, 0x01, 0x03,                                            // display information: interface
  };
  EXPECT_EQ(monitor.ParseMonitorEdid(buffer.data(), 256), 0);
  EXPECT_EQ(Describe(monitor.GetProperties()), (TDescribed{
                                                   {"Bandwidth", "uint32 140"},
                                                   {"DPMSActiveOff", "boolean true"},
                                                   {"DPMSStandby", "boolean true"},
                                                   {"DPMSSuspend", "boolean false"},
                                                   {"Description", "string Panel 7"},
                                                   {"EDIDVersion", "real32 1.4"},
                                                   {"Gamma", "real32 2.2"},
                                                   {"HorizontalImageSize", "uint8 34"},
                                                   {"ManufacturingDate", "datetime 20080304060000.000000+000"},
                                                   {"MaxHorizFreq", "uint8 83"},
                                                   {"MaxVertFreq", "uint8 76"},
                                                   {"MinHorizFreq", "uint8 30"},
                                                   {"MinVertFreq", "uint8 56"},
                                                   {"MonitorManufacturer", "string AUO"},
                                                   {"Name", "string Panel 7"},
                                                   {"OperationalStatus", "uint16[] 2"},
                                                   {"SerialNumber", "string SN-0001234567"},
                                                   {"StatusDescriptions", "string[] OK"},
                                                   {"SupportedDigitalInterface", "uint8 3"},
                                                   {"VerticalImageSize", "uint8 27"},
                                               }));
  monitor.SetDeviceId("Monitor 1");
  std::vector<std::string> modes;
  for (const PropertyMap& mode : monitor.GetResolutionInfo(buffer.data(), 256)) {
    modes.push_back(static_cast<std::string>(mode.at("HorizontalResolution")) + " x " +
                    static_cast<std::string>(mode.at("VerticalResolution")) + ", scan " +
                    static_cast<std::string>(mode.at("ScanMode")));
  }
  EXPECT_THAT(modes, ElementsAre("800 x 600, scan 5", "640 x 480, scan 5", "1024 x 768, scan 5", "1280 x 1024, scan 5",
                                 "1920 x 1080, scan 5"));
}

TEST_F(EdidDecoding, GivesOnlyWhatIsAlwaysThereForABareEdid) { EXPECT_EQ(Decode(TEdidBuilder()), kAlways); }

TEST_F(EdidDecoding, RejectsAnyOtherVersionThanOne) { ExpectRejected(TEdidBuilder().Version(2, 0)); }

TEST_F(EdidDecoding, RejectsVersionZero) { ExpectRejected(TEdidBuilder().Version(0, 3)); }

TEST_F(EdidDecoding, RejectsAHeaderThatDiffersInAnyOneByte) {
  for (std::size_t offset = 0; offset < 8; ++offset) {
    std::vector<std::uint8_t> bytes = TEdidBuilder().Byte(offset, 0x5A).Build();
    EXPECT_EQ(monitor.CheckEdidHeader(bytes.data(), 128), 1U) << offset;
  }
}

TEST_F(EdidDecoding, AcceptsAWrongChecksum) { EXPECT_EQ(Decode(TEdidBuilder().Byte(127, 0x5A)), kAlways); }

TEST_F(EdidDecoding, AcceptsAnyRevision) {
  EXPECT_EQ(Decode(TEdidBuilder().Version(1, 0)).at("EDIDVersion"), "real32 1");
}

TEST_F(EdidDecoding, DividesARevisionOfTenOrMoreByTenAll) {
  EXPECT_EQ(Decode(TEdidBuilder().Version(1, 255)).at("EDIDVersion"), "real32 26.5");
}

TEST_F(EdidDecoding, ReadsTheManufacturerAsThreeLetters) {
  EXPECT_EQ(Decode(TEdidBuilder().Byte(8, 0x04).Byte(9, 0x43)),
            kAlways + (TDescribed{{"MonitorManufacturer", "string ABC"}}));
}

TEST_F(EdidDecoding, GivesNoManufacturerForAZeroWord) {
  unsigned char zero[] = {0, 0};
  std::string id = "untouched";
  monitor.GetManufacturerId(zero, id);
  EXPECT_EQ(id, "untouched");
}

TEST_F(EdidDecoding, DoesNotCheckTheRangeOfTheManufacturersLetters) {
  unsigned char bytes[] = {0x03, 0x7F};  // 0, 27, 31
  std::string id;
  monitor.GetManufacturerId(bytes, id);
  EXPECT_EQ(id, "@[_");
}

TEST_F(EdidDecoding, GivesNoDateWithoutAWeekOrAYearAfter1993) {
  for (unsigned int week = 0; week < 256; ++week) {
    for (const unsigned int year : {0U, 1U, 2U, 3U, 4U, 255U}) {
      TMonitorInfo fresh(host.GetClass("QRXSG_DesktopMonitor"));
      std::vector<std::uint8_t> bytes = TEdidBuilder().Byte(16, week).Byte(17, year).Build();
      fresh.ParseMonitorEdid(bytes.data(), 128);
      const bool hasDate = week >= 1 && week <= 54 && year > 3;
      ASSERT_EQ(fresh.GetProperties().count("ManufacturingDate"), hasDate ? 1U : 0U) << week << " " << year;
    }
  }
}

TEST_F(EdidDecoding, GivesTheDateOfTheFirstWeekAndYearThatCount) {
  EXPECT_EQ(Decode(TEdidBuilder().Made(1, 1994)).at("ManufacturingDate"), "datetime 19940101060000.000000+000");
}

TEST_F(EdidDecoding, AddsWholeWeeksToTheFirstOfJanuary) {
  EXPECT_EQ(Decode(TEdidBuilder().Made(54, 2009)).at("ManufacturingDate"), "datetime 20100107060000.000000+000");
}

TEST_F(EdidDecoding, GivesADateBeyond32BitTime) {
  EXPECT_EQ(Decode(TEdidBuilder().Made(1, 2245)).at("ManufacturingDate"), "datetime 22450101060000.000000+000");
}

TEST_F(EdidDecoding, GivesTheDateInLocalTimeWithItsOffset) {
  const TTimeZone zone("EST5");
  EXPECT_EQ(Decode(TEdidBuilder().Made(1, 2010)).at("ManufacturingDate"), "datetime 20100101060000.000000-300");
}

TEST_F(EdidDecoding, IsAnHourOffWhereDaylightSavingBegan) {
  const TTimeZone zone("CET-1CEST,M3.5.0,M10.5.0/3");
  EXPECT_EQ(Decode(TEdidBuilder().Made(27, 2010)).at("ManufacturingDate"), "datetime 20100702070000.000000+120");
}

TEST_F(EdidDecoding, LeavesOutASizeOrGammaOfZero) {
  EXPECT_EQ(Decode(TEdidBuilder().ImageSize(0, 27)), kAlways + (TDescribed{{"VerticalImageSize", "uint8 27"}}));
}

TEST_F(EdidDecoding, GivesEachPowerStateItsOwnBit) {
  EXPECT_EQ(Decode(TEdidBuilder().Features(0x20)).at("DPMSActiveOff"), "boolean true");
  EXPECT_EQ(Decode(TEdidBuilder().Features(0x20)).at("DPMSSuspend"), "boolean false");
}

TEST_F(EdidDecoding, GivesAllPowerStatesAsFalseRatherThanNotAtAll) {
  EXPECT_EQ(Decode(TEdidBuilder().Features(0x1F)), kAlways);
}

TEST_F(EdidDecoding, DividesGammaInSinglePrecision) {
  for (unsigned int stored = 1; stored < 256; ++stored) {
    TMonitorInfo fresh(host.GetClass("QRXSG_DesktopMonitor"));
    std::vector<std::uint8_t> bytes = TEdidBuilder().Gamma(stored).Build();
    fresh.ParseMonitorEdid(bytes.data(), 128);
    char decimal[16];
    std::snprintf(decimal, sizeof decimal, "%u.%02u", (stored + 100) / 100, (stored + 100) % 100);
    EXPECT_EQ(fresh.GetProperties().at("Gamma").GetReal(), std::strtof(decimal, nullptr)) << stored;
  }
}

TEST_F(EdidDecoding, EndsATextAtALineFeedAndKeepsTheBlanksBeforeIt) { EXPECT_EQ(DecodeText("ABC  \n      "), "ABC  "); }

TEST_F(EdidDecoding, TakesAllThirteenCharactersOfATextWithoutALineFeed) {
  EXPECT_EQ(DecodeText("1234567890123"), "1234567890123");
}

TEST_F(EdidDecoding, EndsATextAtAZeroByte) { EXPECT_EQ(DecodeText(std::string("AB\0CD", 5)), "AB"); }

TEST_F(EdidDecoding, ReplacesTheTextWithAnEmptyOne) { EXPECT_EQ(DecodeText("\n            "), ""); }

TEST_F(EdidDecoding, GivesNoNameForAnEmptyText) { EXPECT_EQ(Decode(TEdidBuilder().Name(0, "")), kAlways); }

TEST_F(EdidDecoding, TakesTheFirstNameEvenWhenItIsEmpty) {
  EXPECT_EQ(Decode(TEdidBuilder().Name(0, "").Name(1, "Second")), kAlways);
}

TEST_F(EdidDecoding, DoesNotTakeTheNameForTheSerialNumber) {
  EXPECT_EQ(Decode(TEdidBuilder().Name(0, "N")),
            kAlways + (TDescribed{{"Name", "string N"}, {"Description", "string N"}}));
}

TEST_F(EdidDecoding, FindsADescriptorInEachSlot) {
  for (unsigned int slot = 0; slot < 4; ++slot) {
    TMonitorInfo fresh(host.GetClass("QRXSG_DesktopMonitor"));
    std::vector<std::uint8_t> bytes = TEdidBuilder().Serial(slot, "S").Build();
    fresh.ParseMonitorEdid(bytes.data(), 128);
    EXPECT_EQ(Describe(fresh.GetProperties()), kAlways + (TDescribed{{"SerialNumber", "string S"}})) << slot;
  }
}

TEST_F(EdidDecoding, TakesTheFirstOfTwoRangeDescriptorsAndWhatOnlyTheSecondHas) {
  const TEdidBuilder builder = TEdidBuilder().RangeLimits(0, 56, 76, 30, 83, 0xFF).RangeLimits(2, 1, 2, 3, 4, 14);
  EXPECT_EQ(Decode(builder), kAlways + (TDescribed{{"MinHorizFreq", "uint8 30"},
                                                   {"MaxHorizFreq", "uint8 83"},
                                                   {"MinVertFreq", "uint8 56"},
                                                   {"MaxVertFreq", "uint8 76"},
                                                   {"Bandwidth", "uint32 140"}}));
}

TEST_F(EdidDecoding, GivesNoBandwidthForTheByteFF) {
  EXPECT_EQ(Decode(TEdidBuilder().RangeLimits(0, 56, 76, 30, 83, 0xFF)).count("Bandwidth"), 0U);
}

TEST_F(EdidDecoding, TellsADetailedTimingByEitherOfItsFirstBytes) {
  EXPECT_EQ(DecodeTag({1, 0, 0, 0xFC}), -2);
  EXPECT_EQ(DecodeTag({0, 1, 0, 0xFC}), -2);
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(EdidDecoding, GivesTheTagOfADisplayDescriptor) {
  EXPECT_EQ(DecodeTag({0, 0, 0, 0x00}), 0);
  EXPECT_EQ(DecodeTag({0, 0, 0, 0xFF}), 255);
}

TEST_F(EdidDecoding, LogsTheTagWithATrailingBlankBeforeItLooksAtTheReservedByte) {
  EXPECT_EQ(DecodeTag({0, 0, 1, 0xFC}), -1);
  EXPECT_EQ(host.log.GetEntries(), (std::vector<TLogEntry>{{ILogger::kDebug, "Monitor Information EDID Tag: fc "}}));
}

TEST_F(EdidDecoding, NeverTakesADescriptorWithAReservedByteForANameASerialOrLimits) {
  const TEdidBuilder builder = TEdidBuilder()
                                   .Name(0, "N")
                                   .Byte(54 + 2, 1)
                                   .Serial(1, "S")
                                   .Byte(72 + 2, 1)
                                   .RangeLimits(2, 1, 2, 3, 4, 5)
                                   .Byte(90 + 2, 1);
  EXPECT_EQ(Decode(builder), kAlways);
}

TEST_F(EdidDecoding, AsksForTheTagsUntilItHasTheNameThenTheSerialThenOfAllSlots) {
  Decode(TEdidBuilder().DetailedTiming(0, false).Name(1, "N").Serial(2, "S"));
  std::string tags;
  for (const TLogEntry& entry : host.log.GetEntries()) tags += entry.message.substr(entry.message.find(':') + 1);
  EXPECT_EQ(tags, " fc  fc  ff  fc  ff  10 ");
}

TEST_F(EdidDecoding, FindsTheDigitalInterfaceInTheFirstBlockThatBeginsWith40) {
  const TEdidBuilder builder =
      TEdidBuilder().Extension({0x02, 0x03, 0x04}).Extension({0x40, 0x00, 0x07}).Extension({0x40, 0x00, 0x08});
  EXPECT_EQ(Decode(builder), kAlways + (TDescribed{{"SupportedDigitalInterface", "uint8 7"}}));
}

TEST_F(EdidDecoding, GivesNoDigitalInterfaceWhenOneBlockWasRead) {
  EXPECT_EQ(Decode(TEdidBuilder().Extension({0x40, 0x00, 0x07}), 128), kAlways);
}

TEST_F(EdidDecoding, GivesNoDigitalInterfaceWhenTheExtensionCountIsZero) {
  EXPECT_EQ(Decode(TEdidBuilder().Extension({0x40, 0x00, 0x07}).Byte(126, 0)), kAlways);
}

TEST_F(EdidDecoding, WalksTheExtensionsByTheirCountBeyondTheLengthRead) {
  const TEdidBuilder builder = TEdidBuilder().Extension({0x02}).Extension({0x40, 0x00, 0x07});
  EXPECT_EQ(Decode(builder, 256).at("SupportedDigitalInterface"), "uint8 7");
}

TEST_F(EdidDecoding, NeverWalksOutOfTheBuffer) {
  EXPECT_EQ(Decode(TEdidBuilder().Extension({0x02}).Byte(126, 255)), kAlways);
}

TEST_F(EdidDecoding, FindsTheDigitalInterfaceInTheLastBlockOfTheBuffer) {
  TEdidBuilder builder;
  for (int block = 1; block < 15; ++block) builder.Extension({0x02});
  EXPECT_EQ(Decode(builder.Extension({0x40, 0x00, 0x09})).at("SupportedDigitalInterface"), "uint8 9");
}
