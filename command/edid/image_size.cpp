#include <algorithm>
#include <cmath>
#include <iterator>

#include "command/edid/edid_draft.h"
#include "edid/layout.h"

namespace {

/// Pairs of sides that are an aspect ratio instead of centimetres or millimetres.
constexpr TImageSize kAspectRatios[] = {{16, 9}, {16, 10}, {160, 90}, {160, 100}};

bool IsAspectRatio(const TImageSize& size) {
  const auto isSame = [&](const TImageSize& ratio) { return size.width == ratio.width && size.height == ratio.height; };
  return std::any_of(std::begin(kAspectRatios), std::end(kAspectRatios), isSame);
}

bool IsSize(const TImageSize& size) { return size.width != 0 && size.height != 0; }

/// True if they differ by at most a tenth.
bool IsClose(unsigned int left, unsigned int right) {
  const unsigned int difference = left > right ? left - right : right - left;
  return difference * 10 <= std::max(left, right);
}

bool IsClose(const TImageSize& left, const TImageSize& right) {
  return IsClose(left.width, right.width) && IsClose(left.height, right.height);
}

/// The size in whole centimetres, converted to millimetres.
TImageSize GetWholeCentimetres(const TEdidDraft& draft) {
  constexpr unsigned int millimetres = 10;
  return {draft.centimetres.width * millimetres, draft.centimetres.height * millimetres};
}

std::optional<TImageSize> ChooseSize(const TEdidDraft& draft) {
  if (!IsSize(draft.centimetres) || IsRatioAsSize(draft)) return std::nullopt;
  const TImageSize whole = GetWholeCentimetres(draft);
  const std::optional<TImageSize> preferred = GetPreferredSize(draft);
  if (preferred && IsClose(*preferred, whole)) return preferred;
  if (draft.displayIdSize && IsClose(*draft.displayIdSize, whole)) return draft.displayIdSize;
  return whole;
}

/// If one side is 0, the other one encodes an aspect ratio [3.6.2].
double ReadAspectRatio(const TImageSize& centimetres) {
  const double stored = centimetres.width + centimetres.height + edid::kAspectOffset;
  return centimetres.width != 0 ? stored / edid::kAspectUnit : edid::kAspectUnit / stored;
}

std::optional<double> GetAspectRatio(const TEdidDraft& draft) {
  constexpr unsigned int decimals = 100;
  const TImageSize size = draft.facts.imageSize.value_or(draft.centimetres);
  if (size.width == 0 && size.height == 0) return std::nullopt;
  return RoundTo(IsSize(size) ? static_cast<double>(size.width) / size.height : ReadAspectRatio(size), decimals);
}

}  // namespace

std::optional<TImageSize> GetPreferredSize(const TEdidDraft& draft) {
  const bool isKnown = draft.facts.preferredMode && IsSize(draft.timings.front().size);
  return isKnown ? std::optional<TImageSize>(draft.timings.front().size) : std::nullopt;
}

bool IsRatioAsSize(const TEdidDraft& draft) {
  const TImageSize whole = GetWholeCentimetres(draft);
  const auto confirms = [&](const TImageSize& size) { return IsClose(size, whole); };
  const auto isConfirmed = [&](const TDetailedTiming& timing) { return confirms(timing.size); };
  return IsAspectRatio(draft.centimetres) && std::none_of(draft.timings.begin(), draft.timings.end(), isConfirmed) &&
         !(draft.displayIdSize && confirms(*draft.displayIdSize));
}

bool ContradictsSize(const TEdidDraft& draft, const TImageSize& millimetres) {
  return IsSize(draft.centimetres) && !IsRatioAsSize(draft) && !IsAspectRatio(millimetres) &&
         !IsClose(millimetres, GetWholeCentimetres(draft));
}

void DecideImageSize(TEdidDraft& draft) {
  constexpr double millimetresPerInch = 25.4;
  TEdidFacts& facts = draft.facts;
  facts.imageSize = ChooseSize(draft);
  facts.aspectRatio = GetAspectRatio(draft);
  if (facts.imageSize) {
    facts.diagonalInches = std::hypot(facts.imageSize->width, facts.imageSize->height) / millimetresPerInch;
  }
}
