// Does the work of displayinfo watch: writes this machine's answer whenever a monitor comes or goes.
#pragma once

#include <chrono>
#include <filesystem>

struct TWatchOptions {
  std::chrono::seconds timeout{60};  // for each collection
  std::filesystem::path plugin;
};

/// Writes the answer of this machine, from its graphics drivers, as a line of JSON like those for many machines, and a
/// new line whenever the answer has changed. Returns at SIGINT or SIGTERM, or when the reader of standard output has
/// gone. Throws TUnusable if the machine cannot be collected from.
void Watch(const TWatchOptions& options);
