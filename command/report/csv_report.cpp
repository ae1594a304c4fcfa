#include "command/report/csv_report.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string_view>

#include "command/base/text_encoding.h"

namespace {

constexpr const char* kLineEnd = "\r\n";

/// What a spreadsheet takes as the beginning of a formula, including the full-width forms of these characters.
constexpr std::string_view kFormulaBegins[] = {"=", "+", "-", "@", "\uFF1D", "\uFF0B", "\uFF0D", "\uFF20"};

bool BeginsFormula(std::string_view text) {
  return std::any_of(std::begin(kFormulaBegins), std::end(kFormulaBegins),
                     [&](std::string_view begin) { return text.substr(0, begin.size()) == begin; });
}

/// The text with an apostrophe before everything that could begin a formula: at its front, even after blanks and
/// quotes, and right after a semicolon, which a spreadsheet in another language takes as the end of a cell.
std::string DisarmFormulas(const std::string& text) {
  std::string disarmed;
  std::string_view skipped = " \"";
  bool isAtFront = true;
  for (std::size_t position = 0; position < text.size(); ++position) {
    const char character = text[position];
    if (isAtFront && BeginsFormula(std::string_view(text).substr(position))) disarmed += '\'';
    if (character == ';') skipped = "\"";
    isAtFront = character == ';' || (isAtFront && skipped.find(character) != std::string_view::npos);
    disarmed += character;
  }
  return disarmed;
}

// What a spreadsheet accepts in numbers, times and dates.
constexpr const char* kDigits = "0123456789";
constexpr const char* kNumberSigns = "0123456789 .,:/%$()+-";
constexpr std::string_view kNumberWords[] = {
    "E",     "AM",   "PM",   "TRUE", "FALSE",  "JAN",       "FEB",     "MAR",      "APR",      "MAY",
    "JUN",   "JUL",  "AUG",  "SEP",  "OCT",    "NOV",       "DEC",     "JANUARY",  "FEBRUARY", "MARCH",
    "APRIL", "SEPT", "JUNE", "JULY", "AUGUST", "SEPTEMBER", "OCTOBER", "NOVEMBER", "DECEMBER"};

/// True for a whole number that a spreadsheet shows unchanged: it has no leading zero and fits into a double.
bool IsPlainNumber(const std::string& text) {
  constexpr std::size_t maxDigits = 15;
  return text.find_first_not_of(kDigits) == std::string::npos && text.size() <= maxDigits && text[0] != '0';
}

/// True for a text that a spreadsheet would turn into a number or a date, such as "0012345", "4711E10" or "12MAR20".
bool IsTakenForNumber(std::string text) {
  if (text.empty() || IsPlainNumber(text)) return false;
  std::transform(text.begin(), text.end(), text.begin(), [](unsigned char letter) { return std::toupper(letter); });
  for (std::size_t begin = 0; begin < text.size();) {
    const std::size_t end = std::min(text.find_first_of(kNumberSigns, begin), text.size());
    const std::string_view word = std::string_view(text).substr(begin, end - begin);
    const bool isKnown = std::find(std::begin(kNumberWords), std::end(kNumberWords), word) != std::end(kNumberWords);
    if (!word.empty() && !isKnown) return false;
    begin = std::min(text.find_first_not_of(kNumberSigns, end), text.size());
  }
  return true;
}

/// Replaces tabs, which printable texts may have: RFC 4180 does not allow them, and a spreadsheet may take one as the
/// end of a cell.
std::string ShowTabs(std::string text) {
  for (std::size_t tab = 0; (tab = text.find('\t', tab)) != std::string::npos;) text.replace(tab, 1, "\\x09");
  return text;
}

/// The text, with an apostrophe before it if a spreadsheet would read it as something else. LibreOffice Calc shows the
/// apostrophe, Gnumeric removes it, and both keep the text.
std::string MakeText(const std::string& text) {
  const std::string content = DisarmFormulas(ShowTabs(ToPrintable(text)));
  return IsTakenForNumber(content) ? "'" + content : content;
}

std::string MakeCell(const std::string& content) {
  if (content.find_first_of(",;\"") == std::string::npos) return content;
  std::string cell = "\"";
  for (const char character : content) cell.append(character == '"' ? 2 : 1, character);
  return cell + '"';
}

enum class EContent { kText, kNumber };

/// A column of the table. `monitor`: empty for a machine without monitors.
struct TColumn {
  const char* name;
  std::string (*text)(const TMachineSummary& machine, const TMonitorSummary& monitor);
  EContent content = EContent::kText;
};

typedef const TMachineSummary& TMachineRef;
typedef const TMonitorSummary& TMonitorRef;

const TColumn kColumns[] = {
    {"Machine", [](TMachineRef machine, TMonitorRef) { return machine.machine; }},
    {"System", [](TMachineRef machine, TMonitorRef) { return machine.systemName; }},
    {"Collected", [](TMachineRef machine, TMonitorRef) { return machine.collected; }},
    {"Controllers", [](TMachineRef machine, TMonitorRef) { return Join(machine.controllers, "; "); }},
    {"Monitor", [](TMachineRef, TMonitorRef monitor) { return monitor.id; }},
    {"Connector", [](TMachineRef, TMonitorRef monitor) { return monitor.connector; }},
    {"Not listed", [](TMachineRef, TMonitorRef monitor) { return monitor.notListed; }},
    {"Maker", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.makerCode; }},
    {"Maker's name", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.makerName; }},
    {"Model", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.model; }},
    {"Product code", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.productCode; }},
    {"Serial number", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.serialNumber; }},
    {"Made", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.made; }},
    {"Year", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.year; }, EContent::kNumber},
    {"Width mm", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.width; }, EContent::kNumber},
    {"Height mm", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.height; }, EContent::kNumber},
    {"Diagonal inches", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.inches; }, EContent::kNumber},
    {"Preferred width", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.preferredWidth; },
     EContent::kNumber},
    {"Preferred height", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.preferredHeight; },
     EContent::kNumber},
    {"Preferred refresh", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.preferredRefresh; },
     EContent::kNumber},
    {"Largest width", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.largestWidth; }, EContent::kNumber},
    {"Largest height", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.largestHeight; }, EContent::kNumber},
    {"Highest refresh", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.highestRefresh; },
     EContent::kNumber},
    {"HDR", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.hasHdr; }},
    {"Variable refresh min", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.variableMin; },
     EContent::kNumber},
    {"Variable refresh max", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.variableMax; },
     EContent::kNumber},
    {"Input", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.input; }},
    {"Problems",
     [](TMachineRef machine, TMonitorRef) {
       return machine.problems.empty() ? machine.noMonitors : Join(machine.problems, "; ");
     }},
};

/// `text`: gives the content of a column.
template <typename TText>
std::string MakeRow(TText text) {
  std::string row;
  for (const TColumn& column : kColumns) {
    const std::string content = text(column);
    row += (&column == kColumns ? "" : ",") + MakeCell(column.content == EContent::kText ? MakeText(content) : content);
  }
  return row + kLineEnd;
}

}  // namespace

std::string MakeCsvHead() {
  return MakeRow([](const TColumn& column) { return std::string(column.name); });
}

std::string MakeCsvRows(const TMachineSummary& machine) {
  std::string rows;
  for (const TMonitorSummary& monitor : machine.monitors) {
    rows += MakeRow([&](const TColumn& column) { return column.text(machine, monitor); });
  }
  if (!rows.empty()) return rows;
  return MakeRow([&](const TColumn& column) { return column.text(machine, TMonitorSummary()); });
}
