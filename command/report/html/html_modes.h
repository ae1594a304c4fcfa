// Writes a monitor's modes: each resolution with its refresh rates as a list, and a plot of width against height.
#pragma once

#include "command/report/html/html_markup.h"
#include "command/report/mode_order.h"

/// Both mark the resolution that the configuration sets the monitor's head to. The list also says which mode the
/// monitor prefers and which modes the plug-in lists. Empty for a monitor without modes. `head`: the monitor's; may be
/// null. `modes`: from ListModes.
TMarkup MakeModes(const TInstanceView* head, const std::vector<TShownMode>& modes);
