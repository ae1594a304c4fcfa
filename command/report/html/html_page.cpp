#include "command/report/html/html_page.h"

#include <utility>

#include "command/report/html/html_style.h"

namespace {

TMarkup MakeName(const char* scope, TMarkup content, const std::string& title) {
  return TMarkup::Element("th", {{"scope", scope}, {"title", title}}, std::move(content));
}

TMarkup MakeHead(const std::string& title, const char* style) {
  return MakeElement(
      "head", TMarkup::Element("meta", {{"charset", "utf-8"}}) +
                  TMarkup::Element("meta", {{"name", "viewport"}, {"content", "width=device-width, initial-scale=1"}}) +
                  // Even if a text became markup by mistake, the page would load nothing and run nothing.
                  TMarkup::Element("meta", {{"http-equiv", "Content-Security-Policy"},
                                            {"content", "default-src 'none'; style-src 'unsafe-inline'"}}) +
                  MakeElement("title", title) + MakeElement("style", std::string(kHtmlStyle) + style));
}

}  // namespace

std::string MakeHtmlPage(const std::string& title, TMarkup content, const char* style) {
  TMarkup page =
      TMarkup::Element("html", {{"xmlns", "http://www.w3.org/1999/xhtml"}, {"lang", "en"}},
                       MakeHead(title, style) + MakeElement("body", MakeElement("main", std::move(content))));
  return "<!DOCTYPE html>\n" + page.Take();
}

TMarkup MakeHeading(int level, TMarkup content, const std::string& id) {
  const std::string name = "h" + std::to_string(level);
  return TMarkup::Element(name.c_str(), {{"id", id}}, std::move(content));
}

TMarkup MakeColumnName(TMarkup content, const std::string& title) { return MakeName("col", std::move(content), title); }

TMarkup MakeRowName(TMarkup content, const std::string& title) { return MakeName("row", std::move(content), title); }

TMarkup MakeRow(TMarkup cells) { return MakeElement("tr", std::move(cells)); }

TMarkup MakeTable(const TMarkup& caption, const TMarkup& names, TMarkup rows) {
  TMarkup content = caption.IsEmpty() ? TMarkup() : MakeElement("caption", caption);
  if (!names.IsEmpty()) content += MakeElement("thead", MakeRow(names));
  content += MakeElement("tbody", std::move(rows));
  return MakeElement("table", std::move(content));
}

std::string CountNouns(std::size_t count, const char* noun) {
  return std::to_string(count) + " " + noun + (count == 1 ? "" : "s");
}

TMarkup MakeFolded(const std::string& summary, const TMarkup& content) {
  return MakeElement("details", MakeElement("summary", summary) + content) +
         MakeElement("p", "paper", "Folded: to have this part on paper, open it before printing.");
}
