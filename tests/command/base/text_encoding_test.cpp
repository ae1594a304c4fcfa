#include "command/base/text_encoding.h"

#include <gtest/gtest.h>

namespace {

const std::string kReplacement = "\xEF\xBF\xBD";

std::string Replacements(int count) {
  std::string text;
  while (count-- > 0) text += kReplacement;
  return text;
}

}  // namespace

TEST(Utf8, LeavesWellFormedTextAsItIs) {
  for (const char* text :
       {"", "plain", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x96\xA5", "\xEF\xBF\xBF", "\xF4\x8F\xBF\xBF"}) {
    EXPECT_EQ(ToUtf8(text), text);
  }
}

TEST(Utf8, KeepsAZeroByte) { EXPECT_EQ(ToUtf8(std::string("a\0b", 3)), std::string("a\0b", 3)); }

TEST(Utf8, ReplacesEachByteThatIsNotPartOfACharacter) {
  EXPECT_EQ(ToUtf8("a\xFF\xFE"
                   "b"),
            "a" + Replacements(2) + "b");
  EXPECT_EQ(ToUtf8("\x80"), Replacements(1));
}

TEST(Utf8, ReplacesEachByteOfABrokenCharacter) {
  EXPECT_EQ(ToUtf8("\xE2\x82"
                   "A"),
            Replacements(2) + "A");
  EXPECT_EQ(ToUtf8("\xF0\x9F\x96"), Replacements(3));
}

TEST(Utf8, ReplacesOverlongFormsSurrogatesAndWhatLiesBeyondUnicode) {
  EXPECT_EQ(ToUtf8("\xC0\x80"), Replacements(2));
  EXPECT_EQ(ToUtf8("\xE0\x80\x80"), Replacements(3));
  EXPECT_EQ(ToUtf8("\xED\xA0\x80"), Replacements(3));
  EXPECT_EQ(ToUtf8("\xF4\x90\x80\x80"), Replacements(4));
}

TEST(Printable, ShowsControlCharactersAndDoesNotSendThem) {
  EXPECT_EQ(ToPrintable("\x1B[31mred\x7F\r\n"), "\\x1b[31mred\\x7f\\x0d\\x0a");
  EXPECT_EQ(ToPrintable("\xC2\x9B"), "\\xc2\\x9b");
  EXPECT_EQ(ToPrintable(std::string("\0", 1)), "\\x00");
}

TEST(Printable, KeepsTabsAndLetters) { EXPECT_EQ(ToPrintable("a\tb \xC3\xA9"), "a\tb \xC3\xA9"); }

TEST(MofText, IsQuotedWithItsQuotesAndControlCharactersEscaped) {
  EXPECT_EQ(QuoteMof("a\"\\\n\x1B\xC2\x9B\xC3\xA9\xFF"), "\"a\\\"\\\\\\n\\x001B\\x009B\xC3\xA9" + kReplacement + "\"");
}

TEST(HtmlText, HasItsMarkupEscaped) { EXPECT_EQ(EscapeHtml("&<>\"'"), "&amp;&lt;&gt;&quot;&#39;"); }

TEST(HtmlText, HasNoCharacterThatXmlLacks) {
  EXPECT_EQ(EscapeHtml("\x01\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD"), "\\x01" + Replacements(3));
}

TEST(Columns, AreCharactersNotBytes) {
  EXPECT_EQ(CountColumns("a\xC3\xA9\xE2\x82\xAC"), 3U);
  EXPECT_EQ(GetLength("a\xC3\xA9\xE2\x82\xAC", 2), 3U);
  EXPECT_EQ(GetLength("a", 2), 1U);
}
