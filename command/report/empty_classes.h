// Explains why classes that were asked for have no instances.
#pragma once

#include <string>
#include <vector>

#include "command/collection/collection.h"
#include "embedded_host/schema.h"

/// A sentence for each cause, as printable text without its full stop: why the request has no instances of classes of
/// that part, which outputs are missing among the monitors, and which values of the configuration the plug-in could not
/// use. If the request has no instance of the part at all, the first sentence is the cause of that; otherwise sentences
/// about classes name them. `request`: one of the answer's.
std::vector<std::string> ExplainGaps(const TAnswer& answer, const TRequestAnswer& request, EPart part);

/// True if the request has an instance of that part.
bool HasInstances(const TRequestAnswer& request, EPart part);
