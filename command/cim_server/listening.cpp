#include "command/cim_server/listening.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string_view>
#include <system_error>

#include "command/base/unusable.h"

namespace {

/// Throws std::system_error with errno unless `isDone`.
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

/// The port is at the same place in addresses of both versions.
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

/// Throws std::system_error if it cannot listen; what() begins with the address.
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
  if (listeners.empty() && missing) throw std::system_error(*missing);
  return listeners;
}

bool IsLoopback(const sockaddr_storage& address) {
  constexpr unsigned int loopback = 127;  // the first byte of such an address of version 4
  if (address.ss_family == AF_INET) {
    return ntohl(reinterpret_cast<const sockaddr_in&>(address).sin_addr.s_addr) >> 24 == loopback;
  }
  const auto& version6 = reinterpret_cast<const sockaddr_in6&>(address);
  return address.ss_family == AF_INET6 && IN6_IS_ADDR_LOOPBACK(&version6.sin6_addr);
}

/// The number in an environment variable; 0 if there is none.
int ReadNumber(const char* variable) {
  const char* const text = std::getenv(variable);
  return text == nullptr ? 0 : static_cast<int>(std::strtol(text, nullptr, 10));
}

}  // namespace

std::vector<TDescriptor> TakePassedSockets() {
  constexpr int first = 3;
  const int count = ReadNumber("LISTEN_PID") == getpid() ? ReadNumber("LISTEN_FDS") : 0;
  std::vector<TDescriptor> listeners;
  for (int descriptor = first; descriptor < first + count; ++descriptor) {
    fcntl(descriptor, F_SETFD, FD_CLOEXEC);
    fcntl(descriptor, F_SETFL, O_NONBLOCK);
    listeners.emplace_back(descriptor);
    if (!IsLoopback(ReadAddress(listeners.back()))) {
      throw TUnusable("systemd passed a socket that listens elsewhere than on 127.0.0.1 or ::1; correct its unit");
    }
  }
  return listeners;
}

void TellReady() {
  const char* const name = std::getenv("NOTIFY_SOCKET");
  sockaddr_un address = {};
  if (name == nullptr || std::strlen(name) >= sizeof address.sun_path) return;
  address.sun_family = AF_UNIX;
  std::memcpy(address.sun_path, name, std::strlen(name) + 1);
  if (address.sun_path[0] == '@') address.sun_path[0] = '\0';  // a name that is no file
  const TDescriptor sender(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
  constexpr std::string_view message = "READY=1";
  const auto size = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + std::strlen(name));
  sendto(sender.Get(), message.data(), message.size(), MSG_NOSIGNAL, reinterpret_cast<const sockaddr*>(&address), size);
}

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
