// A monitor in an inventory.
#pragma once

#include <optional>
#include <string>

#include "command/machine/forms/found_machine.h"

/// As the inventory has it.
struct TInventoryMonitor {
  std::optional<std::string> port;
  std::optional<std::string> base64;    // with line breaks, as mail has them
  std::optional<std::string> uuencode;  // lines of a length and groups of four characters
};

/// Its output. A monitor whose EDID is missing, or in another encoding, has that as its fault.
TFoundOutput MakeInventoryOutput(const TInventoryMonitor& monitor);
