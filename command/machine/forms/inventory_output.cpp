#include "command/machine/forms/inventory_output.h"

#include <algorithm>

#include "command/base/base64.h"

namespace {

std::optional<std::string> DecodeMail(std::string base64) {
  const auto isBlank = [](char character) { return character == '\n' || character == '\r' || IsBlank(character); };
  base64.erase(std::remove_if(base64.begin(), base64.end(), isBlank), base64.end());
  return DecodeBase64(base64);
}

/// The six bits of a character, counted from the blank. Some encoders write a backquote instead of the blank.
unsigned int GetBits(char character) { return (static_cast<unsigned char>(character) - ' ') & 0x3FU; }

bool IsUucode(char character) { return character >= ' ' && character <= '`'; }

/// Appends the bytes of one line; false if no encoder writes such a line. Blanks at its end may have been lost.
bool AppendUuLine(std::string& bytes, std::string_view line) {
  if (!std::all_of(line.begin(), line.end(), IsUucode)) return false;
  const std::size_t size = GetBits(line.front());
  std::string groups(line.substr(1));
  if (groups.size() > (size + 2) / 3 * 4) return false;
  groups.resize((size + 2) / 3 * 4, ' ');
  std::string decoded;
  for (std::size_t index = 0; index < groups.size(); index += 4) {
    unsigned int bits = 0;
    for (std::size_t place = index; place < index + 4; ++place) bits = bits << 6U | GetBits(groups[place]);
    for (const unsigned int shift : {16U, 8U, 0U}) decoded += static_cast<char>(bits >> shift & 0xFFU);
  }
  bytes.append(decoded, 0, size);
  return true;
}

/// `text`: only the encoded lines, without the lines around them that name a file.
std::optional<std::string> DecodeUu(std::string_view text) {
  std::string bytes;
  TLines lines(text);
  for (std::string_view line; lines.Take(line);) {
    if (!Trim(line).empty() && !AppendUuLine(bytes, line)) return std::nullopt;
  }
  return bytes;
}

}  // namespace

TFoundOutput MakeInventoryOutput(const TInventoryMonitor& monitor) {
  TFoundOutput output;
  output.connector = monitor.port.value_or("");
  const bool hasBase64 = monitor.base64 && !monitor.base64->empty();
  if (!hasBase64 && !monitor.uuencode) {
    output.fault = "is not in the inventory";
    return output;
  }
  std::optional<std::string> bytes = hasBase64 ? DecodeMail(*monitor.base64) : DecodeUu(*monitor.uuencode);
  if (bytes) output.edid = std::move(*bytes);
  if (!bytes) output.fault = hasBase64 ? "is not base64" : "is not uuencoded";
  return output;
}
