// Does the work of displayinfo serve: answers CIM clients over CIM-XML, read-only, on a loopback address.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "command/machine/this_machine.h"

constexpr unsigned short kCimXmlPort = 5988;  // registered for CIM-XML over HTTP

struct TServeOptions {
  std::vector<std::string> addresses = {"127.0.0.1", "::1"};
  unsigned short port = kCimXmlPort;   // 0: a free one
  std::optional<std::string> machine;  // a captured machine; this machine if absent
  EEdidSource edidSource = EEdidSource::kAuto;
  EXconfigSource xconfigSource = EXconfigSource::kAuto;
  std::filesystem::path plugin;
  std::chrono::seconds maxAge{60};
  std::chrono::seconds timeout{60};  // for a collection
  bool logsClients = true;           // a line on standard error for each request
};

/// Serves until it is stopped. Gives up every privilege first; only the process that collects keeps them, and only for
/// this machine. Listens on the sockets that systemd passed, or else on the addresses, and writes where to standard
/// output, one line such as http://127.0.0.1:5988/root/cimv2. Throws TUnusable if it cannot listen or has no plug-in.
void Serve(const TServeOptions& options);
