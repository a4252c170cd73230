// Reading of point files: the whole import with its checks against one plain pass over the same bytes
// that finds the fields and converts three numbers a line. The import shall take at most 2.5 times that.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "cli/headless.h"
#include "core/files.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/run.h"
#include "import/point_file.h"
#include "import/point_file_checks.h"

using namespace corvinade;

namespace {

constexpr int kPoints = 1'000'000;

// Lines such as "P0000001;-123.4567;12.3456;789.0123".
class PointFiles {
public:
    PointFiles() {
        folder_ = std::filesystem::temp_directory_path() / ("corvinade-bench-" + std::to_string(getpid()));
        std::filesystem::create_directories(folder_);
        for (const auto& path : {Start(), Target()}) {
            std::ofstream file(path, std::ios::binary);
            std::mt19937_64 random(path.size());
            std::string content;
            char line[128];
            for (int i = 1; i <= kPoints; ++i) {
                const auto value = [&random] {
                    return static_cast<double>(static_cast<std::int64_t>(random() % 20000000) - 10000000) /
                           1e4;
                };
                const double x = value(), y = value(), z = value();
                content.append(line, static_cast<std::size_t>(std::snprintf(
                                         line, sizeof line, "P%07d;%.4f;%.4f;%.4f\r\n", i, x, y, z)));
            }
            file << content;
        }
    }
    ~PointFiles() { std::filesystem::remove_all(folder_); }
    std::string Start() const { return folder_ / "start.txt"; }
    std::string Target() const { return folder_ / "target.txt"; }

private:
    std::filesystem::path folder_;
};
// Written when they are first asked for, deleted at the end.
const PointFiles& Files() {
    static const PointFiles files;
    return files;
}

void Begin() {
    FreshStart();
    Headless = HeadlessRecord{};
    Headless.Decimal = '.';
}

// The yardstick.
double PlainPass(const std::string& path) {
    const FileBytes bytes = ReadFile(path);
    double sum = 0;
    for (std::string_view rest = bytes.View(); !rest.empty();) {
        const std::size_t end = rest.find('\n');
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        line.remove_prefix(std::min(line.find(';') + 1, line.size()));
        for (int field = 0; field < 3; ++field) {
            double value = 0;
            const auto stop = std::from_chars(line.data(), line.data() + line.size(), value).ptr;
            sum += value;
            line.remove_prefix(std::min(static_cast<std::size_t>(stop - line.data()) + 1, line.size()));
        }
    }
    return sum;
}

void PlainPassOverTwoFiles(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(PlainPass(Files().Start()) + PlainPass(Files().Target()));
}

void EinlesenNeuOfTwoFiles(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        Begin();
        Job.PathMCS = Files().Start();
        Job.PathOCS = Files().Target();
        state.ResumeTiming();
        Einlesen_Neu();
        if (Job.Start.Count() != kPoints || Job.Target.Count() != kPoints)
            state.SkipWithError("not all points were read");
    }
}

void FileCheckAlone(benchmark::State& state) {
    Begin();
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
