#include "tests/support/edid_builder.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

constexpr std::size_t kBlockSize = 128;
constexpr std::size_t kTextSize = 13;

std::uint8_t ToByte(unsigned int value) { return static_cast<std::uint8_t>(value); }

}  // namespace

TEdidBuilder::TEdidBuilder() : m_bytes(kBlockSize) {
  std::fill_n(m_bytes.begin() + 1, 6, std::uint8_t{0xFF});
  Version(1, 3);
  for (unsigned int index = 0; index < 8; ++index) Standard(index, 1, 1);
  for (unsigned int slot = 0; slot < 4; ++slot) Slot(slot)[3] = 0x10;
}

TEdidBuilder& TEdidBuilder::Manufacturer(const std::string& letters) {
  unsigned int word = 0;
  for (const char letter : letters) word = word << 5 | (static_cast<unsigned char>(letter) - 64U);
  m_bytes[8] = ToByte(word >> 8);
  m_bytes[9] = ToByte(word);
  return *this;
}

TEdidBuilder& TEdidBuilder::Version(unsigned int version, unsigned int revision) {
  m_bytes[18] = ToByte(version);
  m_bytes[19] = ToByte(revision);
  return *this;
}

TEdidBuilder& TEdidBuilder::Made(unsigned int week, unsigned int year) {
  m_bytes[16] = ToByte(week);
  m_bytes[17] = ToByte(year - 1990);
  return *this;
}

TEdidBuilder& TEdidBuilder::ImageSize(unsigned int width, unsigned int height) {
  m_bytes[21] = ToByte(width);
  m_bytes[22] = ToByte(height);
  return *this;
}

TEdidBuilder& TEdidBuilder::Gamma(unsigned int stored) {
  m_bytes[23] = ToByte(stored);
  return *this;
}

TEdidBuilder& TEdidBuilder::Features(unsigned int bits) {
  m_bytes[24] = ToByte(bits);
  return *this;
}

TEdidBuilder& TEdidBuilder::Text(unsigned int slot, unsigned int tag, const std::string& text) {
  std::uint8_t* const descriptor = Slot(slot);
  std::fill_n(descriptor, 18, std::uint8_t{0});
  descriptor[3] = ToByte(tag);
  std::string padded = text;
  if (padded.size() < kTextSize) padded += '\n';
  padded.resize(kTextSize, ' ');
  std::copy(padded.begin(), padded.end(), descriptor + 5);
  return *this;
}

TEdidBuilder& TEdidBuilder::RangeLimits(unsigned int slot, unsigned int minVert, unsigned int maxVert,
                                        unsigned int minHoriz, unsigned int maxHoriz, unsigned int clock) {
  const unsigned int bytes[18] = {0,     0,    0,    0xFD, 0,    minVert, maxVert, minHoriz, maxHoriz,
                                  clock, 0x00, 0x0A, 0x20, 0x20, 0x20,    0x20,    0x20,     0x20};
  std::transform(std::begin(bytes), std::end(bytes), Slot(slot), ToByte);
  return *this;
}

TEdidBuilder& TEdidBuilder::DetailedTiming(unsigned int slot, bool interlaced) {
  // 1280 x 1024 at 60 Hz: the VESA timing of 108 MHz.
  const unsigned int bytes[18] = {0x30, 0x2A, 0x00, 0x98, 0x51, 0x00, 0x2A, 0x40, 0x30,
                                  0x70, 0x13, 0x00, 0x52, 0x0E, 0x11, 0x00, 0x00, interlaced ? 0x9EU : 0x1EU};
  std::transform(std::begin(bytes), std::end(bytes), Slot(slot), ToByte);
  return *this;
}

TEdidBuilder& TEdidBuilder::Established(unsigned int first, unsigned int second) {
  m_bytes[35] = ToByte(first);
  m_bytes[36] = ToByte(second);
  return *this;
}

TEdidBuilder& TEdidBuilder::Standard(unsigned int index, unsigned int first, unsigned int second) {
  m_bytes[38 + std::size_t{2} * index] = ToByte(first);
  m_bytes[39 + std::size_t{2} * index] = ToByte(second);
  return *this;
}

TEdidBuilder& TEdidBuilder::Extension(const std::vector<std::uint8_t>& head) {
  const std::size_t offset = m_bytes.size();
  m_bytes.resize(offset + kBlockSize);
  std::copy(head.begin(), head.end(), m_bytes.begin() + static_cast<std::ptrdiff_t>(offset));
  return *this;
}

TEdidBuilder& TEdidBuilder::Byte(std::size_t offset, unsigned int value) {
  m_overrides.emplace_back(offset, ToByte(value));
  return *this;
}

std::vector<std::uint8_t> TEdidBuilder::Build() const {
  std::vector<std::uint8_t> bytes = m_bytes;
  bytes[126] = ToByte(static_cast<unsigned int>(bytes.size() / kBlockSize - 1));
  const auto apply = [&] {
    for (const auto& [offset, value] : m_overrides) bytes[offset] = value;
  };
  apply();
  for (std::size_t block = 0; block < bytes.size(); block += kBlockSize) {
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(block);
    const auto checksum = begin + kBlockSize - 1;
    *checksum = ToByte(0U - std::accumulate(begin, checksum, 0U));
  }
  apply();
  return bytes;
}
