// Does the work of displayinfo compare: which monitors and controllers came, went, moved or changed.
#pragma once

#include <chrono>
#include <filesystem>

struct TCompareOptions {
  std::filesystem::path before;
  std::filesystem::path after;
  bool isJson = false;
  bool isByPath = false;             // recognise the machines of fleets by their paths instead of their system names
  std::filesystem::path plugin;      // for asking captured machines
  std::chrono::seconds timeout{60};  // for each captured machine
};

/// Writes the differences to standard output. Returns the exit status: 0 if there are none, 1 if there are. Throws
/// TUnusable, which names file and line, if one of the two cannot be compared.
int Compare(const TCompareOptions& options);
