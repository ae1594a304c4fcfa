#include "command/cim_server/listening.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>

#include <cerrno>
#include <cstring>
#include <optional>
#include <system_error>

#include "command/base/unusable.h"

namespace {

/// Throws std::system_error with errno.
void Require(bool isDone, const std::string& address) {
  if (!isDone) throw std::system_error(errno, std::generic_category(), address);
}

sockaddr_storage MakeAddress(const std::string& address, unsigned short port) {
  sockaddr_storage made = {};
  auto& version4 = reinterpret_cast<sockaddr_in&>(made);
  auto& version6 = reinterpret_cast<sockaddr_in6&>(made);
  if (inet_pton(AF_INET, address.c_str(), &version4.sin_addr) == 1) {
    version4.sin_family = AF_INET;
    version4.sin_port = htons(port);
  } else if (inet_pton(AF_INET6, address.c_str(), &version6.sin6_addr) == 1) {
    version6.sin6_family = AF_INET6;
    version6.sin6_port = htons(port);
  }
  return made;
}

sockaddr_storage ReadAddress(const TDescriptor& listener) {
  sockaddr_storage address = {};
  socklen_t size = sizeof address;
  Require(getsockname(listener.Get(), reinterpret_cast<sockaddr*>(&address), &size) == 0, "a socket");
  return address;
}

/// Both versions have it at the same place.
unsigned short GetPort(const sockaddr_storage& address) {
  return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
}

TDescriptor ListenOn(const std::string& address, unsigned short port) {
  const sockaddr_storage place = MakeAddress(address, port);
  TDescriptor listener(socket(place.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
  Require(listener.Get() >= 0, address);
  const int yes = 1;
  setsockopt(listener.Get(), SOL_SOCKET, SO_REUSEADDR, &yes, sizeof yes);
  if (place.ss_family == AF_INET6) setsockopt(listener.Get(), IPPROTO_IPV6, IPV6_V6ONLY, &yes, sizeof yes);
  Require(bind(listener.Get(), reinterpret_cast<const sockaddr*>(&place), sizeof place) == 0, address);
  Require(listen(listener.Get(), SOMAXCONN) == 0, address);
  return listener;
}

bool IsMissing(const std::system_error& error) {
  return error.code().value() == EADDRNOTAVAIL || error.code().value() == EAFNOSUPPORT;
}

/// Throws std::system_error, whose what() begins with the address.
std::vector<TDescriptor> TryToListen(const std::vector<std::string>& addresses, unsigned short port) {
  std::vector<TDescriptor> listeners;
  std::optional<std::system_error> missing;
  for (const std::string& address : addresses) {
    try {
      listeners.push_back(ListenOn(address, port));
      port = GetPort(ReadAddress(listeners.back()));
    } catch (const std::system_error& error) {
      if (!IsMissing(error)) throw;
      missing = error;
    }
  }
  if (listeners.empty() && missing) throw *missing;
  return listeners;
}

}  // namespace

std::vector<TDescriptor> Listen(const std::vector<std::string>& addresses, unsigned short port) {
  constexpr int maxTries = 20;  // a port that is free on one address may be taken on the other
  for (int tries = 1; true; ++tries) {
    try {
      return TryToListen(addresses, port);
    } catch (const std::system_error& error) {
      const bool isTaken = error.code().value() == EADDRINUSE;
      if (port == 0 && isTaken && tries < maxTries) continue;
      throw TUnusable("cannot listen on port " + std::to_string(port) + ": " + error.what() +
                      "; --port N takes another port, --port 0 a free one");
    }
  }
}

std::string GetAddress(const TDescriptor& listener) {
  const sockaddr_storage address = ReadAddress(listener);
  const bool isVersion6 = address.ss_family == AF_INET6;
  char text[INET6_ADDRSTRLEN] = {};
  const void* const number = isVersion6
                                 ? static_cast<const void*>(&reinterpret_cast<const sockaddr_in6&>(address).sin6_addr)
                                 : &reinterpret_cast<const sockaddr_in&>(address).sin_addr;
  inet_ntop(address.ss_family, number, text, sizeof text);
  return (isVersion6 ? "[" + std::string(text) + "]" : text) + ":" + std::to_string(GetPort(address));
}
