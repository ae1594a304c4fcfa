// The facts of an EDID while its blocks are read, and the readers of the blocks, which add what they find.
#pragma once

#include <algorithm>
#include <bitset>
#include <cmath>
#include <cstddef>
#include <optional>
#include <vector>

#include "command/edid/bytes.h"
#include "command/edid/edid_facts.h"
#include "command/edid/mode_list.h"
#include "edid/cta_layout.h"
#include "edid/layout.h"

/// Where a refresh range comes from; earlier ones win.
enum class ERangeSource { FreeSync, Hdmi, DisplayId };

/// `decimals`: 10 for one, 100 for two.
inline double RoundTo(double number, unsigned int decimals) { return std::round(number * decimals) / decimals; }

/// Adds to `known` the name of each bit that is set, unless it is reserved (null) or already there. The lowest bit has
/// the first name.
template <std::size_t kCount>
void AddNames(const char* const (&names)[kCount], unsigned int bits, std::vector<const char*>& known) {
  known.reserve(known.size() + std::bitset<kCount>(bits).count());
  for (std::size_t index = 0; index < kCount; ++index) {
    const bool isMeant = (bits >> index & 1U) != 0 && names[index] != nullptr;
    if (isMeant && std::find(known.begin(), known.end(), names[index]) == known.end()) known.push_back(names[index]);
  }
}

struct TDetailedTiming {
  TEdidMode mode;
  double clock;     // kHz
  double lineRate;  // kHz
  TImageSize size;  // of the image
};

/// The product that a DisplayID section says it describes.
struct TDisplayIdProduct {
  std::string maker;  // three letters
  unsigned int productCode;
};

struct TEdidDraft {
  TEdidDraft() {
    // Enough for nearly every EDID with an extension.
    timings.reserve(8);
    videoCodes.reserve(32);
  }

  TEdidFacts facts;
  TModeList modes;
  unsigned int revision = 0;  // of version 1

  std::vector<TDetailedTiming> timings;  // of any block; the first is the preferred one, if any is
  unsigned int declaredExtensions = 0;   // blocks after the first
  std::optional<TDisplayIdProduct> displayIdProduct;

  // Whether the descriptors of facts.name and facts.serialText have the reserved byte that the standard asks for.
  bool isNameSound = false;
  bool isSerialTextSound = false;

  // The size of the image: in centimetres or as an aspect ratio in the base block, in millimetres in DisplayID.
  TImageSize centimetres = {0, 0};
  std::optional<TImageSize> displayIdSize;

  // The video codes in the order in which CTA-861 data blocks list them. The map has a bit for each of them, as far as
  // a data block reaches: it also works with YCbCr 4:2:0.
  std::vector<unsigned char> videoCodes;
  std::bitset<std::size_t{8} * edid::cta::kSizeBits> ycbcr420Map;

  std::size_t fixedRateLink = 0;            // code of facts.hdmi's, the fastest of all blocks
  std::optional<ERangeSource> rangeSource;  // of facts.refreshRange

  THdr& Hdr() { return facts.hdr ? *facts.hdr : facts.hdr.emplace(); }
  THdmi& Hdmi() { return facts.hdmi ? *facts.hdmi : facts.hdmi.emplace(); }

  /// Keeps the range unless a better source has given one. With a lower end of 0 it is no range; an upper end of 0
  /// is unknown.
  void OfferRange(ERangeSource source, unsigned int min, unsigned int max);
};

void ReadBaseBlock(TBytes block, TEdidDraft& draft);

/// Reads a detailed timing or a display descriptor of 18 bytes. Returns the mode of a timing.
std::optional<TEdidMode> ReadSlot(TBytes slot, EModeSource source, TEdidDraft& draft);

/// Reads a code of three bytes, and adds a mode for each rate that it names.
void ReadCvtCode(TBytes code, TEdidDraft& draft);

/// Reads a standard timing of two bytes.
void ReadStandardTiming(TBytes timing, TEdidDraft& draft);

void ReadVideoTimingExtension(TBytes block, TEdidDraft& draft);

void ReadCtaExtension(TBytes block, TEdidDraft& draft);

/// Reads the CTA-861 data blocks that begin before `end`; DisplayID may hold such blocks too. The last one may run past
/// `end`, as it does in some real EDIDs, and is then read whole.
void ReadCtaDataBlocks(TBytes blocks, std::size_t end, TEdidDraft& draft);

/// `payload`: of a vendor-specific data block or video data block, beginning with its identifier.
void ReadVendorBlock(TBytes payload, TEdidDraft& draft);
void ReadVendorVideoBlock(TBytes payload, TEdidDraft& draft);

/// Reads HDR static metadata.
void ReadHdrStatic(TBytes payload, TEdidDraft& draft);

/// Reads an HDMI Forum block without its first bytes, an identifier or two reserved bytes.
void ReadForumBlock(TBytes payload, TEdidDraft& draft);

void ReadDisplayIdExtension(TBytes block, TEdidDraft& draft);

/// Reads the payload of a DisplayID data block of timings, by its tag and revision. Ignores other kinds of blocks.
void ReadDisplayIdTimings(unsigned int tag, unsigned int revision, TBytes payload, TEdidDraft& draft);

/// Decides the size of the image from everything that the blocks say of it.
void DecideImageSize(TEdidDraft& draft);

/// The size of the image that the preferred detailed timing gives, in millimetres.
std::optional<TImageSize> GetPreferredSize(const TEdidDraft& draft);

/// True if the centimetres are an aspect ratio, such as 16 x 9.
bool IsRatioAsSize(const TEdidDraft& draft);

/// True if the size in millimetres and the one in centimetres differ by more than a tenth.
bool ContradictsSize(const TEdidDraft& draft, const TImageSize& millimetres);

/// The sentences for TEdidFacts::contradictions. `edid`: all blocks.
std::vector<std::string> FindContradictions(TBytes edid, const TEdidDraft& draft);

/// Block 0 is the base block. `edid`: all blocks.
inline TBytes GetBlock(TBytes edid, std::size_t number) {
  return edid.Part(number * edid::kBlockSize, edid::kBlockSize);
}

/// True if the block begins as a base block does.
bool HasHeader(TBytes block);

/// True if the sum of the block's bytes is a multiple of 256.
bool HasValidChecksum(TBytes block);
