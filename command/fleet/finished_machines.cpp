#include "command/fleet/finished_machines.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <optional>

#include "command/base/descriptor.h"
#include "command/base/json_reader.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/machine/rooted_folder.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kCure = "; --resume takes what an earlier run has written";

/// The machine's name in a line. What follows it is not looked at: a line may be long, and the name comes first.
std::optional<std::string> FindName(const std::string& line) try {
  TJsonReader reader({"", "answer"}, EUnexpected::kSkipped);
  std::optional<std::string> name;
  const auto take = [&](std::string& text) {
    name = std::move(text);
    reader.Stop();
  };
  reader.Read(line, TJsonRule::Object({{"machine", TJsonRule::Text(take)}}));
  return name;
} catch (const TUnusable&) {
  return std::nullopt;
}

/// The beginnings of a file's lines, one after the other.
class TLineReader {
 public:
  // cppcheck-suppress uninitMemberVar ; m_piece is written before it is read
  explicit TLineReader(const fs::path& file) : m_name(file.string()) {
    const TDescriptor found = FindPath(file);
    if (!found.IsOpen()) Fail();
    if (!IsRegularFile(found, m_name)) throw TUnusable(m_name + ": is not a regular file" + kCure);
    m_file = OpenFound(found, file);
    if (!m_file.IsOpen()) Fail();
  }

  /// The next line as far as a name can reach into it; nothing at the end of the file.
  std::optional<std::string> TakeNext() {
    std::string line;
    bool isAny = false;
    while (m_next != m_end || ReadMore()) {
      isAny = true;
      const char* const lineEnd = std::find(m_next, m_end, '\n');
      line.append(m_next, std::min(static_cast<std::size_t>(lineEnd - m_next), kMaxBeginning - line.size()));
      m_isCutOff = lineEnd == m_end;
      m_next = m_isCutOff ? m_end : lineEnd + 1;
      if (!m_isCutOff) return line;
    }
    return isAny ? std::optional(line) : std::nullopt;
  }

  /// Whether the line taken last ended with the file and not with a line end.
  bool IsCutOff() const { return m_isCutOff; }

 private:
  static constexpr std::size_t kMaxBeginning = 65536;  // bytes: the longest name of 4096, each byte as an escape

  bool ReadMore() {
    ssize_t count = 0;
    while ((count = read(m_file.Get(), m_piece, sizeof m_piece)) < 0 && errno == EINTR) continue;
    if (count < 0) Fail();
    m_next = m_piece;
    m_end = m_piece + count;
    return count > 0;
  }

  [[noreturn]] void Fail() const { throw TUnusable(m_name + ": cannot be read: " + std::strerror(errno) + kCure); }

  std::string m_name;
  TDescriptor m_file;
  char m_piece[65536];
  const char* m_next = m_piece;
  const char* m_end = m_piece;
  bool m_isCutOff = false;
};

}  // namespace

TFinishedMachines::TFinishedMachines(const fs::path& file) {
  TLineReader lines(file);
  std::size_t number = 0;
  while (const std::optional<std::string> line = lines.TakeNext()) {
    const std::string place = file.string() + ", line " + std::to_string(++number);
    if (lines.IsCutOff()) throw TUnusable(place + ": is cut off; remove it, for example with sed -i '$d'");
    const std::optional<std::string> name = FindName(*line);
    if (!name) throw TUnusable(place + ": names no machine" + kCure);
    ++m_counts[*name];
  }
}

bool TFinishedMachines::Take(const std::string& machine) {
  const auto found = m_counts.find(ToUtf8(machine));
  if (found == m_counts.end()) return false;
  if (--found->second == 0) m_counts.erase(found);
  return true;
}
