#include "command/base/text_encoding.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <map>

namespace {

// The well-formed characters by their first byte: how long they are, and what their second byte may be (RFC 3629).
struct TLead {
  unsigned char first, last, length, secondFirst, secondLast;
};

constexpr TLead kLeads[] = {
    {0x00, 0x7F, 1, 0x80, 0xBF}, {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF},
    {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F}, {0xEE, 0xEF, 3, 0x80, 0xBF},
    {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

constexpr const char* kReplacement = "\xEF\xBF\xBD";  // U+FFFD

unsigned char At(std::string_view text, std::size_t position) { return static_cast<unsigned char>(text[position]); }

bool Continues(std::string_view text, const TLead& lead) {
  if (text.size() < lead.length) return false;
  if (lead.length > 1 && (At(text, 1) < lead.secondFirst || At(text, 1) > lead.secondLast)) return false;
  for (std::size_t position = 2; position < lead.length; ++position) {
    if (At(text, position) < 0x80 || At(text, position) > 0xBF) return false;
  }
  return true;
}

/// The length in bytes of the well-formed character that the text begins with, or 0.
std::size_t GetCharacterLength(std::string_view text) {
  for (const TLead& lead : kLeads) {
    if (At(text, 0) >= lead.first && At(text, 0) <= lead.last) return Continues(text, lead) ? lead.length : 0;
  }
  return 0;
}

bool IsAscii(char character) { return static_cast<unsigned char>(character) < 0x80; }

bool IsControl(std::string_view character) {
  const unsigned char first = At(character, 0);
  const bool isC1 = first == 0xC2 && At(character, 1) < 0xA0;
  return (first < 0x20 && first != '\t') || first == 0x7F || isC1;
}

std::string Escape(std::string_view control) {
  std::string escaped;
  for (const char byte : control) {
    char text[8];
    std::snprintf(text, sizeof text, "\\x%02x", static_cast<unsigned char>(byte));
    escaped += text;
  }
  return escaped;
}

std::string EscapeForMof(std::string_view character) {
  static const std::map<char, const char*> escapes = {{'\\', "\\\\"}, {'"', "\\\""}, {'\b', "\\b"}, {'\t', "\\t"},
                                                      {'\n', "\\n"},  {'\f', "\\f"}, {'\r', "\\r"}};
  const auto escape = escapes.find(character.front());
  if (escape != escapes.end()) return escape->second;
  if (!IsControl(character)) return std::string(character);
  char text[8];
  std::snprintf(text, sizeof text, "\\x%04X", static_cast<unsigned char>(character.back()));
  return text;
}

std::string EscapeForHtml(std::string_view character) {
  static const std::map<std::string_view, const char*> escapes = {
      {"&", "&amp;"},
      {"<", "&lt;"},
      {">", "&gt;"},
      {"\"", "&quot;"},
      {"'", "&#39;"},
      {"\xEF\xBF\xBE", kReplacement},  // U+FFFE and U+FFFF are no characters of XML
      {"\xEF\xBF\xBF", kReplacement}};
  const auto escape = escapes.find(character);
  return escape == escapes.end() ? std::string(character) : escape->second;
}

bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

/// Goes through the characters of `text`; `show` gives what stands for a well-formed one.
template <typename TShow>
std::string Convert(std::string_view text, TShow show) {
  std::string converted;
  while (!text.empty()) {
    const std::size_t length = GetCharacterLength(text);
    if (length == 0) {
      converted += kReplacement;
      text.remove_prefix(1);
    } else {
      converted += show(text.substr(0, length));
      text.remove_prefix(length);
    }
  }
  return converted;
}

}  // namespace

std::string ToUtf8(const std::string& text) {
  if (std::all_of(text.begin(), text.end(), IsAscii)) return text;  // as most texts are
  return Convert(text, [](std::string_view character) { return character; });
}

std::string ToPrintable(const std::string& text) {
  return Convert(text, [](std::string_view character) {
    return IsControl(character) ? Escape(character) : std::string(character);
  });
}

std::string QuoteMof(const std::string& text) { return '"' + Convert(text, EscapeForMof) + '"'; }

std::string EscapeHtml(const std::string& text) { return Convert(ToPrintable(text), EscapeForHtml); }

std::size_t CountColumns(std::string_view text) {
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

std::size_t GetLength(std::string_view text, std::size_t columns) {
  std::size_t length = 0;
  for (; length < text.size(); ++length) {
    if (BeginsCharacter(text[length]) && columns-- == 0) break;
  }
  return length;
}
