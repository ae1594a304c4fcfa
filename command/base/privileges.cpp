#include "command/base/privileges.h"

#include <grp.h>
#include <linux/capability.h>
#include <sys/io.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>

namespace {

constexpr unsigned int kNobody = 65534;

/// Keeps the capabilities and the signal at the parent's death, both of which the kernel drops with the user.
void BecomeNobody() {
  int deathSignal = 0;
  const pid_t parent = getppid();
  static_cast<void>(prctl(PR_GET_PDEATHSIG, &deathSignal));
  static_cast<void>(prctl(PR_SET_KEEPCAPS, 1, 0, 0, 0));
  if (setgroups(0, nullptr) != 0 || setresgid(kNobody, kNobody, kNobody) != 0) return;
  if (setresuid(kNobody, kNobody, kNobody) != 0) return;
  static_cast<void>(prctl(PR_SET_PDEATHSIG, deathSignal));
  if (deathSignal != 0 && getppid() != parent) raise(deathSignal);  // the parent ended while no signal was set
}

}  // namespace

void DropPrivileges(bool keepsReading) {
  constexpr unsigned long lowPorts = 0x400;
  static_cast<void>(ioperm(0, lowPorts, 0));
  static_cast<void>(iopl(0));
  static_cast<void>(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0));  // a program that is started cannot get them back
  if (geteuid() == 0) BecomeNobody();
  __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
  __user_cap_data_struct sets[_LINUX_CAPABILITY_U32S_3] = {};
  static_assert(CAP_DAC_READ_SEARCH < 32, "it is in the first word of a set");
  constexpr unsigned int reading = 1U << CAP_DAC_READ_SEARCH;
  // Ask only for what is held: otherwise capset fails and drops nothing.
  if (keepsReading && syscall(SYS_capget, &header, sets) == 0) {
    const unsigned int held = sets[0].permitted & reading;
    sets[0] = {held, held, 0};
    sets[1] = {};
  }
  static_cast<void>(syscall(SYS_capset, &header, sets));
}

void LetNobodyEndProcesses() {
  if (geteuid() == 0) static_cast<void>(!setresuid(kNobody, static_cast<uid_t>(-1), static_cast<uid_t>(-1)));
}
