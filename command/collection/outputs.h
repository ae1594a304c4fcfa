// Joins what the command itself knows of each output of a machine with what the plug-in answered.
#pragma once

#include <algorithm>
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
  std::string connector;                // where the EDID was read from; empty if that is unknown
  std::optional<std::string> deviceId;  // of the monitor's instance in the answer
  std::string reason;                   // why the plug-in does not list the monitor, as far as that is known
  std::optional<TEdidFacts> facts;      // nothing for an output without an EDID
  std::vector<std::uint8_t> edid;       // whole 128-byte blocks
  bool isAskedFor = true;               // a request asked for monitors
  std::string path = {};                // where the output is, such as "0000:01:00.0/DP-1"; empty if that is unknown
  TIdentity identity = {};              // empty without an EDID of version 1
  std::string modesId = {};             // the monitor's id in the ids of its modes; empty if the answer has no modes
  std::string cure = {};                // what may give it an EDID; empty if that is unknown
  /// The monitor's modes in the answer; nothing if resolutions were not asked for.
  std::optional<std::set<TListedResolution>> resolutions = {};
};

constexpr int kNativeSystem = 2;  // the only type of system whose BIOS the plug-in calls

/// Why the plug-in cannot report any monitor, whatever the EDIDs are; empty if it can.
std::string ExplainNoMonitor(const TVirtualBiosConfiguration& bios, int systemType);

/// The mode with the highest rate; of several, the first. `modes`: at least one, such as those of a TEdidFacts.
/// `getRate`: gives the rate of a mode, as exactly as rates are to be told apart.
template <typename TModes, typename TGetRate>
const auto& FindFastest(const TModes& modes, const TGetRate& getRate) {
  return *std::max_element(modes.begin(), modes.end(),
                           [&](const auto& left, const auto& right) { return getRate(left) < getRate(right); });
}

/// True if the answer has that mode for the output's monitor.
bool IsInClasses(const TOutput& output, const TEdidMode& mode);

/// True if the plug-in should have listed the monitor, or one of its modes, and a reason says why it did not.
bool IsUnlisted(const TOutput& output);

/// Why the output has no device id.
std::string GetReason(const TOutput& output);

/// A sentence that names an output and says why the plug-in does not report it.
std::string ExplainUnlisted(const TOutput& output);

/// The name of an output: its connector, if that is known, and its unit.
std::string GetName(const TOutput& output);

/// The outputs: every unit that has an EDID (even a damaged one) or a connector, in the order of the units. In this
/// order each gets the first monitor of the answer that agrees with its EDID in maker, name, serial number and date.
std::vector<TOutput> JoinOutputs(const TMachine& machine, const std::vector<TRequestAnswer>& requests);
