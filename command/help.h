// The pages of the help, from the table of options.
#pragma once

#include <string>

struct TPage;

/// What `displayinfo [SUBCOMMAND] --help` prints. That of the command itself fits on a screen of 24 lines.
std::string MakeHelp(const TPage& page);

/// How the command or the subcommand is called: "displayinfo compare [OPTIONS] OLD NEW". `options`: what stands for
/// them, with a blank in front; may be empty.
std::string MakeUsage(const TPage& page, const std::string& options);
