// Hears from the kernel when something of its graphics cards has changed: a monitor came or went, or a card did.
#pragma once

#include <sys/socket.h>

#include <string_view>

#include "command/base/descriptor.h"

class TGraphicsEvents {
 public:
  /// Listens to the kernel's own group of uevents, which needs neither rights nor a daemon. Throws TUnusable where that
  /// cannot be done.
  TGraphicsEvents();
  /// `socket`: a netlink socket that is bound to the group already, with SO_PASSCRED set.
  explicit TGraphicsEvents(TDescriptor socket) : m_socket(std::move(socket)) {}

  /// Has something to read when an event has come, of whatever device.
  int GetDescriptor() const { return m_socket.Get(); }

  /// Takes all that have come. True when one tells of the graphics, or when events were lost and one may have. Never
  /// waits.
  bool Take();

 private:
  TDescriptor m_socket;
};

/// Whether the message that was received comes from the kernel: anybody with the rights may send to the group.
bool IsFromKernel(const msghdr& message);

/// Whether the kernel's message says that a device of the graphics subsystem came, went or changed. `message`:
/// "ACTION@DEVPATH" and a KEY=VALUE each, each ended by a zero byte.
bool TellsOfGraphics(std::string_view message);
