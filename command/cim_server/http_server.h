// The listening half of the server: HTTP over TCP on a loopback address, with limits on all that a client can make it
// spend. It runs on one thread, and knows nothing of CIM.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>

#include "command/cim_server/http_mapping.h"

struct THttpLimits {
  std::size_t headerSize = std::size_t{64} * 1024;  // bytes; more is answered with 431
  std::size_t bodySize = std::size_t{64} * 1024;    // bytes; more is answered with 413
  std::size_t connections = 64;                     // at a time; the next one is answered with 503
  // For a request to arrive whole, from the moment when the server is ready for it, and for an answer to be taken; a
  // connection that needs longer is cut off, whatever comes in the meantime.
  std::chrono::milliseconds time = std::chrono::seconds(10);
};

class THttpServer {
 public:
  typedef std::function<void(THttpAnswer)> TReply;
  /// Answers a request, now or later, by calling `reply` once, even if the client has gone by then.
  typedef std::function<void(const THttpRequest& request, const TReply& reply)> THandler;

  /// Listens on the address, a number such as 127.0.0.1 or ::1; port 0 takes a free one. Throws TUnusable when that
  /// fails.
  THttpServer(const std::string& address, unsigned short port, const THttpLimits& limits = {});
  ~THttpServer();
  THttpServer(const THttpServer&) = delete;
  THttpServer& operator=(const THttpServer&) = delete;

  unsigned short GetPort() const;

  /// Calls `ready` once, when there is something to read from the descriptor, which stays the caller's. Watches one at
  /// a time.
  void WatchOnce(int descriptor, std::function<void()> ready);
  /// Gives up watching: before the descriptor is closed.
  void Unwatch();
  /// Calls `done` once, after that time; a later call takes the place of an earlier one.
  void StartTimer(std::chrono::milliseconds time, std::function<void()> done);
  void StopTimer();

  /// Serves until Stop, SIGINT or SIGTERM.
  void Run(THandler handler);
  void Stop();

 private:
  struct TState;
  std::unique_ptr<TState> m_state;
};
