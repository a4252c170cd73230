// The table reader: a plain file beside the told reader (at most 1.2 times its time), and a CSV with heading
// and quotes beside one plain pass over its bytes that converts three numbers a line (at most 2 times).
#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <string>

#include "core/job.h"
#include "import/point_file.h"
#include "import/table_reader.h"
#include "point_lines.h"

using namespace corvinade;

namespace {

constexpr int kPoints = 1'000'000;

// Lines such as "P0000001;-123.4567;12.3456;789.0123", and "\"P0000001\",-123.4567,12.3456,789.0123".
class TableFiles {
public:
    TableFiles() {
        std::mt19937_64 random(1);
        std::string plain, csv = "\"Name\",\"X [mm]\",\"Y [mm]\",\"Z [mm]\"\r\n";
        char line[128];
        for (int i = 1; i <= kPoints; ++i) {
            const double x = AnyCoordinate(random), y = AnyCoordinate(random), z = AnyCoordinate(random);
            std::snprintf(line, sizeof line, "P%07d;%.4f;%.4f;%.4f\r\n", i, x, y, z);
            plain += line;
            std::snprintf(line, sizeof line, "\"P%07d\",%.4f,%.4f,%.4f\r\n", i, x, y, z);
            csv += line;
        }
        std::ofstream(Plain(), std::ios::binary) << plain;
        std::ofstream(Csv(), std::ios::binary) << csv;
    }
    std::string Plain() const { return folder_.PathOf("plain.txt"); }
    std::string Csv() const { return folder_.PathOf("table.csv"); }

private:
    BenchFolder folder_{"tables"};
};
const TableFiles& Files() {
    static const TableFiles files;
    return files;
}

void Read(benchmark::State& state, const std::string& path, bool plain) {
    for (auto _ : state) {
        const FileBytes bytes = ReadFile(path);
        const TableResult table = ReadTable(bytes.View(), path, {});
        if (table.Points.Count() != kPoints || table.Plain != plain)
            state.SkipWithError("not all points were read");
    }
}

void TableOfAPlainFile(benchmark::State& state) {
    Read(state, Files().Plain(), true);
}

void ToldReaderOfAPlainFile(benchmark::State& state) {
    Files();  // written now, ahead of the time that counts
    for (auto _ : state) {
        state.PauseTiming();
        BeginWithPoint();
        state.ResumeTiming();
        Einlesen_Neu({Files().Plain(), Files().Plain(), true, {}});
        if (Job.Start.Count() != kPoints) state.SkipWithError("not all points were read");
    }
}

// The copy that the told reader makes above of its points, which is none of its reading.
void CopyOfThePoints(benchmark::State& state) {
    const FileBytes bytes = ReadFile(Files().Plain());
    const TableResult table = ReadTable(bytes.View(), "", {});
    for (auto _ : state) {
        PointSet copy = table.Points;
        benchmark::DoNotOptimize(copy.Count());
    }
}

void TableOfACsvWithHeadingAndQuotes(benchmark::State& state) {
    Read(state, Files().Csv(), false);
}

void PlainPassOverTheCsv(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(PlainPass(Files().Csv(), ','));
}

BENCHMARK(ToldReaderOfAPlainFile)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(CopyOfThePoints)->Unit(benchmark::kMillisecond);
BENCHMARK(TableOfAPlainFile)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(PlainPassOverTheCsv)->Unit(benchmark::kMillisecond)->MinTime(2);
BENCHMARK(TableOfACsvWithHeadingAndQuotes)->Unit(benchmark::kMillisecond)->MinTime(2);

}  // namespace
