#include "command/report/answer_identity.h"

#include <gtest/gtest.h>

TEST(AnswerIdentity, NamesTheSystem) {
  EXPECT_EQ(ShowSystemName({"ws-17", "", ""}), "ws-17");
  EXPECT_EQ(ShowSystemName({"ws\x1B", "", ""}), "ws\\x1b");
  EXPECT_EQ(ShowSystemName({"", "", ""}), "A system without a name");
}

TEST(AnswerIdentity, SaysWhenAndByWhichVersion) {
  EXPECT_EQ(DescribeCollection({"ws-17", "2026-11-21T21:30:00Z", "1.4.0"}),
            "Collected 2026-11-21 21:30:00 UTC, shown by displayinfo 1.4.0");
}

TEST(AnswerIdentity, SaysNoTimeThatIsNotKnown) {
  EXPECT_EQ(DescribeCollection({"ws-17", "", "1.4.0"}), "Shown by displayinfo 1.4.0");
}
