// What an earlier run over a fleet has done already.
#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>

class TFinishedMachines {
 public:
  /// None.
  TFinishedMachines() = default;

  /// Those that have a line, with an error or without, in the file that an earlier run wrote. Throws TUnusable,
  /// naming file and line, when it cannot be read or is no such answer.
  explicit TFinishedMachines(const std::filesystem::path& file);

  /// True if a line of that machine is left, which this uses up: a machine that is listed twice needs two.
  bool Take(const std::string& machine);

 private:
  std::unordered_map<std::string, std::size_t> m_counts;  // by the name as JSON holds it
};
