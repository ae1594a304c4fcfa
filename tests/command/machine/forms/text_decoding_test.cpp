#include "command/machine/forms/text_decoding.h"

#include <gtest/gtest.h>

TEST(TextDecoding, KnowsUtf16ByItsMarkInBothOrders) {
  EXPECT_EQ(DecodeText(std::string("\xFF\xFE"
                                   "a\0\xE9\0",
                                   6)),
            "a\xC3\xA9");
  EXPECT_EQ(DecodeText(std::string("\xFE\xFF"
                                   "\0a\0\xE9",
                                   6)),
            "a\xC3\xA9");
  EXPECT_EQ(DecodeText(std::string("\xFF\xFE"
                                   "\x3D\xD8\x00\xDE",
                                   6)),
            "\xF0\x9F\x98\x80");
}

TEST(TextDecoding, ReplacesHalfACharacterAndLeavesOutHalfAUnit) {
  const std::string replacement = "\xEF\xBF\xBD";
  EXPECT_EQ(DecodeText(std::string("\xFF\xFE"
                                   "\x3D\xD8",
                                   4)),
            replacement);
  EXPECT_EQ(DecodeText(std::string("\xFF\xFE"
                                   "\x3D\xD8"
                                   "a\0",
                                   6)),
            replacement + "a");
  EXPECT_EQ(DecodeText(std::string("\xFF\xFE"
                                   "\x00\xDE"
                                   "a",
                                   5)),
            replacement);
}

TEST(TextDecoding, LeavesATextWithoutAMarkAsItIs) {
  EXPECT_EQ(DecodeText("\xEF\xBB\xBF"
                       "a"),
            "a");
  EXPECT_EQ(DecodeText("\xFF"
                       "a"),
            "\xFF"
            "a");
  EXPECT_EQ(DecodeText(""), "");
}
