// displayinfo compare: which monitors and controllers came, went or changed.
#pragma once

#include <chrono>
#include <filesystem>

struct TCompareOptions {
  std::filesystem::path before;
  std::filesystem::path after;
  bool isJson = false;
  bool isByPath = false;             // the machines of fleets are known again by their paths, not by system names
  std::filesystem::path plugin;      // that captured machines are asked with
  std::chrono::seconds timeout{60};  // for each of them
};

/// Writes the differences to standard output. The exit status: 0 when there are none, 1 when there are. Throws
/// TUnusable, naming file and line, when one of the two cannot be compared.
int Compare(const TCompareOptions& options);
