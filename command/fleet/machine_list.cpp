#include "command/fleet/machine_list.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "command/base/unusable.h"

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPiece = 65536;  // bytes that are read at a time

[[noreturn]] void Fail(const std::string& name) {
  const std::string problem = errno == EBADF ? " is closed" : std::string(": cannot be read: ") + std::strerror(errno);
  throw TUnusable(name + problem + "; --machines takes a file of machines, one a line, or - for standard input");
}

bool IsBlank(char character) { return character == ' ' || character == '\t'; }

bool IsComment(const std::string& line) {
  const auto first = std::find_if_not(line.begin(), line.end(), IsBlank);
  return first != line.end() && *first == '#';
}

/// Counts the names in a list that comes in pieces.
class TNameCount {
 public:
  void Take(char byte) {
    if (byte == '\n') {
      m_count = Get();
      m_line = ELine::kEmpty;
    } else if (m_line == ELine::kEmpty || m_line == ELine::kBlank) {
      m_line = Enter(byte);
    }
  }

  /// With a last line that does not end.
  std::size_t Get() const { return m_count + (m_line == ELine::kBlank || m_line == ELine::kName ? 1 : 0); }

 private:
  enum class ELine { kEmpty, kBlank, kName, kComment };

  ELine Enter(char byte) const {
    if (byte == '\r') return m_line;
    if (byte == '#') return ELine::kComment;
    return IsBlank(byte) ? ELine::kBlank : ELine::kName;
  }

  std::size_t m_count = 0;
  ELine m_line = ELine::kEmpty;
};

bool IsRegularFile(int descriptor) {
  struct stat status = {};
  return fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

TMachineList::TMachineList(const std::vector<std::string>& names) : m_name("the list") {
  for (const std::string& name : names) m_names.push_back(name.substr(0, kMaxName));
}

TMachineList::TMachineList(std::string name, TDescriptor file) : m_name(std::move(name)), m_file(std::move(file)) {
  if (!m_file.IsOpen()) Fail(m_name);
}

TMachineList TMachineList::Open(const fs::path& file) {
  if (file != "-") return {file.string(), TDescriptor(open(file.c_str(), O_RDONLY | O_CLOEXEC))};
  return {"standard input", TDescriptor(fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 0))};
}

bool TMachineList::HasNext() const { return !m_names.empty(); }

std::string TMachineList::TakeNext() {
  std::string name = std::move(m_names.front());
  m_names.pop_front();
  return name;
}

bool TMachineList::IsAtEnd() const { return m_names.empty() && !m_file.IsOpen(); }

void TMachineList::ReadMore() {
  char piece[kPiece];
  const ssize_t count = read(m_file.Get(), piece, sizeof piece);
  if (count < 0 && errno != EINTR && errno != EAGAIN) Fail(m_name);
  if (count > 0) TakeLines(piece, static_cast<std::size_t>(count));
  if (count == 0) {
    EndLine();
    m_file.Close();
  }
}

void TMachineList::TakeLines(const char* piece, std::size_t size) {
  const char* const end = piece + size;
  while (piece != end) {
    const char* const lineEnd = std::find(piece, end, '\n');
    m_line.append(piece, std::min(static_cast<std::size_t>(lineEnd - piece), kMaxName - m_line.size()));
    if (lineEnd == end) return;
    EndLine();
    piece = lineEnd + 1;
  }
}

void TMachineList::EndLine() {
  if (!m_line.empty() && m_line.back() == '\r') m_line.pop_back();
  const std::string line = std::exchange(m_line, {});
  if (!line.empty() && !IsComment(line)) m_names.push_back(line);
}

std::optional<std::size_t> TMachineList::CountAll() const {
  if (!m_file.IsOpen()) return m_names.size();
  const off_t begin = lseek(m_file.Get(), 0, SEEK_CUR);
  if (!IsRegularFile(m_file.Get()) || begin < 0) return std::nullopt;
  TNameCount count;
  char piece[kPiece];
  ssize_t size = 0;
  // pread leaves the place where ReadMore goes on.
  for (off_t place = begin; (size = pread(m_file.Get(), piece, sizeof piece, place)) > 0; place += size) {
    std::for_each(piece, piece + size, [&](char byte) { count.Take(byte); });
  }
  return count.Get();
}
