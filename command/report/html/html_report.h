// The answer as a page for a browser or for paper: one file of HTML with its pictures, without scripts.
#pragma once

#include <string>

#include "command/collection/collection.h"
#include "command/report/maker_names.h"

/// The machine and when it was collected from; then, for each request, pictures of the controllers with their heads and
/// of the monitors, the facts and the modes of each monitor, and every instance in tables, folded away; the log at the
/// end, folded too. A part that is empty says why.
std::string MakeHtmlReport(const TAnswer& answer, const TMakerNames& makers = TMakerNames());
