// Opens a folder once, and looks up files in it without ever leaving it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>

#include "command/base/descriptor.h"

/// Which symbolic links a look-up follows.
enum class ELinks {
  kAll,     // wherever they lead: for this machine's own files, whose folder is "/"
  kInside,  // only those that never leave the folder, not even on the way; none if the kernel has no openat2
  kNone,    // none, as without openat2 (before Linux 5.6, or in a sandbox that forbids it)
};

/// Somebody may replace folders by links during a look-up. Each look-up is therefore one system call that the kernel
/// keeps inside the folder, and its result is used directly: no path is looked up twice.
///
/// All functions here and below throw TUnusable for errors that tell nothing about the file (DescribesFile).
class TRootedFolder {
 public:
  /// `path` itself may be a link, since the user named it. If the folder does not exist, nothing is in it.
  explicit TRootedFolder(const std::filesystem::path& path, ELinks links = ELinks::kInside);
  /// `folder`: opened with O_PATH. `path`: for messages.
  TRootedFolder(TDescriptor folder, std::string path, ELinks links = ELinks::kInside)
      : m_folder(std::move(folder)), m_path(std::move(path)), m_links(links) {}

  bool IsOpen() const { return m_folder.IsOpen(); }

  /// Finds what lies at that path, absolute or relative: a descriptor by O_PATH. Not open, with errno set, if nothing
  /// is there, or if the way there leaves the folder.
  TDescriptor Find(const std::string& path) const;

  /// Opens the regular file at that path for reading. Not open, with errno set, if there is none, or if it may not be
  /// read.
  TDescriptor OpenFile(const std::string& path) const;

  /// The folder at that path, under the same rules.
  TRootedFolder OpenFolder(const std::string& path) const;

  /// True if the folder itself has anything of that name, even a dangling link.
  bool Has(const std::string& name) const;

  /// Calls `take` with the name of each entry of the folder, in no order.
  void ForEachName(const std::function<void(const std::string& name)>& take) const;

 private:
  std::string At(const std::string& path) const;

  TDescriptor m_folder;
  std::string m_path;
  ELinks m_links;
};

/// Finds what lies at a path, by O_PATH, which neither touches a device nor waits for a FIFO. Not open, with errno set,
/// if nothing is there.
TDescriptor FindPath(const std::filesystem::path& path);

/// What kind of thing was found. `path`: for messages, as below.
bool IsRegularFile(const TDescriptor& found, const std::string& path);
bool IsFolder(const TDescriptor& found, const std::string& path);

/// Opens exactly the file that was found by O_PATH for reading. Not open, with errno set, if it is no regular file or
/// may not be read.
TDescriptor OpenFound(const TDescriptor& found, const std::filesystem::path& path);

/// The rest of an open file. Reads a little past `maxSize` bytes, so that the caller sees if the file is too large.
std::string ReadContent(const TDescriptor& file, std::size_t maxSize, const std::string& path);
