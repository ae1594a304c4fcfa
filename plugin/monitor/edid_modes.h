// The video modes that an EDID declares: bytes in, modes out. Nothing here logs or keeps anything.
#pragma once

#include <vector>

struct TMode {
  unsigned int width;    // pixels
  unsigned int height;   // lines
  unsigned int refresh;  // Hz
};

/// The modes of a base block: its established timings, each byte from its lowest bit, then its standard timings. A
/// detailed timing is not a mode here.
std::vector<TMode> DecodeModes(const unsigned char* edid);

/// CIM's code for how a monitor scans, from the slot of a detailed timing; the code for unknown from a null pointer.
unsigned short DecodeScanMode(const unsigned char* detailedTiming);
