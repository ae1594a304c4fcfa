// The version of the command, which CMakeLists.txt of the project sets.
#pragma once

extern const char* const kCommandVersion;
