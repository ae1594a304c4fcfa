// The serial numbers in an EDID (VESA Enhanced EDID standard).
#pragma once

#include <string>

/// Blanks those of the base block: the number in the header, and the text of each serial number descriptor. The block's
/// checksum stays as right or as wrong as it is. `edid`: whole 128-byte blocks.
void BlankSerials(std::string& edid);
