// Puts the lines of a fleet's answer, which come as the workers are done, in the order of its list.
#pragma once

#include <cstddef>
#include <map>
#include <string>

class TOrderedLines {
 public:
  /// Takes the line of that number; each number from 0 on comes once, in any order.
  void Put(std::size_t number, std::string line);

  /// The lines whose turn it is, one behind the other; empty when an earlier one is missing yet.
  std::string TakeReady();

  /// The number of the line whose turn it is.
  std::size_t GetTurn() const { return m_turn; }

  /// What waits for its turn, in bytes.
  std::size_t GetHeldSize() const { return m_heldSize; }

 private:
  std::map<std::size_t, std::string> m_held;
  std::size_t m_turn = 0;
  std::size_t m_heldSize = 0;
};
