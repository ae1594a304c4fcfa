// What the text report and the page say of each device: rows of a label and a text, without those that are empty.
#pragma once

#include <vector>

#include "command/collection/collection.h"
#include "command/machine/maker_names.h"
#include "command/report/output_view.h"
#include "command/report/request_view.h"

std::vector<TOutputRow> DescribeController(const TInstanceView& controller);

std::vector<TOutputRow> DescribeHead(const TInstanceView& head);

/// All but the modes. Of a monitor that the request did not ask for, only the mode that it prefers.
std::vector<TOutputRow> DescribeMonitor(const TAnswer& answer, const TMonitorView& view, const TMakerNames& makers);
