// Tests the emulated video BIOS on a machine whose memory and ports the test provides. Its BIOSes are hand-assembled.
#include "realmode/real_video_bios.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "realmode/choose_bios.h"
#include "realmode/physical_machine.h"
#include "realmode/real_mode_memory.h"
#include "realmode/shared_library.h"
#include "tests/support/process_resources.h"
#include "tests/support/temporary_folder.h"

namespace {

typedef std::vector<std::uint8_t> TCode;

/// A machine with 1 MiB of memory, a video BIOS at C000:0000 whose interrupt handler is at C000:0010, and notes of what
/// happened to its ports.
struct TPhysical {
  std::vector<std::uint8_t> memory = std::vector<std::uint8_t>(0x100000);
  std::vector<std::string> ports;
  std::string missingPrivilege;
  int opened = 0;

  explicit TPhysical(const TCode& handler) {
    Put(0xC0000, {0x55, 0xAA, 0x02});
    Put(0xC0010, handler);
    PutVector(0x10, 0xC000, 0x0010);
  }

  void Put(std::size_t address, const TCode& code) {
    std::copy(code.begin(), code.end(), memory.begin() + static_cast<std::ptrdiff_t>(address));
  }

  void PutVector(std::size_t interrupt, unsigned int segment, unsigned int offset) {
    const auto low = [](unsigned int word) { return static_cast<std::uint8_t>(word); };
    Put(interrupt * 4, {low(offset), low(offset >> 8), low(segment), low(segment >> 8)});
  }
};

class TTestMachine : public IPhysicalMachine {
 public:
  explicit TTestMachine(TPhysical& physical) : m_physical(physical) {}

  std::string Open() override {
    if (m_physical.missingPrivilege.empty()) ++m_physical.opened;
    return m_physical.missingPrivilege;
  }
  bool Read(std::uint32_t address, std::uint8_t* target, std::size_t size) override {
    std::copy_n(m_physical.memory.begin() + address, size, target);
    return true;
  }
  std::uint32_t In(std::uint16_t port, unsigned int bytes) override {
    m_physical.ports.push_back("in " + std::to_string(port) + " " + std::to_string(bytes));
    return 0x12345678;
  }
  void Out(std::uint16_t port, std::uint32_t value, unsigned int bytes) override {
    m_physical.ports.push_back("out " + std::to_string(port) + " " + std::to_string(value) + " " +
                               std::to_string(bytes));
  }
  void Close() override { --m_physical.opened; }

 private:
  TPhysical& m_physical;
};

class RealVideoBios : public testing::Test {
 protected:
  static constexpr TBiosBudget kBudget{std::chrono::milliseconds(200), std::chrono::milliseconds(20000)};

  void SetUp() override {
    if (TSharedLibrary("libx86emu.so.3").Find<void()>("x86emu_new") == nullptr) {
      GTEST_SKIP() << "libx86emu3 is not installed for this architecture";
    }
  }

  /// Starts a BIOS with this handler.
  bool Start(const TCode& handler) { return Start(TPhysical(handler)); }

  bool Start(const TPhysical& machine, TBiosBudget budget = kBudget) {
    physical = std::make_unique<TPhysical>(machine);
    bios = std::make_unique<TRealVideoBios>(std::make_unique<TTestMachine>(*physical), budget);
    return bios->Start(memory);
  }

  bool Call(int interrupt = 0x10) { return bios->Interrupt(interrupt, registers, memory); }

  std::unique_ptr<TPhysical> physical;
  std::unique_ptr<TRealVideoBios> bios;
  TRealModeMemory memory;
  LRMI_regs registers = {};
};

}  // namespace

TEST_F(RealVideoBios, RunsTheHandlerOfTheInterrupt) {
  ASSERT_TRUE(Start(TCode{0xB8, 0x4F, 0x00,        // mov ax, 004Fh
                          0x26, 0x88, 0x0D,        // mov es:[di], cl
                          0x26, 0x88, 0x55, 0x01,  // mov es:[di+1], dl
                          0xCF}));                 // iret
  registers.eax = 0xABCD4F15;
  registers.ecx = 7;
  registers.edx = 9;
  registers.edi = 2;
  registers.es = 0x1000;
  ASSERT_TRUE(Call());
  EXPECT_EQ(registers.eax, 0xABCD004FU);
  EXPECT_EQ(*memory.At(0x10002), 7);
  EXPECT_EQ(*memory.At(0x10003), 9);
  EXPECT_EQ(bios->GetFailure(), "");
}

TEST_F(RealVideoBios, GivesAndTakesEveryRegister) {
  ASSERT_TRUE(Start(TCode{0x66, 0x43, 0x66, 0x41, 0x66, 0x42, 0x66, 0x46, 0x66, 0x47, 0x66, 0x45,  // inc of each
                          0x8C, 0xD8, 0x40, 0x8E, 0xD8,  // ax = ds; inc ax; ds = ax
                          0xCF}));
  registers.ebx = 0x10000001;
  registers.ecx = 0x10000002;
  registers.edx = 0x10000003;
  registers.esi = 0x10000004;
  registers.edi = 0x10000005;
  registers.ebp = 0x10000006;
  registers.ds = 0x4000;
  registers.es = 0x5000;
  ASSERT_TRUE(Call());
  EXPECT_EQ(registers.ebx, 0x10000002U);
  EXPECT_EQ(registers.ecx, 0x10000003U);
  EXPECT_EQ(registers.edx, 0x10000004U);
  EXPECT_EQ(registers.esi, 0x10000005U);
  EXPECT_EQ(registers.edi, 0x10000006U);
  EXPECT_EQ(registers.ebp, 0x10000007U);
  EXPECT_EQ(registers.ds, 0x4001);
  EXPECT_EQ(registers.es, 0x5000);
}

TEST_F(RealVideoBios, RunsInterruptsOfTheHandlerItself) {
  TPhysical machine(TCode{0xCD, 0x42, 0xCF});  // int 42h; iret
  machine.PutVector(0x42, 0xF000, 0x0100);
  machine.Put(0xF0100, {0xB0, 0x77, 0xCF});  // mov al, 77h; iret
  ASSERT_TRUE(Start(machine));
  ASSERT_TRUE(Call());
  EXPECT_EQ(registers.eax, 0x77U);
}

TEST_F(RealVideoBios, LeavesTheWayBackAndTheFlagsOnTheStackOfTheHandler) {
  ASSERT_TRUE(Start(TCode{0x5B, 0x59, 0x5A,  // pop bx; pop cx; pop dx
                          0x52, 0x51, 0x53,  // push dx; push cx; push bx
                          0x9C, 0x5E,        // pushf; pop si
                          0xCF}));
  registers.flags = 0x0FD7;  // with the interrupt and the trap flag
  ASSERT_TRUE(Call());
  EXPECT_EQ(registers.ebx, 0U);
  EXPECT_EQ(registers.ecx, 0x3000U);
  EXPECT_EQ(registers.edx, 0x0FD7U);
  EXPECT_EQ(registers.esi & 0x0FFFU, 0x0CD7U);
}

TEST_F(RealVideoBios, LetsPortsThroughInEachWidth) {
  ASSERT_TRUE(Start(TCode{0xBA, 0xC4, 0x03,  // mov dx, 3C4h
                          0xB0, 0x05, 0xEE,  // mov al, 5; out dx, al
                          0xEF,              // out dx, ax
                          0x66, 0xEF,        // out dx, eax
                          0xED,              // in ax, dx
                          0xEC,              // in al, dx
                          0x66, 0xED,        // in eax, dx
                          0xCF}));
  registers.eax = 0xABCD0100;
  ASSERT_TRUE(Call());
  EXPECT_EQ(physical->ports, (std::vector<std::string>{"out 964 5 1", "out 964 261 2", "out 964 2882339077 4",
                                                       "in 964 2", "in 964 1", "in 964 4"}));
  EXPECT_EQ(registers.eax, 0x12345678U);
}

TEST_F(RealVideoBios, NeverWritesToPhysicalMemory) {
  ASSERT_TRUE(Start(TCode{0x31, 0xC0, 0x8E, 0xC0, 0x31, 0xFF,  // es = 0, di = 0
                          0xB9, 0x00, 0x10, 0xB0, 0xEE,        // cx = 1000h, al = EEh
                          0xF3, 0xAA,                          // rep stosb: over page 0
                          0xCF}));
  const std::vector<std::uint8_t> before = physical->memory;
  ASSERT_TRUE(Call());
  EXPECT_EQ(*memory.At(0x800), 0xEE);
  EXPECT_EQ(physical->memory, before);
}

TEST_F(RealVideoBios, LeavesTheMemoryDeviceAsItIs) {
  const TTemporaryFolder folder;
  TPhysical machine(TCode{0xA2, 0x00, 0x05,  // mov [500h], al
                          0xB8, 0x4F, 0x00,  // mov ax, 004Fh
                          0xCF});
  const std::string before(machine.memory.begin(), machine.memory.end());
  folder.Write("mem", before);
  const auto grant = [](int) { return 0; };
  TRealVideoBios real(std::make_unique<TThisPhysicalMachine>((folder.GetPath() / "mem").string(), grant));
  ASSERT_TRUE(real.Start(memory));
  registers.eax = 0x4F15;
  ASSERT_TRUE(real.Interrupt(0x10, registers, memory));
  real.Stop();
  EXPECT_EQ(registers.eax, 0x004FU);
  EXPECT_EQ(*memory.At(0x500), 0x15);
  std::ifstream after(folder.GetPath() / "mem", std::ios::binary);
  EXPECT_TRUE(std::string(std::istreambuf_iterator<char>(after), {}) == before);
}

TEST_F(RealVideoBios, ReadsOnesAndLosesWritesBeyondTheFirstMegabyte) {
  ASSERT_TRUE(Start(TCode{0xB8, 0xFF, 0xFF, 0x8E, 0xC0,        // es = FFFFh
                          0x26, 0xC6, 0x06, 0x10, 0x00, 0x00,  // mov byte es:[10h], 0
                          0x26, 0xA0, 0x10, 0x00,              // mov al, es:[10h]
                          0xCF}));
  ASSERT_TRUE(Call());
  EXPECT_EQ(registers.eax & 0xFF, 0xFFU);
}

TEST_F(RealVideoBios, GivesUpAHandlerThatNeverReturns) {
  ASSERT_TRUE(Start(TCode{0xEB, 0xFE}));  // jmp $
  EXPECT_FALSE(Call());
  EXPECT_EQ(bios->GetFailure(), "the video BIOS did not return within 200 ms");
}

TEST_F(RealVideoBios, GivesUpInTheMidstOfALongStringInstruction) {
  ASSERT_TRUE(Start(TCode{0x66, 0xB9, 0xFF, 0xFF, 0xFF, 0xFF,  // mov ecx, FFFFFFFFh
                          0x67, 0xF3, 0xAA}));                 // rep stosb over all of ecx
  EXPECT_FALSE(Call());
  EXPECT_EQ(bios->GetFailure(), "the video BIOS did not return within 200 ms");
}

TEST_F(RealVideoBios, WorksAgainAfterItGaveUp) {
  TPhysical machine(TCode{0x84, 0xC9, 0x75, 0xFE, 0xCF});  // test cl, cl; jnz $; iret
  ASSERT_TRUE(Start(machine));
  registers.ecx = 1;
  EXPECT_FALSE(Call());
  registers.ecx = 0;
  EXPECT_TRUE(Call());
}

TEST_F(RealVideoBios, GivesUpWhatExceedsTheTimeForAllItsCalls) {
  TPhysical machine(TCode{0xEB, 0xFE});  // jmp $
  ASSERT_TRUE(Start(machine, {std::chrono::milliseconds(60000), std::chrono::milliseconds(50)}));
  EXPECT_FALSE(Call());
  EXPECT_EQ(bios->GetFailure(), "the video BIOS took longer than 50 ms for all its calls together");
}

TEST_F(RealVideoBios, RefusesEachCallOnceTheTimeForAllIsUsedUp) {
  TPhysical machine(TCode{0x84, 0xC9, 0x75, 0xFE, 0xB0, 0x01, 0xCF});  // test cl, cl; jnz $; mov al, 1; iret
  ASSERT_TRUE(Start(machine, {std::chrono::milliseconds(60000), std::chrono::milliseconds(50)}));
  EXPECT_TRUE(Call());
  registers = {};
  registers.ecx = 1;
  EXPECT_FALSE(Call());
  registers.ecx = 0;  // it would return at once
  for (int count = 0; count < 1000; ++count) EXPECT_FALSE(Call());
  EXPECT_EQ(registers.eax, 0U);
  EXPECT_EQ(bios->GetFailure(), "the video BIOS took longer than 50 ms for all its calls together");
  bios->Stop();
  ASSERT_TRUE(bios->Start(memory));
  EXPECT_FALSE(Call());
}

TEST_F(RealVideoBios, HasTwentySecondsForAllItsCallsAndFiveForEach) {
  EXPECT_EQ(TBiosBudget().all, std::chrono::seconds(20));
  EXPECT_EQ(TBiosBudget().interrupt, std::chrono::seconds(5));
}

TEST_F(RealVideoBios, TakesAHaltForAFailure) {
  ASSERT_TRUE(Start(TCode{0xF4}));
  EXPECT_FALSE(Call());
  EXPECT_EQ(bios->GetFailure(), "the video BIOS stopped before it returned");
}

TEST_F(RealVideoBios, StopsAtADivisionThatWouldEndTheProcess) {
  const TCode divisions[] = {{0xD4, 0x00, 0xCF},                    // aam 0
                             {0x2E, 0xD4, 0x00, 0xCF},              // cs aam 0
                             {0xBA, 0x00, 0x80, 0x31, 0xC0,         // dx = 8000h, ax = 0
                              0xBB, 0xFF, 0xFF, 0xF7, 0xFB, 0xCF},  // bx = -1; idiv bx
                             {0x66, 0xBA, 0x00, 0x00, 0x00, 0x80,   // edx = 80000000h
                              0x66, 0x31, 0xC0,                     // eax = 0
                              0x66, 0x83, 0xCB, 0xFF,               // or ebx, -1
                              0x66, 0xF7, 0xFB, 0xCF}};             // idiv ebx
  for (const TCode& division : divisions) {
    ASSERT_TRUE(Start(division));
    EXPECT_FALSE(Call());
    EXPECT_EQ(bios->GetFailure(), "the video BIOS stopped before it returned");
  }
}

TEST_F(RealVideoBios, StopsAtAnInstructionOfMorePrefixesThanAProcessorTakes) {
  TCode code(64, 0xF3);  // rep, 64 times
  code.push_back(0x90);  // nop
  ASSERT_TRUE(Start(code));
  EXPECT_FALSE(Call());
  EXPECT_EQ(bios->GetFailure(), "the video BIOS stopped before it returned");
}

TEST_F(RealVideoBios, CarriesOutAnInstructionOfAsManyPrefixesAsAProcessorTakes) {
  TCode code(14, 0x2E);  // cs, 14 times
  code.push_back(0x90);  // nop
  code.push_back(0xCF);  // iret
  ASSERT_TRUE(Start(code));
  EXPECT_TRUE(Call());
}

TEST_F(RealVideoBios, CarriesOutAnyOtherDivision) {
  ASSERT_TRUE(Start(TCode{0x66, 0xBA, 0x00, 0x80, 0x00, 0x00,  // edx = 00008000h: the smallest dividend if it were dx
                          0x66, 0x31, 0xC0,                    // eax = 0
                          0x66, 0xBB, 0x00, 0x00, 0x02, 0x00,  // ebx = 00020000h
                          0x66, 0xF7, 0xFB,                    // idiv ebx
                          0x66, 0xC1, 0xE8, 0x18,              // shr eax, 24: 40h
                          0xD4, 0x0A,                          // aam: ah = 6, al = 4
                          0xCF}));
  ASSERT_TRUE(Call());
  EXPECT_EQ(registers.eax, 0x0604U);
}

TEST_F(RealVideoBios, LeavesTheRegistersOfAFailedCall) {
  ASSERT_TRUE(Start(TCode{0xB8, 0x4F, 0x00, 0xF4}));  // mov ax, 004Fh; hlt
  registers.eax = 0x4F15;
  EXPECT_FALSE(Call());
  EXPECT_EQ(registers.eax, 0x4F15U);
}

TEST_F(RealVideoBios, NeedsAHandler) {
  ASSERT_TRUE(Start(TCode{0xCF}));
  EXPECT_FALSE(Call(0x11));
  EXPECT_FALSE(Call(0x100));
  EXPECT_FALSE(Call(-1));
  EXPECT_EQ(bios->GetFailure(), "the video BIOS has no handler for the interrupt");
}

TEST_F(RealVideoBios, NeedsAHandlerThatLiesInABios) {
  const std::pair<unsigned int, unsigned int> nonsense[] = {{0xFFFF, 0xFFFF}, {0x0000, 0x0500}, {0x9000, 0x0000},
                                                            {0xC000, 0x0400}, {0xD000, 0x0000}, {0xFFFF, 0x0010}};
  for (const auto& [segment, offset] : nonsense) {
    TPhysical machine(TCode{0xCF});
    machine.PutVector(0x10, segment, offset);
    ASSERT_TRUE(Start(machine));
    EXPECT_FALSE(Call()) << segment << ":" << offset;
    EXPECT_EQ(bios->GetFailure(), "the video BIOS has no handler for the interrupt");
  }
}

TEST_F(RealVideoBios, TakesAHandlerInTheSystemBios) {
  TPhysical machine(TCode{});
  machine.PutVector(0x10, 0xF000, 0xF065);
  machine.Put(0xFF065, {0xCF});
  ASSERT_TRUE(Start(machine));
  EXPECT_TRUE(Call());
}

TEST_F(RealVideoBios, NeedsTheSignatureOfAVideoBios) {
  TPhysical machine(TCode{0xCF});
  machine.memory[0xC0000] = 0;
  EXPECT_FALSE(Start(machine));
  EXPECT_EQ(bios->GetFailure(), "this machine has no video BIOS that can be read, as one started by UEFI may not");
  EXPECT_EQ(physical->opened, 0);
}

TEST_F(RealVideoBios, TellsWhichPrivilegeIsMissing) {
  TPhysical machine(TCode{0xCF});
  machine.missingPrivilege = "no memory for you";
  EXPECT_FALSE(Start(machine));
  EXPECT_EQ(bios->GetFailure(), "no memory for you");
}

TEST(RealVideoBiosWithoutItsEmulator, FailsToStartAndNamesThePackage) {
  for (const std::string library : {"libnowhere.so.3", "libm.so.6"}) {  // missing, and another one
    TPhysical machine(TCode{0xCF});
    TRealVideoBios bios(std::make_unique<TTestMachine>(machine), {}, library);
    TRealModeMemory memory;
    EXPECT_FALSE(bios.Start(memory));
    EXPECT_EQ(bios.GetFailure(),
              library + ", in which the video BIOS runs, cannot be loaded; install the package libx86emu3");
    EXPECT_EQ(machine.opened, 0);
  }
}

TEST_F(RealVideoBios, CopiesNoMoreThanTheVideoBiosTellsNorMoreThanThereIsRoomFor) {
  TPhysical machine(TCode{0xCF});
  std::fill(machine.memory.begin() + 0xC0400, machine.memory.begin() + 0xF0000, std::uint8_t{0x99});
  ASSERT_TRUE(Start(machine));
  EXPECT_EQ(*memory.At(0xC0400), 0);
  machine.memory[0xC0002] = 0xFF;
  ASSERT_TRUE(Start(machine));
  EXPECT_EQ(*memory.At(0xC0000 + 0xFF * 512 - 1), 0x99);
  EXPECT_EQ(*memory.At(0xC0000 + 0xFF * 512), 0);
}

TEST_F(RealVideoBios, ClosesTheMachineWhenItStops) {
  ASSERT_TRUE(Start(TCode{0xCF}));
  EXPECT_EQ(physical->opened, 1);
  bios->Stop();
  EXPECT_EQ(physical->opened, 0);
}

TEST_F(RealVideoBios, LeavesNothingBehindInTenThousandSessions) {
  TPhysical machine(TCode{0xB8, 0x4F, 0x00, 0xCF});  // mov ax, 004Fh; iret
  ChooseVideoBios(std::make_shared<TRealVideoBios>(std::make_unique<TTestMachine>(machine), kBudget));
  ExpectNothingLeftBehind([] {
    LRMI_regs call = {};
    ASSERT_EQ(LRMI_init(), 1);
    ASSERT_NE(LRMI_alloc_real(128), nullptr);
    ASSERT_EQ(LRMI_int(0x10, &call), 1);
    ASSERT_EQ(call.eax, 0x4FU);
    LRMI_deInit();
  });
  ChooseVideoBios(nullptr);
  EXPECT_EQ(machine.opened, 0);
}
