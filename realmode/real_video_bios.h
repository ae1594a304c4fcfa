// The machine's own video BIOS, run by libx86emu on a private copy of the BIOS's memory.
//
// The copy holds page 0 (interrupt vectors and BIOS data), the video BIOS and the system BIOS, read once per session.
// Nothing is ever written back to physical memory; port I/O reaches the hardware, since only the graphics card can talk
// to the monitor.
#pragma once

#include <chrono>
#include <memory>
#include <string>

#include "realmode/api.h"
#include "realmode/video_bios.h"

class IPhysicalMachine;

/// How long a BIOS may take: for one interrupt, and for all of them together, since it has many units and each may take
/// long.
struct TBiosBudget {
  std::chrono::milliseconds interrupt{5000};
  std::chrono::milliseconds all{20000};
};

class REALMODE_API TRealVideoBios : public IVideoBios {
 public:
  /// This machine's BIOS.
  TRealVideoBios();

  /// The BIOS of that machine. An interrupt that takes longer than the budget is given up; once all of them have taken
  /// theirs, each fails at once, in later sessions too.
  explicit TRealVideoBios(std::unique_ptr<IPhysicalMachine> machine, TBiosBudget budget = {});
  ~TRealVideoBios() override;

  bool Start(TRealModeMemory& memory) override;
  bool Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) override;
  void Stop() override;

  /// Why the last Start or Interrupt that returned false did so, in one sentence that names the cure where there is
  /// one; empty while none did.
  const std::string& GetFailure() const { return m_failure; }

 private:
  bool Fail(const std::string& failure);
  bool FailLate();

  std::unique_ptr<IPhysicalMachine> m_machine;
  TBiosBudget m_budget;
  std::chrono::steady_clock::duration m_spent{};  // in all interrupts so far
  std::string m_failure;
};
