// What a monitor is known again by, on its machine and on others.
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

/// True for the same monitor, even at another input or on another machine.
inline bool SameMonitor(const TIdentity& left, const TIdentity& right) { return left.text == right.text; }

/// A monitor's EDID, whole 128-byte blocks, and what it says.
struct TIdentified {
  const TEdidFacts& facts;
  const std::vector<std::uint8_t>& edid;
};

/// The identity that the EDID gives: maker, product code, year and week, and serial number; without a serial number the
/// beginning of the EDID's SHA-256 hash.
TIdentity Identify(const TIdentified& monitor);

/// The same at a place of a machine: the connector, or the unit where none is known.
struct TPlacedMonitor {
  TIdentified monitor;
  std::string place;
};

/// The identities of a machine's monitors, in their order. Byte-equal EDIDs get the place at the end.
std::vector<TIdentity> IdentifyAll(const std::vector<TPlacedMonitor>& monitors);
