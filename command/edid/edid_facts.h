// What an EDID says (VESA Enhanced EDID standard, with its CTA-861, DisplayID and VTB extensions). Only ReadEdidFacts
// interprets the bytes; the rest of the command takes these values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "command/edid/serial_rules.h"

struct TEdidMode {
  unsigned int width;   // pixels
  unsigned int height;  // lines of a whole picture: of both fields if it is interlaced
  double refresh;       // Hz with three decimals; fields per second if it is interlaced
  bool isInterlaced = false;
};

/// Where an EDID declares a mode, the best source first.
enum class EModeSource : std::uint8_t { Detailed, DisplayId, CtaDetailed, Vic, HdmiVic, Cvt, Standard, Established };

/// "detailed", "displayid", "cta detailed", "vic", "hdmi vic", "cvt", "standard" or "established".
const char* GetName(EModeSource source);

enum class EYcbcr420 : std::uint8_t { No, Also, Only };

struct TListedMode : TEdidMode {
  EModeSource source;  // the best source that declares it
  EYcbcr420 ycbcr420;  // whether it works without YCbCr 4:2:0 sampling, also with it, or only with it
};

/// When a monitor, or its model, was made.
struct TMade {
  std::optional<unsigned int> week;  // of the year, 1 to 53
  unsigned int year;
  bool isModelYear;  // `year` is the model's; the EDID does not say when the monitor was made
};

struct TVideoInput {
  bool isDigital = false;
  // For a digital input, since EDID 1.4:
  const char* interface = "";              // such as "DisplayPort" or "HDMI-a"; empty where the EDID does not say
  std::optional<unsigned int> colourBits;  // per colour
};

/// The lowest and the highest rate.
struct TRates {
  unsigned int min;
  unsigned int max;
};

struct TRangeLimits {
  TRates lines;                            // kHz
  TRates fields;                           // Hz
  std::optional<unsigned int> pixelClock;  // the highest, MHz
};

/// The range in which the refresh rate can vary while the monitor shows a picture.
struct TRefreshRange {
  unsigned int min;                 // Hz
  std::optional<unsigned int> max;  // Hz
  const char* from;                 // "FreeSync", "HDMI" or "DisplayID"
};

struct TImageSize {
  unsigned int width;   // mm
  unsigned int height;  // mm
};

struct THdr {
  std::vector<const char*> transfers;  // "SDR", "HDR", "PQ", "HLG"
  // cd/m2 with three decimals:
  std::optional<double> maxLuminance;
  std::optional<double> maxFrameAverageLuminance;
  std::optional<double> minLuminance;
  std::string hdr10Plus;    // the version, such as "1"; empty without HDR10+
  std::string dolbyVision;  // the version, such as "V2"; empty without Dolby Vision
};

struct TAudioFormat {
  std::string name;                       // as edid-decode names it
  std::optional<unsigned int> channels;   // the most
  std::vector<double> sampleRates;        // kHz
  std::vector<unsigned int> sampleSizes;  // bits; only for uncompressed formats
};

struct THdmi {
  std::optional<unsigned int> maxTmdsClock;  // MHz
  const char* fixedRateLink = "";            // the fastest, such as "4 lanes at 12 Gbps"; empty without one
  bool hasCompression = false;               // Display Stream Compression (DSC)
  std::vector<unsigned int> deepColourBits;  // per colour: 10, 12, 16
};

/// The place of a panel in a display made of several panels.
struct TTile {
  unsigned int columns;
  unsigned int rows;
  unsigned int column;  // from 0
  unsigned int row;     // from 0
  unsigned int width;   // pixels
  unsigned int height;  // lines
};

struct TEdidFacts {
  // Known for any EDID:
  bool isVersion1 = false;         // has the header and version of an EDID 1.x; otherwise only these three are known
  bool hasValidChecksums = false;  // in every block
  unsigned int extensions = 0;     // blocks after the first

  std::string version;                        // "1.4"
  std::string name;                           // the monitor's name; empty if it has none
  std::string serialText;                     // the serial number as a text; empty if it has none
  std::vector<std::string> texts;             // other texts, such as a panel's part number
  unsigned int manufacturer = 0;              // the maker's three letters as the EDID packs them
  std::string maker;                          // the three letters; empty if they are not letters
  unsigned int productCode = 0;               // the maker's own number for the model
  std::optional<std::uint32_t> serialNumber;  // in the header; nothing for 0 and 0x01010101, which mean none
  std::optional<TSerial> serial;              // as printed on the case
  std::optional<TMade> made;
  TVideoInput input;

  std::optional<TImageSize> imageSize;
  std::optional<double> aspectRatio;  // width of the image divided by its height, two decimals
  std::optional<double> diagonalInches;

  std::optional<TEdidMode> preferredMode;  // the detailed timing in the first slot, if it holds one
  std::vector<TListedMode> modes;          // each once: by size (largest first), progressive first, highest rate first
  std::optional<TRangeLimits> limits;
  std::optional<TRefreshRange> refreshRange;

  std::optional<THdr> hdr;
  std::vector<const char*> colorimetry;  // as edid-decode names them
  std::vector<TAudioFormat> audio;
  std::vector<const char*> speakers;  // as edid-decode names them, such as "FL/FR"
  std::optional<THdmi> hdmi;
  std::optional<TTile> tile;

  std::vector<std::string> contradictions;  // sentences: where the EDID disagrees with itself or its standard
};

/// `edid`: whole 128-byte blocks, at least one.
TEdidFacts ReadEdidFacts(const std::vector<std::uint8_t>& edid);
