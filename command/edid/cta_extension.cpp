#include <algorithm>
#include <bitset>
#include <iterator>

#include "command/edid/edid_draft.h"
#include "edid/cta_layout.h"
#include "edid/display_id_layout.h"
#include "edid/layout.h"
#include "edid/timings.h"

namespace cta = edid::cta;

namespace {

void ReadVideo(TBytes payload, TEdidDraft& draft) {
  for (const std::uint8_t descriptor : payload) {
    const unsigned int code = cta::GetVideoCode(descriptor);
    draft.videoCodes.push_back(static_cast<unsigned char>(code));
    draft.modes.Add(edid::FindVic(code), EModeSource::Vic);
  }
}

void ReadYcbcr420Video(TBytes payload, TEdidDraft& draft) {
  for (const std::uint8_t descriptor : payload) {
    draft.modes.Add(edid::FindVic(cta::GetVideoCode(descriptor)), EModeSource::Vic, ESampling::Ycbcr420);
  }
}

void ReadPreference(TBytes payload, TEdidDraft& draft) {
  for (const std::uint8_t code : payload) draft.modes.Add(edid::FindVic(code), EModeSource::Vic);
}

/// An empty map means all video codes.
void ReadYcbcr420Map(TBytes payload, TEdidDraft& draft) {
  if (payload.GetSize() == 0) draft.ycbcr420Map.set();
  for (std::size_t index = 0; index < payload.GetSize() * 8; ++index) {
    if ((payload[index / 8] >> index % 8 & 1U) != 0) draft.ycbcr420Map.set(index);
  }
}

// Sound.

template <typename TValue, std::size_t kCount>
std::vector<TValue> Select(const TValue (&values)[kCount], unsigned int bits) {
  std::vector<TValue> selected;
  selected.reserve(std::bitset<kCount>(bits).count());
  for (std::size_t index = 0; index < kCount; ++index) {
    if ((bits >> index & 1U) != 0) selected.push_back(values[index]);
  }
  return selected;
}

/// The channels of a format that stores their number, less one, in five bits of two bytes.
unsigned int ReadSpreadChannels(TBytes descriptor) {
  return ((descriptor[0] & cta::kChannelBits) | (descriptor[0] & 0x80U) >> 4 | (descriptor[1] & 0x80U) >> 3) + 1;
}

TAudioFormat ReadExtendedFormat(TBytes descriptor) {
  const unsigned int code = descriptor[2] >> cta::kExtendedFormatShift;
  TAudioFormat format;
  if (code >= std::size(cta::kExtendedAudioFormats)) return format;
  const cta::TExtendedAudioFormat& known = cta::kExtendedAudioFormats[code];
  if (known.name == nullptr) return format;
  format.name = known.name;
  if (known.channels == cta::EChannels::Count) format.channels = (descriptor[0] & cta::kChannelBits) + 1;
  if (known.channels == cta::EChannels::Spread) format.channels = ReadSpreadChannels(descriptor);
  if (known.hasSampleSizes) format.sampleSizes = Select(cta::kSampleSizes, descriptor[2]);
  return format;
}

TAudioFormat ReadFormat(TBytes descriptor) {
  const unsigned int code = descriptor[0] >> cta::kAudioFormatShift & cta::kAudioFormatBits;
  if (code == cta::kExtendedFormat) return ReadExtendedFormat(descriptor);
  TAudioFormat format;
  if (cta::kAudioFormats[code] == nullptr) return format;
  format.name = cta::kAudioFormats[code];
  format.channels = (descriptor[0] & cta::kChannelBits) + 1;
  if (code == cta::kLinearPcm) format.sampleSizes = Select(cta::kSampleSizes, descriptor[2]);
  return format;
}

/// Ignores a block that ends within a descriptor: it is broken.
void ReadAudio(TBytes payload, TEdidDraft& draft) {
  if (payload.GetSize() % cta::kAudioDescriptorSize != 0) return;
  draft.facts.audio.reserve(draft.facts.audio.size() + payload.GetSize() / cta::kAudioDescriptorSize);
  for (; payload.GetSize() > 0; payload = payload.From(cta::kAudioDescriptorSize)) {
    TAudioFormat format = ReadFormat(payload);
    if (format.name.empty()) continue;
    format.sampleRates = Select(cta::kSampleRates, payload[1]);
    draft.facts.audio.push_back(std::move(format));
  }
}

void ReadSpeakers(TBytes payload, TEdidDraft& draft) {
  constexpr std::size_t size = 3;  // bytes
  if (payload.GetSize() >= size) AddNames(cta::kSpeakers, payload.Number(0, size), draft.facts.speakers);
}

void ReadColorimetry(TBytes payload, TEdidDraft& draft) {
  constexpr std::size_t size = 2;  // bytes
  if (payload.GetSize() < size) return;
  AddNames(cta::kColorimetries, payload.Number(0, size), draft.facts.colorimetry);
}

// Data blocks by their tags.

struct TBlockReader {
  unsigned int tag;
  void (*read)(TBytes payload, TEdidDraft& draft);
};

template <std::size_t kCount>
void ReadByTag(const TBlockReader (&readers)[kCount], unsigned int tag, TBytes payload, TEdidDraft& draft) {
  for (const TBlockReader& reader : readers) {
    if (reader.tag == tag) return reader.read(payload, draft);
  }
}

/// An HDMI Forum block that begins with two reserved bytes instead of an identifier.
void ReadForumSink(TBytes payload, TEdidDraft& draft) { ReadForumBlock(payload.From(2), draft); }

void ReadBlockCount(TBytes payload, TEdidDraft& draft) {
  if (payload.GetSize() > 0) draft.declaredExtensions = payload[0];
}

template <unsigned int kTag>
void ReadTimings(TBytes payload, TEdidDraft& draft) {
  ReadDisplayIdTimings(kTag, payload[0], payload.From(1), draft);
}

constexpr TBlockReader kExtendedReaders[] = {
    {cta::kExtendedVendorVideo, ReadVendorVideoBlock},
    {cta::kExtendedColorimetry, ReadColorimetry},
    {cta::kExtendedHdrStatic, ReadHdrStatic},
    {cta::kExtendedPreference, ReadPreference},
    {cta::kExtendedYcbcr420Video, ReadYcbcr420Video},
    {cta::kExtendedYcbcr420Map, ReadYcbcr420Map},
    {cta::kExtendedTypeVII, ReadTimings<edid::displayid::kTagTypeVII>},
    {cta::kExtendedTypeVIII, ReadTimings<edid::displayid::kTagTypeVIII>},
    {cta::kExtendedTypeX, ReadTimings<edid::displayid::kTagTypeX>},
    {cta::kExtendedBlockCount, ReadBlockCount},
    {cta::kExtendedForumSink, ReadForumSink},
};

void ReadExtended(TBytes payload, TEdidDraft& draft) {
  if (payload.GetSize() > 0) ReadByTag(kExtendedReaders, payload[0], payload.From(1), draft);
}

constexpr TBlockReader kReaders[] = {
    {cta::kTagAudio, ReadAudio},       {cta::kTagVideo, ReadVideo},       {cta::kTagVendor, ReadVendorBlock},
    {cta::kTagSpeakers, ReadSpeakers}, {cta::kTagExtended, ReadExtended},
};

/// Slots of 18 bytes, up to the checksum or to the first slot of zeros.
void ReadTimingSlots(TBytes slots, TEdidDraft& draft) {
  for (; slots.GetSize() >= edid::kDescriptorSize; slots = slots.From(edid::kDescriptorSize)) {
    const TBytes slot = slots.Part(0, edid::kDescriptorSize);
    if (std::all_of(slot.begin(), slot.end(), [](std::uint8_t byte) { return byte == 0; })) return;
    ReadSlot(slot, EModeSource::CtaDetailed, draft);
  }
}

}  // namespace

void ReadCtaDataBlocks(TBytes blocks, std::size_t end, TEdidDraft& draft) {
  for (std::size_t begin = 0; begin < end;) {
    const std::size_t size = blocks[begin] & cta::kSizeBits;
    ReadByTag(kReaders, blocks[begin] >> cta::kTagShift, blocks.Part(begin + 1, size), draft);
    begin += 1 + size;
  }
}

void ReadCtaExtension(TBytes block, TEdidDraft& draft) {
  const std::size_t timings = block[cta::kTimings];
  if (block[cta::kRevision] == 0 || timings < cta::kDataBlocks) return;
  const TBytes content = block.Part(0, edid::kChecksum);
  if (block[cta::kRevision] >= cta::kFirstWithDataBlocks) {
    const std::size_t end = std::min(timings, content.GetSize()) - cta::kDataBlocks;
    ReadCtaDataBlocks(content.From(cta::kDataBlocks), end, draft);
  }
  ReadTimingSlots(content.From(timings), draft);
}
