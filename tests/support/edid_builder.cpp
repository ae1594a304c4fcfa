#include "tests/support/edid_builder.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "edid/cta_layout.h"
#include "edid/display_id_layout.h"

namespace {

constexpr std::uint8_t kTagDummy = 0x10;  // of a descriptor that says nothing

std::uint8_t ToByte(unsigned int value) { return static_cast<std::uint8_t>(value); }

}  // namespace

std::vector<std::uint8_t> Join(std::vector<std::uint8_t> first, const std::vector<std::uint8_t>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

TEdidBuilder::TEdidBuilder() : m_bytes(edid::kBlockSize) {
  std::copy(edid::kHeader.begin(), edid::kHeader.end(), m_bytes.begin());
  Version(1, 3);
  for (unsigned int index = 0; index < edid::kStandardTimingCount; ++index) Standard(index, 1, 1);
  for (const std::size_t slot : edid::kDescriptors) m_bytes[slot + edid::kDescriptorTag] = kTagDummy;
}

TEdidBuilder& TEdidBuilder::Manufacturer(const std::string& letters) {
  unsigned int word = 0;
  for (const char letter : letters) word = word << 5 | (static_cast<unsigned char>(letter) - 64U);
  m_bytes[edid::kManufacturer] = ToByte(word >> 8);
  m_bytes[edid::kManufacturer + 1] = ToByte(word);
  return *this;
}

TEdidBuilder& TEdidBuilder::Version(unsigned int version, unsigned int revision) {
  m_bytes[edid::kVersion] = ToByte(version);
  m_bytes[edid::kRevision] = ToByte(revision);
  return *this;
}

TEdidBuilder& TEdidBuilder::Made(unsigned int week, unsigned int year) {
  m_bytes[edid::kManufacturingWeek] = ToByte(week);
  m_bytes[edid::kManufacturingYear] = ToByte(year - edid::kFirstYear);
  return *this;
}

TEdidBuilder& TEdidBuilder::ImageSize(unsigned int width, unsigned int height) {
  m_bytes[edid::kHorizontalImageSize] = ToByte(width);
  m_bytes[edid::kVerticalImageSize] = ToByte(height);
  return *this;
}

TEdidBuilder& TEdidBuilder::Gamma(unsigned int stored) {
  m_bytes[edid::kGamma] = ToByte(stored);
  return *this;
}

TEdidBuilder& TEdidBuilder::Features(unsigned int bits) {
  m_bytes[edid::kFeatures] = ToByte(bits);
  return *this;
}

TEdidBuilder& TEdidBuilder::Text(unsigned int slot, unsigned int tag, const std::string& text) {
  std::uint8_t* const descriptor = Slot(slot);
  std::fill_n(descriptor, edid::kDescriptorSize, std::uint8_t{0});
  descriptor[edid::kDescriptorTag] = ToByte(tag);
  std::string padded = text;
  if (padded.size() < edid::kDescriptorTextSize) padded += '\n';
  padded.resize(edid::kDescriptorTextSize, ' ');
  std::copy(padded.begin(), padded.end(), descriptor + edid::kDescriptorText);
  return *this;
}

TEdidBuilder& TEdidBuilder::RangeLimits(unsigned int slot, unsigned int minVert, unsigned int maxVert,
                                        unsigned int minHoriz, unsigned int maxHoriz, unsigned int clock) {
  const unsigned int bytes[edid::kDescriptorSize] = {
      0, 0, 0, 0xFD, 0, minVert, maxVert, minHoriz, maxHoriz, clock, 0x00, 0x0A, 0x20, 0x20, 0x20, 0x20, 0x20, 0x20};
  std::transform(std::begin(bytes), std::end(bytes), Slot(slot), ToByte);
  return *this;
}

TEdidBuilder& TEdidBuilder::DetailedTiming(unsigned int slot, bool interlaced) {
  // The VESA timing of 108 MHz.
  constexpr unsigned int millimetres = 10;
  const bool hasSize = m_bytes[edid::kHorizontalImageSize] != 0 && m_bytes[edid::kVerticalImageSize] != 0;
  const unsigned int width = hasSize ? m_bytes[edid::kHorizontalImageSize] * millimetres : 338;
  const unsigned int height = hasSize ? m_bytes[edid::kVerticalImageSize] * millimetres : 270;
  const unsigned int bytes[edid::kDescriptorSize] = {0x30,         0x2A,          0x00,
                                                     0x98,         0x51,          0x00,
                                                     0x2A,         0x40,          0x30,
                                                     0x70,         0x13,          0x00,
                                                     width & 0xFF, height & 0xFF, (width >> 8) << 4 | height >> 8,
                                                     0x00,         0x00,          interlaced ? 0x9EU : 0x1EU};
  std::transform(std::begin(bytes), std::end(bytes), Slot(slot), ToByte);
  return *this;
}

TEdidBuilder& TEdidBuilder::Established(unsigned int first, unsigned int second) {
  m_bytes[edid::kEstablishedTimings] = ToByte(first);
  m_bytes[edid::kEstablishedTimings + 1] = ToByte(second);
  return *this;
}

TEdidBuilder& TEdidBuilder::Standard(unsigned int index, unsigned int first, unsigned int second) {
  std::uint8_t* const entry = &m_bytes[edid::kStandardTimings + edid::kStandardTimingSize * index];
  entry[0] = ToByte(first);
  entry[1] = ToByte(second);
  return *this;
}

TEdidBuilder& TEdidBuilder::Extension(const std::vector<std::uint8_t>& head) {
  const std::size_t offset = m_bytes.size();
  m_bytes.resize(offset + edid::kBlockSize);
  std::copy(head.begin(), head.end(), m_bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  return *this;
}

TEdidBuilder& TEdidBuilder::Cta(const std::vector<std::uint8_t>& dataBlocks, const std::vector<std::uint8_t>& timings) {
  const auto timingsAt = ToByte(static_cast<unsigned int>(edid::cta::kDataBlocks + dataBlocks.size()));
  return Extension(
      Join(Join({edid::cta::kExtension, edid::cta::kFirstWithDataBlocks, timingsAt, 0}, dataBlocks), timings));
}

TEdidBuilder& TEdidBuilder::DisplayId(unsigned int version, const std::vector<std::uint8_t>& dataBlocks) {
  const std::uint8_t size = ToByte(static_cast<unsigned int>(dataBlocks.size()));
  std::vector<std::uint8_t> head = Join({edid::displayid::kExtension, ToByte(version), size, 0, 0}, dataBlocks);
  head.push_back(ToByte(0U - std::accumulate(head.begin() + 1, head.end(), 0U)));
  return Extension(head);
}

TEdidBuilder& TEdidBuilder::Byte(std::size_t offset, unsigned int value) {
  m_overrides.emplace_back(offset, ToByte(value));
  return *this;
}

std::vector<std::uint8_t> TEdidBuilder::Build() const {
  std::vector<std::uint8_t> bytes = m_bytes;
  bytes[edid::kExtensionCount] = ToByte(static_cast<unsigned int>(bytes.size() / edid::kBlockSize - 1));
  const auto apply = [&] {
    for (const auto& [offset, value] : m_overrides) bytes[offset] = value;
  };
  apply();
  for (std::size_t block = 0; block < bytes.size(); block += edid::kBlockSize) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(block);
    const auto checksum = begin + edid::kChecksum;
    *checksum = ToByte(0U - std::accumulate(begin, checksum, 0U));
  }
  apply();
  return bytes;
}
