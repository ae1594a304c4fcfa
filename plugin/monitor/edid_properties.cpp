#include "plugin/monitor/edid_properties.h"

#include <algorithm>
#include <ctime>

#include "edid/layout.h"

using NQRXZELT20::TCIMDateTime;
using NQRXZELT20::TCIMValue;

namespace {

constexpr unsigned char kLastWeek = 54;
constexpr unsigned char kLastUnknownYear = 3;  // years up to 1993 mean that no year is given
constexpr std::time_t kSecondsPerWeek = 604800;

TCIMValue ToManufacturer(const unsigned char* bytes) {
  const std::string letters = DecodeManufacturer(bytes);
  return letters.empty() ? TCIMValue() : TCIMValue(letters);
}

TCIMValue ToVersion(const unsigned char* bytes) {
  const double version = bytes[0] + bytes[edid::kRevision - edid::kVersion] / 10.0;
  return TCIMValue(static_cast<float>(version));
}

TCIMValue ToDate(const unsigned char* bytes) {
  const unsigned char week = bytes[0];
  const unsigned char year = bytes[edid::kManufacturingYear - edid::kManufacturingWeek];
  if (week < 1 || week > kLastWeek || year <= kLastUnknownYear) return TCIMValue();
  const TCIMDateTime date = DecodeManufacturingDate(week, static_cast<unsigned short>(year + edid::kFirstYear));
  return date.IsNull() ? TCIMValue() : TCIMValue(date);
}

TCIMValue ToByte(const unsigned char* byte) { return TCIMValue(*byte); }

TCIMValue ToByteUnlessZero(const unsigned char* byte) { return *byte == 0 ? TCIMValue() : TCIMValue(*byte); }

TCIMValue ToGamma(const unsigned char* byte) {
  return *byte == 0 ? TCIMValue() : TCIMValue(static_cast<float>(*byte + 100) / 100.0F);
}

template <unsigned char bit>
TCIMValue ToFlag(const unsigned char* byte) {
  return TCIMValue((*byte & bit) != 0);
}

TCIMValue ToBandwidth(const unsigned char* byte) {
  return *byte == edid::kNoBandwidth ? TCIMValue() : TCIMValue(*byte * 10U);  // MHz
}

/// A property, the offset of its bytes, and the function that makes a value of them.
struct TRow {
  const char* property;
  std::size_t offset;
  TCIMValue (*convert)(const unsigned char* bytes);
};

constexpr TRow kBaseBlock[] = {
    {"MonitorManufacturer", edid::kManufacturer, ToManufacturer},
    {"EDIDVersion", edid::kVersion, ToVersion},
    {"ManufacturingDate", edid::kManufacturingWeek, ToDate},
    {"HorizontalImageSize", edid::kHorizontalImageSize, ToByteUnlessZero},
    {"VerticalImageSize", edid::kVerticalImageSize, ToByteUnlessZero},
    {"Gamma", edid::kGamma, ToGamma},
    {"DPMSActiveOff", edid::kFeatures, ToFlag<edid::kActiveOff>},
    {"DPMSSuspend", edid::kFeatures, ToFlag<edid::kSuspend>},
    {"DPMSStandby", edid::kFeatures, ToFlag<edid::kStandby>},
};

constexpr TRow kRangeLimits[] = {
    {"MinHorizFreq", edid::kMinHorizFreq, ToByte}, {"MaxHorizFreq", edid::kMaxHorizFreq, ToByte},
    {"MinVertFreq", edid::kMinVertFreq, ToByte},   {"MaxVertFreq", edid::kMaxVertFreq, ToByte},
    {"Bandwidth", edid::kBandwidth, ToBandwidth},
};

template <std::size_t count>
PropertyMap Decode(const TRow (&rows)[count], const unsigned char* bytes) {
  PropertyMap properties;
  for (const TRow& row : rows) InsertProperty(&properties, row.property, row.convert(bytes + row.offset));
  return properties;
}

}  // namespace

PropertyMap DecodeBaseBlock(const unsigned char* edid) { return Decode(kBaseBlock, edid); }

PropertyMap DecodeRangeLimits(const unsigned char* descriptor) { return Decode(kRangeLimits, descriptor); }

std::string DecodeManufacturer(const unsigned char* bytes) {
  const unsigned int word = bytes[0] * 256U + bytes[1];
  std::string letters;
  if (word == 0) return letters;
  // Three letters of five bits, 1 for A. Fields beyond the letters are shown as what follows them in ASCII.
  for (const unsigned int shift : {10U, 5U, 0U}) letters += static_cast<char>(((word >> shift) & 31U) + 64U);
  return letters;
}

TCIMDateTime DecodeManufacturingDate(unsigned char week, unsigned short year) {
  std::tm newYear = {};
  newYear.tm_year = year - 1900;
  newYear.tm_mday = 1;
  newYear.tm_hour = 6;  // not midnight, since the hour of daylight saving would then move the date
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

int DecodeTag(const unsigned char* descriptor) {
  if (descriptor[0] != 0 || descriptor[1] != 0) return kDetailedTiming;
  return descriptor[edid::kDescriptorReserved] != 0 ? kReservedTag : descriptor[edid::kDescriptorTag];
}

std::string DecodeText(const unsigned char* descriptor) {
  const unsigned char* const begin = descriptor + edid::kDescriptorText;
  const unsigned char* const end = begin + edid::kDescriptorTextSize;
  return std::string(begin, std::find_if(begin, end, [](unsigned char byte) { return byte == '\n' || byte == 0; }));
}

TCIMValue DecodeDigitalInterface(const unsigned char* edid, unsigned int length) {
  if (length <= edid::kBlockSize) return TCIMValue();
  // The EDID's own count decides how far to look: beyond what was read, but never beyond the buffer.
  const std::size_t end = std::min<std::size_t>(edid[edid::kExtensionCount] + 1U, edid::kMaxBlocks);
  for (std::size_t block = 1; block < end; ++block) {
    const unsigned char* const extension = edid + block * edid::kBlockSize;
    if (extension[edid::kExtensionTag] != edid::kDisplayInformationExtension) continue;
    return TCIMValue(extension[edid::kDigitalInterface]);
  }
  return TCIMValue();
}
