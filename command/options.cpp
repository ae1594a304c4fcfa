#include "command/options.h"

#include <getopt.h>

#include <algorithm>
#include <iostream>

#include "command/base/standard_output.h"
#include "command/base/text_encoding.h"
#include "command/base/version.h"
#include "command/help.h"
#include "command/option_table.h"

namespace {

constexpr int kWrongUsage = 2;

[[noreturn]] void Refuse(const std::string& argument) {
  throw TWrongUsage("The following argument was not expected: " + argument);
}

/// The typed options and words in their order, and their page.
class TTypedLine {
 public:
  /// Throws TWrongUsage if something is wrong; GetPage then gives the page whose help explains it.
  void Read(int argumentCount, char** arguments);

  const TPage& GetPage() const { return *m_page; }
  bool Has(const std::string& name) const;

  /// Throws TWrongUsage if options exclude each other, or a word is missing.
  void Check() const;

  /// Throws TWrongUsage if a value is wrong.
  void TakeOver(TCommandLine& line) const;

 private:
  struct TTyped {
    const TOptionRow* row;
    std::string value;
  };

  /// getopt_long's number of the first row; greater than that of any letter.
  static constexpr int kFirstRow = 1000;
  static constexpr int kWord = 1;

  std::vector<option> MakeLongOptions() const;
  void ReadOption(int code, const std::string& argument);
  bool IsForgotten(bool isSeparate, const std::string& value) const;
  bool ReadWord(int argumentCount, char** arguments);
  void Add(const TOptionRow& row, const std::string& value);
  const TOptionRow* FindNextWord() const;

  const TPage* m_page = &GetPages().front();
  std::vector<TTyped> m_typed;
};

std::vector<option> TTypedLine::MakeLongOptions() const {
  std::vector<option> options;
  int code = kFirstRow;
  for (const TOptionRow& row : m_page->rows) {
    if (row.IsOption())
      options.push_back({row.name + 2, row.HasValue() ? required_argument : no_argument, nullptr, code});
    ++code;
  }
  options.push_back({nullptr, 0, nullptr, 0});
  return options;
}

void TTypedLine::Read(int argumentCount, char** arguments) {
  const std::vector<option> options = MakeLongOptions();
  opterr = 0;
  optind = 0;  // begin anew
  while (true) {
    const int index = std::max(optind, 1);
    // The hyphen makes getopt_long return words in their order, whatever POSIXLY_CORRECT says; the colon makes it
    // report a missing value.
    const int code = getopt_long(argumentCount, arguments, "-:h", options.data(), nullptr);
    if (code == -1) break;
    if (code != kWord) {
      ReadOption(code, arguments[index]);
    } else if (ReadWord(argumentCount - index, arguments + index)) {
      return;
    }
  }
  for (int index = optind; index < argumentCount; ++index) {  // after "--"
    if (ReadWord(argumentCount - index, arguments + index)) return;
  }
}

void TTypedLine::ReadOption(int code, const std::string& argument) {
  if (code == 'h') {
    Add(m_page->rows.back(), "");
    return;
  }
  const int rowCode = code == ':' || code == '?' ? optopt : code;
  if (rowCode < kFirstRow) Refuse(argument);
  const TOptionRow& row = m_page->rows.at(static_cast<std::size_t>(rowCode - kFirstRow));
  const std::string name = row.name;
  // getopt_long accepts abbreviations, which a later version's options could make ambiguous.
  if (argument.substr(0, argument.find('=')) != name) Refuse(argument);
  if (code == '?') throw TWrongUsage(name + " takes no value");
  if (row.HasValue() && (code == ':' || IsForgotten(argument == name, optarg))) {
    throw TWrongUsage(name + " has no value; write " + name + " " + row.argument);
  }
  Add(row, row.HasValue() ? optarg : "");
}

/// True if the value was forgotten. `isSeparate`: the value is an argument of its own; if it is the name of an option,
/// it was meant as that option.
bool TTypedLine::IsForgotten(bool isSeparate, const std::string& value) const {
  if (!isSeparate) return value.empty();
  return std::any_of(m_page->rows.begin(), m_page->rows.end(),
                     [&](const TOptionRow& row) { return row.IsOption() && row.name == value; });
}

/// Returns true if the word is a subcommand, after reading the rest of the line for it.
bool TTypedLine::ReadWord(int argumentCount, char** arguments) {
  const std::string word = arguments[0];
  const std::vector<TPage>& pages = GetPages();
  if (m_page == &pages.front()) {
    const auto page = std::find_if(pages.begin() + 1, pages.end(), [&](const TPage& one) { return one.name == word; });
    if (page != pages.end()) {
      m_page = &*page;
      if (!m_typed.empty()) {
        throw TWrongUsage(std::string(m_typed.front().row->name) + " is not for " + word + ", whose options follow it");
      }
      Read(argumentCount, arguments);
      return true;
    }
  }
  const TOptionRow* const row = FindNextWord();
  if (row == nullptr) Refuse(word);
  Add(*row, word);
  return false;
}

/// The row of the next word that may be given; null if no more words may.
const TOptionRow* TTypedLine::FindNextWord() const {
  const auto row = std::find_if(m_page->rows.begin(), m_page->rows.end(), [this](const TOptionRow& one) {
    return !one.IsOption() && (one.isRepeatable || !Has(one.name));
  });
  return row == m_page->rows.end() ? nullptr : &*row;
}

void TTypedLine::Add(const TOptionRow& row, const std::string& value) {
  if (row.HasValue() && !row.isRepeatable && Has(row.name)) {
    throw TWrongUsage(std::string(row.name) + " may be given only once");
  }
  m_typed.push_back({&row, value});
}

bool TTypedLine::Has(const std::string& name) const {
  return std::any_of(m_typed.begin(), m_typed.end(), [&](const TTyped& typed) { return typed.row->name == name; });
}

void TTypedLine::Check() const {
  for (const TTyped& typed : m_typed) {
    for (const char* const excluded : typed.row->excludes) {
      if (excluded == nullptr || !Has(excluded)) continue;
      throw TWrongUsage(std::string(excluded) + " excludes " + typed.row->name);
    }
  }
  for (const TOptionRow& row : m_page->rows) {
    if (row.IsOption() || row.isRepeatable || Has(row.name)) continue;
    throw TWrongUsage(std::string(row.name) + " is required");
  }
}

TOptionValue MakeValue(const TOptionRow& row, const std::string& text) {
  const std::vector<std::string> choices = row.ListChoices();
  const auto choice = std::find(choices.begin(), choices.end(), text);
  if (choice == choices.end() && !choices.empty()) {
    throw TWrongUsage(std::string(row.name) + ": " + text + " not in {" + Join(choices, ",") + "}");
  }
  return {row.name, text, static_cast<std::size_t>(choice - choices.begin())};
}

void TTypedLine::TakeOver(TCommandLine& line) const {
  for (const TTyped& typed : m_typed) {
    if (typed.row->take != nullptr) typed.row->take(line, MakeValue(*typed.row, typed.value));
  }
  line.subcommand = m_page->subcommand;
  if (m_page->finish != nullptr) m_page->finish(line);
}

/// The information that was asked for instead of an answer; empty if there is none.
std::string MakeInformation(const TTypedLine& typed) {
  if (typed.Has("--help")) return MakeHelp(typed.GetPage());
  if (typed.Has("--version")) return std::string("displayinfo ") + kCommandVersion + "\n";
  return "";
}

/// The command that shows the help for what was typed.
std::string GetHelpCommand(const TPage& page) {
  return "displayinfo " + std::string(page.name) + (page.name[0] == '\0' ? "" : " ") + "--help";
}

}  // namespace

TCommandLine ParseCommandLine(int argumentCount, char** arguments) {
  TCommandLine line;
  TTypedLine typed;
  try {
    typed.Read(argumentCount, arguments);
    const std::string information = MakeInformation(typed);
    if (!information.empty()) {
      WriteStandardOutput(information);
      line.exitStatus = 0;
      return line;
    }
    typed.Check();
    typed.TakeOver(line);
  } catch (const TWrongUsage& error) {
    std::cerr << "displayinfo: " << ToMessage(error.what()) << " (" << GetHelpCommand(typed.GetPage())
              << " shows the usage)\n";
    line.exitStatus = kWrongUsage;
  }
  return line;
}
