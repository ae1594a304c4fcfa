// Maps CIM operations to HTTP (DSP0200): reads the operation in an HTTP request, and makes the HTTP response.
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
  std::string client = {};  // its address

  /// The value of the first header of that name, ignoring case; empty if there is none.
  std::string GetHeader(const std::string& name) const;
};

struct THttpAnswer {
  unsigned int status = 200;
  std::vector<std::pair<std::string, std::string>> headers;  // without Content-Length and Connection
  std::string body;
};

/// The operation in the request. Throws TRefused unless it is one simple CIM operation. Also refuses requests of web
/// pages, which have an Origin or a Host that is no loopback name: a browser would send them to any address of its own
/// machine.
TCimRequest ReadHttpRequest(const THttpRequest& request);

/// The response with the XML of an operation's answer.
THttpAnswer MakeHttpAnswer(const THttpRequest& request, std::string xml);

/// The response to a request that is refused.
THttpAnswer MakeRefusal(const TRefused& refused);

/// The name that the client uses for this server, for the object paths of the answer: from a reverse proxy's header, or
/// else from Host, or else `fallback`.
std::string GetHost(const THttpRequest& request, const std::string& fallback);
