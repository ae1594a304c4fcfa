// The listening half of the server: HTTP over TCP, with limits on everything that a client can make it spend. It runs
// on one thread and knows nothing of CIM.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

#include "command/base/descriptor.h"
#include "command/cim_server/http_mapping.h"

struct THttpLimits {
  std::size_t headerSize = std::size_t{64} * 1024;  // bytes; more is answered with 431
  std::size_t bodySize = std::size_t{64} * 1024;    // bytes; more is answered with 413
  // At a time. The next one is answered with 503, unless a client that waited for its answer has left.
  std::size_t connections = 64;
  // For a complete request to arrive once the server is ready for it, and for an answer to be taken. A connection that
  // needs longer is cut off, even if data keeps coming.
  std::chrono::milliseconds time = std::chrono::seconds(10);
};

class THttpServer {
 public:
  /// Sends the answer to the client of a request. Calls after the first do nothing.
  class TReply {
   public:
    TReply(std::weak_ptr<void> client, std::function<void(THttpAnswer)> write)
        : m_client(std::move(client)), m_write(std::move(write)) {}
    void operator()(THttpAnswer answer) const {
      if (IsWanted()) m_write(std::move(answer));
    }
    /// False once the client has left and another one needed its place.
    bool IsWanted() const { return !m_client.expired(); }

   private:
    std::weak_ptr<void> m_client;
    std::function<void(THttpAnswer)> m_write;
  };
  /// Answers a request, now or later, by calling `reply`.
  typedef std::function<void(const THttpRequest& request, const TReply& reply)> THandler;
  typedef std::shared_ptr<void> TTimer;

  /// `listeners`: sockets that listen for TCP connections.
  explicit THttpServer(std::vector<TDescriptor> listeners, const THttpLimits& limits = {});
  ~THttpServer();
  THttpServer(const THttpServer&) = delete;
  THttpServer& operator=(const THttpServer&) = delete;

  /// Calls `ready` once, as soon as the descriptor is readable. The descriptor stays the caller's; only one can be
  /// watched at a time.
  void WatchOnce(int descriptor, std::function<void()> ready);
  /// Ends WatchOnce. Call it before the descriptor is closed.
  void Unwatch();
  /// Calls `ready` whenever the descriptor is readable. The descriptor stays the caller's and must stay open; only one
  /// can be watched.
  void Watch(int descriptor, std::function<void()> ready);
  /// Calls `done` once, after that time, unless the timer was destroyed before. It must not outlive the server.
  [[nodiscard]] TTimer StartTimer(std::chrono::milliseconds time, std::function<void()> done);

  /// Serves until Stop, SIGINT or SIGTERM.
  void Run(THandler handler);
  void Stop();

 private:
  struct TState;
  std::unique_ptr<TState> m_state;
};
