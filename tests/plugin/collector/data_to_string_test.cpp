#include "plugin/collector/data_to_string.h"

#include <gtest/gtest.h>

TEST(DataToString, LeavesAStringAsItIs) { EXPECT_EQ(dataToString(std::string("a b ")), "a b "); }

TEST(DataToString, TakesTheCharactersUpToTheTerminatingZero) { EXPECT_EQ(dataToString("a\0b"), "a"); }

TEST(DataToString, GivesTheEmptyStringForANullPointer) {
  EXPECT_EQ(dataToString(static_cast<const char*>(nullptr)), "");
}
