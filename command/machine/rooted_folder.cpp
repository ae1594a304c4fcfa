#include "command/machine/rooted_folder.h"

#include <dirent.h>
#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "command/base/unusable.h"

namespace fs = std::filesystem;

namespace {

constexpr int kFolder = O_PATH | O_DIRECTORY | O_CLOEXEC;
// NOLINTNEXTLINE(misc-redundant-expression): O_LARGEFILE is nothing in a 64-bit build
constexpr int kReading = O_RDONLY | O_NONBLOCK | O_NOCTTY | O_LARGEFILE | O_CLOEXEC;

/// The path relative to the folder; "." for the folder itself.
std::string MakeRelative(const std::string& path) {
  const std::size_t begin = path.find_first_not_of('/');
  return begin == std::string::npos ? "." : path.substr(begin);
}

TDescriptor OpenInside(int folder, const std::string& path, int flags) {
  // EAGAIN: something was renamed while a ".." was looked up. If that happens again and again, the look-up fails.
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

/// Opens the path component by component, and follows no links.
TDescriptor OpenWithoutLinks(int folder, const std::string& path, int flags) {
  TDescriptor current;
  int from = folder;
  for (std::size_t begin = 0;;) {
    const std::size_t end = path.find('/', begin);
    const std::string name = path.substr(begin, end - begin);
    const bool isLast = path.find_first_not_of('/', end) == std::string::npos;
    if (name == "..") {
      errno = EXDEV;  // as openat2 does for a path that leaves the folder
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

TDescriptor LookUp(int folder, ELinks links, const std::string& path, int flags) {
  const std::string relative = MakeRelative(path);
  if (links == ELinks::kAll) return TDescriptor(openat(folder, relative.c_str(), flags));
  if (links == ELinks::kInside) {
    TDescriptor opened = OpenInside(folder, relative, flags);
    if (!LacksOpenat2(opened)) return opened;
  }
  return OpenWithoutLinks(folder, relative, flags);
}

/// Returns the descriptor. Throws if the system failed.
TDescriptor RequireKnown(TDescriptor opened, const std::string& path) {
  if (!opened.IsOpen() && !DescribesFile(errno)) FailToRead(path, errno);
  return opened;
}

struct stat GetStatus(const TDescriptor& file, const std::string& path) {
  struct stat status = {};
  if (fstat(file.Get(), &status) != 0) FailToRead(path, errno);
  return status;
}

/// Opens for reading what was found by O_PATH. `again` looks it up once more if no /proc is mounted.
TDescriptor OpenFound(const TDescriptor& found, const std::string& path, const std::function<TDescriptor()>& again) {
  const struct stat status = GetStatus(found, path);
  if (!S_ISREG(status.st_mode)) {
    errno = ENXIO;
    return TDescriptor();
  }
  TDescriptor file(open(("/proc/self/fd/" + std::to_string(found.Get())).c_str(), kReading));
  if (file.IsOpen() || errno != ENOENT) return RequireKnown(std::move(file), path);
  file = RequireKnown(again(), path);
  if (!file.IsOpen()) return file;
  const struct stat opened = GetStatus(file, path);
  if (opened.st_dev == status.st_dev && opened.st_ino == status.st_ino) return file;
  errno = ENOENT;  // something else has taken its place
  return TDescriptor();
}

}  // namespace

TRootedFolder::TRootedFolder(const fs::path& path, ELinks links)
    : m_folder(RequireKnown(TDescriptor(open(path.c_str(), kFolder)), path.string())),
      m_path(path.string()),
      m_links(links) {}

TDescriptor TRootedFolder::Find(const std::string& path) const {
  TDescriptor found = LookUp(m_folder.Get(), m_links, path, O_PATH | O_CLOEXEC);
  // Most files that are looked for do not exist, so the whole path is made only for a failure.
  const int error = errno;
  if (!found.IsOpen() && !DescribesFile(error)) FailToRead(At(path), error);
  return found;
}

TDescriptor TRootedFolder::OpenFile(const std::string& path) const {
  const TDescriptor found = Find(path);
  if (!found.IsOpen()) return TDescriptor();
  return OpenFound(found, At(path), [&] { return LookUp(m_folder.Get(), m_links, path, kReading); });
}

TRootedFolder TRootedFolder::OpenFolder(const std::string& path) const {
  return {RequireKnown(LookUp(m_folder.Get(), m_links, path, kFolder), At(path)), At(path), m_links};
}

bool TRootedFolder::Has(const std::string& name) const {
  struct stat status = {};
  if (fstatat(m_folder.Get(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0) return true;
  if (errno != ENOENT) FailToRead(m_path, errno);  // such as a folder that may not be searched
  return false;
}

void TRootedFolder::ForEachName(const std::function<void(const std::string& name)>& take) const {
  TDescriptor folder(openat(m_folder.Get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  const std::unique_ptr<DIR, int (*)(DIR*)> listing(folder.IsOpen() ? fdopendir(folder.Get()) : nullptr, closedir);
  if (!listing) FailToRead(m_path, errno);
  static_cast<void>(folder.Release());  // the listing closes it
  for (;;) {
    errno = 0;
    const dirent* const entry = readdir(listing.get());
    if (entry == nullptr) break;
    take(entry->d_name);
  }
  if (errno != 0) FailToRead(m_path, errno);
}

std::string TRootedFolder::At(const std::string& path) const {
  return (fs::path(m_path) / MakeRelative(path)).string();
}

TDescriptor FindPath(const fs::path& path) {
  return RequireKnown(TDescriptor(open(path.c_str(), O_PATH | O_CLOEXEC)), path.string());
}

bool IsRegularFile(const TDescriptor& found, const std::string& path) {
  return S_ISREG(GetStatus(found, path).st_mode);
}

bool IsFolder(const TDescriptor& found, const std::string& path) { return S_ISDIR(GetStatus(found, path).st_mode); }

TDescriptor OpenFound(const TDescriptor& found, const fs::path& path) {
  return OpenFound(found, path.string(), [&] { return TDescriptor(open(path.c_str(), kReading)); });
}

std::string ReadContent(const TDescriptor& file, std::size_t maxSize, const std::string& path) {
  std::string content;
  char piece[65536];
  while (content.size() <= maxSize) {
    const ssize_t count = read(file.Get(), piece, std::min(sizeof piece, maxSize + 1 - content.size()));
    if (count == 0) break;
    if (count < 0 && errno != EINTR) FailToRead(path, errno);
    if (count > 0) content.append(piece, static_cast<std::size_t>(count));
  }
  return content;
}
