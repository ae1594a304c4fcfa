// The answer for CIM programs: its instances in the DMTF's MOF syntax.
#pragma once

#include <string>

#include "command/collection/collection.h"

/// Each instance once, in the order of the first commits, with what the last commit of its object path said: a CIM
/// server refuses an instance that it has already. Its properties stand by their names; a comment heads each of several
/// requests.
std::string MakeMofReport(const TAnswer& answer);
