// A plot of a monitor's modes, as SVG in the page: width against height.
#pragma once

#include "command/report/html/html_markup.h"
#include "command/report/request_view.h"

/// Each resolution as a point with its refresh rates beside it; those that a head is configured to are marked, and a
/// legend says so.
TMarkup MakeModesPlot(const TRequestView& view, const TMonitorView& monitor);
