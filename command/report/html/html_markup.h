// Makes markup that text enters only escaped: HTML with SVG in it, which is also well-formed XML.
#pragma once

#include <string>
#include <utility>
#include <vector>

/// A piece of markup: elements made here, and escaped texts.
class TMarkup {
 public:
  typedef std::vector<std::pair<const char*, std::string>> TAttributes;

  TMarkup() = default;
  TMarkup(const std::string& text);  // NOLINT(google-explicit-constructor): a text is markup, escaped
  TMarkup(const char* text);         // NOLINT(google-explicit-constructor): as above

  /// An element. Values of attributes are escaped; attributes without a value are left out.
  static TMarkup Element(const char* name, const TAttributes& attributes = {}, TMarkup content = {});

  TMarkup& operator+=(const TMarkup& other);
  friend TMarkup operator+(TMarkup first, const TMarkup& second) { return first += second; }

  bool IsEmpty() const { return m_markup.empty(); }
  /// Moves the markup out, since a page can have hundreds of megabytes. This is empty afterwards.
  std::string Take() { return std::move(m_markup); }

 private:
  std::string m_markup;
};

/// An element without attributes, or with only a class, `look`.
TMarkup MakeElement(const char* name, TMarkup content);
TMarkup MakeElement(const char* name, const char* look, TMarkup content);

/// A link to the place with that id on the page.
TMarkup MakeLink(const std::string& id, TMarkup content);

/// The printable text, cut off with an ellipsis after `columns` characters. A text that was cut has the whole as its
/// title.
TMarkup MakeShortText(const std::string& text, std::size_t columns);

/// The same as a text, for places that cannot have a title.
std::string Shorten(const std::string& text, std::size_t columns);

/// A point in a picture, in the picture's units: the upper left corner of what is drawn there.
struct TPoint {
  int x, y;
};

/// A line of text that begins at the point.
TMarkup MakeSvgText(TPoint point, const std::string& text, const char* look);

TMarkup MakeSvgLine(TPoint from, TPoint to, const char* look);

TMarkup MakeSvgBox(TPoint corner, int width, int height, const char* look);

/// A picture of that size that shrinks with the page. Screen readers skip it, so the text beside it must say the same.
TMarkup MakeSvg(int width, int height, const TMarkup& content);
