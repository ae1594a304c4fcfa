// Copies the command to a place that every user can reach, for tests that root runs as another user: the build may be
// in a folder of mode 0700, such as /root.
#pragma once

#include <filesystem>
#include <string>

#include "tests/support/temporary_folder.h"

/// A copy of the command, its libraries and the plug-in.
class TReachableBuild {
 public:
  TReachableBuild() {
    Permit(m_folder.GetPath());
    for (const auto& entry : std::filesystem::directory_iterator(kBuild)) {
      const std::string name = entry.path().filename().string();
      if (name != kCommand && name.compare(0, 3, "lib") != 0) continue;
      std::filesystem::copy_file(entry.path(), GetPath(name));
      Permit(GetPath(name));
    }
  }

  std::string GetCommand() const { return GetPath(kCommand); }
  std::string GetPlugin() const { return GetPath(std::filesystem::path(PLUGIN_FILE).filename()); }

 private:
  static void Permit(const std::filesystem::path& path) {
    using std::filesystem::perms;
    std::filesystem::permissions(
        path, perms::owner_all | perms::group_read | perms::group_exec | perms::others_read | perms::others_exec);
  }

  std::string GetPath(const std::filesystem::path& name) const { return m_folder.GetPath() / name; }

  static inline const std::filesystem::path kBuild = std::filesystem::path(COMMAND_FILE).parent_path();
  static inline const std::filesystem::path kCommand = std::filesystem::path(COMMAND_FILE).filename();
  TTemporaryFolder m_folder;
};
