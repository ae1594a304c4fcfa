// TXConfig: finds the X server's configuration file, has the host capture it, and reads its sections into records.
//
// All operations are static and keep nothing. The text routines have sharp edges that the section parser depends on;
// they are described here and tested one by one. A blank is a space or a tab and nothing else.
#pragma once

#include <map>
#include <string>
#include <vector>

/// The values of one section by key, in byte-wise order of the keys. The first value of a key stays.
typedef std::map<std::string, std::string> SectionRecord;

class TXConfig {
 public:
  // Finding the file (configuration_file.cpp).

  /// The text of the first of ten known files that exists, read through the host; empty if none exists. A path for
  /// which the host throws TZELTException is skipped; any other exception passes through.
  static std::string CaptureConfiguration();

  // Lines and words (line_text.cpp). A text given as `const char*` ends at its terminating zero.

  /// True if the first character of the line that is not a blank is '#'.
  static bool CommentedCode(const char* line);

  /// The text without its leading blanks; trailing ones stay. A null pointer gives the empty string.
  static std::string RemoveSpaces(const char* text);

  /// The text without double quotes, and without the blanks before the first other character. A null pointer gives the
  /// empty string.
  static std::string ExtractString(const char* text);

  /// The non-empty pieces between delimiters; each character of `delimiters` is one. Nothing for a text without a
  /// delimiter beyond its first character. If the text ends with a delimiter, the last piece comes twice, unless the
  /// piece before that delimiter is empty.
  static std::vector<std::string> MultiStringTok(const std::string& text, const char* delimiters);

  /// The text up to the first delimiter and, if it is not empty, the text after it. A delimiter at the very beginning
  /// is skipped. Nothing for a text without a delimiter.
  static std::vector<std::string> MultiStringFirstTok(const std::string& text, const char* delimiters);

  // Sections (sections.cpp).

  /// The positions in `text`, from `start` on, at which the pattern matches, in ascending order, each match beginning
  /// after the one before has ended. `pattern`: a regular expression in Perl syntax that does not match the empty text.
  /// Throws std::out_of_range when `start` lies beyond the text, and Boost.Regex's errors.
  static std::vector<unsigned int> GetRegEx(const std::string& text, unsigned int start, const char* pattern);

  /// The record of one section, from its text and the keys that are kept. The keys are tried in their order.
  static SectionRecord GetSectionInfo(std::string sectionText, std::vector<std::string> keys);

  /// One record for each complete section of the type, in file order. `text`: the whole configuration.
  static std::vector<SectionRecord> GetDeviceSectionInfo(std::string text);
  static std::vector<SectionRecord> GetScreenSectionInfo(std::string text);
  static std::vector<SectionRecord> GetMonitorSectionInfo(std::string text);
};
