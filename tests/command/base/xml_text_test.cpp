#include "command/base/xml_text.h"

#include <gtest/gtest.h>

TEST(XmlText, ReplacesWhatXmlDoesNotHave) {
  EXPECT_EQ(ToXmlText("a\x01\x1b\x7f\t\n\r"), "a\xEF\xBF\xBD\xEF\xBF\xBD\x7f\t\n\r");
  EXPECT_EQ(ToXmlText("\xEF\xBF\xBE \xEF\xBF\xBF"), "\xEF\xBF\xBD \xEF\xBF\xBD");
  EXPECT_EQ(ToXmlText("\xFF\xC3\xA9"), "\xEF\xBF\xBD\xC3\xA9");
}

TEST(XmlText, KnowsTheTextsThatXmlCanCarry) {
  EXPECT_TRUE(IsXmlText("a\t\xC3\xA9\xEF\xBF\xBD"));
  EXPECT_FALSE(IsXmlText("\x01"));
  EXPECT_FALSE(IsXmlText("\xFF"));
  EXPECT_FALSE(IsXmlText("\xEF\xBF\xBF"));
  EXPECT_FALSE(IsXmlText(std::string_view("\0", 1)));
}

TEST(XmlText, KnowsTheCharactersOfXml) {
  for (const unsigned long code : {0x9UL, 0xAUL, 0xDUL, 0x20UL, 0xD7FFUL, 0xE000UL, 0xFFFDUL, 0x10000UL, 0x10FFFFUL}) {
    EXPECT_TRUE(IsXmlCharacter(code)) << code;
  }
  for (const unsigned long code : {0UL, 0x8UL, 0x1FUL, 0xD800UL, 0xDFFFUL, 0xFFFEUL, 0xFFFFUL, 0x110000UL}) {
    EXPECT_FALSE(IsXmlCharacter(code)) << code;
  }
}

TEST(XmlText, EscapesMarkupAndKeepsCarriageReturns) {
  EXPECT_EQ(EscapeXml("<a b=\"c\">&'\r\n"), "&lt;a b=&quot;c&quot;&gt;&amp;'&#13;\n");
}

TEST(XmlText, IsNumberedSoThatWhatDiffersStillDiffers) {
  EXPECT_EQ(NumberXmlText("a\xE4z"),
            "a\xEF\xBF\xBD"
            "E4z");
  EXPECT_EQ(NumberXmlText("\x01\xF6\xC3\xA9"),
            "\xEF\xBF\xBD"
            "01\xEF\xBF\xBD"
            "F6\xC3\xA9");
  EXPECT_EQ(NumberXmlText("\xEF\xBF\xBE"),
            "\xEF\xBF\xBD"
            "EF\xEF\xBF\xBD"
            "BF\xEF\xBF\xBD"
            "BE");
  EXPECT_EQ(NumberXmlText("plain"), "plain");
}
