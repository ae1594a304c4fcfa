// The answer for programs: one JSON object, described in docs/json.md.
#pragma once

#include <string>

#include "command/collection/collection.h"

/// The answer as JSON text, indented, with a line end.
std::string MakeJsonReport(const TAnswer& answer);

/// One line, with its end, of the answer for many machines: the answer's members after the machine's name. Throws
/// TUnusable when it would be longer than 64 MiB: a fleet holds some lines in memory to put them in order.
std::string MakeMachineLine(const std::string& machine, const TAnswer& answer);

/// The line of a machine that could not be collected from.
std::string MakeErrorLine(const std::string& machine, const std::string& reason);
