#include "command/fleet/ordered_lines.h"

#include <utility>

void TOrderedLines::Put(std::size_t number, std::string line) {
  m_heldSize += line.size();
  m_held.emplace(number, std::move(line));
}

std::string TOrderedLines::TakeReady() {
  std::string ready;
  for (auto next = m_held.begin(); next != m_held.end() && next->first == m_turn; next = m_held.erase(next)) {
    ready += next->second;
    ++m_turn;
  }
  m_heldSize -= ready.size();
  return ready;
}
