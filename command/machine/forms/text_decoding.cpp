#include "command/machine/forms/text_decoding.h"

#include <utf8.h>

#include <cstdint>
#include <iterator>

namespace {

constexpr char kUtf8Mark[] = "\xEF\xBB\xBF";
constexpr char kLittleEndianMark[] = "\xFF\xFE";
constexpr char kBigEndianMark[] = "\xFE\xFF";
constexpr std::uint32_t kReplacement = 0xFFFD;

/// Decodes UTF-16. `low`: the place of the lower byte in each pair, 0 or 1.
class TUtf16 {
 public:
  TUtf16(const std::string& content, std::size_t low) : m_content(content), m_low(low) {}

  std::string Decode() {
    std::string text;
    text.reserve(m_content.size() / 2);
    for (m_next = 2; m_next + 1 < m_content.size(); m_next += 2) {
      utf8::unchecked::append(TakeCharacter(), std::back_inserter(text));
    }
    return text;
  }

 private:
  static bool IsHigh(std::uint32_t unit) { return unit >= 0xD800 && unit <= 0xDBFF; }
  static bool IsLow(std::uint32_t unit) { return unit >= 0xDC00 && unit <= 0xDFFF; }

  std::uint32_t GetUnit(std::size_t place) const {
    if (place + 1 >= m_content.size()) return 0;
    const auto byte = [&](std::size_t offset) { return static_cast<unsigned char>(m_content[place + offset]); };
    return byte(m_low) | static_cast<std::uint32_t>(byte(1 - m_low)) << 8U;
  }

  /// The character at m_next. Leaves m_next at the character's last unit.
  std::uint32_t TakeCharacter() {
    const std::uint32_t unit = GetUnit(m_next);
    if (!IsHigh(unit)) return IsLow(unit) ? kReplacement : unit;
    const std::uint32_t second = GetUnit(m_next + 2);
    if (!IsLow(second)) return kReplacement;
    m_next += 2;
    return 0x10000 + ((unit - 0xD800) << 10U) + (second - 0xDC00);
  }

  const std::string& m_content;
  const std::size_t m_low;
  std::size_t m_next = 0;
};

bool HasMark(const std::string& content, const std::string& mark) { return content.compare(0, mark.size(), mark) == 0; }

}  // namespace

std::string DecodeText(const std::string& content) {
  if (HasMark(content, kLittleEndianMark)) return TUtf16(content, 0).Decode();
  if (HasMark(content, kBigEndianMark)) return TUtf16(content, 1).Decode();
  return HasMark(content, kUtf8Mark) ? content.substr(std::size(kUtf8Mark) - 1) : content;
}

bool IsUtf16(const std::string& content) {
  return HasMark(content, kLittleEndianMark) || HasMark(content, kBigEndianMark);
}
