#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "plugin/xconfig/xconfig.h"

namespace {

typedef std::vector<std::string> TPieces;

struct TTextCase {
  const char* text;
  const char* expected;
};

struct TSplitCase {
  const char* text;
  TPieces expected;
};

}  // namespace

TEST(CommentedCode, LooksAtTheFirstCharacterThatIsNotABlank) {
  for (const char* comment : {"#", "# x", "   # x", "\t#x", " \t #"})
    EXPECT_TRUE(TXConfig::CommentedCode(comment)) << comment;
  for (const char* code : {"", "   ", "\t", "x # y", "\r# x", "\f#"})
    EXPECT_FALSE(TXConfig::CommentedCode(code)) << code;
}

TEST(RemoveSpaces, RemovesOnlyLeadingBlanks) {
  const TTextCase cases[] = {{"", ""},         {"  ", ""},       {" \t a b \r", "a b \r"},
                             {"\r a", "\r a"}, {"\v a", "\v a"}, {"a b ", "a b "}};
  for (const TTextCase& item : cases) EXPECT_EQ(TXConfig::RemoveSpaces(item.text), item.expected);
  EXPECT_EQ(TXConfig::RemoveSpaces(nullptr), "");
}

TEST(ExtractString, DropsQuotesEverywhereAndLeadingBlanks) {
  const TTextCase cases[] = {
      {"", ""},
      {"\"\"", ""},
      {" \" a \" ", "a  "},
      {"\"Generic Monitor\"", "Generic Monitor"},
      {"\"1024x768\" \"800x600\"", "1024x768 800x600"},
      {"\t \"Card0\"", "Card0"},
      {"\"Card0\" # main", "Card0 # main"},
      {"\"Card0", "Card0"},
      {"\"Card0\" ", "Card0 "},
      {"a\\\"b", "a\\b"},
      {"\"\t\" x", "x"},
  };
  for (const TTextCase& item : cases) EXPECT_EQ(TXConfig::ExtractString(item.text), item.expected) << item.text;
  EXPECT_EQ(TXConfig::ExtractString(nullptr), "");
}

TEST(ExtractString, AgreesWithThePlainRulesForEveryShortText) {
  const std::string letters = "\" \ta";
  for (std::size_t length = 0; length <= 7; ++length) {
    for (std::size_t number = 0; number < std::size_t{1} << 2 * length; ++number) {
      std::string text;
      std::string value;
      for (std::size_t index = 0; index < length; ++index) {
        text += letters[number >> 2 * index & 3];
        const bool isBlank = text.back() == ' ' || text.back() == '\t';
        if (text.back() != '"' && !(isBlank && value.empty())) value += text.back();
      }
      ASSERT_EQ(TXConfig::ExtractString(text.c_str()), value) << '<' << text << '>';
    }
  }
}

TEST(ExtractString, TakesALineOf32Megabytes) {
  const std::string text(32U * 1024 * 1024, 'x');
  EXPECT_EQ(TXConfig::ExtractString(text.c_str()).size(), text.size());
  EXPECT_EQ(TXConfig::RemoveSpaces(text.c_str()).size(), text.size());
}

TEST(MultiStringTok, ReturnsNothingWithoutADelimiterAndRepeatsTheLastPieceBeforeOne) {
  const TSplitCase cases[] = {
      {"", {}},
      {"abc", {}},
      {"\nabc", {}},
      {"\n", {}},
      {"a\nb", {"a", "b"}},
      {"a\n\nb", {"a", "b"}},
      {"a\nb\n", {"a", "b", "b"}},
      {"a\n\n", {"a"}},
      {"a\n", {"a", "a"}},
      {"\na\n", {"a", "a"}},
      {"\n\n", {}},
      {"\n\nb", {"b"}},
  };
  for (const TSplitCase& item : cases) EXPECT_EQ(TXConfig::MultiStringTok(item.text, "\n"), item.expected) << item.text;
}

TEST(MultiStringTok, TakesAnyOfTheDelimiters) {
  EXPECT_EQ(TXConfig::MultiStringTok("a b\tc", " \t"), (TPieces{"a", "b", "c"}));
}

TEST(MultiStringFirstTok, PartsTheFirstPieceFromTheRest) {
  const TSplitCase cases[] = {
      {"", {}},
      {"EndSubSection", {}},
      {"abc ", {"abc"}},
      {"a b c", {"a", "b c"}},
      {"a  b", {"a", " b"}},
      {" a b", {"a", "b"}},
      {" ", {}},
      {" a", {}},
      {"  a", {}},
      {"Identifier \"Card0\"", {"Identifier", "\"Card0\""}},
      {"Modes \"1024x768\" \"800x600\"", {"Modes", "\"1024x768\" \"800x600\""}},
      {"Option ", {"Option"}},
      {"Identifier\t\"Card 0\"", {"Identifier\t\"Card", "0\""}},
  };
  for (const TSplitCase& item : cases) {
    EXPECT_EQ(TXConfig::MultiStringFirstTok(item.text, " "), item.expected) << item.text;
  }
}
