// What an earlier run over a fleet has done already.
#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>

class TFinishedMachines {
 public:
  /// None.
  TFinishedMachines() = default;

  /// Those of which the file, the answer of an earlier run, holds a line, with an error or without. Throws TUnusable,
  /// naming file and line, when it cannot be read or is no such answer.
  explicit TFinishedMachines(const std::filesystem::path& file);

  /// Whether a line of that machine is there; a line serves one listing of it.
  bool Take(const std::string& machine);

 private:
  std::unordered_map<std::string, std::size_t> m_counts;  // by the name as JSON holds it
};
