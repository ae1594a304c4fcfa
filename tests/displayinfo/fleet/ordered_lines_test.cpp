#include "displayinfo/fleet/ordered_lines.h"

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

TEST(OrderedLines, TellHowMuchIsHeld) {
  TOrderedLines lines;
  lines.Put(1, "four");
  lines.Put(2, "five5");
  EXPECT_EQ(lines.GetHeldSize(), 9U);
  lines.Put(0, "");
  lines.TakeReady();
  EXPECT_EQ(lines.GetHeldSize(), 0U);
}
