#include "command/report/html/html_markup.h"

#include "command/base/text_encoding.h"

TMarkup::TMarkup(const std::string& text) : m_markup(EscapeHtml(text)) {}

TMarkup::TMarkup(const char* text) : TMarkup(std::string(text)) {}

TMarkup TMarkup::Element(const char* name, const TAttributes& attributes, TMarkup content) {
  std::string tag = std::string("<") + name;
  for (const auto& [attribute, value] : attributes) {
    if (!value.empty()) tag += std::string(" ") + attribute + "=\"" + EscapeHtml(value) + "\"";
  }
  const bool isVoid = std::string_view(name) == "meta" || std::string_view(name) == "wbr";  // HTML allows no end tag
  content.m_markup.insert(0, tag + (isVoid ? "/>" : ">"));
  if (!isVoid) content.m_markup.append("</").append(name).append(">\n");
  return content;
}

TMarkup& TMarkup::operator+=(const TMarkup& other) {
  m_markup += other.m_markup;
  return *this;
}

TMarkup MakeElement(const char* name, TMarkup content) { return TMarkup::Element(name, {}, std::move(content)); }

TMarkup MakeElement(const char* name, const char* look, TMarkup content) {
  return TMarkup::Element(name, {{"class", look}}, std::move(content));
}

TMarkup MakeLink(const std::string& id, TMarkup content) {
  return TMarkup::Element("a", {{"href", "#" + id}}, std::move(content));
}

TMarkup MakeShortText(const std::string& text, std::size_t columns) {
  const std::string shown = Shorten(text, columns);
  return shown == text ? TMarkup(text) : TMarkup::Element("span", {{"title", text}}, shown);
}

std::string Shorten(const std::string& text, std::size_t columns) {
  return CountColumns(text) <= columns ? text : text.substr(0, GetLength(text, columns - 1)) + "\u2026";
}

TMarkup MakeSvgText(TPoint point, const std::string& text, const char* look) {
  return TMarkup::Element("text", {{"x", std::to_string(point.x)}, {"y", std::to_string(point.y)}, {"class", look}},
                          text);
}

TMarkup MakeSvgLine(TPoint from, TPoint to, const char* look) {
  return TMarkup::Element("line", {{"x1", std::to_string(from.x)},
                                   {"y1", std::to_string(from.y)},
                                   {"x2", std::to_string(to.x)},
                                   {"y2", std::to_string(to.y)},
                                   {"class", look}});
}

TMarkup MakeSvgBox(TPoint corner, int width, int height, const char* look) {
  return TMarkup::Element("rect", {{"x", std::to_string(corner.x)},
                                   {"y", std::to_string(corner.y)},
                                   {"width", std::to_string(width)},
                                   {"height", std::to_string(height)},
                                   {"class", look}});
}

TMarkup MakeSvg(int width, int height, const TMarkup& content) {
  return TMarkup::Element("svg",
                          {{"xmlns", "http://www.w3.org/2000/svg"},
                           {"viewBox", "0 0 " + std::to_string(width) + " " + std::to_string(height)},
                           {"width", std::to_string(width)},
                           {"height", std::to_string(height)},
                           {"class", "picture"},
                           {"aria-hidden", "true"}},
                          content);
}
