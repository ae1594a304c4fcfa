#include "realmode/real_video_bios.h"

#include <x86emu.h>

#include <algorithm>
#include <csetjmp>
#include <iterator>
#include <utility>

#include "realmode/physical_machine.h"
#include "realmode/real_mode_memory.h"
#include "realmode/shared_library.h"

/// libx86emu, and the functions of it that are called.
struct TEmulatorLibrary {
  explicit TEmulatorLibrary(const char* file) : library(file) {}

  bool IsComplete() const {
    return create != nullptr && end != nullptr && run != nullptr && setMemoryHandler != nullptr &&
           setCodeHandler != nullptr && setSegment != nullptr;
  }

  TSharedLibrary library;
  decltype(x86emu_new)* create = library.Find<decltype(x86emu_new)>("x86emu_new");
  decltype(x86emu_done)* end = library.Find<decltype(x86emu_done)>("x86emu_done");
  decltype(x86emu_run)* run = library.Find<decltype(x86emu_run)>("x86emu_run");
  decltype(x86emu_set_memio_handler)* setMemoryHandler =
      library.Find<decltype(x86emu_set_memio_handler)>("x86emu_set_memio_handler");
  decltype(x86emu_set_code_handler)* setCodeHandler =
      library.Find<decltype(x86emu_set_code_handler)>("x86emu_set_code_handler");
  decltype(x86emu_set_seg_register)* setSegment =
      library.Find<decltype(x86emu_set_seg_register)>("x86emu_set_seg_register");
};

namespace {

// The layout of the first megabyte.
constexpr std::uint32_t kPageSize = 0x1000;
constexpr std::uint32_t kVideoBios = 0xC0000;
constexpr std::uint32_t kSystemBios = 0xF0000;
constexpr std::uint32_t kSystemBiosSize = 0x10000;

// The head of a video BIOS: a signature, then its size in units of 512 bytes.
constexpr std::uint8_t kSignature[] = {0x55, 0xAA};
constexpr std::uint32_t kSizeOffset = 2;
constexpr std::uint32_t kSizeUnit = 512;
static_assert(kVideoBios + 0xFF * kSizeUnit <= kSystemBios, "the largest video BIOS ends before the system BIOS");

// What a session puts into the conventional memory between them, after the pool of buffers.
constexpr std::uint16_t kStackSegment = 0x2000;
constexpr std::uint16_t kStackTop = 0xFFF0;
constexpr std::uint16_t kReturnSegment = 0x3000;  // where the interrupt returns to, offset 0

typedef std::chrono::steady_clock TClock;

/// A running interrupt.
struct TRun {
  const TEmulatorLibrary* library;
  IPhysicalMachine* machine;
  TRealModeMemory* memory;
  TClock::time_point deadline;
  unsigned int accesses;
  bool hasReturned;
  std::jmp_buf timeUp;
};

TRun& GetRun(x86emu_t* emulator) { return *static_cast<TRun*>(emulator->_private); }

// Reading the clock takes longer than an emulated access, so it is read only once for so many.
constexpr unsigned int kAccessesPerLook = 4096;

void CheckTime(TRun& run) {
  if (++run.accesses % kAccessesPerLook == 0 && TClock::now() > run.deadline) {
    // Leave the emulator at once: if it were asked to stop, it would first finish a string instruction of up to 4 G
    // repetitions. Nothing between here and the setjmp needs unwinding.
    std::longjmp(run.timeUp, 1);
  }
}

/// Beyond the image there is no memory: all bits read as 1, and writes are lost.
std::uint8_t ReadByte(const TRun& run, std::uint32_t address) {
  return address < TRealModeMemory::kSize ? *run.memory->At(address) : std::uint8_t{0xFF};
}

unsigned int ReadMemory(const TRun& run, std::uint32_t address, std::uint32_t* value, unsigned int bytes) {
  *value = 0;
  for (unsigned int index = 0; index < bytes; ++index) {
    *value |= std::uint32_t{ReadByte(run, address + index)} << (8 * index);
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

constexpr std::uint8_t kOperandSizePrefix = 0x66;
constexpr std::uint8_t kPrefixes[] = {0x26, 0x2E, 0x36, 0x3E, 0x64, 0x65, kOperandSizePrefix, 0x67, 0xF0, 0xF2, 0xF3};
constexpr std::uint32_t kLongestInstruction = 15;  // bytes, including prefixes

constexpr std::uint8_t kAdjustAfterMultiply = 0xD4;  // AAM: divides AL by the byte that follows
constexpr std::uint8_t kUnaryGroup = 0xF7;           // its operations are told apart by bits 3 to 5 of the next byte
constexpr unsigned int kSignedDivision = 7;          // IDIV of DX:AX or EDX:EAX

bool IsPrefix(std::uint8_t code) {
  return std::find(std::begin(kPrefixes), std::end(kPrefixes), code) != std::end(kPrefixes);
}

bool Is32BitCode(const x86emu_t* emulator) { return ACC_D(emulator->x86.R_CS_ACC) != 0; }

/// A byte of the next instruction, as the emulator will fetch it.
std::uint8_t PeekCode(const x86emu_t* emulator, const TRun& run, std::uint32_t index) {
  const std::uint32_t offset = emulator->x86.R_EIP + index;
  return ReadByte(run, emulator->x86.R_CS_BASE + (Is32BitCode(emulator) ? offset : offset & 0xFFFF));
}

/// True if the registers hold the smallest dividend, whose quotient is out of range for every divisor.
bool IsSmallestDividend(const x86emu_t* emulator, bool is32Bit) {
  return is32Bit ? emulator->x86.R_EDX == 0x80000000U && emulator->x86.R_EAX == 0
                 : emulator->x86.R_DX == 0x8000 && emulator->x86.R_AX == 0;
}

/// True for the instructions that would crash this process in libx86emu:
/// - one of more than 15 bytes, all prefixes: the emulator writes each prefix into a buffer whose end it does not
/// check;
/// - AAM by 0, and IDIV of the smallest dividend: the emulator lets this processor divide, which ends in SIGFPE.
/// Stopping the run is right: a real processor would raise an exception, so no working BIOS has such an instruction.
bool IsFatalInstruction(const x86emu_t* emulator, const TRun& run) {
  bool is32Bit = Is32BitCode(emulator);
  std::uint32_t index = 0;
  std::uint8_t code = PeekCode(emulator, run, index);
  while (IsPrefix(code)) {
    if (code == kOperandSizePrefix) is32Bit = !is32Bit;  // at each, as in the emulator
    if (++index == kLongestInstruction) return true;
    code = PeekCode(emulator, run, index);
  }
  const std::uint8_t next = PeekCode(emulator, run, index + 1);
  if (code == kAdjustAfterMultiply) return next == 0;
  return code == kUnaryGroup && (next >> 3 & 7) == kSignedDivision && IsSmallestDividend(emulator, is32Bit);
}

/// Called before each instruction: ends the run if the interrupt has returned or cannot go on.
int CheckInstruction(x86emu_t* emulator) {
  TRun& run = GetRun(emulator);
  run.hasReturned = emulator->x86.R_CS == kReturnSegment && emulator->x86.R_EIP == 0;
  return run.hasReturned || IsFatalInstruction(emulator, run) ? 1 : 0;
}

void SetSegment(x86emu_t* emulator, int index, unsigned short value) {
  GetRun(emulator).library->setSegment(emulator, emulator->x86.seg + index, value);
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

/// Goes to the handler's first instruction, as INT does, with the return address on the stack.
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

enum class EEnd { kReturned, kStopped, kTimeUp };

EEnd RunToEnd(x86emu_t* emulator, TRun& run) {
  if (setjmp(run.timeUp) != 0) return EEnd::kTimeUp;
  run.library->run(emulator, 0);
  return run.hasReturned ? EEnd::kReturned : EEnd::kStopped;
}

/// The size in bytes that the video BIOS in the image states.
std::uint32_t GetVideoBiosSize(TRealModeMemory& memory) { return *memory.At(kVideoBios + kSizeOffset) * kSizeUnit; }

/// Copies the video BIOS. False if there is none.
bool CopyVideoBios(IPhysicalMachine& machine, TRealModeMemory& memory) {
  std::uint8_t* const image = memory.At(kVideoBios);
  if (!machine.Read(kVideoBios, image, kSizeUnit)) return false;
  if (image[0] != kSignature[0] || image[1] != kSignature[1]) return false;
  return machine.Read(kVideoBios, image, GetVideoBiosSize(memory));
}

/// True if the interrupt's vector points into a BIOS. The rest of the memory is zeros, which would run until the time
/// is up.
bool HasHandler(TRealModeMemory& memory, int number) {
  if (number < 0 || number > 0xFF) return false;
  const std::uint32_t vector = static_cast<std::uint32_t>(number) * 4;
  const std::uint32_t handler = ReadWord(memory, vector + 2) * 16U + ReadWord(memory, vector);
  return (handler >= kVideoBios && handler < kVideoBios + GetVideoBiosSize(memory)) ||
         (handler >= kSystemBios && handler < kSystemBios + kSystemBiosSize);
}

}  // namespace

TRealVideoBios::TRealVideoBios() : TRealVideoBios(std::make_unique<TThisPhysicalMachine>()) {}

TRealVideoBios::TRealVideoBios(std::unique_ptr<IPhysicalMachine> machine, TBiosBudget budget, std::string emulator)
    : m_machine(std::move(machine)), m_budget(budget), m_emulator(std::move(emulator)) {}

TRealVideoBios::~TRealVideoBios() = default;

bool TRealVideoBios::Start(TRealModeMemory& memory) {
  const std::string missing = m_machine->Open();
  if (!missing.empty()) return Fail(missing);
  if (!LoadEmulator()) {
    m_machine->Close();
    return Fail(m_emulator + ", in which the video BIOS runs, cannot be loaded; install the package libx86emu3");
  }
  const bool isCopied = m_machine->Read(0, memory.At(0), kPageSize) && CopyVideoBios(*m_machine, memory) &&
                        m_machine->Read(kSystemBios, memory.At(kSystemBios), kSystemBiosSize);
  if (!isCopied) {
    m_machine->Close();
    return Fail("this machine has no video BIOS that can be read, as one started by UEFI may not");
  }
  memory.GrantPool(TRealModeMemory::kPoolBegin, TRealModeMemory::kPoolEnd);
  return true;
}

bool TRealVideoBios::Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) {
  if (!HasHandler(memory, number)) return Fail("the video BIOS has no handler for the interrupt");
  if (m_spent >= m_budget.all) return FailLate();
  const std::unique_ptr<x86emu_t, decltype(x86emu_done)*> emulator(m_library->create(0, 0), m_library->end);
  if (emulator == nullptr) return Fail("the emulator has no memory");
  TRun run = {};
  run.library = m_library.get();
  run.machine = m_machine.get();
  run.memory = &memory;
  const TClock::time_point begin = TClock::now();
  run.deadline = begin + std::min<TClock::duration>(m_budget.interrupt, m_budget.all - m_spent);
  emulator->_private = &run;
  m_library->setMemoryHandler(emulator.get(), Access);
  m_library->setCodeHandler(emulator.get(), CheckInstruction);
  LoadRegisters(emulator.get(), registers);
  EnterInterrupt(emulator.get(), memory, number, registers.flags);

  const EEnd end = RunToEnd(emulator.get(), run);
  m_spent += TClock::now() - begin;
  switch (end) {
    case EEnd::kReturned:
      StoreRegisters(emulator.get(), registers);
      return true;
    case EEnd::kStopped:
      return Fail("the video BIOS stopped before it returned");
    case EEnd::kTimeUp:
      break;
  }
  return FailLate();
}

void TRealVideoBios::Stop() { m_machine->Close(); }

/// False if the library is missing or is a different one.
bool TRealVideoBios::LoadEmulator() {
  if (m_library == nullptr) m_library = std::make_unique<TEmulatorLibrary>(m_emulator.c_str());
  return m_library->IsComplete();
}

/// Fails because the interrupt, or all of them together, took too long.
bool TRealVideoBios::FailLate() {
  if (m_spent < m_budget.all) {
    return Fail("the video BIOS did not return within " + std::to_string(m_budget.interrupt.count()) + " ms");
  }
  return Fail("the video BIOS took longer than " + std::to_string(m_budget.all.count()) +
              " ms for all its calls together");
}

bool TRealVideoBios::Fail(const std::string& failure) {
  m_failure = failure;
  return false;
}
