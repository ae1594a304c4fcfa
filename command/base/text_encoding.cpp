#include "command/base/text_encoding.h"

#include <utf8.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "command/base/text_buffer.h"

namespace {

constexpr const char* kReplacement = "\xEF\xBF\xBD";  // U+FFFD

// The characters that a long message keeps of its front and of its end.
constexpr std::size_t kMessageFront = 600;
constexpr std::size_t kMessageEnd = 300;
constexpr std::size_t kMessageLimit = 1000;  // more than both and the words between them

typedef std::uint32_t TCode;  // a character's number in Unicode

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

/// `format`: as for printf, with one number.
std::string EscapeCode(const char* format, TCode code) {
  char text[16];
  std::snprintf(text, sizeof text, format, static_cast<unsigned int>(code));
  return text;
}

// How a character is written in each kind of text. Each function appends its escape, or returns false for a character
// that needs none.

bool EscapeForPeople(std::string& target, TCode code) {
  if (!IsHidden(code) || code == '\t') return false;
  target += EscapeCode(code < 0x80 ? "\\x%02x" : "\\u%04x", code);
  return true;
}

/// The escapes that JSON (RFC 8259, section 7) and MOF have in common: the letter after the backslash, or 0.
constexpr char GetShortEscape(TCode code) {
  switch (code) {
    case '"':
    case '\\':
      return static_cast<char>(code);
    case '\b':
      return 'b';
    case '\f':
      return 'f';
    case '\n':
      return 'n';
    case '\r':
      return 'r';
    case '\t':
      return 't';
    default:
      return 0;
  }
}

/// `format`: as for printf, for a hidden character without a short escape.
bool EscapeForLiteral(std::string& target, TCode code, const char* format) {
  if (const char letter = GetShortEscape(code)) {
    target.append(1, '\\').append(1, letter);
    return true;
  }
  if (!IsHidden(code)) return false;
  target += EscapeCode(format, code);
  return true;
}

bool EscapeForJson(std::string& target, TCode code) { return EscapeForLiteral(target, code, "\\u%04x"); }

bool EscapeForMof(std::string& target, TCode code) { return EscapeForLiteral(target, code, "\\x%04X"); }

/// The entity of a character that HTML would read as markup; null for any other.
const char* GetEntity(TCode code) {
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
    case 0xFFFE:  // not allowed in XML
    case 0xFFFF:
      return kReplacement;
    default:
      return nullptr;
  }
}

bool EscapeForHtml(std::string& target, TCode code) {
  const char* const entity = GetEntity(code);
  if (entity == nullptr) return EscapeForPeople(target, code);
  target += entity;
  return true;
}

/// True for a character that no kind of text escapes. Most texts have only such characters.
constexpr bool IsPlain(char byte) {
  return byte >= ' ' && byte < 0x7F && byte != '"' && byte != '\\' && byte != '&' && byte != '<' && byte != '>' &&
         byte != '\'';
}

struct TPlainBytes {
  bool isPlain[256] = {};

  constexpr TPlainBytes() {
    for (int byte = 0; byte < 256; ++byte) isPlain[byte] = IsPlain(static_cast<char>(byte));
  }
};
constexpr TPlainBytes kPlain;  // a table for speed: every byte of every answer is looked up

const char* FindSpecial(const char* begin, const char* end) {
  return std::find_if_not(begin, end, [](char byte) { return kPlain.isPlain[static_cast<unsigned char>(byte)]; });
}

bool IsAscii(char byte) { return static_cast<unsigned char>(byte) < 0x80; }

/// Calls `append` for each run of well-formed characters, and appends U+FFFD for each byte between them.
template <typename TAppend>
void Convert(std::string& converted, std::string_view text, TAppend append) {
  while (true) {
    const char* const beyondAscii =
        std::find_if_not(text.data(), text.data() + text.size(), IsAscii);  // nearly always the end
    const char* const invalid = utf8::find_invalid(beyondAscii, text.data() + text.size());
    const auto length = static_cast<std::size_t>(invalid - text.data());
    append(converted, text.substr(0, length));
    if (length == text.size()) return;
    converted += kReplacement;
    text.remove_prefix(length + 1);
  }
}

/// Appends a well-formed text, its characters escaped by `escape`.
template <typename TEscape>
void AppendWellFormed(std::string& target, std::string_view text, TEscape escape) {
  const char* const end = text.data() + text.size();
  for (const char* position = text.data(); position != end;) {
    const char* const special = FindSpecial(position, end);
    target.append(position, special);
    if (special == end) break;
    position = special;
    if (!escape(target, utf8::unchecked::next(position))) target.append(special, position);
  }
}

/// Appends the ASCII characters at the front of the text, escaped by `escape`, and returns their number. They are
/// nearly always the whole text.
template <typename TEscape>
std::size_t AppendAsciiFront(std::string& target, std::string_view text, TEscape escape) {
  const char* const end = text.data() + text.size();
  for (const char* position = text.data();;) {
    const char* const special = FindSpecial(position, end);
    target.append(position, static_cast<std::size_t>(special - position));
    if (special == end || !IsAscii(*special)) return static_cast<std::size_t>(special - text.data());
    if (!escape(target, static_cast<TCode>(*special))) target += *special;
    position = special + 1;
  }
}

template <typename TEscape>
void AppendEscaped(std::string& target, std::string_view text, TEscape escape) {
  text.remove_prefix(AppendAsciiFront(target, text, escape));
  if (text.empty()) return;
  Convert(target, text,
          [&](std::string& converted, std::string_view run) { AppendWellFormed(converted, run, escape); });
}

template <typename TEscape>
std::string Escape(std::string_view text, TEscape escape) {
  std::string escaped;
  AppendEscaped(escaped, text, escape);
  return escaped;
}

/// How JSON escapes each byte: the letter after the backslash, or 0 for a byte that needs no escape.
struct TJsonEscapes {
  static constexpr char kNumber = 'u';       // the character's number follows
  static constexpr char kBeyondAscii = '?';  // a byte that is not ASCII

  char letters[256] = {};

  constexpr TJsonEscapes() {
    for (TCode byte = 0; byte < 256; ++byte) {
      letters[byte] = byte < 0x20 || byte == 0x7F ? kNumber : byte >= 0x80 ? kBeyondAscii : '\0';
      if (const char letter = GetShortEscape(byte)) letters[byte] = letter;
    }
  }
};
constexpr TJsonEscapes kJsonEscapes;

typedef std::size_t TWord;

constexpr TWord Repeat(unsigned char byte) { return ~TWord{0} / 0xFF * byte; }

/// True if JSON escapes no byte of the word. Each term sets the highest bit of the bytes that it looks for: beyond
/// ASCII, 0x7F, a control, a quote, a backslash.
bool IsPlainInJson(TWord word) {
  const TWord found = word | (word + Repeat(1)) | (word - Repeat(0x20)) | ((word ^ Repeat('"')) - Repeat(1)) |
                      ((word ^ Repeat('\\')) - Repeat(1));
  return (found & Repeat(0x80)) == 0;
}

/// Copies whole words while they are plain.
void CopyPlainWords(const char*& in, const char* end, char*& out) {
  const char* from = in;
  char* to = out;
  for (TWord word = 0; static_cast<std::size_t>(end - from) >= sizeof word; from += sizeof word, to += sizeof word) {
    std::memcpy(&word, from, sizeof word);
    if (!IsPlainInJson(word)) break;
    std::memcpy(to, &word, sizeof word);
  }
  in = from;
  out = to;
}

constexpr std::size_t kLongestInJson = 6;  // bytes written for one byte: \u001f

/// Writes the escape of a byte, and returns its end.
char* WriteJsonEscape(char* out, char letter, unsigned char byte) {
  constexpr const char* digits = "0123456789abcdef";
  *out++ = '\\';
  *out++ = letter;
  if (letter == TJsonEscapes::kNumber) {
    for (const char digit : {'0', '0', digits[byte / 16], digits[byte % 16]}) *out++ = digit;
  }
  return out;
}

/// Writes ASCII, escaped for a JSON string: at most kLongestInJson bytes for each. Moves `in` to the end or to the
/// first byte beyond ASCII, and returns the end of what was written.
char* WriteJson(char* out, const char*& in, const char* end) {
  while (in != end) {
    CopyPlainWords(in, end, out);
    const char* const wordEnd = in + std::min(sizeof(TWord), static_cast<std::size_t>(end - in));
    for (; in != wordEnd; ++in) {
      const auto byte = static_cast<unsigned char>(*in);
      const char letter = kJsonEscapes.letters[byte];
      if (letter == TJsonEscapes::kBeyondAscii) return out;
      if (letter == 0) {
        *out++ = *in;
      } else {
        out = WriteJsonEscape(out, letter, byte);
      }
    }
  }
  return out;
}

bool BeginsCharacter(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; }

}  // namespace

std::string ToUtf8(const std::string& text) {
  std::string converted;
  Convert(converted, text, [](std::string& target, std::string_view run) { target += run; });
  return converted;
}

std::string ToPrintable(const std::string& text) { return Escape(text, EscapeForPeople); }

std::string ToMessage(const std::string& text) {
  std::string printable = ToPrintable(text);
  const std::size_t columns = CountColumns(printable);
  if (columns <= kMessageLimit) return printable;
  return printable.substr(0, GetLength(printable, kMessageFront)) + " ... (" + std::to_string(columns) +
         " characters) ... " + printable.substr(GetLength(printable, columns - kMessageEnd));
}

std::string QuoteJson(const std::string& text) {
  TTextBuffer quoted;
  AppendJson(quoted, text);
  return quoted.Take();
}

void AppendJson(TTextBuffer& target, std::string_view text) {
  constexpr std::size_t longest = 4096;  // bytes per piece, so that a long text does not take six times its size
  const char* in = text.data();
  const char* const end = in + text.size();
  bool isAscii = true;
  target.Append('"');
  while (in != end && isAscii) {
    const std::size_t size = std::min(static_cast<std::size_t>(end - in), longest);
    const char* const pieceEnd = in + size;
    target.EndAt(WriteJson(target.GetRoom(kLongestInJson * size), in, pieceEnd));
    isAscii = in == pieceEnd;
  }
  if (in != end) target.Append(Escape({in, static_cast<std::size_t>(end - in)}, EscapeForJson));
  target.Append('"');
}

std::string QuoteMof(const std::string& text) { return '"' + Escape(text, EscapeForMof) + '"'; }

std::string EscapeHtml(const std::string& text) { return Escape(text, EscapeForHtml); }

std::size_t CountColumns(std::string_view text) {
  // cppcheck-suppress invalidLifetime ; the variable that it means is the caller's, and still lives
  return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), BeginsCharacter));
}

std::string ShortenForMessage(const std::string& text, std::size_t columns) {
  const std::string printable = ToPrintable(text);
  const std::size_t length = GetLength(printable, columns);
  return length == printable.size() ? printable : printable.substr(0, length) + "...";
}

std::size_t GetLength(std::string_view text, std::size_t columns) {
  std::size_t length = 0;
  for (; length < text.size(); ++length) {
    if (BeginsCharacter(text[length]) && columns-- == 0) break;
  }
  return length;
}

std::string Join(const std::vector<std::string>& texts, const char* between) {
  std::string joined;
  for (const std::string& text : texts) {
    if (!text.empty()) joined += (joined.empty() ? "" : between) + text;
  }
  return joined;
}

std::string WriteFixed(double number, int decimals) {
  char text[512];  // the largest double has 309 digits
  return {text, std::to_chars(text, std::end(text), number, std::chars_format::fixed, decimals).ptr};
}

std::string WriteNumber(double number) {
  std::string text = WriteFixed(number, 3);
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') text.pop_back();
  return text;
}
