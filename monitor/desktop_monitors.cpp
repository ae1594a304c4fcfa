// One property map for each desktop monitor.
#include <algorithm>

#include "host/cim_objects.h"
#include "host/exception.h"
#include "host/services.h"
#include "monitor/edid_layout.h"
#include "monitor/monitor_info.h"

using NQRXZELT20::ICIMNamespace;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TCIMSchemaHelper;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TZELTException;

std::vector<PropertyMap> TMonitorInfo::GetMonitorInfo() {
  std::vector<PropertyMap> monitors;
  edid::TBuffer accepted = {};
  for (int unit = 0; true;) {
    edid::TBuffer buffer = {};
    unsigned int length = edid::kBufferSize;
    const bool noEdid = ReadEdid(unit, buffer.data(), &length);
    // A BIOS that ignores the unit answers for the same monitor again.
    const bool isRepeat = unit > 0 && std::equal(buffer.begin(), buffer.begin() + edid::kBlockSize, accepted.begin());
    if (isRepeat || noEdid || length == 0) return monitors;
    if (ParseMonitorEdid(buffer.data(), length) != 0) {
      m_properties.clear();
      return monitors;
    }

    ++unit;
    Insert("DeviceID", TCIMValue("Monitor " + std::to_string(unit)));
    if (GetDeviceKeyProperties() != 0) return monitors;
    std::copy_n(buffer.begin(), length, accepted.begin());
    monitors.push_back(m_properties);
    m_properties.clear();
  }
}

int TMonitorInfo::GetDeviceKeyProperties() {
  const TCIMValue creationClassName("QRXSG_DesktopMonitor");
  try {
    const boost::shared_ptr<ICIMNamespace> ns = GetCIMClass()->GetNamespace(TCIMQueryContext());
    Insert("SystemCreationClassName", TCIMValue(TCIMSchemaHelper::GetSystemCreationClassName(ns)));
    Insert("SystemName", TCIMValue(TCIMSchemaHelper::GetSystemName(ns)));
    Insert("CreationClassName", creationClassName);
  } catch (const TZELTException&) {
    // What was inserted before the failure stays.
    Insert("SystemName", TCIMValue(""));
    Insert("SystemCreationClassName", TCIMValue(""));
    Insert("CreationClassName", creationClassName);
  }
  return 0;
}
