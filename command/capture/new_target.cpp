#include "command/capture/new_target.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "command/base/unusable.h"
#include "command/machine/rooted_folder.h"

namespace fs = std::filesystem;

namespace {

/// `kind`: what could not be made, "file" or "folder".
[[noreturn]] void FailToMake(const std::string& path, const std::string& kind) {
  if (errno == EEXIST) throw TUnusable(path + ": already exists; name a " + kind + " that does not");
  throw TUnusable(path + ": cannot be made: " + std::strerror(errno) + "; name a " + kind + " where you may make one");
}

/// The path without slashes at its end.
fs::path Trim(const fs::path& path) { return path.has_filename() ? path : path.parent_path(); }

/// Opens the folder in which the target will be made.
TDescriptor OpenParent(const fs::path& path, const char* kind) {
  const fs::path parent = path.parent_path();
  TDescriptor folder(open(parent.empty() ? "." : parent.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
  if (!folder.IsOpen()) FailToMake(path.string(), kind);
  return folder;
}

TDescriptor MakeFile(int folder, const std::string& name, const std::string& path) {
  TDescriptor file(openat(folder, name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
  if (!file.IsOpen()) FailToMake(path, "file");
  return file;
}

TDescriptor MakeFolder(int parent, const std::string& name, const std::string& path) {
  if (mkdirat(parent, name.c_str(), 0777) != 0) FailToMake(path, "folder");
  TDescriptor folder(openat(parent, name.c_str(), O_PATH | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
  if (!folder.IsOpen()) FailToMake(path, "folder");
  return folder;
}

void WriteWhole(const TDescriptor& file, const std::string& content, const std::string& path) {
  for (std::size_t written = 0; written < content.size();) {
    const ssize_t count = write(file.Get(), content.data() + written, content.size() - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno != EINTR) {
      throw TUnusable(path + ": cannot be written: " + std::strerror(errno) + "; capture to where there is room");
    }
  }
  if (lseek(file.Get(), 0, SEEK_SET) == 0 && ReadContent(file, content.size(), path) == content) return;
  throw TUnusable(path + ": is read back as something else than was written; capture to another disk");
}

}  // namespace

TNewFolder::TNewFolder(const fs::path& path) : m_path(Trim(path).string()), m_parent(OpenParent(m_path, "folder")) {
  const std::string name = fs::path(m_path).filename().string();
  m_folders[""] = MakeFolder(m_parent.Get(), name, m_path);
  m_made.push_back({m_parent.Get(), name, AT_REMOVEDIR});
}

TNewFolder::~TNewFolder() {
  for (auto made = m_made.rbegin(); made != m_made.rend(); ++made) {
    static_cast<void>(unlinkat(made->folder, made->name.c_str(), made->flags));
  }
}

void TNewFolder::Write(const std::string& name, const std::string& content) {
  const fs::path place(name);
  const std::string path = m_path + "/" + name;
  const int folder = GetFolder(place.parent_path().string());
  const TDescriptor file = MakeFile(folder, place.filename().string(), path);
  m_made.push_back({folder, place.filename().string(), 0});
  WriteWhole(file, content, path);
}

int TNewFolder::GetFolder(const std::string& name) {
  const auto known = m_folders.find(name);
  if (known != m_folders.end()) return known->second.Get();
  const fs::path place(name);
  const int parent = GetFolder(place.parent_path().string());
  TDescriptor folder = MakeFolder(parent, place.filename().string(), m_path + "/" + name);
  m_made.push_back({parent, place.filename().string(), AT_REMOVEDIR});
  return (m_folders[name] = std::move(folder)).Get();
}

TNewFile::TNewFile(const fs::path& path, const std::string& content)
    : m_parent(OpenParent(path, "file")), m_name(path.filename().string()) {
  const TDescriptor file = MakeFile(m_parent.Get(), m_name, path.string());
  try {
    WriteWhole(file, content, path.string());
  } catch (const TUnusable&) {
    unlinkat(m_parent.Get(), m_name.c_str(), 0);
    throw;
  }
}

TNewFile::~TNewFile() {
  if (!m_isKept) unlinkat(m_parent.Get(), m_name.c_str(), 0);
}
