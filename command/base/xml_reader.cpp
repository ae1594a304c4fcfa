#include "command/base/xml_reader.h"

#include <utf8.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <iterator>

#include "command/base/xml_text.h"

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr const char* kDeclaration = "a declaration, which is refused,";

struct TEntity {
  std::string_view name;
  char character;
};

constexpr TEntity kEntities[] = {{"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};

bool IsLetter(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

bool BeginsName(char character) { return IsLetter(character) || character == '_' || character == ':'; }

bool ContinuesName(char character) {
  return BeginsName(character) || (character >= '0' && character <= '9') || character == '-' || character == '.';
}

bool IsSameWord(std::string_view one, std::string_view other) {
  const auto lower = [](char character) { return IsLetter(character) ? character | 0x20 : character; };
  return std::equal(one.begin(), one.end(), other.begin(), other.end(),
                    [&](char left, char right) { return lower(left) == lower(right); });
}

/// Reads the document once, from its first byte to its last, without recursion.
class TReader {
 public:
  TReader(std::string_view text, const TXmlLimits& limits) : m_text(text), m_limits(limits) {}

  TXmlElement ReadDocument() {
    if (m_text.size() > m_limits.size) Refuse("a document that is too large");
    if (!IsXmlText(m_text)) Refuse("a byte that is not UTF-8, or a character that XML does not have");
    Skip(kByteOrderMark);
    if (Begins("<?xml") && !ContinuesName(At(5)) && static_cast<unsigned char>(At(5)) < 0x80) ScanDeclaration();
    ScanAround();
    if (Begins("<!")) Refuse(kDeclaration);
    Require("<", "no element");
    ReadStartTag();
    while (!m_open.empty()) ReadContent();
    ScanAround();
    if (!IsAtEnd()) Refuse("something after the document's element");
    return std::move(m_root);
  }

 private:
  [[noreturn]] void Refuse(const char* what) const {
    throw TXmlFault(std::string(what) + " at byte " + std::to_string(m_position));
  }

  bool IsAtEnd() const { return m_position == m_text.size(); }
  /// The byte at `offset` from here; zero, which no text holds, after the end.
  char At(std::size_t offset) const { return m_position + offset < m_text.size() ? m_text[m_position + offset] : '\0'; }
  bool Begins(std::string_view piece) const { return m_text.substr(m_position, piece.size()) == piece; }
  bool Skip(std::string_view piece) {
    if (!Begins(piece)) return false;
    m_position += piece.size();
    return true;
  }
  void Require(std::string_view piece, const char* complaint) {
    if (!Skip(piece)) Refuse(complaint);
  }
  bool SkipBlanks() {
    const std::size_t before = m_position;
    m_position = std::min(m_text.size(), m_text.find_first_not_of(kBlanks, m_position));
    return m_position != before;
  }
  /// Goes past the next `end`, and returns what comes before it.
  std::string_view TakeUpTo(std::string_view end, const char* complaint) {
    const std::size_t found = m_text.find(end, m_position);
    if (found == std::string_view::npos) Refuse(complaint);
    const std::string_view taken = m_text.substr(m_position, found - m_position);
    m_position = found + end.size();
    return taken;
  }
  std::string_view TakeName() {
    const std::size_t first = m_position;
    if (BeginsName(At(0))) ++m_position;
    while (m_position > first && ContinuesName(At(0))) ++m_position;
    if (static_cast<unsigned char>(At(0)) >= 0x80) Refuse("a name beyond ASCII");
    if (m_position == first) Refuse("no name");
    return m_text.substr(first, m_position - first);
  }

  void ScanDeclaration() {
    Skip("<?xml");
    if (!SkipBlanks()) Refuse("no blank");
    Require("version", "no version");
    const std::string_view version = TakePseudoAttribute();
    if (version.size() < 3 || version.substr(0, 2) != "1." ||
        version.find_first_not_of("0123456789", 2) != std::string_view::npos) {
      Refuse("a version that is not 1.0");
    }
    bool isApart = SkipBlanks();
    if (isApart && Skip("encoding")) {
      const std::string_view encoding = TakePseudoAttribute();
      if (!IsSameWord(encoding, "utf-8") && !IsSameWord(encoding, "us-ascii")) Refuse("an encoding that is not UTF-8");
      isApart = SkipBlanks();
    }
    if (isApart && Skip("standalone")) {
      const std::string_view standalone = TakePseudoAttribute();
      if (standalone != "yes" && standalone != "no") Refuse("standalone is neither yes nor no");
      SkipBlanks();
    }
    Require("?>", "no end of the XML declaration");
  }

  std::string_view TakePseudoAttribute() {
    const char quote = TakeQuote();
    return TakeUpTo(std::string_view(&quote, 1), "no end of the text in quotes");
  }

  char TakeQuote() {
    SkipBlanks();
    Require("=", "no equals sign");
    SkipBlanks();
    const char quote = At(0);
    if (quote != '"' && quote != '\'') Refuse("no quote");
    ++m_position;
    return quote;
  }

  /// Blanks, comments and processing instructions before and after the document's element.
  void ScanAround() {
    while (SkipBlanks() || ScanAside()) continue;
  }

  /// A comment or a processing instruction, if one begins here.
  bool ScanAside() {
    if (Skip("<!--")) {
      TakeUpTo("--", "no end of the comment");
      Require(">", "two hyphens in a comment");
      return true;
    }
    if (!Skip("<?")) return false;
    if (IsSameWord(TakeName(), "xml")) Refuse("an XML declaration that is not at the start");
    if (!Begins("?>") && !SkipBlanks()) Refuse("no blank");
    TakeUpTo("?>", "no end of the processing instruction");
    return true;
  }

  /// A tag, a text, or anything else that an element may contain.
  void ReadContent() {
    if (Skip("</")) {
      ReadEndTag();
    } else if (Skip("<![CDATA[")) {
      ReadCdata();
    } else if (Begins("<!") && !Begins("<!--")) {
      Refuse(kDeclaration);
    } else if (ScanAside()) {
      return;
    } else if (Skip("<")) {
      ReadStartTag();
    } else {
      m_open.back().text += TakeCharacters("<");
    }
  }

  void ReadStartTag() {
    if (++m_elements > m_limits.elements) Refuse("too many elements");
    TXmlElement element;
    element.name = TakeName();
    bool isApart = SkipBlanks();
    while (!Begins(">") && !Begins("/>")) {
      if (!isApart) Refuse("no blank before an attribute");
      ReadAttribute(element);
      isApart = SkipBlanks();
    }
    m_open.push_back(std::move(element));
    if (Skip("/>")) return Close();
    Skip(">");
    if (m_open.size() > m_limits.depth) Refuse("elements nested too deep");
  }

  void ReadAttribute(TXmlElement& element) {
    const std::string_view name = TakeName();
    if (element.FindAttribute(name) != nullptr) Refuse("an attribute for the second time");
    if (element.attributes.size() == m_limits.attributes) Refuse("too many attributes of an element");
    const char quote = TakeQuote();
    element.attributes.emplace_back(name, TakeCharacters(quote == '"' ? "\"<" : "'<"));
    Require(std::string_view(&quote, 1), "a < in an attribute");
  }

  void ReadEndTag() {
    if (TakeName() != m_open.back().name) Refuse("an end tag of another element");
    SkipBlanks();
    Require(">", "no end of the end tag");
    Close();
  }

  /// The innermost open element becomes the last child of the one around it.
  void Close() {
    TXmlElement element = std::move(m_open.back());
    m_open.pop_back();
    if (m_open.empty()) {
      m_root = std::move(element);
    } else {
      m_open.back().children.push_back(std::move(element));
    }
  }

  void ReadCdata() {
    while (!Skip("]]>")) {
      if (IsAtEnd()) Refuse("no end of the CDATA section");
      m_open.back().text += TakeCharacter();
    }
  }

  /// A byte; a line end, in any of its forms, as a line feed.
  char TakeCharacter() {
    if (Skip("\r\n") || Skip("\r")) return '\n';
    return m_text[m_position++];
  }

  /// The text up to one of `ends`, which must come, with its references resolved. An attribute has two `ends`; in it
  /// every blank becomes a space.
  std::string TakeCharacters(std::string_view ends) {
    const bool isAttribute = ends.size() > 1;
    std::string taken;
    while (ends.find(At(0)) == std::string_view::npos) {
      if (IsAtEnd()) Refuse("the end within an element");
      if (!isAttribute && Begins("]]>")) Refuse("]]> in a text");
      if (Skip("&")) {
        taken += TakeReference();
      } else {
        const char character = TakeCharacter();
        taken += isAttribute && kBlanks.find(character) != std::string_view::npos ? ' ' : character;
      }
    }
    return taken;
  }

  std::string TakeReference() {
    std::string_view name = TakeUpTo(";", "no end of the reference");
    if (name.substr(0, 1) != "#") {
      const auto* const entity = std::find_if(std::begin(kEntities), std::end(kEntities),
                                              [&](const TEntity& candidate) { return candidate.name == name; });
      if (entity == std::end(kEntities)) Refuse("an entity that is not one of the five of XML, before");
      return {entity->character};
    }
    name.remove_prefix(1);
    const int base = name.substr(0, 1) == "x" ? 16 : 10;
    if (base == 16) name.remove_prefix(1);
    std::uint32_t code = 0;
    const std::from_chars_result result = std::from_chars(name.data(), name.data() + name.size(), code, base);
    if (name.empty() || result.ec != std::errc() || result.ptr != name.data() + name.size() || !IsXmlCharacter(code)) {
      Refuse("a reference to no character, before");
    }
    std::string character;
    utf8::append(static_cast<char32_t>(code), std::back_inserter(character));
    return character;
  }

  std::string_view m_text;
  const TXmlLimits& m_limits;
  std::size_t m_position = 0;
  std::size_t m_elements = 0;
  std::vector<TXmlElement> m_open;  // the innermost last
  TXmlElement m_root;
};

}  // namespace

const std::string* TXmlElement::FindAttribute(std::string_view attribute) const {
  const auto found = std::find_if(attributes.begin(), attributes.end(),
                                  [&](const auto& candidate) { return candidate.first == attribute; });
  return found == attributes.end() ? nullptr : &found->second;
}

const TXmlElement* TXmlElement::FindChild(std::string_view child) const {
  const auto found = std::find_if(children.begin(), children.end(),
                                  [&](const TXmlElement& candidate) { return candidate.name == child; });
  return found == children.end() ? nullptr : &*found;
}

TXmlElement ReadXml(std::string_view text, const TXmlLimits& limits) { return TReader(text, limits).ReadDocument(); }
