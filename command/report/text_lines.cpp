#include "command/report/text_lines.h"

#include <algorithm>

#include "command/base/text_encoding.h"

namespace {

constexpr std::size_t kLabelWidth = 18;  // columns, with the blanks after the label

}  // namespace

std::size_t ChooseTextWidth(std::optional<std::size_t> columns) {
  return columns ? std::clamp(*columns, kMinTextWidth, kMaxTextWidth) : kTextWidth;
}

std::string TTextLines::Wrap(const std::string& head, std::string_view text) const {
  const std::size_t indent = CountColumns(head);
  const std::size_t room = m_width - indent;
  std::string wrapped = head;
  for (std::size_t limit = 0; (limit = GetLength(text, room)) < text.size();) {
    const std::size_t blank = text.rfind(' ', limit);
    const bool canBreak = blank != std::string_view::npos && blank > 0;
    wrapped.append(text.substr(0, canBreak ? blank : limit)).append("\n").append(indent, ' ');
    text.remove_prefix(canBreak ? blank + 1 : limit);
  }
  return wrapped.append(text).append("\n");
}

std::string TTextLines::MakeRow(const std::string& indent, const std::string& label, const std::string& text) const {
  if (text.empty()) return std::string();
  return Wrap(indent + label + std::string(kLabelWidth - std::min(kLabelWidth, label.size()), ' '), text);
}
