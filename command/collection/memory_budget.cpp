#include "command/collection/memory_budget.h"

#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <new>

namespace {

constexpr rlim_t kBudget = rlim_t{2} * 1024 * 1024 * 1024;

volatile bool gHasRunOut = false;

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
  limit.rlim_cur = std::min(limit.rlim_cur, CountMapped() + kBudget);  // the user may have set a tighter one
  static_cast<void>(setrlimit(RLIMIT_AS, &limit));
}

bool HasMemoryRunOut() { return gHasRunOut; }
