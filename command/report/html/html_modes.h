// A monitor's modes in the page: each resolution with its refresh rates as a list, and a plot of width against height.
#pragma once

#include "command/machine/outputs.h"
#include "command/report/html/html_markup.h"
#include "command/report/request_view.h"

/// The list stays readable at any number of modes; the plot shows where they lie. The resolution that the monitor's
/// head is configured to is marked in both; the list says so in words, and which mode the monitor prefers. A monitor
/// without modes has neither. `output`: of the monitor; may be null.
TMarkup MakeModes(const TRequestView& view, const TMonitorView& monitor, const TOutput* output);
