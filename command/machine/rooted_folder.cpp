#include "command/machine/rooted_folder.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace fs = std::filesystem;

namespace {

constexpr int kFolder = O_PATH | O_DIRECTORY | O_CLOEXEC;

/// The path from the folder on, "." for the folder itself.
std::string MakeRelative(const std::string& path) {
  const std::size_t begin = path.find_first_not_of('/');
  return begin == std::string::npos ? "." : path.substr(begin);
}

TDescriptor OpenInside(int folder, const std::string& path, int flags) {
  // EAGAIN: something was renamed somewhere while a ".." was looked up. If that goes on all the time, the look-up
  // fails.
  constexpr int maxAttempts = 100;
  open_how how = {};
  how.flags = static_cast<unsigned int>(flags);
  how.resolve = RESOLVE_BENEATH | RESOLVE_NO_MAGICLINKS;
  long descriptor = -1;
  for (int attempt = 0; attempt < maxAttempts; ++attempt) {
    descriptor = syscall(SYS_openat2, folder, path.c_str(), &how, sizeof how);
    if (descriptor >= 0 || (errno != EAGAIN && errno != EINTR)) break;
  }
  return TDescriptor(static_cast<int>(descriptor));
}

/// Component by component, through folders only.
TDescriptor OpenWithoutLinks(int folder, const std::string& path, int flags) {
  TDescriptor current;
  int from = folder;
  for (std::size_t begin = 0;;) {
    const std::size_t end = path.find('/', begin);
    const std::string name = path.substr(begin, end - begin);
    const bool isLast = path.find_first_not_of('/', end) == std::string::npos;
    if (name == "..") {
      errno = EXDEV;  // what openat2 says of a path that leaves the folder
      return TDescriptor();
    }
    TDescriptor next(openat(from, name.c_str(), (isLast ? flags : kFolder) | O_NOFOLLOW));
    if (isLast || !next.IsOpen()) return next;
    current = std::move(next);
    from = current.Get();
    begin = path.find_first_not_of('/', end);
  }
}

bool LacksOpenat2(const TDescriptor& opened) { return !opened.IsOpen() && (errno == ENOSYS || errno == EPERM); }

}  // namespace

TRootedFolder::TRootedFolder(const fs::path& path, ELinks links)
    : m_folder(open(path.c_str(), kFolder)), m_links(links) {}

TDescriptor TRootedFolder::Open(const std::string& path, int flags) const {
  const std::string relative = MakeRelative(path);
  flags |= O_CLOEXEC;
  if ((flags & O_PATH) == 0) flags |= O_NONBLOCK | O_NOCTTY | O_LARGEFILE;
  if (m_links == ELinks::kAll) return TDescriptor(openat(m_folder.Get(), relative.c_str(), flags));
  if (m_links == ELinks::kInside) {
    TDescriptor opened = OpenInside(m_folder.Get(), relative, flags);
    if (!LacksOpenat2(opened)) return opened;
  }
  return OpenWithoutLinks(m_folder.Get(), relative, flags);
}

TRootedFolder TRootedFolder::OpenFolder(const std::string& path) const {
  return TRootedFolder(Open(path, O_PATH | O_DIRECTORY), m_links);
}

bool TRootedFolder::Has(const std::string& name) const {
  struct stat status = {};
  return fstatat(m_folder.Get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool IsRegularFile(const TDescriptor& file) {
  struct stat status = {};
  return file.IsOpen() && fstat(file.Get(), &status) == 0 && S_ISREG(status.st_mode);
}

std::optional<std::string> ReadContent(const TDescriptor& file, std::size_t maxSize) {
  std::string content;
  char piece[65536];
  while (content.size() <= maxSize) {
    const ssize_t count = read(file.Get(), piece, std::min(sizeof piece, maxSize + 1 - content.size()));
    if (count == 0) break;
    if (count < 0 && errno != EINTR) return std::nullopt;
    if (count > 0) content.append(piece, static_cast<std::size_t>(count));
  }
  return content;
}
