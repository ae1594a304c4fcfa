#include "command/fleet/finished_machines.h"

#include <optional>

#include "command/base/descriptor.h"
#include "command/base/json_reader.h"
#include "command/base/line_reader.h"
#include "command/base/text_encoding.h"
#include "command/base/unusable.h"
#include "command/machine/rooted_folder.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* kResumeCure = "--resume takes what an earlier run has written";

/// The machine's name in a line. The name comes first, and the rest is not read, since a line may be long.
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

constexpr std::size_t kMaxBeginning = 65536;  // bytes of a line: more than a name of 4096 bytes, all escaped

/// Reads the beginnings of the lines, as far as a name can reach.
TLineReader Open(const fs::path& file) {
  const TDescriptor found = FindPath(file);
  TDescriptor opened;
  if (found.IsOpen() && !IsRegularFile(found, file.string())) {
    throw TUnusable(file.string() + ": is not a regular file; " + kResumeCure);
  }
  if (found.IsOpen()) opened = OpenFound(found, file);
  return {file.string(), std::move(opened), kMaxBeginning, ELongLine::kCut, kResumeCure};
}

}  // namespace

TFinishedMachines::TFinishedMachines(const fs::path& file) {
  TLineReader lines = Open(file);
  while (const std::optional<TLine> line = lines.TakeNext()) {
    const std::string place = file.string() + ", line " + std::to_string(lines.GetNumber());
    if (!line->hasEnd) throw TUnusable(place + ": is cut off; remove it, for example with sed -i '$d'");
    const std::optional<std::string> name = FindName(line->text);
    if (!name) throw TUnusable(place + ": names no machine; " + kResumeCure);
    ++m_counts[*name];
  }
}

bool TFinishedMachines::Take(const std::string& machine) {
  const auto found = m_counts.find(ToUtf8(machine));
  if (found == m_counts.end()) return false;
  if (--found->second == 0) m_counts.erase(found);
  return true;
}
