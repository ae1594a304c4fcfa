// Puts the lines of a fleet's answer, which come in any order, into the order of its list. Only a limited number of
// lines may wait for an earlier one.
#pragma once

#include <cstddef>
#include <map>
#include <string>

class TOrderedLines {
 public:
  // How far workers may be ahead of a slow machine whose line is next: in lines, and in bytes of waiting lines.
  static constexpr std::size_t kMaxAhead = 1000;
  static constexpr std::size_t kMaxHeldSize = std::size_t{64} * 1024 * 1024;

  /// True if work on the line of that number may begin.
  bool HasRoomFor(std::size_t number) const { return number - m_turn < kMaxAhead && m_heldSize < kMaxHeldSize; }

  /// Takes the line of that number; each number from 0 on comes once, in any order.
  void Put(std::size_t number, std::string line);

  /// The lines whose turn it is; empty while an earlier one is missing.
  std::string TakeReady();

  /// The bytes of the waiting lines.
  std::size_t GetHeldSize() const { return m_heldSize; }

  /// The number of the line whose turn it is.
  std::size_t GetTurn() const { return m_turn; }

 private:
  std::map<std::size_t, std::string> m_held;
  std::size_t m_turn = 0;
  std::size_t m_heldSize = 0;  // bytes
};
