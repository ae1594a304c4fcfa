// Writes the answer as text for people: the machine, and its instances joined.
#pragma once

#include <cstddef>
#include <string>

#include "command/collection/collection.h"
#include "command/report/maker_names.h"
#include "command/report/text_lines.h"

/// The machine and the time of the collection. Then, for each request, the video controllers with their heads and the
/// monitors with their modes, as far as the request asked for them. A part that is empty says why, and a monitor says
/// where its EDID came from, if that is known. `width`: columns, from ChooseTextWidth.
std::string MakeTextReport(const TAnswer& answer, const TMakerNames& makers = TMakerNames(),
                           std::size_t width = kTextWidth);
