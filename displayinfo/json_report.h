// The answer for programs: one JSON object, described in docs/json.md.
#pragma once

#include <string>

#include "displayinfo/collection.h"

/// The answer as JSON text, indented, with a line end.
std::string MakeJsonReport(const TAnswer& answer);
