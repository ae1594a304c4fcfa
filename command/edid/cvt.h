// The rates of VESA Coordinated Video Timings (CVT 2.0): a monitor that names only a size and a rate means the timing
// that these formulas make of them.
#pragma once

#include "command/edid/edid_facts.h"

enum class EBlanking { Standard, Reduced, Reduced2, Reduced3 };

struct TCvtRequest {
  unsigned int width;   // pixels
  unsigned int height;  // lines
  double refresh;       // Hz
  EBlanking blanking;
  // Of version 3 of reduced blanking:
  unsigned int blankWidth = 80;     // pixels
  unsigned int minBlankTime = 460;  // microseconds
};

/// The mode with the exact rate of the timing. It has no rate when there is no such timing.
TEdidMode MakeCvtMode(const TCvtRequest& request);
