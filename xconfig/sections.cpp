// Sections of the X server's configuration.
#include <algorithm>
#include <boost/regex.hpp>
#include <stdexcept>

#include "xconfig/xconfig.h"

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

/// The word and the rest of a line, parted at a blank, or at a tab that comes first; fewer when there is no rest.
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

class TSectionReader {
 public:
  explicit TSectionReader(const std::vector<std::string>& keys) : m_keys(keys) {}

  void ReadLine(const std::string& line) {
    if (TXConfig::CommentedCode(line.c_str())) return;
    const std::vector<std::string> words = SplitLine(TXConfig::RemoveSpaces(line.c_str()));
    if (words.size() < 2) return;
    // Deliberate: a key counts wherever it stands in the word, so that DefaultColorDepth is a Depth.
    const auto key = std::find_if(m_keys.begin(), m_keys.end(), [&](const std::string& candidate) {
      return words[0].find(candidate) != std::string::npos;
    });
    if (key != m_keys.end()) m_record.emplace(Number(*key), TXConfig::ExtractString(words[1].c_str()));
  }

  const SectionRecord& GetRecord() const { return m_record; }

 private:
  std::string Number(const std::string& key) {
    for (TNumberedKey& numbered : m_numbered) {
      if (key == numbered.key) return key + std::to_string(numbered.next++);
    }
    return key;
  }

  const std::vector<std::string>& m_keys;
  SectionRecord m_record;
  // Deliberate: the two are numbered apart from each other, across the whole section.
  TNumberedKey m_numbered[2] = {{"Modes", 1}, {"Depth", 1}};
};

std::vector<SectionRecord> ReadSections(const std::string& text, const TSectionType& type) {
  const std::vector<unsigned int> starts = TXConfig::GetRegEx(text, 0, type.startPattern);
  if (starts.empty()) return {};
  // The ends are found once for all starts. A match at an end never covers a start, since what follows its blanks is
  // another word; so the first end behind a start is the same as a search from that start would find.
  const std::vector<unsigned int> ends = TXConfig::GetRegEx(text, 0, kEndPattern);
  std::vector<SectionRecord> records;
  auto end = ends.begin();
  for (const unsigned int start : starts) {
    end = std::upper_bound(end, ends.end(), start);
    if (end == ends.end()) break;
    records.push_back(TXConfig::GetSectionInfo(text.substr(start, *end - start), type.keys));
  }
  return records;
}

}  // namespace

std::vector<unsigned int> TXConfig::GetRegEx(const std::string& text, unsigned int start, const char* pattern) {
  const boost::regex expression(pattern);
  // The C++ library's own text says more, and varies.
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
  TSectionReader reader(keys);
  for (const std::string& line : MultiStringTok(sectionText, "\n")) reader.ReadLine(line);
  return reader.GetRecord();
}

std::vector<SectionRecord> TXConfig::GetDeviceSectionInfo(std::string text) { return ReadSections(text, kDevice); }

std::vector<SectionRecord> TXConfig::GetScreenSectionInfo(std::string text) { return ReadSections(text, kScreen); }

std::vector<SectionRecord> TXConfig::GetMonitorSectionInfo(std::string text) { return ReadSections(text, kMonitor); }
