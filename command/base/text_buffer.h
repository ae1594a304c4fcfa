// A text that grows at its end, with room to spare: an answer is made of thousands of short pieces, and appending one
// costs only a check of the room.
#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

class TTextBuffer {
 public:
  std::size_t GetSize() const { return m_size; }

  void Append(char byte) {
    *GetRoom(1) = byte;
    ++m_size;
  }

  void Append(std::string_view text) {
    char* const end = std::copy(text.begin(), text.end(), GetRoom(text.size()));
    EndAt(end);
  }

  /// Room for `size` bytes after the text. After writing there, call EndAt with the new end of the text.
  char* GetRoom(std::size_t size) {
    if (m_capacity - m_size < size) Grow(size);
    return m_bytes.get() + m_size;
  }
  void EndAt(const char* end) { m_size = static_cast<std::size_t>(end - m_bytes.get()); }

  /// Returns the text and empties the buffer, which keeps its room.
  std::string Take() { return std::string(m_bytes.get(), std::exchange(m_size, 0)); }

 private:
  void Grow(std::size_t size) {
    constexpr std::size_t least = 1024;  // bytes
    const std::size_t capacity = std::max({least, 2 * m_capacity, m_size + size});
    std::unique_ptr<char[]> bytes(new char[capacity]);
    std::copy_n(m_bytes.get(), m_size, bytes.get());
    m_bytes = std::move(bytes);
    m_capacity = capacity;
  }

  std::unique_ptr<char[]> m_bytes;
  std::size_t m_capacity = 0;
  std::size_t m_size = 0;
};
