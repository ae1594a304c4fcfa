#include "command/base/xml_text.h"

#include <algorithm>

#include "command/base/text_encoding.h"

namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";  // U+FFFD
constexpr std::string_view kNoncharacters[] = {"\xEF\xBF\xBE", "\xEF\xBF\xBF"};

bool IsBadControl(char byte) {
  return static_cast<unsigned char>(byte) < 0x20 && byte != '\t' && byte != '\n' && byte != '\r';
}

/// The length of what XML does not have at the start of valid UTF-8; 0 for a good character.
std::size_t GetBadLength(std::string_view text) {
  if (IsBadControl(text.front())) return 1;
  for (const std::string_view character : kNoncharacters) {
    if (text.substr(0, character.size()) == character) return character.size();
  }
  return 0;
}

bool IsPlain(char byte) { return static_cast<unsigned char>(byte) < 0x80 && !IsBadControl(byte); }

}  // namespace

bool IsXmlCharacter(unsigned long code) {
  if (code < 0x20) return code == '\t' || code == '\n' || code == '\r';
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  return !isSurrogate && code != 0xFFFE && code != 0xFFFF && code <= 0x10FFFF;
}

bool IsXmlText(std::string_view text) {
  return std::all_of(text.begin(), text.end(), IsPlain) || ToXmlText(std::string(text)) == text;
}

std::string ToXmlText(const std::string& text) {
  if (std::all_of(text.begin(), text.end(), IsPlain)) return text;  // as most texts are
  const std::string valid = ToUtf8(text);
  std::string clean;
  for (std::string_view rest = valid; !rest.empty();) {
    const std::size_t bad = GetBadLength(rest);
    if (bad == 0) {
      clean += rest.front();
    } else {
      clean += kReplacement;
    }
    rest.remove_prefix(std::max<std::size_t>(bad, 1));
  }
  return clean;
}

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
      case '\r':  // a reader would make a line feed of it
        escaped += "&#13;";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}
