// The lines of a text report: of one width, with rows of a label and a text.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// Columns of a report.
constexpr std::size_t kMinTextWidth = 40;  // even in a narrower terminal, which then breaks the lines itself
constexpr std::size_t kTextWidth = 80;     // where there is no terminal
constexpr std::size_t kMaxTextWidth = 120;

/// The width of a report on a terminal of that many columns, or on none.
std::size_t ChooseTextWidth(std::optional<std::size_t> columns);

class TTextLines {
 public:
  explicit TTextLines(std::size_t width) : m_width(width) {}

  /// The text in lines: the first after `head`, the others indented as far. Lines break at blanks where they can; all
  /// other blanks stay.
  std::string Wrap(const std::string& head, std::string_view text) const;

  /// A label and its text, which is wrapped under itself; nothing without a text.
  std::string MakeRow(const std::string& indent, const std::string& label, const std::string& text) const;

 private:
  std::size_t m_width;
};
