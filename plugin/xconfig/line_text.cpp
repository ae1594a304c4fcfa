// Splits and cleans lines and words of the X server's configuration.
#include <algorithm>
#include <string_view>

#include "plugin/xconfig/xconfig.h"

namespace {

bool IsBlank(char character) { return character == ' ' || character == '\t'; }

/// 1 if the text begins with a delimiter, which is then skipped; otherwise 0.
std::size_t SkipDelimiter(const std::string& text, std::string_view delimiters) {
  return !text.empty() && delimiters.find(text[0]) != std::string_view::npos ? 1 : 0;
}

/// The position of the first delimiter from `start` on.
std::size_t FindDelimiter(const std::string& text, std::string_view delimiters, std::size_t start) {
  // A single character is found several times faster than one of a set.
  return delimiters.size() == 1 ? text.find(delimiters[0], start) : text.find_first_of(delimiters, start);
}

}  // namespace

bool TXConfig::CommentedCode(const char* line) {
  while (IsBlank(*line)) ++line;
  return *line == '#';
}

std::string TXConfig::RemoveSpaces(const char* text) {
  if (text == nullptr) return std::string();
  while (IsBlank(*text)) ++text;
  return text;
}

std::string TXConfig::ExtractString(const char* text) {
  if (text == nullptr) return std::string();
  while (IsBlank(*text) || *text == '"') ++text;
  // Work in the result's own memory, since a line can be longer than a thread's stack.
  std::string value = text;
  value.erase(std::remove(value.begin(), value.end(), '"'), value.end());
  return value;
}

std::vector<std::string> TXConfig::MultiStringTok(const std::string& text, const char* delimiters) {
  std::vector<std::string> pieces;
  std::string piece;
  std::size_t start = SkipDelimiter(text, delimiters);
  for (std::size_t end = FindDelimiter(text, delimiters, start); end != std::string::npos;
       end = FindDelimiter(text, delimiters, start)) {
    piece = text.substr(start, end - start);
    if (!piece.empty()) pieces.push_back(piece);
    start = end + 1;
  }
  // Two oddities that answers depend on. Without a delimiter beyond the first character there are no pieces at all, so
  // that a mode such as "x768" gives no resolution. After a delimiter at the very end the last piece comes once more,
  // so that a section's last Modes or Depth line takes two numbers.
  if (start <= 1) return pieces;
  if (start < text.size()) piece = text.substr(start);
  if (!piece.empty()) pieces.push_back(piece);
  return pieces;
}

std::vector<std::string> TXConfig::MultiStringFirstTok(const std::string& text, const char* delimiters) {
  const std::size_t start = SkipDelimiter(text, delimiters);
  const std::size_t end = FindDelimiter(text, delimiters, start);
  if (end == std::string::npos || end == start) return {};
  std::vector<std::string> words = {text.substr(start, end - start)};
  if (end + 1 < text.size()) words.push_back(text.substr(end + 1));
  return words;
}
