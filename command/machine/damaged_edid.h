// An EDID of a captured machine that cannot be used.
#pragma once

#include <string>

/// It costs the machine this unit only: the unit is like one without an EDID.
struct TDamagedEdid {
  std::string place;  // file and key
  std::string fault;  // such as "has 129 bytes, which is not a multiple of 128"
  std::string cure = "capture the machine again";
};

/// The line that people are told, with what follows from the damage.
inline std::string Describe(const TDamagedEdid& damage,
                            const std::string& consequence = "its unit counts as one without an EDID") {
  return damage.place + " " + damage.fault + ", so " + consequence + "; " + damage.cure;
}
