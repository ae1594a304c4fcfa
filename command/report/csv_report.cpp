#include "command/report/csv_report.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "command/base/text_encoding.h"

namespace {

constexpr const char* kLineEnd = "\r\n";

/// What a spreadsheet takes for the beginning of a formula, the full-width forms of these characters among them.
constexpr std::string_view kFormulaBegins[] = {"=", "+", "-", "@", "\uFF1D", "\uFF0B", "\uFF0D", "\uFF20"};

bool BeginsFormula(std::string_view text) {
  return std::any_of(std::begin(kFormulaBegins), std::end(kFormulaBegins),
                     [&](std::string_view begin) { return text.substr(0, begin.size()) == begin; });
}

/// The text with an apostrophe before what could begin a formula: at its front, even after blanks and quotes, and right
/// after a semicolon, which a spreadsheet of another language takes for the end of a cell.
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

/// A printable text may still have a tab, which RFC 4180 does not allow and a spreadsheet may take for the end of a
/// cell.
std::string ShowTabs(std::string text) {
  for (std::size_t tab = 0; (tab = text.find('\t', tab)) != std::string::npos;) text.replace(tab, 1, "\\x09");
  return text;
}

std::string MakeCell(const std::string& text) {
  std::string content = DisarmFormulas(ShowTabs(ToPrintable(text)));
  if (content.find_first_of(",;\"") == std::string::npos) return content;
  std::string cell = "\"";
  for (const char character : content) cell.append(character == '"' ? 2 : 1, character);
  return cell + '"';
}

std::string JoinWithSemicolons(const std::vector<std::string>& texts) {
  std::string joined;
  for (const std::string& text : texts) joined += (joined.empty() ? "" : "; ") + text;
  return joined;
}

/// `monitor`: empty for a machine without one.
struct TColumn {
  const char* name;
  std::string (*text)(const TMachineSummary& machine, const TMonitorSummary& monitor);
};

typedef const TMachineSummary& TMachineRef;
typedef const TMonitorSummary& TMonitorRef;

const TColumn kColumns[] = {
    {"Machine", [](TMachineRef machine, TMonitorRef) { return machine.machine; }},
    {"System", [](TMachineRef machine, TMonitorRef) { return machine.systemName; }},
    {"Collected", [](TMachineRef machine, TMonitorRef) { return machine.collected; }},
    {"Controllers", [](TMachineRef machine, TMonitorRef) { return JoinWithSemicolons(machine.controllers); }},
    {"Monitor", [](TMachineRef, TMonitorRef monitor) { return monitor.id; }},
    {"Connector", [](TMachineRef, TMonitorRef monitor) { return monitor.connector; }},
    {"Not listed", [](TMachineRef, TMonitorRef monitor) { return monitor.notListed; }},
    {"Maker", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.makerCode; }},
    {"Maker's name", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.makerName; }},
    {"Model", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.model; }},
    {"Product code", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.productCode; }},
    {"Serial number", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.serialNumber; }},
    {"Made", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.made; }},
    {"Year", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.year; }},
    {"Width mm", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.width; }},
    {"Height mm", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.height; }},
    {"Diagonal inches", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.inches; }},
    {"Preferred width", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.preferredWidth; }},
    {"Preferred height", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.preferredHeight; }},
    {"Preferred refresh", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.preferredRefresh; }},
    {"Largest width", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.largestWidth; }},
    {"Largest height", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.largestHeight; }},
    {"Highest refresh", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.highestRefresh; }},
    {"HDR", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.hasHdr; }},
    {"Variable refresh min", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.variableMin; }},
    {"Variable refresh max", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.variableMax; }},
    {"Input", [](TMachineRef, TMonitorRef monitor) { return monitor.facts.input; }},
    {"Problems",
     [](TMachineRef machine, TMonitorRef) {
       return machine.problems.empty() ? machine.noMonitors : JoinWithSemicolons(machine.problems);
     }},
};

template <typename TText>
std::string MakeRow(TText text) {
  std::string row;
  for (const TColumn& column : kColumns) row += (&column == kColumns ? "" : ",") + MakeCell(text(column));
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
