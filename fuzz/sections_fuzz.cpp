// Compares the sections found in a configuration with those of a finder without regular expressions, which looks at
// every position and searches for the end of each section; and compares their records with those of a plain reader that
// goes line by line.
//
// Input: the configuration.
#include <optional>
#include <vector>

#include "fuzz/input.h"
#include "fuzz/require.h"
#include "plugin/xconfig/xconfig.h"
#include "tests/support/plain_record.h"

namespace {

typedef std::vector<SectionRecord> TRecords;

/// Finds where a line, after any white space, continues with some words, white space allowed between them.
class TPlainFinder {
 public:
  TPlainFinder(const std::string& text, std::vector<std::string> words) : m_text(text), m_words(std::move(words)) {}

  std::vector<std::size_t> FindAll() const {
    std::vector<std::size_t> positions;
    for (std::size_t position = 0; position < m_text.size();) {
      const std::optional<std::size_t> end = Match(position);
      if (end) positions.push_back(position);
      position = end.value_or(position + 1);
    }
    return positions;
  }

  std::optional<std::size_t> FindBehind(std::size_t start) const {
    for (const std::size_t position : FindAll()) {
      if (position > start) return position;
    }
    return std::nullopt;
  }

 private:
  /// The end of the match that begins there.
  std::optional<std::size_t> Match(std::size_t position) const {
    if (!BeginsLine(position)) return std::nullopt;
    for (const std::string& word : m_words) {
      position = std::min(m_text.find_first_not_of(" \t\n\v\f\r", position), m_text.size());
      if (m_text.compare(position, word.size(), word) != 0) return std::nullopt;
      position += word.size();
    }
    return position;
  }

  bool BeginsLine(std::size_t position) const {
    if (position == 0) return true;
    const char before = m_text[position - 1];
    return before == '\n' || before == '\f' || (before == '\r' && m_text[position] != '\n');
  }

  const std::string& m_text;
  const std::vector<std::string> m_words;
};

TRecords ReadPlainly(const std::string& text, const std::string& type, const std::vector<std::string>& keys) {
  const std::string capital = "\"" + type + "\"";
  std::string small = capital;
  small[1] = static_cast<char>(small[1] + ('a' - 'A'));
  std::vector<std::size_t> starts = TPlainFinder(text, {"Section", capital}).FindAll();
  const std::vector<std::size_t> smallStarts = TPlainFinder(text, {"Section", small}).FindAll();
  starts.insert(starts.end(), smallStarts.begin(), smallStarts.end());
  std::sort(starts.begin(), starts.end());

  TRecords records;
  for (const std::size_t start : starts) {
    const std::optional<std::size_t> end = TPlainFinder(text, {"EndSection"}).FindBehind(start);
    if (end) records.push_back(ReadRecordPlainly(text.substr(start, *end - start), keys));
  }
  return records;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text = TInput(data, size).TakeRest();
  Require(TXConfig::GetDeviceSectionInfo(text) ==
              ReadPlainly(text, "Device",
                          {"Identifier", "Chipset", "Ramdac", "VideoRam", "VendorName", "BoardName", "BusID"}),
          "device sections are the plain ones");
  Require(TXConfig::GetScreenSectionInfo(text) ==
              ReadPlainly(text, "Screen", {"Identifier", "Device", "Monitor", "DefaultDepth", "Depth", "Modes"}),
          "screen sections are the plain ones");
  Require(TXConfig::GetMonitorSectionInfo(text) == ReadPlainly(text, "Monitor", {"Identifier", "ModelName"}),
          "monitor sections are the plain ones");
  return 0;
}
