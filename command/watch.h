// `displayinfo watch`: this machine's monitors whenever one comes or goes.
#pragma once

#include <chrono>
#include <filesystem>

struct TWatchOptions {
  std::chrono::seconds timeout{60};  // for each collection
  std::filesystem::path plugin;
};

/// Writes the answer of this machine, by what its graphics drivers know, as a line of JSON for one of many machines,
/// and another whenever it has changed. Ends at SIGINT or SIGTERM, or when the reader of standard output has gone.
/// Throws TUnusable.
void Watch(const TWatchOptions& options);
