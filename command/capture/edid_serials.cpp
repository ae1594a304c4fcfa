#include "command/capture/edid_serials.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::size_t kBlockSize = 128;    // bytes
constexpr std::size_t kSerialNumber = 12;  // of 4 bytes
constexpr std::size_t kDescriptors[] = {54, 72, 90, 108};
constexpr char kDescriptorOfText[] = {0, 0, 0};  // how the descriptor begins, before its tag
constexpr std::size_t kTag = 3;
constexpr char kSerialTag = '\xFF';
constexpr std::size_t kText = 5;  // of 13 bytes, to the end of the descriptor
constexpr std::size_t kTextSize = 13;
constexpr std::size_t kChecksum = 127;

/// Overwrites a byte; the sum of the block's bytes stays what it was.
void Overwrite(std::string& edid, std::size_t position, char value) {
  edid[kChecksum] = static_cast<char>(edid[kChecksum] + edid[position] - value);
  edid[position] = value;
}

bool HoldsSerial(const std::string& edid, std::size_t descriptor) {
  return std::equal(std::begin(kDescriptorOfText), std::end(kDescriptorOfText),
                    edid.begin() + static_cast<std::ptrdiff_t>(descriptor)) &&
         edid[descriptor + kTag] == kSerialTag;
}

}  // namespace

void BlankSerials(std::string& edid) {
  if (edid.size() < kBlockSize) return;
  for (std::size_t byte = 0; byte < 4; ++byte) Overwrite(edid, kSerialNumber + byte, '\0');
  for (const std::size_t descriptor : kDescriptors) {
    if (!HoldsSerial(edid, descriptor)) continue;
    for (std::size_t byte = 0; byte < kTextSize; ++byte) {
      const std::size_t position = descriptor + kText + byte;
      // A text's end stays, so that it is read as far as before.
      if (edid[position] != '\n' && edid[position] != '\0') Overwrite(edid, position, ' ');
    }
  }
}
