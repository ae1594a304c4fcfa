// One property map for each mode that an EDID declares: its established timings, then its standard timings.
#include <iterator>

#include "edid/layout.h"
#include "plugin/monitor/monitor_info.h"

using NQRXZELT20::TCIMValue;

namespace {

struct TMode {
  unsigned int width;    // pixels
  unsigned int height;   // lines
  unsigned int refresh;  // Hz
};

// By byte, then by bit from the lowest: the order in which they are emitted.
constexpr TMode kEstablished[2][8] = {
    {{800, 600, 60},
     {800, 600, 56},
     {640, 480, 75},
     {640, 480, 72},
     {640, 480, 67},
     {640, 480, 60},
     {720, 400, 88},
     {720, 400, 70}},
    {{1280, 1024, 75},
     {1024, 768, 75},
     {1024, 768, 70},
     {1024, 768, 60},
     {1024, 768, 87},
     {832, 624, 75},
     {800, 600, 75},
     {800, 600, 72}},
};

// The codes of ScanMode. Deliberate, and the same for every mode of a monitor.
constexpr unsigned short kScanUnknown = 2;
constexpr unsigned short kScanProgressive = 4;
constexpr unsigned short kScanInterlaced = 5;

std::vector<TMode> GetEstablishedModes(const unsigned char* edid) {
  std::vector<TMode> modes;
  for (std::size_t byte = 0; byte < std::size(kEstablished); ++byte) {
    for (unsigned int bit = 0; bit < std::size(kEstablished[byte]); ++bit) {
      const bool isSet = (edid[edid::kEstablishedTimings + byte] >> bit & 1U) != 0;
      if (isSet) modes.push_back(kEstablished[byte][bit]);
    }
  }
  return modes;
}

unsigned int GetHeight(unsigned int width, unsigned int aspectCode) {
  switch (aspectCode) {
    case 0:
      return width * 5 >> 3;  // 16:10, in every revision of the EDID
    case 1:
      return width * 3 >> 2;  // 4:3
    case 2:
      return width * 4 / 5;  // 5:4
    default:
      return width * 9 >> 4;  // 16:9
  }
}

std::vector<TMode> GetStandardModes(const unsigned char* edid) {
  std::vector<TMode> modes;
  for (std::size_t index = 0; index < edid::kStandardTimingCount; ++index) {
    const unsigned char* const entry = edid + edid::kStandardTimings + 2 * index;
    if (entry[0] <= 1) continue;  // unused
    const unsigned int width = entry[0] * 8U + 248U;
    modes.push_back({width, GetHeight(width, entry[1] >> 6), (entry[1] & 63U) + 60U});
  }
  return modes;
}

}  // namespace

std::vector<PropertyMap> TMonitorInfo::GetMonitorResolution() {
  std::vector<PropertyMap> resolutions;
  WalkUnits([&](const std::string& deviceId, unsigned char* edid, unsigned int length) {
    if (length == 0) return true;
    m_properties.clear();
    SetDeviceId(deviceId);
    // An EDID that does not decode has no modes; the walk goes on all the same.
    const std::vector<PropertyMap> modes = GetResolutionInfo(edid, length);
    resolutions.insert(resolutions.end(), modes.begin(), modes.end());
    return true;
  });
  return resolutions;
}

std::vector<PropertyMap> TMonitorInfo::GetResolutionInfo(unsigned char* edid, unsigned int length) {
  if (CheckEdidHeader(edid, length) != 0) return {};
  const std::string deviceId = GetDeviceId();
  if (deviceId.empty()) {
    WriteStatus("Monitor Resolution : Could not get Device ID");
    return {};
  }
  const unsigned short scanMode = GetScanMode(edid);
  std::vector<TMode> modes = GetEstablishedModes(edid);
  const std::vector<TMode> standard = GetStandardModes(edid);
  modes.insert(modes.end(), standard.begin(), standard.end());

  std::vector<PropertyMap> maps;
  for (const TMode& mode : modes) {
    m_properties.clear();
    Insert("SettingID", TCIMValue(deviceId + "\\ Setting " + std::to_string(maps.size() + 1)));
    Insert("HorizontalResolution", TCIMValue(mode.width));
    Insert("VerticalResolution", TCIMValue(mode.height));
    Insert("RefreshRate", TCIMValue(mode.refresh));
    Insert("ScanMode", TCIMValue(scanMode));
    maps.push_back(m_properties);
  }
  return maps;
}

/// As the first detailed timing has it.
unsigned short TMonitorInfo::GetScanMode(unsigned char* edid) {
  for (const std::size_t offset : edid::kDescriptors) {
    if (GetEdidTag(edid + offset) != kDetailedTiming) continue;
    return (edid[offset + edid::kTimingFlags] & edid::kInterlaced) != 0 ? kScanInterlaced : kScanProgressive;
  }
  return kScanUnknown;
}
