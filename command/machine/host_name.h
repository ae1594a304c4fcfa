// The name of the system that the command runs on.
#pragma once

#include <string>

/// The host name, or the empty string when the system has none to give.
std::string GetHostName();
