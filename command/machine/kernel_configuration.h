// Makes an X server's configuration for a machine without one, from what the kernel knows of its graphics cards and
// outputs, as the server's own autoconfiguration would write it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "command/machine/drm_cards.h"
#include "command/machine/drm_device.h"

/// The names of a card on the PCI bus.
struct TCardNames {
  std::string vendor;
  std::string board;
};

/// What is known of this machine's graphics.
struct TKernelGraphics {
  std::vector<TDrmCard> cards;
  std::vector<TDrmOutput> units;            // the outputs with an EDID, in the order of their BIOS units
  std::map<std::string, TCardNames> names;  // by card
  std::map<std::string, TDrmMode> modes;    // known ones, by connector, such as "card0-DP-1"
};

/// Returns the text. Each connected output has a Device, a Monitor and a Screen section: first the units in their
/// order, so that head K shows monitor K, then the outputs without an EDID. Each card without an output has a Device
/// section. All Device sections of a card have its BusID. No text from an EDID or the database can end its quotes.
std::string MakeKernelConfiguration(const TKernelGraphics& graphics);
