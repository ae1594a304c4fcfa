// One property map for each desktop monitor.
#include "host/cim_objects.h"
#include "host/exception.h"
#include "host/services.h"
#include "plugin/monitor/monitor_info.h"

using NQRXZELT20::ICIMNamespace;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TCIMSchemaHelper;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TZELTException;

std::vector<PropertyMap> TMonitorInfo::GetMonitorInfo() {
  std::vector<PropertyMap> monitors;
  WalkUnits([&](const std::string& deviceId, unsigned char* edid, unsigned int length) {
    // An EDID that does not decode ends the walk; the monitors before it stay.
    if (length == 0 || ParseMonitorEdid(edid, length) != 0) {
      m_properties.clear();
      return false;
    }
    Insert("DeviceID", TCIMValue(deviceId));
    if (GetDeviceKeyProperties() != 0) return false;
    monitors.push_back(m_properties);
    m_properties.clear();
    return true;
  });
  return monitors;
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
