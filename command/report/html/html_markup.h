// Markup that every text enters escaped: an HTML page, with SVG in it, that is well-formed XML as well.
#pragma once

#include <string>
#include <utility>
#include <vector>

/// A piece of markup: what is not an element made here is an escaped text.
class TMarkup {
 public:
  typedef std::vector<std::pair<const char*, std::string>> TAttributes;

  TMarkup() = default;
  TMarkup(const std::string& text);  // NOLINT(google-explicit-constructor): a text is markup, escaped
  TMarkup(const char* text);         // NOLINT(google-explicit-constructor): as above

  /// An element. The values of the attributes are escaped, and those without a value left out.
  static TMarkup Element(const char* name, const TAttributes& attributes = {}, TMarkup content = {});

  TMarkup& operator+=(const TMarkup& other);
  friend TMarkup operator+(TMarkup first, const TMarkup& second) { return first += second; }

  bool IsEmpty() const { return m_markup.empty(); }
  /// Moves the markup out, since a page can be hundreds of megabytes long; this is empty afterwards.
  std::string Take() { return std::move(m_markup); }

 private:
  std::string m_markup;
};

/// An element with no attribute, or with only a class: its look.
TMarkup MakeElement(const char* name, TMarkup content);
TMarkup MakeElement(const char* name, const char* look, TMarkup content);

/// A link to the place of the page with that id.
TMarkup MakeLink(const std::string& id, TMarkup content);

/// The printable text, cut off with an ellipsis after `columns` characters; what is cut has the whole as its title.
TMarkup MakeShortText(const std::string& text, std::size_t columns);

/// The same as a text, for places that can have no title.
std::string Shorten(const std::string& text, std::size_t columns);

/// A place in a picture, in the picture's units: the upper left corner of what is drawn there.
struct TPoint {
  int x, y;
};

/// A line of text that begins at the point.
TMarkup MakeSvgText(TPoint point, const std::string& text, const char* look);

TMarkup MakeSvgLine(TPoint from, TPoint to, const char* look);

TMarkup MakeSvgBox(TPoint corner, int width, int height, const char* look);

/// A picture of that size that shrinks with the page. The text beside it must tell the same: it is left out when a page
/// is read aloud.
TMarkup MakeSvg(int width, int height, const TMarkup& content);
