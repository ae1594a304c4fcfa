// How much time and memory the collection from one machine may take. A machine that strangers made can ask for any
// amount.
#pragma once

#include <chrono>
#include <exception>
#include <string>

#include "command/base/unusable.h"

/// "took longer than 60 s; --timeout SECONDS gives it longer".
std::string DescribeTimeout(std::chrono::seconds limit);

/// While it lives, the process ends with that status and `line` on standard error when the time is over: the plug-in,
/// or a file system that does not answer, cannot be asked to stop. One at a time in a process.
class TTimeLimit {
 public:
  TTimeLimit(std::chrono::milliseconds limit, std::string line, int status = 1);
  ~TTimeLimit();
  TTimeLimit(const TTimeLimit&) = delete;
  TTimeLimit& operator=(const TTimeLimit&) = delete;
};

/// Lets this process map 2 GiB more than it has mapped now, and notes when it has wanted more. Further calls do
/// nothing.
void LimitMemory();

/// True once memory has run out, even where the plug-in caught the std::bad_alloc and went on: its answer then lacks
/// something, and what is left of the memory may be in pieces.
bool HasMemoryRunOut();

/// "needs more than 2 GiB of memory, the most that one machine may take", or the limit that the user has set.
std::string DescribeMemoryLimit();

/// What `work` returns, with the memory limited. Throws TUnusable when it ran out, whatever `work` made of that.
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
