// The key properties by which an instance belongs to its system.
#pragma once

#include "plugin/collector/property_map.h"

namespace NQRXZELT20 {
class ICIMClass;
}

/// Inserts "SystemCreationClassName" and "SystemName" as the host gives them for the namespace of that class. If the
/// host throws TZELTException they are empty; any other exception passes through.
void InsertSystemKeys(PropertyMap* properties, NQRXZELT20::ICIMClass& cimClass);
