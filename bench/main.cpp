// The benchmarks' entry.
#include <benchmark/benchmark.h>

#include "core/fresh_start.h"

int main(int argc, char** argv) {
    corvinade::FreshStart();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
