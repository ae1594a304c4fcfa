// The files of a machine: this one's, or those below a captured machine's root.
#pragma once

#include <filesystem>
#include <string>

#include "host/visibility.h"

/// Reads regular files by the paths they have on the machine. A path that leads out of the root, by ".." or through
/// symbolic links, does not exist; neither does anything that is not a regular file.
class HOST_API TMachineFiles {
 public:
  /// `root`: the folder that stands for "/". It need not exist; then no file does.
  explicit TMachineFiles(std::filesystem::path root);

  bool Exists(const std::string& path) const;

  /// The whole content. Throws TZELTException, which names the path, when there is no such file or it cannot be read.
  std::string Read(const std::string& path) const;

 private:
  /// Where the file lies, free of links; empty when it does not exist.
  std::filesystem::path Locate(const std::string& path) const;

  std::filesystem::path m_root;
};
