#include <benchmark/benchmark.h>

#include "bench/bench_support.h"
#include "expressions/expression.h"

namespace {

using talvex::bench::buildCold;

void BM_Compound_3d6plus2(benchmark::State& state) { buildCold(state, "3d6+2"); }
void BM_Compound_1d4d6(benchmark::State& state) { buildCold(state, "(1d4)d6"); }
void BM_Compound_Nested(benchmark::State& state) { buildCold(state, "((1d6)d6)d6"); }
void BM_Compound_Definitions(benchmark::State& state) { buildCold(state, "a=1d6;b=a+a;b*2"); }

BENCHMARK(BM_Compound_3d6plus2)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Compound_1d4d6)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Compound_Nested)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Compound_Definitions)->Unit(benchmark::kMicrosecond);

}  // namespace
