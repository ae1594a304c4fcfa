// Writes XML text element by element, without building a tree first.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class TXmlWriter {
 public:
  typedef std::initializer_list<std::pair<const char*, std::string_view>> TAttributes;

  /// Opens an element. Empty attributes are left out.
  void Open(const char* element, TAttributes attributes = {});
  /// Closes the innermost open element.
  void Close();
  /// Writes an element without content.
  void Empty(const char* element, TAttributes attributes = {});
  /// Writes an element with a text. IsXmlText must accept the text and the attributes.
  void Text(const char* element, std::string_view text, TAttributes attributes = {});

  /// Appends elements that another writer wrote.
  void Append(const std::string& elements) { m_text += elements; }

  /// The text so far, without a line end.
  const std::string& GetText() const { return m_text; }

 private:
  void Begin(const char* element, TAttributes attributes);

  std::string m_text;
  std::vector<const char*> m_open;
};
