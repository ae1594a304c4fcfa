#include "command/machine/folder_files.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include "host/exception.h"

using NQRXZELT20::TZELTException;

namespace {

/// True for the errno of a look-up that found nothing, also behind a dangling link.
bool MeansNothing(int error) { return error == ENOENT || error == ENOTDIR; }

TFileFailure DescribeLookUp(const std::string& path, int error) {
  if (error != EXDEV && error != ELOOP) return {path, std::strerror(error), true};
  const std::string link = "a link on the way to " + path;
  return {path, link + (error == EXDEV ? " leads out of the folder" : " cannot be followed"), true,
          "put what it stands for in its place"};
}

TFileFailure DescribeRead(const std::string& path, int error) {
  return {path, std::string("cannot be read: ") + std::strerror(error), false};
}

}  // namespace

TFolderFiles::TFolderFiles(TRootedFolder root) : m_root(std::move(root)) {}

/// Also true for a file that may not be read.
bool TFolderFiles::Exists(const std::string& path) const {
  if (!m_root.IsOpen()) return false;
  const TDescriptor found = m_root.Find(path);
  if (found.IsOpen()) return IsRegularFile(found, path);
  if (!MeansNothing(errno)) m_failures[path] = DescribeLookUp(path, errno);
  return false;
}

std::string TFolderFiles::Read(const std::string& path) const {
  const TDescriptor file = m_root.OpenFile(path);
  const int error = errno;
  if (!file.IsOpen() && !Exists(path)) throw TZELTException(path + ": no such file");
  if (!file.IsOpen()) FailToRead(DescribeRead(path, error));
  std::string content = ReadContent(file, kMaxMachineFileSize, path);
  if (content.size() > kMaxMachineFileSize) {
    FailToRead({path, "is larger than " + std::to_string(kMaxMachineFileSize) + " bytes, which no such file needs",
                false, "put the right file in its place"});
  }
  return content;
}

std::vector<TFileFailure> TFolderFiles::GetFailures() const {
  std::vector<TFileFailure> failures;
  failures.reserve(m_failures.size());
  for (const auto& [path, failure] : m_failures) failures.push_back(failure);
  return failures;
}

void TFolderFiles::FailToRead(TFileFailure failure) const {
  const std::string message = failure.path + ": " + failure.reason;
  m_failures[failure.path] = std::move(failure);
  throw TZELTException(message);
}
