// The one error that the command explains to people, and the failures of system calls that become one.
#pragma once

#include <stdexcept>
#include <string>

#include "command/base/text_encoding.h"

/// The machine or the plug-in cannot be used: one line that names the thing and the cure. The message may hold any
/// bytes: what() is made printable and shortened, and no zero byte cuts the cure off.
class TUnusable : public std::runtime_error {
 public:
  explicit TUnusable(const std::string& message) : std::runtime_error(ToMessage(message)) {}
};

/// True if the error (errno) tells something about the file: that it is missing, forbidden, or not a file. Any other
/// error, such as a failing disk or no descriptor left, leaves it unknown, and the caller must say so.
bool DescribesFile(int error);

/// Throws TUnusable: what cannot be read, why (errno), and the cure.
[[noreturn]] void FailToRead(const std::string& place, int error);

/// Throws TUnusable unless `failure` is empty. `failure`: why a library cannot be loaded, in the loader's words.
void RequireLoaded(const std::string& failure);
