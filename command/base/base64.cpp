#include "command/base/base64.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace {

constexpr std::string_view kAlphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char kPadding = '=';
constexpr std::uint8_t kNone = 0xFF;

constexpr std::array<std::uint8_t, 256> MakeValues() {
  std::array<std::uint8_t, 256> values = {};
  for (std::uint8_t& value : values) value = kNone;
  for (std::size_t index = 0; index < kAlphabet.size(); ++index) {
    values[static_cast<unsigned char>(kAlphabet[index])] = static_cast<std::uint8_t>(index);
  }
  return values;
}

constexpr std::array<std::uint8_t, 256> kValues = MakeValues();

/// Appends the bytes of four characters, the last `padding` of which are padding. False if EncodeBase64 writes no such
/// group.
bool AppendGroup(std::string& bytes, std::string_view group, std::size_t padding) {
  std::uint32_t bits = 0;
  for (std::size_t index = 0; index < 4; ++index) {
    const bool isPadding = index >= 4 - padding;
    const std::uint8_t value = isPadding ? 0 : kValues[static_cast<unsigned char>(group[index])];
    if (value == kNone) return false;
    bits = bits << 6 | value;
  }
  const std::size_t count = 3 - padding;
  if ((bits & ((1U << (8 * padding)) - 1)) != 0) return false;  // a second text for the same bytes
  for (std::size_t index = 0; index < count; ++index) bytes += static_cast<char>(bits >> (16 - 8 * index));
  return true;
}

std::size_t CountPadding(std::string_view text) {
  std::size_t count = 0;
  while (count < 2 && count < text.size() && text[text.size() - 1 - count] == kPadding) ++count;
  return count;
}

}  // namespace

std::string EncodeBase64(std::string_view bytes) {
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (; !bytes.empty(); bytes.remove_prefix(bytes.size() < 3 ? bytes.size() : 3)) {
    std::uint32_t bits = 0;
    for (std::size_t index = 0; index < 3; ++index) {
      bits = bits << 8 | (index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U);
    }
    for (std::size_t index = 0; index < 4; ++index) {
      text += index > bytes.size() ? kPadding : kAlphabet[bits >> (18 - 6 * index) & 0x3F];
    }
  }
  return text;
}

std::optional<std::string> DecodeBase64(std::string_view text) {
  if (text.size() % 4 != 0) return std::nullopt;
  std::string bytes;
  bytes.reserve(text.size() / 4 * 3);
  for (; !text.empty(); text.remove_prefix(4)) {
    const std::size_t padding = text.size() == 4 ? CountPadding(text) : 0;
    if (!AppendGroup(bytes, text.substr(0, 4), padding)) return std::nullopt;
  }
  return bytes;
}
