#include <gtest/gtest.h>

#include <random>
#include <stdexcept>

#include "plugin/xconfig/xconfig.h"
#include "tests/support/plain_record.h"
#include "tests/support/sanitizers.h"

namespace {

typedef std::vector<SectionRecord> TRecords;
typedef std::vector<unsigned int> TPositions;

constexpr const char* kEnd = R"(^\s*EndSection)";

const std::vector<std::string> kDeviceKeys = {"Identifier", "Chipset",   "Ramdac", "VideoRam",
                                              "VendorName", "BoardName", "BusID"};
const std::vector<std::string> kScreenKeys = {"Identifier", "Device", "Monitor", "DefaultDepth", "Depth", "Modes"};

/// The sections exactly as the rules say: for each start, all ends are collected again, and the first one counts.
TRecords ReadPlainly(const std::string& text, const char* startPattern, const std::vector<std::string>& keys) {
  TRecords records;
  for (const unsigned int start : TXConfig::GetRegEx(text, 0, startPattern)) {
    const TPositions ends = TXConfig::GetRegEx(text, start, kEnd);
    if (ends.empty() || ends[0] <= start) continue;
    records.push_back(ReadRecordPlainly(text.substr(start, ends[0] - start), keys));
  }
  return records;
}

/// The record of one section with these lines.
SectionRecord ReadDevice(const std::string& lines) {
  const TRecords records = TXConfig::GetDeviceSectionInfo("Section \"Device\"\n" + lines + "EndSection\n");
  return records.size() == 1 ? records[0] : SectionRecord{{"records", std::to_string(records.size())}};
}

SectionRecord ReadScreen(const std::string& lines) {
  const TRecords records = TXConfig::GetScreenSectionInfo("Section \"Screen\"\n" + lines + "EndSection\n");
  return records.size() == 1 ? records[0] : SectionRecord{{"records", std::to_string(records.size())}};
}

}  // namespace

TEST(GetRegEx, ReportsWhereEachMatchBegins) {
  EXPECT_EQ(TXConfig::GetRegEx("Section \"Device\"\n  EndSection\nX\nEndSection\n", 0, kEnd), (TPositions{17, 32}));
}

TEST(GetRegEx, MayBeginAMatchOnTheBlankLinesBeforeTheWord) {
  EXPECT_EQ(TXConfig::GetRegEx("x\n\n \n  EndSection", 0, kEnd), (TPositions{2}));
}

TEST(GetRegEx, CountsFromTheBeginningOfTheWholeText) {
  EXPECT_EQ(TXConfig::GetRegEx("a a a", 1, "a"), (TPositions{2, 4}));
}

TEST(GetRegEx, TakesTheStartForTheBeginningOfALine) { EXPECT_EQ(TXConfig::GetRegEx("xab", 1, "^a"), (TPositions{1})); }

TEST(GetRegEx, BeginsEachMatchAfterTheOneBefore) {
  EXPECT_EQ(TXConfig::GetRegEx("aaaaa", 0, "aa"), (TPositions{0, 2}));
}

TEST(GetRegEx, DoesNotTakeTheEndOfAMatchForTheBeginningOfALine) {
  EXPECT_EQ(TXConfig::GetRegEx("aa", 0, "^a"), (TPositions{0}));
}

TEST(GetRegEx, FindsNothingAfterTheEnd) { EXPECT_EQ(TXConfig::GetRegEx("a", 1, "a"), TPositions()); }

TEST(GetRegEx, RefusesAStartBeyondTheText) {
  try {
    TXConfig::GetRegEx("a", 2, "a");
    FAIL();
  } catch (const std::out_of_range& exception) {
    EXPECT_STREQ(exception.what(), "basic_string::substr");
  }
}

TEST(GetRegEx, HasItsOwnNotionOfALineEnd) {
  struct TCase {
    const char* separator;
    TPositions expected;
  };
  // After LF, FF, and a CR that no LF follows.
  const TCase cases[] = {{"\n", {2}}, {"\f", {2}}, {"\r", {2}}, {"\r\n", {3}}, {"\v", {}}, {" ", {}}};
  for (const TCase& item : cases)
    EXPECT_EQ(TXConfig::GetRegEx(std::string("x") + item.separator + "a", 0, "^a"), item.expected);
}

TEST(GetRegEx, TakesTheSixAsciiBlanksForWhiteSpace) {
  for (const char* blank : {" ", "\t", "\n", "\v", "\f", "\r"})
    EXPECT_EQ(TXConfig::GetRegEx(blank, 0, R"(\s)").size(), 1U);
  for (const char* other : {"\x85", "\xA0", "_", "\x1F"}) EXPECT_EQ(TXConfig::GetRegEx(other, 0, R"(\s)").size(), 0U);
}

TEST(GetRegEx, GoesOnPastAZeroByte) {
  EXPECT_EQ(TXConfig::GetRegEx(std::string("a\0a", 3), 0, "a"), (TPositions{0, 2}));
}

TEST(Sections, KeepOnlyTheListedKeysOfADevice) {
  EXPECT_EQ(ReadDevice("  Identifier \"Card0\"\n  Driver \"nv\"\n  VideoRam 65536\n  BusID \"PCI:1:0:0\"\n"),
            (SectionRecord{{"Identifier", "Card0"}, {"VideoRam", "65536"}, {"BusID", "PCI:1:0:0"}}));
}

TEST(Sections, KeepDepthAndModesOfAScreen) {
  EXPECT_EQ(ReadScreen("  Identifier \"S\"\n  Device \"D\"\n  Monitor \"M\"\n  DefaultDepth 24\n"
                       "  SubSection \"Display\"\n    Depth 24\n    Modes \"1024x768\" \"800x600\"\n  EndSubSection\n"),
            (SectionRecord{{"Identifier", "S"},
                           {"Device", "D"},
                           {"Monitor", "M"},
                           {"DefaultDepth", "24"},
                           {"Depth1", "24"},
                           {"Modes1", "1024x768 800x600"}}));
}

TEST(Sections, NumberDepthAndModesOfTwoSubsectionsInPairs) {
  EXPECT_EQ(ReadScreen("SubSection \"Display\"\nDepth 16\nModes \"a\"\nEndSubSection\n"
                       "SubSection \"Display\"\nDepth 24\nModes \"b\"\nEndSubSection\n"),
            (SectionRecord{{"Depth1", "16"}, {"Modes1", "a"}, {"Depth2", "24"}, {"Modes2", "b"}}));
}

TEST(Sections, NumberDepthAndModesApartSoThatAMissingOneShiftsThePairs) {
  EXPECT_EQ(ReadScreen("Modes \"a\"\nDepth 24\nModes \"b\"\nEndSubSection\n"),
            (SectionRecord{{"Depth1", "24"}, {"Modes1", "a"}, {"Modes2", "b"}}));
}

TEST(Sections, BeginTheirNumbersAnew) {
  const std::string section = "Section \"Screen\"\nDepth 8\nX\nEndSection\n";
  EXPECT_EQ(TXConfig::GetScreenSectionInfo(section + section), (TRecords{{{"Depth1", "8"}}, {{"Depth1", "8"}}}));
}

TEST(Sections, NumberALastModesOrDepthLineTwice) {
  EXPECT_EQ(ReadScreen("Modes \"a\"\n"), (SectionRecord{{"Modes1", "a"}, {"Modes2", "a"}}));
  EXPECT_EQ(ReadScreen("Depth 24\n\n  \n"), (SectionRecord{{"Depth1", "24"}, {"Depth2", "24"}}));
}

TEST(Sections, MatchAKeyAnywhereInTheFirstWord) {
  EXPECT_EQ(ReadScreen("DefaultColorDepth 16\nX\n"), (SectionRecord{{"Depth1", "16"}}));
  EXPECT_EQ(ReadScreen("DefaultDepth 24\n"), (SectionRecord{{"DefaultDepth", "24"}}));
  EXPECT_EQ(ReadScreen("MyDeviceMonitor x\n"), (SectionRecord{{"Device", "x"}}));
}

TEST(Sections, MatchNoKeyInAnotherCase) {
  EXPECT_EQ(ReadDevice("VideoRAM 1\nBusId \"x\"\nidentifier y\n"), SectionRecord());
}

TEST(Sections, KeepTheFirstValueOfAKey) {
  EXPECT_EQ(ReadDevice("Identifier a\nIdentifier b\n"), (SectionRecord{{"Identifier", "a"}}));
}

TEST(Sections, PartALineAtABlankOrAnEarlierTab) {
  EXPECT_EQ(ReadDevice("Identifier\t\"Card 0\"\n"), (SectionRecord{{"Identifier", "Card 0"}}));
  EXPECT_EQ(ReadDevice("Identifier\t\"Card0\"\n"), (SectionRecord{{"Identifier", "Card0"}}));
  EXPECT_EQ(ReadDevice("Identifier \t\"Card0\"\n"), (SectionRecord{{"Identifier", "Card0"}}));
  EXPECT_EQ(ReadDevice("Identifier\t \"Card0\"\n"), (SectionRecord{{"Identifier", "Card0"}}));
}

TEST(Sections, SkipALineThatGluesKeyAndValue) {
  EXPECT_EQ(ReadDevice("Identifier\"Card0\"\nBusID\n"), SectionRecord());
}

TEST(Sections, SkipComments) { EXPECT_EQ(ReadDevice("# Identifier a\n \t#Identifier b\n"), SectionRecord()); }

TEST(Sections, KeepATrailingCommentAndCarriageReturn) {
  EXPECT_EQ(ReadDevice("Identifier \"Card0\" # primary\n"), (SectionRecord{{"Identifier", "Card0 # primary"}}));
  EXPECT_EQ(ReadDevice("Identifier \"Card0\"\r\n"), (SectionRecord{{"Identifier", "Card0\r"}}));
}

TEST(Sections, EndALineAtAZeroByte) {
  EXPECT_EQ(ReadDevice(std::string("Identifier a\0b\nChipset c\n", 25)),
            (SectionRecord{{"Identifier", "a"}, {"Chipset", "c"}}));
}

TEST(Sections, AreFoundByTheirNameWithEitherFirstLetter) {
  EXPECT_EQ(TXConfig::GetDeviceSectionInfo("Section \"device\"\nEndSection\n").size(), 1U);
  EXPECT_EQ(TXConfig::GetDeviceSectionInfo("Section\"Device\"\nEndSection\n").size(), 1U);
  for (const char* text : {"Section \"DEVICE\"\nEndSection\n", "#Section \"Device\"\nEndSection\n",
                           "section \"Device\"\nEndSection\n", "Section \" Device\"\nEndSection\n",
                           "Section \"Device \"\nEndSection\n", "x Section \"Device\"\nEndSection\n"}) {
    EXPECT_EQ(TXConfig::GetDeviceSectionInfo(text).size(), 0U) << text;
  }
}

TEST(Sections, OfEachTypeAreReadByTheirOwnReader) {
  const std::string text =
      "Section \"Device\"\nIdentifier d\nEndSection\nSection \"Screen\"\nIdentifier s\nEndSection\n"
      "Section \"Monitor\"\nIdentifier m\nModelName x\nEndSection\n";
  EXPECT_EQ(TXConfig::GetDeviceSectionInfo(text), (TRecords{{{"Identifier", "d"}}}));
  EXPECT_EQ(TXConfig::GetScreenSectionInfo(text), (TRecords{{{"Identifier", "s"}}}));
  EXPECT_EQ(TXConfig::GetMonitorSectionInfo(text), (TRecords{{{"Identifier", "m"}, {"ModelName", "x"}}}));
}

TEST(Sections, OfATypeThatIsNotThereAreNone) {
  EXPECT_EQ(TXConfig::GetMonitorSectionInfo("Section \"Device\"\nEndSection\n"), TRecords());
  EXPECT_EQ(TXConfig::GetMonitorSectionInfo(""), TRecords());
}

TEST(Sections, OfMonitorsMayHaveNoModel) {
  EXPECT_EQ(TXConfig::GetMonitorSectionInfo("Section \"Monitor\"\nIdentifier m\nEndSection\n"),
            (TRecords{{{"Identifier", "m"}}}));
}

TEST(Sections, WithoutAnyKeyGiveAnEmptyRecord) {
  EXPECT_EQ(TXConfig::GetDeviceSectionInfo("Section \"Device\"\nEndSection\n"), (TRecords{{}}));
}

TEST(Sections, EndAtAnIndentedEnd) {
  EXPECT_EQ(ReadDevice("Identifier a\n    "), (SectionRecord{{"Identifier", "a"}}));
}

TEST(Sections, DoNotEndAtACommentedEndOrASubsectionsEnd) {
  EXPECT_EQ(ReadDevice("#EndSection\nEndSubSection\nIdentifier a\n"), (SectionRecord{{"Identifier", "a"}}));
}

TEST(Sections, WithoutAnEndAreLeftOut) {
  EXPECT_EQ(TXConfig::GetDeviceSectionInfo("Section \"Device\"\nIdentifier a\n"), TRecords());
}

TEST(Sections, WithoutTheirOwnEndTakeInTheNextOnesLines) {
  EXPECT_EQ(TXConfig::GetDeviceSectionInfo("Section \"Device\"\nIdentifier a\n"
                                           "Section \"Device\"\nIdentifier b\nChipset c\nEndSection\n"),
            (TRecords{{{"Identifier", "a"}, {"Chipset", "c"}}, {{"Identifier", "b"}, {"Chipset", "c"}}}));
}

TEST(Sections, AreTheSameWithEndsAndLinesReadOnceAsWithEachSectionReadAnew) {
  const char* const fragments[] = {"\n",
                                   "\r",
                                   "\f",
                                   "\v",
                                   " ",
                                   "\t",
                                   "\r\n",
                                   "\n\n",
                                   "EndSection",
                                   "Section",
                                   "\"Device\"",
                                   "\"Screen\"",
                                   "x",
                                   "#",
                                   "End",
                                   "Depth 1",
                                   "Modes a",
                                   "Identifier b",
                                   "\nDepth 2\n",
                                   "\nModes c\n",
                                   "\nIdentifier d\n",
                                   " \n \n",
                                   "\nEndSection",
                                   "\nSection \"Device\"",
                                   "\nSection \"Screen\"\n",
                                   "\"device\""};
  std::mt19937 random(20080401);
  std::uniform_int_distribution<std::size_t> pick(0, std::size(fragments) - 1);
  std::uniform_int_distribution<int> length(0, 40);
  std::size_t sections = 0;
  for (int round = 0; round < 20000; ++round) {
    std::string text;
    for (int count = length(random); count > 0; --count) text += fragments[pick(random)];
    const TRecords devices = TXConfig::GetDeviceSectionInfo(text);
    ASSERT_EQ(devices, ReadPlainly(text, R"(^\s*Section\s*"[Dd]evice")", kDeviceKeys)) << text;
    ASSERT_EQ(TXConfig::GetScreenSectionInfo(text), ReadPlainly(text, R"(^\s*Section\s*"[Ss]creen")", kScreenKeys))
        << text;
    ASSERT_EQ(TXConfig::GetSectionInfo(text, kScreenKeys), ReadRecordPlainly(text, kScreenKeys)) << text;
    sections += devices.size();
  }
  EXPECT_GT(sections, 1000U);  // the texts do hold sections
}

TEST(Sections, MayShareTheirLinesByTheThousand) {
  std::string text;
  for (int number = 0; number < 20000; ++number) text += "Section \"Device\"\nBusID " + std::to_string(number) + "\n";
  EXPECT_EQ(TXConfig::GetDeviceSectionInfo(text), TRecords());
  const TRecords records = TXConfig::GetDeviceSectionInfo(text + "Identifier a\nEndSection\n");
  ASSERT_EQ(records.size(), 20000U);
  EXPECT_EQ(records.front(), (SectionRecord{{"BusID", "0"}, {"Identifier", "a"}}));
  EXPECT_EQ(records.back(), (SectionRecord{{"BusID", "19999"}, {"Identifier", "a"}}));
}

TEST(Sections, AreFoundAfterAHundredMillionBlankLines) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "it would take most of the tests' time";
  const std::string text = std::string(100'000'000, '\n') + "Section \"Device\"\nIdentifier a\nEndSection\n";
  EXPECT_EQ(TXConfig::GetDeviceSectionInfo(text), (TRecords{{{"Identifier", "a"}}}));
}
