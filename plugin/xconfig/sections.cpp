// Reads sections of the X server's configuration.
#include <algorithm>
#include <boost/regex.hpp>
#include <optional>
#include <stdexcept>
#include <utility>

#include "plugin/xconfig/xconfig.h"

namespace {

/// A kind of section: how it begins, and what is kept of it. The keys are tried in this order.
struct TSectionType {
  const char* startPattern;
  std::vector<std::string> keys;
};

const TSectionType kDevice = {R"(^\s*Section\s*"[Dd]evice")",
                              {"Identifier", "Chipset", "Ramdac", "VideoRam", "VendorName", "BoardName", "BusID"}};
const TSectionType kScreen = {R"(^\s*Section\s*"[Ss]creen")",
                              {"Identifier", "Device", "Monitor", "DefaultDepth", "Depth", "Modes"}};
const TSectionType kMonitor = {R"(^\s*Section\s*"[Mm]onitor")", {"Identifier", "ModelName"}};

constexpr const char* kEndPattern = R"(^\s*EndSection)";

/// The first word and the rest of a line, split at a blank or at a tab that comes before it; fewer if there is no rest.
std::vector<std::string> SplitLine(const std::string& line) {
  const std::vector<std::string> words = TXConfig::MultiStringFirstTok(line, " ");
  const bool isParted = words.size() > 1 && words[0].find('\t') == std::string::npos;
  return isParted ? words : TXConfig::MultiStringFirstTok(line, "\t");
}

/// A key that occurs in a section several times, each time under the next number.
struct TNumberedKey {
  const char* key;
  unsigned int next;
};

/// Makes the record of a section from its values, line by line.
class TRecordBuilder {
 public:
  void Add(const std::string& key, const std::string& value) { m_record.emplace(Number(key), value); }

  /// True if another value of the key would be dropped.
  bool IsTaken(const std::string& key) const { return m_record.count(key) != 0; }

  SectionRecord Take() { return std::move(m_record); }

 private:
  std::string Number(const std::string& key) {
    for (TNumberedKey& numbered : m_numbered) {
      if (key == numbered.key) return key + std::to_string(numbered.next++);
    }
    return key;
  }

  SectionRecord m_record;
  // Each key has its own count, across all subsections. With one count for both, Depth and Modes of a Display
  // subsection would get different numbers, and no mode would be found for a depth.
  TNumberedKey m_numbered[2] = {{"Modes", 1}, {"Depth", 1}};
};

/// A line that holds one of the keys.
struct TKeyLine {
  std::size_t key;  // index
  std::string value;
};

/// Reads sections of a text, in the order of their beginnings. Thousands of sections without an end of their own may
/// share one; the lines that they share are read only once.
class TSectionReader {
 public:
  TSectionReader(const std::string& text, const std::vector<std::string>& keys)
      : m_text(text), m_keys(keys), m_values(keys.size()) {}

  /// The section in [begin, end). Its lines are those that MultiStringTok gives: none for a section of one line, and
  /// the last one twice if its line end belongs to the section.
  SectionRecord Read(std::size_t begin, std::size_t end) {
    const std::size_t firstLineEnd = m_text.find('\n', begin + 1);
    if (firstLineEnd >= end) return {};
    if (end != m_end) ReadFurtherLines(firstLineEnd + 1, end);
    TRecordBuilder record;
    const std::size_t firstLine = m_text[begin] == '\n' ? begin + 1 : begin;
    if (const auto first = ReadLine(m_text.substr(firstLine, firstLineEnd - firstLine))) {
      const int times = firstLineEnd + 1 == end ? 2 : 1;
      for (int time = 0; time < times; ++time) record.Add(m_keys[first->key], first->value);
    }
    for (std::size_t key = 0; key < m_keys.size(); ++key) AddFurtherValues(key, firstLineEnd, record);
    return record.Take();
  }

 private:
  typedef std::pair<std::size_t, std::string> TValue;  // with the position of its line

  std::optional<TKeyLine> ReadLine(const std::string& line) const {
    if (TXConfig::CommentedCode(line.c_str())) return std::nullopt;
    const std::vector<std::string> words = SplitLine(TXConfig::RemoveSpaces(line.c_str()));
    if (words.size() < 2) return std::nullopt;
    // A key counts wherever it occurs in the word; otherwise the depth of a DefaultColorDepth line would be lost.
    const auto key = std::find_if(m_keys.begin(), m_keys.end(), [&](const std::string& candidate) {
      return words[0].find(candidate) != std::string::npos;
    });
    if (key == m_keys.end()) return std::nullopt;
    return TKeyLine{static_cast<std::size_t>(key - m_keys.begin()), TXConfig::ExtractString(words[1].c_str())};
  }

  void ReadFurtherLines(std::size_t begin, std::size_t end) {
    for (std::vector<TValue>& values : m_values) values.clear();
    m_end = end;
    while (begin < end) {
      const std::size_t lineEnd = std::min(m_text.find('\n', begin), end);
      if (const auto line = ReadLine(m_text.substr(begin, lineEnd - begin))) {
        const std::size_t times = lineEnd + 1 == end ? 2 : 1;
        m_values[line->key].insert(m_values[line->key].end(), times, {begin, line->value});
      }
      begin = lineEnd + 1;
    }
  }

  void AddFurtherValues(std::size_t key, std::size_t after, TRecordBuilder& record) const {
    const std::vector<TValue>& values = m_values[key];
    auto value = std::lower_bound(values.begin(), values.end(), TValue(after, ""));
    for (; value != values.end() && !record.IsTaken(m_keys[key]); ++value) record.Add(m_keys[key], value->second);
  }

  const std::string& m_text;
  const std::vector<std::string>& m_keys;
  std::vector<std::vector<TValue>> m_values;  // of each key, of the lines after the first one, up to m_end
  std::size_t m_end = 0;
};

std::vector<SectionRecord> ReadSections(const std::string& text, const TSectionType& type) {
  const std::vector<unsigned int> starts = TXConfig::GetRegEx(text, 0, type.startPattern);
  if (starts.empty()) return {};
  // The ends are searched for once, not from each start. The first end after a start is the one that a search from
  // there would find, since a match of the end's pattern, blanks and another word, never covers a start.
  const std::vector<unsigned int> ends = TXConfig::GetRegEx(text, 0, kEndPattern);
  TSectionReader reader(text, type.keys);
  std::vector<SectionRecord> records;
  auto end = ends.begin();
  for (const unsigned int start : starts) {
    end = std::upper_bound(end, ends.end(), start);
    if (end == ends.end()) break;
    records.push_back(reader.Read(start, *end));
  }
  return records;
}

}  // namespace

std::vector<unsigned int> TXConfig::GetRegEx(const std::string& text, unsigned int start, const char* pattern) {
  const boost::regex expression(pattern);
  // Thrown here, because the text of the C++ library's own exception depends on its version.
  if (start > text.size()) throw std::out_of_range("basic_string::substr");
  std::vector<unsigned int> positions;
  boost::smatch match;
  boost::match_flag_type flags = boost::match_default;
  for (auto from = text.begin() + static_cast<std::ptrdiff_t>(start);
       boost::regex_search(from, text.end(), match, expression, flags); from = match[0].second) {
    positions.push_back(static_cast<unsigned int>(match[0].first - text.begin()));
    flags = boost::match_prev_avail | boost::match_not_bob;
  }
  return positions;
}

SectionRecord TXConfig::GetSectionInfo(std::string sectionText, std::vector<std::string> keys) {
  return TSectionReader(sectionText, keys).Read(0, sectionText.size());
}

std::vector<SectionRecord> TXConfig::GetDeviceSectionInfo(std::string text) { return ReadSections(text, kDevice); }

std::vector<SectionRecord> TXConfig::GetScreenSectionInfo(std::string text) { return ReadSections(text, kScreen); }

std::vector<SectionRecord> TXConfig::GetMonitorSectionInfo(std::string text) { return ReadSections(text, kMonitor); }
