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

/// What a report can say of where the EDIDs came from.
struct TEdidOrigin {
  std::string none = "no EDID from unit 0 of the video BIOS";  // why there is none of unit 0
  /// Where the EDID of a unit was read from; an empty text where that is not known.
  std::function<std::string(std::size_t unit)> describe;
};

struct TMachine {
  THostConfiguration host;
  std::shared_ptr<IVideoBios> bios;
  /// Why the BIOS could not be called, asked after a collection; empty when it could, or was not needed.
  std::function<std::string()> getBiosFailure = [] { return std::string(); };
  TEdidOrigin edidOrigin;
  /// The output that the EDID of a unit was read from, such as "card0-DP-1", where that is known. An output without an
  /// EDID is named too.
  std::map<unsigned int, std::string> connectors;
  /// Where that output is, such as "0000:01:00.0/DP-1", where that is known: it lasts when the cards' numbers change.
  std::map<unsigned int, std::string> paths;
  /// The units of a captured machine whose EDIDs cannot be used.
  std::map<unsigned int, TDamagedEdid> damagedEdids;
  /// What is known of the units, asked after a collection: all of them, or those that the plug-in asked a real BIOS
  /// for.
  std::function<TVirtualBiosConfiguration()> getUnits;
  /// Which of its files could not be looked for or read, asked after a collection.
  std::function<std::vector<TFileFailure>()> getFileFailures = [] { return std::vector<TFileFailure>(); };
  std::string filesPlace;  // the folder that stands for "/"; empty for this machine and for one without a folder
  /// Why there is no X server's configuration, of which the plug-in looked for so many files.
  std::function<std::string(std::size_t count)> explainNoXconfig = [](std::size_t count) {
    return "no X server configuration file exists (" + std::to_string(count) + " places tried)";
  };
  /// Where the X server's configuration comes from when it is no file of the machine, asked after a collection; empty
  /// when it is one, or does not exist.
  std::function<std::string()> getXconfigOrigin = [] { return std::string(); };
  std::string xconfigCure;  // what to do where its X server's configuration yields no controller, after "; "; or empty
  /// When it was collected from, as utc_time.h writes it; empty where a capture does not say.
  std::string collected;
  /// What the command did without, asked after a collection: a sentence each.
  std::function<std::vector<std::string>()> getNotes = [] { return std::vector<std::string>(); };
};
