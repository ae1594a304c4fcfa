#include "command/fleet/machine_list.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr std::size_t kPiece = 65536;  // bytes per read

constexpr const char* kListCure = "--machines takes a file of machines, one a line, or - for standard input";

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

  /// The count, including a last line without a line end.
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

TMachineList::TMachineList(const std::vector<std::string>& names) {
  for (const std::string& name : names) m_names.push_back(name.substr(0, kMaxName));
}

TMachineList::TMachineList(TLineReader lines) : m_lines(std::move(lines)) {}

TMachineList TMachineList::Open(const fs::path& file) {
  return TMachineList(TLineReader::Open(file, kMaxName, ELongLine::kCut, kListCure));
}

bool TMachineList::HasNext() const { return !m_names.empty(); }

std::string TMachineList::TakeNext() {
  std::string name = std::move(m_names.front());
  m_names.pop_front();
  return name;
}

bool TMachineList::IsAtEnd() const { return m_names.empty() && (!m_lines || m_lines->IsAtEnd()); }

void TMachineList::ReadMore() {
  m_lines->ReadMore();
  while (std::optional<TLine> line = m_lines->TakeRead()) {
    std::string& name = line->text;
    if (!name.empty() && name.back() == '\r') name.pop_back();
    if (!name.empty() && !IsComment(name)) m_names.push_back(std::move(name));
  }
}

std::optional<std::size_t> TMachineList::CountAll() const {
  if (!m_lines || m_lines->IsAtEnd()) return m_names.size();
  const int file = m_lines->GetDescriptor();
  const off_t begin = lseek(file, 0, SEEK_CUR);
  if (!IsRegularFile(file) || begin < 0) return std::nullopt;
  TNameCount count;
  char piece[kPiece];
  ssize_t size = 0;
  // pread does not move the position at which ReadMore reads on.
  for (off_t place = begin; (size = pread(file, piece, sizeof piece, place)) > 0; place += size) {
    std::for_each(piece, piece + size, [&](char byte) { count.Take(byte); });
  }
  return count.Get();
}
