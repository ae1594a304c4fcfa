// Monitors as a table for a spreadsheet: CSV as RFC 4180 has it, in UTF-8.
#pragma once

#include <string>

#include "command/report/machine_summary.h"

/// The first line: the names of the columns.
std::string MakeCsvHead();

/// A row for each monitor of the machine, which repeats what concerns the whole machine; one row for a machine without
/// monitors, or one that could not be asked. Each ends with CR and LF.
std::string MakeCsvRows(const TMachineSummary& machine);
