#include <benchmark/benchmark.h>

#include "bench/bench_support.h"
#include "expressions/expression.h"

namespace {

using talvex::bench::buildCold;

void BM_Keep_2d6(benchmark::State& state) { buildCold(state, "keep(2d6,4,10,1d4)"); }
void BM_Criterion_10_10_3(benchmark::State& state) { buildCold(state, "criterion(10,10,3)"); }
void BM_Confine_3d6(benchmark::State& state) { buildCold(state, "confine(3d6,5,10)"); }
void BM_Drop_4d6_Lowest(benchmark::State& state) { buildCold(state, "drop(1d6,4,1,0)"); }
void BM_Drop_10d20_3_3(benchmark::State& state) { buildCold(state, "drop(1d20,10,3,3)"); }
void BM_Drop_20d6_5_5(benchmark::State& state) { buildCold(state, "drop(1d6,20,5,5)"); }

BENCHMARK(BM_Keep_2d6)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Criterion_10_10_3)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Confine_3d6)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Drop_4d6_Lowest)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Drop_10d20_3_3)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Drop_20d6_5_5)->Unit(benchmark::kMillisecond);

}  // namespace
