#include <benchmark/benchmark.h>

#include <sstream>

#include "cli/json_output.h"
#include "core/report.h"
#include "expressions/expression.h"

namespace {

using talvex::core::Options;
using talvex::core::Profile;

// The statistics block, the table and the diagram of 100d6, everything else at the defaults.
void BM_Report_100d6(benchmark::State& state) {
    const Profile profile = talvex::language::Expression::expressionWithString("100d6")->profile();
    const Options options = {{"statistics", "yes"}, {"table", "yes"}, {"diagram", "yes"}};
    for (auto _ : state) {
        Profile copy = profile;
        auto report = copy.attributedProfileStringWithOptions(&options, 0);
        benchmark::DoNotOptimize(report);
    }
}
BENCHMARK(BM_Report_100d6)->Unit(benchmark::kMillisecond);

// The command line's JSON line of 100d6: outcomes with weights and probabilities, statistics.
void BM_Json_100d6(benchmark::State& state) {
    const Profile profile = talvex::language::Expression::expressionWithString("100d6")->profile();
    std::ostringstream out;
    for (auto _ : state) {
        out.str({});
        talvex::cli::writeResultJson(out, "100d6", profile, nullptr, "100d6", {});
        benchmark::DoNotOptimize(out);
    }
}
BENCHMARK(BM_Json_100d6)->Unit(benchmark::kMillisecond);

}  // namespace
