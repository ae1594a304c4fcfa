// An output as people read it.
#pragma once

#include <string>
#include <vector>

#include "command/collection/collection.h"

/// What is known of an output: a label and its text.
struct TOutputRow {
  const char* label;
  std::string text;
};

/// The output whose monitor, or whose modes, the answer has under that id; or null.
const TOutput* FindOutput(const TAnswer& answer, const std::string& id);

/// A row for each thing that is wrong with the output's EDID.
std::vector<TOutputRow> DescribeProblems(const TOutput& output);

/// A sentence for each output that the plug-in does not report, which names it and says why.
std::vector<std::string> ExplainUnlisted(const TAnswer& answer);

/// Where the output's EDID was read from, as printable text; empty when that is not known.
std::string GetEdidSource(const TAnswer& answer, const TOutput& output);

/// The same numbers as JSON has them: Hz with three decimals, inches with one.
std::string WriteRefresh(const TMode& mode);
std::string WriteDiagonal(double inches);
