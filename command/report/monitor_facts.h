// A monitor as people read it: what the text report, the page and the table of a fleet show of it.
#pragma once

#include <string>

#include "command/machine/maker_names.h"
#include "command/machine/outputs.h"
#include "command/report/instance_view.h"

/// Printable texts; empty where a fact is not known.
struct TMonitorFacts {
  std::string makerCode;      // the maker's three letters: "DEL"
  std::string makerName;      // "Dell Inc."; only where the list of makers is installed
  std::string model;          // the monitor's own name
  std::string serialNumber;   // the text of it, else the number in the header
  std::string productCode;    // "41199 (0xA0EF)"
  std::string made;           // "week 14 of 2008", "2008" or "model of 2008"
  std::string year;           // of the manufacture or of the model: "2008"
  std::string size;           // of the picture: "60 x 34 cm"
  std::string diagonal;       // "27.2 inches"
  std::string input;          // "analogue", "digital", "digital: DisplayPort, 10 bits per colour"
  std::string lineRate;       // "30 to 83 kHz"
  std::string fieldRate;      // "56 to 76 Hz"
  std::string pixelClock;     // "140 MHz at most"
  std::string preferredMode;  // "3840 x 2160 at 59.997 Hz"

  /// The letters and the name: "DEL (Dell Inc.)".
  std::string GetMaker() const { return makerName.empty() ? makerCode : makerCode + " (" + makerName + ")"; }
};

/// What the output's EDID says, and where that says nothing, what the plug-in's instance of the monitor
/// (QRXSG_DesktopMonitor) does. Either may be null.
TMonitorFacts DescribeMonitor(const TOutput* output, const TInstanceView* monitor, const TMakerNames& makers);
