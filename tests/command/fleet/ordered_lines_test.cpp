#include "command/fleet/ordered_lines.h"

#include <gtest/gtest.h>

TEST(OrderedLines, WaitForTheEarlierOnes) {
  TOrderedLines lines;
  lines.Put(1, "b\n");
  lines.Put(2, "c\n");
  EXPECT_EQ(lines.TakeReady(), "");
  lines.Put(0, "a\n");
  EXPECT_EQ(lines.TakeReady(), "a\nb\nc\n");
  EXPECT_EQ(lines.TakeReady(), "");
}

TEST(OrderedLines, TellWhoseTurnItIs) {
  TOrderedLines lines;
  EXPECT_EQ(lines.GetTurn(), 0U);
  lines.Put(0, "a\n");
  lines.Put(2, "c\n");
  lines.TakeReady();
  EXPECT_EQ(lines.GetTurn(), 1U);
}

TEST(OrderedLines, HaveRoomForAThousandBehindTheOneWhoseTurnItIs) {
  TOrderedLines lines;
  EXPECT_TRUE(lines.HasRoomFor(999));
  EXPECT_FALSE(lines.HasRoomFor(1000));
  lines.Put(0, "a\n");
  lines.TakeReady();
  EXPECT_TRUE(lines.HasRoomFor(1000));
  EXPECT_FALSE(lines.HasRoomFor(1001));
}

TEST(OrderedLines, HaveRoomForSixtyFourMebibytesThatWait) {
  TOrderedLines lines;
  lines.Put(1, std::string(TOrderedLines::kMaxHeldSize - 1, 'x'));
  EXPECT_TRUE(lines.HasRoomFor(3));
  lines.Put(2, "x");
  EXPECT_FALSE(lines.HasRoomFor(3));
  lines.Put(0, "");
  lines.TakeReady();
  EXPECT_TRUE(lines.HasRoomFor(3));
}
