// Every allocation inside a request fails once, in the plug-in or in the host that it calls. The process goes on, no
// object is kept, and the next request is whole.
#include <gmock/gmock.h>

#include <cstdlib>
#include <new>

#include "tests/faults/faulty_session.h"

namespace {

/// Counts down to the allocation that fails; 0: none fails.
std::size_t g_untilFailure = 0;

void* Allocate(std::size_t size) {
  if (g_untilFailure > 0 && --g_untilFailure == 0) throw std::bad_alloc();
  void* const memory = std::malloc(size > 0 ? size : 1);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

}  // namespace

// These serve the whole process, the plug-in's library included.
void* operator new(std::size_t size) { return Allocate(size); }
void* operator new[](std::size_t size) { return Allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }

namespace {

/// True if the request made that many allocations.
bool FailAllocation(TFaultySession& session, std::size_t number) {
  g_untilFailure = number;
  try {
    session.Ask();
  } catch (const std::bad_alloc&) {
    // It was for the name of a class, or for a message of the log: these failures reach the host.
  }
  return std::exchange(g_untilFailure, 0) == 0;
}

}  // namespace

TEST(AllocationFaults, LeaveTheProcessAndTheNextRequestWhole) {
  const std::set<TDescribed> whole = TFaultySession().AskForAll();
  std::size_t failures = 0;
  for (bool hasStruck = true; hasStruck;) {
    TFaultySession session;
    hasStruck = FailAllocation(session, failures + 1);
    ASSERT_EQ(session.CountObjects(), 0) << "allocation " << failures + 1;
    session.TakeInstances();
    ASSERT_EQ(session.AskForAll(), whole) << "allocation " << failures + 1;
    if (hasStruck) ++failures;
  }
  EXPECT_GT(failures, 1000U);
}
