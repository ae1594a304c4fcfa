// Reads an input of the fuzzer from front to back. Missing bytes at its end read as zeros.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "edid/layout.h"

class TInput {
 public:
  TInput(const std::uint8_t* data, std::size_t size) : m_next(data), m_end(data + size) {}

  std::uint8_t TakeByte() { return m_next == m_end ? std::uint8_t{0} : *m_next++; }

  /// The characters up to a zero byte, which is skipped.
  std::string TakeText() {
    const std::uint8_t* const end = std::find(m_next, m_end, 0);
    const std::string text(m_next, end);
    m_next = end == m_end ? end : end + 1;
    return text;
  }

  std::string TakeRest() { return std::string(std::exchange(m_next, m_end), m_end); }

  /// The rest: the EDIDs of units 0, 1, 2, ..., each as the number of its 128-byte blocks, then those blocks.
  std::map<unsigned int, std::vector<std::uint8_t>> TakeEdids() {
    std::map<unsigned int, std::vector<std::uint8_t>> edids;
    for (unsigned int unit = 0; m_next != m_end; ++unit) {
      std::vector<std::uint8_t>& edid = edids[unit];
      edid.resize(TakeByte() * edid::kBlockSize);
      const std::size_t count = std::min(edid.size(), static_cast<std::size_t>(m_end - m_next));
      std::copy_n(m_next, count, edid.begin());
      m_next += count;
    }
    return edids;
  }

 private:
  const std::uint8_t* m_next;
  const std::uint8_t* m_end;
};
