// System calls that fail: some failures say what the file is, the others come from the system that asks.
#pragma once

#include <string>

/// True if the error (errno) says what a file is: missing, forbidden, or not a file. No other error says anything of
/// it, such as a disk that fails or no descriptor left: whoever asked does not know the file, and must say so.
bool DescribesFile(int error);

/// Throws TUnusable: what cannot be read, why (errno), and the cure.
[[noreturn]] void FailToRead(const std::string& place, int error);
