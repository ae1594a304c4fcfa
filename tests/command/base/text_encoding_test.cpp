#include "command/base/text_encoding.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>
#include <vector>

#include "command/base/text_buffer.h"

namespace {

const std::string kReplacement = "\xEF\xBF\xBD";

std::string Replacements(int count) {
  std::string text;
  while (count-- > 0) text += kReplacement;
  return text;
}

/// A row of RFC 3629's table of characters: the range of each byte.
typedef std::vector<std::pair<unsigned char, unsigned char>> TForm;

const TForm kForms[] = {{{0x00, 0x7F}},
                        {{0xC2, 0xDF}, {0x80, 0xBF}},
                        {{0xE0, 0xE0}, {0xA0, 0xBF}, {0x80, 0xBF}},
                        {{0xE1, 0xEC}, {0x80, 0xBF}, {0x80, 0xBF}},
                        {{0xED, 0xED}, {0x80, 0x9F}, {0x80, 0xBF}},
                        {{0xEE, 0xEF}, {0x80, 0xBF}, {0x80, 0xBF}},
                        {{0xF0, 0xF0}, {0x90, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
                        {{0xF1, 0xF3}, {0x80, 0xBF}, {0x80, 0xBF}, {0x80, 0xBF}},
                        {{0xF4, 0xF4}, {0x80, 0x8F}, {0x80, 0xBF}, {0x80, 0xBF}}};

bool Begins(const std::string& text, const TForm& form) {
  return text.size() >= form.size() && std::equal(form.begin(), form.end(), text.begin(), [](auto range, char byte) {
           return static_cast<unsigned char>(byte) >= range.first && static_cast<unsigned char>(byte) <= range.second;
         });
}

std::string ReplacePlainly(const std::string& text) {
  if (text.empty()) return text;
  for (const TForm& form : kForms) {
    if (Begins(text, form)) return text.substr(0, form.size()) + ReplacePlainly(text.substr(form.size()));
  }
  return kReplacement + ReplacePlainly(text.substr(1));
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

TEST(Utf8, FollowsTheTableAtEachOfItsEdges) {
  for (const char first : "A\x7F\x80\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xFF") {
    const std::string others = "A\x80\x8F\x90\x9F\xA0\xBF\xC2";
    for (unsigned int number = 0; number < 8 * 8 * 8; ++number) {
      const std::string text = {first, others[number % 8], others[number / 8 % 8], others[number / 64]};
      ASSERT_EQ(ToUtf8(text), ReplacePlainly(text)) << number;
    }
  }
}

TEST(Printable, ShowsControlCharactersAndDoesNotSendThem) {
  EXPECT_EQ(ToPrintable("\x1B[31mred\x7F\r\n"), "\\x1b[31mred\\x7f\\x0d\\x0a");
  EXPECT_EQ(ToPrintable("\u0080\u009B\u009F\u00A0"), "\\u0080\\u009b\\u009f\u00A0");
  EXPECT_EQ(ToPrintable(std::string("\0", 1)), "\\x00");
}

TEST(Printable, ShowsWhatWouldTurnTheTextAroundIt) {
  EXPECT_EQ(ToPrintable("\u061C\u200E\u200F\u202A\u202B\u202C\u202D\u202E\u2066\u2067\u2068\u2069"),
            "\\u061c\\u200e\\u200f\\u202a\\u202b\\u202c\\u202d\\u202e\\u2066\\u2067\\u2068\\u2069");
  EXPECT_EQ(ToPrintable("\u061B\u061D\u200D\u2010\u2027\u202F\u2065\u206A"),
            "\u061B\u061D\u200D\u2010\u2027\u202F\u2065\u206A");
}

TEST(Printable, ShowsWhatWouldBreakItsLine) { EXPECT_EQ(ToPrintable("a\u2028b\u2029"), "a\\u2028b\\u2029"); }

TEST(Printable, StaysAsItIsWhenItIsMadeAgain) {
  const std::string printable = ToPrintable("\x1B\u202E\u009B\xFF\\x1b");
  EXPECT_EQ(ToPrintable(printable), printable);
}

TEST(Printable, KeepsTabsAndLetters) { EXPECT_EQ(ToPrintable("a\tb \xC3\xA9"), "a\tb \xC3\xA9"); }

TEST(Message, IsPrintable) { EXPECT_EQ(ToMessage("\x1B\u202E"), "\\x1b\\u202e"); }

TEST(Message, OfAThousandCharactersIsWhole) {
  std::string text;
  while (CountColumns(text) < 1000) text += "\u00E9";
  EXPECT_EQ(ToMessage(text), text);
}

TEST(Message, KeepsTheFrontAndTheEndOfALongText) {
  EXPECT_EQ(ToMessage("name" + std::string(1000000, 'x') + "; cure"),
            "name" + std::string(596, 'x') + " ... (1000010 characters) ... " + std::string(294, 'x') + "; cure");
}

TEST(Message, IsCutBetweenCharacters) {
  std::string text;
  while (CountColumns(text) < 2000) text += "\u20AC";
  EXPECT_EQ(ToUtf8(ToMessage(text)), ToMessage(text));
  EXPECT_EQ(CountColumns(ToMessage(text)), 927U);
}

TEST(Message, StaysAsItIsWhenItIsMadeAgain) {
  const std::string message = ToMessage(std::string(5000, '\x1B'));
  EXPECT_EQ(ToMessage(message), message);
}

TEST(JsonText, IsQuotedWithItsHiddenCharactersEscaped) {
  EXPECT_EQ(QuoteJson("\"\\\b\f\n\r\t/\x01\x1F\x7F\u0080\u009F\u00A0\u202E\u2028\U0001F5A5\xFF"),
            "\"\\\"\\\\\\b\\f\\n\\r\\t/\\u0001\\u001f\\u007f\\u0080\\u009f\u00A0\\u202e\\u2028\U0001F5A5" +
                kReplacement + "\"");
}

TEST(JsonText, MixesWhatIsEscapedWithWhatIsNot) {
  EXPECT_EQ(QuoteJson("\"a\\b\" \xC3\xA9 \"c\" \xFF\\ \xC3\xA9\x7F"),
            "\"\\\"a\\\\b\\\" \xC3\xA9 \\\"c\\\" \xEF\xBF\xBD\\\\ \xC3\xA9\\u007f\"");
}

TEST(JsonText, IsAppended) {
  TTextBuffer text;
  text.Append("before ");
  AppendJson(text, "a\"b");
  EXPECT_EQ(text.Take(), "before \"a\\\"b\"");
}

TEST(JsonText, HasEachByteEscapedWhereverItStands) {
  for (int byte = 0; byte < 256; ++byte) {
    const std::string quoted = QuoteJson(std::string(1, static_cast<char>(byte)));
    for (std::size_t position = 0; position < 17; ++position) {
      std::string text(17, '!');
      text[position] = static_cast<char>(byte);
      const std::string expected = std::string(17, '!').replace(position, 1, quoted.substr(1, quoted.size() - 2));
      EXPECT_EQ(QuoteJson(text), '"' + expected + '"') << byte << " at " << position;
    }
  }
}

TEST(JsonText, MayBeLongAndMixed) {
  std::string text;
  std::string expected;
  for (std::size_t size = 4000; size < 4200; ++size) {
    text += std::string(size, 'x') + '"' + std::string(size / 100, '\n');
    expected += std::string(size, 'x') + "\\\"";
    for (std::size_t line = 0; line < size / 100; ++line) expected += "\\n";
  }
  EXPECT_EQ(QuoteJson(text), '"' + expected + '"');
  EXPECT_EQ(QuoteJson(text + "\xC3\xA9" + text), '"' + expected + "\xC3\xA9" + expected + '"');
}

TEST(MofText, IsQuotedWithItsQuotesAndControlCharactersEscaped) {
  EXPECT_EQ(QuoteMof("a\"\\\n\x1B\xC2\x9B\xC3\xA9\xFF"), "\"a\\\"\\\\\\n\\x001B\\x009B\xC3\xA9" + kReplacement + "\"");
}

TEST(MofText, HasItsHiddenCharactersEscaped) {
  EXPECT_EQ(QuoteMof("\x7F\u0085\u202E\u2066\u2028"), "\"\\x007F\\x0085\\x202E\\x2066\\x2028\"");
}

TEST(HtmlText, ShowsHiddenCharacters) { EXPECT_EQ(EscapeHtml("\t\x1B\x7F\u0085\u202E"), "\t\\x1b\\x7f\\u0085\\u202e"); }

TEST(HtmlText, HasItsMarkupEscaped) { EXPECT_EQ(EscapeHtml("&<>\"'"), "&amp;&lt;&gt;&quot;&#39;"); }

TEST(HtmlText, HasNoCharacterThatXmlLacks) {
  EXPECT_EQ(EscapeHtml("\x01\xEF\xBF\xBE\xEF\xBF\xBF\xEF\xBF\xBD"), "\\x01" + Replacements(3));
}

TEST(Columns, AreCharactersNotBytes) {
  EXPECT_EQ(CountColumns("a\xC3\xA9\xE2\x82\xAC"), 3U);
  EXPECT_EQ(GetLength("a\xC3\xA9\xE2\x82\xAC", 2), 3U);
  EXPECT_EQ(GetLength("a", 2), 1U);
}

TEST(Join, LeavesOutWhatIsEmpty) {
  EXPECT_EQ(Join({"a", "", "b"}), "a, b");
  EXPECT_EQ(Join({"a", "b"}, " or "), "a or b");
  EXPECT_EQ(Join({}), "");
}

TEST(WriteNumber, WritesWithTheDecimalsTheyHave) {
  EXPECT_EQ(WriteNumber(60.0), "60");
  EXPECT_EQ(WriteNumber(59.94), "59.94");
  EXPECT_EQ(WriteNumber(59.9404), "59.94");
  EXPECT_EQ(WriteNumber(100.0), "100");
  EXPECT_EQ(WriteFixed(60.0, 3), "60.000");
  EXPECT_EQ(WriteFixed(27.04, 1), "27.0");
}
