#include "command/base/standard_output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string_view>

#include "command/base/unusable.h"

namespace {

/// Needed where the program that started the command has made standard output non-blocking.
void WaitForReader() {
  pollfd output = {STDOUT_FILENO, POLLOUT, 0};
  poll(&output, 1, -1);
}

/// If standard output is a file, removes the incomplete line at its end, whose rest could not be written.
void CutHalfLine(std::string_view written) {
  struct stat status = {};
  const off_t half = static_cast<off_t>(written.size() - (written.rfind('\n') + 1));
  if (fstat(STDOUT_FILENO, &status) != 0 || !S_ISREG(status.st_mode)) return;
  const off_t end = lseek(STDOUT_FILENO, 0, SEEK_CUR);
  if (end == status.st_size) static_cast<void>(!ftruncate(STDOUT_FILENO, end - half));
}

[[noreturn]] void Fail(int reason) {
  if (reason == EBADF) throw TUnusable("standard output is closed; send it to a file or to a program");
  throw TUnusable(std::string("standard output cannot be written: ") + std::strerror(reason));
}

}  // namespace

void KeepStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) >= 0 || errno != EBADF) continue;
    // open() takes the lowest free number, which in this order is `descriptor`. It is opened in the wrong direction, so
    // that using it fails.
    static_cast<void>(open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
  }
}

std::optional<std::size_t> GetTerminalWidth() {
  winsize size = {};
  if (ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) return std::nullopt;
  return size.ws_col;
}

bool WriteStandardOutput(const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = write(STDOUT_FILENO, text.data() + written, text.size() - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno == EPIPE) {
      return false;
    } else if (errno == EAGAIN) {
      WaitForReader();
    } else if (errno != EINTR) {
      const int reason = errno;
      CutHalfLine(std::string_view(text).substr(0, written));
      Fail(reason);
    }
  }
  return true;
}
