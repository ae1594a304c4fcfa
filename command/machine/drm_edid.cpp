#include "command/machine/drm_edid.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "command/base/descriptor.h"
#include "command/base/system_failure.h"
#include "edid/layout.h"

namespace {

constexpr std::size_t kPage = 4096;      // bytes: as much as the kernel gives at once
constexpr std::size_t kMaxBlocks = 256;  // a base block and as many as its count byte can say
constexpr int kMaxAttempts = 5;

TDrmEdid Fail() { return {{}, std::string("cannot be read: ") + std::strerror(errno)}; }

TDrmEdid ReadOnce(const TReadAt& readAt) {
  TDrmEdid edid;
  edid.bytes.resize(kMaxBlocks * edid::kBlockSize);
  std::size_t size = 0;
  while (size < edid.bytes.size()) {
    const ssize_t count = readAt(&edid.bytes[size], edid.bytes.size() - size, static_cast<off_t>(size));
    if (count < 0) return Fail();
    size += static_cast<std::size_t>(count);
    if (count == 0 || size % kPage != 0) break;
  }
  edid.bytes.resize(size / edid::kBlockSize * edid::kBlockSize);
  return edid;
}

bool HasItsBlocks(const std::vector<std::uint8_t>& bytes) {
  return bytes.empty() || bytes.size() == (1U + bytes[edid::kExtensionCount]) * edid::kBlockSize;
}

}  // namespace

TDrmEdid ReadDrmEdid(const TReadAt& readAt) {
  TDrmEdid edid = ReadOnce(readAt);
  for (int attempt = 1; attempt < kMaxAttempts && !HasItsBlocks(edid.bytes); ++attempt) edid = ReadOnce(readAt);
  return edid;
}

TDrmEdid ReadDrmEdid(const std::filesystem::path& file) {
  const TDescriptor descriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  if (!descriptor.IsOpen() && !DescribesFile(errno)) FailToRead(file.string(), errno);
  if (!descriptor.IsOpen()) return Fail();
  return ReadDrmEdid(
      [&](void* buffer, std::size_t size, off_t offset) { return pread(descriptor.Get(), buffer, size, offset); });
}
