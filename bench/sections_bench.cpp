// Measures how the time to read the sections of a configuration grows with their number.
#include <benchmark/benchmark.h>

#include <string>

#include "plugin/xconfig/xconfig.h"

namespace {

std::string MakeConfiguration(std::int64_t sections) {
  std::string text;
  for (std::int64_t number = 0; number < sections; ++number) {
    text += "Section \"Device\"\n  Identifier \"Card" + std::to_string(number) + "\"\nEndSection\n";
  }
  return text;
}

void ReadDeviceSections(benchmark::State& state) {
  const std::string text = MakeConfiguration(state.range(0));
  for (auto unused : state) {
    static_cast<void>(unused);
    benchmark::DoNotOptimize(TXConfig::GetDeviceSectionInfo(text));
  }
  state.SetComplexityN(state.range(0));
  state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

}  // namespace

BENCHMARK(ReadDeviceSections)->RangeMultiplier(10)->Range(10, 100000)->Complexity()->Unit(benchmark::kMillisecond);
