// Why a part of the answer is empty, from what the command knows of the machine: it never asks the plug-in.
#pragma once

#include <string>
#include <vector>

#include "command/collection/outputs.h"
#include "command/machine/machine.h"

/// A sentence each, without its full stop: what was looked at, what was found, and the cure where there is one.
struct TReasons {
  std::string noControllers = "no X server configuration was asked for";
  std::string noMonitors = "no EDID from unit 0 of the video BIOS";
  std::string noModes = noMonitors;
};

/// `queries`: the files that the plug-in asked for. `outputs`: of the machine. Reads the configuration again.
TReasons FindReasons(const TMachine& machine, const std::vector<TFileQuery>& queries,
                     const std::vector<TOutput>& outputs);

/// Which X server configuration files exist but could not be read, or could not even be looked for. Empty when there is
/// none, or when one was read.
std::string ExplainUnreadableFiles(const TMachine& machine, const std::vector<TFileQuery>& queries);
