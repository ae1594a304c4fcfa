// What a fuzz target holds to be true of every input.
#pragma once

#include <cstdlib>
#include <iostream>

/// Ends the process, which is how libFuzzer learns of a finding, with `rule` when it does not hold.
inline void Require(bool holds, const char* rule) {
  if (holds) return;
  std::cerr << "broken rule: " << rule << std::endl;
  std::abort();
}
