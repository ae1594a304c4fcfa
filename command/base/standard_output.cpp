#include "command/base/standard_output.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "command/base/unusable.h"

namespace {

/// The program that started the command may have set standard output not to wait for its reader.
void WaitForReader() {
  pollfd output = {STDOUT_FILENO, POLLOUT, 0};
  poll(&output, 1, -1);
}

[[noreturn]] void Fail(int reason) {
  if (reason == EBADF) throw TUnusable("standard output is closed; send it to a file or to a program");
  throw TUnusable(std::string("standard output cannot be written: ") + std::strerror(reason));
}

}  // namespace

void KeepStandardDescriptors() {
  for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    if (fcntl(descriptor, F_GETFD) >= 0 || errno != EBADF) continue;
    // open() takes the lowest free number, which in this order is this one. It is opened for the wrong direction, so
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
      Fail(errno);
    }
  }
  return true;
}
