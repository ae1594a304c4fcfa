// The layout of a CTA-861 extension block (CTA-861-I): offsets, sizes, tags and bits. Sections in brackets are those of
// that standard unless another is named. Offsets are in bytes; in a data block's payload, from its first byte.
#pragma once

#include <cstddef>

namespace edid::cta {

constexpr unsigned char kExtension = 0x02;  // the extension's tag

// The block [7.3].
constexpr std::size_t kRevision = 1;
constexpr std::size_t kTimings = 2;                // where the detailed timings begin; 0 when nothing follows
constexpr std::size_t kDataBlocks = 4;             // up to the detailed timings
constexpr unsigned char kFirstWithDataBlocks = 3;  // revision

// The header of a data block [7.4]: the size of its payload and its tag in one byte.
constexpr unsigned int kSizeBits = 0x1F;
constexpr unsigned int kTagShift = 5;
constexpr unsigned int kTagAudio = 1;
constexpr unsigned int kTagVideo = 2;
constexpr unsigned int kTagVendor = 3;
constexpr unsigned int kTagSpeakers = 4;
constexpr unsigned int kTagExtended = 7;  // the payload's first byte says which

// Extended tags [7.5].
constexpr unsigned int kExtendedVendorVideo = 1;
constexpr unsigned int kExtendedColorimetry = 5;
constexpr unsigned int kExtendedHdrStatic = 6;
constexpr unsigned int kExtendedPreference = 13;  // video codes, and numbers of other timings from 128 to 192
constexpr unsigned int kExtendedYcbcr420Video = 14;
constexpr unsigned int kExtendedYcbcr420Map = 15;
constexpr unsigned int kExtendedTypeVII = 34;  // timings as DisplayID has them
constexpr unsigned int kExtendedTypeVIII = 35;
constexpr unsigned int kExtendedTypeX = 42;
constexpr unsigned int kExtendedBlockCount = 0x78;  // overrides the base block's count of extensions [HDMI 2.1, 10.3.6]
constexpr unsigned int kExtendedForumSink = 0x79;   // HDMI Forum Sink Capability [HDMI 2.1, 10.3.6]

/// The video code of a short video descriptor [7.5.1]; 0 and 128 have none. In 129 to 192 bit 7 marks a native one.
constexpr unsigned int GetVideoCode(unsigned int descriptor) {
  return descriptor > 128 && descriptor < 193 ? descriptor - 128 : descriptor;
}

// Short audio descriptors [7.5.2], three bytes each.
constexpr std::size_t kAudioDescriptorSize = 3;
constexpr unsigned int kAudioFormatShift = 3;
constexpr unsigned int kAudioFormatBits = 0x0F;
constexpr unsigned int kChannelBits = 0x07;  // one less than the channels
constexpr unsigned int kLinearPcm = 1;
constexpr unsigned int kExtendedFormat = 15;
constexpr unsigned int kExtendedFormatShift = 3;  // in the third byte

/// The formats by their code, as edid-decode names them; null for a reserved one [table 37].
constexpr const char* kAudioFormats[] = {
    nullptr,     "Linear PCM", "AC-3",   "MPEG 1 (Layers 1 & 2)", "MPEG 1 Layer 3 (MP3)", "MPEG2 (multichannel)",
    "AAC LC",    "DTS",        "ATRAC",  "One Bit Audio",         "Enhanced AC-3 (DD+)",  "DTS-HD",
    "MAT (MLP)", "DST",        "WMA Pro"};

/// How an extended format encodes its channels [7.5.2, tables 40 to 46].
enum class EChannels { Count, None, Spread };

struct TExtendedAudioFormat {
  const char* name;  // null for a reserved one
  EChannels channels = EChannels::Count;
  bool hasSampleSizes = false;  // as linear PCM
};

/// The extended formats by their code [table 39].
constexpr TExtendedAudioFormat kExtendedAudioFormats[] = {{nullptr},
                                                          {"HE AAC (Obsolete)"},
                                                          {"HE AAC v2 (Obsolete)"},
                                                          {"MPEG Surround (Obsolete)"},
                                                          {"MPEG-4 HE AAC"},
                                                          {"MPEG-4 HE AAC v2"},
                                                          {"MPEG-4 AAC LC"},
                                                          {"DRA"},
                                                          {"MPEG-4 HE AAC + MPEG Surround"},
                                                          {nullptr},
                                                          {"MPEG-4 AAC LC + MPEG Surround"},
                                                          {"MPEG-H 3D Audio", EChannels::None},
                                                          {"AC-4", EChannels::None},
                                                          {"L-PCM 3D Audio", EChannels::Spread, true},
                                                          {"Auro-Cx", EChannels::None},
                                                          {"MPEG-D USAC"}};

/// The sampling rates by their bit in the second byte, in kHz [table 38].
constexpr double kSampleRates[] = {32, 44.1, 48, 88.2, 96, 176.4, 192};

/// The sample sizes by their bit in the third byte, in bits.
constexpr unsigned int kSampleSizes[] = {16, 20, 24};

/// The speakers by their bit in the three bytes of a speaker allocation [7.5.3], as edid-decode names them.
constexpr const char* kSpeakers[] = {"FL/FR",     "LFE1",      "FC",        "BL/BR",       "BC",        "FLc/FRc",
                                     "RLC/RRC",   "FLw/FRw",   "TpFL/TpFR", "TpC",         "TpFC",      "LS/RS",
                                     "LFE2",      "TpBC",      "SiL/SiR",   "TpSiL/TpSiR", "TpBL/TpBR", "BtFC",
                                     "BtFL/BtFR", "TpLS/TpRS", "LSd/RSd"};

/// The colorimetries by their bit in two bytes [7.5.5]; null for the bits of metadata profiles, which are reserved.
constexpr const char* kColorimetries[] = {"xvYCC601",  "xvYCC709",  "sYCC601", "opYCC601", "opRGB", "BT2020cYCC",
                                          "BT2020YCC", "BT2020RGB", nullptr,   nullptr,    nullptr, nullptr,
                                          "Default",   "sRGB",      "ICtCp",   "ST2113RGB"};

// HDR static metadata [7.5.13], after the extended tag.
constexpr std::size_t kTransfers = 0;  // bits
constexpr std::size_t kMaxLuminance = 2;
constexpr std::size_t kMaxFrameAverageLuminance = 3;
constexpr std::size_t kMinLuminance = 4;

/// The transfer functions by their bit.
constexpr const char* kTransferNames[] = {"SDR", "HDR", "PQ", "HLG"};

// Vendor-specific data blocks begin with an identifier, the lowest byte first.
constexpr std::size_t kOuiSize = 3;
constexpr unsigned int kHdmi = 0x000C03;
constexpr unsigned int kHdmiForum = 0xC45DD8;
constexpr unsigned int kAmd = 0x00001A;
constexpr unsigned int kMicrosoft = 0xCA125C;
constexpr unsigned int kDolby = 0x00D046;      // video
constexpr unsigned int kHdr10Plus = 0x90848B;  // video

// HDMI [HDMI 1.4b, 8.3.2], after the identifier.
constexpr std::size_t kHdmiColour = 2;  // bits
constexpr std::size_t kHdmiMaxTmds = 3;
constexpr unsigned int kTmdsUnit = 5;   // MHz
constexpr std::size_t kHdmiFields = 4;  // which of the following are there
constexpr unsigned int kHdmiHasLatency = 0x80;
constexpr unsigned int kHdmiHasInterlacedLatency = 0x40;
constexpr unsigned int kHdmiHasVideo = 0x20;
constexpr std::size_t kLatencySize = 2;
constexpr std::size_t kHdmiVideoCodeCount = 1;  // of the bytes on video: the codes in the upper three bits
constexpr unsigned int kHdmiVideoCodeShift = 5;
constexpr std::size_t kHdmiVideoCodes = 2;

struct TDeepColour {
  unsigned int bit;
  unsigned int bits;  // per colour
};
constexpr TDeepColour kDeepColours[] = {{0x10, 10}, {0x20, 12}, {0x40, 16}};

// HDMI Forum [HDMI 2.1, 10.3.2], after the identifier or, in a sink capability block, after two reserved bytes.
constexpr std::size_t kForumMaxTmds = 1;
constexpr std::size_t kForumLink = 3;
constexpr unsigned int kForumLinkShift = 4;
constexpr std::size_t kForumVrrMin = 5;  // Hz, with the upper bits of the other end
constexpr unsigned int kForumVrrMinBits = 0x3F;
constexpr std::size_t kForumVrrMax = 6;  // Hz
constexpr std::size_t kForumDsc = 7;
constexpr unsigned int kForumDscBit = 0x80;

/// The fastest fixed rate link by its code, empty for none; further codes are reserved [HDMI 2.1, table 10-6].
constexpr const char* kFixedRateLinks[] = {"",
                                           "3 lanes at 3 Gbps",
                                           "3 lanes at 6 Gbps",
                                           "4 lanes at 6 Gbps",
                                           "4 lanes at 8 Gbps",
                                           "4 lanes at 10 Gbps",
                                           "4 lanes at 12 Gbps"};

// FreeSync, in AMD's block, after the identifier; version 1.0 and up. No standard publishes it.
constexpr std::size_t kFreeSyncMin = 2;  // Hz
constexpr std::size_t kFreeSyncMax = 3;  // Hz

// HDR10+ and Dolby Vision, after the identifier.
constexpr std::size_t kHdr10PlusVersion = 0;
constexpr std::size_t kDolbyVersion = 0;
constexpr unsigned int kDolbyVersionShift = 5;

// Microsoft's block, after the identifier: a version, a use, and the container id.
constexpr std::size_t kMicrosoftContainerId = 2;

}  // namespace edid::cta
