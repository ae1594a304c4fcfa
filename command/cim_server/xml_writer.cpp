#include "command/cim_server/xml_writer.h"

#include "command/base/xml_text.h"

void TXmlWriter::Open(const char* element, TAttributes attributes) {
  Begin(element, attributes);
  m_text += '>';
  m_open.push_back(element);
}

void TXmlWriter::Close() {
  m_text.append("</").append(m_open.back()).append(">");
  m_open.pop_back();
}

void TXmlWriter::Empty(const char* element, TAttributes attributes) {
  Begin(element, attributes);
  m_text += "/>";
}

void TXmlWriter::Text(const char* element, std::string_view text, TAttributes attributes) {
  Open(element, attributes);
  m_text += EscapeXml(text);
  Close();
}

void TXmlWriter::Begin(const char* element, TAttributes attributes) {
  m_text.append("<").append(element);
  for (const auto& [name, value] : attributes) {
    if (!value.empty()) m_text.append(" ").append(name).append("=\"").append(EscapeXml(value)).append("\"");
  }
}
