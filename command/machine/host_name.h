// The name of the system that the command runs on.
#pragma once

#include <string>

/// The host name. Throws TUnusable if the system does not give it.
std::string GetHostName();
