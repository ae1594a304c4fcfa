#include "command/machine/bios_recorder.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "realmode/real_mode_memory.h"

namespace {

class TFailingBios : public IVideoBios {
 public:
  bool Start(TRealModeMemory&) override { throw std::runtime_error("no descriptor is left"); }
  bool Interrupt(int, LRMI_regs&, TRealModeMemory&) override { return false; }
  void Stop() override {}
};

/// The registers for VBE/DDC's function that reads a block of an EDID.
LRMI_regs AskForEdid(unsigned int unit, unsigned int block) {
  LRMI_regs registers = {};
  registers.eax = 0x4F15;
  registers.ebx = 1;
  registers.ecx = unit;
  registers.edx = block;
  registers.es = 0x1000;
  return registers;
}

}  // namespace

TEST(BiosRecorder, TellsUnitsApartByAllTheirBits) {
  TVirtualBiosConfiguration configuration;
  configuration.units[0].edid.assign(128, 0x11);
  configuration.units[0x10000].edid.assign(128, 0x22);
  TBiosRecorder recorder(std::make_shared<TVirtualVideoBios>(configuration));
  TRealModeMemory memory;
  ASSERT_TRUE(recorder.Start(memory));
  for (const unsigned int unit : {0U, 0x10000U}) {
    LRMI_regs registers = AskForEdid(unit, 0);
    ASSERT_TRUE(recorder.Interrupt(0x10, registers, memory));
  }
  const TVirtualBiosConfiguration record = recorder.GetRecord();
  ASSERT_EQ(record.units.size(), 2U);
  EXPECT_EQ(record.units.at(0).edid, configuration.units[0].edid);
  EXPECT_EQ(record.units.at(0x10000).edid, configuration.units[0x10000].edid);
}

TEST(BiosRecorder, TellsTheBlockFromWhichTheBiosDoesNotReturn) {
  TVirtualBiosConfiguration configuration;
  configuration.units[0].edid.assign(256, 0x11);
  configuration.units[0].failAtBlock = 1;
  TBiosRecorder recorder(std::make_shared<TVirtualVideoBios>(configuration));
  TRealModeMemory memory;
  ASSERT_TRUE(recorder.Start(memory));
  for (const unsigned int block : {0U, 1U}) {
    LRMI_regs registers = AskForEdid(0, block);
    EXPECT_EQ(recorder.Interrupt(0x10, registers, memory), block == 0);
  }
  const TVirtualBiosConfiguration::TUnit unit = recorder.GetRecord().units.at(0);
  EXPECT_EQ(unit.edid, std::vector<std::uint8_t>(128, 0x11));
  EXPECT_EQ(unit.failAtBlock, 1U);
}

TEST(BiosRecorder, KeepsTheFailureOfTheStartThatTheCallsCatch) {
  TBiosRecorder recorder(std::make_shared<TFailingBios>());
  TRealModeMemory memory;
  EXPECT_THROW(recorder.Start(memory), std::runtime_error);
  EXPECT_THROW(recorder.RethrowFailure(), std::runtime_error);
  EXPECT_NO_THROW(recorder.RethrowFailure()) << "it was told";
}
