// The identity of a monitor, by which it is recognised again on its machine and on others.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "command/edid/edid_facts.h"

struct TIdentity {
  std::string text;       // such as "DEL-A0EF-2021.14-CN0ABC"
  const char* from = "";  // "serial" (a text, or what a maker's rule makes), "number" (of the header), "edid" (its
                          // hash), or "connector" (byte-equal EDIDs of one machine, told apart by where they are)
};

/// True if both are the same monitor, even at another input or on another machine.
inline bool SameMonitor(const TIdentity& left, const TIdentity& right) { return left.text == right.text; }

/// A monitor's EDID, whole 128-byte blocks, and what it says.
struct TIdentified {
  const TEdidFacts& facts;
  const std::vector<std::uint8_t>& edid;
};

/// Makes the identity of the EDID's maker, product code, year, week and serial number. Without a serial number it has
/// the beginning of the EDID's SHA-256 hash instead.
TIdentity Identify(const TIdentified& monitor);

/// A monitor and its place in a machine: the connector, or the unit if that is unknown.
struct TPlacedMonitor {
  TIdentified monitor;
  std::string place;
};

/// The identities of a machine's monitors, in their order. Where EDIDs are equal in all bytes, the place is appended.
std::vector<TIdentity> IdentifyAll(const std::vector<TPlacedMonitor>& monitors);
