// Knows which machines an earlier run over a fleet has already done.
#pragma once

#include <filesystem>
#include <string>
#include <unordered_map>

class TFinishedMachines {
 public:
  /// Knows no machine.
  TFinishedMachines() = default;

  /// Knows the machines that have a line, even an error, in the file that an earlier run wrote. Throws TUnusable, which
  /// names file and line, if it cannot be read or is no such answer.
  explicit TFinishedMachines(const std::filesystem::path& file);

  /// True if a line of that machine is left. Uses that line up, since a machine that is listed twice needs two.
  bool Take(const std::string& machine);

 private:
  std::unordered_map<std::string, std::size_t> m_counts;  // by the name as it is in JSON
};
