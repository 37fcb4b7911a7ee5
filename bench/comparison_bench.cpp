#include <benchmark/benchmark.h>

#include "bench/bench_support.h"
#include "expressions/expression.h"

namespace {

using talvex::bench::buildCold;

void BM_Versus_3d6_vs_2d10(benchmark::State& state) { buildCold(state, "3d6 vs 2d10"); }
void BM_Versus_Four_20d6(benchmark::State& state) {
    buildCold(state, "20d6 vt 20d6 vt 20d6 vt 20d6");
}
void BM_Hard_a1d20_aplusa(benchmark::State& state) { buildCold(state, "a~1d20;a+a*a"); }

BENCHMARK(BM_Versus_3d6_vs_2d10)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Versus_Four_20d6)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Hard_a1d20_aplusa)->Unit(benchmark::kMillisecond);

}  // namespace
