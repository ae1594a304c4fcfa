#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

/// A part of an EDID, not owned. Bytes beyond its end read as zero, since a block may be cut off or claim to be longer
/// than it is.
class TBytes {
 public:
  TBytes() = default;
  TBytes(const std::uint8_t* begin, std::size_t size) : m_begin(begin), m_size(size) {}

  std::size_t GetSize() const { return m_size; }

  unsigned int operator[](std::size_t offset) const { return offset < m_size ? m_begin[offset] : 0U; }

  /// The number in `size` bytes at `offset`, at most four, the lowest byte first.
  std::uint32_t Number(std::size_t offset, std::size_t size) const {
    std::uint32_t number = 0;
    for (std::size_t index = size; index-- > 0;) number = number << 8 | (*this)[offset + index];
    return number;
  }

  /// The `size` bytes at `offset`, or as many of them as exist.
  TBytes Part(std::size_t offset, std::size_t size) const {
    const std::size_t begin = std::min(offset, m_size);
    return {m_begin + begin, std::min(size, m_size - begin)};
  }

  TBytes From(std::size_t offset) const { return Part(offset, m_size); }

  const std::uint8_t* begin() const { return m_begin; }
  const std::uint8_t* end() const { return m_begin + m_size; }

 private:
  const std::uint8_t* m_begin = nullptr;
  std::size_t m_size = 0;
};
