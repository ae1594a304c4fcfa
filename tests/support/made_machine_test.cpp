#include "tests/support/made_machine.h"

#include <gmock/gmock.h>

#include "command/base/unusable.h"
#include "command/machine/captured_machine.h"
#include "tests/support/process.h"
#include "tests/support/temporary_folder.h"

using testing::HasSubstr;

namespace {

class MadeMachine : public testing::Test {
 protected:
  /// Everything in it.
  std::string Make(std::uint32_t seed, std::uint32_t number) const {
    const TTemporaryFolder machine;
    WriteMadeMachine(seed, number, machine.GetPath() / "m");
    return RunShell("cd " + (machine.GetPath() / "m").string() + " && find . -type f | sort | xargs sha256sum").output;
  }

  bool IsRefused(std::uint32_t number) const {
    const TTemporaryFolder machine;
    WriteMadeMachine(1, number, machine.GetPath() / "m");
    try {
      ReadCapturedMachine(machine.GetPath() / "m");
      return false;
    } catch (const TUnusable&) {
      return true;
    }
  }
};

}  // namespace

TEST_F(MadeMachine, IsTheSameEachTime) {
  EXPECT_THAT(Make(1, 7), HasSubstr("./machine.json"));
  EXPECT_EQ(Make(1, 7), Make(1, 7));
}

TEST_F(MadeMachine, IsAnotherOfAnotherNumberOrSeed) {
  EXPECT_NE(Make(1, 7), Make(1, 8));
  EXPECT_NE(Make(1, 7), Make(2, 7));
}

TEST_F(MadeMachine, IsBrokenAsTheLastOfAHundred) {
  for (std::uint32_t number = 0; number < 99; ++number) EXPECT_FALSE(IsRefused(number)) << number;
  // Three of six ways to be broken leave a machine that can be read.
  for (const std::uint32_t number : {99U, 299U, 399U}) EXPECT_TRUE(IsRefused(number)) << number;
  for (const std::uint32_t number : {199U, 499U, 599U}) EXPECT_FALSE(IsRefused(number)) << number;
}

TEST_F(MadeMachine, IsNotWrittenOverAnother) {
  const TTemporaryFolder machine;
  EXPECT_THROW(WriteMadeMachine(1, 7, machine.GetPath()), std::runtime_error);
}
