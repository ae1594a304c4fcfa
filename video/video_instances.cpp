// One property map for each video head and each video controller.
#include <set>

#include "video/video_info.h"

using NQRXZELT20::TCIMValue;

/// What one reading of the configuration has found so far.
struct TVideoLists {
  std::vector<PropertyMap>* controllers;
  std::vector<PropertyMap>* heads;
  std::set<std::string> seenBusIds;
  unsigned char headNumber;  // of the next head; wraps like the property it feeds
};

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
  // Deliberate: noted before the steps that may leave this device out, so that a later one on the bus is a second head.
  const bool isFurtherHead = !busId.empty() && !lists.seenBusIds.insert(busId).second;
  if (GetKeyProperties() == 1 || GetDeviceValues(device) == 1) return;

  std::string monitorName;
  GetScreenValues(screens, identifier, monitorName);
  if (!monitorName.empty()) GetMonitorValues(monitors, monitorName);
  Insert("DisplayId", TCIMValue(identifier));

  PropertyMap head = m_deviceProperties;
  InsertProperty(&head, "CreationClassName", TCIMValue("QRXSG_VideoHead"));
  InsertProperty(&head, "HeadNumber", TCIMValue(lists.headNumber));
  Insert("OtherIdentifyingInfo", GetStrArrayCimValue({identifier}));
  lists.heads->push_back(head);
  if (!isFurtherHead) {
    PropertyMap controller = m_deviceProperties;
    InsertProperty(&controller, "CreationClassName", TCIMValue("QRXSG_VideoController"));
    lists.controllers->push_back(controller);
  }
  ++lists.headNumber;
}
