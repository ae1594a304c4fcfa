// What the driver of a graphics card knows beyond what it shows in files: asked of its device, by libdrm, which the
// command can do without.
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

struct TDrmMode {
  unsigned int width;                 // pixels
  unsigned int height;                // lines
  std::optional<unsigned int> depth;  // bits of colour in a pixel
};

/// By the connector's name without its card, such as "DP-1".
struct TDrmDevice {
  std::map<std::string, TDrmMode> modes;     // that are set now, of the connectors that are switched on
  std::map<std::string, std::string> ports;  // of the connectors that MakePortName has a name for
  std::string fault;                         // why it cannot be asked, and the cure; empty when it was
};

/// `device`: such as /dev/dri/card0. The kernel makes the first process that opens it the one that sets modes (DRM
/// master); this one gives that up at once. When the last process closes it, the kernel switches the outputs on that
/// are off or asleep: ask only the device of a card that is on. Throws TUnusable when the device or libdrm cannot be
/// opened for a reason that says nothing of them, such as too many open files.
TDrmDevice ReadDrmDevice(const std::filesystem::path& device);

/// Where an output of DisplayPort's multi-stream transport is: the connector that leads there and the ports from there
/// on, such as "DP-1-1-8" for the property "mst:85-1-8" when connector 85 is DP-1. Empty for any other property.
/// `property`: the connector's PATH. `connectors`: the names by their numbers.
std::string MakePortName(const std::string& property, const std::map<std::uint32_t, std::string>& connectors);
