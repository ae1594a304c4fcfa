#include <gmock/gmock.h>

#include <array>

#include "edid/layout.h"
#include "plugin/monitor/monitor_info.h"
#include "tests/support/edid_builder.h"
#include "tests/support/lrmi_double.h"
#include "tests/support/test_host.h"

using NQRXZELT20::ILogger;
using testing::Each;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

constexpr unsigned int kPreset = 2048;

class EdidReading : public testing::Test {
 protected:
  EdidReading() {
    monitor.GetCIMInstances("no such class");  // begins a request: real mode is not set up
    buffer.fill(0xAA);
  }

  /// Reads a unit into `buffer` and `length`.
  bool Read(int unit) {
    length = kPreset;
    return monitor.ReadEdid(unit, buffer.data(), &length);
  }

  /// Answers block k with 128 bytes of k + 1; the base block promises this many extensions.
  void PromiseExtensions(unsigned int count) {
    lrmi.interrupt = [count](LRMI_regs& registers, std::uint8_t* block) {
      std::fill_n(block, 128, static_cast<std::uint8_t>(registers.edx + 1));
      if (registers.edx == 0) block[126] = static_cast<std::uint8_t>(count);
      registers.eax = 0x004F;
      return 1;
    };
  }

  std::size_t CountInterrupts() const {
    return static_cast<std::size_t>(std::count_if(
        lrmi.calls.begin(), lrmi.calls.end(), [](const std::string& call) { return call.compare(0, 3, "int") == 0; }));
  }

  TTestHost host;
  TLrmiDouble lrmi;
  TMonitorInfo monitor{host.GetClass("QRXSG_DesktopMonitor"), TTestHost::Provider()};
  edid::TBuffer buffer;
  unsigned int length = 0;
};

}  // namespace

TEST_F(EdidReading, DoesNotTouchTheBiosUnlessTheSystemIsOfTypeTwo) {
  for (const int type : {0, 1, 3, -1}) {
    host.runningType = type;
    buffer.fill(0xAA);
    EXPECT_TRUE(Read(0));
    EXPECT_EQ(length, kPreset);
    EXPECT_EQ(buffer[0], 0);
    EXPECT_EQ(buffer[1], 0xAA);
  }
  EXPECT_THAT(lrmi.calls, IsEmpty());
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(EdidReading, ReturnsFalseWithTheLengthUntouchedWhenRealModeCannotBeSetUp) {
  lrmi.initWorks = false;
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(length, kPreset);
  EXPECT_EQ(buffer[0], 0);
  EXPECT_THAT(lrmi.calls, ElementsAre("init"));
  EXPECT_EQ(host.log.GetEntries(),
            (std::vector<TLogEntry>{{ILogger::kStatus, "Lib not initialized. Cannot get monitor info."}}));
}

TEST_F(EdidReading, ReturnsFalseWithTheLengthUntouchedWhenThereIsNoBuffer) {
  lrmi.allocationWorks = false;
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(length, kPreset);
  EXPECT_EQ(buffer[0], 0);
  EXPECT_EQ(host.log.GetEntries(), (std::vector<TLogEntry>{{ILogger::kError, "Could not allocate memory."}}));
}

TEST_F(EdidReading, SetsRealModeUpThenAsksForThePortsThenReadsAndReleases) {
  lrmi.edids[0] = TEdidBuilder().Build();
  EXPECT_FALSE(Read(0));
  EXPECT_THAT(lrmi.calls,
              ElementsAre("init", "ioperm 0 1024 1", "iopl 3", "alloc 128", "int 10 unit 0 block 0", "free"));
}

TEST_F(EdidReading, SetsRealModeUpOnceARequest) {
  Read(0);
  lrmi.calls.clear();
  Read(1);
  EXPECT_THAT(lrmi.calls, ElementsAre("alloc 128", "int 10 unit 1 block 0", "free", "free"));
}

TEST_F(EdidReading, GivesTheBiosTheRegistersOfTheService) {
  LRMI_regs seen = {};
  std::array<std::uint8_t, 128> preset = {};
  lrmi.interrupt = [&](LRMI_regs& registers, std::uint8_t* block) {
    seen = registers;
    std::copy_n(block, preset.size(), preset.begin());
    registers.eax = 0x004F;
    return 1;
  };
  Read(5);
  EXPECT_EQ(seen.eax, 0x4F15U);
  EXPECT_EQ(seen.ebx, 1U);
  EXPECT_EQ(seen.ecx, 5U);
  EXPECT_EQ(seen.edx, 0U);
  EXPECT_EQ(seen.edi, 0U);
  EXPECT_EQ(seen.es, static_cast<unsigned short>(reinterpret_cast<std::uintptr_t>(lrmi.buffer) / 16));
  EXPECT_EQ(seen.esi | seen.ebp | seen.flags | seen.ds, 0U);
  EXPECT_THAT(preset, Each(std::uint8_t{0xFF}));
}

TEST_F(EdidReading, KeepsTheOtherRegistersAndTheBufferFromOneBlockToTheNext) {
  unsigned int esi = 0;
  std::uint8_t left = 0;
  lrmi.interrupt = [&](LRMI_regs& registers, std::uint8_t* block) {
    esi = registers.esi;
    left = block[5];
    registers.esi = 0x1234;
    registers.ebx = 0x5678;
    block[5] = 0x77;
    block[126] = 1;
    registers.eax = 0x004F;
    return 1;
  };
  Read(0);
  EXPECT_EQ(esi, 0x1234U);
  EXPECT_EQ(left, 0x77);
}

TEST_F(EdidReading, ReadsOneBlockWhenThereAreNoExtensions) {
  PromiseExtensions(0);
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(length, 128U);
  EXPECT_EQ(CountInterrupts(), 1U);
}

TEST_F(EdidReading, TakesAnExtensionCountOfFFForNone) {
  PromiseExtensions(0xFF);
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(length, 128U);
  EXPECT_EQ(CountInterrupts(), 1U);
}

TEST_F(EdidReading, StoresEachBlockAtItsPlace) {
  PromiseExtensions(2);
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(length, 384U);
  EXPECT_EQ(buffer[0], 1);
  EXPECT_EQ(buffer[128], 2);
  EXPECT_EQ(buffer[256], 3);
  EXPECT_EQ(buffer[384], 0xAA);
}

TEST_F(EdidReading, ReadsFourteenExtensionsWhole) {
  PromiseExtensions(14);
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(length, 15U * 128U);
  EXPECT_EQ(buffer[14 * 128], 15);
  EXPECT_EQ(CountInterrupts(), 15U);
}

TEST_F(EdidReading, AsksForTheSixteenthBlockAndCountsItButStoresFifteen) {
  for (const unsigned int promised : {15U, 20U, 254U}) {
    lrmi.calls.clear();
    PromiseExtensions(promised);
    EXPECT_FALSE(Read(0));
    EXPECT_EQ(length, 2048U);
    EXPECT_EQ(CountInterrupts(), 16U);
    EXPECT_EQ(buffer[14 * 128], 15);
    EXPECT_EQ(buffer[15 * 128], 0xAA);
  }
}

TEST_F(EdidReading, LogsAFailedCallForTheFirstBlockOfUnitZero) {
  lrmi.interrupt = [](LRMI_regs&, std::uint8_t*) { return 0; };
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(length, 0U);
  EXPECT_EQ(host.log.GetEntries(),
            (std::vector<TLogEntry>{{ILogger::kStatus, "Lib call failed. Could not get Monitor info."}}));
}

TEST_F(EdidReading, LogsABiosErrorForTheFirstBlockOfUnitZero) {
  EXPECT_TRUE(Read(0));
  EXPECT_EQ(length, 0U);
  EXPECT_EQ(host.log.GetEntries(),
            (std::vector<TLogEntry>{{ILogger::kStatus, "Lib call returned an error. Could not get Monitor info."}}));
}

TEST_F(EdidReading, EndsSilentlyAtAUnitThatIsNotThere) {
  EXPECT_TRUE(Read(1));
  EXPECT_EQ(length, 0U);
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(EdidReading, KeepsTheBlocksReadBeforeAFailureSilently) {
  lrmi.edids[0] = TEdidBuilder().Extension({0x02}).Byte(126, 5).Build();
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(length, 256U);
  EXPECT_THAT(host.log.GetEntries(), IsEmpty());
}

TEST_F(EdidReading, ReleasesTheBufferTwiceOnTheFailurePaths) {
  for (const int result : {0, 1}) {
    lrmi.calls.clear();
    lrmi.interrupt = [result](LRMI_regs& registers, std::uint8_t*) {
      registers.eax = 0x014F;
      return result;
    };
    Read(0);
    EXPECT_EQ(std::count(lrmi.calls.begin(), lrmi.calls.end(), "free"), 2) << result;
  }
}

TEST_F(EdidReading, LooksOnlyAtTheHighByteOfAX) {
  lrmi.interrupt = [](LRMI_regs& registers, std::uint8_t* block) {
    block[126] = 0;
    registers.eax = 0xFFFF0000;  // neither AL nor the upper half says anything
    return 1;
  };
  EXPECT_FALSE(Read(0));
  EXPECT_EQ(length, 128U);
}
