// The serial number that is printed on a monitor's case.
//
// The EDID has two places for it, the number in its header and a text, and each maker fills them in its own way. The
// rules here are those that the agents of inventories have found out; a monitor of any other maker has its text, or its
// number where it has no text.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

enum class ESerialSource {
  kRule,    // of the maker: made of number and text
  kText,    // as it stands
  kNumber,  // in decimal digits
};

/// "rule", "text" or "number".
const char* GetName(ESerialSource source);

struct TSerial {
  std::string serial;
  ESerialSource source;
  std::string alternative;  // what the maker's papers or other programs may call it; empty when there is nothing else
};

/// `maker`: its three letters. `number`: of the header; nothing for 0 and 0x01010101. `text`: empty where there is
/// none. Nothing when both are fillers or missing.
std::optional<TSerial> FindSerial(const std::string& maker, unsigned int productCode,
                                  std::optional<std::uint32_t> number, const std::string& text);

/// Whether a serial number, as a text or in decimal digits, is one that makers write where they have none: blanks, 0,
/// 1, 01010101 and its decimal 16843009, 1234567890123, or one digit repeated.
bool IsFillerSerial(const std::string& serial);
