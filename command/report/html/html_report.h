// The answer as a page for a browser or for paper: one file of HTML with its pictures, without scripts.
#pragma once

#include <string>

#include "command/collection/collection.h"

/// For each request, pictures of the controllers with their heads, of the monitors and of their modes, then every
/// instance in tables; the log at the end. A part that is empty says why.
std::string MakeHtmlReport(const TAnswer& answer);
