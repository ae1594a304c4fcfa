// Serves a machine's files from a folder.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "command/machine/failures.h"
#include "command/machine/rooted_folder.h"
#include "embedded_host/machine_files.h"

/// A path that leads out of the folder, by ".." or through symbolic links, does not exist; neither does anything that
/// is not a regular file.
class TFolderFiles : public IMachineFiles {
 public:
  /// `root`: the folder that stands for "/". If it is not open, no file exists.
  explicit TFolderFiles(TRootedFolder root);

  bool Exists(const std::string& path) const override;
  std::string Read(const std::string& path) const override;

  /// The failures so far; for each file only the last.
  std::vector<TFileFailure> GetFailures() const;

 private:
  [[noreturn]] void FailToRead(TFileFailure failure) const;

  TRootedFolder m_root;
  mutable std::map<std::string, TFileFailure> m_failures;
};
