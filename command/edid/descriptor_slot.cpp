#include <algorithm>
#include <iterator>

#include "command/edid/cvt.h"
#include "command/edid/edid_draft.h"
#include "edid/layout.h"
#include "edid/timings.h"

namespace {

// A detailed timing.

/// Numbers of 12 bits: the highest four are in the upper or the lower half of the byte at `high`.
unsigned int ReadUpperHalf(TBytes slot, std::size_t low, std::size_t high) {
  return slot[low] | (slot[high] & 0xF0U) << 4;
}

unsigned int ReadLowerHalf(TBytes slot, std::size_t low, std::size_t high) {
  return slot[low] | (slot[high] & 0x0FU) << 8;
}

/// True for a slot of one byte repeated (it would read as 4095 x 8190), or with a clock too slow for any monitor (such
/// as 1 x 1 at 38.609 Hz).
bool IsFiller(TBytes slot) {
  return slot.Number(edid::kPixelClock, 2) < edid::kMinPixelClock ||
         std::all_of(slot.begin(), slot.end(), [&](std::uint8_t byte) { return byte == slot[0]; });
}

TDetailedTiming ReadTiming(TBytes slot) {
  constexpr double kilohertzPerUnit = 10;
  const unsigned int width = ReadUpperHalf(slot, edid::kActiveWidth, edid::kWidthHighBits);
  const unsigned int height = ReadUpperHalf(slot, edid::kActiveHeight, edid::kHeightHighBits);
  const unsigned int columns = width + ReadLowerHalf(slot, edid::kBlankWidth, edid::kWidthHighBits);
  const unsigned int lines = height + ReadLowerHalf(slot, edid::kBlankHeight, edid::kHeightHighBits);
  const bool isInterlaced = (slot[edid::kTimingFlags] & edid::kInterlaced) != 0;
  const double clock = slot.Number(edid::kPixelClock, 2) * kilohertzPerUnit;
  // Two fields share a line between them.
  const TEdidMode mode = MakeMode(width, isInterlaced ? 2 * height : height, clock, columns,
                                  isInterlaced ? lines + 0.5 : lines, isInterlaced);
  return {mode,
          clock,
          clock / columns,
          {ReadUpperHalf(slot, edid::kImageWidth, edid::kImageHighBits),
           ReadLowerHalf(slot, edid::kImageHeight, edid::kImageHighBits)}};
}

std::optional<TEdidMode> ReadDetailedTiming(TBytes slot, EModeSource source, TEdidDraft& draft) {
  if (IsFiller(slot)) return std::nullopt;
  const TDetailedTiming timing = ReadTiming(slot);
  if (timing.mode.width == 0 || timing.mode.height == 0 || timing.mode.refresh == 0) return std::nullopt;
  draft.modes.Add(timing.mode, source);
  draft.timings.push_back(timing);
  return timing.mode;
}

// Display descriptors.

/// The text up to its end, without the blanks that pad it.
std::string ReadText(TBytes slot) {
  const TBytes bytes = slot.From(edid::kDescriptorText);
  const auto isEnd = [](std::uint8_t byte) { return byte == '\n' || byte == 0; };
  std::string text(bytes.begin(), std::find_if(bytes.begin(), bytes.end(), isEnd));
  return text.erase(text.find_last_not_of(' ') + 1);
}

/// Keeps the first text of its kind, but one of a descriptor whose reserved byte is not 0 only until another comes: the
/// plug-in does not know such a descriptor. `isSound`: whether the descriptor of `text` is none of these.
void OfferText(TBytes slot, std::string& text, bool& isSound) {
  const bool isSlotSound = slot[edid::kDescriptorReserved] == 0;
  if (!text.empty() && (isSound || !isSlotSound)) return;
  text = ReadText(slot);
  isSound = isSlotSound;
}

void ReadName(TBytes slot, TEdidDraft& draft) { OfferText(slot, draft.facts.name, draft.isNameSound); }

void ReadSerialText(TBytes slot, TEdidDraft& draft) {
  OfferText(slot, draft.facts.serialText, draft.isSerialTextSound);
}

void ReadOtherText(TBytes slot, TEdidDraft& draft) {
  std::string text = ReadText(slot);
  if (!text.empty()) draft.facts.texts.push_back(std::move(text));
}

/// The offsets may raise the upper end of a rate, and the lower end only together with it.
TRates ReadRates(TBytes slot, unsigned int offsets, std::size_t min, unsigned int raisesMin, unsigned int raisesMax) {
  const bool isMaxRaised = (offsets & raisesMax) != 0;
  const bool isMinRaised = isMaxRaised && (offsets & raisesMin) != 0;
  return {slot[min] + (isMinRaised ? edid::kRateOffset : 0U), slot[min + 1] + (isMaxRaised ? edid::kRateOffset : 0U)};
}

void ReadLimits(TBytes slot, TEdidDraft& draft) {
  constexpr unsigned int megahertz = 10;  // per unit of the clock
  if (draft.facts.limits) return;
  const unsigned int offsets = draft.revision >= edid::kFirstWithRateOffsets ? slot[edid::kRateOffsets] : 0U;
  TRangeLimits limits;
  limits.lines = ReadRates(slot, offsets, edid::kMinHorizFreq, edid::kMinHorizOffset, edid::kMaxHorizOffset);
  limits.fields = ReadRates(slot, offsets, edid::kMinVertFreq, edid::kMinVertOffset, edid::kMaxVertOffset);
  const unsigned int clock = slot[edid::kBandwidth];
  const bool isFiller = clock == edid::kNoBandwidth && draft.revision < edid::kFirstWithRateOffsets;
  if (clock != 0 && !isFiller) limits.pixelClock = clock * megahertz;
  draft.facts.limits = limits;
}

void ReadEstablished3(TBytes slot, TEdidDraft& draft) {
  for (std::size_t index = 0; index < std::size(edid::kEstablished3); ++index) {
    if ((slot[edid::kEstablished3Bits + index / 8] << index % 8 & 0x80U) == 0) continue;
    draft.modes.Add(edid::FindDmtTiming(edid::kEstablished3[index]), EModeSource::Established);
  }
}

void ReadCvtCodes(TBytes slot, TEdidDraft& draft) {
  if (slot[edid::kCvtVersion] != edid::kCvtKnownVersion) return;
  for (std::size_t index = 0; index < edid::kCvtCodeCount; ++index) {
    ReadCvtCode(slot.Part(edid::kCvtCodes + edid::kCvtCodeSize * index, edid::kCvtCodeSize), draft);
  }
}

void ReadMoreStandardTimings(TBytes slot, TEdidDraft& draft) {
  for (std::size_t index = 0; index < edid::kMoreStandardTimingCount; ++index) {
    ReadStandardTiming(slot.Part(edid::kMoreStandardTimings + edid::kStandardTimingSize * index, 2), draft);
  }
}

struct TDescriptorReader {
  unsigned int tag;
  void (*read)(TBytes slot, TEdidDraft& draft);
};

constexpr TDescriptorReader kDescriptorReaders[] = {
    {edid::kTagName, ReadName},
    {edid::kTagSerialNumber, ReadSerialText},
    {edid::kTagText, ReadOtherText},
    {edid::kTagRangeLimits, ReadLimits},
    {edid::kTagEstablished3, ReadEstablished3},
    {edid::kTagCvt, ReadCvtCodes},
    {edid::kTagStandardTimings, ReadMoreStandardTimings},
};

}  // namespace

std::optional<TEdidMode> ReadSlot(TBytes slot, EModeSource source, TEdidDraft& draft) {
  if (slot.Number(edid::kPixelClock, 2) != 0) return ReadDetailedTiming(slot, source, draft);
  for (const TDescriptorReader& reader : kDescriptorReaders) {
    if (slot[edid::kDescriptorTag] == reader.tag) reader.read(slot, draft);
  }
  return std::nullopt;
}

void ReadCvtCode(TBytes code, TEdidDraft& draft) {
  constexpr unsigned int cell = 8;  // pixels
  if (code.Number(0, edid::kCvtCodeSize) == 0) return;
  const unsigned int upper = code[edid::kCvtUpperBits];
  const unsigned int height = ((code[0] | (upper & 0xF0U) << 4) + 1) * 2;
  const auto& aspect = edid::kCvtAspects[upper >> edid::kCvtAspectShift & 3U];
  const unsigned int width = height * aspect[0] / aspect[1] / cell * cell;
  for (const edid::TCvtRate& rate : edid::kCvtRateBits) {
    if ((code[edid::kCvtRates] & rate.bit) == 0) continue;
    const EBlanking blanking = rate.isReduced ? EBlanking::Reduced : EBlanking::Standard;
    draft.modes.Add(MakeCvtMode({width, height, static_cast<double>(rate.refresh), blanking}), EModeSource::Cvt);
  }
}

void ReadStandardTiming(TBytes timing, TEdidDraft& draft) {
  const auto first = static_cast<unsigned char>(timing[0]);
  const auto second = static_cast<unsigned char>(timing[1]);
  if (!edid::IsStandardTiming(first)) return;
  if (const edid::TTiming* const known = edid::FindStandardTiming(first, second)) {
    return draft.modes.Add(known, EModeSource::Standard);
  }
  const unsigned int width = edid::GetStandardWidth(first);
  const unsigned int height = draft.revision < edid::kFirstWith16By10 ? edid::GetOldStandardHeight(width, second)
                                                                      : edid::GetStandardHeight(width, second);
  const auto refresh = static_cast<double>(edid::GetStandardRefresh(second));
  draft.modes.Add(TEdidMode{width, height, refresh}, EModeSource::Standard);
}

void ReadVideoTimingExtension(TBytes block, TEdidDraft& draft) {
  TBytes rest = block.Part(edid::kVtbTimings, edid::kChecksum - edid::kVtbTimings);
  for (unsigned int count = block[edid::kVtbDetailed]; count > 0 && rest.GetSize() >= edid::kDescriptorSize; --count) {
    ReadSlot(rest.Part(0, edid::kDescriptorSize), EModeSource::Detailed, draft);
    rest = rest.From(edid::kDescriptorSize);
  }
  for (unsigned int count = block[edid::kVtbCvt]; count > 0 && rest.GetSize() >= edid::kCvtCodeSize; --count) {
    ReadCvtCode(rest.Part(0, edid::kCvtCodeSize), draft);
    rest = rest.From(edid::kCvtCodeSize);
  }
  for (unsigned int count = block[edid::kVtbStandard]; count > 0 && rest.GetSize() > 1; --count) {
    ReadStandardTiming(rest.Part(0, edid::kStandardTimingSize), draft);
    rest = rest.From(edid::kStandardTimingSize);
  }
}
