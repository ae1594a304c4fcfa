#include "command/cim_server/http_server.h"

#include <poll.h>

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <csignal>
#include <iostream>
#include <iterator>
#include <list>
#include <optional>
#include <set>
#include <string>

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using asio::ip::tcp;
using boost::system::error_code;

namespace {

constexpr unsigned int kHttp11 = 11;
constexpr std::chrono::milliseconds kPause(100);  // before the next try to accept after the system refused one

// How long, after an answer that ends a connection, data from the client is still received and thrown away. Closing at
// once would reset the connection, and the client would lose answers that it has not read.
constexpr std::chrono::seconds kLingering(1);

class TConnection;

/// What all connections share.
struct TShared {
  THttpLimits limits;
  THttpServer::THandler handler;
  std::size_t connections = 0;
  std::set<std::shared_ptr<TConnection>> waiting;  // those that wait for an answer
};

THttpRequest MakeRequest(const http::request<http::string_body>& message) {
  THttpRequest request;
  request.method = std::string(message.method_string());
  for (const auto& header : message) request.headers.emplace_back(header.name_string(), header.value());
  request.body = message.body();
  return request;
}

/// The refusal of a request that could not be read; nothing if the client went away or was too slow.
std::optional<TRefused> ExplainFailure(error_code error) {
  if (error == http::error::header_limit) return TRefused(431, "", "the headers are larger than the server takes");
  if (error == http::error::body_limit) return TRefused(413, "", "the body is larger than the server takes");
  if (error == http::error::buffer_overflow) return TRefused(431, "", "the headers are larger than the server takes");
  if (error == http::error::end_of_stream || error == http::error::partial_message) return std::nullopt;
  if (error.category() != make_error_code(http::error::bad_method).category()) return std::nullopt;
  return TRefused(400, "", "not a request of HTTP: " + error.message());
}

/// One connection: reads a request, has it answered, and reads the next. It lives as long as an operation on it is
/// pending.
class TConnection : public std::enable_shared_from_this<TConnection> {
 public:
  TConnection(tcp::socket socket, std::shared_ptr<TShared> shared)
      : m_stream(std::move(socket)), m_shared(std::move(shared)), m_buffer(GetBufferSize(m_shared->limits)) {
    ++m_shared->connections;
  }
  ~TConnection() { --m_shared->connections; }
  TConnection(const TConnection&) = delete;
  TConnection& operator=(const TConnection&) = delete;

  void Start() {
    error_code ignored;
    static_cast<void>(m_stream.socket().set_option(tcp::no_delay(true), ignored));
    if (m_shared->connections > m_shared->limits.connections) {
      return Refuse(TRefused(503, "", "too many connections at a time; try again later"));
    }
    Read();
  }

  /// True if the client will send nothing more. It may be gone or still be waiting for its answer; nobody can tell.
  bool HasLeft() {
    pollfd descriptor = {m_stream.socket().native_handle(), POLLRDHUP, 0};
    return poll(&descriptor, 1, 0) > 0;
  }

 private:
  /// The most bytes that may wait to be parsed: the headers and a little more. This limits what chunks and trailers may
  /// bring besides the body.
  static std::size_t GetBufferSize(const THttpLimits& limits) { return limits.headerSize + 4096; }

  void Read() {
    m_parser.emplace();
    m_parser->header_limit(static_cast<std::uint32_t>(m_shared->limits.headerSize));
    m_parser->body_limit(m_shared->limits.bodySize);
    m_stream.expires_after(m_shared->limits.time);
    http::async_read_header(m_stream, m_buffer, *m_parser,
                            [self = shared_from_this()](error_code error, std::size_t) { self->OnHeader(error); });
  }

  void OnHeader(error_code error) {
    if (error) return OnFailure(error);
    const bool waits = beast::iequals(m_parser->get()[http::field::expect], "100-continue");
    if (!waits || m_parser->is_done()) return ReadBody();
    m_answer = http::response<http::string_body>(http::status::continue_, kHttp11);
    Send([this] { ReadBody(); });
  }

  void ReadBody() {
    http::async_read(m_stream, m_buffer, *m_parser, [self = shared_from_this()](error_code error, std::size_t) {
      if (error) return self->OnFailure(error);
      self->Answer();
    });
  }

  void OnFailure(error_code error) {
    if (const std::optional<TRefused> refused = ExplainFailure(error)) Refuse(*refused);
  }

  void Refuse(const TRefused& refused) { Write(MakeRefusal(refused), false); }

  void Answer() {
    m_stream.expires_never();  // the answer may have to be collected first
    const http::request<http::string_body> message = m_parser->release();
    const bool keepsAlive = message.keep_alive();
    const auto write = [client = weak_from_this(), keepsAlive](THttpAnswer answer) {
      if (const auto self = client.lock()) self->Reply(std::move(answer), keepsAlive);
    };
    THttpRequest request = MakeRequest(message);
    error_code hasGone;
    request.client = m_stream.socket().remote_endpoint(hasGone).address().to_string();
    m_shared->waiting.insert(shared_from_this());
    try {
      m_shared->handler(request, THttpServer::TReply(weak_from_this(), write));
    } catch (...) {
      m_shared->waiting.erase(shared_from_this());
      throw;
    }
  }

  void Reply(THttpAnswer answer, bool keepsAlive) {
    if (m_shared->waiting.erase(shared_from_this()) > 0) Write(std::move(answer), keepsAlive);
  }

  void Write(THttpAnswer answer, bool keepsAlive) {
    m_answer = http::response<http::string_body>(static_cast<http::status>(answer.status), kHttp11);
    for (const auto& [name, value] : answer.headers) m_answer.set(name, value);
    m_answer.body() = std::move(answer.body);
    m_answer.keep_alive(keepsAlive);
    m_answer.prepare_payload();
    m_stream.expires_after(m_shared->limits.time);
    Send([this, keepsAlive] { keepsAlive ? Read() : Linger(); });
  }

  /// Sends m_answer and, once the client took it, calls `next`.
  void Send(std::function<void()> next) {
    http::async_write(m_stream, m_answer,
                      [self = shared_from_this(), next = std::move(next)](error_code error, std::size_t) {
                        if (!error) next();
                      });
  }

  void Linger() {
    error_code ignored;
    static_cast<void>(m_stream.socket().shutdown(tcp::socket::shutdown_send, ignored));
    m_stream.expires_after(kLingering);
    Discard();
  }

  void Discard() {
    m_stream.async_read_some(asio::buffer(m_discarded), [self = shared_from_this()](error_code error, std::size_t) {
      if (!error) self->Discard();
    });
  }

  beast::tcp_stream m_stream;
  std::shared_ptr<TShared> m_shared;
  beast::flat_buffer m_buffer;  // received bytes that were not parsed yet
  std::optional<http::request_parser<http::string_body>> m_parser;
  http::response<http::string_body> m_answer;
  char m_discarded[4096] = {};
};

}  // namespace

struct THttpServer::TState {
  TState(std::vector<TDescriptor> listeners, const THttpLimits& limits)
      : shared(std::make_shared<TShared>(TShared{limits, {}, 0, {}})) {
    for (TDescriptor& listener : listeners) {
      tcp::acceptor& acceptor = acceptors.emplace_back(context);
      acceptor.assign(GetProtocol(listener), listener.Get());
      listener.Release();
    }
  }
  ~TState() { shared->waiting.clear(); }  // breaks the cycle: connections own TShared, which owns them
  TState(const TState&) = delete;
  TState& operator=(const TState&) = delete;

  static tcp GetProtocol(const TDescriptor& listener) {
    sockaddr_storage address = {};
    socklen_t size = sizeof address;
    getsockname(listener.Get(), reinterpret_cast<sockaddr*>(&address), &size);
    return address.ss_family == AF_INET6 ? tcp::v6() : tcp::v4();
  }

  void Accept(tcp::acceptor& acceptor) {
    acceptor.async_accept([this, &acceptor](error_code error, tcp::socket socket) {
      if (error == asio::error::operation_aborted) return;
      if (error) return AcceptLater(acceptor);
      Welcome(std::move(socket));
      Accept(acceptor);
    });
  }

  void Welcome(tcp::socket socket) {
    const std::size_t limit = shared->limits.connections;
    if (shared->connections >= limit) EndDeserted();
    // Connections beyond the limit are answered with 503, those beyond twice the limit are closed without an answer.
    if (shared->connections < 2 * limit) std::make_shared<TConnection>(std::move(socket), shared)->Start();
  }

  /// Ends the connections that wait for an answer and whose clients have left.
  void EndDeserted() {
    for (auto connection = shared->waiting.begin(); connection != shared->waiting.end();) {
      connection = (*connection)->HasLeft() ? shared->waiting.erase(connection) : std::next(connection);
    }
  }

  void AcceptLater(tcp::acceptor& acceptor) {
    const auto pause = std::make_shared<asio::steady_timer>(context, kPause);
    pause->async_wait([this, &acceptor, pause](error_code error) {
      if (!error) Accept(acceptor);
    });
  }

  asio::io_context context = asio::io_context(1);
  std::list<tcp::acceptor> acceptors;
  asio::signal_set signals = asio::signal_set(context, SIGINT, SIGTERM);
  /// Calls `ready` whenever the watched descriptor is readable, until it is released.
  void CallWhenever(std::function<void()> ready) {
    watchedAlways.async_wait(asio::posix::stream_descriptor::wait_read,
                             [this, ready = std::move(ready)](error_code error) {
                               if (error) return;
                               ready();
                               CallWhenever(ready);
                             });
  }

  asio::posix::stream_descriptor watched = asio::posix::stream_descriptor(context);
  asio::posix::stream_descriptor watchedAlways = asio::posix::stream_descriptor(context);
  std::shared_ptr<TShared> shared;
};

THttpServer::THttpServer(std::vector<TDescriptor> listeners, const THttpLimits& limits)
    : m_state(std::make_unique<TState>(std::move(listeners), limits)) {}

THttpServer::~THttpServer() {
  Unwatch();
  if (m_state->watchedAlways.is_open()) m_state->watchedAlways.release();
}

void THttpServer::WatchOnce(int descriptor, std::function<void()> ready) {
  m_state->watched.assign(descriptor);
  m_state->watched.async_wait(asio::posix::stream_descriptor::wait_read,
                              [this, ready = std::move(ready)](error_code error) {
                                if (error) return;
                                Unwatch();  // `ready` may close it
                                ready();
                              });
}

void THttpServer::Watch(int descriptor, std::function<void()> ready) {
  m_state->watchedAlways.assign(descriptor);
  m_state->CallWhenever(std::move(ready));
}

void THttpServer::Unwatch() {
  if (m_state->watched.is_open()) m_state->watched.release();
}

THttpServer::TTimer THttpServer::StartTimer(std::chrono::milliseconds time, std::function<void()> done) {
  const auto timer = std::make_shared<asio::steady_timer>(m_state->context, time);
  const std::weak_ptr<asio::steady_timer> self = timer;  // when it is destroyed, its handler may already be queued
  timer->async_wait([self, done = std::move(done)](error_code error) {
    if (!error && !self.expired()) done();
  });
  return timer;
}

void THttpServer::Run(THandler handler) {
  m_state->shared->handler = std::move(handler);
  m_state->signals.async_wait([this](error_code error, int) {
    if (!error) Stop();
  });
  for (tcp::acceptor& acceptor : m_state->acceptors) m_state->Accept(acceptor);
  while (!m_state->context.stopped()) {
    try {
      m_state->context.run();
    } catch (const std::exception& error) {  // out of memory, for example: one connection is lost
      std::cerr << "displayinfo: " << error.what() << '\n';
    }
  }
}

void THttpServer::Stop() { m_state->context.stop(); }
