#include <algorithm>
#include <numeric>

#include "command/base/text_encoding.h"
#include "command/edid/edid_draft.h"

namespace {

typedef std::vector<std::string> TSentences;

std::string WriteSize(const TImageSize& size, const char* unit) {
  return std::to_string(size.width) + " x " + std::to_string(size.height) + unit;
}

std::string WriteCount(std::size_t count) {
  if (count == 0) return "no extension block";
  return std::to_string(count) + (count == 1 ? " extension block" : " extension blocks");
}

void CheckChecksums(TBytes edid, std::size_t extensions, TSentences& sentences) {
  for (std::size_t number = 0; number <= extensions; ++number) {
    if (HasValidChecksum(GetBlock(edid, number))) continue;
    sentences.push_back("Block " + std::to_string(number) + " has a wrong checksum.");
  }
}

void CheckExtensions(TBytes edid, const TEdidDraft& draft, TSentences& sentences) {
  if (draft.declaredExtensions != draft.facts.extensions) {
    sentences.push_back("It declares " + WriteCount(draft.declaredExtensions) + " but has " +
                        WriteCount(draft.facts.extensions) + ".");
  }
  const TBytes base = GetBlock(edid, 0);
  for (std::size_t number = 1; number <= draft.facts.extensions; ++number) {
    const TBytes block = GetBlock(edid, number);
    if (!HasHeader(block)) continue;
    const bool isCopy = std::equal(base.begin(), base.end(), block.begin());
    const char* const verdict = isCopy ? " repeats the base block." : " is the base block of another EDID.";
    sentences.push_back("Block " + std::to_string(number) + verdict);
  }
}

void CheckProduct(const TEdidDraft& draft, TSentences& sentences) {
  const TEdidFacts& facts = draft.facts;
  if (!draft.displayIdProduct) return;
  const auto isLetter = [](char letter) { return letter >= 'A' && letter <= 'Z'; };
  const auto& [maker, productCode] = *draft.displayIdProduct;
  if (!std::all_of(maker.begin(), maker.end(), isLetter)) return;
  if (maker == facts.maker && productCode == facts.productCode) return;
  sentences.push_back("Its DisplayID extension is about " + maker + " " + std::to_string(productCode) +
                      ", its base block about " + facts.maker + " " + std::to_string(facts.productCode) + ".");
}

void CheckImageSize(const TEdidDraft& draft, TSentences& sentences) {
  if (IsRatioAsSize(draft)) {
    sentences.push_back("Its image size of " + WriteSize(draft.centimetres, " cm") + " is an aspect ratio.");
  }
  const std::optional<TImageSize> preferred = GetPreferredSize(draft);
  if (preferred && ContradictsSize(draft, *preferred)) {
    sentences.push_back("Its image is " + WriteSize(draft.centimetres, " cm") + ", but " +
                        WriteSize(*preferred, " mm") + " in its preferred timing.");
  }
}

/// Limits are whole numbers, so a rate may exceed them by less than one. Panels give one rate as both limits, and are
/// also driven more slowly.
bool IsWithin(double rate, const TRates& limits) {
  return rate < limits.max + 1.0 && (rate > limits.min - 1.0 || limits.min >= limits.max);
}

void CheckRate(double rate, const TRates& limits, const char* unit, TSentences& sentences) {
  if (limits.max == 0 || IsWithin(rate, limits)) return;
  sentences.push_back("Its preferred mode needs " + WriteFixed(rate, 3) + unit + ", but its limits are " +
                      std::to_string(limits.min) + " to " + std::to_string(limits.max) + unit + ".");
}

void CheckLimits(const TEdidDraft& draft, TSentences& sentences) {
  constexpr double kilohertz = 1000;  // per megahertz
  if (!draft.facts.preferredMode || !draft.facts.limits) return;
  const TDetailedTiming& preferred = draft.timings.front();
  const TRangeLimits& limits = *draft.facts.limits;
  CheckRate(preferred.mode.refresh, limits.fields, " Hz", sentences);
  CheckRate(preferred.lineRate, limits.lines, " kHz", sentences);
  if (limits.pixelClock && preferred.clock > *limits.pixelClock * kilohertz) {
    sentences.push_back("Its preferred mode needs a pixel clock of " + WriteFixed(preferred.clock / kilohertz, 3) +
                        " MHz, but its limit is " + std::to_string(*limits.pixelClock) + " MHz.");
  }
}

}  // namespace

bool HasValidChecksum(TBytes block) { return std::accumulate(block.begin(), block.end(), 0U) % 256 == 0; }

std::vector<std::string> FindContradictions(TBytes edid, const TEdidDraft& draft) {
  TSentences sentences;
  if (!draft.facts.hasValidChecksums) CheckChecksums(edid, draft.facts.extensions, sentences);
  CheckExtensions(edid, draft, sentences);
  CheckProduct(draft, sentences);
  CheckImageSize(draft, sentences);
  CheckLimits(draft, sentences);
  return sentences;
}
