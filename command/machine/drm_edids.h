// The EDIDs that the kernel's graphics drivers (DRM) have read of the connected outputs. Reading them needs no
// privilege.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

struct TDrmEdid {
  std::string connector;            // such as "card0-DP-1"
  std::vector<std::uint8_t> bytes;  // whole 128-byte blocks, at least one
};

/// Those of the outputs that are connected and have one, in the order of the cards and of their connectors' names,
/// numbers counting as numbers. `folder`: /sys/class/drm, which need not exist.
std::vector<TDrmEdid> ReadDrmEdids(const std::filesystem::path& folder);
