// The answer for CIM programs: its instances in the DMTF's MOF syntax.
#pragma once

#include <string>

#include "command/collection/collection.h"

/// Every instance in commit order, its properties by their names; a comment heads each of several requests.
std::string MakeMofReport(const TAnswer& answer);
