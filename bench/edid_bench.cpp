// Measures how long decoding an EDID and listing its modes take.
#include <benchmark/benchmark.h>

#include "edid/layout.h"
#include "embedded_host/schema.h"
#include "plugin/monitor/monitor_info.h"
#include "tests/support/edid_builder.h"
#include "tests/support/test_host.h"

namespace {

/// An EDID of that many blocks, in the buffer that the decoder gets. Its first block says as much as possible.
std::vector<unsigned char> MakeEdid(std::int64_t blocks) {
  TEdidBuilder builder;
  builder.Manufacturer("ACM")
      .Made(14, 2008)
      .ImageSize(38, 30)
      .Gamma(120)
      .Features(0xEA)
      .Established(0xFF, 0xFF)
      .RangeLimits(1, 56, 76, 30, 83, 14)
      .Name(2, "Acme A190")
      .Serial(3, "A190-004711");
  for (unsigned int index = 0; index < edid::kStandardTimingCount; ++index) builder.Standard(index, 0x81 + index, 0x80);
  while (--blocks > 0) builder.Extension({0x40, 0x01, 0x02});
  std::vector<unsigned char> edid = builder.Build();
  edid.resize(edid::kBufferSize);
  return edid;
}

void DecodeEdid(benchmark::State& state) {
  TTestHost host;
  const auto cimClass = host.GetClass(kDesktopMonitorClass);
  std::vector<unsigned char> edid = MakeEdid(state.range(0));
  const auto length = static_cast<unsigned int>(static_cast<std::size_t>(state.range(0)) * edid::kBlockSize);
  for (auto unused : state) {
    static_cast<void>(unused);
    TMonitorInfo monitor(cimClass, TTestHost::Provider());
    monitor.ParseMonitorEdid(edid.data(), length);
    benchmark::DoNotOptimize(monitor.GetProperties());
    host.Forget();
  }
}

void ListModes(benchmark::State& state) {
  TTestHost host;
  TMonitorInfo monitor(host.GetClass(kMonitorResolutionClass), TTestHost::Provider());
  monitor.SetDeviceId("Monitor 1");
  std::vector<unsigned char> edid = MakeEdid(1);
  for (auto unused : state) {
    static_cast<void>(unused);
    benchmark::DoNotOptimize(monitor.GetResolutionInfo(edid.data(), edid::kBlockSize));
    host.Forget();
  }
  state.counters["modes"] = static_cast<double>(monitor.GetResolutionInfo(edid.data(), edid::kBlockSize).size());
}

}  // namespace

BENCHMARK(DecodeEdid)->ArgName("blocks")->Arg(1)->Arg(3);
BENCHMARK(ListModes);
