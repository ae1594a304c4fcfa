// The one error that the command explains to people.
#pragma once

#include <stdexcept>

/// The machine or the plug-in cannot be used: one line that names the thing and the cure.
class TUnusable : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};
