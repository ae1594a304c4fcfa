// Calculates VESA Coordinated Video Timings (CVT 2.0): where an EDID gives only a size and a rate, it means the timing
// that these formulas give.
#pragma once

#include "command/edid/edid_facts.h"

enum class EBlanking { Standard, Reduced, Reduced2, Reduced3 };

struct TCvtRequest {
  unsigned int width;   // pixels
  unsigned int height;  // lines
  double refresh;       // Hz
  EBlanking blanking;
  bool isForVideo = false;  // only for reduced blanking: the clock is that of 1000/1001 of `refresh`
  // Only for version 3 of reduced blanking:
  unsigned int blankWidth = 80;     // pixels
  unsigned int minBlankTime = 460;  // microseconds
};

/// The mode with the exact rate of the timing; its rate is 0 if no such timing exists.
TEdidMode MakeCvtMode(const TCvtRequest& request);
