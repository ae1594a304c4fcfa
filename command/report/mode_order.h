// Lists the modes of a monitor in the order in which people look for one.
#pragma once

#include <string>
#include <vector>

#include "command/collection/outputs.h"
#include "command/report/answer_view.h"

/// A mode of the EDID, of the answer, or of both.
struct TShownMode {
  unsigned int width;   // pixels
  unsigned int height;  // lines
  double refresh;       // Hz
  bool isInterlaced;
  bool isInClasses;  // one of the answer's resolutions
  bool isPreferred;  // the mode that the monitor prefers
};

/// The modes of the output's EDID, and those that only the answer has, whose rates are whole Hz. They are sorted by the
/// size of the picture, then by rate, the largest first. `output` may be null.
std::vector<TShownMode> ListModes(const TInstances& resolutions, const TOutput* output);

/// True if the answer has all modes, so that it is useless to mark those that it has.
bool AreAllInClasses(const std::vector<TShownMode>& modes);

/// "1920x1080@60Hz", "1920x1080@59.94iHz".
std::string WriteMode(const TShownMode& mode);

/// The rate with at most three decimals and without its unit, followed by "i" if the mode is interlaced.
std::string WriteRate(const TShownMode& mode);
