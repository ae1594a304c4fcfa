// Writes monitors as a table for a spreadsheet: CSV (RFC 4180) in UTF-8.
#pragma once

#include <string>

#include "command/report/machine_summary.h"

/// The first line: the names of the columns.
std::string MakeCsvHead();

/// A row for each monitor of the machine, each repeating the facts of the machine. A machine without monitors, or one
/// that could not be asked, has one row. Each row ends with CR and LF.
std::string MakeCsvRows(const TMachineSummary& machine);
