// Replaces the real video BIOS in a build without libx86emu.
#include "realmode/physical_machine.h"
#include "realmode/real_video_bios.h"

TRealVideoBios::TRealVideoBios() = default;
TRealVideoBios::TRealVideoBios(std::unique_ptr<IPhysicalMachine>, TBiosBudget) {}
TRealVideoBios::~TRealVideoBios() = default;

bool TRealVideoBios::Start(TRealModeMemory&) {
  return Fail("this build has only the virtual BIOS; install libx86emu3 for its architecture and build again");
}

bool TRealVideoBios::Interrupt(int, LRMI_regs&, TRealModeMemory&) { return false; }

void TRealVideoBios::Stop() {}

bool TRealVideoBios::Fail(const std::string& failure) {
  m_failure = failure;
  return false;
}
