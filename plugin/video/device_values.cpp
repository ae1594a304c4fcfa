// Reads what a Device section, and the monitor of its screen, give a controller and its head.
#include <algorithm>
#include <boost/lexical_cast.hpp>
#include <iterator>
#include <map>

#include "plugin/collector/array_value.h"
#include "plugin/collector/system_keys.h"
#include "plugin/video/video_info.h"

using NQRXZELT20::TCIMValue;

namespace {

// Record keys and the properties they become. Only the first row of a key counts: with the others, every BoardName
// would give a Description and an AdapterString, which no answer has had.
constexpr std::pair<const char*, const char*> kTranslation[] = {
    {"Identifier", "DeviceID"},     {"BoardName", "Name"},        {"BoardName", "Description"},
    {"BoardName", "AdapterString"}, {"VideoRam", "VideoRamSize"}, {"Chipset", "VideoProcessor"},
    {"Ramdac", "DACType"},          {"BusID", "DisplayId"},
};

constexpr unsigned int kBytesPerKilobyte = 1024;

void Assign(const SectionRecord& record, const char* key, std::string& output) {
  const auto found = record.find(key);
  if (found != record.end()) output = found->second;
}

TCIMValue MakeValue(const std::string& key, const std::string& text) {
  if (key != "VideoRam") return TCIMValue(text);
  return TCIMValue(boost::lexical_cast<unsigned int>(text) * kBytesPerKilobyte);  // wraps at 4 GiB
}

}  // namespace

void TVideoInfo::GetDeviceData(const SectionRecord& record, std::string& busId, std::string& identifier) {
  Assign(record, "BusID", busId);
  Assign(record, "Identifier", identifier);
}

int TVideoInfo::GetKeyProperties() {
  InsertSystemKeys(&m_deviceProperties, *GetCIMClass());
  return 0;
}

int TVideoInfo::GetDeviceValues(const SectionRecord& record) {
  const std::map<std::string, const char*> translation(std::begin(kTranslation), std::end(kTranslation));
  for (const auto& [key, text] : record) {
    const auto property = translation.find(key);
    if (property != translation.end()) Insert(property->second, MakeValue(key, text));
  }
  const auto identifier = record.find("Identifier");
  if (identifier == record.end()) return 1;
  if (record.count("BoardName") == 0) Insert("Name", TCIMValue(identifier->second));
  return 0;
}

void TVideoInfo::GetMonitorValues(const std::vector<SectionRecord>& monitors, const std::string& monitorIdentifier) {
  const auto isNamed = [&](const SectionRecord& record) {
    const auto identifier = record.find("Identifier");
    return identifier != record.end() && identifier->second == monitorIdentifier;
  };
  const auto monitor = std::find_if(monitors.begin(), monitors.end(), isNamed);
  if (monitor == monitors.end()) return;
  const auto model = monitor->find("ModelName");
  if (model != monitor->end()) Insert("MonitorString", GetStrArrayCimValue({model->second}));
}

TCIMValue TVideoInfo::GetStrArrayCimValue(std::vector<std::string> strings) {
  return MakeArrayValue(TCIMValue::TCIMType::kString, strings);
}
