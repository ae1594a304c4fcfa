// Makes a property map for each mode that an EDID declares.
#include "plugin/monitor/edid_modes.h"
#include "plugin/monitor/edid_properties.h"
#include "plugin/monitor/monitor_info.h"

using NQRXZELT20::TCIMValue;

std::vector<PropertyMap> TMonitorInfo::GetMonitorResolution() {
  std::vector<PropertyMap> resolutions;
  WalkUnits([&](const std::string& deviceId, unsigned char* edid, unsigned int length) {
    if (length == 0) return true;
    m_properties.clear();
    SetDeviceId(deviceId);
    // An EDID that cannot be decoded has no modes. It does not end this walk, unlike that of GetMonitorInfo.
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
  // Only detailed timings say how they scan; the first of them counts for every mode.
  const unsigned short scanMode = DecodeScanMode(FindDescriptor(edid, kDetailedTiming));
  std::vector<PropertyMap> maps;
  for (const TMode& mode : DecodeModes(edid)) {
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
