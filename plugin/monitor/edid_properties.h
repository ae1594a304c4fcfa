// Decodes an EDID into values for the properties of a desktop monitor: bytes in, values out. Nothing here logs or keeps
// anything; TMonitorInfo decides what is decoded, in which order, and logs.
//
// A pointer to an EDID points to a buffer of edid::kBufferSize bytes that begins with a base block of version 1. A
// pointer to a descriptor points to the first of the 18 bytes of its slot. A null value means that the bytes do not
// give the property.
#pragma once

#include <string>

#include "host/cim_value.h"
#include "plugin/collector/property_map.h"

/// What DecodeTag and TMonitorInfo::GetEdidTag return for a slot without a tag.
constexpr int kReservedTag = -1;     // a reserved byte is not 0
constexpr int kDetailedTiming = -2;  // the slot holds a detailed timing

/// The properties from fixed places of the base block: maker, version, date, picture size, gamma and power states.
PropertyMap DecodeBaseBlock(const unsigned char* edid);

/// The three letters in the two bytes of a manufacturer; empty if both are 0.
std::string DecodeManufacturer(const unsigned char* bytes);

/// The day on which that week begins, counted from 1 January, at 06:00 local time, moved by a daylight-saving change
/// that lies between 1 January and that day (07:00 in a northern summer, 05:00 in a southern winter). A null datetime
/// where the C library cannot tell. `week` counts from 1; `year` is the calendar year.
NQRXZELT20::TCIMDateTime DecodeManufacturingDate(unsigned char week, unsigned short year);

/// The tag of a descriptor, 0 to 255; else kReservedTag or kDetailedTiming.
int DecodeTag(const unsigned char* descriptor);

/// The text of a descriptor: at most 13 bytes, up to a line feed or a zero byte, trailing blanks included.
std::string DecodeText(const unsigned char* descriptor);

/// The properties of a descriptor of range limits.
PropertyMap DecodeRangeLimits(const unsigned char* descriptor);

/// The digital interface that the first display information extension names; null without one. `length`: how many bytes
/// were read; no extension is looked for in 128.
NQRXZELT20::TCIMValue DecodeDigitalInterface(const unsigned char* edid, unsigned int length);
