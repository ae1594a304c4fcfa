// The outputs of a machine: what the command itself knows of each monitor, in addition to what the plug-in reports.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "command/edid/edid_facts.h"
#include "command/machine/damaged_edid.h"
#include "realmode/virtual_video_bios.h"

struct TOutput {
  unsigned int unit;                    // of the video BIOS
  std::string connector;                // that the EDID was read from; empty when that is not known
  std::optional<std::string> deviceId;  // under which the plug-in reports the monitor
  std::string reason;                   // why it does not; empty when it does
  std::optional<TEdidFacts> facts;      // nothing for an output without an EDID
  std::vector<std::uint8_t> edid;       // whole 128-byte blocks
};

constexpr int kNativeSystem = 2;  // the only kind of system whose BIOS the plug-in calls

/// Why the plug-in reports no monitor, whatever the EDIDs are; empty when it may.
std::string ExplainNoMonitor(const TVirtualBiosConfiguration& bios, int systemType);

/// A sentence that names an output that the plug-in does not report, and says why.
std::string ExplainUnlisted(const TOutput& output);

/// How an output is called: by its connector where that is known, and by its unit.
std::string GetName(const TOutput& output);

/// Every unit that has an EDID, even a damaged one, or a connector, in the order of the units. `connectors` and
/// `damagedEdids`: of the units, as far as they are known. `systemType`: the kind of system that the host gives the
/// plug-in.
std::vector<TOutput> MakeOutputs(const TVirtualBiosConfiguration& bios,
                                 const std::map<unsigned int, std::string>& connectors,
                                 const std::map<unsigned int, TDamagedEdid>& damagedEdids, int systemType);
