#include "command/cim_server/http_server.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include "command/base/descriptor.h"
#include "command/cim_server/listening.h"
#include "tests/support/pipe.h"

namespace {

const std::string kRequest = "POST / HTTP/1.1\r\nHost: here\r\nContent-Length: 2\r\n\r\nhi";

/// A client that connects to the server.
class TClient {
 public:
  explicit TClient(unsigned short port) : m_socket(socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    EXPECT_EQ(connect(m_socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
  }

  TClient& Send(const std::string& text) {
    send(m_socket.Get(), text.data(), text.size(), MSG_NOSIGNAL);
    return *this;
  }

  void EndSending() { shutdown(m_socket.Get(), SHUT_WR); }

  /// Everything that comes until the server closes the connection.
  std::string ReadAll() { return ReadUntil(""); }

  /// Everything that comes, up to `end`.
  std::string ReadUntil(const std::string& end) {
    std::string text;
    char byte = 0;
    while (recv(m_socket.Get(), &byte, 1, 0) == 1) {
      text += byte;
      if (!end.empty() && text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0)
        break;
    }
    return text;
  }

  /// True if something can be read within 20 ms, which may be the end.
  bool HasHeard() const {
    pollfd descriptor = {m_socket.Get(), POLLIN, 0};
    return poll(&descriptor, 1, 20) > 0;
  }

 private:
  TDescriptor m_socket;
};

/// A server on a thread of its own, which answers with the method and the body of the request.
class THttpFixture {
 public:
  explicit THttpFixture(const THttpLimits& limits = {}, THttpServer::THandler handler = Echo)
      : m_listeners(Listen({"127.0.0.1"}, 0)),
        m_port(GetPort()),
        m_server(std::move(m_listeners), limits),
        m_thread([this, handler] { m_server.Run(handler); }) {}
  ~THttpFixture() {
    m_server.Stop();
    m_thread.join();
  }

  TClient Connect() const { return TClient(m_port); }

 private:
  static void Echo(const THttpRequest& request, const THttpServer::TReply& reply) {
    reply({200, {{"Echo", request.GetHeader("Host")}}, request.method + ":" + request.body});
  }

  unsigned short GetPort() const {
    const std::string address = GetAddress(m_listeners.front());
    return static_cast<unsigned short>(std::stoi(address.substr(address.find(':') + 1)));
  }

  std::vector<TDescriptor> m_listeners;
  unsigned short m_port;
  THttpServer m_server;
  std::thread m_thread;
};

/// How long a server waits for a client, and whether a client that connected later can have been waited for.
class TPatience {
 public:
  explicit TPatience(std::chrono::milliseconds time) : m_time(time) {}

  THttpLimits GetLimits() const {
    THttpLimits limits;
    limits.time = m_time;
    return limits;
  }

  bool IsOver() const { return std::chrono::steady_clock::now() - m_begin >= m_time; }

 private:
  std::chrono::milliseconds m_time;
  std::chrono::steady_clock::time_point m_begin = std::chrono::steady_clock::now();
};

std::string GetStatus(const std::string& answer) { return answer.substr(0, answer.find("\r\n")); }

}  // namespace

TEST(HttpServer, HandsOverARequestAndItsAnswer) {
  const THttpFixture server;
  const std::string answer = server.Connect().Send(kRequest).ReadUntil("POST:hi");
  EXPECT_EQ(GetStatus(answer), "HTTP/1.1 200 OK");
  EXPECT_NE(answer.find("Echo: here\r\n"), std::string::npos);
  EXPECT_NE(answer.find("Content-Length: 7\r\n"), std::string::npos);
}

TEST(HttpServer, KeepsAConnectionForMoreRequests) {
  const THttpFixture server;
  TClient client = server.Connect();
  EXPECT_EQ(GetStatus(client.Send(kRequest).ReadUntil("POST:hi")), "HTTP/1.1 200 OK");
  EXPECT_EQ(GetStatus(client.Send(kRequest).ReadUntil("POST:hi")), "HTTP/1.1 200 OK");
}

TEST(HttpServer, ClosesAConnectionWhenAsked) {
  const THttpFixture server;
  const std::string answer =
      server.Connect().Send("POST / HTTP/1.1\r\nConnection: close\r\nContent-Length: 0\r\n\r\n").ReadAll();
  EXPECT_EQ(GetStatus(answer), "HTTP/1.1 200 OK");
}

TEST(HttpServer, LetsAClientContinueThatAsks) {
  const THttpFixture server;
  TClient client = server.Connect();
  client.Send("POST / HTTP/1.1\r\nExpect: 100-continue\r\nContent-Length: 2\r\n\r\n");
  EXPECT_EQ(GetStatus(client.ReadUntil("\r\n\r\n")), "HTTP/1.1 100 Continue");
  EXPECT_EQ(GetStatus(client.Send("hi").ReadUntil("POST:hi")), "HTTP/1.1 200 OK");
}

TEST(HttpServer, TakesABodyInPieces) {
  const THttpFixture server;
  TClient client = server.Connect();
  client.Send("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n1\r\nh\r\n1\r\ni\r\n0\r\n\r\n");
  EXPECT_EQ(GetStatus(client.ReadUntil("POST:hi")), "HTTP/1.1 200 OK");
}

TEST(HttpServer, RefusesHeadersThatAreTooLarge) {
  const THttpFixture server;
  const std::string header = "POST / HTTP/1.1\r\nA: " + std::string(64 * 1024, 'a') + "\r\n\r\n";
  EXPECT_EQ(GetStatus(server.Connect().Send(header).ReadAll()), "HTTP/1.1 431 Request Header Fields Too Large");
}

TEST(HttpServer, TakesABodyOf64KiBAndNoMore) {
  const THttpFixture server;
  const auto ask = [&](std::size_t size, const std::string& end) {
    return server.Connect()
        .Send("POST / HTTP/1.1\r\nContent-Length: " + std::to_string(size) + "\r\n\r\n" + std::string(size, 'b'))
        .ReadUntil(end);
  };
  EXPECT_EQ(GetStatus(ask(64 * 1024, std::string(64 * 1024, 'b'))), "HTTP/1.1 200 OK");
  EXPECT_EQ(GetStatus(ask(64 * 1024 + 1, "")), "HTTP/1.1 413 Payload Too Large");
}

TEST(HttpServer, RefusesABodyInPiecesThatIsTooLarge) {
  const THttpFixture server;
  const std::string piece = "8000\r\n" + std::string(0x8000, 'b') + "\r\n";
  TClient client = server.Connect();
  client.Send("POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n" + piece + piece + piece);
  EXPECT_EQ(GetStatus(client.ReadAll()), "HTTP/1.1 413 Payload Too Large");
}

TEST(HttpServer, RefusesWhatIsNotHttp) {
  const THttpFixture server;
  EXPECT_EQ(GetStatus(server.Connect().Send("\x16\x03\x01 hello\r\n\r\n").ReadAll()), "HTTP/1.1 400 Bad Request");
}

TEST(HttpServer, CutsOffARequestThatStops) {
  const TPatience patience(std::chrono::milliseconds(100));
  const THttpFixture server(patience.GetLimits());
  EXPECT_EQ(server.Connect().Send(kRequest.substr(0, 30)).ReadAll(), "");
  EXPECT_TRUE(patience.IsOver());
}

TEST(HttpServer, CutsOffARequestThatDrips) {
  const TPatience patience(std::chrono::milliseconds(200));
  const THttpFixture server(patience.GetLimits());
  TClient client = server.Connect();
  client.Send("POST / HTTP/1.1\r\nContent-Length: 60000\r\n\r\n");
  int drips = 0;  // at 20 ms each, they would take 20 minutes
  while (drips < 60000 && !client.HasHeard()) {
    client.Send("b");
    ++drips;
  }
  EXPECT_LT(drips, 59999);
  EXPECT_EQ(client.ReadAll(), "");
  EXPECT_TRUE(patience.IsOver());
}

TEST(HttpServer, CutsOffAConnectionWithoutRequests) {
  const TPatience patience(std::chrono::milliseconds(100));
  const THttpFixture server(patience.GetLimits());
  EXPECT_EQ(server.Connect().ReadAll(), "");
  EXPECT_TRUE(patience.IsOver());
}

TEST(HttpServer, TellsTheConnectionThatIsTooMany) {
  THttpLimits limits;
  limits.connections = 2;
  const THttpFixture server(limits);
  TClient first = server.Connect();
  EXPECT_EQ(GetStatus(first.Send(kRequest).ReadUntil("POST:hi")), "HTTP/1.1 200 OK");
  {
    TClient second = server.Connect();
    EXPECT_EQ(GetStatus(second.Send(kRequest).ReadUntil("POST:hi")), "HTTP/1.1 200 OK");
    EXPECT_EQ(GetStatus(server.Connect().Send(kRequest).ReadAll()), "HTTP/1.1 503 Service Unavailable");
  }
  EXPECT_EQ(GetStatus(first.Send(kRequest).ReadUntil("POST:hi")), "HTTP/1.1 200 OK");
}

TEST(HttpServer, OutlivesAHandlerThatFails) {
  const THttpFixture server({}, [](const THttpRequest& request, const THttpServer::TReply& reply) {
    if (request.body == "hi") throw std::bad_alloc();
    reply({});
  });
  EXPECT_EQ(server.Connect().Send(kRequest).ReadAll(), "");
  const std::string other = "POST / HTTP/1.1\r\nContent-Length: 0\r\n\r\n";
  EXPECT_EQ(GetStatus(server.Connect().Send(other).ReadUntil("\r\n\r\n")), "HTTP/1.1 200 OK");
}

TEST(HttpServer, OutlivesClientsThatGoAway) {
  const THttpFixture server;
  for (std::size_t size = 0; size < kRequest.size(); size += 7) server.Connect().Send(kRequest.substr(0, size));
  EXPECT_EQ(GetStatus(server.Connect().Send(kRequest).ReadUntil("POST:hi")), "HTTP/1.1 200 OK");
}

TEST(HttpServer, BoundsWhatAChunkOrATrailerBringsBesideTheBody) {
  const THttpFixture server;
  const std::string head = "POST / HTTP/1.1\r\nTransfer-Encoding: chunked\r\n\r\n";
  const std::string much(1000000, 'e');
  for (const std::string& beside : {"1;" + much, "1;e=\"" + much, "0\r\nTrailer: " + much}) {
    EXPECT_EQ(GetStatus(server.Connect().Send(head + beside).ReadAll()), "HTTP/1.1 431 Request Header Fields Too Large")
        << beside.substr(0, 10);
  }
  TClient client = server.Connect();
  client.Send(head + "1;a=b\r\nh\r\n1\r\ni\r\n0\r\nTrailer: c\r\n\r\n");
  EXPECT_EQ(GetStatus(client.ReadUntil("POST:hi")), "HTTP/1.1 200 OK");
}

TEST(HttpServer, GivesThePlacesOfClientsThatLeftToOthers) {
  THttpLimits limits;
  limits.connections = 2;
  std::vector<THttpServer::TReply> replies;
  std::atomic<std::size_t> count = 0;
  const THttpFixture server(limits, [&](const THttpRequest& request, const THttpServer::TReply& reply) {
    if (request.body == "hi") {
      replies.push_back(reply);
      ++count;
    } else {
      reply({200, {}, std::to_string(std::count_if(replies.begin(), replies.end(), [](const THttpServer::TReply& one) {
               return one.IsWanted();
             }))});
    }
  });
  for (std::size_t client = 1; client <= 2; ++client) {
    TClient left = server.Connect();
    left.Send(kRequest);
    while (count < client) std::this_thread::yield();
  }
  EXPECT_EQ(server.Connect().Send("POST / HTTP/1.1\r\nConnection: close\r\nContent-Length: 0\r\n\r\n").ReadAll().back(),
            '0');
}

TEST(HttpServer, AnswersAClientThatOnlyListensWhenNobodyNeedsItsPlace) {
  const THttpFixture server;
  TClient client = server.Connect();
  client.Send(kRequest).EndSending();
  EXPECT_EQ(GetStatus(client.ReadAll()), "HTTP/1.1 200 OK");
}

TEST(HttpServer, WatchesADescriptorAndATimer) {
  THttpServer server(Listen({"127.0.0.1"}, 0));
  const TPipe ends;
  std::string heard;
  THttpServer::TTimer timer;
  THttpServer::TTimer destroyed = server.StartTimer(std::chrono::milliseconds(0), [&] { heard += "destroyed"; });
  destroyed.reset();
  server.WatchOnce(ends.reading.Get(), [&] {
    heard += "readable ";
    timer = server.StartTimer(std::chrono::milliseconds(0), [&] {
      heard += "timer";
      server.Stop();
    });
  });
  ASSERT_EQ(write(ends.writing.Get(), "a", 1), 1);
  server.Run([](const THttpRequest&, const THttpServer::TReply&) {});
  EXPECT_EQ(heard, "readable timer");
}

TEST(HttpServer, CallsWheneverThereIsSomethingToRead) {
  THttpServer server(Listen({"127.0.0.1"}, 0));
  const TPipe ends;
  std::string heard;
  server.Watch(ends.reading.Get(), [&] {
    char byte = 0;
    ASSERT_EQ(read(ends.reading.Get(), &byte, 1), 1);
    heard += byte;
    if (heard == "ab") server.Stop();
  });
  ASSERT_EQ(write(ends.writing.Get(), "ab", 2), 2);
  server.Run([](const THttpRequest&, const THttpServer::TReply&) {});
  EXPECT_EQ(heard, "ab");
}
