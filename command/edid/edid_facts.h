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

/// When a monitor, or its model, was made.
struct TMade {
  std::optional<unsigned int> week;  // of the year, 1 to 54
  unsigned int year;
  bool isModelYear;  // the year of the model; the EDID does not say when the monitor was made
};

struct TVideoInput {
  bool isDigital = false;
  // Since EDID 1.4, of a digital input:
  const char* interface = "";              // such as "DisplayPort"; empty where the EDID does not say
  std::optional<unsigned int> colourBits;  // of each colour
};

/// The limits of a rate.
struct TRates {
  unsigned int min;
  unsigned int max;
};

struct TRangeLimits {
  TRates lines;                            // kHz
  TRates fields;                           // Hz
  std::optional<unsigned int> pixelClock;  // MHz, at most
};

struct TImageSize {
  unsigned int width;   // cm
  unsigned int height;  // cm
};

struct TEdidFacts {
  bool isVersion1 = false;                      // has the header and the version of an EDID 1.x; else no more is known
  std::string name;                             // the monitor's name; empty when it has none
  std::string serialText;                       // a serial number as a text; empty when it has none
  unsigned int manufacturer = 0;                // its three letters as the EDID packs them
  std::string maker;                            // the three letters; empty when they are none
  unsigned int productCode = 0;                 // the maker's own number of the model
  std::optional<std::uint32_t> serialNumber;    // in the header; not 0 or 0x01010101, which mean none
  std::optional<TPreferredMode> preferredMode;  // the first detailed timing, when it comes first
  std::optional<TMade> made;
  TVideoInput input;
  std::optional<TRangeLimits> limits;
  std::optional<TImageSize> imageSize;
  std::optional<double> diagonalInches;  // of the image, whose sides the EDID has in whole centimetres
  bool hasValidChecksums = false;        // of every block; known of any EDID
};

/// `edid`: whole 128-byte blocks, at least one.
TEdidFacts ReadEdidFacts(const std::vector<std::uint8_t>& edid);
