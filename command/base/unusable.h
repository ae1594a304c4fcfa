// The one error that the command explains to people, and which failures of system calls become one.
#pragma once

#include <stdexcept>
#include <string>

#include "command/base/text_encoding.h"

/// The machine or the plug-in cannot be used: one line that names the thing and the cure. The name may hold any bytes:
/// what() is printable and of a length that people read, and no zero byte cuts the cure off.
class TUnusable : public std::runtime_error {
 public:
  explicit TUnusable(const std::string& message) : std::runtime_error(ToMessage(message)) {}
};

/// True if the error (errno) says what a file is: missing, forbidden, or not a file. No other error says anything of
/// it, such as a disk that fails or no descriptor left: whoever asked does not know the file, and must say so.
bool DescribesFile(int error);

/// Throws TUnusable: what cannot be read, why (errno), and the cure.
[[noreturn]] void FailToRead(const std::string& place, int error);

/// Throws TUnusable unless `failure` is empty: what keeps a library from being loaded, in the loader's words.
void RequireLoaded(const std::string& failure);
