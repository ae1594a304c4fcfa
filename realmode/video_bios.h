// The interface of a video BIOS, on which the LRMI calls work.
#pragma once

#include "realmode/lrmi.h"

class TRealModeMemory;

class IVideoBios {
 public:
  virtual ~IVideoBios() = default;

  /// Prepares a session and sets the pool of buffers in `memory`. False if there is no BIOS that can be called.
  virtual bool Start(TRealModeMemory& memory) = 0;

  /// Runs one interrupt on that memory. False if it did not return; `registers` are then unchanged.
  virtual bool Interrupt(int number, LRMI_regs& registers, TRealModeMemory& memory) = 0;

  /// Releases what Start took. Not called after a Start that returned false.
  virtual void Stop() = 0;
};
