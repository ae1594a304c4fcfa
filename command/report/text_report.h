// The answer for people: whose it is, and the instances joined into one picture of the machine.
#pragma once

#include <cstddef>
#include <string>

#include "command/collection/collection.h"
#include "command/report/maker_names.h"
#include "command/report/text_lines.h"

/// The machine and when it was collected from; then, for each request, the video controllers with their heads, and the
/// monitors with their modes, as far as the request asked for them. A part that is empty says why, and a monitor says
/// where its EDID came from, if the answer knows. `width`: columns, as ChooseTextWidth chooses them.
std::string MakeTextReport(const TAnswer& answer, const TMakerNames& makers = TMakerNames(),
                           std::size_t width = kTextWidth);
