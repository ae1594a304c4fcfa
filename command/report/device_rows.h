// Describes each device for the text report and the page: rows of a label and a text. Empty rows are left out.
#pragma once

#include <vector>

#include "command/collection/collection.h"
#include "command/report/answer_view.h"
#include "command/report/maker_names.h"

std::vector<TOutputRow> DescribeController(const TInstanceView& controller);

std::vector<TOutputRow> DescribeHead(const TInstanceView& head);

/// The model's name, or the part number of a panel without a name; empty if neither is known.
std::string NameMonitor(const TAnswer& answer, const TMonitorView& view);
std::string NameMonitor(const TOutput& output);

/// Everything except the modes of an output whose monitor the plug-in does not list, with the reason.
std::vector<TOutputRow> DescribeUnlisted(const TAnswer& answer, const TOutput& output, const TMakerNames& makers);

/// A sentence without its full stop that says how to get the names of makers; empty if no name is missing.
std::string SuggestMakerNames(const TAnswer& answer, const TMakerNames& makers);

/// What the output's EDID says, except the modes.
std::vector<TOutputRow> DescribeEdid(const TOutput& output);

/// Everything except the modes; only the preferred mode if the request did not ask for monitors.
std::vector<TOutputRow> DescribeMonitor(const TAnswer& answer, const TMonitorView& view, const TMakerNames& makers);
