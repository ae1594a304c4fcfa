#include "command/collection/memory_budget.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <new>
#include <string>

namespace {

constexpr rlim_t kBudget = rlim_t{2} * 1024 * 1024 * 1024;

volatile bool gHasRunOut = false;
rlim_t gUsersLimit = RLIM_INFINITY;  // where it leaves a machine less than the budget

[[noreturn]] void NoteThatItRanOut() {
  gHasRunOut = true;
  throw std::bad_alloc();
}

/// Bytes of address space that are mapped. There may be many: a sanitizer maps terabytes before main begins.
rlim_t CountMapped() {
  rlim_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  return pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
}

}  // namespace

void LimitMemory() {
  if (std::get_new_handler() == NoteThatItRanOut) return;
  std::set_new_handler(NoteThatItRanOut);
  rlimit limit = {};
  if (getrlimit(RLIMIT_AS, &limit) != 0) return;
  const rlim_t own = CountMapped() + kBudget;
  if (limit.rlim_cur < own) {
    gUsersLimit = limit.rlim_cur;
    return;
  }
  limit.rlim_cur = own;
  static_cast<void>(setrlimit(RLIMIT_AS, &limit));
}

bool HasMemoryRunOut() { return gHasRunOut; }

std::string DescribeMemoryLimit() {
  if (gUsersLimit == RLIM_INFINITY) return "needs more than 2 GiB of memory, the most that one machine may take";
  return "needs more memory than the limit set for this process, " + std::to_string(gUsersLimit / 1024) +
         " KiB; raise it (ulimit -v)";
}
