// Writes what an EDID says as texts, which a test compares as a whole.
#pragma once

#include <cstdint>
#include <sstream>
#include <string>
#include <vector>

#include "command/edid/edid_facts.h"
#include "tests/support/edid_builder.h"

inline std::string Write(const TEdidMode& mode) {
  std::ostringstream text;
  text.precision(9);
  text << mode.width << 'x' << mode.height << (mode.isInterlaced ? "i@" : "@") << mode.refresh;
  return text.str();
}

/// Such as "1920x1080i@50 vic, 4:2:0 only".
inline std::vector<std::string> WriteModes(const TEdidBuilder& builder) {
  constexpr const char* samplings[] = {"", ", 4:2:0 too", ", 4:2:0 only"};
  std::vector<std::string> texts;
  for (const TListedMode& mode : ReadEdidFacts(builder.Build()).modes) {
    texts.push_back(Write(mode) + " " + GetName(mode.source) + samplings[static_cast<std::size_t>(mode.ycbcr420)]);
  }
  return texts;
}
