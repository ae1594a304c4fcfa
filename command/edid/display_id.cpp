#include <algorithm>

#include "command/edid/edid_draft.h"
#include "edid/display_id_layout.h"
#include "edid/layout.h"

namespace displayid = edid::displayid;

namespace {

/// Reads the size of the image. `unitsPerMillimetre`: 1 or 10, the unit of its sides.
void ReadParameters(unsigned int unitsPerMillimetre, TBytes payload, TEdidDraft& draft) {
  const auto read = [&](std::size_t offset) {
    return (payload.Number(offset, 2) + unitsPerMillimetre / 2) / unitsPerMillimetre;
  };
  const TImageSize size = {read(displayid::kImageWidth), read(displayid::kImageHeight)};
  if (size.width != 0 && size.height != 0 && !draft.displayIdSize) draft.displayIdSize = size;
}

void ReadProduct(TBytes payload, TEdidDraft& draft) {
  if (payload.GetSize() < displayid::kProductSerial || draft.displayIdProduct) return;
  const TBytes maker = payload.Part(displayid::kProductMaker, displayid::kProductMakerSize);
  draft.displayIdProduct = {std::string(maker.begin(), maker.end()), payload.Number(displayid::kProductCode, 2)};
}

void ReadTopology(TBytes payload, TEdidDraft& draft) {
  if (payload.GetSize() < displayid::kTopologySize) return;
  const unsigned int counts = payload[displayid::kTileCounts];
  const unsigned int place = payload[displayid::kTilePlace];
  const auto upper = [&](unsigned int shift) { return (payload[displayid::kTileUpperBits] >> shift & 3U) << 4; };
  TTile tile;
  tile.columns = (counts >> 4 | upper(6)) + 1;
  tile.rows = ((counts & 0x0FU) | upper(4)) + 1;
  tile.column = place >> 4 | upper(2);
  tile.row = (place & 0x0FU) | upper(0);
  tile.width = payload.Number(displayid::kTileWidth, 2) + 1;
  tile.height = payload.Number(displayid::kTileHeight, 2) + 1;
  if (!draft.facts.tile) draft.facts.tile = tile;
}

void ReadAdaptiveSync(unsigned int revision, TBytes payload, TEdidDraft& draft) {
  const std::size_t size =
      displayid::kAdaptiveSyncSize + (revision >> displayid::kAdaptiveSyncSizeShift & displayid::kAdaptiveSyncSizeBits);
  if (payload.GetSize() < size) return;
  const unsigned int max = payload.Number(displayid::kAdaptiveMax, 2) & displayid::kAdaptiveMaxBits;
  draft.OfferRange(ERangeSource::DisplayId, payload[displayid::kAdaptiveMin], max + 1);
}

void ReadDataBlock(unsigned int tag, unsigned int revision, TBytes payload, TEdidDraft& draft) {
  constexpr unsigned int tenths = 10;
  switch (tag) {
    case displayid::kTagProduct:
      return ReadProduct(payload, draft);
    case displayid::kTagParameters:
      return ReadParameters(tenths, payload, draft);
    case displayid::kTagParameters2:
      return ReadParameters((revision & displayid::kWholeMillimetres) != 0 ? 1 : tenths, payload, draft);
    case displayid::kTagTopology:
    case displayid::kTagTopology2:
      return ReadTopology(payload, draft);
    case displayid::kTagAdaptiveSync:
      return ReadAdaptiveSync(revision, payload, draft);
    case displayid::kTagCta:
      return ReadCtaDataBlocks(payload, payload.GetSize(), draft);
    default:
      ReadDisplayIdTimings(tag, revision, payload, draft);
  }
}

}  // namespace

void ReadDisplayIdExtension(TBytes block, TEdidDraft& draft) {
  const std::size_t end = displayid::kDataBlocks + block[displayid::kSectionSize];
  TBytes blocks = block.Part(0, std::min(end, edid::kChecksum)).From(displayid::kDataBlocks);
  while (blocks.GetSize() >= displayid::kPayload) {
    const std::size_t size = blocks[displayid::kPayloadSize];
    const std::size_t next = displayid::kPayload + size;
    const bool isFiller = blocks.Number(0, displayid::kPayload) == 0;
    if (isFiller || next > blocks.GetSize()) return;
    ReadDataBlock(blocks[displayid::kTag], blocks[displayid::kRevision], blocks.Part(displayid::kPayload, size), draft);
    blocks = blocks.From(next);
  }
}
