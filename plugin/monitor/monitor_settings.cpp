// Links each monitor to its modes.
#include "host/exception.h"
#include "plugin/collector/association.h"
#include "plugin/collector/data_to_string.h"
#include "plugin/monitor/monitor_info.h"

using NQRXZELT20::ICIMInstance;
using NQRXZELT20::ICIMNamespace;
using NQRXZELT20::TCIMQueryContext;
using NQRXZELT20::TZELTException;

namespace {

constexpr const char* kResolution = "QRXSG_MonitorResolution";

bool BeginsWith(const std::string& text, const std::string& beginning) {
  return text.compare(0, beginning.size(), beginning) == 0;
}

/// Appends a pair for each monitor with whose device id the mode's setting id begins.
void Link(ICIMInstance& mode, const TInstanceList& monitors, const TInstanceList& modes,
          std::vector<PropertyMap>& pairs) {
  const std::string settingId = GetPropertyText(mode, "SettingID");
  for (std::size_t position = 0; position < monitors.size(); ++position) {
    const bool isMatch = BeginsWith(settingId, GetPropertyText(*monitors[position], "DeviceID"));
    if (!isMatch || position >= modes.size()) continue;
    PropertyMap pair;
    InsertProperty(&pair, "Element", GetPathValue(*monitors[position]));
    // The mode at the monitor's own position, not the one that matched: that one would change the answer for every
    // monitor with several modes.
    InsertProperty(&pair, "Setting", GetPathValue(*modes[position]));
    pairs.push_back(pair);
  }
}

}  // namespace

std::vector<PropertyMap> TMonitorInfo::MakeMonitorSettingAssociation() {
  std::vector<PropertyMap> pairs;
  try {
    const boost::shared_ptr<ICIMNamespace> ns = GetCIMClass()->GetNamespace(TCIMQueryContext());
    const TInstanceList monitors = EnumerateInstances(*ns, kMonitor);
    const TInstanceList modes = EnumerateInstances(*ns, kResolution);
    if (monitors.empty()) return pairs;
    for (const auto& mode : modes) Link(*mode, monitors, modes, pairs);
  } catch (const TZELTException& exception) {
    WriteStatus(std::string("Monitor association encountered an error\t\t\t\t\tenumerating CIM instances for ") +
                kMonitor + " OR " + kResolution + " Error Code: " + dataToString(exception.what()));
  }
  return pairs;
}
