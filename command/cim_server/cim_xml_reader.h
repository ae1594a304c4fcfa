// Reads the XML of a request (DSP0201, CIM in XML).
#pragma once

#include <string>

#include "command/cim_server/cim_request.h"

/// Throws TRefused, with the status and the CIMError that DSP0200 has for it, for a text that is not one simple request
/// of an intrinsic method. Whether the method and its parameters exist is not checked.
TCimRequest ReadCimRequest(const std::string& text);
