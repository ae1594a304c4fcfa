#include <algorithm>

#include "command/machine/forms/readers.h"

namespace {

constexpr std::string_view kBetweenBytes = " \t\r\n,;:";

/// Bytes with any of those characters between them: 00ffff, 00:ff:ff, 0x00, 0xff. Nothing if the text has anything
/// else, or if the bytes are no EDID.
std::optional<std::string> ReadBytes(std::string_view text) {
  std::string bytes;
  while (!text.empty()) {
    std::string token(TakeUntil(text, kBetweenBytes));
    if (!text.empty()) text.remove_prefix(1);
    const bool hasPrefix = BeginsWith(token, "0x") || BeginsWith(token, "0X");
    if (hasPrefix) token.erase(0, 2);
    if (hasPrefix && token.size() == 1) token.insert(0, 1, '0');
    if (!AppendHex(bytes, token)) return std::nullopt;
  }
  if (!LooksLikeEdid(bytes)) return std::nullopt;
  return bytes;
}

/// C code without its comments.
std::string RemoveComments(std::string_view text) {
  std::string rest;
  while (!text.empty()) {
    rest += TakeUntil(text, "/");
    if (BeginsWith(text, "/*")) {
      text = text.substr(std::min(text.find("*/", 2), text.size() - 2) + 2);
      rest += ' ';
    } else if (BeginsWith(text, "//")) {
      TakeUntil(text, "\n");
    } else {
      rest += text.substr(0, 1);
      text.remove_prefix(std::min<std::size_t>(1, text.size()));
    }
  }
  return rest;
}

/// Reads every list in braces that holds only bytes.
std::optional<TFoundMachine> ReadArrays(std::string_view text) {
  const std::string code = RemoveComments(text);
  std::string_view rest = code;
  TFoundMachine machine;
  while (!rest.empty()) {
    const std::string_view before = TakeUntil(rest, "{}");
    if (BeginsWith(rest, "}")) {
      if (const std::optional<std::string> bytes = ReadBytes(before)) machine.AddEdids(*bytes);
    }
    rest.remove_prefix(std::min<std::size_t>(1, rest.size()));
  }
  if (machine.outputs.empty()) return std::nullopt;
  return machine;
}

}  // namespace

std::optional<TFoundMachine> ReadHexBytes(std::string_view text) {
  if (text.find('{') != std::string_view::npos) return ReadArrays(text);
  const std::optional<std::string> bytes = ReadBytes(text);
  if (!bytes) return std::nullopt;
  TFoundMachine machine;
  machine.AddEdids(*bytes);
  return machine;
}
