#include "plugin/video/video_info.h"

#include <set>
#include <utility>

#include "host/exception.h"
#include "plugin/collector/data_to_string.h"

using NQRXZELT20::ICIMClass;
using NQRXZELT20::ICIMInstance;
using NQRXZELT20::TCIMValue;
using NQRXZELT20::TPluginManagerProvider;
using NQRXZELT20::TZELTException;

/// What a reading of the configuration has found so far.
struct TVideoLists {
  std::vector<PropertyMap>* controllers;
  std::vector<PropertyMap>* heads;
  std::set<std::string> seenBusIds;
  unsigned char headNumber;  // of the next head; wraps like the property it feeds
};

namespace {

constexpr const char* kHeadOfController = "QRXSG_HeadOfVideoController";

}  // namespace

TVideoInfo::TVideoInfo(boost::shared_ptr<ICIMClass> cimClass) : TDisplay(std::move(cimClass)) {}

TVideoInfo::TVideoInfo(boost::shared_ptr<ICIMClass> cimClass, TPluginManagerProvider* provider)
    : TDisplay(std::move(cimClass), provider) {}

std::vector<ICIMInstance*> TVideoInfo::GetCIMInstances(std::string className) {
  // Kept until the library is unloaded. If an exception ends a reading, the next request reads again, and appends to
  // what the first reading left here.
  static std::vector<PropertyMap> controllerPropertyMap;
  static std::vector<PropertyMap> headPropertyMap;
  static bool alreadyDone = false;

  if (!alreadyDone && (className == kController || className == kHead)) {
    GetVideoInfo(&controllerPropertyMap, &headPropertyMap);
    alreadyDone = true;
  }
  std::vector<ICIMInstance*> result;
  if (className == kController) GenerateVideoInstances(&result, controllerPropertyMap, className);
  if (className == kHead) GenerateVideoInstances(&result, headPropertyMap, className);
  if (className == kHeadOfController) GenerateVideoInstances(&result, MakeHeadAssociation(), className);
  return result;
}

void TVideoInfo::GenerateVideoInstances(std::vector<ICIMInstance*>* result, std::vector<PropertyMap> maps,
                                        std::string className) {
  for (const PropertyMap& map : maps) {
    try {
      result->push_back(GenerateCIMInstance(map, className));
    } catch (const TZELTException& exception) {
      WriteStatus("VideoInfo encountered an error\t\t\t\t\t\t\t\t generating CIM instances for " + className +
                  " Error Code: " + dataToString(exception.what()));
    }
  }
}

void TVideoInfo::GetVideoInfo(std::vector<PropertyMap>* controllers, std::vector<PropertyMap>* heads) {
  const std::string text = CaptureConfiguration();
  if (text.empty()) return;
  const std::vector<SectionRecord> devices = GetDeviceSectionInfo(text);
  if (devices.empty()) return;
  const std::vector<SectionRecord> screens = GetScreenSectionInfo(text);
  const std::vector<SectionRecord> monitors = GetMonitorSectionInfo(text);
  TVideoLists lists = {controllers, heads, {}, 1};
  for (const SectionRecord& device : devices) ReadDevice(device, screens, monitors, lists);
}

void TVideoInfo::ReadDevice(const SectionRecord& device, const std::vector<SectionRecord>& screens,
                            const std::vector<SectionRecord>& monitors, TVideoLists& lists) {
  m_deviceProperties.clear();
  std::string busId;
  std::string identifier;
  GetDeviceData(device, busId, identifier);
  if (identifier.empty()) return;
  // Noted before the steps that may leave this device out: after them, a later device on the bus would be its
  // controller and not one more head.
  const bool isFurtherHead = !busId.empty() && !lists.seenBusIds.insert(busId).second;
  if (GetKeyProperties() == 1 || GetDeviceValues(device) == 1) return;

  std::string monitorName;
  GetScreenValues(screens, identifier, monitorName);
  if (!monitorName.empty()) GetMonitorValues(monitors, monitorName);
  // Only for a device without a BusID: the first value of a property stays, and GetDeviceValues inserted the BusID.
  Insert("DisplayId", TCIMValue(identifier));

  PropertyMap head = m_deviceProperties;
  InsertProperty(&head, "CreationClassName", TCIMValue(kHead));
  InsertProperty(&head, "HeadNumber", TCIMValue(lists.headNumber));
  Insert("OtherIdentifyingInfo", GetStrArrayCimValue({identifier}));
  lists.heads->push_back(head);
  if (!isFurtherHead) {
    PropertyMap controller = m_deviceProperties;
    InsertProperty(&controller, "CreationClassName", TCIMValue(kController));
    lists.controllers->push_back(controller);
  }
  ++lists.headNumber;
}

void TVideoInfo::Insert(const char* name, const TCIMValue& value) { InsertProperty(&m_deviceProperties, name, value); }
