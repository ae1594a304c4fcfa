// operator new and delete of the command: a small block that is deleted waits in a list for the next one of its size. A
// collection makes and deletes thousands of them, and the C library keeps only seven of each size at hand; all others
// it joins and parts again, which was a quarter of a worker's instructions.
//
// A block of a list is never given back to the C library, so the lists are as long as the largest collection needed.
#include <malloc.h>

#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kStep = 16;  // bytes by which the C library's blocks differ in size
constexpr std::size_t kLists = 32;
constexpr std::size_t kOverhead = sizeof(std::size_t);              // bytes that the C library needs of a block
constexpr std::size_t kLongest = (kLists - 1) * kStep - kOverhead;  // bytes that a block of the last list has room for

struct TUnused {
  TUnused* next;
};

// List N has blocks with room for at least N * kStep - kOverhead bytes.
thread_local TUnused* t_unused[kLists];

/// As the standard has it: the new-handler may make room, or throw.
void* Allocate(std::size_t size) {
  while (true) {
    if (void* const block = std::malloc(size)) return block;
    const std::new_handler handler = std::get_new_handler();
    if (handler == nullptr) throw std::bad_alloc();
    handler();
  }
}

}  // namespace

void* operator new(std::size_t size) {
  if (size > kLongest) return Allocate(size);
  TUnused*& first = t_unused[(size + kOverhead + kStep - 1) / kStep];
  if (first == nullptr) return Allocate(size);
  TUnused* const block = first;
  first = block->next;
  return block;
}

void operator delete(void* block) noexcept {
  if (block == nullptr) return;
  const std::size_t list = (malloc_usable_size(block) + kOverhead) / kStep;
  if (list >= kLists) return std::free(block);
  t_unused[list] = new (block) TUnused{t_unused[list]};
}

void operator delete(void* block, std::size_t) noexcept { operator delete(block); }
