#include "command/base/standard_output.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "command/base/unusable.h"

bool WriteStandardOutput(const std::string& text) {
  std::size_t written = 0;
  while (written < text.size()) {
    const ssize_t count = write(STDOUT_FILENO, text.data() + written, text.size() - written);
    if (count >= 0) {
      written += static_cast<std::size_t>(count);
    } else if (errno == EPIPE) {
      return false;
    } else if (errno != EINTR) {
      throw TUnusable(std::string("standard output cannot be written: ") + std::strerror(errno));
    }
  }
  return true;
}
