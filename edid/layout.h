// The layout of an EDID (VESA Enhanced EDID standard, release A, version 1): offsets, sizes, tags and the few codes
// that are more than a number. Everything that reads or writes an EDID uses these.
//
// Sections in brackets are those of release A, revision 2 (EDID 1.4). Offsets are in bytes: of fields of the base block
// from its beginning, of fields of a descriptor from the beginning of its slot.
#pragma once

#include <array>
#include <cstddef>

namespace edid {

constexpr std::size_t kBlockSize = 128;                       // bytes
constexpr std::size_t kMaxBlocks = 16;                        // what a buffer holds
constexpr std::size_t kBufferSize = kMaxBlocks * kBlockSize;  // bytes
constexpr std::size_t kChecksum = kBlockSize - 1;  // of any block: makes the sum of its bytes a multiple of 256

/// A buffer for one EDID: the base block at 0, extension block n at n * kBlockSize.
typedef std::array<unsigned char, kBufferSize> TBuffer;

// The base block [3].

constexpr std::array<unsigned char, 8> kHeader = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};  // [3.3]

// Vendor and product [3.4].
constexpr std::size_t kManufacturer = 8;  // two bytes, big-endian: three letters of five bits, 1 for A
constexpr std::size_t kProductCode = 10;  // two bytes, the lower first
constexpr std::size_t kSerialNumber = 12;
constexpr std::size_t kSerialNumberSize = 4;    // bytes
constexpr std::size_t kManufacturingWeek = 16;  // 1 to 54, or kModelYear
constexpr unsigned char kModelYear = 0xFF;      // the year is that of the model, not of the manufacture
constexpr std::size_t kManufacturingYear = 17;  // counted from kFirstYear
constexpr unsigned short kFirstYear = 1990;

// Version of the structure [3.5].
constexpr std::size_t kVersion = 18;
constexpr std::size_t kRevision = 19;

// Basic display parameters and features [3.6].
constexpr std::size_t kVideoInput = 20;
constexpr unsigned char kDigitalInput = 0x80;
// Since EDID 1.4, of a digital input:
constexpr unsigned char kInterfaceBits = 0x0F;  // 1 for DVI, 2 for HDMI-a, 3 for HDMI-b, 4 for MDDI, 5 for DisplayPort
constexpr unsigned int kColourDepthShift = 4;   // of three bits: 1 for 6 bits a colour, 2 for 8, up to 6 for 16
constexpr unsigned char kColourDepthBits = 0x07;
constexpr std::size_t kHorizontalImageSize = 21;  // cm
constexpr std::size_t kVerticalImageSize = 22;    // cm
constexpr std::size_t kGamma = 23;                // (gamma * 100) - 100
constexpr std::size_t kFeatures = 24;             // bits
constexpr unsigned char kActiveOff = 0x20;
constexpr unsigned char kSuspend = 0x40;
constexpr unsigned char kStandby = 0x80;

// Established timings [3.8]: a bit for each.
constexpr std::size_t kEstablishedTimings = 35;
constexpr std::size_t kEstablishedTimingsSize = 2;   // bytes, without the manufacturer's own at 37
constexpr std::size_t kEstablishedTimingCount = 17;  // with the one of the manufacturer's own that has a meaning

// Standard timings [3.9]: two bytes each.
constexpr std::size_t kStandardTimings = 38;
constexpr std::size_t kStandardTimingCount = 8;
constexpr std::size_t kStandardTimingSize = 2;  // bytes

/// True if an entry declares a timing, from its first byte: 1 marks an unused entry, and 0 is reserved.
constexpr bool IsStandardTiming(unsigned char first) { return first > 1; }

/// The width in pixels, from an entry's first byte.
constexpr unsigned int GetStandardWidth(unsigned char first) { return (first + 31U) * 8U; }

/// The height in lines, from an entry's second byte. The aspect ratio of code 0 is 16:10; before EDID 1.3 it was 1:1.
constexpr unsigned int GetStandardHeight(unsigned int width, unsigned char second) {
  constexpr unsigned int aspects[4][2] = {{16, 10}, {4, 3}, {5, 4}, {16, 9}};
  return width * aspects[second >> 6][1] / aspects[second >> 6][0];
}

constexpr unsigned int kFirstWith16By10 = 3;  // revision: before it, the aspect ratio of code 0 is 1:1

/// The height in lines, for an entry in an EDID before that revision.
constexpr unsigned int GetOldStandardHeight(unsigned int width, unsigned char second) {
  return second >> 6 == 0 ? width : GetStandardHeight(width, second);
}

/// The refresh rate in Hz, from an entry's second byte.
constexpr unsigned int GetStandardRefresh(unsigned char second) { return (second & 63U) + 60U; }

// The four slots of 18 bytes [3.10], each a detailed timing or, when its first two bytes are 0, a display descriptor.
constexpr std::array<std::size_t, 4> kDescriptors = {54, 72, 90, 108};
constexpr std::size_t kDescriptorSize = 18;  // bytes

// A detailed timing [3.10.2]. Its numbers of 12 bits have their low eight in a byte of their own.
constexpr std::size_t kPixelClock = 0;         // two bytes, the lower first, in 10 kHz; 0 in a display descriptor
constexpr unsigned int kMinPixelClock = 1000;  // in the same unit: what is slower is no timing
constexpr std::size_t kActiveWidth = 2;        // pixels
constexpr std::size_t kBlankWidth = 3;         // pixels
constexpr std::size_t kWidthHighBits = 4;      // of the active width in its upper half, of the blank one in its lower
constexpr std::size_t kActiveHeight = 5;       // lines, of one field when it is interlaced
constexpr std::size_t kBlankHeight = 6;        // lines
constexpr std::size_t kHeightHighBits = 7;     // as those of the widths
constexpr std::size_t kImageWidth = 12;        // mm
constexpr std::size_t kImageHeight = 13;       // mm
constexpr std::size_t kImageHighBits = 14;     // as those of the widths
constexpr std::size_t kTimingFlags = 17;
constexpr unsigned char kInterlaced = 0x80;

// A display descriptor [3.10.3].
constexpr std::size_t kDescriptorReserved = 2;  // 0
constexpr std::size_t kDescriptorTag = 3;
constexpr int kTagEstablished3 = 0xF7;
constexpr int kTagCvt = 0xF8;
constexpr int kTagStandardTimings = 0xFA;
constexpr int kTagName = 0xFC;
constexpr int kTagRangeLimits = 0xFD;
constexpr int kTagText = 0xFE;
constexpr int kTagSerialNumber = 0xFF;

// A descriptor with a text, which ends at a line feed or at the end of the slot.
constexpr std::size_t kDescriptorText = 5;
constexpr std::size_t kDescriptorTextSize = 13;  // bytes

// A descriptor of range limits.
constexpr unsigned int kFirstWithRateOffsets = 4;  // revision
constexpr std::size_t kRateOffsets = 4;            // since EDID 1.4: what kMinVertFreq and the three after it lack
constexpr unsigned int kRateOffset = 255;          // in the unit of the rate
constexpr unsigned char kMaxVertOffset = 0x02;
constexpr unsigned char kMinVertOffset = 0x01;
constexpr unsigned char kMaxHorizOffset = 0x08;
constexpr unsigned char kMinHorizOffset = 0x04;
constexpr std::size_t kMinVertFreq = 5;   // Hz
constexpr std::size_t kMaxVertFreq = 6;   // Hz
constexpr std::size_t kMinHorizFreq = 7;  // kHz
constexpr std::size_t kMaxHorizFreq = 8;  // kHz
constexpr std::size_t kBandwidth = 9;     // 10 MHz
constexpr unsigned char kNoBandwidth = 0xFF;

// One of established timings III [3.10.3.9]: bits, as those of the base block.
constexpr std::size_t kEstablished3Bits = 6;

// One of standard timings [3.10.3.6].
constexpr std::size_t kMoreStandardTimings = 5;
constexpr std::size_t kMoreStandardTimingCount = 6;

// One of CVT codes [3.10.3.8]: three bytes each, if the descriptor has the version that the standard defines.
constexpr std::size_t kCvtVersion = 5;
constexpr unsigned int kCvtKnownVersion = 1;
constexpr std::size_t kCvtCodes = 6;
constexpr std::size_t kCvtCodeCount = 4;
constexpr std::size_t kCvtCodeSize = 3;      // bytes
constexpr std::size_t kCvtUpperBits = 1;     // the height's upper four bits, and the aspect ratio
constexpr unsigned int kCvtAspectShift = 2;  // of two bits: 4:3, 16:9, 16:10, 15:9
constexpr unsigned int kCvtAspects[4][2] = {{4, 3}, {16, 9}, {16, 10}, {15, 9}};
constexpr std::size_t kCvtRates = 2;  // bits

struct TCvtRate {
  unsigned char bit;
  unsigned char refresh;  // Hz
  bool isReduced;         // its blanking
};
constexpr TCvtRate kCvtRateBits[] = {
    {0x10, 50, false}, {0x08, 60, false}, {0x04, 75, false}, {0x02, 85, false}, {0x01, 60, true}};

// An aspect ratio in place of an image size: one of the two bytes is 0 [3.6.2].
constexpr unsigned int kAspectOffset = 99;  // a ratio of 1:1 would be 0
constexpr unsigned int kAspectUnit = 100;

constexpr std::size_t kExtensionCount = 126;  // of the blocks that follow the base block [3.11]

// An extension block.
constexpr std::size_t kExtensionTag = 0;
constexpr unsigned char kVideoTimingExtension = 0x10;         // VESA Video Timing Block Extension (VTB-EXT)
constexpr unsigned char kBlockMap = 0xF0;                     // the tags of the other extensions
constexpr unsigned char kDisplayInformationExtension = 0x40;  // VESA Display Information Extension (DI-EXT)
constexpr std::size_t kDigitalInterface = 2;                  // in such a block

// A video timing extension [VTB-EXT 2003]: counts, then detailed timings, CVT codes and standard timings.
constexpr std::size_t kVtbDetailed = 2;  // counts
constexpr std::size_t kVtbCvt = 3;
constexpr std::size_t kVtbStandard = 4;
constexpr std::size_t kVtbTimings = 5;

}  // namespace edid
