// Makes the pictures in the page: the controllers with their heads, as boxes, and the monitors to scale, as SVG.
#pragma once

#include "command/report/answer_view.h"
#include "command/report/html/html_markup.h"

/// Each controller as a box that is joined to the boxes of its heads. Heads without a controller are separate.
TMarkup MakeVideoPictures(const TRequestView& view);

/// Each monitor as a box to scale, with its diagonal inside and its name below. The name is a link to `id` followed by
/// the monitor's number, from 1. The box of a monitor of unknown size is dashed, and its label says so.
TMarkup MakeMonitorPictures(const TAnswer& answer, const TRequestView& view, const std::string& id);
