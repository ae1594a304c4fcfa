// This machine's memory and I/O privilege, over a regular file and a privilege that the test grants or refuses.
#include "realmode/physical_machine.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/temporary_folder.h"

namespace {

class PhysicalMachine : public testing::Test {
 protected:
  PhysicalMachine() { folder.Write("mem", "0123456789"); }

  std::string GetPath(const char* name) const { return (folder.GetPath() / name).string(); }

  static std::ptrdiff_t CountDescriptors() {
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
  }

  static int Grant(int) { return 0; }
  static int Refuse(int) {
    errno = EPERM;
    return -1;
  }

  TTemporaryFolder folder;
};

}  // namespace

TEST_F(PhysicalMachine, ReadsTheMemoryAtAnAddress) {
  TThisPhysicalMachine machine(GetPath("mem"), Grant);
  ASSERT_EQ(machine.Open(), "");
  std::vector<std::uint8_t> bytes(3);
  EXPECT_TRUE(machine.Read(4, bytes.data(), bytes.size()));
  EXPECT_EQ(bytes, (std::vector<std::uint8_t>{'4', '5', '6'}));
}

TEST_F(PhysicalMachine, CannotReadBeyondTheEndOfTheMemory) {
  TThisPhysicalMachine machine(GetPath("mem"), Grant);
  ASSERT_EQ(machine.Open(), "");
  std::vector<std::uint8_t> bytes(3);
  EXPECT_FALSE(machine.Read(8, bytes.data(), bytes.size()));
}

TEST_F(PhysicalMachine, CannotReadWhileItIsNotOpen) {
  TThisPhysicalMachine machine(GetPath("mem"), Grant);
  std::uint8_t byte = 0;
  EXPECT_FALSE(machine.Read(0, &byte, 1));
  ASSERT_EQ(machine.Open(), "");
  machine.Close();
  EXPECT_FALSE(machine.Read(0, &byte, 1));
}

TEST_F(PhysicalMachine, AsksForTheFullPrivilege) {
  int asked = -1;
  TThisPhysicalMachine machine(GetPath("mem"), [&](int level) {
    asked = level;
    return 0;
  });
  ASSERT_EQ(machine.Open(), "");
  EXPECT_EQ(asked, 3);
}

TEST_F(PhysicalMachine, TellsWhyTheMemoryCannotBeOpened) {
  TThisPhysicalMachine machine(GetPath("none"), Grant);
  EXPECT_EQ(machine.Open(), "the video BIOS cannot be read from " + GetPath("none") +
                                ": No such file or directory; run as root (CAP_SYS_RAWIO), on a kernel that is not "
                                "locked down");
}

TEST_F(PhysicalMachine, TellsWhyThePortsCannotBeUsed) {
  TThisPhysicalMachine machine(GetPath("mem"), Refuse);
  EXPECT_EQ(machine.Open(),
            "the video BIOS cannot use the I/O ports: Operation not permitted; run as root (CAP_SYS_RAWIO), on a "
            "kernel that is not locked down");
}

TEST_F(PhysicalMachine, LeavesNoDescriptorOpen) {
  const std::ptrdiff_t before = CountDescriptors();
  TThisPhysicalMachine refused(GetPath("mem"), Refuse);
  refused.Open();
  EXPECT_EQ(CountDescriptors(), before);
  {
    TThisPhysicalMachine machine(GetPath("mem"), Grant);
    machine.Open();
    machine.Open();
    EXPECT_EQ(CountDescriptors(), before + 1);
  }
  EXPECT_EQ(CountDescriptors(), before);
}
