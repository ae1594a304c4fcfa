// Measures the text routines on a typical line of a configuration.
#include <benchmark/benchmark.h>

#include <string>

#include "plugin/xconfig/xconfig.h"

namespace {

const std::string kLine = "    Identifier \"Card0-Left\" # the left one";

template <typename TRoutine>
void Repeat(benchmark::State& state, TRoutine routine) {
  for (auto unused : state) {
    static_cast<void>(unused);
    benchmark::DoNotOptimize(routine());
  }
}

void FindComment(benchmark::State& state) {
  Repeat(state, [] { return TXConfig::CommentedCode(kLine.c_str()); });
}

void RemoveSpaces(benchmark::State& state) {
  Repeat(state, [] { return TXConfig::RemoveSpaces(kLine.c_str()); });
}

void ExtractString(benchmark::State& state) {
  Repeat(state, [] { return TXConfig::ExtractString(kLine.c_str()); });
}

void SplitAll(benchmark::State& state) {
  Repeat(state, [] { return TXConfig::MultiStringTok(kLine, " \t"); });
}

void SplitFirst(benchmark::State& state) {
  Repeat(state, [] { return TXConfig::MultiStringFirstTok(kLine, " \t"); });
}

}  // namespace

BENCHMARK(FindComment);
BENCHMARK(RemoveSpaces);
BENCHMARK(ExtractString);
BENCHMARK(SplitAll);
BENCHMARK(SplitFirst);
