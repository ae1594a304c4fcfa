// A monitor's modes in the page: each resolution with its refresh rates as a list, and a plot of width against height.
#pragma once

#include "command/report/html/html_markup.h"
#include "command/report/request_view.h"

/// The list stays readable at any number of modes; the plot shows where they lie. The resolutions that a head is
/// configured to are marked in both, in the list by words. A monitor without modes has neither.
TMarkup MakeModes(const TRequestView& view, const TMonitorView& monitor);
