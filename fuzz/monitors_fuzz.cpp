// Collects monitors, modes and settings from any bytes that a video BIOS may hand out as EDIDs. Plain rules check which
// units are read, how many timings each EDID declares, and that nothing is without a value.
//
// Input: EDIDs (fuzz/input.h).
#include "embedded_host/schema.h"
#include "fuzz/input.h"
#include "fuzz/instances.h"
#include "fuzz/require.h"
#include "plugin/monitor/monitor_info.h"
#include "tests/support/lrmi_double.h"
#include "tests/support/plain_monitors.h"
#include "tests/support/test_host.h"

namespace {

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
  const TPlainMonitors plain(lrmi.edids);

  const TInstances monitors = Collect(host, kDesktopMonitorClass);
  const TInstances modes = Collect(host, kMonitorResolutionClass);
  const TInstances settings = Collect(host, kMonitorSettingClass);
  Require(GetTexts(monitors, "DeviceID") == plain.GetDeviceIds(), "monitors are the units up to one that fails");
  Require(GetTexts(modes, "SettingID") == plain.GetSettingIds(), "settings are numbered, one for each timing");
  RequireReferences(settings, "Element", monitors);
  RequireReferences(settings, "Setting", modes);
  const auto calls = [&](const char* name) { return std::count(lrmi.calls.begin(), lrmi.calls.end(), name); };
  Require(calls("init") == calls("deInit"), "real mode is ended as often as it is begun");
  return 0;
}
