#include "command/edid/edid_facts.h"

#include <algorithm>
#include <utility>

#include "command/edid/edid_draft.h"
#include "edid/cta_layout.h"
#include "edid/display_id_layout.h"
#include "edid/layout.h"
#include "edid/timings.h"

namespace {

bool HasValidChecksums(TBytes edid) {
  for (std::size_t block = 0; block * edid::kBlockSize < edid.GetSize(); ++block) {
    if (!HasValidChecksum(GetBlock(edid, block))) return false;
  }
  return true;
}

struct TExtensionReader {
  unsigned int tag;
  void (*read)(TBytes block, TEdidDraft& draft);
};

constexpr TExtensionReader kExtensionReaders[] = {{edid::cta::kExtension, ReadCtaExtension},
                                                  {edid::kVideoTimingExtension, ReadVideoTimingExtension},
                                                  {edid::displayid::kExtension, ReadDisplayIdExtension}};

/// Stops at another base block: the blocks after it belong to another EDID, or repeat this one.
void ReadExtensions(TBytes edid, TEdidDraft& draft) {
  for (std::size_t block = 1; block * edid::kBlockSize < edid.GetSize(); ++block) {
    const TBytes bytes = GetBlock(edid, block);
    if (HasHeader(bytes)) return;
    for (const TExtensionReader& reader : kExtensionReaders) {
      if (bytes[edid::kExtensionTag] == reader.tag) reader.read(bytes, draft);
    }
  }
}

void ApplyYcbcr420Map(TEdidDraft& draft) {
  const std::size_t count = std::min(draft.videoCodes.size(), draft.ycbcr420Map.size());
  for (std::size_t index = 0; index < count; ++index) {
    if (!draft.ycbcr420Map[index]) continue;
    draft.modes.Add(edid::FindVic(draft.videoCodes[index]), EModeSource::Vic, ESampling::Ycbcr420);
  }
}

}  // namespace

const char* GetName(EModeSource source) {
  constexpr const char* names[] = {"detailed", "displayid", "cta detailed", "vic",
                                   "hdmi vic", "cvt",       "standard",     "established"};
  return names[static_cast<std::size_t>(source)];
}

void TEdidDraft::OfferRange(ERangeSource source, unsigned int min, unsigned int max) {
  constexpr const char* names[] = {"FreeSync", "HDMI", "DisplayID"};
  if (min == 0 || (rangeSource && *rangeSource <= source)) return;
  rangeSource = source;
  facts.refreshRange = {min, std::nullopt, names[static_cast<std::size_t>(source)]};
  if (max != 0) facts.refreshRange->max = max;
}

TEdidFacts ReadEdidFacts(const std::vector<std::uint8_t>& edid) {
  const TBytes bytes(edid.data(), edid.size());
  TEdidDraft draft;
  TEdidFacts& facts = draft.facts;
  facts.isVersion1 = HasHeader(bytes) && bytes[edid::kVersion] == 1;
  facts.hasValidChecksums = HasValidChecksums(bytes);
  facts.extensions = static_cast<unsigned int>(edid.size() / edid::kBlockSize - 1);
  if (!facts.isVersion1) return std::move(draft.facts);
  ReadBaseBlock(GetBlock(bytes, 0), draft);
  ReadExtensions(bytes, draft);
  ApplyYcbcr420Map(draft);
  facts.modes = draft.modes.Take();
  facts.serial = FindSerial(facts.maker, facts.productCode, facts.serialNumber, facts.serialText);
  DecideImageSize(draft);
  facts.contradictions = FindContradictions(bytes, draft);
  return std::move(draft.facts);
}
