// Reading of point files: the whole import with its checks against one plain pass over the same bytes
// that finds the fields and converts three numbers a line. The import shall take at most 2.5 times that.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <string>

#include "core/job.h"
#include "core/run.h"
#include "import/point_file.h"
#include "import/point_file_checks.h"
#include "point_lines.h"

using namespace corvinade;

namespace {

constexpr int kPoints = 1'000'000;

// Lines such as "P0000001;-123.4567;12.3456;789.0123".
class PointFiles {
public:
    PointFiles() {
        for (const auto& path : {Start(), Target()}) {
            std::ofstream file(path, std::ios::binary);
            std::mt19937_64 random(path.size());
            std::string content;
            char line[128];
            for (int i = 1; i <= kPoints; ++i) {
                const double x = AnyCoordinate(random), y = AnyCoordinate(random), z = AnyCoordinate(random);
                content.append(line, static_cast<std::size_t>(std::snprintf(
                                         line, sizeof line, "P%07d;%.4f;%.4f;%.4f\r\n", i, x, y, z)));
            }
            file << content;
        }
    }
    std::string Start() const { return folder_.PathOf("start.txt"); }
    std::string Target() const { return folder_.PathOf("target.txt"); }

private:
    BenchFolder folder_{"bench"};
};
// Written when they are first asked for, deleted at the end.
const PointFiles& Files() {
    static const PointFiles files;
    return files;
}

void PlainPassOverTwoFiles(benchmark::State& state) {
    for (auto _ : state)
        benchmark::DoNotOptimize(PlainPass(Files().Start(), ';') + PlainPass(Files().Target(), ';'));
}

void EinlesenNeuOfTwoFiles(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        BeginWithPoint();
        Job.PathMCS = Files().Start();
        Job.PathOCS = Files().Target();
        state.ResumeTiming();
        Einlesen_Neu();
        if (Job.Start.Count() != kPoints || Job.Target.Count() != kPoints)
            state.SkipWithError("not all points were read");
    }
}

void FileCheckAlone(benchmark::State& state) {
    BeginWithPoint();
    for (auto _ : state) {
        Flag hasName = kFalse;
        ASCII_FileCheck(Files().Start(), hasName, Run.Delimiter);
    }
}

void ReadingOfTheBytesAlone(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(ReadFile(Files().Start()).Size);
}

BENCHMARK(PlainPassOverTwoFiles)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(EinlesenNeuOfTwoFiles)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(FileCheckAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadingOfTheBytesAlone)->Unit(benchmark::kMillisecond);

}  // namespace
