// Pictures of a machine in the page: its controllers with their heads, as boxes, and its monitors to scale, as SVG.
#pragma once

#include "command/report/answer_view.h"
#include "command/report/html/html_markup.h"

/// Each controller as a box, joined to the boxes of its heads; heads without a controller are separate.
TMarkup MakeVideoPictures(const TRequestView& view);

/// Each monitor as a box to the scale of its physical size, with its diagonal in it and its name below as a link to
/// `id` and its number, from 1; dashed, and of a size that the label states, when the monitor does not tell it.
TMarkup MakeMonitorPictures(const TAnswer& answer, const TRequestView& view, const std::string& id);
