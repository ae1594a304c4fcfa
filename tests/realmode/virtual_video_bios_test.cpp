#include "realmode/virtual_video_bios.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "realmode/real_mode_memory.h"

namespace {

constexpr std::uint32_t kTarget = 0x10000;

std::vector<std::uint8_t> Blocks(std::uint8_t first, std::uint8_t second) {
  std::vector<std::uint8_t> blocks(128, first);
  blocks.resize(256, second);
  return blocks;
}

class VirtualVideoBios : public testing::Test {
 protected:
  TVirtualBiosConfiguration configuration;
  TRealModeMemory memory;
  LRMI_regs registers = {};

  VirtualVideoBios() {
    registers.eax = 0xABCD4F15;
    registers.ebx = 1;
    registers.es = kTarget / 16;
    configuration.units[0].edid = Blocks(0x11, 0x22);
    configuration.units[1].edid = Blocks(0x33, 0x44);
  }

  bool Call(unsigned int unit, unsigned int block, int interrupt = 0x10) {
    registers.ecx = unit;
    registers.edx = block;
    TVirtualVideoBios bios(configuration);
    EXPECT_TRUE(bios.Start(memory));
    return bios.Interrupt(interrupt, registers, memory);
  }

  void ExpectFailure(unsigned int unit, unsigned int block, int interrupt = 0x10) {
    EXPECT_TRUE(Call(unit, block, interrupt));
    EXPECT_EQ(registers.eax, 0xABCD014FU);
    EXPECT_EQ(*memory.At(kTarget), 0);
  }
};

}  // namespace

TEST_F(VirtualVideoBios, HandsOutTheBlockOfTheUnit) {
  EXPECT_TRUE(Call(1, 1));
  EXPECT_EQ(registers.eax, 0xABCD004FU);
  EXPECT_TRUE(
      std::all_of(memory.At(kTarget), memory.At(kTarget + 128), [](std::uint8_t byte) { return byte == 0x44; }));
  EXPECT_EQ(*memory.At(kTarget + 128), 0);
}

TEST_F(VirtualVideoBios, ReadsTheLowerHalfOfTheBlock) {
  EXPECT_TRUE(Call(1, 0xFFFF0000));
  EXPECT_EQ(*memory.At(kTarget), 0x33);
}

TEST_F(VirtualVideoBios, TakesAllBitsOfAUnitSoThatNoUnitComesTwice) { ExpectFailure(0x10000, 0); }

TEST_F(VirtualVideoBios, AnswersAnErrorForAUnitOrABlockThatIsNotThere) {
  ExpectFailure(2, 0);
  registers.eax = 0xABCD4F15;
  ExpectFailure(0, 2);
}

TEST_F(VirtualVideoBios, AnswersAnErrorForAUnitWithoutAnEdid) {
  configuration.units[2] = {};
  ExpectFailure(2, 0);
}

TEST_F(VirtualVideoBios, AnswersAnErrorForABlockThatIsNotWhole) {
  configuration.units[0].edid.resize(127);
  ExpectFailure(0, 0);
}

TEST_F(VirtualVideoBios, AnswersAnErrorForAnyOtherService) {
  ExpectFailure(0, 0, 0x11);
  registers.eax = 0xABCD4F14;
  ExpectFailure(0, 0);
  registers.eax = 0xABCD4F15;
  registers.ebx = 0;
  ExpectFailure(0, 0);
}

TEST_F(VirtualVideoBios, AnswersAnErrorRatherThanWriteBeyondTheFirstMegabyte) {
  registers.es = 0xFFFF;
  registers.edi = 0;
  EXPECT_TRUE(Call(0, 0));
  EXPECT_EQ(registers.eax, 0xABCD014FU);
}

TEST_F(VirtualVideoBios, FillsTheVeryEndOfTheFirstMegabyte) {
  registers.es = 0xFFF8;
  EXPECT_TRUE(Call(0, 0));
  EXPECT_EQ(registers.eax, 0xABCD004FU);
  EXPECT_EQ(*memory.At(0xFFFFF), 0x11);
}

TEST_F(VirtualVideoBios, AnswersForUnitZeroWhenItIgnoresTheUnit) {
  configuration.ignoresUnit = true;
  EXPECT_TRUE(Call(7, 0));
  EXPECT_EQ(*memory.At(kTarget), 0x11);
}

TEST_F(VirtualVideoBios, DoesNotReturnAtTheBlockItIsToFailAt) {
  configuration.units[0].failAtBlock = 1;
  EXPECT_TRUE(Call(0, 0));
  registers.eax = 0xABCD4F15;
  EXPECT_FALSE(Call(0, 1));
  EXPECT_EQ(registers.eax, 0xABCD4F15U);
}

TEST_F(VirtualVideoBios, AnswersAnErrorAtTheBlockItIsTo) {
  configuration.units[1].errorAtBlock = 0;
  ExpectFailure(1, 0);
}

TEST_F(VirtualVideoBios, IsNotThereWhenItIsNotPresent) {
  configuration.present = false;
  EXPECT_FALSE(TVirtualVideoBios(configuration).Start(memory));
}

TEST_F(VirtualVideoBios, GrantsNoRoomWithoutMemory) {
  configuration.memory = false;
  EXPECT_TRUE(TVirtualVideoBios(configuration).Start(memory));
  EXPECT_EQ(memory.Allocate(128), nullptr);
}
