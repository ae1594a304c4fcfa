#include "command/fleet/progress_bar.h"

#include <gtest/gtest.h>

TEST(ProgressBar, FillsAsTheMachinesAreDone) {
  EXPECT_EQ(MakeProgressText(0, 0, 10), "[                              ] 0 of 10 machines, 0 failed");
  EXPECT_EQ(MakeProgressText(5, 1, 10), "[###############               ] 5 of 10 machines, 1 failed");
  EXPECT_EQ(MakeProgressText(10, 1, 10), "[##############################] 10 of 10 machines, 1 failed");
}

TEST(ProgressBar, OnlyCountsWhatHasNoKnownEnd) {
  EXPECT_EQ(MakeProgressText(12, 3, std::nullopt), "12 machines, 3 failed");
}

TEST(ProgressBar, IsFullWithoutMachines) {
  EXPECT_EQ(MakeProgressText(0, 0, 0), "[##############################] 0 of 0 machines, 0 failed");
}

TEST(ProgressBar, StaysFullWhenTheListHasGrown) {
  EXPECT_EQ(MakeProgressText(12, 0, 10), "[##############################] 12 of 10 machines, 0 failed");
}

TEST(ProgressBar, FitsALineWithTheLargestNumbers) {
  EXPECT_LE(MakeProgressText(4294967295, 0, 4294967295).size(), 79U);
}
