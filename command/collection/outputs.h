// The outputs of a machine: what the command itself knows of each monitor, joined with what the plug-in answered.
#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "command/edid/edid_facts.h"
#include "command/edid/identity.h"
#include "command/machine/machine.h"

struct TRequestAnswer;

/// A mode of the answer: width in pixels, height in lines, whole Hz.
typedef std::tuple<unsigned int, unsigned int, unsigned int> TListedResolution;

struct TOutput {
  unsigned int unit = 0;                // of the video BIOS
  std::string connector;                // that the EDID was read from; empty when that is not known
  std::optional<std::string> deviceId;  // of the instance in the answer that stands for the monitor
  std::string reason;                   // why the plug-in does not list the monitor, as far as that is known
  std::optional<TEdidFacts> facts;      // nothing for an output without an EDID
  std::vector<std::uint8_t> edid;       // whole 128-byte blocks
  bool isAskedFor = true;               // a request asked for monitors
  std::string path = {};                // where the output is, such as "0000:01:00.0/DP-1"; empty when it is not known
  TIdentity identity = {};              // empty without an EDID of version 1
  std::string modesId = {};             // of the monitor, in the ids of its modes; empty when the answer has none
  std::string cure = {};                // what may give it an EDID; empty where that is not known
  /// The modes that the answer has of the monitor; nothing where resolutions were not asked for.
  std::optional<std::set<TListedResolution>> resolutions = {};
};

constexpr int kNativeSystem = 2;  // the only kind of system whose BIOS the plug-in calls

/// Why the plug-in reports no monitor, whatever the EDIDs are; empty when it may.
std::string ExplainNoMonitor(const TVirtualBiosConfiguration& bios, int systemType);

/// True when the answer has that mode of the output's monitor.
bool IsInClasses(const TOutput& output, const TEdidMode& mode);

/// True when the plug-in should have listed the monitor, or one of its modes, and a reason says why it did not.
bool IsUnlisted(const TOutput& output);

/// Why the output has no device id.
std::string GetReason(const TOutput& output);

/// A sentence that names an output that the plug-in does not report, and says why.
std::string ExplainUnlisted(const TOutput& output);

/// How an output is called: by its connector where that is known, and by its unit.
std::string GetName(const TOutput& output);

/// Every unit that has an EDID, even a damaged one, or a connector, in the order of the units. In this order each one
/// gets the first monitor of the answer that says the same of its EDID: maker, name, serial number and date.
std::vector<TOutput> JoinOutputs(const TMachine& machine, const std::vector<TRequestAnswer>& requests);
