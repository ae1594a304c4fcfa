#include "command/edid/mode_list.h"

#include <algorithm>

namespace {

constexpr std::size_t kUsualCount = 64;
constexpr double kDecimals = 1000;

// TEntry::rate has the sampling in its lowest bits, the source above it, and the rate above that.
constexpr unsigned int kSamplingBits = 3;
constexpr unsigned int kSourceShift = 2;
constexpr unsigned int kSourceBits = 7;
constexpr unsigned int kRateShift = 5;

/// The largest mode, 65,536 x 65,536, has one pixel more than 32 bits can hold.
std::uint32_t CountPixels(unsigned int width, unsigned int height) {
  const std::uint64_t pixels = std::uint64_t{width} * height;
  return pixels >> 32 != 0 ? 0xFFFFFFFF : static_cast<std::uint32_t>(pixels);
}

/// The nearest number of thousandths of a rate.
std::uint64_t RoundToThousandths(double rate) {
  // NOLINTNEXTLINE(bugprone-incorrect-roundings): rates are positive, and std::llround is a call for each mode
  return static_cast<std::uint64_t>(rate * kDecimals + 0.5);
}

EYcbcr420 Describe(std::uint64_t samplings) {
  constexpr EYcbcr420 descriptions[] = {EYcbcr420::No, EYcbcr420::No, EYcbcr420::Only, EYcbcr420::Also};
  return descriptions[samplings];
}

}  // namespace

TModeList::TModeList() { m_entries.reserve(kUsualCount); }

void TModeList::Add(const TEdidMode& mode, EModeSource source, ESampling sampling) {
  if (mode.width == 0 || mode.height == 0 || mode.refresh == 0) return;
  Add(mode.width, mode.height, mode.isInterlaced, RoundToThousandths(mode.refresh), source, sampling);
}

void TModeList::Add(const edid::TTiming* timing, EModeSource source, ESampling sampling) {
  if (timing == nullptr) return;
  Add(timing->width, timing->height, timing->isInterlaced, timing->refresh, source, sampling);
}

void TModeList::Add(unsigned int width, unsigned int height, bool isInterlaced, std::uint64_t rate, EModeSource source,
                    ESampling sampling) {
  m_entries.push_back({CountPixels(width, height), width << 1 | (isInterlaced ? 0U : 1U),
                       rate << kRateShift | (kSourceBits - static_cast<unsigned int>(source)) << kSourceShift |
                           static_cast<unsigned int>(sampling),
                       height});
}

bool TModeList::TEntry::IsSameMode(const TEntry& other) const {
  return pixels == other.pixels && shape == other.shape && rate >> kRateShift == other.rate >> kRateShift;
}

bool TModeList::TEntry::ComesBefore(const TEntry& other) const {
  if (pixels != other.pixels) return pixels > other.pixels;
  return shape != other.shape ? shape > other.shape : rate > other.rate;
}

TEdidMode TModeList::TEntry::MakeMode() const {
  return {shape >> 1, height, static_cast<double>(rate >> kRateShift) / kDecimals, (shape & 1U) == 0};
}

std::vector<TListedMode> TModeList::Take() {
  std::sort(m_entries.begin(), m_entries.end(),
            [](const TEntry& left, const TEntry& right) { return left.ComesBefore(right); });
  std::vector<TListedMode> modes;
  modes.reserve(m_entries.size());
  for (auto entry = m_entries.begin(); entry != m_entries.end();) {
    const auto first = entry;
    std::uint64_t samplings = 0;
    for (; entry != m_entries.end() && entry->IsSameMode(*first); ++entry) samplings |= entry->rate & kSamplingBits;
    const auto source = static_cast<EModeSource>(kSourceBits - (first->rate >> kSourceShift & kSourceBits));
    modes.push_back({first->MakeMode(), source, Describe(samplings)});
  }
  m_entries.clear();
  return modes;
}

TEdidMode MakeMode(unsigned int width, unsigned int height, double clock, double totalWidth, double fieldLines,
                   bool isInterlaced) {
  constexpr double hertz = 1000;  // per kilohertz
  const double total = totalWidth * fieldLines;
  const double rate = total > 0 ? clock * hertz / total : 0;
  return {width, height, static_cast<double>(RoundToThousandths(rate)) / kDecimals, isInterlaced};
}
