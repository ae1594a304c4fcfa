#include "command/report/text_lines.h"

#include <gtest/gtest.h>

TEST(TextLines, AreAsWideAsTheTerminalWithinBounds) {
  EXPECT_EQ(ChooseTextWidth(std::nullopt), 80U);
  for (const std::size_t columns : {40U, 72U, 80U, 120U}) EXPECT_EQ(ChooseTextWidth(columns), columns);
  EXPECT_EQ(ChooseTextWidth(1), 40U);
  EXPECT_EQ(ChooseTextWidth(39), 40U);
  EXPECT_EQ(ChooseTextWidth(121), 120U);
  EXPECT_EQ(ChooseTextWidth(65535), 120U);
}

TEST(TextLines, BreakAtBlanks) {
  EXPECT_EQ(TTextLines(12).Wrap("  - ", "one two three four"), "  - one two\n    three\n    four\n");
  EXPECT_EQ(TTextLines(12).Wrap("  - ", "one twos"), "  - one twos\n");
}

TEST(TextLines, BreakAWordThatIsLongerThanALine) {
  EXPECT_EQ(TTextLines(8).Wrap("  ", "abcdefghijklm no"), "  abcdef\n  ghijkl\n  m no\n");
}

TEST(TextLines, LoseNothing) {
  const std::string text = "one  two three-four-five-six-seven  eight ";
  for (std::size_t width = 3; width < 60; ++width) {
    std::string joined;
    for (const char letter : TTextLines(width).Wrap("- ", text)) {
      if (letter != '\n' && letter != ' ') joined += letter;
    }
    EXPECT_EQ(joined, "-onetwothree-four-five-six-seveneight") << width;
  }
}

TEST(TextLines, OfARowHaveItsTextUnderItself) {
  EXPECT_EQ(TTextLines(30).MakeRow("    ", "Label", "one two three"),
            "    Label             one two\n"
            "                      three\n");
}

TEST(TextLines, OfARowWithoutATextAreNone) { EXPECT_EQ(TTextLines(80).MakeRow("", "Label", ""), ""); }
