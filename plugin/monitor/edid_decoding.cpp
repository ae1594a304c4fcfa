// Decoding an EDID into the properties of one desktop monitor.
#include <algorithm>
#include <cstdio>
#include <ctime>

#include "edid/layout.h"
#include "plugin/monitor/monitor_info.h"

using NQRXZELT20::TCIMDateTime;
using NQRXZELT20::TCIMValue;

namespace {

constexpr unsigned char kLastWeek = 54;
constexpr unsigned char kLastUnknownYear = 3;  // years up to 1993 stand for no year given
constexpr std::time_t kSecondsPerWeek = 604800;

// The properties of a range limits descriptor that are plain bytes of it, in the order in which they are inserted.
struct TRangeLimit {
  const char* property;
  std::size_t offset;
};
constexpr TRangeLimit kRangeLimits[] = {
    {"MinHorizFreq", edid::kMinHorizFreq},
    {"MaxHorizFreq", edid::kMaxHorizFreq},
    {"MinVertFreq", edid::kMinVertFreq},
    {"MaxVertFreq", edid::kMaxVertFreq},
};

}  // namespace

int TMonitorInfo::ParseMonitorEdid(unsigned char* edid, unsigned int length) {
  if (CheckEdidHeader(edid, length) != 0) return 1;
  DecodeManufacture(edid);
  DecodeDisplayFeatures(edid);
  DecodeDescriptors(edid);
  DecodeDigitalInterface(edid, length);
  InsertStatus();
  return 0;
}

unsigned int TMonitorInfo::CheckEdidHeader(unsigned char* edid, unsigned int) {
  // The checksum is not tested on purpose: a monitor with a damaged byte is still the monitor to report.
  if (std::equal(edid::kHeader.begin(), edid::kHeader.end(), edid) && edid[edid::kVersion] == 1) return 0;
  WriteStatus("EDID structure for monitor is not valid or not supported");
  return 1;
}

void TMonitorInfo::DecodeManufacture(unsigned char* edid) {
  std::string manufacturer;
  GetManufacturerId(edid + edid::kManufacturer, manufacturer);
  InsertText("MonitorManufacturer", manufacturer);

  const double version = edid[edid::kVersion] + edid[edid::kRevision] / 10.0;
  Insert("EDIDVersion", TCIMValue(static_cast<float>(version)));

  const unsigned char week = edid[edid::kManufacturingWeek];
  const unsigned char year = edid[edid::kManufacturingYear];
  if (week < 1 || week > kLastWeek || year <= kLastUnknownYear) return;
  const TCIMDateTime date = GetMfgDateTime(week, static_cast<unsigned short>(year + edid::kFirstYear));
  if (!date.IsNull()) Insert("ManufacturingDate", TCIMValue(date));
}

void TMonitorInfo::DecodeDisplayFeatures(const unsigned char* edid) {
  const unsigned char width = edid[edid::kHorizontalImageSize];
  const unsigned char height = edid[edid::kVerticalImageSize];
  const unsigned char gamma = edid[edid::kGamma];
  const unsigned char features = edid[edid::kFeatures];
  if (width != 0) Insert("HorizontalImageSize", TCIMValue(width));
  if (height != 0) Insert("VerticalImageSize", TCIMValue(height));
  if (gamma != 0) Insert("Gamma", TCIMValue(static_cast<float>(gamma + 100) / 100.0F));
  Insert("DPMSActiveOff", TCIMValue((features & edid::kActiveOff) != 0));
  Insert("DPMSSuspend", TCIMValue((features & edid::kSuspend) != 0));
  Insert("DPMSStandby", TCIMValue((features & edid::kStandby) != 0));
}

void TMonitorInfo::DecodeDescriptors(unsigned char* edid) {
  std::string text;
  if (unsigned char* name = FindDescriptor(edid, edid::kTagName)) GetMonitorString(name, text);
  InsertText("Name", text);
  InsertText("Description", text);

  text.clear();
  if (unsigned char* serialNumber = FindDescriptor(edid, edid::kTagSerialNumber)) GetMonitorString(serialNumber, text);
  InsertText("SerialNumber", text);

  for (const std::size_t offset : edid::kDescriptors) {
    if (GetEdidTag(edid + offset) == edid::kTagRangeLimits) GetMonitorSyncData(edid + offset);
  }
}

void TMonitorInfo::DecodeDigitalInterface(const unsigned char* edid, unsigned int length) {
  if (length <= edid::kBlockSize) return;
  // The EDID's own count leads the walk, beyond what was read, but never out of the buffer.
  const std::size_t end = std::min<std::size_t>(edid[edid::kExtensionCount] + 1U, edid::kMaxBlocks);
  for (std::size_t block = 1; block < end; ++block) {
    const unsigned char* extension = edid + block * edid::kBlockSize;
    if (extension[edid::kExtensionTag] != edid::kDisplayInformationExtension) continue;
    Insert("SupportedDigitalInterface", TCIMValue(extension[edid::kDigitalInterface]));
    return;
  }
}

void TMonitorInfo::InsertStatus() {
  constexpr unsigned short ok = 2;  // CIM's OperationalStatus
  Insert("OperationalStatus", GetWordCimValue({ok}));
  Insert("StatusDescriptions", GetStrCimValue({"OK"}));
}

void TMonitorInfo::GetManufacturerId(unsigned char* p, std::string& id) {
  const unsigned int word = p[0] * 256U + p[1];
  if (word == 0) return;
  // Three letters of five bits, 1 for A. Fields beyond the letters are shown as what follows them in ASCII.
  id.clear();
  for (const unsigned int shift : {10U, 5U, 0U}) id += static_cast<char>(((word >> shift) & 31U) + 64U);
}

TCIMDateTime TMonitorInfo::GetMfgDateTime(unsigned char week, unsigned short year) {
  std::tm newYear = {};
  newYear.tm_year = year - 1900;
  newYear.tm_mday = 1;
  newYear.tm_hour = 6;  // deliberate: early enough that a daylight-saving change does not move the date
  newYear.tm_isdst = -1;
  const std::time_t start = std::mktime(&newYear);
  if (start == -1) return TCIMDateTime();

  const std::time_t moment = start + (week - 1) * kSecondsPerWeek;
  const std::tm* local = std::localtime(&moment);
  if (local == nullptr) return TCIMDateTime();
  TCIMDateTime date;
  date.Set(static_cast<unsigned short>(local->tm_year + 1900), static_cast<unsigned short>(local->tm_mon + 1),
           static_cast<unsigned int>(local->tm_mday), static_cast<unsigned short>(local->tm_hour),
           static_cast<unsigned short>(local->tm_min), static_cast<unsigned short>(local->tm_sec), 0,
           static_cast<short>(local->tm_gmtoff / 60));
  return date;
}

int TMonitorInfo::GetEdidTag(unsigned char* descriptor) {
  if (descriptor[0] != 0 || descriptor[1] != 0) return kDetailedTiming;
  char message[64];
  std::snprintf(message, sizeof message, "Monitor Information EDID Tag: %x ", descriptor[edid::kDescriptorTag]);
  WriteDebug(message);
  return descriptor[edid::kDescriptorReserved] != 0 ? -1 : descriptor[edid::kDescriptorTag];
}

void TMonitorInfo::GetMonitorString(unsigned char* descriptor, std::string& text) {
  const unsigned char* const begin = descriptor + edid::kDescriptorText;
  const unsigned char* const end = begin + edid::kDescriptorTextSize;
  const auto isEnd = [](unsigned char byte) { return byte == '\n' || byte == 0; };
  text.assign(begin, std::find_if(begin, end, isEnd));
}

void TMonitorInfo::GetMonitorSyncData(unsigned char* descriptor) {
  for (const TRangeLimit& limit : kRangeLimits) Insert(limit.property, TCIMValue(descriptor[limit.offset]));
  const unsigned char bandwidth = descriptor[edid::kBandwidth];
  if (bandwidth != edid::kNoBandwidth) Insert("Bandwidth", TCIMValue(bandwidth * 10U));
}

void TMonitorInfo::Insert(const char* name, const TCIMValue& value) { InsertProperty(&m_properties, name, value); }

void TMonitorInfo::InsertText(const char* name, const std::string& text) {
  if (!text.empty()) Insert(name, TCIMValue(text));
}

/// The first descriptor slot with that tag, or null.
unsigned char* TMonitorInfo::FindDescriptor(unsigned char* edid, int tag) {
  for (const std::size_t offset : edid::kDescriptors) {
    if (GetEdidTag(edid + offset) == tag) return edid + offset;
  }
  return nullptr;
}
