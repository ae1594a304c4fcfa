// An X server's configuration for a machine without a file of it: made from what the kernel knows of its graphics
// cards and outputs, as the server's own autoconfiguration would write it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "command/machine/drm_cards.h"
#include "command/machine/drm_device.h"

/// Of a card on the PCI bus.
struct TCardNames {
  std::string vendor;
  std::string board;
};

/// What is known of this machine's graphics.
struct TKernelGraphics {
  std::vector<TDrmCard> cards;
  std::vector<TDrmOutput> units;  // the outputs with an EDID, in the order of the BIOS units they are given as
  std::map<std::string, TCardNames> names;  // by card
  std::map<std::string, TDrmMode> modes;    // by connector, such as "card0-DP-1"; of those that are known
};

/// The text: a Device, Monitor and Screen section for each connected output, first those of the units in their order,
/// so that head K shows monitor K, then those without an EDID; and a Device section for each card without an output.
/// All of a card have its BusID. No text from an EDID or the database can end its quotes.
std::string MakeKernelConfiguration(const TKernelGraphics& graphics);
