#include <algorithm>
#include <charconv>
#include <cstdint>

#include "command/machine/forms/readers.h"
#include "edid/layout.h"

namespace {

constexpr std::string_view kBetweenNumbers = " \t\r\n,;{}[]\"";

/// Splits a text into runs of numbers that fit in a byte.
class TRuns {
 public:
  explicit TRuns(std::string_view text) : m_rest(text) {}

  /// Gives the next run; false after the last. An empty run stands for a word that is no such number.
  bool Take(std::string& run) {
    run.clear();
    while (!m_rest.empty()) {
      m_rest.remove_prefix(std::min(m_rest.find_first_not_of(kBetweenNumbers), m_rest.size()));
      const std::string_view token = TakeUntil(m_rest, kBetweenNumbers);
      if (token.empty()) break;
      std::uint8_t byte = 0;
      const auto [end, error] = std::from_chars(token.data(), token.data() + token.size(), byte);
      if (error != std::errc() || end != token.data() + token.size()) return true;
      run += static_cast<char>(byte);
    }
    return !run.empty();
  }

 private:
  std::string_view m_rest;
};

}  // namespace

std::optional<TFoundMachine> ReadDecimalBytes(std::string_view text) {
  std::string bytes;
  TRuns runs(text);
  for (std::string run; runs.Take(run);) {
    // Text may separate two blocks of an EDID. Other runs of numbers belong to text about the EDID.
    const bool isBlock = !bytes.empty() && run.size() % edid::kBlockSize == 0;
    if (BeginsLikeEdid(run) || isBlock) bytes += run;
  }
  if (bytes.empty()) return std::nullopt;
  TFoundMachine machine;
  machine.AddEdids(bytes);
  return machine;
}
