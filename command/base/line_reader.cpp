#include "command/base/line_reader.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "command/base/unusable.h"

namespace {

constexpr std::size_t kPiece = 65536;  // bytes per read

}  // namespace

TLineReader::TLineReader(std::string name, TDescriptor file, std::size_t longest, ELongLine longLine, const char* cure)
    : m_name(std::move(name)), m_file(std::move(file)), m_longest(longest), m_longLine(longLine), m_cure(cure) {
  if (!m_file.IsOpen()) Fail();
}

TLineReader TLineReader::Open(const std::filesystem::path& path, std::size_t longest, ELongLine longLine,
                              const char* cure) {
  if (path != "-") {
    return {path.string(), TDescriptor(open(path.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC)), longest, longLine, cure};
  }
  return {"standard input", TDescriptor(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0)), longest, longLine, cure};
}

const std::string& TLineReader::GetBeginning() {
  while (m_piece.empty() && !IsAtEnd()) WaitAndReadMore();
  return m_piece;
}

std::optional<TLine> TLineReader::TakeNext() {
  while (true) {
    if (auto line = TakeRead()) return line;
    if (IsAtEnd()) return std::nullopt;
    WaitAndReadMore();
  }
}

std::string TLineReader::TakeRest(std::size_t maxSize) {
  std::string rest = m_piece.substr(m_next);
  m_next = m_piece.size();
  while (!IsAtEnd() && rest.size() <= maxSize) {
    WaitAndReadMore();
    rest += m_piece;
    m_next = m_piece.size();
  }
  return rest;
}

void TLineReader::ReadMore() {
  m_piece.resize(kPiece);
  m_next = 0;
  const ssize_t count = read(m_file.Get(), m_piece.data(), m_piece.size());
  if (count < 0 && errno != EINTR && errno != EAGAIN) Fail();
  m_piece.resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
  if (count == 0) m_file.Close();
}

std::optional<TLine> TLineReader::TakeRead() {
  const std::size_t end = std::min(m_piece.find('\n', m_next), m_piece.size());
  const std::size_t size = end - m_next;
  const std::size_t room = m_longest - m_line.text.size();
  m_line.text.append(m_piece, m_next, std::min(size, room));
  if (size > room && m_longLine == ELongLine::kRefused) {
    throw TUnusable(m_name + ", line " + std::to_string(m_number + 1) + ": is longer than " +
                    std::to_string(m_longest) + " bytes; " + m_cure);
  }
  m_hasBegun = m_hasBegun || size > 0;
  const bool hasEnd = end < m_piece.size();
  m_next = hasEnd ? end + 1 : end;
  if (hasEnd || (IsAtEnd() && m_hasBegun)) return TakeLine(hasEnd);
  return std::nullopt;
}

TLine TLineReader::TakeLine(bool hasEnd) {
  ++m_number;
  m_hasBegun = false;
  m_line.hasEnd = hasEnd;
  return std::exchange(m_line, {});
}

void TLineReader::WaitAndReadMore() {
  pollfd file = {m_file.Get(), POLLIN, 0};
  static_cast<void>(poll(&file, 1, -1));
  ReadMore();
}

void TLineReader::Fail() const {
  const std::string problem = errno == EBADF ? " is closed" : std::string(": cannot be read: ") + std::strerror(errno);
  throw TUnusable(m_name + problem + "; " + m_cure);
}
