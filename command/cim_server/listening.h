// Opens the sockets from which the server accepts connections.
#pragma once

#include <string>
#include <vector>

#include "command/base/descriptor.h"

/// Listens for TCP connections on all addresses, numbers such as 127.0.0.1 or ::1, on one port (0: a free one). Skips
/// an address that this machine does not have, if it has another of them. Throws TUnusable if it cannot listen.
std::vector<TDescriptor> Listen(const std::vector<std::string>& addresses, unsigned short port);

/// The sockets that systemd passed to this process (sd_listen_fds(3)); empty if it passed none. Throws TUnusable if one
/// of them does not listen on a loopback address.
std::vector<TDescriptor> TakePassedSockets();

/// Tells systemd that the service is ready (sd_notify(3)), if it started this process and waits for that.
void TellReady();

/// Where the socket listens, in the form of a URL: 127.0.0.1:5988 or [::1]:5988.
std::string GetAddress(const TDescriptor& listener);
