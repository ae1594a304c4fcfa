// The parts of a machine that could not be used.
#pragma once

#include <string>

/// A file that could not be looked for, or that exists but could not be read.
struct TFileFailure {
  std::string path;
  std::string reason;  // such as "cannot be read: Permission denied", or "Permission denied" for a look-up
  bool isLookUp;
  std::string cure = "make it readable, or run as a user who may read it";
};

/// A damaged EDID of a captured machine. Its unit counts as one without an EDID.
struct TDamagedEdid {
  std::string place;  // file and key
  std::string fault;  // such as "has 129 bytes, which is not a multiple of 128"
  std::string cure = "capture the machine again";
};

/// The message about the damage and its consequence.
inline std::string Describe(const TDamagedEdid& damage,
                            const std::string& consequence = "its unit counts as one without an EDID") {
  return damage.place + " " + damage.fault + ", so " + consequence + "; " + damage.cure;
}
