#include <benchmark/benchmark.h>

#include <vector>

#include "core/profile.h"
#include "core/report_options.h"
#include "core/styles.h"
#include "core/table.h"

namespace talvex::core {
namespace {

// A table of many more outcomes than rows: rescaling 10,000 weights, grouping them into 30 rows
// and summing each row.
void BM_TableGrouping_10000(benchmark::State& state) {
    Profile profile;
    std::vector<Evaluation> outcomes;
    for (int value = 1; value <= 10000; ++value) {
        // Uneven weights, as a real sum of dice has.
        outcomes.emplace_back(Decimal::decimalNumberWithInteger(value),
                              Decimal::decimalNumberWithInteger(1 + (value * 37) % 101));
    }
    profile.setEvaluations(outcomes);
    const Options given{{"table max height", "30"}};
    const Options options = patchOptions(&given, defaultStyles());
    for (auto _ : state) {
        StyledText table = tableWithOptions(profile, &options, defaultStyles());
        benchmark::DoNotOptimize(table);
    }
}
BENCHMARK(BM_TableGrouping_10000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace talvex::core
