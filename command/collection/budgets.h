// Limits the time and memory that collecting from one machine may take: a machine that strangers made can need any
// amount.
#pragma once

#include <chrono>
#include <exception>
#include <string>

#include "command/base/unusable.h"

/// "took longer than 60 s; --timeout SECONDS gives it longer".
std::string DescribeTimeout(std::chrono::seconds limit);

/// If the time is over while it lives, the process ends with `status` and `line` on standard error, since neither the
/// plug-in nor a file system that does not answer can be asked to stop. A process may have only one at a time.
class TTimeLimit {
 public:
  TTimeLimit(std::chrono::milliseconds limit, std::string line, int status = 1);
  ~TTimeLimit();
  TTimeLimit(const TTimeLimit&) = delete;
  TTimeLimit& operator=(const TTimeLimit&) = delete;
};

/// Lets this process map 2 GiB more than it has mapped now, and notes if it wants more. Further calls do nothing.
void LimitMemory();

/// True once memory has run out, even if the plug-in caught the std::bad_alloc and went on. Its answer is then
/// incomplete, and the remaining memory may be fragmented.
bool HasMemoryRunOut();

/// "needs more than 2 GiB of memory, the most that one machine may take", or the limit that the user has set.
std::string DescribeMemoryLimit();

/// Limits the memory and returns what `work` returns. Throws TUnusable if memory ran out, even if `work` went on.
template <typename TWork>
auto WithinMemory(const TWork& work) {
  LimitMemory();
  try {
    auto result = work();
    if (!HasMemoryRunOut()) return result;
  } catch (const std::exception&) {
    if (!HasMemoryRunOut()) throw;
  }
  throw TUnusable(DescribeMemoryLimit());
}
