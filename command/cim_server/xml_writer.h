// Writes XML text element by element, without holding the document as objects first.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class TXmlWriter {
 public:
  typedef std::initializer_list<std::pair<const char*, std::string_view>> TAttributes;

  /// An attribute that is empty is left out.
  void Open(const char* element, TAttributes attributes = {});
  /// The innermost element that is open.
  void Close();
  void Empty(const char* element, TAttributes attributes = {});
  /// An element that holds a text. Text and attributes must be UTF-8 of characters that XML has.
  void Text(const char* element, std::string_view text, TAttributes attributes = {});

  /// Elements that another writer wrote.
  void Append(const std::string& elements) { m_text += elements; }

  /// The text so far, without a line end.
  const std::string& GetText() const { return m_text; }

 private:
  void Begin(const char* element, TAttributes attributes);

  std::string m_text;
  std::vector<const char*> m_open;
};
