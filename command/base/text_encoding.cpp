#include "command/base/text_encoding.h"

#include <utf8.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>

namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// A message keeps this much of its front and of its end.
constexpr std::size_t kMessageFront = 600;
constexpr std::size_t kMessageEnd = 300;
constexpr std::size_t kMessageLimit = 1000;  // more than both with the words between them

typedef std::uint32_t TCode;  // of a character, in Unicode

struct TRange {
  TCode first, last;
};

// All hidden characters beyond ASCII; text_encoding.h says what each is.
constexpr TRange kHidden[] = {
    {0x80, 0x9F}, {0x061C, 0x061C}, {0x200E, 0x200F}, {0x2028, 0x202E}, {0x2066, 0x2069},
};

bool IsHidden(TCode code) {
  if (code < 0x80) return code < 0x20 || code == 0x7F;
  return std::any_of(std::begin(kHidden), std::end(kHidden),
                     [&](const TRange& range) { return code >= range.first && code <= range.last; });
}

/// `format`: of printf, for one number.
std::string EscapeCode(const char* format, TCode code) {
  char text[16];
  std::snprintf(text, sizeof text, format, static_cast<unsigned int>(code));
  return text;
}

// What is written for a character in each kind of text; empty for one that is written as it is.

std::string EscapeForPeople(TCode code) {
  if (!IsHidden(code) || code == '\t') return std::string();
  return EscapeCode(code < 0x80 ? "\\x%02x" : "\\u%04x", code);
}

/// The escapes that JSON (RFC 8259, section 7) and MOF have in common.
std::string EscapeShort(TCode code) {
  switch (code) {
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    case '\b':
      return "\\b";
    case '\f':
      return "\\f";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      return std::string();
  }
}

std::string EscapeForJson(TCode code) {
  const std::string escape = EscapeShort(code);
  return escape.empty() && IsHidden(code) ? EscapeCode("\\u%04x", code) : escape;
}

std::string EscapeForMof(TCode code) {
  const std::string escape = EscapeShort(code);
  return escape.empty() && IsHidden(code) ? EscapeCode("\\x%04X", code) : escape;
}

std::string EscapeForHtml(TCode code) {
  switch (code) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    case 0xFFFE:  // no characters of XML
    case 0xFFFF:
      return kReplacement;
    default:
      return EscapeForPeople(code);
  }
}

/// No kind of text escapes it; most texts are made of such characters.
bool IsPlain(char byte) {
  return (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') || byte == ' ';
}

bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// Goes through the text: `append` takes each run of well-formed characters, and U+FFFD for each byte between.
template <typename TAppend>
std::string Convert(std::string_view text, TAppend append) {
  std::string converted;
  while (true) {
    const char* const beyondAscii =
        std::find_if_not(text.data(), text.data() + text.size(), IsAscii);  // nearly always the end
    const char* const invalid = utf8::find_invalid(beyondAscii, text.data() + text.size());
    const auto length = static_cast<std::size_t>(invalid - text.data());
    append(converted, text.substr(0, length));
    if (length == text.size()) return converted;
    converted += kReplacement;
    text.remove_prefix(length + 1);
  }
}

/// The text with what `escape` gives for its characters.
std::string Escape(std::string_view text, std::string (*escape)(TCode)) {
  return Convert(text, [&](std::string& converted, std::string_view run) {
    const char* const end = run.data() + run.size();
    for (const char* position = run.data(); position != end;) {
      const char* const special = std::find_if_not(position, end, IsPlain);
      converted.append(position, special);
      if (special == end) break;
      position = special;
      const std::string shown = escape(utf8::unchecked::next(position));
      shown.empty() ? converted.append(special, position) : converted.append(shown);
    }
  });
}

bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

}  // namespace

std::string ToUtf8(const std::string& text) {
  return Convert(text, [](std::string& converted, std::string_view run) { converted += run; });
}

std::string ToPrintable(const std::string& text) { return Escape(text, EscapeForPeople); }

std::string ToMessage(const std::string& text) {
  std::string printable = ToPrintable(text);
  const std::size_t columns = CountColumns(printable);
  if (columns <= kMessageLimit) return printable;
  return printable.substr(0, GetLength(printable, kMessageFront)) + " ... (" + std::to_string(columns) +
         " characters) ... " + printable.substr(GetLength(printable, columns - kMessageEnd));
}

std::string QuoteJson(const std::string& text) { return '"' + Escape(text, EscapeForJson) + '"'; }

std::string QuoteMof(const std::string& text) { return '"' + Escape(text, EscapeForMof) + '"'; }

std::string EscapeHtml(const std::string& text) { return Escape(text, EscapeForHtml); }

std::size_t CountColumns(std::string_view text) {
  // cppcheck-suppress invalidLifetime ; it takes a caller's variable, which lives, for one that is gone
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

std::size_t GetLength(std::string_view text, std::size_t columns) {
  std::size_t length = 0;
  for (; length < text.size(); ++length) {
    if (BeginsCharacter(text[length]) && columns-- == 0) break;
  }
  return length;
}
