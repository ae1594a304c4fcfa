// The files of a machine: this one's, or those below a captured machine's root.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>

#include "host/visibility.h"

/// More than any configuration needs, and little enough to hold several times in a 32-bit process.
constexpr std::size_t kMaxMachineFileSize = std::size_t{256} * 1024 * 1024;  // bytes

/// Reads regular files by the paths they have on the machine. A path that leads out of the root, by ".." or through
/// symbolic links, does not exist; neither does anything that is not a regular file.
class HOST_API TMachineFiles {
 public:
  /// `root`: the folder that stands for "/", free of links from now on. It need not exist; then no file does.
  explicit TMachineFiles(const std::filesystem::path& root);

  bool Exists(const std::string& path) const;

  /// Whether there is a folder of that path, which does not lead out of the root either.
  bool HasFolder(const std::string& path) const;

  /// The whole content. Throws TZELTException, which names the path, when there is no such file, when it cannot be
  /// read, or when it has more than `maxSize` bytes, also because it grows meanwhile.
  std::string Read(const std::string& path, std::size_t maxSize = kMaxMachineFileSize) const;

 private:
  /// Where the file or folder lies, free of links; empty when it does not exist or lies outside the root.
  std::filesystem::path Locate(const std::string& path) const;

  std::filesystem::path m_root;  // canonical
};
