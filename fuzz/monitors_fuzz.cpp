// Monitors, their modes and the settings between them from any bytes that a video BIOS may hand out as EDIDs, held
// against plain rules: which units are walked, how many timings each EDID declares, and that nothing is without a
// value.
//
// Input: EDIDs (fuzz/input.h).
#include <bitset>
#include <vector>

#include "fuzz/input.h"
#include "fuzz/instances.h"
#include "fuzz/require.h"
#include "monitor/monitor_info.h"
#include "tests/support/lrmi_double.h"
#include "tests/support/test_host.h"

namespace {

typedef std::vector<std::uint8_t> TEdid;
typedef std::vector<std::string> TTexts;

bool Decodes(const TEdid& edid) {
  return std::equal(edid.begin(), edid.begin() + 8, "\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00",
                    [](std::uint8_t byte, char wanted) { return byte == static_cast<std::uint8_t>(wanted); }) &&
         edid[18] == 1;
}

std::size_t CountTimings(const TEdid& edid) {
  std::size_t count = std::bitset<16>(edid[35] * 256U + edid[36]).count();
  for (std::size_t offset = 38; offset < 54; offset += 2) count += edid[offset] > 1 ? 1 : 0;
  return count;
}

/// The EDIDs up to a unit without one, or one whose base block is that of the unit before.
std::vector<TEdid> GetWalked(const std::map<unsigned int, TEdid>& edids) {
  std::vector<TEdid> walked;
  for (const auto& [unit, edid] : edids) {
    if (edid.empty()) break;
    if (!walked.empty() && std::equal(edid.begin(), edid.begin() + 128, walked.back().begin())) break;
    walked.push_back(edid);
  }
  return walked;
}

TTexts GetDeviceIds(const std::vector<TEdid>& walked) {
  TTexts ids;
  for (const TEdid& edid : walked) {
    if (!Decodes(edid)) break;
    ids.push_back("Monitor " + std::to_string(ids.size() + 1));
  }
  return ids;
}

TTexts GetSettingIds(const std::vector<TEdid>& walked) {
  TTexts ids;
  for (std::size_t unit = 0; unit < walked.size(); ++unit) {
    const std::size_t count = Decodes(walked[unit]) ? CountTimings(walked[unit]) : 0;
    for (std::size_t setting = 1; setting <= count; ++setting) {
      ids.push_back("Monitor " + std::to_string(unit + 1) + "\\ Setting " + std::to_string(setting));
    }
  }
  return ids;
}

TInstances Collect(TTestHost& host, const char* className) {
  TMonitorInfo collector(host.GetClass(className), TTestHost::Provider());
  const std::size_t returned = collector.GetCIMInstances().size();
  TInstances committed = host.store->TakeCommits();
  Require(returned == committed.size(), "what is committed is what is returned");
  RequireValues(committed);
  return committed;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  TTestHost host;
  TLrmiDouble lrmi;
  lrmi.edids = TInput(data, size).TakeEdids();
  const std::vector<TEdid> walked = GetWalked(lrmi.edids);

  const TInstances monitors = Collect(host, "QRXSG_DesktopMonitor");
  const TInstances modes = Collect(host, "QRXSG_MonitorResolution");
  const TInstances settings = Collect(host, "QRXSG_MonitorSetting");
  Require(GetTexts(monitors, "DeviceID") == GetDeviceIds(walked), "monitors are the units up to one that fails");
  Require(GetTexts(modes, "SettingID") == GetSettingIds(walked), "settings are numbered, one for each timing");
  RequireReferences(settings, "Element", monitors);
  RequireReferences(settings, "Setting", modes);
  const auto calls = [&](const char* name) { return std::count(lrmi.calls.begin(), lrmi.calls.end(), name); };
  Require(calls("init") == calls("deInit"), "real mode is ended as often as it is begun");
  return 0;
}
