#include "command/base/unusable.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>

namespace {

constexpr int kOfTheFile[] = {ENOENT, ENOTDIR, EACCES, EPERM, ELOOP, EXDEV, ENAMETOOLONG, EISDIR, ENXIO, ENODEV};

const char* GetCure(int error) {
  switch (error) {
    case EMFILE:
      return "let the command open more files (ulimit -n)";
    case ENFILE:
    case ENOMEM:
      return "the system has no room left; try again when it has";
    case EIO:
      return "see what the kernel says of it (dmesg)";
    default:
      return DescribesFile(error) ? "check its permissions" : "try again";
  }
}

}  // namespace

bool DescribesFile(int error) {
  return std::find(std::begin(kOfTheFile), std::end(kOfTheFile), error) != std::end(kOfTheFile);
}

void FailToRead(const std::string& place, int error) {
  throw TUnusable(place + ": cannot be read: " + std::strerror(error) + "; " + GetCure(error));
}

void RequireLoaded(const std::string& failure) {
  if (failure.empty()) return;
  throw TUnusable(failure + "; let the command have more files and memory (ulimit), or install the library again");
}
