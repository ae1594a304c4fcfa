// Decodes the EDID of a monitor in an inventory.
#pragma once

#include <optional>
#include <string>

#include "command/machine/forms/found_machine.h"

/// A monitor as the inventory describes it.
struct TInventoryMonitor {
  std::optional<std::string> port;
  std::optional<std::string> base64;    // with line breaks, as in mail
  std::optional<std::string> uuencode;  // each line has a length, then groups of four characters
};

/// The monitor's output. An EDID that is missing or encoded in another way is its fault.
TFoundOutput MakeInventoryOutput(const TInventoryMonitor& monitor);
