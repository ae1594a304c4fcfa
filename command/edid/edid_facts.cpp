#include "command/edid/edid_facts.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

#include "command/edid/sha256.h"
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

/// The first display descriptor with that tag, or null.
const std::uint8_t* FindDescriptor(const TBytes& edid, int tag) {
  for (const std::size_t slot : edid::kDescriptors) {
    if (ReadNumber(edid, slot, 3) == 0 && edid[slot + edid::kDescriptorTag] == tag) return edid.data() + slot;
  }
  return nullptr;
}

/// Without the blanks that fill it up.
std::string ReadText(const TBytes& edid, int tag) {
  const std::uint8_t* const descriptor = FindDescriptor(edid, tag);
  if (descriptor == nullptr) return std::string();
  const std::uint8_t* const begin = descriptor + edid::kDescriptorText;
  const auto isEnd = [](std::uint8_t byte) { return byte == '\n' || byte == 0; };
  std::string text(begin, std::find_if(begin, begin + edid::kDescriptorTextSize, isEnd));
  return text.erase(text.find_last_not_of(' ') + 1);
}

std::string ReadMaker(const TBytes& edid) {
  const unsigned int packed =
      static_cast<unsigned int>(edid[edid::kManufacturer]) << 8U | edid[edid::kManufacturer + 1];
  std::string letters;
  for (const unsigned int shift : {10U, 5U, 0U}) {
    const unsigned int letter = packed >> shift & 0x1FU;
    if (letter < 1 || letter > 26) return std::string();
    letters += static_cast<char>('A' + letter - 1);
  }
  return letters;
}

std::optional<TMade> ReadMade(const TBytes& edid) {
  constexpr unsigned int weeks = 53;
  // Before the standard's first year, and in 2245, it is a filler.
  constexpr unsigned int firstYear = 1994;
  constexpr unsigned int lastYear = edid::kFirstYear + 0xFE;
  const unsigned int week = edid[edid::kManufacturingWeek];
  const unsigned int year = edid[edid::kManufacturingYear] + edid::kFirstYear;
  if (year < firstYear || year > lastYear) return std::nullopt;
  TMade made = {std::nullopt, year, week == edid::kModelYear};
  if (week >= 1 && week <= weeks) made.week = week;
  return made;
}

bool IsAtLeast14(const TBytes& edid) { return edid[edid::kRevision] >= 4; }

TVideoInput ReadInput(const TBytes& edid) {
  constexpr const char* interfaces[] = {"", "DVI", "HDMI-a", "HDMI-b", "MDDI", "DisplayPort"};
  constexpr unsigned int depths = 6;
  const std::uint8_t byte = edid[edid::kVideoInput];
  TVideoInput input;
  input.isDigital = (byte & edid::kDigitalInput) != 0;
  if (!input.isDigital || !IsAtLeast14(edid)) return input;
  const std::size_t interface = byte & edid::kInterfaceBits;
  if (interface < std::size(interfaces)) input.interface = interfaces[interface];
  const unsigned int depth = byte >> edid::kColourDepthShift & edid::kColourDepthBits;
  if (depth >= 1 && depth <= depths) input.colourBits = 4 + 2 * depth;
  return input;
}

std::optional<TRangeLimits> ReadLimits(const TBytes& edid) {
  constexpr unsigned int megahertz = 10;  // of the clock's unit
  const std::uint8_t* const limits = FindDescriptor(edid, edid::kTagRangeLimits);
  if (limits == nullptr) return std::nullopt;
  const unsigned int offsets = IsAtLeast14(edid) ? limits[edid::kRateOffsets] : 0U;
  const auto read = [&](std::size_t position, unsigned int offset) {
    return limits[position] + ((offsets & offset) != 0 ? edid::kRateOffset : 0U);
  };
  TRangeLimits result = {
      {read(edid::kMinHorizFreq, edid::kMinHorizOffset), read(edid::kMaxHorizFreq, edid::kMaxHorizOffset)},
      {read(edid::kMinVertFreq, edid::kMinVertOffset), read(edid::kMaxVertFreq, edid::kMaxVertOffset)},
      std::nullopt};
  const std::uint8_t clock = limits[edid::kBandwidth];
  if (clock != 0 && clock != edid::kNoBandwidth) result.pixelClock = clock * megahertz;
  return result;
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

std::optional<TMode> ReadPreferredMode(const TBytes& edid) {
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
  const double refresh = clock * hertzPerUnit / (columns * linesOfField);
  return TMode{width, isInterlaced ? 2 * height : height, std::round(refresh * 1000) / 1000, isInterlaced};
}

std::optional<TImageSize> ReadImageSize(const TBytes& edid) {
  constexpr unsigned int millimetres = 10;  // of a centimetre
  const TImageSize size = {edid[edid::kHorizontalImageSize] * millimetres,
                           edid[edid::kVerticalImageSize] * millimetres};
  if (size.width == 0 || size.height == 0) return std::nullopt;  // one side only is an aspect ratio
  return size;
}

double GetDiagonal(const TImageSize& size) {
  constexpr double millimetresPerInch = 25.4;
  return std::hypot(size.width, size.height) / millimetresPerInch;
}

}  // namespace

const char* GetName(EModeSource source) {
  constexpr const char* names[] = {"detailed", "displayid", "cta detailed", "vic",
                                   "hdmi vic", "cvt",       "standard",     "established"};
  return names[static_cast<std::size_t>(source)];
}

TEdidFacts ReadEdidFacts(const TBytes& edid) {
  TEdidFacts facts;
  facts.hasValidChecksums = HasValidChecksums(edid);
  facts.extensions = static_cast<unsigned int>(edid.size() / edid::kBlockSize - 1);
  facts.sha256 = HashSha256(edid);
  facts.isVersion1 = std::equal(edid::kHeader.begin(), edid::kHeader.end(), edid.begin()) && edid[edid::kVersion] == 1;
  if (!facts.isVersion1) return facts;
  facts.version = "1." + std::to_string(edid[edid::kRevision]);
  facts.name = ReadText(edid, edid::kTagName);
  facts.serialText = ReadText(edid, edid::kTagSerialNumber);
  facts.maker = ReadMaker(edid);
  facts.manufacturer = ReadNumber(edid, edid::kManufacturer, 2);
  facts.productCode = ReadNumber(edid, edid::kProductCode, 2);
  facts.serialNumber = ReadSerialNumber(edid);
  facts.preferredMode = ReadPreferredMode(edid);
  facts.serial = FindSerial(facts.maker, facts.productCode, facts.serialNumber, facts.serialText);
  facts.made = ReadMade(edid);
  facts.input = ReadInput(edid);
  facts.limits = ReadLimits(edid);
  facts.imageSize = ReadImageSize(edid);
  if (facts.imageSize) facts.diagonalInches = GetDiagonal(*facts.imageSize);
  return facts;
}
