// The files of a machine: this machine's own, or those of a captured one.
#pragma once

#include <cstddef>
#include <string>

/// More than any configuration needs, and little enough to hold several times in a 32-bit process.
constexpr std::size_t kMaxMachineFileSize = std::size_t{256} * 1024 * 1024;  // bytes

/// Regular files, by the absolute paths they have on the machine. Both calls throw what is no TZELTException when the
/// system fails on which this runs, from which nothing follows for the machine.
class IMachineFiles {
 public:
  virtual ~IMachineFiles() = default;

  virtual bool Exists(const std::string& path) const = 0;

  /// The whole content. Throws TZELTException, which names the path, when there is no such file, when it cannot be
  /// read, or when it has more than kMaxMachineFileSize bytes.
  virtual std::string Read(const std::string& path) const = 0;
};
