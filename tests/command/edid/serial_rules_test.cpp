#include "command/edid/serial_rules.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

/// The serial number, where it comes from, and the alternative one.
std::string Find(const std::string& maker, unsigned int productCode, std::optional<std::uint32_t> number,
                 const std::string& text) {
  const std::optional<TSerial> serial = FindSerial(maker, productCode, number, text);
  if (!serial) return "none";
  constexpr const char* sources[] = {"rule", "text", "number"};
  return serial->serial + " (" + sources[static_cast<int>(serial->source)] + ") " + serial->alternative;
}

}  // namespace

TEST(SerialRules, TakeTheTextOfAMakerWithoutARuleAndElseTheNumberInDecimal) {
  EXPECT_EQ(Find("DEL", 0xA0EF, 305419896, "CN0ABC"), "CN0ABC (text) ");
  EXPECT_EQ(Find("DEL", 0xA0EF, 305419896, ""), "305419896 (number) ");
  EXPECT_EQ(Find("DEL", 0xA0EF, std::nullopt, ""), "none");
}

TEST(SerialRules, TakeNoFillerForASerialNumber) {
  EXPECT_EQ(Find("IVM", 0x5633, std::nullopt, "0"), "none");
  EXPECT_EQ(Find("GWD", 0x0140, 4711, "000000000000"), "4711 (number) ");
  EXPECT_EQ(Find("PEG", 0x8888, 1, "  "), "none");
  EXPECT_EQ(Find("AAA", 1, 16843009, "A1"), "A1 (text) ");
  EXPECT_EQ(Find("GAM", 0x1160, std::nullopt, "\xFF\x04"), "none");
}

TEST(SerialRules, LeaveOutTheBytesAtTheEndOfATextThatNobodyPrints) {
  EXPECT_EQ(Find("DEL", 0xA0A2, 1, "9TG464AD19EL\x04"), "9TG464AD19EL (text) ");
  EXPECT_EQ(Find("DEL", 0xA0A2, 1, "9TG464AD19E~"), "9TG464AD19E~ (text) ");
  EXPECT_EQ(Find("PHL", 0x081E, std::nullopt, " VN  028521 \xFF "), " VN  028521 (text) ");
}

TEST(SerialRules, WeaveTheNumberOfAnAcerIntoItsText) {
  EXPECT_EQ(Find("ACR", 0x0330, 0x73809B25, "LXPEE0014226"), "LXPEE00173809b254226 (rule) LXPEE0014226");
  EXPECT_EQ(Find("ACR", 0xAD72, 0x00001619, "ETL7208057"), "ETL720800000161957 (rule) ETL7208057");
}

TEST(SerialRules, TakeTheTextOfAnAcerWhoseModelIsNotOneOfThose) {
  EXPECT_EQ(Find("ACR", 0x0331, 0x73809B25, "LXPEE0014226"), "LXPEE0014226 (text) LXPEE00173809b254226");
  EXPECT_EQ(Find("ACR", 0x0330, 0x73809B25, "LXPEE001"), "LXPEE001 (text) ");
  EXPECT_EQ(Find("ACR", 0x0330, std::nullopt, "LXPEE0014226"), "LXPEE0014226 (text) ");
  EXPECT_EQ(Find("ACR", 0x0330, 0x73809B25, ""), "1937808165 (number) ");
}

TEST(SerialRules, PutTheLettersInTheNumberOfABenqBeforeItsText) {
  EXPECT_EQ(Find("BNQ", 0x78E6, 0x5445, "93N0366501Q"), "ET93N0366501Q (rule) 93N0366501Q");
  EXPECT_EQ(Find("BNQ", 0x78EC, 0x0101, "ET29K04519SL0"), "ET29K04519SL0 (text) ");
  EXPECT_EQ(Find("BNQ", 0x7688, 0x0537, ""), "1335 (number) ");
}

TEST(SerialRules, DoNotTakeTheLettersOfABenqForItsNumber) { EXPECT_EQ(Find("BNQ", 0x78CE, 0x5445, ""), "none"); }

TEST(SerialRules, WriteTheNumberOfAnLgInTheFiveCharactersOnItsCase) {
  EXPECT_EQ(Find("GSM", 0x5818, 0x0002B75D, "103TPZK58013"), "103TPZK58013 (text) 58013");
  EXPECT_EQ(Find("GSM", 0x3B59, 0x0001091F, ""), "67871 (number) 1Z871");
  EXPECT_EQ(Find("GSM", 0x3B59, 1155999, ""), "1155999 (number) ZZ999");
  EXPECT_EQ(Find("GSM", 0x3B59, 1156000, ""), "1156000 (number) ");
}

TEST(SerialRules, WriteTheNumberOfAPhilipsInSixDigits) {
  EXPECT_EQ(Find("PHL", 0xC155, 0x133, ""), "000307 (rule) 307");
  EXPECT_EQ(Find("PHL", 0xC114, 0xD0B2, "AF01917053426"), "AF01917053426 (text) ");
  EXPECT_EQ(Find("PHL", 0xC0ED, 0xFFFFFFFF, "#ASM21KYB8LDd"), "#ASM21KYB8LDd (text) 4294967295");
}

TEST(SerialRules, PutTheCharactersInTheNumberOfASamsungBeforeItsText) {
  EXPECT_EQ(Find("SAM", 0x0694, 0x56383954, "H9NZ814526"), "V89TH9NZ814526 (rule) H9NZ814526");
  EXPECT_EQ(Find("SAM", 0x0695, 0x56383954, "H9NZ814526"), "H9NZ814526 (text) V89TH9NZ814526");
  EXPECT_EQ(Find("SAM", 0x0694, 0x01000000, "H9NZ814526"), "H9NZ814526 (text) ");
}

TEST(SerialRules, KnowTheFillersOfAllMakers) {
  for (const char* const filler :
       {"", "   ", "0", " 0 ", "000000000000", "1", "11", "8888", "1234567890123", "01010101", "16843009"}) {
    EXPECT_TRUE(IsFillerSerial(filler)) << filler;
  }
  for (const char* const serial : {"2", "10", "AAAA", "123456789012", "0 0", "16843008"}) {
    EXPECT_FALSE(IsFillerSerial(serial)) << serial;
  }
}
