// The answer for programs: one JSON object, described in docs/json.md.
#pragma once

#include <string>

#include "command/collection/collection.h"

/// Whether the log is part of the answer.
enum class ELogPart { kKept, kLeftOut };

/// The answer as JSON text, indented, with a line end.
std::string MakeJsonReport(const TAnswer& answer, ELogPart log = ELogPart::kKept);

/// One line, with its end, of the answer for many machines: the answer's members after the machine's name. Throws
/// TUnusable when it would be longer than 64 MiB: a fleet holds some lines in memory to put them in order. `change`:
/// how each text is written; null: as it is.
std::string MakeMachineLine(const std::string& machine, const TAnswer& answer, ELogPart log = ELogPart::kKept,
                            std::string (*change)(const std::string& text) = nullptr);

/// The answer as rows for a table: a line for each instance, in commit order, with its class, its path and its
/// properties as plain values, and a line for each output, of the class "output". Each begins with `machine`, the time
/// of the collection, where it is known, and the version of the command.
std::string MakeRows(const std::string& machine, const TAnswer& answer);

/// The same for one of many machines: throws TUnusable when they would be longer than 64 MiB.
std::string MakeMachineRows(const std::string& machine, const TAnswer& answer);

/// The line of a machine that could not be collected from.
std::string MakeErrorLine(const std::string& machine, const std::string& reason);
