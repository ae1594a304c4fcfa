// What the collection from one machine may take of the memory. A machine that strangers made can ask for any amount.
#pragma once

#include <exception>
#include <string>

#include "command/base/unusable.h"

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
