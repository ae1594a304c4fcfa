// The sockets that the server takes connections from.
#pragma once

#include <string>
#include <vector>

#include "command/base/descriptor.h"

/// Listens for TCP connections on each of the addresses, numbers such as 127.0.0.1 or ::1, all on one port; 0 takes a
/// free one. Leaves out an address that this machine does not have, if it has another of them. Throws TUnusable when it
/// cannot listen.
std::vector<TDescriptor> Listen(const std::vector<std::string>& addresses, unsigned short port);

/// Where the socket listens, as a URL has it: 127.0.0.1:5988 or [::1]:5988.
std::string GetAddress(const TDescriptor& listener);
