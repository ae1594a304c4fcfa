#include "command/base/utc_time.h"

#include <gtest/gtest.h>

TEST(UtcTime, IsWrittenToTheSecond) {
  EXPECT_EQ(WriteUtcTime(0), "1970-01-01T00:00:00Z");
  EXPECT_EQ(WriteUtcTime(1795296600), "2026-11-21T21:30:00Z");
}

TEST(UtcTime, GoesBeyondTheYear2038) { EXPECT_EQ(WriteUtcTime(4102444800), "2100-01-01T00:00:00Z"); }

TEST(UtcTime, IsRecognised) {
  for (const char* text : {"1970-01-01T00:00:00Z", "2026-11-21T21:30:00Z", "2024-02-29T23:59:59Z"}) {
    EXPECT_TRUE(IsUtcTime(text)) << text;
  }
}

TEST(UtcTime, HasOneForm) {
  for (const char* text :
       {"", "now", "2026-11-21", "2026-11-21T21:30Z", "2026-11-21T21:30:00", "2026-11-21 21:30:00Z",
        "2026-11-21T21:30:00+00:00", "2026-11-21T21:30:00.5Z", "2026-11-21T21:30:00Zulu", " 2026-11-21T21:30:00Z",
        "2026-11-21T21:30: 0Z", "2026-1-21T21:30:00Z", "26-11-21T21:30:00Z"}) {
    EXPECT_FALSE(IsUtcTime(text)) << text;
  }
  EXPECT_FALSE(IsUtcTime(std::string("2026-11-21T21:30:00Z\0", 21)));
}

TEST(UtcTime, IsOfADayAndATimeThatExist) {
  for (const char* text : {"2026-02-29T00:00:00Z", "2026-13-01T00:00:00Z", "2026-11-31T00:00:00Z",
                           "2026-11-21T24:00:00Z", "2026-11-21T21:60:00Z", "2026-11-21T21:30:60Z"}) {
    EXPECT_FALSE(IsUtcTime(text)) << text;
  }
}

TEST(UtcTime, IsShownWithItsZone) { EXPECT_EQ(ShowUtcTime("2026-11-21T21:30:00Z"), "2026-11-21 21:30:00 UTC"); }
