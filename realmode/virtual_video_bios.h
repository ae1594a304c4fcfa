// A video BIOS that exists only in memory: it hands out the EDIDs, and has the faults, that it is given.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "realmode/api.h"
#include "realmode/video_bios.h"

struct TVirtualBiosConfiguration {
  struct TUnit {
    std::vector<std::uint8_t> edid;            // whole 128-byte blocks; empty for a unit without a monitor
    std::optional<unsigned int> failAtBlock;   // the interrupt does not return for this block
    std::optional<unsigned int> errorAtBlock;  // AX = 0x014F for this block
  };

  bool present = true;       // false: there is no BIOS
  bool memory = true;        // false: there is no room for buffers
  bool ignoresUnit = false;  // true: every unit is answered as unit 0
  std::map<unsigned int, TUnit> units;
};

/// Answers function 0x4F15, sub-function 1, of interrupt 0x10 (VESA VBE/DDC): the block DX of the EDID of unit ECX goes
/// to ES:DI, with AX = 0x004F. For a block that does not exist, and for any other function, AX is 0x014F. A real BIOS
/// reads only CX. Here a unit has all 32 bits, so that a caller who counts units past 65,535 does not begin again at
/// unit 0 and never end.
class REALMODE_API TVirtualVideoBios : public IVideoBios {
 public:
  explicit TVirtualVideoBios(TVirtualBiosConfiguration configuration);

  bool Start(TRealModeMemory& memory) override;
  bool Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) override;
  void Stop() override;

 private:
  const TVirtualBiosConfiguration m_configuration;
};
