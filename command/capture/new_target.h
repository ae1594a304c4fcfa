// Makes new folders and files, and removes them again unless they are kept.
//
// Root may make them in somebody else's folder, whose owner may replace folders by links at any time. So nothing that
// exists is opened for writing, no link is followed, and everything is made, read back and removed through the
// descriptors of what was made. Only one path is looked up, once: that of the folder in which the target is made.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "command/base/descriptor.h"

/// A new folder with new files. Every failure throws TUnusable, which names the path.
class TNewFolder {
 public:
  explicit TNewFolder(const std::filesystem::path& path);
  ~TNewFolder();
  TNewFolder(const TNewFolder&) = delete;
  TNewFolder& operator=(const TNewFolder&) = delete;

  /// Writes a new file and the folders in `name`, such as "edid/0.bin", and reads it back.
  void Write(const std::string& name, const std::string& content);

  void Keep() { m_made.clear(); }

 private:
  struct TMade {
    int folder;  // the descriptor of its folder, which TNewFolder owns
    std::string name;
    int flags;  // for unlinkat
  };

  /// The descriptor of the folder of that name in this one, which is made if it does not exist yet.
  int GetFolder(const std::string& name);

  const std::string m_path;
  TDescriptor m_parent;
  std::map<std::string, TDescriptor> m_folders;  // by name in this one; this one itself is ""
  std::vector<TMade> m_made;
};

/// A new file. It is written and read back in the same way.
class TNewFile {
 public:
  TNewFile(const std::filesystem::path& path, const std::string& content);
  ~TNewFile();
  TNewFile(const TNewFile&) = delete;
  TNewFile& operator=(const TNewFile&) = delete;

  void Keep() { m_isKept = true; }

 private:
  TDescriptor m_parent;
  std::string m_name;
  bool m_isKept = false;
};
