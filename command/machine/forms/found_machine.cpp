#include "command/machine/forms/found_machine.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <numeric>

#include "edid/layout.h"

namespace {

std::size_t GetSize(std::string_view edid) {
  const std::string_view promised = edid.substr(0, GetPromisedSize(edid));
  std::size_t size = promised.size();
  while (size < edid.size()) {
    const std::string_view rest = edid.substr(size);
    const bool isCopy = BeginsWith(rest, promised);
    if (BeginsLikeEdid(rest) && !isCopy) break;
    size += std::min(isCopy ? promised.size() : edid::kBlockSize, rest.size());
  }
  return size;
}

int GetDigit(char character) {
  if (character >= '0' && character <= '9') return character - '0';
  if (character >= 'a' && character <= 'f') return character - 'a' + 10;
  if (character >= 'A' && character <= 'F') return character - 'A' + 10;
  return -1;
}

}  // namespace

void TFoundMachine::AddEdids(std::string_view bytes) {
  while (!bytes.empty()) {
    const std::size_t size = GetSize(bytes);
    Add({"", std::string(bytes.substr(0, size))});
    bytes.remove_prefix(size);
  }
}

bool TLines::Take(std::string_view& line) {
  if (m_rest.empty()) return false;
  line = TakeUntil(m_rest, "\n");
  if (!m_rest.empty()) m_rest.remove_prefix(1);
  if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
  return true;
}

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view TakeUntil(std::string_view& text, std::string_view ends) {
  const std::string_view taken = text.substr(0, text.find_first_of(ends));
  text.remove_prefix(taken.size());
  return taken;
}

bool BeginsWith(std::string_view text, std::string_view beginning) {
  return text.substr(0, beginning.size()) == beginning;
}

bool BeginsLikeEdid(std::string_view bytes) {
  return bytes.size() >= edid::kHeader.size() &&
         std::equal(edid::kHeader.begin(), edid::kHeader.end(), bytes.begin(),
                    [](unsigned char expected, char byte) { return expected == static_cast<unsigned char>(byte); });
}

bool LooksLikeEdid(std::string_view bytes) {
  if (BeginsLikeEdid(bytes)) return true;
  if (bytes.empty() || bytes.size() % edid::kBlockSize != 0) return false;
  const std::string_view block = bytes.substr(0, edid::kBlockSize);
  const unsigned int sum = std::accumulate(block.begin(), block.end(), 0U, [](unsigned int total, char byte) {
    return total + static_cast<unsigned char>(byte);
  });
  return sum % 256 == 0;
}

std::size_t GetPromisedSize(std::string_view edid) {
  if (edid.size() <= edid::kExtensionCount) return edid.size();
  const std::size_t blocks = 1U + static_cast<unsigned char>(edid[edid::kExtensionCount]);
  return std::min(blocks * edid::kBlockSize, edid.size());
}

bool AppendHex(std::string& bytes, std::string_view digits) {
  if (digits.size() % 2 != 0) return false;
  const std::size_t size = bytes.size();
  for (std::size_t index = 0; index < digits.size(); index += 2) {
    const int high = GetDigit(digits[index]);
    const int low = GetDigit(digits[index + 1]);
    if (high < 0 || low < 0) {
      bytes.resize(size);
      return false;
    }
    bytes += static_cast<char>(high << 4 | low);
  }
  return true;
}

std::optional<std::size_t> ReadHexNumber(std::string_view digits) {
  std::uint32_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number, 16);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}
