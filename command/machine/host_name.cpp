#include "command/machine/host_name.h"

#include <limits.h>
#include <unistd.h>

std::string GetHostName() {
  char name[HOST_NAME_MAX + 1] = {};
  return gethostname(name, sizeof name - 1) == 0 ? name : "";
}
