// The modes of a monitor in the order in which people look for one.
#pragma once

#include <string>
#include <vector>

#include "command/collection/outputs.h"
#include "command/report/answer_view.h"

/// A mode that the EDID has, or the answer, or both.
struct TShownMode {
  unsigned int width;   // pixels
  unsigned int height;  // lines
  double refresh;       // Hz
  bool isInterlaced;
  bool isInClasses;  // one of the answer's resolutions
  bool isPreferred;  // the mode that the monitor prefers
};

/// The modes of the output's EDID, and those of the answer that it does not have, whose rates the plug-in has in whole
/// Hz. The largest picture comes first; the modes of one resolution follow each other by their rates. `output` may be
/// null.
std::vector<TShownMode> ListModes(const TInstances& resolutions, const TOutput* output);

/// True when there is no use in marking those that the answer has.
bool AreAllInClasses(const std::vector<TShownMode>& modes);

/// "1920x1080@60Hz", "1920x1080@59.94iHz".
std::string WriteMode(const TShownMode& mode);

/// The rate with as many decimals as it has, three at most, without its unit; "i" follows that of an interlaced mode.
std::string WriteRate(const TShownMode& mode);
