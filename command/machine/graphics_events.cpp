#include "command/machine/graphics_events.h"

#include <linux/netlink.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string>

#include "command/base/unusable.h"

namespace {

constexpr unsigned int kKernelGroup = 1;     // udevd sends to another group
constexpr std::size_t kMaxMessage = 8192;    // bytes; the kernel's have at most 2048 and a path
constexpr int kReceiveBuffer = 1024 * 1024;  // bytes: a dock causes hundreds of events at once

TDescriptor Listen() {
  TDescriptor socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_KOBJECT_UEVENT));
  sockaddr_nl address = {};
  address.nl_family = AF_NETLINK;
  address.nl_groups = kKernelGroup;
  const int on = 1;
  const bool isListening = socket.IsOpen() && setsockopt(socket.Get(), SOL_SOCKET, SO_PASSCRED, &on, sizeof on) == 0 &&
                           bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
  if (!isListening) throw TUnusable(std::string("the kernel's events cannot be heard: ") + std::strerror(errno));
  // If this fails, more events may be lost. That does no harm: Take notices it.
  static_cast<void>(setsockopt(socket.Get(), SOL_SOCKET, SO_RCVBUF, &kReceiveBuffer, sizeof kReceiveBuffer));
  return socket;
}

}  // namespace

TGraphicsEvents::TGraphicsEvents() : m_socket(Listen()) {}

bool TGraphicsEvents::Take() {
  bool hasChanged = false;
  for (;;) {
    std::array<char, kMaxMessage> text;
    alignas(cmsghdr) std::array<char, CMSG_SPACE(sizeof(ucred))> control;
    iovec buffer = {text.data(), text.size()};
    sockaddr_nl sender = {};
    msghdr message = {};
    message.msg_name = &sender;
    message.msg_namelen = sizeof sender;
    message.msg_iov = &buffer;
    message.msg_iovlen = 1;
    message.msg_control = control.data();
    message.msg_controllen = control.size();
    const ssize_t size = recvmsg(m_socket.Get(), &message, MSG_DONTWAIT);
    if (size < 0 && errno == EINTR) continue;
    if (size < 0 && errno != ENOBUFS) return hasChanged;
    const bool isLost = size < 0;
    if (isLost || (IsFromKernel(message) && TellsOfGraphics({text.data(), static_cast<std::size_t>(size)}))) {
      hasChanged = true;
    }
  }
}

bool IsFromKernel(const msghdr& message) {
  const auto* const sender = static_cast<const sockaddr_nl*>(message.msg_name);
  if (message.msg_namelen != sizeof *sender || sender->nl_family != AF_NETLINK || sender->nl_pid != 0) return false;
  const cmsghdr* const header = CMSG_FIRSTHDR(&message);
  if (header == nullptr || header->cmsg_level != SOL_SOCKET || header->cmsg_type != SCM_CREDENTIALS) return false;
  ucred credentials = {};
  std::memcpy(&credentials, CMSG_DATA(header), sizeof credentials);
  return credentials.uid == 0;
}

bool TellsOfGraphics(std::string_view message) {
  bool isOfGraphics = false;
  bool isChange = false;
  while (!message.empty()) {
    const std::string_view field = message.substr(0, message.find('\0'));
    message.remove_prefix(std::min(field.size() + 1, message.size()));
    if (field == "SUBSYSTEM=drm") isOfGraphics = true;
    if (field == "ACTION=change" || field == "ACTION=add" || field == "ACTION=remove") isChange = true;
  }
  return isOfGraphics && isChange;
}
