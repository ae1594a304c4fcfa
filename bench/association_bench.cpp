// How the time to make the associations grows with the instances that the host holds.
#include <benchmark/benchmark.h>

#include <string>

#include "embedded_host/schema.h"
#include "plugin/monitor/monitor_info.h"
#include "plugin/video/video_info.h"
#include "tests/support/test_host.h"

using NQRXZELT20::TCIMValue;

namespace {

void Commit(TTestHost& host, const char* className, const std::map<std::string, TCIMValue>& properties) {
  const auto instance = host.GetClass(className)->CreateInstance({});
  for (const auto& [name, value] : properties) instance->SetProperty(name, value, {});
  instance->Commit({});
}

/// Links as many monitors as the argument says, each with one mode.
void LinkMonitorsToModes(benchmark::State& state) {
  TTestHost host;
  for (std::int64_t number = 1; number <= state.range(0); ++number) {
    const std::string id = "Monitor " + std::to_string(number);
    Commit(host, kDesktopMonitorClass, {{"DeviceID", TCIMValue(id)}});
    Commit(host, kMonitorResolutionClass, {{"SettingID", TCIMValue(id + "\\ Setting 1")}});
  }
  TMonitorInfo monitor(host.GetClass(kMonitorSettingClass), TTestHost::Provider());
  for (auto unused : state) {
    static_cast<void>(unused);
    benchmark::DoNotOptimize(monitor.MakeMonitorSettingAssociation());
    host.Forget();
  }
  state.SetComplexityN(state.range(0));
}

/// Links as many controllers as the argument says, each with one head.
void LinkHeadsToControllers(benchmark::State& state) {
  TTestHost host;
  for (std::int64_t number = 0; number < state.range(0); ++number) {
    const std::map<std::string, TCIMValue> properties = {
        {"DeviceID", TCIMValue("Card" + std::to_string(number))},
        {"DisplayId", TCIMValue("PCI:" + std::to_string(number) + ":0:0")}};
    Commit(host, kVideoControllerClass, properties);
    Commit(host, kVideoHeadClass, properties);
  }
  TVideoInfo video(host.GetClass(kHeadOfVideoControllerClass), TTestHost::Provider());
  for (auto unused : state) {
    static_cast<void>(unused);
    benchmark::DoNotOptimize(video.MakeHeadAssociation());
    host.Forget();
  }
  state.SetComplexityN(state.range(0));
}

}  // namespace

BENCHMARK(LinkMonitorsToModes)->RangeMultiplier(10)->Range(1, 1000)->Complexity()->Unit(benchmark::kMicrosecond);
BENCHMARK(LinkHeadsToControllers)->RangeMultiplier(10)->Range(1, 1000)->Complexity()->Unit(benchmark::kMicrosecond);
