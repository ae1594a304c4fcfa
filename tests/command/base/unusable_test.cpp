#include "command/base/unusable.h"

#include <gtest/gtest.h>

using std::string_literals::operator""s;

TEST(Unusable, IsNotCutAtAZeroByte) {
  EXPECT_STREQ(TUnusable("a\0b: cannot be read; check it"s).what(), "a\\x00b: cannot be read; check it");
}

TEST(Unusable, SendsNoHiddenCharacters) {
  EXPECT_STREQ(TUnusable("\x1B]0;x\x07\u009B\u202E").what(), "\\x1b]0;x\\x07\\u009b\\u202e");
}

TEST(Unusable, IsOfALengthThatPeopleRead) {
  const std::string message = TUnusable(std::string(1 << 20, 'x') + "; the cure").what();
  EXPECT_LT(message.size(), 1000U);
  EXPECT_EQ(message.substr(message.size() - 10), "; the cure");
}

TEST(Unusable, IsNotEscapedAgainWhenItIsThrownOn) {
  const TUnusable error("\x1B"s);
  EXPECT_STREQ(TUnusable(error.what()).what(), error.what());
}
