// Pictures of a machine, as SVG in the page: its controllers with their heads, and its monitors to scale.
#pragma once

#include "command/report/html/html_markup.h"
#include "command/report/request_view.h"

/// Each controller as a box, joined to the boxes of its heads; heads without a controller are separate.
TMarkup MakeVideoPicture(const TRequestView& view);

/// Each monitor as a box to the scale of its physical size; dashed, and of a size that the label states, when the
/// monitor does not tell it.
TMarkup MakeMonitorsPicture(const TRequestView& view);
