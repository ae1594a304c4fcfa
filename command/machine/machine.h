// A machine to collect from: how the host presents it, and the video BIOS that answers for its monitors.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>

#include "embedded_host/embedded_host.h"

class IVideoBios;

/// What a report can say of where the EDIDs came from.
struct TEdidOrigin {
  std::string none = "no EDID from unit 0 of the video BIOS.";  // why there is no monitor
  /// Where the EDID of a unit was read from; an empty text where that is not known.
  std::function<std::string(std::size_t unit)> describe;
};

struct TMachine {
  THostConfiguration host;
  std::shared_ptr<IVideoBios> bios;
  /// Why the BIOS could not be called, asked after a collection; empty when it could, or was not needed.
  std::function<std::string()> getBiosFailure;
  TEdidOrigin edidOrigin;
  /// The output that the EDID of a unit was read from, such as "card0-DP-1", where that is known.
  std::map<unsigned int, std::string> connectors;
};
