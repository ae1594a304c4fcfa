#include "command/report/mode_order.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <tuple>

namespace {

auto GetOrder(const TInstanceView& mode) {
  const unsigned int width = mode.Number("HorizontalResolution");
  const std::uint64_t pixels = std::uint64_t{width} * mode.Number("VerticalResolution");
  return std::tuple(pixels, width, mode.Number("RefreshRate"));
}

}  // namespace

TInstances SortModes(TInstances modes) {
  std::stable_sort(modes.begin(), modes.end(), [](const TInstanceView& left, const TInstanceView& right) {
    return GetOrder(left) > GetOrder(right);
  });
  const auto areSame = [](const TInstanceView& left, const TInstanceView& right) {
    return GetOrder(left) == GetOrder(right);
  };
  modes.erase(std::unique(modes.begin(), modes.end(), areSame), modes.end());
  return modes;
}

bool IsPreferred(const TInstanceView& mode, const TOutput* output) {
  if (output == nullptr || !output->facts || !output->facts->preferredMode) return false;
  const TMode& preferred = *output->facts->preferredMode;
  return mode.Number("HorizontalResolution") == preferred.width &&
         mode.Number("VerticalResolution") == preferred.height &&
         std::lround(preferred.refresh) == static_cast<long>(mode.Number("RefreshRate"));
}
