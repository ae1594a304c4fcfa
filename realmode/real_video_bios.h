// The machine's own video BIOS, run by libx86emu on a private copy of the BIOS's memory.
//
// The copy holds page 0 (interrupt vectors and BIOS data), the video BIOS and the system BIOS, read once per session.
// Nothing is ever written back to physical memory; port I/O reaches the hardware, since only the graphics card can talk
// to the monitor.
//
// libx86emu is loaded by the first start, so that programs that start no real BIOS do not wait for it.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "realmode/api.h"
#include "realmode/video_bios.h"

class IPhysicalMachine;
struct TEmulatorLibrary;

/// How long a BIOS may take for one interrupt, and for all of them together, since each of its many units may take
/// long.
struct TBiosBudget {
  std::chrono::milliseconds interrupt{5000};
  std::chrono::milliseconds all{20000};
};

class REALMODE_API TRealVideoBios : public IVideoBios {
 public:
  /// This machine's BIOS.
  TRealVideoBios();

  /// The BIOS of `machine`. An interrupt that takes longer than the budget fails. Once the time for all of them is used
  /// up, each fails at once, in later sessions too. `emulator`: the file name of libx86emu.
  explicit TRealVideoBios(std::unique_ptr<IPhysicalMachine> machine, TBiosBudget budget = {},
                          std::string emulator = "libx86emu.so.3");
  ~TRealVideoBios() override;

  bool Start(TRealModeMemory& memory) override;
  bool Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) override;
  void Stop() override;

  /// Why the last Start or Interrupt that failed returned false, in one sentence, with the cure if there is one. Empty
  /// if none has failed.
  const std::string& GetFailure() const { return m_failure; }

 private:
  bool LoadEmulator();
  bool Fail(const std::string& failure);
  bool FailLate();

  std::unique_ptr<IPhysicalMachine> m_machine;
  TBiosBudget m_budget;
  const std::string m_emulator;
  std::unique_ptr<TEmulatorLibrary> m_library;    // null until it is needed
  std::chrono::steady_clock::duration m_spent{};  // in all interrupts so far
  std::string m_failure;
};
