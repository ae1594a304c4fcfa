// The sockets that the server takes connections from.
#pragma once

#include <string>
#include <vector>

#include "command/base/descriptor.h"

/// Listens for TCP connections on each of the addresses, numbers such as 127.0.0.1 or ::1, all on one port; 0 takes a
/// free one. Leaves out an address that this machine does not have, if it has another of them. Throws TUnusable when it
/// cannot listen.
std::vector<TDescriptor> Listen(const std::vector<std::string>& addresses, unsigned short port);

/// The sockets that systemd passed to this process (sd_listen_fds(3)); none when it passed none. Throws TUnusable when
/// one of them does not listen on a loopback address.
std::vector<TDescriptor> TakePassedSockets();

/// Tells systemd that the service answers (sd_notify(3)), if it started this process and waits for that.
void TellReady();

/// Where the socket listens, as a URL has it: 127.0.0.1:5988 or [::1]:5988.
std::string GetAddress(const TDescriptor& listener);
