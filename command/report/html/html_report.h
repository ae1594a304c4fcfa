// Writes the answer as a page for a browser or for paper: one HTML file with pictures and without scripts.
#pragma once

#include <string>

#include "command/collection/collection.h"
#include "command/report/maker_names.h"

/// The machine and the time of the collection. Then, for each request: pictures of the controllers with their heads and
/// of the monitors, the facts and modes of each monitor, and all instances in folded tables. Last the log, also folded.
/// A part that is empty says why.
std::string MakeHtmlReport(const TAnswer& answer, const TMakerNames& makers = TMakerNames());
