#include "command/help.h"

#include "command/base/text_encoding.h"
#include "command/option_table.h"

namespace {

constexpr std::size_t kUsageWidth = 34;
constexpr std::size_t kRowWidth = 29;  // columns of an option and its value

bool IsCommand(const TPage& page) { return page.subcommand == ESubcommand::kNone; }

/// The text followed by blanks up to `width` columns and two more blanks; a longer text is followed by two.
std::string Pad(const std::string& text, std::size_t width) {
  return text + std::string(text.size() < width ? width - text.size() + 2 : 2, ' ');
}

std::string DescribeRow(const TOptionRow& row) {
  const std::string argument = row.HasValue() ? std::string(" ") + row.argument : "";
  return Pad("  " + (row.name + argument), kRowWidth) + row.sentence + "\n";
}

std::string DescribeRows(const TPage& page, bool areOptions) {
  std::string text;
  for (const TOptionRow& row : page.rows) {
    if (row.IsOption() == areOptions) text += DescribeRow(row);
  }
  return text;
}

/// The full names of the classes, to be copied, three in a line.
std::string DescribeClasses() {
  constexpr std::size_t inLine = 3;
  std::string text = "Classes (default: all six; displayinfo schema explains them):\n";
  const std::vector<std::string> names = ListAllClasses();
  for (std::size_t index = 0; index < names.size(); ++index) {
    text += (index % inLine == 0 ? "  " : " ") + names[index] + (index % inLine == inLine - 1 ? "\n" : "");
  }
  return text;
}

std::string DescribeCommand(const TPage& command) {
  std::string text;
  for (const TPage& page : GetPages()) {
    text += (text.empty() ? "Usage: " : "       ") +
            Pad(MakeUsage(page, IsCommand(page) ? " [OPTION...]" : ""), kUsageWidth) + page.sentence + "\n";
  }
  return text + "Options (displayinfo SUBCOMMAND --help shows those of a subcommand):\n" + DescribeRows(command, true) +
         DescribeClasses();
}

}  // namespace

std::string MakeUsage(const TPage& page, const std::string& options) {
  std::string text = (IsCommand(page) ? "displayinfo" : std::string("displayinfo ") + page.name) + options;
  for (const TOptionRow& row : page.rows) {
    if (row.IsOption()) continue;
    text += row.isRepeatable ? std::string(" [") + row.name + "...]" : std::string(" ") + row.name;
  }
  return text;
}

std::string MakeHelp(const TPage& page) {
  if (IsCommand(page)) return DescribeCommand(page);
  const std::string words = DescribeRows(page, false);
  return std::string(page.sentence) + "\nUsage: " + MakeUsage(page, " [OPTIONS]") + "\n" +
         (words.empty() ? "" : "\n" + words) + "\nOptions:\n" + DescribeRows(page, true);
}
