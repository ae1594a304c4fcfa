#include "command/cim_server/xml_syntax.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <vector>

#include "command/cim_server/xml_text.h"

namespace {

constexpr std::string_view kBlanks = " \t\r\n";
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr const char* kDeclaration = "a declaration, which is refused,";
constexpr std::string_view kEntities[] = {"amp", "lt", "gt", "quot", "apos"};

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

/// Goes through the document once, from its first byte to its last, without calling itself.
class TScanner {
 public:
  explicit TScanner(std::string_view text) : m_text(text) {}

  void ScanDocument() {
    if (!IsXmlText(m_text)) Refuse("a byte that is not UTF-8, or a character that XML does not have");
    Skip(kByteOrderMark);
    if (Begins("<?xml") && !ContinuesName(At(5)) && static_cast<unsigned char>(At(5)) < 0x80) ScanDeclaration();
    ScanAround();
    if (Begins("<!")) Refuse(kDeclaration);
    Require("<", "no element");
    ScanStartTag();
    while (!m_open.empty()) ScanContent();
    ScanAround();
    if (!IsAtEnd()) Refuse("something after the document's element");
  }

 private:
  [[noreturn]] void Refuse(const char* what) const {
    throw TXmlFault(std::string(what) + " at byte " + std::to_string(m_position));
  }

  bool IsAtEnd() const { return m_position == m_text.size(); }
  /// Zero after the end, which no text holds.
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
  void ScanContent() {
    if (Skip("</")) {
      ScanEndTag();
    } else if (Skip("<![CDATA[")) {
      TakeUpTo("]]>", "no end of the CDATA section");
    } else if (Begins("<!") && !Begins("<!--")) {
      Refuse(kDeclaration);
    } else if (ScanAside()) {
      return;
    } else if (Skip("<")) {
      ScanStartTag();
    } else {
      ScanCharacters("<");
    }
  }

  void ScanStartTag() {
    const std::string_view name = TakeName();
    std::vector<std::string_view> attributes;
    bool isApart = SkipBlanks();
    while (!Begins(">") && !Begins("/>")) {
      if (!isApart) Refuse("no blank before an attribute");
      attributes.push_back(TakeName());
      if (std::count(attributes.begin(), attributes.end(), attributes.back()) > 1)
        Refuse("an attribute for the second time");
      const char quote = TakeQuote();
      ScanCharacters(quote == '"' ? "\"<" : "'<");
      Require(std::string_view(&quote, 1), "a < in an attribute");
      isApart = SkipBlanks();
    }
    if (Skip("/>")) return;
    Skip(">");
    m_open.push_back(name);
    if (m_open.size() > kMaxXmlDepth) Refuse("elements nested too deep");
  }

  void ScanEndTag() {
    if (TakeName() != m_open.back()) Refuse("an end tag of another element");
    SkipBlanks();
    Require(">", "no end of the end tag");
    m_open.pop_back();
  }

  /// Text up to one of `ends`, which must come.
  void ScanCharacters(std::string_view ends) {
    while (ends.find(At(0)) == std::string_view::npos) {
      if (IsAtEnd()) Refuse("the end within an element");
      if (ends.size() == 1 && Begins("]]>")) Refuse("]]> in a text");
      if (Skip("&")) {
        ScanReference();
      } else {
        ++m_position;
      }
    }
  }

  void ScanReference() {
    std::string_view name = TakeUpTo(";", "no end of the reference");
    if (name.substr(0, 1) != "#") {
      if (std::find(std::begin(kEntities), std::end(kEntities), name) == std::end(kEntities)) {
        Refuse("an entity that is not one of the five of XML, before");
      }
      return;
    }
    name.remove_prefix(1);
    const int base = name.substr(0, 1) == "x" ? 16 : 10;
    if (base == 16) name.remove_prefix(1);
    unsigned long code = 0;
    const std::from_chars_result result = std::from_chars(name.data(), name.data() + name.size(), code, base);
    if (name.empty() || result.ec != std::errc() || result.ptr != name.data() + name.size() || !IsXmlCharacter(code)) {
      Refuse("a reference to no character, before");
    }
  }

  std::string_view m_text;
  std::size_t m_position = 0;
  std::vector<std::string_view> m_open;  // elements, the innermost last
};

}  // namespace

void RequireWellFormedXml(std::string_view text) { TScanner(text).ScanDocument(); }
