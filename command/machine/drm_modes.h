// The modes that a graphics card is set to now, asked of its driver (libdrm, which the command can do without).
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>

struct TDrmMode {
  unsigned int width;                 // pixels
  unsigned int height;                // lines
  std::optional<unsigned int> depth;  // bits of colour in a pixel
};

/// True when libdrm can be used.
bool CanReadDrmModes();

/// By the connector's name without its card, such as "DP-1", of those that are switched on. Empty when libdrm is
/// missing or the device cannot be opened. `device`: such as /dev/dri/card0.
std::map<std::string, TDrmMode> ReadDrmModes(const std::filesystem::path& device);
