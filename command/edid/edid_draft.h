// What is known of an EDID while its blocks are read, and the readers of the blocks. Each reader adds what it finds.
#pragma once

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

/// Where refresh ranges come from, the one that counts first.
enum class ERangeSource { FreeSync, Hdmi, DisplayId };

/// `decimals`: 10 for one, 100 for two.
inline double RoundTo(double number, unsigned int decimals) { return std::round(number * decimals) / decimals; }

struct TDetailedTiming {
  TEdidMode mode;
  double clock;     // kHz
  double lineRate;  // kHz
  TImageSize size;  // of the image
};

/// What a DisplayID section says whose monitor it is about.
struct TDisplayIdProduct {
  std::string maker;  // three letters
  unsigned int productCode;
};

struct TEdidDraft {
  TEdidDraft() {
    // What nearly every EDID with an extension needs.
    timings.reserve(8);
    videoCodes.reserve(32);
  }

  TEdidFacts facts;
  TModeList modes;
  unsigned int revision = 0;  // of version 1

  std::vector<TDetailedTiming> timings;  // of any block; the first is the preferred one, if any is
  unsigned int declaredExtensions = 0;   // blocks after the first
  std::optional<TDisplayIdProduct> displayIdProduct;

  // The size of the image: in centimetres or as an aspect ratio in the base block, in millimetres in DisplayID.
  TImageSize centimetres = {0, 0};
  std::optional<TImageSize> displayIdSize;

  // The video codes in the order in which CTA-861 data blocks list them, and which of them work with YCbCr 4:2:0 too,
  // as far as the bits of a data block reach.
  std::vector<unsigned char> videoCodes;
  std::bitset<std::size_t{8} * edid::cta::kSizeBits> ycbcr420Map;

  std::optional<ERangeSource> rangeSource;  // of facts.refreshRange

  THdr& Hdr() { return facts.hdr ? *facts.hdr : facts.hdr.emplace(); }
  THdmi& Hdmi() { return facts.hdmi ? *facts.hdmi : facts.hdmi.emplace(); }

  /// Keeps the range if no better source has said one. A lower end of 0 is no range, an upper end of 0 is not known.
  void OfferRange(ERangeSource source, unsigned int min, unsigned int max);
};

void ReadBaseBlock(TBytes block, TEdidDraft& draft);

/// A detailed timing or a display descriptor of 18 bytes. Returns the mode of a timing.
std::optional<TEdidMode> ReadSlot(TBytes slot, EModeSource source, TEdidDraft& draft);

/// A code of three bytes, with a mode for each rate that it names.
void ReadCvtCode(TBytes code, TEdidDraft& draft);

/// A standard timing of two bytes.
void ReadStandardTiming(TBytes timing, TEdidDraft& draft);

void ReadVideoTimingExtension(TBytes block, TEdidDraft& draft);

void ReadCtaExtension(TBytes block, TEdidDraft& draft);

/// The data blocks of CTA-861 that begin before `end`; DisplayID may have such blocks too. The last one may run past
/// it, which happens in real EDIDs: its own size counts then.
void ReadCtaDataBlocks(TBytes blocks, std::size_t end, TEdidDraft& draft);

/// A vendor-specific data block, or one on video, from its identifier on.
void ReadVendorBlock(TBytes payload, TEdidDraft& draft);
void ReadVendorVideoBlock(TBytes payload, TEdidDraft& draft);

/// HDR static metadata.
void ReadHdrStatic(TBytes payload, TEdidDraft& draft);

/// What HDMI Forum's blocks say, without what is before it: an identifier or two reserved bytes.
void ReadForumBlock(TBytes payload, TEdidDraft& draft);

void ReadDisplayIdExtension(TBytes block, TEdidDraft& draft);

/// The payload of a DisplayID data block of timings, by its tag and revision. Blocks of other kinds have none.
void ReadDisplayIdTimings(unsigned int tag, unsigned int revision, TBytes payload, TEdidDraft& draft);

/// Judges the size of the image from all that was said of it.
void DecideImageSize(TEdidDraft& draft);

/// What the preferred detailed timing says of it, in millimetres.
std::optional<TImageSize> GetPreferredSize(const TEdidDraft& draft);

/// True if the centimetres are an aspect ratio, such as 16 x 9.
bool IsRatioAsSize(const TEdidDraft& draft);

/// True if the size in millimetres and the one in centimetres differ by more than a tenth.
bool ContradictsSize(const TEdidDraft& draft, const TImageSize& millimetres);

/// Where the EDID disagrees with itself, as TEdidFacts::contradictions. `edid`: all blocks.
std::vector<std::string> FindContradictions(TBytes edid, const TEdidDraft& draft);

/// Block 0 is the base block. `edid`: all blocks.
inline TBytes GetBlock(TBytes edid, std::size_t number) {
  return edid.Part(number * edid::kBlockSize, edid::kBlockSize);
}

/// True if it begins as base blocks do.
bool HasHeader(TBytes block);

/// True if the bytes of the block sum up to a multiple of 256.
bool HasValidChecksum(TBytes block);
