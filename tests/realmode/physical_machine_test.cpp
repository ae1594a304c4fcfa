// Tests access to this machine's memory and I/O ports, with a regular file and a privilege that the test grants or
// refuses.
#include "realmode/physical_machine.h"

#include <gtest/gtest.h>
#include <sys/ucontext.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/support/descriptor_limit.h"
#include "tests/support/temporary_folder.h"

namespace {

#ifdef __x86_64__
constexpr int kInstruction = REG_RIP, kAx = REG_RAX, kDx = REG_RDX;
#else
constexpr int kInstruction = REG_EIP, kAx = REG_EAX, kDx = REG_EDX;
#endif

/// While it lives, notes when the processor refuses IN and OUT, for which this process has no privilege, and skips the
/// instruction; IN reads all bits as 1.
class TRefusedPorts {
 public:
  TRefusedPorts() {
    s_accesses.clear();
    struct sigaction action = {};
    action.sa_sigaction = Note;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGSEGV, &action, &m_before);
  }
  ~TRefusedPorts() { sigaction(SIGSEGV, &m_before, nullptr); }
  TRefusedPorts(const TRefusedPorts&) = delete;
  TRefusedPorts& operator=(const TRefusedPorts&) = delete;

  /// "in 1024 2": direction, port, bytes.
  const std::vector<std::string>& GetAccesses() const { return s_accesses; }

 private:
  static void Note(int, siginfo_t*, void* context) {
    greg_t* const registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    const std::uint8_t* code = reinterpret_cast<const std::uint8_t*>(registers[kInstruction]);
    const bool isShort = *code == 0x66;
    if (isShort) ++code;
    const bool isIn = *code == 0xEC || *code == 0xED;
    const bool isOut = *code == 0xEE || *code == 0xEF;
    if (!isIn && !isOut) std::abort();
    const int bytes = (*code & 1) == 0 ? 1 : isShort ? 2 : 4;
    s_accesses.push_back((isIn ? "in " : "out ") + std::to_string(registers[kDx] & 0xFFFF) + " " +
                         std::to_string(bytes));
    if (isIn) registers[kAx] |= static_cast<greg_t>(bytes == 4 ? 0xFFFFFFFFU : (1U << (8 * bytes)) - 1);
    registers[kInstruction] = reinterpret_cast<greg_t>(code + 1);
  }

  static inline std::vector<std::string> s_accesses;
  struct sigaction m_before;
};

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
                                ": No such file or directory; this system has no such device, as in a container; run "
                                "outside of it");
}

TEST_F(PhysicalMachine, FailsWhenTheSystemDoes) {
  TThisPhysicalMachine machine(GetPath("mem"), Grant);
  const TDescriptorLimit none(0);
  EXPECT_THROW(machine.Open(), std::runtime_error);
}

TEST_F(PhysicalMachine, TellsNobodyToBecomeRootWhoIsRoot) {
  TThisPhysicalMachine machine(GetPath("mem"), Refuse);
  const std::string asItIs = machine.Open();
  EXPECT_NE(asItIs.find(geteuid() == 0 ? "; root needs CAP_SYS_RAWIO for it, and a kernel that is not locked down"
                                       : "; run as root (CAP_SYS_RAWIO), on a kernel that is not locked down"),
            std::string::npos)
      << asItIs;
}

TEST_F(PhysicalMachine, TellsWhyThePortsCannotBeUsed) {
  TThisPhysicalMachine machine(GetPath("mem"), Refuse);
  EXPECT_EQ(machine.Open().find("the video BIOS cannot use the I/O ports: Operation not permitted; "), 0U);
}

TEST_F(PhysicalMachine, ReadsAndWritesPortsInTheWidthThatIsAskedFor) {
  TThisPhysicalMachine machine(GetPath("mem"), Grant);
  const TRefusedPorts ports;
  EXPECT_EQ(machine.In(0x400, 1), 0xFFU);
  EXPECT_EQ(machine.In(0x401, 2), 0xFFFFU);
  EXPECT_EQ(machine.In(0x402, 4), 0xFFFFFFFFU);
  machine.Out(0x403, 0, 1);
  machine.Out(0x404, 0, 2);
  machine.Out(0x405, 0, 4);
  EXPECT_EQ(ports.GetAccesses(), (std::vector<std::string>{"in 1024 1", "in 1025 2", "in 1026 4", "out 1027 1",
                                                           "out 1028 2", "out 1029 4"}));
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
