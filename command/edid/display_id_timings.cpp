#include <iterator>

#include "command/edid/cvt.h"
#include "command/edid/edid_draft.h"
#include "edid/display_id_layout.h"
#include "edid/timings.h"

namespace displayid = edid::displayid;

namespace {

/// A detailed timing. DisplayID counts the lines of a whole picture, even of an interlaced one.
TEdidMode MakeFullMode(double clock, unsigned int width, unsigned int blankWidth, unsigned int height,
                       unsigned int blankHeight, bool isInterlaced) {
  // Two fields share a line between them.
  const unsigned int lines = height + blankHeight;
  const unsigned int half = lines / 2;
  const double fieldLines = isInterlaced ? half + 0.5 : lines;
  return MakeMode(width, height, clock, width + blankWidth, fieldLines, isInterlaced);
}

TEdidMode ReadTypeIOrVII(double clockUnit, TBytes timing) {
  const auto read = [&](std::size_t offset) { return timing.Number(offset, 2) + 1; };
  return MakeFullMode((timing.Number(displayid::kClock, 3) + 1) * clockUnit, read(displayid::kTypeIWidth),
                      read(displayid::kTypeIBlankWidth), read(displayid::kTypeIHeight),
                      read(displayid::kTypeIBlankHeight), (timing[displayid::kFlags] & displayid::kInterlaced) != 0);
}

TEdidMode ReadTypeI(TBytes timing) { return ReadTypeIOrVII(displayid::kTypeIClock, timing); }

TEdidMode ReadTypeVII(TBytes timing) { return ReadTypeIOrVII(1, timing); }

TEdidMode ReadTypeII(TBytes timing) {
  const double clock = (timing.Number(displayid::kClock, 3) + 1) * static_cast<double>(displayid::kTypeIClock);
  const unsigned int widths = timing.Number(displayid::kTypeIIWidth, 2);
  const unsigned int width = ((widths & displayid::kTypeIIWidthBits) + 1) * displayid::kCell;
  const unsigned int blankWidth = ((widths >> displayid::kTypeIIBlankShift) + 1) * displayid::kCell;
  const unsigned int height = (timing.Number(displayid::kTypeIIHeight, 2) & displayid::kTypeIIHeightBits) + 1;
  return MakeFullMode(clock, width, blankWidth, height, timing[displayid::kTypeIIBlankHeight] + 1,
                      (timing[displayid::kFlags] & displayid::kInterlaced) != 0);
}

TEdidMode ReadTypeIII(TBytes timing) {
  const unsigned int aspect = timing[0] & displayid::kAspectBits;
  if (aspect >= std::size(displayid::kAspects)) return {};
  const unsigned int formula = timing[0] >> displayid::kTypeIIIFormulaShift & displayid::kTypeIIIFormulaBits;
  const unsigned int width = (timing[displayid::kTypeIIIWidth] + 1) * displayid::kCell;
  const unsigned int height = width * displayid::kAspects[aspect].height / displayid::kAspects[aspect].width;
  const double refresh = (timing[displayid::kTypeIIIRate] & displayid::kTypeIIIRateBits) + 1;
  return MakeCvtMode({width, height, refresh, formula == 1 ? EBlanking::Reduced : EBlanking::Standard});
}

TEdidMode ReadTypeV(TBytes timing) {
  const auto read = [&](std::size_t offset) { return timing.Number(offset, 2) + 1; };
  const double refresh = timing[displayid::kTypeVRate] + 1;
  return MakeCvtMode({read(displayid::kTypeVWidth), read(displayid::kTypeVHeight), refresh, EBlanking::Reduced2});
}

TEdidMode ReadTypeVI(TBytes timing) {
  const auto read = [&](std::size_t offset) { return (timing.Number(offset, 2) & displayid::kTypeVIBits) + 1; };
  const double clock = (timing.Number(displayid::kClock, 3) & displayid::kTypeVIClockBits) + 1;
  const unsigned int blankWidth =
      timing[displayid::kTypeVIBlankWidth] + ((timing[displayid::kTypeVIUpperBits] & 0x0FU) << 8) + 1;
  return MakeFullMode(clock, read(displayid::kTypeVIWidth), blankWidth, read(displayid::kTypeVIHeight),
                      timing[displayid::kTypeVIBlankHeight] + 1,
                      (timing[displayid::kTypeVIFlags] & displayid::kTypeVIInterlaced) != 0);
}

/// The size and the formula of a timing of type IX or X. Their rates differ in size, so the caller reads them.
TCvtRequest ReadCvtRequest(TBytes timing, unsigned int refresh) {
  constexpr EBlanking blankings[] = {EBlanking::Standard, EBlanking::Reduced, EBlanking::Reduced2, EBlanking::Reduced3};
  const unsigned int formula = timing[0] & displayid::kFormulaBits;
  TCvtRequest request;
  request.width = timing.Number(displayid::kTypeIXWidth, 2) + 1;
  request.height = timing.Number(displayid::kTypeIXHeight, 2) + 1;
  request.refresh = refresh;
  request.blanking = formula < std::size(blankings) ? blankings[formula] : EBlanking::Standard;
  return request;
}

TEdidMode ReadTypeIX(TBytes timing) {
  TCvtRequest request = ReadCvtRequest(timing, timing[displayid::kTypeIXRate] + 1);
  if (request.blanking == EBlanking::Reduced3) request.blanking = EBlanking::Standard;
  return MakeCvtMode(request);
}

/// Version 3 of reduced blanking may have a wider blank, and one that lasts longer. The bytes that a short timing lacks
/// read as zero.
TEdidMode ReadTypeX(TBytes timing) {
  constexpr unsigned int microseconds = 35;  // of a step
  TCvtRequest request =
      ReadCvtRequest(timing, (timing.Number(displayid::kTypeIXRate, 2) & displayid::kTypeXRateBits) + 1);
  const unsigned int blank = timing[displayid::kTypeXBlank];
  const bool hasVariant = (timing[0] & displayid::kTypeXVariant) != 0;
  const auto& widths = hasVariant ? displayid::kWideBlanks : displayid::kNarrowBlanks;
  request.isForVideo = hasVariant && request.blanking == EBlanking::Reduced2;
  request.blankWidth = widths[blank >> 2 & (std::size(widths) - 1)];
  request.minBlankTime += (blank >> 5) * microseconds;
  return MakeCvtMode(request);
}

/// Adds a mode, once more for YCbCr 4:2:0 where it works with that too.
template <typename TMode>
void Add(const TMode& mode, bool hasYcbcr420, TEdidDraft& draft) {
  draft.modes.Add(mode, EModeSource::DisplayId);
  if (hasYcbcr420) draft.modes.Add(mode, EModeSource::DisplayId, ESampling::Ycbcr420);
}

/// Consecutive timings of `size` bytes each. `ycbcr420`: the bit of the first byte that stands for that sampling, 0
/// where none does.
void ReadEach(TBytes payload, std::size_t size, TEdidMode (*read)(TBytes timing), TEdidDraft& draft,
              unsigned int ycbcr420 = 0) {
  for (; payload.GetSize() >= size; payload = payload.From(size)) {
    Add(read(payload.Part(0, size)), (payload[0] & ycbcr420) != 0, draft);
  }
}

/// Consecutive timings of type VI, each of which says how long it is.
void ReadEachTypeVI(TBytes payload, TEdidDraft& draft) {
  while (payload.GetSize() >= displayid::kTypeVISize) {
    const bool isLong = (payload[displayid::kTypeVIClockFlags] & displayid::kTypeVIIsLong) != 0;
    draft.modes.Add(ReadTypeVI(payload), EModeSource::DisplayId);
    payload = payload.From(isLong ? displayid::kTypeVILongSize : displayid::kTypeVISize);
  }
}

const edid::TTiming* FindByCode(unsigned int revision, unsigned int code) {
  switch (revision >> displayid::kCodesShift) {
    case displayid::kDmtCodes:
      return edid::FindDmtTiming(code);
    case displayid::kVicCodes:
      return edid::FindVic(code);
    case displayid::kHdmiCodes:
      return edid::FindHdmiVic(code);
    default:
      return nullptr;
  }
}

void ReadCodes(unsigned int revision, std::size_t size, TBytes payload, TEdidDraft& draft) {
  for (; payload.GetSize() >= size; payload = payload.From(size)) {
    Add(FindByCode(revision, payload.Number(0, size)), (revision & displayid::kCodesYcbcr420) != 0, draft);
  }
}

/// A bit for each timing: bit n - 1 stands for code n.
void ReadBits(TBytes payload, std::size_t count, const edid::TTiming* (*find)(unsigned int), TEdidDraft& draft) {
  for (unsigned int index = 0; index < count; ++index) {
    if ((payload[index / 8] >> index % 8 & 1U) != 0) draft.modes.Add(find(index + 1), EModeSource::DisplayId);
  }
}

}  // namespace

void ReadDisplayIdTimings(unsigned int tag, unsigned int revision, TBytes payload, TEdidDraft& draft) {
  switch (tag) {
    case displayid::kTagTypeI:
      return ReadEach(payload, displayid::kTypeISize, ReadTypeI, draft);
    case displayid::kTagTypeII:
      return ReadEach(payload, displayid::kTypeIISize, ReadTypeII, draft);
    case displayid::kTagTypeIII:
      return ReadEach(payload, displayid::kTypeIIISize, ReadTypeIII, draft);
    case displayid::kTagTypeIV:
      return ReadCodes(revision, 1, payload, draft);
    case displayid::kTagDmtBits:
      return ReadBits(payload, displayid::kDmtBitCount, edid::FindDmtTiming, draft);
    case displayid::kTagVicBits:
      return ReadBits(payload, displayid::kVicBitCount, edid::FindVic, draft);
    case displayid::kTagTypeV:
      return ReadEach(payload, displayid::kTypeVSize, ReadTypeV, draft);
    case displayid::kTagTypeVI:
      return ReadEachTypeVI(payload, draft);
    case displayid::kTagTypeVII:
      return ReadEach(payload, displayid::kTypeISize, ReadTypeVII, draft);
    case displayid::kTagTypeVIII:
      return ReadCodes(revision, (revision & displayid::kTwoByteCodes) != 0 ? 2 : 1, payload, draft);
    case displayid::kTagTypeIX:
      return ReadEach(payload, displayid::kTypeIXSize, ReadTypeIX, draft);
    case displayid::kTagTypeX:
      return ReadEach(payload,
                      displayid::kTypeIXSize + (revision >> displayid::kTypeXSizeShift & displayid::kTypeXSizeBits),
                      ReadTypeX, draft, displayid::kTypeXYcbcr420);
    default:
      return;
  }
}
