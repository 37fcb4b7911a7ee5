#include <benchmark/benchmark.h>

#include "bench/bench_support.h"
#include "expressions/expression.h"

namespace {

using talvex::language::Expression;
using talvex::language::ExpressionDictionary;
using talvex::language::RequestContext;

using talvex::bench::buildCold;

void BM_Dice_3d6(benchmark::State& state) { buildCold(state, "3d6"); }
void BM_Dice_10d6(benchmark::State& state) { buildCold(state, "10d6"); }
void BM_Dice_100d6(benchmark::State& state) { buildCold(state, "100d6"); }

// Warm: the dictionary already holds 99d6, so only the last step is built.
void BM_Dice_100d6_Warm(benchmark::State& state) {
    ExpressionDictionary prepared;
    RequestContext preparedContext(prepared);
    static_cast<void>(Expression::expressionWithString("99d6", preparedContext));
    for (auto _ : state) {
        state.PauseTiming();
        ExpressionDictionary expressions = prepared;
        RequestContext context(expressions);
        state.ResumeTiming();
        auto expression = Expression::expressionWithString("100d6", context);
        benchmark::DoNotOptimize(expression);
        state.PauseTiming();
        expressions.clear();
        state.ResumeTiming();
    }
}

BENCHMARK(BM_Dice_3d6)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Dice_10d6)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Dice_100d6)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Dice_100d6_Warm)->Unit(benchmark::kMillisecond);

}  // namespace
