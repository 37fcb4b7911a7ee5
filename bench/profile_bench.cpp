#include <benchmark/benchmark.h>

#include <cstdint>
#include <vector>

#include "core/profile.h"

namespace talvex::core {
namespace {

Decimal add(const Decimal& a, const Decimal& b) { return a + b; }

Profile uniformProfile(int outcomes) {
    Profile profile;
    for (int face = 1; face <= outcomes; ++face) {
        profile.addQuantity(Decimal::decimalNumberWithInteger(face), Decimal::one());
    }
    return profile;
}

// One die joining a running total of 500 outcomes: the step that dominates building sums of
// many dice.
void BM_ProfileAssimilateDie(benchmark::State& state) {
    Profile die = uniformProfile(6);
    die.scaleToNormal();
    Profile total;
    for (int value = 1; value <= 500; ++value) {
        // Uneven weights, as a real sum of dice has.
        total.addQuantity(Decimal::decimalNumberWithInteger(value),
                          Decimal::decimalNumberWithInteger(1 + (value * 37) % 101));
    }
    total.scaleToNormal();
    for (auto _ : state) {
        Profile result = total;
        result.assimilateProfile(die, add);
        benchmark::DoNotOptimize(result);
    }
}
BENCHMARK(BM_ProfileAssimilateDie)->Unit(benchmark::kMicrosecond);

// A few thousand unsorted outcomes with duplicates and near-duplicates, installed at once.
void BM_ProfileCondense(benchmark::State& state) {
    const auto count = static_cast<std::int64_t>(state.range(0));
    std::vector<Evaluation> outcomes;
    outcomes.reserve(static_cast<std::size_t>(count));
    for (std::int64_t i = 0; i < count; ++i) {
        const std::int64_t scrambled = (i * 7919) % count;
        // Every value comes three times: twice exactly, once a trillionth above itself.
        const auto value = static_cast<std::uint64_t>(scrambled / 3);
        const std::uint64_t nudge = scrambled % 3 == 2 ? 1U : 0U;
        const Decimal quantity =
            Decimal::decimalNumberWithMantissa(value * 1000000000000U + nudge, -12, false);
        outcomes.emplace_back(quantity, Decimal::decimalNumberWithInteger(1 + i % 5));
    }
    for (auto _ : state) {
        Profile profile;
        profile.setEvaluations(outcomes);
        benchmark::DoNotOptimize(profile);
    }
    state.SetItemsProcessed(state.iterations() * count);
}
BENCHMARK(BM_ProfileCondense)->Arg(3000)->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace talvex::core
