#include "command/report/json_writer.h"

#include <stdexcept>
#include <utility>

#include "command/base/text_encoding.h"

namespace {

constexpr std::size_t kIndent = 2;  // columns a level

}  // namespace

TJsonWriter::TJsonWriter(ELayout layout, std::size_t maxSize) : m_layout(layout), m_maxSize(maxSize) {}

void TJsonWriter::BeginObject() { Begin('{'); }
void TJsonWriter::EndObject() { End('}'); }
void TJsonWriter::BeginArray() { Begin('['); }
void TJsonWriter::EndArray() { End(']'); }

void TJsonWriter::Key(std::string_view name) {
  Separate();
  AppendJson(m_text, name);
  m_text += ':';
  if (m_layout == ELayout::kIndented) m_text += ' ';
  m_followsKey = true;
}

void TJsonWriter::String(std::string_view text) {
  Separate();
  AppendJson(m_text, text);
  CheckSize();
}

void TJsonWriter::Literal(std::string_view text) {
  Separate();
  m_text += text;
  CheckSize();
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

void TJsonWriter::CheckSize() const {
  if (m_text.size() > m_maxSize) throw std::length_error("the JSON text is too long");
}
