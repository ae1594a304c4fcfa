// What this process holds of the system, to see that nothing is left behind.
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

  /// As they are now.
  static TProcessResources Count() {
    TProcessResources resources;
    std::size_t allPages = 0;
    std::ifstream("/proc/self/statm") >> allPages >> resources.residentPages;
    std::ifstream maps("/proc/self/maps");
    for (std::string line; std::getline(maps, line);) ++resources.mappings;
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    resources.descriptors = std::distance(descriptors, std::filesystem::directory_iterator());
    return resources;
  }
};

/// Runs `round` 1,000 times to warm up and then 10,000 times, and expects that no resource has grown: a round that kept
/// one page would have kept 10,000.
template <typename TRound>
void ExpectNothingLeftBehind(TRound round) {
  for (int count = 0; count < 1000; ++count) round();
  const TProcessResources before = TProcessResources::Count();
  for (int count = 0; count < 10000; ++count) round();
  const TProcessResources after = TProcessResources::Count();
  EXPECT_LT(after.residentPages, before.residentPages + 1000);
  EXPECT_LT(after.mappings, before.mappings + 10);
  EXPECT_EQ(after.descriptors, before.descriptors);
}
