// The benchmarks' entry.
#include <benchmark/benchmark.h>

BENCHMARK_MAIN();
