// Decodes an EDID into the properties of the current monitor: decides what is decoded in which order, and logs. What
// the bytes mean, such as that of gamma, is in edid_properties.
#include <algorithm>
#include <cstdio>

#include "edid/layout.h"
#include "plugin/monitor/edid_properties.h"
#include "plugin/monitor/monitor_info.h"

using NQRXZELT20::TCIMDateTime;
using NQRXZELT20::TCIMValue;

namespace {

constexpr unsigned short kOperationalStatusOk = 2;  // CIM's code

}  // namespace

int TMonitorInfo::ParseMonitorEdid(unsigned char* edid, unsigned int length) {
  if (CheckEdidHeader(edid, length) != 0) return 1;
  Insert(DecodeBaseBlock(edid));

  // Each look at a slot writes a line to the log, so each text walks through the slots separately, and so do the
  // limits.
  const std::string name = FindText(edid, edid::kTagName);
  InsertText("Name", name);
  InsertText("Description", name);
  InsertText("SerialNumber", FindText(edid, edid::kTagSerialNumber));
  for (const std::size_t offset : edid::kDescriptors) {
    if (GetEdidTag(edid + offset) == edid::kTagRangeLimits) GetMonitorSyncData(edid + offset);
  }

  Insert("SupportedDigitalInterface", DecodeDigitalInterface(edid, length));
  Insert("OperationalStatus", GetWordCimValue({kOperationalStatusOk}));
  Insert("StatusDescriptions", GetStrCimValue({"OK"}));
  return 0;
}

unsigned int TMonitorInfo::CheckEdidHeader(unsigned char* edid, unsigned int) {
  // The checksum is not tested on purpose: a monitor with a damaged byte is still the monitor to report.
  if (std::equal(edid::kHeader.begin(), edid::kHeader.end(), edid) && edid[edid::kVersion] == 1) return 0;
  WriteStatus("EDID structure for monitor is not valid or not supported");
  return 1;
}

void TMonitorInfo::GetManufacturerId(unsigned char* p, std::string& id) {
  const std::string letters = DecodeManufacturer(p);
  if (!letters.empty()) id = letters;
}

TCIMDateTime TMonitorInfo::GetMfgDateTime(unsigned char week, unsigned short year) {
  return DecodeManufacturingDate(week, year);
}

int TMonitorInfo::GetEdidTag(unsigned char* descriptor) {
  const int tag = DecodeTag(descriptor);
  if (tag == kDetailedTiming) return tag;
  char message[64];
  std::snprintf(message, sizeof message, "Monitor Information EDID Tag: %x ", descriptor[edid::kDescriptorTag]);
  WriteDebug(message);
  return tag;
}

void TMonitorInfo::GetMonitorString(unsigned char* descriptor, std::string& text) { text = DecodeText(descriptor); }

void TMonitorInfo::GetMonitorSyncData(unsigned char* descriptor) { Insert(DecodeRangeLimits(descriptor)); }

/// The first slot with that tag, or null.
unsigned char* TMonitorInfo::FindDescriptor(unsigned char* edid, int tag) {
  for (const std::size_t offset : edid::kDescriptors) {
    if (GetEdidTag(edid + offset) == tag) return edid + offset;
  }
  return nullptr;
}

/// The text of the first slot with that tag; empty without one.
std::string TMonitorInfo::FindText(unsigned char* edid, int tag) {
  std::string text;
  if (unsigned char* const descriptor = FindDescriptor(edid, tag)) GetMonitorString(descriptor, text);
  return text;
}

void TMonitorInfo::InsertText(const char* name, const std::string& text) {
  if (!text.empty()) Insert(name, TCIMValue(text));
}
