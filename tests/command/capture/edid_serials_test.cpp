#include "command/capture/edid_serials.h"

#include <gtest/gtest.h>

#include "tests/support/edid_builder.h"

namespace {

std::string Build(const TEdidBuilder& builder) {
  const std::vector<std::uint8_t> bytes = builder.Build();
  return std::string(bytes.begin(), bytes.end());
}

std::string Blank(std::string edid) {
  BlankSerials(edid);
  return edid;
}

TEdidBuilder Plain() { return TEdidBuilder().Name(2, "Acme A190"); }

}  // namespace

TEST(EdidSerials, AreZeroInTheHeader) {
  EXPECT_EQ(Blank(Build(Plain().Byte(12, 1).Byte(13, 2).Byte(14, 3).Byte(15, 4))), Build(Plain()));
}

TEST(EdidSerials, AreBlanksInEveryDescriptorThatHoldsOne) {
  EXPECT_EQ(Blank(Build(Plain().Serial(0, "A1").Serial(3, "0123456789ABC"))),
            Build(Plain().Serial(0, "  ").Serial(3, "             ")));
}

TEST(EdidSerials, AreBlankedBehindTheEndOfTheTextToo) {
  const std::string edid = Build(Plain().Serial(0, "A1").Byte(54 + 9, 'x'));
  EXPECT_EQ(Blank(edid), Build(Plain().Serial(0, "  ")));
}

TEST(EdidSerials, AreNoneInOtherDescriptorsAndExtensions) {
  TEdidBuilder builder = Plain().DetailedTiming(0, false).RangeLimits(1, 56, 76, 30, 83, 14).Extension({0x40, 1, 2, 3});
  EXPECT_EQ(Blank(Build(builder)), Build(builder));
}

TEST(EdidSerials, LeaveAWrongChecksumAsWrongAsItWas) {
  const std::string right = Build(Plain().Serial(3, "A1"));
  std::string wrong = right;
  wrong[127] = static_cast<char>(wrong[127] + 5);
  std::string expected = Blank(right);
  expected[127] = static_cast<char>(expected[127] + 5);
  EXPECT_EQ(Blank(wrong), expected);
}

TEST(EdidSerials, AreNoneInWhatIsNoBlock) { EXPECT_EQ(Blank(std::string(127, 'x')), std::string(127, 'x')); }
