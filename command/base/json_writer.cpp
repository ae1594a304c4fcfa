#include "command/base/json_writer.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "command/base/text_encoding.h"

namespace {

constexpr std::size_t kIndent = 2;  // columns per level

}  // namespace

TJsonWriter::TJsonWriter(ELayout layout, std::size_t maxSize) : m_layout(layout), m_maxSize(maxSize) {}

void TJsonWriter::BeginObject() { Begin('{'); }
void TJsonWriter::EndObject() { End('}'); }
void TJsonWriter::BeginArray() { Begin('['); }
void TJsonWriter::EndArray() { End(']'); }

void TJsonWriter::Key(const char* name) {
  Separate();
  m_text.Append('"');
  m_text.Append(std::string_view(name));
  m_text.Append('"');
  EndKey();
}

void TJsonWriter::Key(const std::string& name) {
  Separate();
  AppendJson(m_text, name);
  EndKey();
}

void TJsonWriter::String(std::string_view text) {
  Separate();
  if (m_change == nullptr) {
    AppendJson(m_text, text);
  } else {
    AppendJson(m_text, m_change(std::string(text)));
  }
  CheckSize();
}

void TJsonWriter::Literal(std::string_view text) {
  Separate();
  m_text.Append(text);
  CheckSize();
}

void TJsonWriter::EndLine() {
  m_text.Append('\n');
  CheckSize();
  m_isFirst = true;
}

std::string TJsonWriter::TakeText() {
  m_isFirst = true;
  return m_text.Take();
}

void TJsonWriter::Begin(char bracket) {
  Separate();
  m_text.Append(bracket);
  ++m_depth;
  m_isFirst = true;
}

void TJsonWriter::End(char bracket) {
  --m_depth;
  if (!m_isFirst) BreakLine();
  m_text.Append(bracket);
  m_isFirst = false;
}

void TJsonWriter::Separate() {
  if (!std::exchange(m_followsKey, false)) {
    if (!m_isFirst) m_text.Append(',');
    if (m_depth > 0) BreakLine();
  }
  m_isFirst = false;
}

void TJsonWriter::EndKey() {
  m_text.Append(':');
  if (m_layout == ELayout::kIndented) m_text.Append(' ');
  m_followsKey = true;
}

void TJsonWriter::BreakLine() {
  if (m_layout != ELayout::kIndented) return;
  const std::size_t columns = m_depth * kIndent;
  char* const line = m_text.GetRoom(1 + columns);
  *line = '\n';
  m_text.EndAt(std::fill_n(line + 1, columns, ' '));
}

void TJsonWriter::CheckSize() const {
  if (m_text.GetSize() > m_maxSize) throw std::length_error("the JSON text is too long");
}
