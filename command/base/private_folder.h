// A folder that is nobody else's, and gone afterwards.
#pragma once

#include <csignal>
#include <filesystem>

/// While it lives, SIGHUP, SIGINT and SIGTERM wait: what ends the process leaves no folder behind.
class TPrivateFolder {
 public:
  /// Throws TUnusable when there is no room for it among the system's temporary files.
  TPrivateFolder();
  ~TPrivateFolder();
  TPrivateFolder(const TPrivateFolder&) = delete;
  TPrivateFolder& operator=(const TPrivateFolder&) = delete;

  const std::filesystem::path& GetPath() const { return m_path; }

 private:
  sigset_t m_signals;  // as they were
  std::filesystem::path m_path;
};
