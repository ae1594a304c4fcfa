// A folder that is opened once, and looked up in without ever leaving it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>

#include "command/base/descriptor.h"

/// Which symbolic links a look-up follows.
enum class ELinks {
  kAll,     // wherever they lead: for this machine's own files, which have nothing outside
  kInside,  // those that never leave the folder, not even on the way; none where the kernel cannot tell
  kNone,    // none, as where the kernel has no openat2 (before Linux 5.6, or in a sandbox that forbids it)
};

/// Somebody may replace folders by links while this looks them up. Each look-up is therefore one system call that
/// the kernel keeps inside the folder, and what it found is what is used: no path is ever looked up twice.
///
/// Everything here, and the functions below, throws TUnusable when the system fails that asks (DescribesFile).
class TRootedFolder {
 public:
  /// `path` itself may be a link: the user named it. The folder need not exist; then nothing is in it.
  explicit TRootedFolder(const std::filesystem::path& path, ELinks links = ELinks::kInside);
  /// `folder`: opened with O_PATH. `path`: for messages.
  TRootedFolder(TDescriptor folder, std::string path, ELinks links = ELinks::kInside)
      : m_folder(std::move(folder)), m_path(std::move(path)), m_links(links) {}

  bool IsOpen() const { return m_folder.IsOpen(); }

  /// Finds what lies at that path, absolute or not: a descriptor by O_PATH, for OpenFile and OpenFolder below. Not
  /// open, with errno set, when there is nothing, or when the way there leaves the folder.
  TDescriptor Find(const std::string& path) const;

  /// The regular file at that path, to be read. Not open, with errno set, when there is none, or when it may not be
  /// read.
  TDescriptor OpenFile(const std::string& path) const;

  /// The folder at that path, under the same rules.
  TRootedFolder OpenFolder(const std::string& path) const;

  /// Whether the folder itself has anything of that name, even a link that leads nowhere.
  bool Has(const std::string& name) const;

  /// Calls `take` with the name of each entry of the folder, in no order.
  void ForEachName(const std::function<void(const std::string& name)>& take) const;

 private:
  std::string At(const std::string& path) const;

  TDescriptor m_folder;
  std::string m_path;
  ELinks m_links;
};

/// What lies at a path, by O_PATH: a device is not reached, and a FIFO not waited for. Not open, with errno set, when
/// there is nothing.
TDescriptor FindPath(const std::filesystem::path& path);

/// What was found. `path`: for messages, as below.
bool IsRegularFile(const TDescriptor& found, const std::string& path);
bool IsFolder(const TDescriptor& found, const std::string& path);

/// Opens for reading the very file that was found by O_PATH. Not open, with errno set, when it is no regular file, or
/// may not be read.
TDescriptor OpenFound(const TDescriptor& found, const std::filesystem::path& path);

/// The rest of an open file; when it has more than `maxSize` bytes, more than that many of them.
std::string ReadContent(const TDescriptor& file, std::size_t maxSize, const std::string& path);
