#include "realmode/real_video_bios.h"

#include <x86emu.h>

#include <csetjmp>

#include "realmode/physical_machine.h"
#include "realmode/real_mode_memory.h"

namespace {

// The first megabyte as a BIOS knows it.
constexpr std::uint32_t kPageSize = 0x1000;
constexpr std::uint32_t kVideoBios = 0xC0000;
constexpr std::uint32_t kVideoBiosEnd = 0xF0000;
constexpr std::uint32_t kSystemBios = 0xF0000;
constexpr std::uint32_t kSystemBiosSize = 0x10000;

// The head of a video BIOS: a signature, then its size in units of 512 bytes.
constexpr std::uint8_t kSignature[] = {0x55, 0xAA};
constexpr std::uint32_t kSizeOffset = 2;
constexpr std::uint32_t kSizeUnit = 512;

// What a session lays out in the conventional memory between them.
constexpr std::uint32_t kPoolBegin = 0x10000;
constexpr std::uint32_t kPoolEnd = 0x20000;
constexpr std::uint16_t kStackSegment = 0x2000;
constexpr std::uint16_t kStackTop = 0xFFF0;
constexpr std::uint16_t kReturnSegment = 0x3000;  // where the interrupt returns to, offset 0

typedef std::chrono::steady_clock TClock;

/// One interrupt under way.
struct TRun {
  IPhysicalMachine* machine;
  TRealModeMemory* memory;
  TClock::time_point deadline;
  unsigned int accesses;
  bool hasReturned;
  std::jmp_buf timeUp;
};

TRun& GetRun(x86emu_t* emulator) { return *static_cast<TRun*>(emulator->_private); }

// Reading the clock costs more than an emulated access: look at it now and then.
constexpr unsigned int kAccessesPerLook = 4096;

void CheckTime(TRun& run) {
  if (++run.accesses % kAccessesPerLook == 0 && TClock::now() > run.deadline) {
    // Out of the emulator at once: asked to stop, it would first finish a string instruction of 4 G repetitions. There
    // is nothing to unwind between here and the setjmp.
    std::longjmp(run.timeUp, 1);
  }
}

/// Memory beyond the image does not exist: reads give ones, writes are lost.
unsigned int ReadMemory(TRun& run, std::uint32_t address, std::uint32_t* value, unsigned int bytes) {
  *value = 0;
  for (unsigned int index = 0; index < bytes; ++index) {
    const std::uint32_t at = address + index;
    const std::uint32_t byte = at < TRealModeMemory::kSize ? *run.memory->At(at) : 0xFF;
    *value |= byte << (8 * index);
  }
  return 0;
}

unsigned int WriteMemory(TRun& run, std::uint32_t address, std::uint32_t value, unsigned int bytes) {
  for (unsigned int index = 0; index < bytes; ++index) {
    const std::uint32_t at = address + index;
    if (at < TRealModeMemory::kSize) *run.memory->At(at) = static_cast<std::uint8_t>(value >> (8 * index));
  }
  return 0;
}

unsigned int Access(x86emu_t* emulator, std::uint32_t address, std::uint32_t* value, unsigned int type) {
  TRun& run = GetRun(emulator);
  CheckTime(run);
  constexpr unsigned int widthMask = 0xFF;
  const unsigned int width = type & widthMask;
  const unsigned int bytes = width == X86EMU_MEMIO_32 ? 4 : width == X86EMU_MEMIO_16 ? 2 : 1;
  switch (type & ~widthMask) {
    case X86EMU_MEMIO_W:
      return WriteMemory(run, address, *value, bytes);
    case X86EMU_MEMIO_I:
      *value = run.machine->In(static_cast<std::uint16_t>(address), bytes);
      return 0;
    case X86EMU_MEMIO_O:
      run.machine->Out(static_cast<std::uint16_t>(address), *value, bytes);
      return 0;
    default:
      return ReadMemory(run, address, value, bytes);
  }
}

/// Called before each instruction: ends the run when the interrupt has come back.
int CheckReturn(x86emu_t* emulator) {
  TRun& run = GetRun(emulator);
  run.hasReturned = emulator->x86.R_CS == kReturnSegment && emulator->x86.R_EIP == 0;
  return run.hasReturned ? 1 : 0;
}

void SetSegment(x86emu_t* emulator, int index, unsigned short value) {
  x86emu_set_seg_register(emulator, emulator->x86.seg + index, value);
}

void LoadRegisters(x86emu_t* emulator, const LRMI_regs& registers) {
  emulator->x86.R_EAX = registers.eax;
  emulator->x86.R_EBX = registers.ebx;
  emulator->x86.R_ECX = registers.ecx;
  emulator->x86.R_EDX = registers.edx;
  emulator->x86.R_ESI = registers.esi;
  emulator->x86.R_EDI = registers.edi;
  emulator->x86.R_EBP = registers.ebp;
  SetSegment(emulator, R_DS_INDEX, registers.ds);
  SetSegment(emulator, R_ES_INDEX, registers.es);
  SetSegment(emulator, R_FS_INDEX, registers.fs);
  SetSegment(emulator, R_GS_INDEX, registers.gs);
}

void StoreRegisters(const x86emu_t* emulator, LRMI_regs& registers) {
  registers.eax = emulator->x86.R_EAX;
  registers.ebx = emulator->x86.R_EBX;
  registers.ecx = emulator->x86.R_ECX;
  registers.edx = emulator->x86.R_EDX;
  registers.esi = emulator->x86.R_ESI;
  registers.edi = emulator->x86.R_EDI;
  registers.ebp = emulator->x86.R_EBP;
  registers.flags = static_cast<unsigned short>(emulator->x86.R_EFLG);
  registers.ds = emulator->x86.R_DS;
  registers.es = emulator->x86.R_ES;
  registers.fs = emulator->x86.R_FS;
  registers.gs = emulator->x86.R_GS;
}

std::uint16_t ReadWord(TRealModeMemory& memory, std::uint32_t address) {
  return static_cast<std::uint16_t>(*memory.At(address) | *memory.At(address + 1) << 8);
}

void WriteWord(TRealModeMemory& memory, std::uint32_t address, std::uint16_t value) {
  *memory.At(address) = static_cast<std::uint8_t>(value);
  *memory.At(address + 1) = static_cast<std::uint8_t>(value >> 8);
}

/// Stands at the handler's first instruction, as the processor does after INT: the way back is on the stack.
void EnterInterrupt(x86emu_t* emulator, TRealModeMemory& memory, int number, unsigned short flags) {
  constexpr std::uint16_t frame = kStackTop - 6;
  constexpr std::uint32_t stack = kStackSegment * 16U + frame;
  constexpr std::uint32_t alwaysSet = 2;
  constexpr std::uint16_t interruptAndTrap = 0x0300;
  WriteWord(memory, stack, 0);
  WriteWord(memory, stack + 2, kReturnSegment);
  WriteWord(memory, stack + 4, flags);
  SetSegment(emulator, R_SS_INDEX, kStackSegment);
  emulator->x86.R_ESP = frame;
  const std::uint32_t vector = static_cast<std::uint32_t>(number) * 4;
  SetSegment(emulator, R_CS_INDEX, ReadWord(memory, vector + 2));
  emulator->x86.R_EIP = ReadWord(memory, vector);
  emulator->x86.R_EFLG = (flags & ~std::uint32_t{interruptAndTrap}) | alwaysSet;
}

struct TEmulatorEnd {
  void operator()(x86emu_t* emulator) const { x86emu_done(emulator); }
};

enum class EEnd { kReturned, kStopped, kTimeUp };

EEnd RunToEnd(x86emu_t* emulator, TRun& run) {
  if (setjmp(run.timeUp) != 0) return EEnd::kTimeUp;
  x86emu_run(emulator, 0);
  return run.hasReturned ? EEnd::kReturned : EEnd::kStopped;
}

/// Copies the video BIOS, which tells its own size. False when there is none.
bool CopyVideoBios(IPhysicalMachine& machine, TRealModeMemory& memory) {
  std::uint8_t* const image = memory.At(kVideoBios);
  if (!machine.Read(kVideoBios, image, kSizeUnit)) return false;
  if (image[0] != kSignature[0] || image[1] != kSignature[1]) return false;
  const std::uint32_t told = image[kSizeOffset] * kSizeUnit;
  const std::uint32_t size = told < kVideoBiosEnd - kVideoBios ? told : kVideoBiosEnd - kVideoBios;
  return machine.Read(kVideoBios, image, size);
}

}  // namespace

TRealVideoBios::TRealVideoBios() : TRealVideoBios(std::make_unique<TThisPhysicalMachine>()) {}

TRealVideoBios::TRealVideoBios(std::unique_ptr<IPhysicalMachine> machine, std::chrono::milliseconds budget)
    : m_machine(std::move(machine)), m_budget(budget) {}

TRealVideoBios::~TRealVideoBios() = default;

bool TRealVideoBios::Start(TRealModeMemory& memory) {
  const std::string missing = m_machine->Open();
  if (!missing.empty()) return Fail(missing);
  const bool isCopied = m_machine->Read(0, memory.At(0), kPageSize) && CopyVideoBios(*m_machine, memory) &&
                        m_machine->Read(kSystemBios, memory.At(kSystemBios), kSystemBiosSize);
  if (!isCopied) {
    m_machine->Close();
    return Fail("this machine has no video BIOS that can be read, as one started by UEFI may not");
  }
  memory.GrantPool(kPoolBegin, kPoolEnd);
  return true;
}

bool TRealVideoBios::Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) {
  const std::uint32_t vector = static_cast<std::uint32_t>(number) * 4;
  if (number < 0 || number > 0xFF || (ReadWord(memory, vector) | ReadWord(memory, vector + 2)) == 0) {
    return Fail("the video BIOS has no handler for the interrupt");
  }
  const std::unique_ptr<x86emu_t, TEmulatorEnd> emulator(x86emu_new(0, 0));
  if (emulator == nullptr) return Fail("the emulator has no memory");
  TRun run = {};
  run.machine = m_machine.get();
  run.memory = &memory;
  run.deadline = TClock::now() + m_budget;
  emulator->_private = &run;
  x86emu_set_memio_handler(emulator.get(), Access);
  x86emu_set_code_handler(emulator.get(), CheckReturn);
  LoadRegisters(emulator.get(), registers);
  EnterInterrupt(emulator.get(), memory, number, registers.flags);

  switch (RunToEnd(emulator.get(), run)) {
    case EEnd::kReturned:
      StoreRegisters(emulator.get(), registers);
      return true;
    case EEnd::kStopped:
      return Fail("the video BIOS stopped before it returned");
    case EEnd::kTimeUp:
      break;
  }
  return Fail("the video BIOS did not return within " + std::to_string(m_budget.count()) + " ms");
}

void TRealVideoBios::Stop() { m_machine->Close(); }

bool TRealVideoBios::Fail(const std::string& failure) {
  m_failure = failure;
  return false;
}
