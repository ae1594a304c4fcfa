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

TEST(ProgressBar, IsShorterInANarrowTerminal) {
  EXPECT_EQ(MakeProgressText(50, 1, 100, 50), "[#########         ] 50 of 100 machines, 1 failed");
  EXPECT_EQ(MakeProgressText(50, 1, 100, 30), "50 of 100 machines, 1 failed");
  EXPECT_EQ(MakeProgressText(50000, 1, 100000, 30), "50000 of 100000, 1 failed");
  EXPECT_EQ(MakeProgressText(50000, 1, 100000, 20), "50000/100000");
  EXPECT_EQ(MakeProgressText(50000, 1, std::nullopt, 20), "50000, 1 failed");
}

TEST(ProgressBar, FitsALineWithTheLargestNumbers) {
  for (std::size_t columns = 1; columns <= 200; ++columns) {
    EXPECT_LT(MakeProgressText(4294967295, 4294967295, 4294967295, columns).size(), columns);
    EXPECT_LT(MakeProgressText(4294967295, 0, std::nullopt, columns).size(), columns);
  }
}
