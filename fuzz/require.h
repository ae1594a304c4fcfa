// The check that a fuzz target makes for every input.
#pragma once

#include <cstdlib>
#include <iostream>

/// Ends the process with the message `rule` if the condition does not hold. That is how libFuzzer learns of a finding.
inline void Require(bool holds, const char* rule) {
  if (holds) return;
  std::cerr << "broken rule: " << rule << std::endl;
  std::abort();
}
