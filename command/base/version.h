// The version of the command, set by the project's CMakeLists.txt.
#pragma once

extern const char* const kCommandVersion;
