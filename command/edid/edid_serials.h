// The serial numbers in an EDID (VESA Enhanced EDID, CTA-861 and DisplayID standards), and fillers in their place.
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>

/// Replaces serial numbers by 1, 2, ..., for as many EDIDs as belong together: equal ones by the same number, others by
/// others. So monitors that differ in nothing else stay apart.
class TSerialFillers {
 public:
  /// `edid`: whole 128-byte blocks. The sum of each block, and of each DisplayID section, stays what it was: a checksum
  /// stays as right or as wrong as it is. Numbers that stand for none (0 and 0x01010101 in the header, 0 in DisplayID,
  /// blank texts) stay.
  void Replace(std::string& edid);

  /// How many of each kind were replaced, such as "2 in a header, 1 as a container id"; empty for none.
  std::string Describe() const;

  /// The serial numbers that were texts, without the blanks around them.
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
