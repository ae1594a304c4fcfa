#include "command/compare/line_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "command/base/unusable.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPiece = 65536;  // bytes that are read at a time

TDescriptor Open(const fs::path& path) {
  if (path == "-") return TDescriptor(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0));
  return TDescriptor(open(path.c_str(), O_RDONLY | O_NOCTTY | O_CLOEXEC));
}

[[noreturn]] void Fail(const std::string& name) {
  const std::string problem = errno == EBADF ? " is closed" : std::string(": cannot be read: ") + std::strerror(errno);
  throw TUnusable(name + problem +
                  "; compare takes captured machines, and what --format json or --machines has written");
}

}  // namespace

TLineFile::TLineFile(const fs::path& path)
    : m_name(path == "-" ? "standard input" : path.string()), m_file(Open(path)) {
  if (!m_file.IsOpen()) Fail(m_name);
}

const std::string& TLineFile::GetBeginning() {
  if (m_piece.empty()) ReadMore();
  return m_piece;
}

std::optional<std::string> TLineFile::TakeLine() {
  std::string line;
  while (m_next != m_piece.size() || ReadMore()) {
    const std::size_t end = std::min(m_piece.find('\n', m_next), m_piece.size());
    line.append(m_piece, m_next, end - m_next);
    if (line.size() > kMaxSize) {
      throw TUnusable(m_name + ", line " + std::to_string(m_number + 1) + ": is longer than " +
                      std::to_string(kMaxSize) + " bytes, which no answer is");
    }
    m_next = std::min(end + 1, m_piece.size());
    if (end == m_piece.size()) continue;
    ++m_number;
    if (line.find_first_not_of(" \t\r") != std::string::npos) return line;
    line.clear();
  }
  if (line.empty()) return std::nullopt;
  ++m_number;
  return line;
}

std::string TLineFile::TakeRest() {
  std::string rest = m_piece.substr(m_next);
  while (ReadMore()) {
    rest += m_piece;
    if (rest.size() > kMaxSize) {
      throw TUnusable(m_name + ": is larger than " + std::to_string(kMaxSize) +
                      " bytes; an answer without its log is smaller: --no-log");
    }
  }
  m_next = m_piece.size();
  return rest;
}

bool TLineFile::ReadMore() {
  m_piece.resize(kPiece);
  ssize_t count = 0;
  while ((count = read(m_file.Get(), m_piece.data(), m_piece.size())) < 0 && errno == EINTR) continue;
  if (count < 0) Fail(m_name);
  m_piece.resize(static_cast<std::size_t>(count));
  m_next = 0;
  return count > 0;
}
