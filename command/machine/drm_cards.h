// The graphics cards and their outputs, as the kernel's drivers (DRM) show them below /sys/class/drm. Reading them
// needs no privilege.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Where a card is on the PCI bus, and what it is.
struct TPciDevice {
  unsigned int domain, bus, device, function;
  std::uint16_t vendorId, deviceId;
};

/// An output with something connected to it.
struct TDrmOutput {
  std::string connector;           // such as "card0-DP-1"
  std::vector<std::uint8_t> edid;  // whole 128-byte blocks; empty when the driver has none
};

struct TDrmCard {
  std::string name;                          // such as "card0"
  std::optional<TPciDevice> pci;             // of a card on the PCI bus
  std::optional<std::uint64_t> videoMemory;  // kilobytes, if the driver shows it
  std::vector<TDrmOutput> outputs;           // in the order of their names, numbers counting as numbers
};

/// Every card, in the order of their names. `folder`: /sys/class/drm, which need not exist.
std::vector<TDrmCard> ReadDrmCards(const std::filesystem::path& folder);
