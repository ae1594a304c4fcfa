// CIM operations over HTTP (DSP0200): takes the operation out of an HTTP request, and makes the HTTP response.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "command/cim_server/cim_request.h"

struct THttpRequest {
  std::string method;
  std::vector<std::pair<std::string, std::string>> headers;
  std::string body;
  std::string client = "";  // its address

  /// The value of the first header of that name, without regard to case; empty when there is none.
  std::string GetHeader(const std::string& name) const;
};

struct THttpAnswer {
  unsigned int status = 200;
  std::vector<std::pair<std::string, std::string>> headers;  // without Content-Length and Connection
  std::string body;
};

/// The operation that the request carries. Throws TRefused for what is not one simple CIM operation, and for the
/// requests of web pages, by Origin or by a Host that is no loopback name: a browser would send them to any address of
/// its own machine.
TCimRequest ReadHttpRequest(const THttpRequest& request);

/// The answer that holds the XML of an operation's answer.
THttpAnswer MakeHttpAnswer(const THttpRequest& request, std::string xml);

/// The answer to a request that is refused.
THttpAnswer MakeRefusal(const TRefused& refused);

/// What the client calls this server, for the object paths of the answer: as a reverse proxy says, else by Host;
/// `fallback` when neither says.
std::string GetHost(const THttpRequest& request, const std::string& fallback);
