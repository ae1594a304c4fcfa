// Reads the XML of a request (DSP0201, CIM in XML).
#pragma once

#include <string>

#include "command/cim_server/cim_request.h"

/// Throws TRefused, with the status and CIMError of DSP0200, unless the text is one simple request of an intrinsic
/// method. Does not check whether the method and its parameters exist.
TCimRequest ReadCimRequest(const std::string& text);
