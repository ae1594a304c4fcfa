#include "plugin/monitor/monitor_info.h"

#include <utility>

#include "host/exception.h"
#include "plugin/collector/array_value.h"
#include "plugin/collector/data_to_string.h"
#include "plugin/collector/system_keys.h"
#include "realmode/lrmi.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TPluginManagerProvider;
using NQRXZELT20::TZELTException;

namespace {

/// Closes the real-mode set-up of a request, even when an exception ends the request.
class TRealModeEnd {
 public:
  explicit TRealModeEnd(const bool& isOpen) : m_isOpen(isOpen) {}
  ~TRealModeEnd() {
    if (m_isOpen) LRMI_deInit();
  }
  TRealModeEnd(const TRealModeEnd&) = delete;
  TRealModeEnd& operator=(const TRealModeEnd&) = delete;

 private:
  const bool& m_isOpen;
};

}  // namespace

// The constructors do not set m_lrmiReady: it belongs to a request, and GetCIMInstances clears it.
// cppcheck-suppress uninitMemberVar
TMonitorInfo::TMonitorInfo(boost::shared_ptr<ICIMClass> cimClass) : TDisplay(std::move(cimClass)) {}

// cppcheck-suppress uninitMemberVar
TMonitorInfo::TMonitorInfo(boost::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* provider)
    : TDisplay(std::move(cimClass), provider) {}

TMonitorInfo::~TMonitorInfo() = default;

std::vector<ICIMInstance*> TMonitorInfo::GetCIMInstances(std::string className) {
  m_lrmiReady = false;
  const TRealModeEnd end(m_lrmiReady);
  std::vector<PropertyMap> maps;
  if (className == "QRXSG_MonitorSetting") maps = MakeMonitorSettingAssociation();
  if (className == kMonitor) maps = GetMonitorInfo();
  if (className == "QRXSG_MonitorResolution") maps = GetMonitorResolution();

  std::vector<ICIMInstance*> instances;
  for (const PropertyMap& map : maps) {
    try {
      instances.push_back(GenerateCIMInstance(map, className));
    } catch (const TZELTException& exception) {
      WriteStatus("Monitor encountered an error\t\t\t\t\t\tgenerating CIM instances. Error Code: " +
                  dataToString(exception.what()));
    }
  }
  return instances;
}

std::vector<PropertyMap> TMonitorInfo::GetMonitorInfo() {
  std::vector<PropertyMap> monitors;
  WalkUnits([&](const std::string& deviceId, unsigned char* edid, unsigned int length) {
    // An EDID that cannot be decoded ends the walk; the monitors before it stay.
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
  InsertSystemKeys(&m_properties, *GetCIMClass());
  Insert("CreationClassName", TCIMValue(kMonitor));
  return 0;
}

std::string TMonitorInfo::GetDeviceId() { return m_deviceId; }

void TMonitorInfo::SetDeviceId(std::string deviceId) { m_deviceId = std::move(deviceId); }

TCIMValue TMonitorInfo::GetStrCimValue(std::vector<std::string> strings) {
  return MakeArrayValue(TCIMValue::TCIMType::kString, strings);
}

TCIMValue TMonitorInfo::GetWordCimValue(std::vector<unsigned short> words) {
  return MakeArrayValue(TCIMValue::TCIMType::kUint16, words);
}

void TMonitorInfo::Insert(const char* name, const TCIMValue& value) { InsertProperty(&m_properties, name, value); }

void TMonitorInfo::Insert(const PropertyMap& properties) {
  for (const auto& [name, value] : properties) InsertProperty(&m_properties, name, value);
}
