// Makes the lines of a text report: wrapped to one width, in rows of a label and a text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Widths of a report in columns.
constexpr std::size_t kMinTextWidth = 40;  // a narrower terminal breaks the lines itself
constexpr std::size_t kTextWidth = 80;     // without a terminal
constexpr std::size_t kMaxTextWidth = 120;

/// The width of a report. `columns`: of the terminal; nothing if there is none.
std::size_t ChooseTextWidth(std::optional<std::size_t> columns);

class TTextLines {
 public:
  explicit TTextLines(std::size_t width) : m_width(width) {}

  /// The text in lines: the first after `head`, the others indented as far. Lines break at blanks if they can. All
  /// other blanks stay.
  std::string Wrap(const std::string& head, std::string_view text) const;

  /// A label and its text, whose further lines are aligned with its first; empty without a text.
  std::string MakeRow(const std::string& indent, const std::string& label, const std::string& text) const;

 private:
  std::size_t m_width;
};
