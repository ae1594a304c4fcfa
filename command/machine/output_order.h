// In which order the kernel's outputs become the units that the plug-in asks the video BIOS for.
#pragma once

#include <string>
#include <vector>

#include "command/machine/drm_cards.h"

/// The outputs of all cards that have an EDID, ordered so that the plug-in lists as many of them as it can. It takes a
/// unit that repeats the base block of the unit before as the end of the units, so equal ones are kept apart (A A B
/// becomes A B A), and it stops at an EDID that is not of version 1, so those come last. Otherwise the order stays.
std::vector<TDrmOutput> OrderOutputs(const std::vector<TDrmCard>& cards);
