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

constexpr std::chrono::milliseconds kInterruptBudget{5000};

class REALMODE_API TRealVideoBios : public IVideoBios {
 public:
  /// This machine's BIOS.
  TRealVideoBios();

  /// The BIOS of that machine. An interrupt that takes longer than `budget` is given up.
  explicit TRealVideoBios(std::unique_ptr<IPhysicalMachine> machine,
                          std::chrono::milliseconds budget = kInterruptBudget);
  ~TRealVideoBios() override;

  bool Start(TRealModeMemory& memory) override;
  bool Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) override;
  void Stop() override;

  /// Why the last Start or Interrupt that returned false did so, in one sentence that names the cure where there is
  /// one; empty while none did.
  const std::string& GetFailure() const { return m_failure; }

 private:
  bool Fail(const std::string& failure);

  std::unique_ptr<IPhysicalMachine> m_machine;
  std::chrono::milliseconds m_budget;
  std::string m_failure;
};
