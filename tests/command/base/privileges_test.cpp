// Each test gives up its rights in a process of its own.
#include "command/base/privileges.h"

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>

#include "tests/support/lrmi_double.h"

using testing::ExitedWithCode;

namespace {

/// Ends the test's process, with status 0 if `isTrue`.
[[noreturn]] void EndWith(bool isTrue) { _exit(isTrue ? 0 : 1); }

class RootPrivileges : public testing::Test {
 protected:
  void SetUp() override {
    if (geteuid() != 0) GTEST_SKIP() << "needs root";
  }

  TLrmiDouble ports;
};

}  // namespace

TEST(Privileges, OfThePortsAreGivenUpOneByOneAndByTheirLevel) {
  EXPECT_EXIT(
      {
        TLrmiDouble ports;
        DropPrivileges(false);
        EndWith(ports.calls == std::vector<std::string>{"ioperm 0 1024 0", "iopl 0"});
      },
      ExitedWithCode(0), "");
}

TEST_F(RootPrivileges, OfRootAndItsGroupsAreGivenUpForGood) {
  EXPECT_EXIT(
      {
        const gid_t group = 4;
        static_cast<void>(setgroups(1, &group));
        DropPrivileges(true);
        EndWith(getuid() != 0 && getgid() != 0 && getgroups(0, nullptr) == 0 && setresuid(0, 0, 0) != 0 &&
                setresgid(0, 0, 0) != 0);
      },
      ExitedWithCode(0), "");
}

TEST_F(RootPrivileges, KeepTheSignalAtTheParentsDeath) {
  EXPECT_EXIT(
      {
        int signal = 0;
        prctl(PR_SET_PDEATHSIG, SIGUSR1);
        DropPrivileges(true);
        prctl(PR_GET_PDEATHSIG, &signal);
        EndWith(signal == SIGUSR1);
      },
      ExitedWithCode(0), "");
}

TEST_F(RootPrivileges, OfTheRealUserAreGivenUpSoThatNobodyMayEndTheProcess) {
  EXPECT_EXIT(
      {
        LetNobodyEndProcesses();
        EndWith(getuid() != 0 && geteuid() == 0);
      },
      ExitedWithCode(0), "");
}
