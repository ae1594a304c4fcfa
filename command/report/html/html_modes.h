// A monitor's modes in the page: each resolution with its refresh rates as a list, and a plot of width against height.
#pragma once

#include "command/report/html/html_markup.h"
#include "command/report/mode_order.h"

/// The list stays readable at any number of modes; the plot shows where they lie. The resolution that the monitor's
/// head is configured to is marked in both; the list says so in words, which mode the monitor prefers, and which the
/// plug-in lists. A monitor without modes has neither. `head`: of the monitor; may be null. `modes`: as ListModes
/// orders them.
TMarkup MakeModes(const TInstanceView* head, const std::vector<TShownMode>& modes);
