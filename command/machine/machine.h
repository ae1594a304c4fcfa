// A machine to collect from: how the host presents it, and the video BIOS that answers for its monitors.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "command/machine/failures.h"
#include "embedded_host/embedded_host.h"
#include "realmode/virtual_video_bios.h"

/// Where the EDIDs came from, for reports.
struct TEdidOrigin {
  std::string none = "no EDID from unit 0 of the video BIOS";  // why unit 0 has none
  /// Where the EDID of a unit was read from; empty if that is unknown.
  std::function<std::string(std::size_t unit)> describe;
};

struct TMachine {
  THostConfiguration host;
  std::shared_ptr<IVideoBios> bios;
  /// Why the BIOS could not be called. Call it after a collection; empty if the BIOS could be called or was not needed.
  std::function<std::string()> getBiosFailure = [] { return std::string(); };
  TEdidOrigin edidOrigin;
  /// The output of each unit, such as "card0-DP-1", if it is known, even if it has no EDID.
  std::map<unsigned int, std::string> connectors;
  /// Where that output is, such as "0000:01:00.0/DP-1", if that is known. This stays when the cards' numbers change.
  std::map<unsigned int, std::string> paths;
  /// The units of a captured machine whose EDIDs cannot be used.
  std::map<unsigned int, TDamagedEdid> damagedEdids;
  /// What is known of the units: all of them, or those that the plug-in asked a real BIOS for. Call it after a
  /// collection.
  std::function<TVirtualBiosConfiguration()> getUnits;
  /// The files that could not be looked for or read. Call it after a collection.
  std::function<std::vector<TFileFailure>()> getFileFailures = [] { return std::vector<TFileFailure>(); };
  std::string filesPlace;  // the folder that stands for "/"; empty for this machine and for one without a folder
  /// Why there is no X server configuration. `count`: the number of files that the plug-in looked for.
  std::function<std::string(std::size_t count)> explainNoXconfig = [](std::size_t count) {
    return "no X server configuration file exists (" + std::to_string(count) + " places tried)";
  };
  /// Where the X server's configuration comes from if it is no file of the machine; otherwise empty. Call it after a
  /// collection.
  std::function<std::string()> getXconfigOrigin = [] { return std::string(); };
  std::string xconfigCure;  // what to do if the X server's configuration gives no controller, after "; "; or empty
  /// The time of the collection, as utc_time.h writes it; empty if a capture does not give it.
  std::string collected;
  /// What the command did without, a sentence each. Call it after a collection.
  std::function<std::vector<std::string>()> getNotes = [] { return std::vector<std::string>(); };
};
