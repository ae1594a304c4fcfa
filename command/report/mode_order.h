// The modes of a monitor in the order in which people look for one.
#pragma once

#include "command/machine/outputs.h"
#include "command/report/request_view.h"

/// The modes by the size of the picture, the largest first; those of one resolution, which then follow each other, by
/// their rate. A mode that an EDID declares twice comes once.
TInstances SortModes(TInstances modes);

/// True for the mode that the output's EDID prefers, whose rate the plug-in has in whole Hz. `output` may be null.
bool IsPreferred(const TInstanceView& mode, const TOutput* output);
