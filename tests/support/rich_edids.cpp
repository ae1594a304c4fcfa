#include "tests/support/rich_edids.h"

#include "tests/support/edid_builder.h"

namespace {

typedef std::vector<std::uint8_t> TBytes;

/// 1280 x 720 at 60 Hz, and 1920 x 1080 at 60 fields a second.
const TBytes kTimings = {0x01, 0x1D, 0x00, 0x72, 0x51, 0xD0, 0x1E, 0x20, 0x6E, 0x28, 0x55, 0x00,
                         0x00, 0x00, 0x00, 0x00, 0x00, 0x1E, 0x01, 0x1D, 0x80, 0x18, 0x71, 0x1C,
                         0x16, 0x20, 0x58, 0x2C, 0x25, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x9E};

TEdidBuilder MakeBase() {
  return TEdidBuilder()
      .Version(1, 4)
      .Manufacturer("ACM")
      .Made(14, 2021)
      .ImageSize(60, 34)
      .Established(0xFF, 0xFF)
      .Standard(0, 0xD1, 0xC0)
      .Standard(1, 0x8B, 0xC0)
      .DetailedTiming(0, false)
      .RangeLimits(1, 48, 144, 30, 160, 60)
      .Byte(edid::kDescriptors[1] + edid::kRateOffsets, 0x0A)
      .Name(2, "Acme")
      .Serial(3, "A-1");
}

TBytes MakeVideo() {
  return MakeBase()
      .Cta({0x49, 16, 97, 96, 118, 218, 6, 39, 0x80 | 3, 194,  // video codes
            0xE3, 14, 101, 102,                                // with YCbCr 4:2:0 only
            0xE2, 15, 0x06},                                   // with YCbCr 4:2:0 too
           kTimings)
      .Build();
}

/// Every video code that there is, in data blocks of at most 31 codes.
TBytes MakeVideoCodes() {
  TEdidBuilder builder = MakeBase();
  TBytes blocks;
  const auto add = [&](unsigned int first, unsigned int last) {
    blocks.push_back(static_cast<std::uint8_t>(0x40 | (last - first + 1)));
    for (unsigned int code = first; code <= last; ++code) blocks.push_back(static_cast<std::uint8_t>(code));
  };
  add(1, 31);
  add(32, 62);
  add(63, 93);
  builder.Cta(blocks);
  blocks.clear();
  add(94, 124);
  add(125, 127);
  add(193, 219);
  return builder.Cta(blocks).Build();
}

TBytes MakeLink() {
  return MakeBase()
      .Cta({0x6E, 0x03, 0x0C, 0x00, 0x10, 0x00, 0x38, 60,   0xA0, 1,    1,   0,    0x40, 1, 4,  // HDMI
            0x6B, 0xD8, 0x5D, 0xC4, 1,    120,  0x80, 0x60, 0,    0x70, 144, 0x80,              // HDMI Forum
            0x68, 0x1A, 0x00, 0x00, 1,    1,    40,   165,  0,                                  // FreeSync
            0xE6, 6,    0x0D, 1,    103,  77,   84,                                             // HDR
            0xE5, 1,    0x8B, 0x84, 0x90, 1})                                                   // HDR10+
      .Build();
}

TBytes MakeSound() {
  return MakeBase()
      .Cta({0x2C, 0x0F, 0x7F, 0x07, 0x15, 0x50, 0x00, 0x7A, 0x04, 0x58, 0x79, 0x04, 0x20,  // formats
            0x83, 0x4F, 0x01, 0x00,                                                        // speakers
            0xE3, 5,    0xC3, 0x80})                                                       // colorimetry
      .Build();
}

TBytes MakeDisplayId1() {
  return MakeBase()
      .DisplayId(0x12, {0x03, 0,    20,   0x01, 0x3A, 0x00, 0x04, 0x7F, 0x07, 0x17, 0x01, 0x57, 0x00, 0x2B,
                        0x00, 0x37, 0x04, 0x2C, 0x00, 0x03, 0x00, 0x04, 0x00,                                // type I
                        0x04, 0,    11,   0x5F, 0x3A, 0,    0,    0xEF, 0x42, 0x32, 0x37, 4,    0x2C, 0x12,  // type II
                        0x05, 0,    6,    0x04, 239,  59,   0x14, 239,  59,                                  // type III
                        0x06, 0x40, 2,    16,   97,                                                          // type IV
                        0x07, 0,    10,   0x10, 0x80, 0,    0,    0,    0,    0,    0,    0,    0x80,        // DMT
                        0x11, 0,    7,    0,    0,    0x7F, 7,    0x37, 4,    74,                            // type V
                        0x12, 0,    3,    0,    0,    0})
      .Build();
}

TBytes MakeDisplayId2() {
  return MakeBase()
      .DisplayId(0x20,
                 {0x22, 0,    20,   0x13, 0x44, 0x02, 0x04, 0x7F, 0x07, 0x17, 0x01, 0x57, 0x00, 0x2B, 0x00,
                  0x37, 0x04, 0x2C, 0x00, 0x03, 0x00, 0x04, 0x00,                                           // type VII
                  0x23, 0x00, 2,    0x10, 0x24,                                                             // type VIII
                  0x24, 0,    12,   0,    0x7F, 7,    0x37, 4,    99,   2,    0xFF, 9,    0x9F, 5,    143,  // type IX
                  0x2B, 0,    6,    0x01, 0,    48,   0x8F, 0x01, 0,  // adaptive sync
                  0x81, 0,    3,    0x42, 102,  218})                 // CTA-861
      .Build();
}

/// A block of the VESA Video Timing Block Extension.
TBytes MakeTimingBlock() {
  const TBytes counts = {0x10, 1, 1, 1, 1};
  const TBytes codes = {0x1B, 0x24, 0x1F, 0xA9, 0xC0};
  TBytes block(kTimings.begin(), kTimings.begin() + edid::kDescriptorSize);
  block.insert(block.begin(), counts.begin(), counts.end());
  block.insert(block.end(), codes.begin(), codes.end());
  return block;
}

TBytes MakeVideoTimings() { return MakeBase().Extension(MakeTimingBlock()).Build(); }

/// The slots of the base block that hold timings, and data blocks that few monitors have.
TBytes MakeSlots() {
  const auto fill = [](const TBytes& bytes) { return std::string(bytes.begin(), bytes.end()); };
  return MakeBase()
      .Text(1, edid::kTagEstablished3, fill({10, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xF0, 0, 0, 0, 0, 0, 0}))
      .Byte(edid::kDescriptors[1] + edid::kRateOffsets, 0)
      .Text(2, edid::kTagCvt, fill({1, 0x1B, 0x24, 0x1F, 0x57, 0x10, 0x68, 0, 0, 0, 0, 0, 0}))
      .Text(3, edid::kTagStandardTimings, fill({0xD1, 0xC0, 0x8B, 0xC0, 0x81, 0x80, 1, 1, 1, 1, 1, 1, 10}))
      .Cta({0xE2, 0x78, 1,                                                           // the count of blocks
            0xEB, 0x79, 0,    0,    1,    120,  0x80, 0x60, 0,    0x70, 144,  0x80,  // HDMI Forum, as a sink
            0xEB, 1,    0x46, 0xD0, 0x00, 0x48, 0x03, 0x76, 0x82, 0x5E, 0x6D, 0x95,  // Dolby Vision
            0xE3, 13,   16,   97,                                                    // preference
            0xF6, 34,   0,    0x13, 0x44, 0x02, 0x04, 0x7F, 0x07, 0x17, 0x01, 0x57,  // type VII
            0x00, 0x2B, 0x00, 0x37, 0x04, 0x2C, 0x00, 0x03, 0x00, 0x04, 0x00,        //
            0xE3, 35,   0,    0x10,                                                  // type VIII
            0xE9, 42,   0x10, 0x03, 0x7F, 0x07, 0x37, 0x04, 0xDF, 0x01})             // type X
      .Build();
}

/// A tile of a display, with all that DisplayID 1 says of it.
TBytes MakeTile1() {
  return MakeBase()
      .DisplayId(0x12, {0x00, 0, 12,   'A',  'C',  'M',  0,    0,    1,    2,    3,    4,    14,   21,   0,  // product
                        0x01, 0, 12,   0x70, 0x17, 0x48, 0x0D, 0x7F, 0x07, 0x37, 0x04, 0,    120,  78,   0x77,  // size
                        0x08, 0, 8,    0x0F, 0x80, 0,    0,    0,    0,    0,    0x80,                          // VICs
                        0x13, 0, 31,   0x13, 0x44, 0x02, 0x7F, 0x07, 0x37, 0x04, 0x17, 88,   1,    44,   0x2C,
                        4,    5, 0x13, 0x44, 0x42, 0xFF, 0x04, 0xCF, 0x02, 0x17, 88,   1,    44,   0x2C, 4,
                        0x85, 0, 0,    0,    0x12, 0,    22,   0x82, 0x10, 0x10, 0x00, 0x7F, 0x07, 0x6F, 0x08,
                        0,    0, 0,    0,    0,    'A',  'C',  'M',  0,    0,    1,    2,    3,    4,  // topology
                        0x0A, 0, 3,    'A',  '-',  '1'})                                               // serial number
      .Build();
}

/// The same by DisplayID 2, with timings of type X of each size.
TBytes MakeTile2() {
  TBytes blocks = {0x20, 0,    12, 0,    0,    0x1A, 0,    0,    1,    2,    3,   4, 14, 21, 0,  // product
                   0x21, 0x80, 29, 0x58, 0x02, 0x54, 0x01, 0x80, 0x07, 0x38, 0x04};              // size
  blocks.resize(blocks.size() + 21);
  const TBytes others = {0x2A, 0x00, 6,  0x01, 0x7F, 0x07, 0x37, 0x04, 59,                // type X
                         0x2A, 0x10, 7,  0x03, 0x7F, 0x07, 0x37, 0x04, 0xDF, 0x01,        //
                         0x2A, 0x20, 8,  0x13, 0x7F, 0x07, 0x37, 0x04, 0xDF, 0x01, 0x24,  //
                         0x29, 0,    16, 1,    2,    3,    4,    5,    6,    7,    8,     // container id
                         9,    10,   11, 12,   13,   14,   15,   16,                      //
                         0x28, 0,    22, 0x82, 0x10, 0x10, 0x00, 0x7F, 0x07, 0x6F, 0x08,  // topology
                         0,    0,    0,  0,    0,    0,    0,    0x1A, 0,    0,    1,    2, 3, 4};
  blocks.insert(blocks.end(), others.begin(), others.end());
  return MakeBase().DisplayId(0x20, blocks).Build();
}

/// A block map and one extension of each kind.
TBytes MakeBlocks() {
  return MakeBase()
      .Extension({edid::kBlockMap, 0x02, 0x70, 0x10, 0x40})
      .Cta({0x45, 16, 97, 96, 118, 218})
      .DisplayId(0x20, {0x2B, 0, 6, 0x01, 0, 48, 0x8F, 0x01, 0})
      .Extension(MakeTimingBlock())
      .Extension({edid::kDisplayInformationExtension, 0x01, 0x02})
      .Build();
}

}  // namespace

std::map<std::string, TBytes> MakeRichEdids() {
  return {{"video", MakeVideo()},
          {"video-codes", MakeVideoCodes()},
          {"link", MakeLink()},
          {"sound", MakeSound()},
          {"displayid-1", MakeDisplayId1()},
          {"displayid-2", MakeDisplayId2()},
          {"video-timings", MakeVideoTimings()},
          {"slots", MakeSlots()},
          {"tile-1", MakeTile1()},
          {"tile-2", MakeTile2()},
          {"blocks", MakeBlocks()}};
}
