// Converts values to text.
#pragma once

#include <sstream>
#include <string>

/// What a stream's default formatting writes for the value; a null `const char*` gives the empty string.
template <typename T>
std::string dataToString(T value) {
  std::stringstream stream;
  stream << value;
  return stream.str();
}
