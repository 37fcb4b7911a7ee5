// talvex-bench runs with the process set up as the front ends set it up.

#include <benchmark/benchmark.h>

#include "app/startup.h"

int main(int argc, char** argv) {
    talvex::app::tuneMemoryAllocator();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
