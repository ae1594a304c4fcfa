#include "command/machine/host_name.h"

#include <limits.h>
#include <unistd.h>

#include <cerrno>

#include "command/base/unusable.h"

std::string GetHostName() {
  char name[HOST_NAME_MAX + 1] = {};
  if (gethostname(name, sizeof name - 1) != 0) FailToRead("the system's name", errno);
  return name;
}
