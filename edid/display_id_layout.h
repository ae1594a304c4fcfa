// The layout of a DisplayID section in an EDID's extension block: offsets, sizes, tags and bits. Sections in brackets
// are those of DisplayID 1.3, with 2.0 those of DisplayID 2.0. Offsets are in bytes, of a data block's payload from its
// first byte.
#pragma once

#include <cstddef>

namespace edid::displayid {

constexpr unsigned char kExtension = 0x70;  // the extension's tag

// The section begins after the extension's tag [2.1].
constexpr std::size_t kVersion = 1;
constexpr std::size_t kSectionSize = 2;  // bytes of its data blocks
constexpr std::size_t kDataBlocks = 5;

// The header of a data block [2.2]: its tag, its revision with some flags, and the size of its payload.
constexpr std::size_t kTag = 0;
constexpr std::size_t kRevision = 1;
constexpr std::size_t kPayloadSize = 2;
constexpr std::size_t kPayload = 3;

// Tags [table 2-7]; of version 2 where that is said.
constexpr unsigned int kTagProduct = 0x00;
constexpr unsigned int kTagParameters = 0x01;
constexpr unsigned int kTagTypeI = 0x03;
constexpr unsigned int kTagTypeII = 0x04;
constexpr unsigned int kTagTypeIII = 0x05;
constexpr unsigned int kTagTypeIV = 0x06;
constexpr unsigned int kTagDmtBits = 0x07;
constexpr unsigned int kTagVicBits = 0x08;
constexpr unsigned int kTagSerialNumber = 0x0A;
constexpr unsigned int kTagTypeV = 0x11;
constexpr unsigned int kTagTopology = 0x12;
constexpr unsigned int kTagTypeVI = 0x13;
constexpr unsigned int kTagProduct2 = 0x20;      // [2.0, 4.1]
constexpr unsigned int kTagParameters2 = 0x21;   // [2.0, 4.2]
constexpr unsigned int kTagTypeVII = 0x22;       // [2.0, 4.3.1]
constexpr unsigned int kTagTypeVIII = 0x23;      // [2.0, 4.3.2]
constexpr unsigned int kTagTypeIX = 0x24;        // [2.0, 4.3.3]
constexpr unsigned int kTagTopology2 = 0x28;     // [2.0, 4.7]
constexpr unsigned int kTagContainerId = 0x29;   // [2.0, 4.8]
constexpr unsigned int kTagTypeX = 0x2A;         // [2.1a]
constexpr unsigned int kTagAdaptiveSync = 0x2B;  // [2.1a]
constexpr unsigned int kTagCta = 0x81;           // data blocks as CTA-861 has them

// Product identification [4.1].
constexpr std::size_t kProductMaker = 0;  // three letters; in version 2 an identifier of IEEE's
constexpr std::size_t kProductMakerSize = 3;
constexpr std::size_t kProductCode = 3;  // two bytes, the lower first
constexpr std::size_t kProductSerial = 5;
constexpr std::size_t kProductSerialSize = 4;
constexpr std::size_t kContainerIdSize = 16;

// Display parameters [4.2]: the sides of the picture, two bytes each, in a tenth of a millimetre, or in millimetres in
// version 2 when its revision has the flag.
constexpr std::size_t kImageWidth = 0;
constexpr std::size_t kImageHeight = 2;
constexpr unsigned int kWholeMillimetres = 0x80;

// Timings of type I and VII [4.4.1, 2.0 4.3.1], 20 bytes each.
constexpr std::size_t kTypeISize = 20;
constexpr std::size_t kClock = 0;         // three bytes, one less, in 10 kHz or, of type VII, kHz
constexpr unsigned int kTypeIClock = 10;  // kHz
constexpr std::size_t kFlags = 3;
constexpr unsigned int kInterlaced = 0x10;
constexpr std::size_t kTypeIWidth = 4;  // two bytes each, one less
constexpr std::size_t kTypeIBlankWidth = 6;
constexpr std::size_t kTypeIHeight = 12;
constexpr std::size_t kTypeIBlankHeight = 14;

// Timings of type II [4.4.2], 11 bytes each. Widths are in 8 pixels.
constexpr std::size_t kTypeIISize = 11;
constexpr unsigned int kCell = 8;        // pixels
constexpr std::size_t kTypeIIWidth = 4;  // nine bits, one less; above them seven of the blank width, one less
constexpr unsigned int kTypeIIWidthBits = 0x1FF;
constexpr unsigned int kTypeIIBlankShift = 9;
constexpr std::size_t kTypeIIHeight = 7;  // twelve bits, one less
constexpr unsigned int kTypeIIHeightBits = 0xFFF;
constexpr std::size_t kTypeIIBlankHeight = 9;  // one less

// Timings of type III [4.4.3], three bytes each.
constexpr std::size_t kTypeIIISize = 3;
constexpr unsigned int kAspectBits = 0x0F;
constexpr unsigned int kTypeIIIFormulaShift = 4;
constexpr unsigned int kTypeIIIFormulaBits = 0x07;
constexpr std::size_t kTypeIIIWidth = 1;  // in 8 pixels, one less
constexpr std::size_t kTypeIIIRate = 2;   // Hz, one less
constexpr unsigned int kTypeIIIRateBits = 0x7F;

struct TAspect {
  unsigned int width;
  unsigned int height;
};
constexpr TAspect kAspects[] = {{1, 1}, {5, 4}, {4, 3}, {15, 9}, {16, 9}, {16, 10}, {64, 27}, {256, 135}};

// Timings of type IV and VIII [4.4.4, 2.0 4.3.2]: codes of a standard, which the revision names.
constexpr unsigned int kCodesShift = 6;
constexpr unsigned int kDmtCodes = 0;
constexpr unsigned int kVicCodes = 1;
constexpr unsigned int kHdmiCodes = 2;
constexpr unsigned int kTwoByteCodes = 0x08;
constexpr unsigned int kCodesYcbcr420 = 0x20;  // of type VIII: with YCbCr 4:2:0 sampling too

// Timings as bits of codes [4.4.7, 4.4.8].
constexpr std::size_t kDmtBitCount = 80;
constexpr std::size_t kVicBitCount = 64;

// Timings of type V, IX and X [4.4.5, 2.0 4.3.3, 2.1a]: a size and a rate, from which VESA Coordinated Video Timings
// (CVT) make the rest.
constexpr std::size_t kTypeVSize = 7;
constexpr std::size_t kTypeIXSize = 6;
constexpr unsigned int kFormulaBits = 0x07;
constexpr std::size_t kTypeVWidth = 2;  // two bytes each, one less
constexpr std::size_t kTypeVHeight = 4;
constexpr std::size_t kTypeVRate = 6;  // Hz, one less
constexpr std::size_t kTypeIXWidth = 1;
constexpr std::size_t kTypeIXHeight = 3;
constexpr std::size_t kTypeIXRate = 5;
constexpr unsigned int kTypeXSizeShift = 4;  // of the revision: how many bytes a timing has beyond those of type IX
constexpr unsigned int kTypeXSizeBits = 0x07;
constexpr unsigned int kTypeXRateBits = 0x3FF;
constexpr std::size_t kTypeXBlank = 6;        // what version 3 of reduced blanking adds
constexpr unsigned int kTypeXVariant = 0x10;  // in version 2 of reduced blanking for video, in version 3 a wide blank
constexpr unsigned int kNarrowBlanks[] = {80, 88, 96, 104, 112, 120, 128, 136};   // pixels, by three bits
constexpr unsigned int kWideBlanks[] = {160, 168, 176, 184, 192, 200, 152, 144};  // pixels
constexpr unsigned int kTypeXYcbcr420 = 0x80;                                     // with YCbCr 4:2:0 sampling too

// Timings of type VI [4.4.6], 14 bytes each, or 17 with a size of the picture.
constexpr std::size_t kTypeVISize = 14;
constexpr std::size_t kTypeVILongSize = 17;
constexpr std::size_t kTypeVIClockFlags = 2;  // above the clock's 22 bits, which are in kHz and one less
constexpr unsigned int kTypeVIClockBits = 0x3FFFFF;
constexpr unsigned int kTypeVIIsLong = 0x40;
constexpr std::size_t kTypeVIWidth = 3;   // 14 bits, one less
constexpr std::size_t kTypeVIHeight = 5;  // 14 bits, one less
constexpr unsigned int kTypeVIBits = 0x3FFF;
constexpr std::size_t kTypeVIBlankWidth = 7;  // one less, with four upper bits in
constexpr std::size_t kTypeVIUpperBits = 9;
constexpr std::size_t kTypeVIBlankHeight = 11;  // one less
constexpr std::size_t kTypeVIFlags = 13;
constexpr unsigned int kTypeVIInterlaced = 0x80;

// Tiled display topology [4.13, 2.0 4.7].
constexpr std::size_t kTileCounts = 1;     // one less: rows in the lower half, columns in the upper
constexpr std::size_t kTilePlace = 2;      // the same of the tile's place
constexpr std::size_t kTileUpperBits = 3;  // two bits each: row and column of the place, rows, columns
constexpr std::size_t kTileWidth = 4;      // pixels, two bytes each, one less
constexpr std::size_t kTileHeight = 6;
constexpr std::size_t kTopologySize = 22;  // bytes
constexpr std::size_t kTopologySerial = 18;

// Adaptive sync [2.1a]: descriptors of six bytes and what the revision adds.
constexpr std::size_t kAdaptiveSyncSize = 6;
constexpr unsigned int kAdaptiveSyncSizeShift = 4;
constexpr unsigned int kAdaptiveSyncSizeBits = 0x07;
constexpr std::size_t kAdaptiveMin = 2;  // Hz
constexpr std::size_t kAdaptiveMax = 3;  // Hz, ten bits, one less
constexpr unsigned int kAdaptiveMaxBits = 0x3FF;

}  // namespace edid::displayid
