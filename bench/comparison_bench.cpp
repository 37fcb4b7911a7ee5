#include <benchmark/benchmark.h>

#include "expressions/expression.h"

namespace {

using talvex::language::Expression;
using talvex::language::ExpressionDictionary;

// Cold: a fresh dictionary every iteration, so every operand is built as well.
void buildCold(benchmark::State& state, const char* text) {
    for (auto _ : state) {
        ExpressionDictionary expressions;
        auto expression = Expression::expressionWithString(text, expressions);
        benchmark::DoNotOptimize(expression);
    }
}

void BM_Versus_3d6_vs_2d10(benchmark::State& state) { buildCold(state, "3d6 vs 2d10"); }
void BM_Versus_Four_20d6(benchmark::State& state) {
    buildCold(state, "20d6 vt 20d6 vt 20d6 vt 20d6");
}
void BM_Hard_a1d20_aplusa(benchmark::State& state) { buildCold(state, "a~1d20;a+a*a"); }

BENCHMARK(BM_Versus_3d6_vs_2d10)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Versus_Four_20d6)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Hard_a1d20_aplusa)->Unit(benchmark::kMillisecond);

}  // namespace
