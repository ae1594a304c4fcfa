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

/// Another output of the same model that has no serial number either.
const TOutput* FindTwin(const TAnswer& answer, const TOutput& output) {
  const auto isTwin = [&](const TOutput& other) {
    return other.unit != output.unit && other.facts && other.facts->isVersion1 && !other.facts->serialNumber &&
           other.facts->manufacturer == output.facts->manufacturer &&
           other.facts->productCode == output.facts->productCode;
  };
  const auto twin = std::find_if(answer.outputs.begin(), answer.outputs.end(), isTwin);
  return twin == answer.outputs.end() ? nullptr : &*twin;
}

std::string DescribeSerialNumber(const TAnswer& answer, const TOutput& output) {
  if (output.facts->serialNumber) return std::to_string(*output.facts->serialNumber);
  const TOutput* const twin = FindTwin(answer, output);
  return twin == nullptr ? "" : "none; " + GetName(*twin) + " is of the same model and has none either";
}

}  // namespace

std::string WriteRefresh(const TMode& mode) { return WriteFixed(mode.refresh, 3); }

std::string WriteDiagonal(double inches) { return WriteFixed(inches, 1); }

const TOutput* FindOutput(const TAnswer& answer, const std::string& deviceId) {
  const auto output = std::find_if(answer.outputs.begin(), answer.outputs.end(),
                                   [&](const TOutput& candidate) { return candidate.deviceId == deviceId; });
  return output == answer.outputs.end() ? nullptr : &*output;
}

std::vector<TOutputRow> DescribeHeader(const TAnswer& answer, const TOutput& output) {
  std::vector<TOutputRow> rows;
  if (!output.facts || !output.facts->isVersion1) return rows;
  const std::string serialNumber = DescribeSerialNumber(answer, output);
  if (!serialNumber.empty()) rows.push_back({"Serial in header", serialNumber});
  if (!output.facts->hasValidChecksums) rows.push_back({"EDID checksums", "wrong: a byte is damaged"});
  return rows;
}

std::vector<std::string> ExplainUnlisted(const TAnswer& answer) {
  std::vector<std::string> sentences;
  for (const TOutput& output : answer.outputs) {
    if (!output.deviceId) sentences.push_back(ExplainUnlisted(output));
  }
  return sentences;
}
