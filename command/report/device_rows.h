// What the text report and the page say of each device: rows of a label and a text, without those that are empty.
#pragma once

#include <vector>

#include "command/collection/collection.h"
#include "command/report/answer_view.h"
#include "command/report/maker_names.h"

std::vector<TOutputRow> DescribeController(const TInstanceView& controller);

std::vector<TOutputRow> DescribeHead(const TInstanceView& head);

/// The model's name, or the part number of a panel without one; empty where neither is known.
std::string NameMonitor(const TAnswer& answer, const TMonitorView& view);
std::string NameMonitor(const TOutput& output);

/// What is known of an output whose monitor the plug-in does not list, with the reason, and without the modes.
std::vector<TOutputRow> DescribeUnlisted(const TAnswer& answer, const TOutput& output, const TMakerNames& makers);

/// How the names of makers are to be had, as a sentence without its full stop; empty where no maker lacks its name.
std::string SuggestMakerNames(const TAnswer& answer, const TMakerNames& makers);

/// What the output's EDID says, without the modes.
std::vector<TOutputRow> DescribeEdid(const TOutput& output);

/// Everything except the modes. Of a monitor that the request did not ask for, only the mode that it prefers.
std::vector<TOutputRow> DescribeMonitor(const TAnswer& answer, const TMonitorView& view, const TMakerNames& makers);
