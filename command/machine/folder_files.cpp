#include "command/machine/folder_files.h"

#include <fcntl.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <utility>

#include "host/exception.h"

using NQRXZELT20::TZELTException;

TFolderFiles::TFolderFiles(TRootedFolder root) : m_root(std::move(root)) {}

/// A file that may not be read exists, too.
bool TFolderFiles::Exists(const std::string& path) const { return IsRegularFile(m_root.Open(path, O_PATH)); }

std::string TFolderFiles::Read(const std::string& path) const {
  const TDescriptor file = m_root.Open(path, O_RDONLY);
  const int error = errno;
  if (!IsRegularFile(file) && (file.IsOpen() || !Exists(path))) throw TZELTException(path + ": no such file");
  if (!file.IsOpen()) throw TZELTException(path + ": cannot be read: " + std::strerror(error));
  std::optional<std::string> content = ReadContent(file, kMaxMachineFileSize);
  if (!content) throw TZELTException(path + ": cannot be read: " + std::strerror(errno));
  if (content->size() > kMaxMachineFileSize) {
    throw TZELTException(path + ": is larger than " + std::to_string(kMaxMachineFileSize) +
                         " bytes, which no such file needs");
  }
  return std::move(*content);
}
