// Builds EDIDs (VESA Enhanced EDID standard, version 1) from what they must say.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "edid/layout.h"

/// The bytes of one, and then those of the other: data blocks, slots or EDIDs.
std::vector<std::uint8_t> Join(std::vector<std::uint8_t> first, const std::vector<std::uint8_t>& second);

/// Starts with a valid base block that says as little as possible: version 1.3, no maker, no date, no size, no gamma,
/// four dummy descriptors, no timings, no extensions. Build sets the checksums and the extension count.
class TEdidBuilder {
 public:
  TEdidBuilder();

  /// Three capital letters.
  TEdidBuilder& Manufacturer(const std::string& letters);
  TEdidBuilder& Version(unsigned int version, unsigned int revision);
  /// `year` is the calendar year, 1990 to 2245.
  TEdidBuilder& Made(unsigned int week, unsigned int year);
  /// In centimetres.
  TEdidBuilder& ImageSize(unsigned int width, unsigned int height);
  /// The stored byte: gamma times 100, less 100.
  TEdidBuilder& Gamma(unsigned int stored);
  TEdidBuilder& Features(unsigned int bits);

  /// Fills descriptor slot 0 to 3.
  TEdidBuilder& Text(unsigned int slot, unsigned int tag, const std::string& text);
  TEdidBuilder& Name(unsigned int slot, const std::string& name) { return Text(slot, edid::kTagName, name); }
  TEdidBuilder& Serial(unsigned int slot, const std::string& serial) {
    return Text(slot, edid::kTagSerialNumber, serial);
  }
  /// Rates in kHz and Hz; `clock` in units of 10 MHz, 0xFF for none.
  TEdidBuilder& RangeLimits(unsigned int slot, unsigned int minVert, unsigned int maxVert, unsigned int minHoriz,
                            unsigned int maxHoriz, unsigned int clock);
  /// 1280 x 1024 at 60 Hz, on a picture of the size that was set before, or else of 338 x 270 mm.
  TEdidBuilder& DetailedTiming(unsigned int slot, bool interlaced);

  /// The two bytes of established timings.
  TEdidBuilder& Established(unsigned int first, unsigned int second);
  /// Standard timing 0 to 7 as its two bytes.
  TEdidBuilder& Standard(unsigned int index, unsigned int first, unsigned int second);

  /// Appends an extension block that begins with these bytes and is zero after them.
  TEdidBuilder& Extension(const std::vector<std::uint8_t>& head);

  /// Appends a CTA-861 extension of revision 3 with these data blocks, and then these detailed timings.
  TEdidBuilder& Cta(const std::vector<std::uint8_t>& dataBlocks, const std::vector<std::uint8_t>& timings = {});

  /// Appends a DisplayID extension, `version` such as 0x12 or 0x20, with these data blocks and the section's checksum.
  TEdidBuilder& DisplayId(unsigned int version, const std::vector<std::uint8_t>& dataBlocks);

  /// Sets any byte, after everything else; the checksums are still right unless this sets them.
  TEdidBuilder& Byte(std::size_t offset, unsigned int value);

  std::vector<std::uint8_t> Build() const;

 private:
  std::uint8_t* Slot(unsigned int slot) { return &m_bytes[edid::kDescriptors[slot]]; }

  std::vector<std::uint8_t> m_bytes;
  std::vector<std::pair<std::size_t, std::uint8_t>> m_overrides;
};
