#include "realmode/lrmi.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>

#include "realmode/choose_bios.h"
#include "realmode/virtual_video_bios.h"
#include "tests/support/process_resources.h"

namespace {

/// A BIOS that throws at every call, from its start on or only afterwards.
class TThrowingBios : public IVideoBios {
 public:
  explicit TThrowingBios(bool startThrows) : m_startThrows(startThrows) {}

  bool Start(TRealModeMemory&) override {
    if (m_startThrows) throw std::runtime_error("start");
    return true;
  }
  bool Interrupt(int, LRMI_regs&, TRealModeMemory&) override { throw std::runtime_error("interrupt"); }
  void Stop() override { throw std::runtime_error("stop"); }

 private:
  bool m_startThrows;
};

class Lrmi : public testing::Test {
 protected:
  Lrmi() { Choose(0x11); }
  ~Lrmi() override { ChooseVideoBios(nullptr); }

  /// A BIOS whose unit 0 has one block of this byte.
  static void Choose(std::uint8_t byte) {
    TVirtualBiosConfiguration configuration;
    configuration.units[0].edid.assign(128, byte);
    ChooseVideoBios(std::make_shared<TVirtualVideoBios>(configuration));
  }

  /// The first byte of unit 0's block, or -1.
  static int ReadByte() {
    std::uint8_t* const buffer = static_cast<std::uint8_t*>(LRMI_alloc_real(128));
    if (buffer == nullptr) return -1;
    LRMI_regs registers = {};
    registers.eax = 0x4F15;
    registers.ebx = 1;
    registers.es = static_cast<unsigned short>(reinterpret_cast<std::uintptr_t>(buffer) / 16);
    const int byte = LRMI_int(0x10, &registers) != 0 ? buffer[0] : -1;
    LRMI_free_real(buffer);
    return byte;
  }
};

}  // namespace

TEST_F(Lrmi, ReachesTheChosenBios) {
  EXPECT_EQ(LRMI_init(), 1);
  EXPECT_EQ(ReadByte(), 0x11);
}

TEST_F(Lrmi, HasTheRegisterLayoutOfTheRealModeInterface) {
  EXPECT_EQ(offsetof(LRMI_regs, ebx), 16U);
  EXPECT_EQ(offsetof(LRMI_regs, eax), 28U);
  EXPECT_EQ(offsetof(LRMI_regs, flags), 32U);
  EXPECT_EQ(offsetof(LRMI_regs, es), 34U);
  EXPECT_EQ(offsetof(LRMI_regs, ss), 48U);
}

TEST_F(Lrmi, DoesNothingBeforeItIsSetUp) {
  LRMI_regs registers = {};
  EXPECT_EQ(LRMI_alloc_real(128), nullptr);
  EXPECT_EQ(LRMI_int(0x10, &registers), 0);
  LRMI_free_real(&registers);
  LRMI_deInit();
}

TEST_F(Lrmi, KeepsItsSessionWhenItIsSetUpTwice) {
  LRMI_init();
  void* const buffer = LRMI_alloc_real(128);
  EXPECT_EQ(LRMI_init(), 1);
  EXPECT_NE(LRMI_alloc_real(128), buffer);
}

TEST_F(Lrmi, AllocatesNothingOfANegativeSize) {
  LRMI_init();
  EXPECT_EQ(LRMI_alloc_real(-1), nullptr);
}

TEST_F(Lrmi, TakesASecondReleaseOfABuffer) {
  LRMI_init();
  void* const buffer = LRMI_alloc_real(128);
  LRMI_free_real(buffer);
  LRMI_free_real(buffer);
  EXPECT_EQ(ReadByte(), 0x11);
}

TEST_F(Lrmi, FailsToSetUpABiosThatIsNotThere) {
  TVirtualBiosConfiguration configuration;
  configuration.present = false;
  ChooseVideoBios(std::make_shared<TVirtualVideoBios>(configuration));
  EXPECT_EQ(LRMI_init(), 0);
  EXPECT_EQ(LRMI_alloc_real(128), nullptr);
}

TEST_F(Lrmi, TakesAnExceptionOfTheStartForAFailure) {
  ChooseVideoBios(std::make_shared<TThrowingBios>(true));
  EXPECT_EQ(LRMI_init(), 0);
  EXPECT_EQ(LRMI_alloc_real(128), nullptr);
}

TEST_F(Lrmi, TakesAnExceptionOfAnInterruptForAFailure) {
  ChooseVideoBios(std::make_shared<TThrowingBios>(false));
  ASSERT_EQ(LRMI_init(), 1);
  LRMI_regs registers = {};
  EXPECT_EQ(LRMI_int(0x10, &registers), 0);
}

TEST_F(Lrmi, EndsTheSessionEvenWhenTheStopThrows) {
  ChooseVideoBios(std::make_shared<TThrowingBios>(false));
  ASSERT_EQ(LRMI_init(), 1);
  LRMI_deInit();
  Choose(0x22);
  ASSERT_EQ(LRMI_init(), 1);
  EXPECT_EQ(ReadByte(), 0x22);
}

TEST_F(Lrmi, CallsNoInterruptWithoutRegisters) {
  ASSERT_EQ(LRMI_init(), 1);
  EXPECT_EQ(LRMI_int(0x10, nullptr), 0);
  EXPECT_EQ(ReadByte(), 0x11);
}

TEST_F(Lrmi, StartsAnewAfterTheSessionEnded) {
  LRMI_init();
  LRMI_deInit();
  EXPECT_EQ(ReadByte(), -1);
  EXPECT_EQ(LRMI_init(), 1);
  EXPECT_EQ(ReadByte(), 0x11);
}

TEST_F(Lrmi, EndsTheSessionWhenAnotherBiosIsChosen) {
  LRMI_init();
  Choose(0x22);
  EXPECT_EQ(ReadByte(), -1);
  LRMI_init();
  EXPECT_EQ(ReadByte(), 0x22);
}

TEST_F(Lrmi, LeavesNothingBehindInTenThousandRounds) {
  ExpectNothingLeftBehind([] {
    ASSERT_EQ(LRMI_init(), 1);
    ASSERT_EQ(ReadByte(), 0x11);
    ASSERT_NE(LRMI_alloc_real(128), nullptr);  // left to LRMI_deInit
    LRMI_deInit();
  });
}
