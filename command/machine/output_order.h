// Puts the kernel's outputs into the order in which the plug-in asks the video BIOS for them as units.
#pragma once

#include <string>
#include <vector>

#include "command/machine/drm_cards.h"

/// The outputs of all cards that have an EDID, in an order that lets the plug-in list as many as possible. The plug-in
/// takes a unit that repeats the base block of the unit before as the end of the units, so equal ones are kept apart
/// (A A B becomes A B A). It stops at an EDID that is not of version 1, so those come last. Otherwise the order stays.
std::vector<TDrmOutput> OrderOutputs(const std::vector<TDrmCard>& cards);
