#include "command/report/json_writer.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "command/base/text_encoding.h"

namespace {

constexpr std::size_t kIndent = 2;  // columns a level

/// What stands for a character that JSON does not take as it is (RFC 8259, section 7).
std::string Escape(char character) {
  switch (character) {
    case '"':
      return "\\\"";
    case '\\':
      return "\\\\";
    case '\b':
      return "\\b";
    case '\f':
      return "\\f";
    case '\n':
      return "\\n";
    case '\r':
      return "\\r";
    case '\t':
      return "\\t";
    default:
      break;
  }
  char text[8];
  std::snprintf(text, sizeof text, "\\u%04x", static_cast<unsigned char>(character));
  return text;
}

bool NeedsEscape(char character) {
  return static_cast<unsigned char>(character) < 0x20 || character == '"' || character == '\\';
}

}  // namespace

TJsonWriter::TJsonWriter(ELayout layout) : m_layout(layout) {}

void TJsonWriter::BeginObject() { Begin('{'); }
void TJsonWriter::EndObject() { End('}'); }
void TJsonWriter::BeginArray() { Begin('['); }
void TJsonWriter::EndArray() { End(']'); }

void TJsonWriter::Key(const std::string& name) {
  Separate();
  Quote(name);
  m_text += m_layout == ELayout::kIndented ? ": " : ":";
  m_followsKey = true;
}

void TJsonWriter::String(const std::string& text) {
  Separate();
  Quote(ToUtf8(text));
}

void TJsonWriter::Literal(const std::string& text) {
  Separate();
  m_text += text;
}

std::string TJsonWriter::TakeText() {
  std::string text;
  text.swap(m_text);
  m_isFirst = true;
  return text;
}

void TJsonWriter::Begin(char bracket) {
  Separate();
  m_text += bracket;
  ++m_depth;
  m_isFirst = true;
}

void TJsonWriter::End(char bracket) {
  --m_depth;
  if (!m_isFirst) BreakLine();
  m_text += bracket;
  m_isFirst = false;
}

void TJsonWriter::Separate() {
  if (!std::exchange(m_followsKey, false)) {
    if (!m_isFirst) m_text += ',';
    if (m_depth > 0) BreakLine();
  }
  m_isFirst = false;
}

void TJsonWriter::BreakLine() {
  if (m_layout == ELayout::kIndented) m_text.append(1, '\n').append(m_depth * kIndent, ' ');
}

void TJsonWriter::Quote(const std::string& text) {
  m_text += '"';
  for (auto begin = text.begin(); begin != text.end();) {
    const auto end = std::find_if(begin, text.end(), NeedsEscape);
    m_text.append(begin, end);
    if (end == text.end()) break;
    m_text += Escape(*end);
    begin = end + 1;
  }
  m_text += '"';
}
