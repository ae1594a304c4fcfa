// Writes the instances of an answer in the DMTF's MOF syntax, for CIM programs.
#pragma once

#include <string>

#include "command/collection/collection.h"

/// Each instance once, since a CIM server refuses an instance that it already has: in the order of the first commits,
/// but as the last commit of its object path. Properties are sorted by name. With several requests, a comment comes
/// before each.
std::string MakeMofReport(const TAnswer& answer);
