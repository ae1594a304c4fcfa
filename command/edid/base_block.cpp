#include <algorithm>
#include <iterator>

#include "command/edid/edid_draft.h"
#include "edid/layout.h"
#include "edid/timings.h"

namespace {

constexpr unsigned int kRevisionWithInterface = 4;

bool IsAtLeast14(TBytes block) { return block[edid::kRevision] >= kRevisionWithInterface; }

/// Three letters of five bits each; empty if they are not letters.
std::string ReadMaker(TBytes block) {
  const unsigned int packed = block[edid::kManufacturer] << 8 | block[edid::kManufacturer + 1];
  std::string letters;
  for (const unsigned int shift : {10U, 5U, 0U}) {
    const unsigned int letter = packed >> shift & 0x1FU;
    if (letter < 1 || letter > 26) return std::string();
    letters += static_cast<char>('A' + letter - 1);
  }
  return letters;
}

std::optional<std::uint32_t> ReadSerialNumber(TBytes block) {
  constexpr std::uint32_t filler = 0x01010101;
  const std::uint32_t number = block.Number(edid::kSerialNumber, edid::kSerialNumberSize);
  if (number == 0 || number == filler) return std::nullopt;
  return number;
}

std::optional<TMade> ReadMade(TBytes block) {
  constexpr unsigned int weeks = 53;
  // A year before the standard's first, or 2245, is a filler.
  constexpr unsigned int firstYear = 1994;
  constexpr unsigned int lastYear = edid::kFirstYear + 0xFE;
  const unsigned int week = block[edid::kManufacturingWeek];
  const unsigned int year = block[edid::kManufacturingYear] + edid::kFirstYear;
  if (year < firstYear || year > lastYear) return std::nullopt;
  TMade made = {std::nullopt, year, week == edid::kModelYear};
  if (week >= 1 && week <= weeks) made.week = week;
  return made;
}

void ReadProduct(TBytes block, TEdidFacts& facts) {
  facts.version = "1." + std::to_string(block[edid::kRevision]);
  facts.manufacturer = block.Number(edid::kManufacturer, 2);
  facts.maker = ReadMaker(block);
  facts.productCode = block.Number(edid::kProductCode, 2);
  facts.serialNumber = ReadSerialNumber(block);
  facts.made = ReadMade(block);
}

TVideoInput ReadInput(TBytes block) {
  constexpr const char* interfaces[] = {"", "DVI", "HDMI-a", "HDMI-b", "MDDI", "DisplayPort"};
  constexpr unsigned int depths = 6;
  const unsigned int bits = block[edid::kVideoInput];
  TVideoInput input;
  input.isDigital = (bits & edid::kDigitalInput) != 0;
  if (!input.isDigital || !IsAtLeast14(block)) return input;
  const std::size_t interface = bits & edid::kInterfaceBits;
  if (interface < std::size(interfaces)) input.interface = interfaces[interface];
  const unsigned int depth = bits >> edid::kColourDepthShift & edid::kColourDepthBits;
  if (depth >= 1 && depth <= depths) input.colourBits = 4 + 2 * depth;
  return input;
}

void ReadEstablished(TBytes block, TModeList& modes) {
  for (std::size_t index = 0; index < std::size(edid::kEstablished); ++index) {
    if ((block[edid::kEstablishedTimings + index / 8] << index % 8 & 0x80U) == 0) continue;
    const edid::TEstablishedTiming& timing = edid::kEstablished[index];
    modes.Add(edid::FindDmtTiming(timing.dmt), EModeSource::Established);
    const auto refresh = static_cast<double>(timing.refresh);
    if (timing.dmt == 0) modes.Add(TEdidMode{timing.width, timing.height, refresh}, EModeSource::Established);
  }
}

void ReadStandard(TBytes block, TEdidDraft& draft) {
  for (std::size_t index = 0; index < edid::kStandardTimingCount; ++index) {
    ReadStandardTiming(block.Part(edid::kStandardTimings + edid::kStandardTimingSize * index, 2), draft);
  }
}

void ReadSlots(TBytes block, TEdidDraft& draft) {
  for (const std::size_t slot : edid::kDescriptors) {
    const std::optional<TEdidMode> mode =
        ReadSlot(block.Part(slot, edid::kDescriptorSize), EModeSource::Detailed, draft);
    if (slot == edid::kDescriptors.front()) draft.facts.preferredMode = mode;
  }
}

}  // namespace

bool HasHeader(TBytes block) {
  return block.GetSize() >= edid::kHeader.size() &&
         std::equal(edid::kHeader.begin(), edid::kHeader.end(), block.begin());
}

void ReadBaseBlock(TBytes block, TEdidDraft& draft) {
  draft.revision = block[edid::kRevision];
  draft.declaredExtensions = block[edid::kExtensionCount];
  ReadProduct(block, draft.facts);
  draft.facts.input = ReadInput(block);
  draft.centimetres = {block[edid::kHorizontalImageSize], block[edid::kVerticalImageSize]};
  ReadEstablished(block, draft.modes);
  ReadStandard(block, draft);
  ReadSlots(block, draft);
}
