#include "command/edid/mode_list.h"

#include <algorithm>

namespace {

constexpr std::size_t kUsualCount = 64;
constexpr double kDecimals = 1000;

// A mode's place in the order, in two numbers that compare faster than five: its pixels, width and whether it is
// progressive; its rate in thousandths of a hertz and its source, the best last.
constexpr unsigned int kWidthBits = 17;
constexpr unsigned int kSourceBits = 3;
constexpr std::uint64_t kLastSource = (1U << kSourceBits) - 1;

std::uint64_t GetSizeKey(const TMode& mode) {
  const std::uint64_t pixels = std::uint64_t{mode.width} * mode.height;
  return (pixels << kWidthBits | mode.width) << 1 | (mode.isInterlaced ? 0U : 1U);
}

std::uint64_t GetRateKey(const TMode& mode, EModeSource source) {
  const auto rate = static_cast<std::uint64_t>(mode.refresh * kDecimals + 0.5);
  return rate << kSourceBits | (kLastSource - static_cast<unsigned int>(source));
}

EYcbcr420 Describe(unsigned int samplings) {
  constexpr EYcbcr420 descriptions[] = {EYcbcr420::No, EYcbcr420::No, EYcbcr420::Only, EYcbcr420::Also};
  return descriptions[samplings];
}

}  // namespace

TModeList::TModeList() { m_entries.reserve(kUsualCount); }

void TModeList::Add(const TMode& mode, EModeSource source, ESampling sampling) {
  if (mode.width == 0 || mode.height == 0 || mode.refresh == 0) return;
  m_entries.push_back({GetSizeKey(mode), GetRateKey(mode, source), mode.height, static_cast<unsigned int>(sampling)});
}

void TModeList::Add(const edid::TTiming* timing, EModeSource source, ESampling sampling) {
  if (timing != nullptr) Add(::MakeMode(*timing), source, sampling);
}

TMode TModeList::MakeMode(const TEntry& entry) {
  const auto width = static_cast<unsigned int>(entry.sizeKey >> 1 & ((1U << kWidthBits) - 1));
  const double refresh = static_cast<double>(entry.rateKey >> kSourceBits) / kDecimals;
  return {width, entry.height, refresh, (entry.sizeKey & 1U) == 0};
}

std::vector<TListedMode> TModeList::Take() {
  std::sort(m_entries.begin(), m_entries.end(), [](const TEntry& left, const TEntry& right) {
    return left.sizeKey != right.sizeKey ? left.sizeKey > right.sizeKey : left.rateKey > right.rateKey;
  });
  std::vector<TListedMode> modes;
  modes.reserve(m_entries.size());
  for (auto entry = m_entries.begin(); entry != m_entries.end();) {
    const auto first = entry;
    const auto isSame = [&] {
      return entry->sizeKey == first->sizeKey && entry->rateKey >> kSourceBits == first->rateKey >> kSourceBits;
    };
    unsigned int samplings = 0;
    for (; entry != m_entries.end() && isSame(); ++entry) samplings |= entry->samplings;
    const auto source = static_cast<EModeSource>(kLastSource - (first->rateKey & kLastSource));
    modes.push_back({MakeMode(*first), source, Describe(samplings)});
  }
  m_entries.clear();
  return modes;
}

TMode MakeMode(unsigned int width, unsigned int height, double clock, double totalWidth, double fieldLines,
               bool isInterlaced) {
  constexpr double hertz = 1000;  // of a kilohertz
  const double total = totalWidth * fieldLines;
  const double rate = total > 0 ? clock * hertz / total : 0;
  return {width, height, static_cast<double>(static_cast<std::uint64_t>(rate * kDecimals + 0.5)) / kDecimals,
          isInterlaced};
}

TMode MakeMode(const edid::TTiming& timing) {
  const double fieldLines = timing.isInterlaced ? timing.totalHeight / 2.0 : timing.totalHeight;
  return MakeMode(timing.width, timing.height, timing.clock, timing.totalWidth, fieldLines, timing.isInterlaced);
}
