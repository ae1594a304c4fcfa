// make_documents manual|completion: fills the manual page, or the shell's completion, with the table of options. Reads
// the template from standard input, and replaces these lines of it:
//   .\" OPTIONS [SUBCOMMAND]   the options of the command, or of that subcommand, for the manual page
//   .\" CLASSES                the names of the classes, one per line
//   @OPTIONS@                  a line for each option and word: "SUBCOMMAND NAME KIND WORD..." (completion.bash)
#include <functional>
#include <iostream>
#include <map>
#include <string>

#include "command/base/text_encoding.h"
#include "command/option_table.h"

namespace {

/// A text escaped for troff: hyphens stay hyphens, no line is a command, and options are bold.
std::string WriteTroff(const std::string& text) {
  std::string troff;
  std::size_t boldUntil = 0;
  for (std::size_t index = 0; index < text.size(); ++index) {
    if (index >= boldUntil && text.compare(index, 2, "--") == 0) {
      boldUntil = std::min(text.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", index), text.size());
      troff += "\\fB";
    }
    troff += text[index] == '-' ? "\\-" : std::string(1, text[index]);
    if (index + 1 == boldUntil) troff += "\\fR";
  }
  return troff;
}

/// ".TP", the option with its value, and what it does.
std::string WriteManualRow(const TOptionRow& row) {
  const std::string value = row.HasValue() ? " \\fI" + WriteTroff(row.argument) + "\\fR" : "";
  const std::string details = row.details[0] == '\0' ? "" : WriteTroff(row.details) + "\n";
  return ".TP\n" + WriteTroff(row.name) + value + "\n" + WriteTroff(row.sentence) + ".\n" + details;
}

std::string WriteManualRows(const TPage& page) {
  std::string text;
  for (const TOptionRow& row : page.rows) {
    if (row.IsOption()) text += WriteManualRow(row);
  }
  return text;
}

/// "KIND WORD...": what a shell offers for the value.
std::string WriteCompletion(const TOptionRow& row) {
  if (row.IsOption() && !row.HasValue()) return "flag";
  if (row.completion == ECompletion::kFiles) return "files";
  return "value " + Join(row.completion == ECompletion::kClasses ? ListAllClasses() : row.ListChoices(), " ");
}

/// The lines that replace each line of a template.
using TFillings = std::map<std::string, std::string>;

TFillings FillManual() {
  TFillings fillings;
  for (const TPage& page : GetPages()) {
    const std::string name = page.name;
    fillings[".\\\" OPTIONS" + (name.empty() ? "" : " " + name)] = WriteManualRows(page);
  }
  fillings[".\\\" CLASSES"] = Join(ListAllClasses(), "\n") + "\n";
  return fillings;
}

TFillings FillCompletion() {
  std::string lines;
  for (const TPage& page : GetPages()) {
    const std::string name = page.name;
    for (const TOptionRow& row : page.rows) {
      lines += (name.empty() ? "-" : name) + " " + row.name + " " + WriteCompletion(row) + "\n";
    }
  }
  return {{"@OPTIONS@", lines}};
}

}  // namespace

int main(int argumentCount, char** arguments) {
  const std::string kind = argumentCount == 2 ? arguments[1] : "";
  if (kind != "manual" && kind != "completion") {
    std::cerr << "usage: make_documents manual|completion <TEMPLATE\n";
    return 2;
  }
  TFillings fillings = kind == "manual" ? FillManual() : FillCompletion();
  for (std::string line; std::getline(std::cin, line);) {
    const auto filling = fillings.find(line);
    std::cout << (filling == fillings.end() ? line + "\n" : filling->second);
    if (filling != fillings.end()) fillings.erase(filling);
  }
  for (const auto& filling : fillings) std::cerr << "make_documents: no line for " << filling.first << '\n';
  return fillings.empty() ? 0 : 1;
}
