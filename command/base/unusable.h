// The one error that the command explains to people.
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
