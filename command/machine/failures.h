// What of a machine could not be used.
#pragma once

#include <string>

/// A file that may exist and could not be looked for, or exists and could not be read.
struct TFileFailure {
  std::string path;
  std::string reason;  // such as "cannot be read: Permission denied", or of a look-up "Permission denied"
  bool isLookUp;
  std::string cure = "make it readable, or run as a user who may read it";
};

/// An EDID of a captured machine. It costs only its unit, which is then like one without an EDID.
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
