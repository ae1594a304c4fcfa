// The interface to a machine's files: this machine's own, or those of a captured one.
#pragma once

#include <cstddef>
#include <string>

/// More than any configuration needs, but small enough to hold several times in a 32-bit process.
constexpr std::size_t kMaxMachineFileSize = std::size_t{256} * 1024 * 1024;  // bytes

/// Regular files, by their absolute paths on the machine. If the system on which this runs fails, which tells nothing
/// about the machine, both calls throw an exception that is no TZELTException.
class IMachineFiles {
 public:
  virtual ~IMachineFiles() = default;

  virtual bool Exists(const std::string& path) const = 0;

  /// The whole content. Throws TZELTException, which names the path, if there is no such file, if it cannot be read, or
  /// if it has more than kMaxMachineFileSize bytes.
  virtual std::string Read(const std::string& path) const = 0;
};
