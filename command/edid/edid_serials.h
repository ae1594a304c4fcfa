// Replaces the serial numbers in EDIDs (VESA Enhanced EDID, CTA-861 and DisplayID standards) by fillers.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>

/// Replaces the serial numbers of EDIDs that belong together by 1, 2, ...: equal ones by the same number, different
/// ones by different numbers. So monitors that differ only in their serial numbers still differ.
class TSerialFillers {
 public:
  /// `edid`: whole 128-byte blocks. The sum of each block and of each DisplayID section stays the same, so a right
  /// checksum stays right and a wrong one wrong. Numbers that mean "none" (0 and 0x01010101 in the header, 0 in
  /// DisplayID, blank texts) stay.
  void Replace(std::string& edid);

  /// How many of each kind were replaced, such as "2 in a header, 1 as a container id"; empty for none.
  std::string Describe() const;

  /// The replaced serial numbers that were texts, without the blanks around them.
  const std::set<std::string>& GetTexts() const { return m_texts; }

 private:
  class TEditor;
  struct TKind {
    std::map<std::string, unsigned int> fillers;  // by the original bytes
    std::size_t replaced = 0;
  };

  unsigned int Number(const char* kind, const std::string& original);

  std::map<std::string, TKind> m_kinds;
  std::set<std::string> m_texts;
};
