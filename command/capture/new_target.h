// Folders and files that were not there before, and are not there afterwards unless they are kept.
//
// Root may make them in somebody else's folder, whose owner may replace folders by links at any time. So nothing that
// exists is ever opened for writing, no link is followed, and everything is made, read back, and removed again, through
// the descriptors of what was made: a path is looked up once, for the folder that the target goes into.
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

  /// Writes a new file, `name` such as "edid/0.bin", with the folders on its way, and reads it back.
  void Write(const std::string& name, const std::string& content);

  void Keep() { m_made.clear(); }

 private:
  struct TMade {
    int folder;  // a descriptor that this owns
    std::string name;
    int flags;  // for unlinkat
  };

  /// The folder of that name in this one, made if it does not exist yet.
  int GetFolder(const std::string& name);

  const std::string m_path;
  TDescriptor m_parent;
  std::map<std::string, TDescriptor> m_folders;  // by their names in this one, which itself is ""
  std::vector<TMade> m_made;
};

/// A new file, written and read back in the same way.
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
