// The answer for people: the instances joined into one picture of the machine, at most 80 columns wide.
#pragma once

#include <string>

#include "command/collection/collection.h"

/// For each request, the video controllers with their heads, then the monitors with their modes, as far as the request
/// asked for them. A part that is empty says why, and a monitor says where its EDID came from, if the answer knows.
std::string MakeTextReport(const TAnswer& answer);
