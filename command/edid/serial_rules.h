// Finds the serial number that is printed on a monitor's case.
//
// The EDID has two places for it, the number in its header and a text, and each maker fills them in its own way. The
// rules here were found out by inventory agents. For any other maker the serial number is the text, or the number if
// there is no text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

enum class ESerialSource {
  kRule,    // made of number and text by the maker's rule
  kText,    // the text as it stands
  kNumber,  // the number in decimal digits
};

/// "rule", "text" or "number".
const char* GetName(ESerialSource source);

struct TSerial {
  std::string serial;
  ESerialSource source;
  std::string alternative;  // another one in the maker's papers or in other programs; empty if none is known
};

/// `maker`: its three letters. `number`: from the header; nothing for 0 and 0x01010101. `text`: empty if there is none.
/// Returns nothing if both are fillers or missing.
std::optional<TSerial> FindSerial(const std::string& maker, unsigned int productCode,
                                  std::optional<std::uint32_t> number, const std::string& text);

/// True for what makers write when they have no serial number, as a text or in decimal digits: blanks, 0, 1, 01010101
/// and its decimal 16843009, 1234567890123, or one digit repeated.
bool IsFillerSerial(const std::string& serial);
