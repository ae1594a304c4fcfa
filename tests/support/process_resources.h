// Counts the system resources that this process holds, to check that nothing leaks.
#pragma once

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

struct TProcessResources {
  std::size_t residentPages = 0;
  std::size_t mappings = 0;
  std::ptrdiff_t descriptors = 0;
  std::ptrdiff_t threads = 0;

  /// As they are now.
  static TProcessResources Count() {
    TProcessResources resources;
    std::size_t allPages = 0;
    std::ifstream("/proc/self/statm") >> allPages >> resources.residentPages;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) ++resources.mappings;
    resources.descriptors = CountEntries("/proc/self/fd");
    resources.threads = CountEntries("/proc/self/task");
    return resources;
  }

 private:
  static std::ptrdiff_t CountEntries(const char* folder) {
    return std::distance(std::filesystem::directory_iterator(folder), std::filesystem::directory_iterator());
  }
};

/// Runs `round` `warmUp` times and then `rounds` times, and expects that no resource has grown. The tolerance is a
/// tenth of one page for each round.
template <typename TRound>
void ExpectNothingLeftBehind(TRound round, std::size_t warmUp = 1000, std::size_t rounds = 10000) {
  for (std::size_t count = 0; count < warmUp; ++count) round();
  const TProcessResources before = TProcessResources::Count();
  for (std::size_t count = 0; count < rounds; ++count) round();
  const TProcessResources after = TProcessResources::Count();
  EXPECT_LT(after.residentPages, before.residentPages + rounds / 10);
  EXPECT_LT(after.mappings, before.mappings + 10);
  EXPECT_EQ(after.descriptors, before.descriptors);
  EXPECT_EQ(after.threads, before.threads);
}
