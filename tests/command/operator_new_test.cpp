// The operators of command/operator_new.cpp, which is part of this program.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <new>
#include <thread>
#include <vector>

namespace {

// It wraps around when it is rounded up. Volatile, since the compiler knows that no program can have so much.
const volatile std::size_t kTooMuch = std::numeric_limits<std::size_t>::max() - 8;

/// A block that is filled with one number.
class TFilled {
 public:
  TFilled(std::size_t size, unsigned char number)
      : m_size(size), m_number(number), m_bytes(static_cast<unsigned char*>(::operator new(size))) {
    std::fill_n(m_bytes, size, number);
  }

  bool IsAligned() const { return reinterpret_cast<std::uintptr_t>(m_bytes) % alignof(std::max_align_t) == 0; }
  bool IsIntact() const {
    return std::all_of(m_bytes, m_bytes + m_size, [this](unsigned char byte) { return byte == m_number; });
  }
  void Delete() const { ::operator delete(m_bytes); }

 private:
  std::size_t m_size;
  unsigned char m_number;
  unsigned char* m_bytes;
};

/// While it lives, memory that is missing is counted and then refused.
class TCountingHandler {
 public:
  TCountingHandler() : m_before(std::set_new_handler(Count)) { s_calls = 0; }
  ~TCountingHandler() { std::set_new_handler(m_before); }
  TCountingHandler(const TCountingHandler&) = delete;
  TCountingHandler& operator=(const TCountingHandler&) = delete;

  static int GetCalls() { return s_calls; }

 private:
  static void Count() {
    constexpr int enough = 3;
    if (++s_calls == enough) throw std::bad_alloc();
  }

  static int s_calls;
  std::new_handler m_before;
};
int TCountingHandler::s_calls = 0;

}  // namespace

TEST(OperatorNew, GivesTheLastDeletedBlockOfTheSizeAgain) {
  void* const block = ::operator new(100);
  ::operator delete(block);
  void* const again = ::operator new(100);
  EXPECT_EQ(again, block);
  ::operator delete(again, 100);
}

TEST(OperatorNew, KeepsAllBlocksApart) {
  std::vector<TFilled> blocks;
  for (int round = 0; round < 4; ++round) {
    for (std::size_t size = 0; size < 1200; ++size) {
      blocks.emplace_back(size, static_cast<unsigned char>(size + static_cast<std::size_t>(round)));
      EXPECT_TRUE(blocks.back().IsAligned()) << size;
    }
    for (const TFilled& block : blocks) EXPECT_TRUE(block.IsIntact());
    // Every other block goes, so that the next round is made of old blocks and new ones.
    std::vector<TFilled> kept;
    for (std::size_t index = 0; index < blocks.size(); ++index) {
      if (index % 2 == 0) kept.push_back(blocks[index]);
      if (index % 2 != 0) blocks[index].Delete();
    }
    blocks = kept;
  }
  for (const TFilled& block : blocks) block.Delete();
}

TEST(OperatorNew, AsksTheNewHandlerUntilItThrows) {
  const TCountingHandler handler;
  EXPECT_THROW(static_cast<void>(::operator new(kTooMuch)), std::bad_alloc);
  EXPECT_EQ(TCountingHandler::GetCalls(), 3);
}

TEST(OperatorNew, ThrowsWithoutANewHandler) {
  EXPECT_THROW(static_cast<void>(::operator new(kTooMuch)), std::bad_alloc);
  EXPECT_EQ(::operator new(kTooMuch, std::nothrow), nullptr);
}

TEST(OperatorNew, TakesABlockOfAnotherThread) {
  void* block = nullptr;
  std::thread([&] { block = ::operator new(48); }).join();
  ::operator delete(block);
  void* const again = ::operator new(48);
  EXPECT_EQ(again, block);
  ::operator delete(again);
}
