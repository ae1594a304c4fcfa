#include "command/report/html/html_pieces.h"

namespace {

constexpr std::size_t kPieceSize = 65536;  // the least that is written at once, bytes

}  // namespace

void THtmlPieces::Put(const std::string& text) {
  m_piece += text;
  if (m_piece.size() >= kPieceSize) Flush();
}

void THtmlPieces::Flush() {
  m_isRead = m_isRead && m_write(m_piece);
  m_piece.clear();
}

std::pair<std::string, std::string> Part(const std::string& text, const char* tag) {
  const std::size_t place = text.find(tag);
  return {text.substr(0, place), text.substr(place)};
}

std::pair<std::string, std::string> Part(TMarkup markup, const char* tag) { return Part(markup.Take(), tag); }
