#include <benchmark/benchmark.h>

#include "bench/bench_support.h"
#include "core/decimal.h"
#include "expressions/expression.h"

namespace {

using talvex::language::Expression;
using talvex::language::ExpressionDictionary;
using talvex::language::RequestContext;

using talvex::bench::buildCold;

void BM_Dice_3d6(benchmark::State& state) { buildCold(state, "3d6"); }
void BM_Dice_10d6(benchmark::State& state) { buildCold(state, "10d6"); }
void BM_Dice_50d6(benchmark::State& state) { buildCold(state, "50d6"); }
void BM_Dice_100d6(benchmark::State& state) { buildCold(state, "100d6"); }

// A chain certain to leave the 38-digit range, refused before any of it is built.
void BM_Refuse_200d6(benchmark::State& state) {
    for (auto _ : state) {
        ExpressionDictionary expressions;
        RequestContext context(expressions);
        try {
            auto expression = Expression::expressionWithString("200d6", context);
            benchmark::DoNotOptimize(expression);
            state.SkipWithError("200d6 was calculated");
            break;
        } catch (const talvex::core::DecimalError&) {
        }
    }
}

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
BENCHMARK(BM_Dice_50d6)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Dice_100d6)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Refuse_200d6)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Dice_100d6_Warm)->Unit(benchmark::kMillisecond);

}  // namespace
