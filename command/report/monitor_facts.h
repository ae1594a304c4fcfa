// Describes a monitor for people: what the text report, the page and the table of a fleet show.
#pragma once

#include <string>

#include "command/collection/outputs.h"
#include "command/report/answer_view.h"
#include "command/report/maker_names.h"

/// Printable texts; empty if a fact is unknown.
struct TMonitorFacts {
  std::string makerCode;      // the maker's three letters: "DEL"
  std::string makerName;      // "Dell Inc."; only if the list of makers is installed
  std::string model;          // the monitor's name, or the part number of a panel without one
  std::string serialNumber;   // from the EDID; empty for a filler
  std::string productCode;    // "41199 (0xA0EF)"
  std::string made;           // "week 14 of 2008", "2008" or "model of 2008"
  std::string year;           // of the manufacture or of the model: "2008"
  std::string size;           // of the picture: "597 x 336 mm", or "aspect ratio 1.78"
  std::string diagonal;       // "27.2 inches"
  std::string input;          // "analogue", "digital", "digital: DisplayPort, 10 bits per colour"
  std::string lineRate;       // "30 to 83 kHz"
  std::string fieldRate;      // "56 to 76 Hz"
  std::string pixelClock;     // "140 MHz at most"
  std::string preferredMode;  // "3840 x 2160 at 59.997 Hz"
  std::string largestMode;    // the one with the most pixels
  std::string highestRate;    // in whole Hz, with the largest size that has it: "144 Hz (1920 x 1080)"
  std::string hdr;            // "PQ, HLG, HDR10+ 1, up to 465 cd/m2"
  std::string variableRate;   // "48 to 144 Hz (FreeSync)"
  std::string link;           // of HDMI: "TMDS up to 600 MHz, FRL of 4 lanes at 12 Gbps, 10 or 12 bits per colour"
  std::string sound;          // "Linear PCM (2 channels)"

  // Numbers only, for tables. Rates in Hz, sizes in pixels and mm.
  std::string preferredWidth, preferredHeight, preferredRefresh;
  std::string largestWidth, largestHeight, highestRefresh;
  std::string hasHdr;  // "yes" or "no"
  std::string variableMin, variableMax;
  std::string width, height, inches;

  /// The letters and the name: "DEL (Dell Inc.)".
  std::string GetMaker() const { return makerName.empty() ? makerCode : makerCode + " (" + makerName + ")"; }
};

/// Takes each fact from the output's EDID or, if that does not have it, from the plug-in's instance of the monitor
/// (QRXSG_DesktopMonitor). Either may be null.
TMonitorFacts DescribeMonitor(const TOutput* output, const TInstanceView* monitor, const TMakerNames& makers);
