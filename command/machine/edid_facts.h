// What the command itself reads from an EDID (VESA Enhanced EDID standard), in addition to what the plug-in reports.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

struct TPreferredMode {
  unsigned int width;   // pixels
  unsigned int height;  // lines of a whole picture, of both fields when it is interlaced
  double refresh;       // Hz, of fields when it is interlaced
};

struct TEdidFacts {
  bool isVersion1 = false;                      // has the header and the version of an EDID 1.x; else no more is known
  std::string name;                             // the monitor's name; empty when it has none
  unsigned int manufacturer = 0;                // its three letters as the EDID packs them
  unsigned int productCode = 0;                 // the maker's own number of the model
  std::optional<std::uint32_t> serialNumber;    // in the header; not 0 or 0x01010101, which mean none
  std::optional<TPreferredMode> preferredMode;  // the first detailed timing, when it comes first
  std::optional<double> diagonalInches;         // of the image, whose sides the EDID has in whole centimetres
  bool hasValidChecksums = false;               // of every block; known of any EDID
};

/// `edid`: whole 128-byte blocks, at least one.
TEdidFacts ReadEdidFacts(const std::vector<std::uint8_t>& edid);
