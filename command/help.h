// Makes the pages of the help from the table of options.
#pragma once

#include <string>

struct TPage;

/// What `displayinfo [SUBCOMMAND] --help` prints. The page of the command itself fits on a screen of 24 lines.
std::string MakeHelp(const TPage& page);

/// The usage of the command or subcommand: "displayinfo compare [OPTIONS] OLD NEW". `options`: the text that stands for
/// the options, with a blank before it; may be empty.
std::string MakeUsage(const TPage& page, const std::string& options);
