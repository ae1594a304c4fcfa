#include "command/base/text_buffer.h"

#include <gtest/gtest.h>

TEST(TextBuffer, IsEmptyAtFirst) {
  TTextBuffer text;
  EXPECT_EQ(text.GetSize(), 0U);
  EXPECT_EQ(text.Take(), "");
}

TEST(TextBuffer, KeepsItsTextWhenItGrows) {
  TTextBuffer text;
  std::string expected;
  for (int number = 0; number < 3000; ++number) {
    text.Append(std::to_string(number));
    text.Append(' ');
    expected += std::to_string(number) + ' ';
  }
  EXPECT_EQ(text.GetSize(), expected.size());
  EXPECT_EQ(text.Take(), expected);
}

TEST(TextBuffer, GrowsByAsMuchAsIsAskedFor) {
  TTextBuffer text;
  const std::string large(100'000, 'x');
  text.Append('a');
  text.Append(large);
  EXPECT_EQ(text.Take(), 'a' + large);
}

TEST(TextBuffer, TakesOfItsRoomWhatWasWritten) {
  TTextBuffer text;
  text.Append("one ");
  char* const room = text.GetRoom(100);
  room[0] = 'a';
  room[1] = 'b';
  text.EndAt(room + 1);
  EXPECT_EQ(text.Take(), "one a");
}

TEST(TextBuffer, BeginsAnewAfterItsTextWasTaken) {
  TTextBuffer text;
  text.Append("first");
  EXPECT_EQ(text.Take(), "first");
  text.Append("second");
  EXPECT_EQ(text.Take(), "second");
}
