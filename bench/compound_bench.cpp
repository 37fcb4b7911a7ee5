#include <benchmark/benchmark.h>

#include "expressions/expression.h"

namespace {

using talvex::language::Expression;
using talvex::language::ExpressionDictionary;

// Cold: a fresh dictionary every iteration, so every dice text on the way is built anew.
void buildCold(benchmark::State& state, const char* text) {
    for (auto _ : state) {
        ExpressionDictionary expressions;
        auto expression = Expression::expressionWithString(text, expressions);
        benchmark::DoNotOptimize(expression);
    }
}

void BM_Compound_3d6plus2(benchmark::State& state) { buildCold(state, "3d6+2"); }
void BM_Compound_1d4d6(benchmark::State& state) { buildCold(state, "(1d4)d6"); }
void BM_Compound_Nested(benchmark::State& state) { buildCold(state, "((1d6)d6)d6"); }
void BM_Compound_Definitions(benchmark::State& state) { buildCold(state, "a=1d6;b=a+a;b*2"); }

BENCHMARK(BM_Compound_3d6plus2)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Compound_1d4d6)->Unit(benchmark::kMicrosecond);
BENCHMARK(BM_Compound_Nested)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Compound_Definitions)->Unit(benchmark::kMicrosecond);

}  // namespace
