#include "command/report/output_view.h"

#include <algorithm>
#include <cstdio>

#include "command/base/text_encoding.h"

namespace {

std::string WriteFixed(double number, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, number);
  return text;
}

}  // namespace

std::string WriteRefresh(const TMode& mode) { return WriteFixed(mode.refresh, 3); }

std::string WriteDiagonal(double inches) { return WriteFixed(inches, 1); }

const TOutput* FindOutput(const TAnswer& answer, const std::string& id) {
  const auto output = std::find_if(answer.outputs.begin(), answer.outputs.end(), [&](const TOutput& candidate) {
    return !id.empty() && (candidate.deviceId == id || candidate.modesId == id);
  });
  return output == answer.outputs.end() ? nullptr : &*output;
}

std::vector<TOutputRow> DescribeProblems(const TOutput& output) {
  std::vector<TOutputRow> rows;
  if (!output.facts || !output.facts->isVersion1) return rows;
  for (const std::string& sentence : output.facts->contradictions) rows.push_back({"Problem", ToPrintable(sentence)});
  return rows;
}

std::string GetEdidSource(const TAnswer& answer, const TOutput& output) {
  const auto& describe = answer.edidOrigin.describe;
  return describe ? ToPrintable(describe(output.unit)) : std::string();
}

std::vector<std::string> ExplainUnlisted(const TAnswer& answer) {
  std::vector<std::string> sentences;
  for (const TOutput& output : answer.outputs) {
    if (IsUnlisted(output)) sentences.push_back(ExplainUnlisted(output));
  }
  return sentences;
}
