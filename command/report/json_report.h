// Writes the answer as JSON, which docs/json.md describes.
#pragma once

#include <string>

#include "command/collection/collection.h"

/// Whether the log is part of the answer.
enum class ELogPart { kKept, kLeftOut };

/// The answer as JSON text, indented, with a line end.
std::string MakeJsonReport(const TAnswer& answer, ELogPart log = ELogPart::kKept);

/// One line, with its line end, of the answer for many machines: the machine's name, then the answer's members. Throws
/// TUnusable if it would be longer than 64 MiB, since a fleet holds some lines in memory to put them in order.
/// `change`: is applied to each text; null: none is changed.
std::string MakeMachineLine(const std::string& machine, const TAnswer& answer, ELogPart log = ELogPart::kKept,
                            std::string (*change)(const std::string& text) = nullptr);

/// The answer as rows for a table: a line for each instance, in commit order, with its class, its path and its
/// properties as plain values, and a line of class "output" for each output. Each line begins with `machine`, the time
/// of the collection (if it is known) and the version of the command.
std::string MakeRows(const std::string& machine, const TAnswer& answer);

/// The same for one of many machines. Throws TUnusable if the rows would be longer than 64 MiB.
std::string MakeMachineRows(const std::string& machine, const TAnswer& answer);

/// The line of a machine that could not be collected from.
std::string MakeErrorLine(const std::string& machine, const std::string& reason);
