// The answer for CIM programs: its instances in the DMTF's MOF syntax.
#pragma once

#include <string>

#include "command/collection/collection.h"

/// Each instance once, in the order of the first commits, with what the last commit of its object path said: a CIM
/// server refuses an instance that it has already. Properties are sorted by name; with several requests, a comment
/// comes before each.
std::string MakeMofReport(const TAnswer& answer);
