#pragma once

#include <benchmark/benchmark.h>

#include "expressions/expression.h"

namespace talvex::bench {

// Builds `text` cold: a fresh dictionary every iteration, so that every sub-expression on the
// way (dice chains, operands, arguments) is built anew.
inline void buildCold(benchmark::State& state, const char* text) {
    for (auto _ : state) {
        language::ExpressionDictionary expressions;
        language::RequestContext context(expressions);
        auto expression = language::Expression::expressionWithString(text, context);
        benchmark::DoNotOptimize(expression);
    }
}

}  // namespace talvex::bench
