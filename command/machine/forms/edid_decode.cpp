#include <algorithm>

#include "command/machine/forms/readers.h"

namespace {

constexpr std::string_view kSign = "edid-decode (hex):";

/// Appends the bytes of a line such as "00 ff ff ff"; false for any other line.
bool AppendLine(std::string& bytes, std::string_view line) {
  std::string digits(Trim(line));
  digits.erase(std::remove(digits.begin(), digits.end(), ' '), digits.end());
  return AppendHex(bytes, digits);
}

}  // namespace

std::optional<TFoundMachine> ReadEdidDecode(std::string_view text) {
  TFoundMachine machine;
  bool isIts = false;
  TLines lines(text);
  for (std::string_view line; lines.Take(line);) {
    if (!BeginsWith(line, kSign)) continue;
    isIts = true;
    std::string bytes;
    // Blocks are separated by an empty line, which appends no bytes.
    while (lines.Take(line) && AppendLine(bytes, line)) {
    }
    machine.Add({"", std::move(bytes)});
  }
  if (!isIts) return std::nullopt;
  return machine;
}
