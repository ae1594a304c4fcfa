#include "command/report/maker_names.h"

#include <cstdlib>

#include "command/base/descriptor.h"
#include "command/base/text_encoding.h"
#include "command/machine/rooted_folder.h"

namespace {

constexpr const char* kInstalled = "/usr/share/hwdata/pnp.ids";
constexpr const char* kVariable = "DISPLAYINFO_PNP_IDS";
constexpr std::size_t kLetters = 3;
constexpr std::size_t kMaxSize = std::size_t{1} * 1024 * 1024;  // bytes; the list has less than a tenth
constexpr std::size_t kMaxName = 100;                           // characters

/// The list, with a line end also before its first line; empty if it cannot be read or is too large.
std::string ReadList(const std::filesystem::path& path) {
  const TDescriptor found = FindPath(path);
  if (!found.IsOpen()) return std::string();
  const TDescriptor file = OpenFound(found, path);
  if (!file.IsOpen()) return std::string();
  const std::string content = ReadContent(file, kMaxSize, path.string());
  return content.size() <= kMaxSize ? "\n" + content : std::string();
}

}  // namespace

bool TMakerNames::IsListMissing() const { return !m_list.empty() && GetText().empty(); }

std::string TMakerNames::Find(const std::string& letters) const {
  if (letters.size() != kLetters) return std::string();
  const std::string begin = "\n" + letters + "\t";
  const std::size_t found = GetText().find(begin);
  if (found == std::string::npos) return std::string();
  const std::size_t name = found + begin.size();
  const std::string text = ToPrintable(GetText().substr(name, GetText().find_first_of("\r\n", name) - name));
  return text.substr(0, GetLength(text, kMaxName));
}

const std::string& TMakerNames::GetText() const {
  if (!m_text) m_text = ReadList(m_list);
  return *m_text;
}

std::filesystem::path FindMakerList() {
  const char* const chosen = std::getenv(kVariable);
  return chosen == nullptr ? kInstalled : chosen;
}
