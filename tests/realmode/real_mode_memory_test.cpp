#include "realmode/real_mode_memory.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <new>

#include "tests/support/sanitizers.h"

namespace {

class RealModeMemory : public testing::Test {
 protected:
  std::uint32_t AddressOf(const void* buffer) {
    return static_cast<std::uint32_t>(static_cast<const std::uint8_t*>(buffer) - memory.At(0));
  }

  TRealModeMemory memory;
};

}  // namespace

TEST_F(RealModeMemory, BeginsAtAMultipleOfItsSizeSoThatAPointerTellsItsSegment) {
  EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory.At(0)) % TRealModeMemory::kSize, 0U);
}

TEST_F(RealModeMemory, IsZeroAllOver) {
  EXPECT_TRUE(
      std::all_of(memory.At(0), memory.At(0) + TRealModeMemory::kSize, [](std::uint8_t byte) { return byte == 0; }));
}

TEST_F(RealModeMemory, HasNoRoomForBuffersUntilItIsGranted) { EXPECT_EQ(memory.Allocate(1), nullptr); }

TEST_F(RealModeMemory, AllocatesParagraphsInsideThePool) {
  memory.GrantPool(0x10000, 0x10040);
  EXPECT_EQ(AddressOf(memory.Allocate(1)), 0x10000U);
  EXPECT_EQ(AddressOf(memory.Allocate(17)), 0x10010U);
  EXPECT_EQ(AddressOf(memory.Allocate(16)), 0x10030U);
  EXPECT_EQ(memory.Allocate(1), nullptr);
}

TEST_F(RealModeMemory, AllocatesNothingOfNoSizeOrOfMoreThanThePool) {
  memory.GrantPool(0x10000, 0x10040);
  EXPECT_EQ(memory.Allocate(0), nullptr);
  EXPECT_EQ(memory.Allocate(0x41), nullptr);
  EXPECT_EQ(memory.Allocate(SIZE_MAX), nullptr);
  EXPECT_NE(memory.Allocate(0x40), nullptr);
}

TEST_F(RealModeMemory, UsesReleasedRoomAgain) {
  memory.GrantPool(0x10000, 0x10030);
  memory.Allocate(16);
  void* const middle = memory.Allocate(16);
  memory.Allocate(16);
  memory.Release(middle);
  EXPECT_EQ(memory.Allocate(17), nullptr);
  EXPECT_EQ(memory.Allocate(16), middle);
}

TEST_F(RealModeMemory, LeavesASecondReleaseWithoutEffect) {
  memory.GrantPool(0x10000, 0x10020);
  void* const first = memory.Allocate(16);
  memory.Allocate(16);
  memory.Release(first);
  memory.Release(first);
  EXPECT_EQ(memory.Allocate(16), first);
  EXPECT_EQ(memory.Allocate(16), nullptr);
}

TEST_F(RealModeMemory, IgnoresWhatIsNotItsBuffer) {
  memory.GrantPool(0x10000, 0x10010);
  void* const buffer = memory.Allocate(16);
  int elsewhere = 0;
  memory.Release(nullptr);
  memory.Release(&elsewhere);
  memory.Release(static_cast<std::uint8_t*>(buffer) + 1);
  EXPECT_EQ(memory.Allocate(16), nullptr);
}

TEST(RealModeMemoryAfterAnother, IsZeroAndAlignedInThePlaceOfTheOther) {
  std::uint8_t* place = nullptr;
  {
    TRealModeMemory first;
    place = first.At(0);
    std::fill_n(place, TRealModeMemory::kSize, std::uint8_t{1});
  }
  TRealModeMemory second;
  EXPECT_EQ(second.At(0), place);
  EXPECT_TRUE(std::all_of(place, place + TRealModeMemory::kSize, [](std::uint8_t byte) { return byte == 0; }));
}

TEST(RealModeMemoryBesideAnother, IsAlignedAndApart) {
  TRealModeMemory first;
  // A page before it, so that the system's next place is not at a multiple of 1 MiB by chance.
  const auto pageSize = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  void* const page =
      mmap(first.At(0) - pageSize, pageSize, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED_NOREPLACE, -1, 0);
  TRealModeMemory second;
  TRealModeMemory third;
  for (TRealModeMemory* const memory : {&first, &second, &third}) {
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory->At(0)) % TRealModeMemory::kSize, 0U);
    ++*memory->At(0);
  }
  EXPECT_EQ(*first.At(0) + *second.At(0) + *third.At(0), 3);
  if (page != MAP_FAILED) munmap(page, pageSize);
}

TEST(RealModeMemoryBesideAnother, TakesItsOwnSizeOfTheAddressSpace) {
  const auto countPages = [] {
    char text[32] = {};
    const int file = open("/proc/self/statm", O_RDONLY | O_CLOEXEC);
    EXPECT_GT(read(file, text, sizeof text - 1), 0);
    close(file);
    return std::strtoul(text, nullptr, 10);
  };
  TRealModeMemory first;
  const unsigned long before = countPages();
  TRealModeMemory second;
  EXPECT_EQ((countPages() - before) * static_cast<unsigned long>(sysconf(_SC_PAGESIZE)), TRealModeMemory::kSize);
}

// Code that watches the memory of a process does so by the new-handler.
TEST(RealModeMemoryWithoutRoom, IsHeardOfByTheNewHandler) {
  if (kHasAddressSanitizer) GTEST_SKIP() << "the sanitizer needs memory itself";
  static bool isHeard;
  isHeard = false;
  std::set_new_handler([] { isHeard = true; });
  rlim_t pages = 0;
  std::ifstream("/proc/self/statm") >> pages;
  rlimit before = {};
  getrlimit(RLIMIT_AS, &before);
  const rlimit none = {pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)), before.rlim_max};
  setrlimit(RLIMIT_AS, &none);
  EXPECT_THROW(TRealModeMemory(), std::bad_alloc);
  setrlimit(RLIMIT_AS, &before);
  std::set_new_handler(nullptr);
  EXPECT_TRUE(isHeard);
}
