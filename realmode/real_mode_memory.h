// The first megabyte as a real-mode session sees it: a private image, with a pool of buffers in it.
//
// The image begins at an address that is a multiple of 1 MiB. So the low 20 bits of a pointer into it are its real-mode
// address, and the low 16 bits of that pointer divided by 16 are the segment for a BIOS. Nothing must be mapped at a
// low address of the process.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>

#include "realmode/api.h"

class REALMODE_API TRealModeMemory {
 public:
  static constexpr std::size_t kSize = 0x100000;  // bytes: the range of 20 address lines

  // The pool for a BIOS lies in conventional memory, away from the interrupt vectors and the BIOS.
  static constexpr std::uint32_t kPoolBegin = 0x10000;
  static constexpr std::uint32_t kPoolEnd = 0x20000;

  /// Makes an image of zeros without room for buffers. Throws std::bad_alloc.
  TRealModeMemory();

  /// Sets the pool of buffers to [begin, end), real-mode addresses that are multiples of 16.
  void GrantPool(std::uint32_t begin, std::uint32_t end);

  /// A buffer of `size` bytes, aligned to 16, which the pool owns; null if there is no room or `size` is 0.
  void* Allocate(std::size_t size);

  /// Releases a buffer. Ignores null and everything else that is no allocated buffer of this pool.
  void Release(void* buffer);

  /// The byte at that real-mode address, which must be below kSize.
  std::uint8_t* At(std::uint32_t address) { return m_image.get() + address; }

 private:
  struct TFree {
    void operator()(std::uint8_t* image) const;
  };

  std::unique_ptr<std::uint8_t[], TFree> m_image;
  std::uint32_t m_poolBegin = 0;
  std::uint32_t m_poolEnd = 0;
  std::map<std::uint32_t, std::uint32_t> m_allocated;  // begin and end of each buffer
};
