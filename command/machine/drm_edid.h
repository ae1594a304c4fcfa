// The EDID that the kernel shows of an output.
#pragma once

#include <sys/types.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

/// One of both is empty, or both are: a driver may have no EDID of an output.
struct TDrmEdid {
  std::vector<std::uint8_t> bytes;  // whole 128-byte blocks
  std::string fault;                // why it cannot be read, such as "cannot be read: No such device"
};

/// Reads as pread() does: into `buffer`, at most `size` bytes from `offset` on; -1, with errno set, when it fails.
typedef std::function<ssize_t(void* buffer, std::size_t size, off_t offset)> TReadAt;

/// The kernel shows an EDID in one read, up to a page of it, and may replace it between two. So it is read again when
/// it has not as many blocks as it says, a few times: there are monitors that never say so rightly.
TDrmEdid ReadDrmEdid(const TReadAt& readAt);

/// `file`: such as /sys/class/drm/card0-DP-1/edid.
TDrmEdid ReadDrmEdid(const std::filesystem::path& file);
