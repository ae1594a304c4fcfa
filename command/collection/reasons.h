// Finds out why a part of the answer is empty, from what the command knows of the machine, without asking the plug-in.
#pragma once

#include <string>
#include <vector>

#include "command/collection/outputs.h"
#include "command/machine/machine.h"

/// Sentences without their full stops: what was looked at, what was found and, if there is one, the cure.
struct TReasons {
  std::string noControllers = "no X server configuration was asked for";
  std::string noMonitors = "no EDID from unit 0 of the video BIOS";
  std::string noModes = noMonitors;
};

/// `queries`: the files that the plug-in asked for. `outputs`: the machine's. Reads the configuration again.
TReasons FindReasons(const TMachine& machine, const std::vector<TFileQuery>& queries,
                     const std::vector<TOutput>& outputs);

/// Says which X server configuration files exist but could not be read, or could not even be looked for. Empty if there
/// are none, or if one was read.
std::string ExplainUnreadableFiles(const TMachine& machine, const std::vector<TFileQuery>& queries);
