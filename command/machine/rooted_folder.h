// A folder that is opened once, and looked up in without ever leaving it.
#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "command/base/descriptor.h"

/// Which symbolic links a look-up follows.
enum class ELinks {
  kAll,     // wherever they lead: for this machine's own files, which have nothing outside
  kInside,  // those that never leave the folder, not even on the way; none where the kernel cannot tell
  kNone,    // none, as where the kernel has no openat2 (before Linux 5.6, or in a sandbox that forbids it)
};

/// Somebody may replace folders by links while this looks them up. Each look-up is therefore one system call that
/// the kernel keeps inside the folder, and what it opened is what is used: no path is ever looked up twice.
class TRootedFolder {
 public:
  /// `path` itself may be a link: the user named it. The folder need not exist; then nothing is in it.
  explicit TRootedFolder(const std::filesystem::path& path, ELinks links = ELinks::kInside);

  bool IsOpen() const { return m_folder.IsOpen(); }

  /// Opens what lies at that path, absolute or not. Not open, with errno set, when there is nothing, or when the way
  /// there leaves the folder. Never waits for a FIFO. `flags`: those of open(), O_CLOEXEC is added.
  TDescriptor Open(const std::string& path, int flags) const;

  /// The folder at that path, under the same rules.
  TRootedFolder OpenFolder(const std::string& path) const;

  /// Whether the folder itself has anything of that name, even a link that leads nowhere.
  bool Has(const std::string& name) const;

 private:
  TRootedFolder(TDescriptor folder, ELinks links) : m_folder(std::move(folder)), m_links(links) {}

  TDescriptor m_folder;
  ELinks m_links;
};

/// Whether that is an open regular file.
bool IsRegularFile(const TDescriptor& file);

/// The rest of an open file; when it has more than `maxSize` bytes, more than that many of them. Nothing, with errno
/// set, when it cannot be read.
std::optional<std::string> ReadContent(const TDescriptor& file, std::size_t maxSize);
