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

std::string WriteMode(const TPreferredMode& mode) {
  return std::to_string(mode.width) + " x " + std::to_string(mode.height) + " at " + WriteRefresh(mode) + " Hz";
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

std::vector<TOutputRow> DropEmpty(std::vector<TOutputRow> rows) {
  rows.erase(std::remove_if(rows.begin(), rows.end(), [](const TOutputRow& row) { return row.text.empty(); }),
             rows.end());
  return rows;
}

}  // namespace

std::string WriteRefresh(const TPreferredMode& mode) { return WriteFixed(mode.refresh, 3); }

std::string WriteDiagonal(double inches) { return WriteFixed(inches, 1); }

const TOutput* FindOutput(const TAnswer& answer, const std::string& deviceId) {
  const auto output = std::find_if(answer.outputs.begin(), answer.outputs.end(),
                                   [&](const TOutput& candidate) { return candidate.deviceId == deviceId; });
  return output == answer.outputs.end() ? nullptr : &*output;
}

std::vector<TOutputRow> DescribeOutput(const TAnswer& answer, const TOutput& output) {
  if (!output.facts || !output.facts->isVersion1) return {};
  const TEdidFacts& facts = *output.facts;
  std::vector<TOutputRow> rows = DropEmpty({
      {"Preferred mode", facts.preferredMode ? WriteMode(*facts.preferredMode) : ""},
      {"Diagonal", facts.diagonalInches ? WriteDiagonal(*facts.diagonalInches) + " inches" : ""},
      {"Product code", std::to_string(facts.productCode)},
  });
  for (const TOutputRow& row : DescribeHeader(answer, output)) rows.push_back(row);
  return rows;
}

std::vector<TOutputRow> DescribeHeader(const TAnswer& answer, const TOutput& output) {
  if (!output.facts || !output.facts->isVersion1) return {};
  return DropEmpty({
      {"Serial in header", DescribeSerialNumber(answer, output)},
      {"EDID checksums", output.facts->hasValidChecksums ? "" : "wrong: a byte is damaged"},
  });
}

std::vector<std::string> ExplainUnlisted(const TAnswer& answer) {
  std::vector<std::string> sentences;
  for (const TOutput& output : answer.outputs) {
    if (!output.deviceId) sentences.push_back(ExplainUnlisted(output));
  }
  return sentences;
}
