// The layout of an EDID (VESA Enhanced EDID standard, version 1): offsets, sizes and tags, as far as they are read.
#pragma once

#include <array>
#include <cstddef>

namespace edid {

constexpr std::size_t kBlockSize = 128;                       // bytes
constexpr std::size_t kMaxBlocks = 16;                        // what a buffer holds
constexpr std::size_t kBufferSize = kMaxBlocks * kBlockSize;  // bytes

/// A buffer for one EDID: the base block at 0, extension block n at 128 * n.
typedef std::array<unsigned char, kBufferSize> TBuffer;

// The base block.
constexpr std::array<unsigned char, 8> kHeader = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};
constexpr std::size_t kManufacturer = 8;        // two bytes, big-endian
constexpr std::size_t kManufacturingWeek = 16;  // 1 to 54
constexpr std::size_t kManufacturingYear = 17;  // counted from kFirstYear
constexpr std::size_t kVersion = 18;
constexpr std::size_t kRevision = 19;
constexpr std::size_t kHorizontalImageSize = 21;  // cm
constexpr std::size_t kVerticalImageSize = 22;    // cm
constexpr std::size_t kGamma = 23;                // (gamma * 100) - 100
constexpr std::size_t kFeatures = 24;
constexpr std::size_t kEstablishedTimings = 35;  // two bytes of bits
constexpr std::size_t kStandardTimings = 38;     // eight entries of two bytes
constexpr std::size_t kStandardTimingCount = 8;
constexpr std::size_t kExtensionCount = 126;

constexpr unsigned short kFirstYear = 1990;

// Bits of the feature byte.
constexpr unsigned char kActiveOff = 0x20;
constexpr unsigned char kSuspend = 0x40;
constexpr unsigned char kStandby = 0x80;

// The four descriptor slots of the base block, and the layout of a slot that is a display descriptor.
constexpr std::array<std::size_t, 4> kDescriptors = {54, 72, 90, 108};
constexpr std::size_t kDescriptorReserved = 2;
constexpr std::size_t kDescriptorTag = 3;
constexpr std::size_t kDescriptorText = 5;
constexpr std::size_t kDescriptorTextSize = 13;  // bytes
constexpr int kTagName = 0xFC;
constexpr int kTagRangeLimits = 0xFD;
constexpr int kTagSerialNumber = 0xFF;

// A slot that is a detailed timing.
constexpr std::size_t kTimingFlags = 17;
constexpr unsigned char kInterlaced = 0x80;

// A range limits descriptor.
constexpr std::size_t kMinVertFreq = 5;   // Hz
constexpr std::size_t kMaxVertFreq = 6;   // Hz
constexpr std::size_t kMinHorizFreq = 7;  // kHz
constexpr std::size_t kMaxHorizFreq = 8;  // kHz
constexpr std::size_t kBandwidth = 9;     // 10 MHz
constexpr unsigned char kNoBandwidth = 0xFF;

// An extension block.
constexpr std::size_t kExtensionTag = 0;
constexpr unsigned char kDisplayInformationExtension = 0x40;  // VESA DI-EXT
constexpr std::size_t kDigitalInterface = 2;                  // in such a block

}  // namespace edid
