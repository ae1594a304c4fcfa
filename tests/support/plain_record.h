// Reads the record of a section in a plain way; tests compare the section reader with it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "plugin/xconfig/xconfig.h"

/// A record exactly as the rules say: from the text line by line, each split at a blank or an earlier tab.
inline SectionRecord ReadRecordPlainly(const std::string& text, const std::vector<std::string>& keys) {
  SectionRecord record;
  std::map<std::string, int> numbers;
  for (const std::string& line : TXConfig::MultiStringTok(text, "\n")) {
    if (TXConfig::CommentedCode(line.c_str())) continue;
    const std::string content = TXConfig::RemoveSpaces(line.c_str());
    std::vector<std::string> words = TXConfig::MultiStringFirstTok(content, " ");
    if (words.size() < 2 || words[0].find('\t') != std::string::npos) {
      words = TXConfig::MultiStringFirstTok(content, "\t");
    }
    if (words.size() < 2) continue;
    for (const std::string& key : keys) {
      if (words[0].find(key) == std::string::npos) continue;
      const std::string number = key == "Depth" || key == "Modes" ? std::to_string(++numbers[key]) : "";
      record.emplace(key + number, TXConfig::ExtractString(words[1].c_str()));
      break;
    }
  }
  return record;
}
