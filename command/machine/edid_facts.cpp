#include "command/machine/edid_facts.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "edid/layout.h"

namespace {

typedef std::vector<std::uint8_t> TBytes;

/// The number in `size` bytes, the lowest first.
std::uint32_t ReadNumber(const TBytes& edid, std::size_t offset, std::size_t size) {
  std::uint32_t number = 0;
  for (std::size_t index = size; index-- > 0;) number = number << 8 | edid[offset + index];
  return number;
}

bool HasValidChecksums(const TBytes& edid) {
  for (auto block = edid.begin(); block != edid.end(); block += edid::kBlockSize) {
    if (std::accumulate(block, block + edid::kBlockSize, 0U) % 256 != 0) return false;
  }
  return true;
}

std::string ReadName(const TBytes& edid) {
  for (const std::size_t slot : edid::kDescriptors) {
    if (ReadNumber(edid, slot, 3) != 0 || edid[slot + edid::kDescriptorTag] != edid::kTagName) continue;
    const auto begin = edid.begin() + static_cast<std::ptrdiff_t>(slot + edid::kDescriptorText);
    const auto isEnd = [](std::uint8_t byte) { return byte == '\n' || byte == 0; };
    std::string name(begin, std::find_if(begin, begin + edid::kDescriptorTextSize, isEnd));
    return name.erase(name.find_last_not_of(' ') + 1);
  }
  return std::string();
}

std::optional<std::uint32_t> ReadSerialNumber(const TBytes& edid) {
  constexpr std::uint32_t filler = 0x01010101;
  const std::uint32_t number = ReadNumber(edid, edid::kSerialNumber, edid::kSerialNumberSize);
  if (number == 0 || number == filler) return std::nullopt;
  return number;
}

/// A detailed timing's numbers of 12 bits, by where their bytes are.
unsigned int ReadActive(const std::uint8_t* timing, std::size_t low, std::size_t high) {
  return timing[low] | (timing[high] & 0xF0U) << 4;
}

unsigned int ReadBlank(const std::uint8_t* timing, std::size_t low, std::size_t high) {
  return timing[low] | (timing[high] & 0x0FU) << 8;
}

std::optional<TPreferredMode> ReadPreferredMode(const TBytes& edid) {
  constexpr double hertzPerUnit = 10000;
  const std::uint8_t* const timing = edid.data() + edid::kDescriptors[0];
  const std::uint32_t clock = ReadNumber(edid, edid::kDescriptors[0] + edid::kPixelClock, 2);
  const unsigned int width = ReadActive(timing, edid::kActiveWidth, edid::kWidthHighBits);
  const unsigned int height = ReadActive(timing, edid::kActiveHeight, edid::kHeightHighBits);
  if (clock == 0 || width == 0 || height == 0) return std::nullopt;
  const unsigned int columns = width + ReadBlank(timing, edid::kBlankWidth, edid::kWidthHighBits);
  const unsigned int lines = height + ReadBlank(timing, edid::kBlankHeight, edid::kHeightHighBits);
  const bool isInterlaced = (timing[edid::kTimingFlags] & edid::kInterlaced) != 0;
  // Two fields share a line between them.
  const double linesOfField = isInterlaced ? lines + 0.5 : lines;
  return TPreferredMode{width, isInterlaced ? 2 * height : height, clock * hertzPerUnit / (columns * linesOfField)};
}

std::optional<double> ReadDiagonal(const TBytes& edid) {
  constexpr double centimetresPerInch = 2.54;
  const std::uint8_t width = edid[edid::kHorizontalImageSize];
  const std::uint8_t height = edid[edid::kVerticalImageSize];
  if (width == 0 || height == 0) return std::nullopt;  // one side only is an aspect ratio
  return std::hypot(width, height) / centimetresPerInch;
}

}  // namespace

TEdidFacts ReadEdidFacts(const TBytes& edid) {
  TEdidFacts facts;
  facts.hasValidChecksums = HasValidChecksums(edid);
  facts.isVersion1 = std::equal(edid::kHeader.begin(), edid::kHeader.end(), edid.begin()) && edid[edid::kVersion] == 1;
  if (!facts.isVersion1) return facts;
  facts.name = ReadName(edid);
  facts.manufacturer = ReadNumber(edid, edid::kManufacturer, 2);
  facts.productCode = ReadNumber(edid, edid::kProductCode, 2);
  facts.serialNumber = ReadSerialNumber(edid);
  facts.preferredMode = ReadPreferredMode(edid);
  facts.diagonalInches = ReadDiagonal(edid);
  return facts;
}
