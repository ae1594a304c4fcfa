#include "realmode/real_mode_memory.h"

#include <sys/mman.h>

#include <new>

namespace {

constexpr std::size_t kParagraph = 16;  // bytes: the unit of a segment

/// An anonymous mapping at that address, or wherever there is room.
void* Map(void* wanted, std::size_t size) {
  void* const mapped = mmap(wanted, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (mapped != MAP_FAILED) return mapped;
  // Calls the new-handler, as operator new does, for a program that relies on it.
  if (const std::new_handler handler = std::get_new_handler()) handler();
  throw std::bad_alloc();
}

/// A mapping of `size` bytes at a multiple of `size`, cut out of a larger one.
void* CutOutAligned(std::size_t size) {
  std::uint8_t* const begin = static_cast<std::uint8_t*>(Map(nullptr, 2 * size));
  const std::size_t before = (size - reinterpret_cast<std::uintptr_t>(begin) % size) % size;
  if (before != 0) munmap(begin, before);
  munmap(begin + before + size, size - before);
  return begin + before;
}

/// A mapping of `size` bytes at a multiple of `size`. It is mapped rather than allocated, so that only pages that a
/// session touches take memory.
void* MapAligned(std::size_t size) {
  // There is nearly always room where the last one was. Mapping there takes one system call instead of three.
  static void* last = nullptr;
  if (last != nullptr) {
    void* const mapped = Map(last, size);
    if (mapped == last) return mapped;
    munmap(mapped, size);
  }
  return last = CutOutAligned(size);
}

}  // namespace

void TRealModeMemory::TFree::operator()(std::uint8_t* image) const { munmap(image, kSize); }

TRealModeMemory::TRealModeMemory() : m_image(static_cast<std::uint8_t*>(MapAligned(kSize))) {}

void TRealModeMemory::GrantPool(std::uint32_t begin, std::uint32_t end) {
  m_poolBegin = begin;
  m_poolEnd = end;
}

void* TRealModeMemory::Allocate(std::size_t size) {
  if (size == 0 || size > m_poolEnd - m_poolBegin) return nullptr;
  const auto rounded = static_cast<std::uint32_t>((size + kParagraph - 1) / kParagraph * kParagraph);
  std::uint32_t begin = m_poolBegin;
  for (const auto& [takenBegin, takenEnd] : m_allocated) {
    if (takenBegin - begin >= rounded) break;
    begin = takenEnd;
  }
  if (m_poolEnd - begin < rounded) return nullptr;
  m_allocated[begin] = begin + rounded;
  return At(begin);
}

void TRealModeMemory::Release(void* buffer) {
  const auto address = reinterpret_cast<std::uintptr_t>(buffer) - reinterpret_cast<std::uintptr_t>(m_image.get());
  if (address < kSize) m_allocated.erase(static_cast<std::uint32_t>(address));
}
