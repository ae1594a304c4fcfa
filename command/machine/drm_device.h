// Asks the device of a graphics card, by libdrm, for what the driver does not show in files. libdrm need not be
// installed.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

struct TDrmMode {
  unsigned int width;                 // pixels
  unsigned int height;                // lines
  std::optional<unsigned int> depth;  // bits of colour per pixel
};

/// What a card's device tells. Connectors are named without their card: "DP-1".
struct TDrmDevice {
  std::map<std::string, TDrmMode> modes;     // the modes that are set now, by connector
  std::map<std::string, std::string> ports;  // the result of MakePortName, by connector; without empty ones
  std::string fault;                         // why it cannot be asked, and the cure; empty if it was
};

/// `device`: such as /dev/dri/card0. Ask only the device of a card that is on: when the last process closes a device,
/// the kernel switches on the outputs that are off or asleep. The kernel also makes the first process that opens a
/// device its DRM master, which sets modes; this function gives that up at once. Throws TUnusable if the device or
/// libdrm cannot be opened for a reason that tells nothing about them, such as too many open files.
TDrmDevice ReadDrmDevice(const std::filesystem::path& device);

/// Where an output of DisplayPort's multi-stream transport is: the card's connector and the ports after it, such as
/// "DP-1-1-8" for the property "mst:85-1-8" if connector 85 is DP-1. Empty for any other property. `property`: the
/// connector's PATH. `connectors`: names by number.
std::string MakePortName(const std::string& property, const std::map<std::uint32_t, std::string>& connectors);
