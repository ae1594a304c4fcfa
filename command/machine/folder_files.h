// A machine's files as they lie below a folder.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "command/machine/rooted_folder.h"
#include "embedded_host/machine_files.h"

/// A file that may exist and could not be looked for, or exists and could not be read.
struct TFileFailure {
  std::string path;
  std::string reason;  // such as "cannot be read: Permission denied", or of a look-up "Permission denied"
  bool isLookUp;
  std::string cure = "make it readable, or run as a user who may read it";
};

/// A path that leads out of the folder, by ".." or through symbolic links, does not exist; neither does anything that
/// is not a regular file.
class TFolderFiles : public IMachineFiles {
 public:
  /// `root`: the folder that stands for "/". It need not be open; then no file exists.
  explicit TFolderFiles(TRootedFolder root);

  bool Exists(const std::string& path) const override;
  std::string Read(const std::string& path) const override;

  /// What went wrong so far, the last of each file.
  std::vector<TFileFailure> GetFailures() const;

 private:
  [[noreturn]] void FailToRead(TFileFailure failure) const;

  TRootedFolder m_root;
  mutable std::map<std::string, TFileFailure> m_failures;
};
