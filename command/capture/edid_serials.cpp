#include "command/capture/edid_serials.h"

#include <algorithm>
#include <cstddef>

#include "edid/layout.h"

namespace {

/// Overwrites a byte; the sum of the block's bytes stays what it was.
void Overwrite(std::string& edid, std::size_t position, char value) {
  edid[edid::kChecksum] = static_cast<char>(edid[edid::kChecksum] + edid[position] - value);
  edid[position] = value;
}

/// Whether a slot is a display descriptor, which begins with zeros, and one of a serial number.
bool HoldsSerial(const std::string& edid, std::size_t slot) {
  const auto begin = edid.begin() + static_cast<std::ptrdiff_t>(slot);
  return std::all_of(begin, begin + edid::kDescriptorTag, [](char byte) { return byte == 0; }) &&
         static_cast<unsigned char>(edid[slot + edid::kDescriptorTag]) == edid::kTagSerialNumber;
}

}  // namespace

void BlankSerials(std::string& edid) {
  if (edid.size() < edid::kBlockSize) return;
  for (std::size_t byte = 0; byte < edid::kSerialNumberSize; ++byte) Overwrite(edid, edid::kSerialNumber + byte, '\0');
  for (const std::size_t descriptor : edid::kDescriptors) {
    if (!HoldsSerial(edid, descriptor)) continue;
    for (std::size_t byte = 0; byte < edid::kDescriptorTextSize; ++byte) {
      const std::size_t position = descriptor + edid::kDescriptorText + byte;
      // The byte that ends a text stays, so that the text keeps its length.
      if (edid[position] != '\n' && edid[position] != '\0') Overwrite(edid, position, ' ');
    }
  }
}
