#include "command/report/mode_order.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <tuple>

#include "command/report/monitor_facts.h"

namespace {

auto GetOrder(const TShownMode& mode) {
  const std::uint64_t pixels = std::uint64_t{mode.width} * mode.height;
  return std::tuple(pixels, mode.width, !mode.isInterlaced, mode.refresh);
}

/// `tolerance`: how much the rates may differ, in Hz.
bool IsPreferred(const TOutput* output, const TShownMode& mode, double tolerance) {
  if (output == nullptr || !output->facts || !output->facts->preferredMode) return false;
  const TEdidMode& preferred = *output->facts->preferredMode;
  return preferred.width == mode.width && preferred.height == mode.height &&
         preferred.isInterlaced == mode.isInterlaced && std::abs(preferred.refresh - mode.refresh) <= tolerance;
}

/// True if the modes of the EDID already have that mode of the answer.
bool IsShown(const std::vector<TShownMode>& modes, const TShownMode& resolution) {
  return std::any_of(modes.begin(), modes.end(), [&](const TShownMode& mode) {
    return mode.width == resolution.width && mode.height == resolution.height &&
           std::lround(mode.refresh) == std::lround(resolution.refresh);
  });
}

}  // namespace

std::vector<TShownMode> ListModes(const TInstances& resolutions, const TOutput* output) {
  constexpr double exactly = 0.0005;  // Hz: rates have three decimals
  constexpr double rounded = 0.5;     // Hz
  std::vector<TShownMode> modes;
  if (output != nullptr && output->facts) {
    for (const TEdidMode& mode : output->facts->modes) {
      modes.push_back({mode.width, mode.height, mode.refresh, mode.isInterlaced, IsInClasses(*output, mode), false});
      modes.back().isPreferred = IsPreferred(output, modes.back(), exactly);
    }
  }
  for (const TInstanceView& resolution : resolutions) {
    TShownMode mode = {resolution.Number("HorizontalResolution"),
                       resolution.Number("VerticalResolution"),
                       static_cast<double>(resolution.Number("RefreshRate")),
                       false,
                       true,
                       false};
    mode.isPreferred = IsPreferred(output, mode, rounded);
    if (!IsShown(modes, mode)) modes.push_back(mode);
  }
  std::stable_sort(modes.begin(), modes.end(),
                   [](const TShownMode& left, const TShownMode& right) { return GetOrder(left) > GetOrder(right); });
  return modes;
}

std::string WriteMode(const TShownMode& mode) {
  return std::to_string(mode.width) + "x" + std::to_string(mode.height) + "@" + WriteRate(mode) + "Hz";
}

std::string WriteRate(const TShownMode& mode) { return WriteNumber(mode.refresh) + (mode.isInterlaced ? "i" : ""); }

bool AreAllInClasses(const std::vector<TShownMode>& modes) {
  return std::all_of(modes.begin(), modes.end(), [](const TShownMode& mode) { return mode.isInClasses; });
}
