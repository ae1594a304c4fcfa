#include "embedded_host/machine_files.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

#include "host/exception.h"

namespace fs = std::filesystem;
using NQRXZELT20::TZELTException;

namespace {

bool IsBelow(const fs::path& path, const fs::path& root) {
  return std::mismatch(root.begin(), root.end(), path.begin(), path.end()).first == root.end();
}

/// Empty when the system does not tell.
fs::path MakeCanonical(const fs::path& path) {
  std::error_code error;
  return fs::weakly_canonical(path, error);
}

class TOpenFile {
 public:
  TOpenFile(const fs::path& path, int flags) : m_descriptor(open(path.c_str(), flags | O_CLOEXEC)) {}
  ~TOpenFile() {
    if (m_descriptor >= 0) close(m_descriptor);
  }
  TOpenFile(const TOpenFile&) = delete;
  TOpenFile& operator=(const TOpenFile&) = delete;

  /// Where the system has found it, free of links; empty when it was not opened.
  fs::path GetLocation() const {
    char location[PATH_MAX];
    const std::string link = "/proc/self/fd/" + std::to_string(m_descriptor);
    const ssize_t length = m_descriptor < 0 ? -1 : readlink(link.c_str(), location, sizeof location);
    return length < 0 ? fs::path() : fs::path(location, location + length);
  }

  /// Appends the content, as far as the byte behind `maxSize`; false, with errno set, when that fails.
  bool Read(std::string& content, std::size_t maxSize) const {
    if (m_descriptor < 0) return false;
    char piece[65536];
    while (content.size() <= maxSize) {
      const ssize_t count = read(m_descriptor, piece, std::min(sizeof piece, maxSize + 1 - content.size()));
      if (count == 0) return true;
      if (count < 0 && errno != EINTR) return false;
      if (count > 0) content.append(piece, static_cast<std::size_t>(count));
    }
    return true;
  }

 private:
  int m_descriptor;
};

}  // namespace

TMachineFiles::TMachineFiles(const fs::path& root) : m_root(MakeCanonical(root)) {}

bool TMachineFiles::Exists(const std::string& path) const {
  const fs::path location = Locate(path);
  std::error_code error;
  return !location.empty() && fs::is_regular_file(location, error);
}

bool TMachineFiles::HasFolder(const std::string& path) const {
  std::error_code error;
  return fs::is_directory(Locate(path), error);
}

std::string TMachineFiles::Read(const std::string& path, std::size_t maxSize) const {
  const fs::path location = Locate(path);
  std::error_code error;
  if (!fs::is_regular_file(location, error)) throw TZELTException(path + ": no such file");
  std::string content;
  // Without blocking: what was a file a moment ago may be a FIFO by now.
  if (!TOpenFile(location, O_RDONLY | O_NOFOLLOW | O_NONBLOCK).Read(content, maxSize)) {
    throw TZELTException(path + ": cannot be read: " + std::strerror(errno));
  }
  if (content.size() > maxSize) {
    throw TZELTException(path + ": is larger than " + std::to_string(maxSize) + " bytes, which no such file needs");
  }
  return content;
}

fs::path TMachineFiles::Locate(const std::string& path) const {
  const fs::path location = TOpenFile(m_root / fs::path(path).relative_path(), O_PATH).GetLocation();
  return m_root.empty() || !IsBelow(location, m_root) ? fs::path() : location;
}
