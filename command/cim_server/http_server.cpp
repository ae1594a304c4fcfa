#include "command/cim_server/http_server.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/posix/stream_descriptor.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/beast/core.hpp>
#include <boost/beast/http.hpp>
#include <csignal>
#include <iostream>
#include <optional>
#include <utility>

#include "command/base/unusable.h"

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = beast::http;
using asio::ip::tcp;
using boost::system::error_code;

namespace {

constexpr unsigned int kHttp11 = 11;
constexpr std::chrono::milliseconds kPause(100);  // before the next try to accept, when the system refused one

// After an answer that ends a connection, what the client still sends is taken for this long and thrown away: closing
// at once would reset the connection, and with it go answers that the client has not read.
constexpr std::chrono::seconds kLingering(1);

/// What all connections share.
struct TShared {
  THttpLimits limits;
  THttpServer::THandler handler;
  std::size_t connections = 0;
};

THttpRequest MakeRequest(const http::request<http::string_body>& message) {
  THttpRequest request;
  request.method = std::string(message.method_string());
  for (const auto& header : message) request.headers.emplace_back(header.name_string(), header.value());
  request.body = message.body();
  return request;
}

/// Why a request could not be read, as a refusal; nothing when the client went away or was too slow.
std::optional<TRefused> ExplainFailure(error_code error) {
  if (error == http::error::header_limit) return TRefused(431, "", "the headers are larger than the server takes");
  if (error == http::error::body_limit) return TRefused(413, "", "the body is larger than the server takes");
  if (error == http::error::buffer_overflow) return TRefused(431, "", "the headers are larger than the server takes");
  if (error == http::error::end_of_stream || error == http::error::partial_message) return std::nullopt;
  if (error.category() != make_error_code(http::error::bad_method).category()) return std::nullopt;
  return TRefused(400, "", "not a request of HTTP: " + error.message());
}

/// One connection: it reads a request, has it answered, and reads the next. It lives as long as something is under way.
class TConnection : public std::enable_shared_from_this<TConnection> {
 public:
  TConnection(tcp::socket socket, std::shared_ptr<TShared> shared)
      : m_stream(std::move(socket)), m_shared(std::move(shared)) {
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

 private:
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
    m_continue = http::response<http::empty_body>(http::status::continue_, kHttp11);
    http::async_write(m_stream, m_continue, [self = shared_from_this()](error_code failure, std::size_t) {
      if (!failure) self->ReadBody();
    });
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
    m_shared->handler(MakeRequest(message), [self = shared_from_this(), keepsAlive](THttpAnswer answer) {
      self->Write(std::move(answer), keepsAlive);
    });
  }

  void Write(THttpAnswer answer, bool keepsAlive) {
    m_answer = http::response<http::string_body>(static_cast<http::status>(answer.status), kHttp11);
    for (const auto& [name, value] : answer.headers) m_answer.set(name, value);
    m_answer.body() = std::move(answer.body);
    m_answer.keep_alive(keepsAlive);
    m_answer.prepare_payload();
    m_stream.expires_after(m_shared->limits.time);
    http::async_write(m_stream, m_answer, [self = shared_from_this(), keepsAlive](error_code error, std::size_t) {
      if (error) return;
      if (keepsAlive) return self->Read();
      self->Linger();
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
  beast::flat_buffer m_buffer;
  std::optional<http::request_parser<http::string_body>> m_parser;
  http::response<http::empty_body> m_continue;
  http::response<http::string_body> m_answer;
  char m_discarded[4096] = {};
};

}  // namespace

struct THttpServer::TState {
  TState(const std::string& address, unsigned short port, const THttpLimits& limits)
      : shared(std::make_shared<TShared>(TShared{limits, {}, 0})) {
    const tcp::endpoint endpoint(asio::ip::make_address(address), port);
    acceptor.open(endpoint.protocol());
    acceptor.set_option(tcp::acceptor::reuse_address(true));
    acceptor.bind(endpoint);
    acceptor.listen();
  }

  void Accept() {
    acceptor.async_accept([this](error_code error, tcp::socket socket) {
      if (error == asio::error::operation_aborted) return;
      if (error) return AcceptLater();
      // Up to twice the limit are answered, those past it with 503; further connections are closed without an answer.
      if (shared->connections < 2 * shared->limits.connections) {
        std::make_shared<TConnection>(std::move(socket), shared)->Start();
      }
      Accept();
    });
  }

  void AcceptLater() {
    pause.expires_after(kPause);
    pause.async_wait([this](error_code error) {
      if (!error) Accept();
    });
  }

  asio::io_context context = asio::io_context(1);
  tcp::acceptor acceptor = tcp::acceptor(context);
  asio::signal_set signals = asio::signal_set(context, SIGINT, SIGTERM);
  asio::steady_timer pause = asio::steady_timer(context);
  asio::steady_timer timer = asio::steady_timer(context);
  asio::posix::stream_descriptor watched = asio::posix::stream_descriptor(context);
  std::shared_ptr<TShared> shared;
};

THttpServer::THttpServer(const std::string& address, unsigned short port, const THttpLimits& limits) try
    : m_state(std::make_unique<TState>(address, port, limits)) {
} catch (const boost::system::system_error& error) {
  throw TUnusable("cannot listen on " + address + ", port " + std::to_string(port) + ": " + error.code().message() +
                  "; --port N takes another port, --port 0 a free one");
}

THttpServer::~THttpServer() { Unwatch(); }

unsigned short THttpServer::GetPort() const { return m_state->acceptor.local_endpoint().port(); }

void THttpServer::WatchOnce(int descriptor, std::function<void()> ready) {
  m_state->watched.assign(descriptor);
  m_state->watched.async_wait(asio::posix::stream_descriptor::wait_read,
                              [this, ready = std::move(ready)](error_code error) {
                                if (error) return;
                                Unwatch();  // `ready` may close it
                                ready();
                              });
}

void THttpServer::Unwatch() {
  if (m_state->watched.is_open()) m_state->watched.release();
}

void THttpServer::StartTimer(std::chrono::milliseconds time, std::function<void()> done) {
  m_state->timer.expires_after(time);
  m_state->timer.async_wait([done = std::move(done)](error_code error) {
    if (!error) done();
  });
}

void THttpServer::StopTimer() { m_state->timer.cancel(); }

void THttpServer::Run(THandler handler) {
  m_state->shared->handler = std::move(handler);
  m_state->signals.async_wait([this](error_code error, int) {
    if (!error) Stop();
  });
  m_state->Accept();
  while (!m_state->context.stopped()) {
    try {
      m_state->context.run();
    } catch (const std::exception& error) {  // out of memory, for example: one connection is lost
      std::cerr << "displayinfo: " << error.what() << '\n';
    }
  }
}

void THttpServer::Stop() { m_state->context.stop(); }
