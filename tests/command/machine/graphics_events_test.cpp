// Tests whose events are believed, and which of them are about graphics. Guests test a real kernel's events:
// tests/guest.
#include "command/machine/graphics_events.h"

#include <gmock/gmock.h>
#include <linux/netlink.h>

#include <array>
#include <cstring>
#include <optional>
#include <string>

namespace {

using namespace std::string_literals;

/// A message as recvmsg returns it.
class TReceived {
 public:
  TReceived() {
    sender.nl_family = AF_NETLINK;
    sender.nl_groups = 1;
  }

  bool IsFromKernel(const std::optional<ucred>& credentials) {
    msghdr message = {};
    message.msg_name = &sender;
    message.msg_namelen = senderSize;
    if (credentials) {
      message.msg_control = m_control.data();
      message.msg_controllen = m_control.size();
      cmsghdr* const header = CMSG_FIRSTHDR(&message);
      *header = {CMSG_LEN(sizeof *credentials), SOL_SOCKET, SCM_CREDENTIALS};
      std::memcpy(CMSG_DATA(header), &*credentials, sizeof *credentials);
    }
    return ::IsFromKernel(message);
  }

  sockaddr_nl sender = {};
  socklen_t senderSize = sizeof sender;

 private:
  alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> m_control = {};
};

constexpr ucred kKernel = {0, 0, 0};
const std::string kChange =
    "change@/devices/pci0000:00/0000:00:02.0/drm/card0\0ACTION=change\0"
    "DEVPATH=/devices/pci0000:00/0000:00:02.0/drm/card0\0SUBSYSTEM=drm\0HOTPLUG=1\0SEQNUM=1234\0"s;

/// Sends the message to the group that the kernel sends to, which needs rights. False when it is not allowed.
bool SendToKernelGroup(const std::string& text) {
  const TDescriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_KOBJECT_UEVENT));
  sockaddr_nl group = {};
  group.nl_family = AF_NETLINK;
  group.nl_groups = 1;
  return sendto(socket.Get(), text.data(), text.size(), 0, reinterpret_cast<const sockaddr*>(&group), sizeof group) >=
         0;
}

}  // namespace

TEST(GraphicsEvents, AreBelievedFromTheKernel) { EXPECT_TRUE(TReceived().IsFromKernel(kKernel)); }

TEST(GraphicsEvents, AreNotBelievedFromAProcess) {
  TReceived received;
  received.sender.nl_pid = 17;
  EXPECT_FALSE(received.IsFromKernel(kKernel));
}

TEST(GraphicsEvents, AreNotBelievedFromAnotherUserThanRoot) {
  EXPECT_FALSE(TReceived().IsFromKernel(ucred{0, 1000, 0}));
}

TEST(GraphicsEvents, AreNotBelievedWithoutCredentials) { EXPECT_FALSE(TReceived().IsFromKernel(std::nullopt)); }

TEST(GraphicsEvents, AreNotBelievedFromAnotherKindOfSocket) {
  TReceived received;
  received.sender.nl_family = AF_UNIX;
  EXPECT_FALSE(received.IsFromKernel(kKernel));
  received.sender.nl_family = AF_NETLINK;
  received.senderSize = 2;
  EXPECT_FALSE(received.IsFromKernel(kKernel));
}

TEST(GraphicsEvents, TellOfEachDeviceThatComesGoesOrChanges) {
  for (const char* const action : {"change", "add", "remove"}) {
    EXPECT_TRUE(TellsOfGraphics(action + "@/devices/card0\0ACTION="s + action + "\0SUBSYSTEM=drm\0"s)) << action;
  }
  EXPECT_TRUE(TellsOfGraphics(kChange));
}

TEST(GraphicsEvents, TellOfNothingElse) {
  for (const std::string& message :
       {""s, "\0"s, "\0\0\0"s, "change@/x\0ACTION=change\0SUBSYSTEM=pci\0"s, "bind@/x\0ACTION=bind\0SUBSYSTEM=drm\0"s,
        "change@/x\0SUBSYSTEM=drm\0"s, "change@/x\0ACTION=change\0"s,
        "change@/x\0ACTION=change\0SUBSYSTEM=drm_dp_aux\0"s, "change@/SUBSYSTEM=drm\0ACTION=change\0XSUBSYSTEM=drm\0"s,
        "libudev\0SUBSYSTEM=drm\0ACTION=changed\0"s}) {
    EXPECT_FALSE(TellsOfGraphics(message)) << message;
  }
}

TEST(GraphicsEvents, MayEndAnywhere) {
  const std::size_t whole = kChange.find("SUBSYSTEM=drm") + std::strlen("SUBSYSTEM=drm");
  for (std::size_t size = 0; size < kChange.size(); ++size) {
    EXPECT_EQ(TellsOfGraphics(std::string_view(kChange).substr(0, size)), size >= whole) << size;
  }
}

TEST(GraphicsEvents, AreNoneWhereNothingHappens) { EXPECT_FALSE(TGraphicsEvents().Take()); }

TEST(GraphicsEvents, AreNotTakenFromAProcessThatSendsToTheirGroup) {
  TGraphicsEvents events;
  if (!SendToKernelGroup(kChange)) GTEST_SKIP() << "needs root";
  EXPECT_FALSE(events.Take());
}

TEST(GraphicsEvents, AreNotTakenFromAnotherKindOfSocket) {
  int ends[2] = {};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, ends), 0);
  const TDescriptor sender(ends[0]);
  TGraphicsEvents events{TDescriptor(ends[1])};
  ASSERT_EQ(send(sender.Get(), kChange.data(), kChange.size(), 0), static_cast<ssize_t>(kChange.size()));
  EXPECT_FALSE(events.Take());
}
