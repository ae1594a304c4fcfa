// Listens to the kernel for changes of its graphics: a monitor or a card came or went.
#pragma once

#include <sys/socket.h>

#include <string_view>

#include "command/base/descriptor.h"

class TGraphicsEvents {
 public:
  /// Listens to the kernel's own group of uevents, which needs neither rights nor a daemon. Throws TUnusable if that is
  /// impossible.
  TGraphicsEvents();
  /// `socket`: a netlink socket that is already bound to the group, with SO_PASSCRED set.
  explicit TGraphicsEvents(TDescriptor socket) : m_socket(std::move(socket)) {}

  /// Becomes readable when an event of any device has come.
  int GetDescriptor() const { return m_socket.Get(); }

  /// Takes all events that have come, without waiting. True if one is about the graphics, or if events were lost, since
  /// one of them may have been.
  bool Take();

 private:
  TDescriptor m_socket;
};

/// True if the received message comes from the kernel. Other processes with the rights may also send to the group.
bool IsFromKernel(const msghdr& message);

/// True if the kernel's message says that a device of the graphics subsystem came, went or changed. `message`:
/// "ACTION@DEVPATH", then KEY=VALUE pairs, each ended by a zero byte.
bool TellsOfGraphics(std::string_view message);
