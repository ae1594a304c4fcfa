#include "command/base/xml_text.h"

#include <utf8.h>

#include <algorithm>

namespace {

constexpr const char* kNotXml = "\xEF\xBF\xBD";  // U+FFFD
constexpr std::string_view kNoncharacters[] = {"\xEF\xBF\xBE", "\xEF\xBF\xBF"};

bool IsBadControl(char byte) {
  return static_cast<unsigned char>(byte) < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
}

/// The length in bytes of the first character of valid UTF-8 if XML does not allow it; otherwise 0.
std::size_t GetBadLength(std::string_view text) {
  if (IsBadControl(text.front())) return 1;
  for (const std::string_view character : kNoncharacters) {
    if (text.substr(0, character.size()) == character) return character.size();
  }
  return 0;
}

bool IsPlainXml(char byte) { return static_cast<unsigned char>(byte) < 0x80 && !IsBadControl(byte); }

/// Appends U+FFFD in place of a character that XML does not allow, or of a byte that is not UTF-8.
void AppendReplacement(std::string& target, std::string_view bad, bool isNumbered) {
  constexpr const char* digits = "0123456789ABCDEF";
  if (!isNumbered) target += kNotXml;
  for (const char byte : isNumbered ? bad : std::string_view()) {
    const auto value = static_cast<unsigned char>(byte);
    target.append(kNotXml).append(1, digits[value >> 4]).append(1, digits[value & 15]);
  }
}

void AppendValid(std::string& target, std::string_view valid, bool isNumbered) {
  while (!valid.empty()) {
    const std::size_t bad = GetBadLength(valid);
    if (bad == 0) {
      target += valid.front();
    } else {
      AppendReplacement(target, valid.substr(0, bad), isNumbered);
    }
    valid.remove_prefix(std::max<std::size_t>(bad, 1));
  }
}

std::string ReplaceBad(const std::string& text, bool isNumbered) {
  if (std::all_of(text.begin(), text.end(), IsPlainXml)) return text;  // most texts are plain
  std::string clean;
  for (std::string_view rest = text; !rest.empty();) {
    const std::size_t valid = static_cast<std::size_t>(utf8::find_invalid(rest.begin(), rest.end()) - rest.begin());
    AppendValid(clean, rest.substr(0, valid), isNumbered);
    rest.remove_prefix(valid);
    if (rest.empty()) break;
    AppendReplacement(clean, rest.substr(0, 1), isNumbered);
    rest.remove_prefix(1);
  }
  return clean;
}

}  // namespace

bool IsXmlCharacter(unsigned long code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  return !isSurrogate && code != 0xFFFE && code != 0xFFFF && code <= 0x10FFFF;
}

bool IsXmlText(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsPlainXml) || ToXmlText(std::string(text)) == text;
}

std::string ToXmlText(const std::string& text) { return ReplaceBad(text, false); }

std::string NumberXmlText(const std::string& text) { return ReplaceBad(text, true); }

std::string EscapeXml(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char character : text) {
    switch (character) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\r':  // unescaped, a reader would take it as a line feed
        escaped += "&#13;";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}
