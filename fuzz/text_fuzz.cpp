// Compares the text routines for the X server's configuration with plain ones written from their description, and
// dataToString with the values that it must write.
//
// Input: delimiters, a zero byte, a text.
#include <vector>

#include "fuzz/input.h"
#include "fuzz/require.h"
#include "plugin/collector/data_to_string.h"
#include "plugin/xconfig/xconfig.h"

namespace {

typedef std::vector<std::string> TPieces;

std::string TrimPlainly(const std::string& text) {
  return text.substr(std::min(text.size(), text.find_first_not_of(" \t")));
}

std::string ExtractPlainly(std::string text) {
  text.erase(std::remove(text.begin(), text.end(), '"'), text.end());
  return TrimPlainly(text);
}

bool IsIn(const std::string& delimiters, char character) { return delimiters.find(character) != std::string::npos; }

/// All pieces, even empty ones: one more than there are delimiters.
TPieces SplitPlainly(const std::string& text, const std::string& delimiters) {
  TPieces pieces(1);
  for (const char character : text) {
    if (IsIn(delimiters, character)) {
      pieces.emplace_back();
    } else {
      pieces.back() += character;
    }
  }
  return pieces;
}

TPieces TokenizePlainly(const std::string& text, const std::string& delimiters) {
  if (SplitPlainly(text.substr(std::min<std::size_t>(text.size(), 1)), delimiters).size() == 1) return {};
  TPieces pieces = SplitPlainly(text, delimiters);
  if (pieces.back().empty()) pieces.back() = *(pieces.end() - 2);
  pieces.erase(std::remove(pieces.begin(), pieces.end(), std::string()), pieces.end());
  return pieces;
}

TPieces PartPlainly(std::string text, const std::string& delimiters) {
  if (!text.empty() && IsIn(delimiters, text[0])) text.erase(0, 1);
  const std::string word = SplitPlainly(text, delimiters)[0];
  if (word.empty() || word == text) return {};
  const std::string rest = text.substr(word.size() + 1);
  return rest.empty() ? TPieces{word} : TPieces{word, rest};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TInput input(data, size);
  const std::string delimiters = input.TakeText();
  const std::string text = input.TakeRest();
  const std::string line = text.c_str();  // ends at its first zero

  Require(TXConfig::CommentedCode(line.c_str()) == (TrimPlainly(line).substr(0, 1) == "#"), "comments begin with #");
  Require(TXConfig::RemoveSpaces(line.c_str()) == TrimPlainly(line), "leading blanks go");
  Require(TXConfig::ExtractString(line.c_str()) == ExtractPlainly(line), "quotes and then leading blanks go");
  Require(TXConfig::MultiStringTok(text, delimiters.c_str()) == TokenizePlainly(text, delimiters), "pieces");
  Require(TXConfig::MultiStringFirstTok(text, delimiters.c_str()) == PartPlainly(text, delimiters), "word and rest");
  Require(dataToString(text) == text && dataToString(line.c_str()) == line, "text stays as it is");
  Require(dataToString(size) == std::to_string(size), "numbers are written in decimal");
  return 0;
}
