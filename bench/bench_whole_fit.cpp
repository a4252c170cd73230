// A whole `fit` of two plain files of a million points beside the sum of what it is made of: both files read,
// their points paired by name, the adjustment, the output written. What is above that sum is carrying points
// from hand to hand, and what is looked at for the user's sake.
#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>
#include <sstream>
#include <streambuf>
#include <string>
#include <vector>

#include "cli/commands.h"
#include "cli/fit_output.h"
#include "core/job.h"
#include "engine/norms.h"
#include "import/matching.h"
#include "import/table_reader.h"
#include "point_lines.h"
#include "timing.h"

using namespace corvinade;

namespace {

constexpr int kPoints = 1'000'000;

class FitFiles {
public:
    FitFiles() {
        std::mt19937_64 random(1);
        std::normal_distribution<double> noise(0, 0.05);
        std::ofstream start(Start(), std::ios::binary), target(Target(), std::ios::binary);
        char line[128];
        for (int i = 1; i <= kPoints; ++i) {
            const double x = AnyCoordinate(random), y = AnyCoordinate(random), z = AnyCoordinate(random);
            std::snprintf(line, sizeof line, "P%07d;%.4f;%.4f;%.4f\n", i, x, y, z);
            start << line;
            std::snprintf(line, sizeof line, "P%07d;%.4f;%.4f;%.4f\n", i,
                          0.8 * x - 0.6 * y + 10 + noise(random), 0.6 * x + 0.8 * y + 20 + noise(random),
                          z + 30 + noise(random));
            target << line;
        }
    }
    std::string Start() const { return folder_.PathOf("start.txt"); }
    std::string Target() const { return folder_.PathOf("target.txt"); }

private:
    BenchFolder folder_{"whole-fit"};
};
const FitFiles& Files() {
    static const FitFiles files;
    return files;
}

// Takes everything and keeps nothing.
class Nowhere : public std::streambuf {
    int_type overflow(int_type c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char*, std::streamsize count) override { return count; }
};

class Watch {
public:
    template <class Work>
    void Time(Work work) {
        const auto begin = std::chrono::steady_clock::now();
        work();
        times_.push_back(Milliseconds(begin));
    }
    double Middle() const { return Median(times_); }

private:
    std::vector<double> times_;
};

struct Parts {
    Watch Whole, Read, Pair, Fit, Write;
};

int RunWhole(const std::vector<const char*>& arguments) {
    Nowhere nowhere;
    std::istringstream in;
    std::ostream out(&nowhere), err(&nowhere);
    BeginWithPoint();
    return RunCommandLine(static_cast<int>(arguments.size()), arguments.data(), in, out, err, false, false);
}

void TakeParts(Parts& parts) {
    BeginWithPoint();
    std::array<TableResult, 2> tables;
    parts.Read.Time([&] {
        for (std::size_t i = 0; i < 2; ++i) {
            const std::string path = i == 0 ? Files().Start() : Files().Target();
            const FileBytes bytes = ReadFile(path);
            tables[i] = ReadTable(bytes.View(), path, {});
        }
    });
    Job.Start = std::move(tables[0].Points);
    Job.Target = std::move(tables[1].Points);
    parts.Pair.Time([] {
        MCS_OCS_aufbereiten();
        GetInfoFromData();
    });
    Job.ParamText.fill(kNotUsed);
    for (const int k : {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ})
        Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
    NormFit fit{.u = 6, .n = 3 * Job.Pairs(), .ParamText = Job.ParamText};
    fit.P = Column(static_cast<std::size_t>(fit.n) + 1, 1);
    parts.Fit.Time([&fit] { FitInNorm(fit); });
}

void WholeFit(benchmark::State& state, bool json) {
    std::vector<std::string> text = {"corvinade-cli",
                                     "fit",
                                     Files().Start(),
                                     Files().Target(),
                                     "--parameters",
                                     "6",
                                     json ? "--json" : "--quiet"};
    std::vector<const char*> arguments;
    for (const std::string& argument : text) arguments.push_back(argument.c_str());
    Parts parts;
    for (auto _ : state) {
        parts.Whole.Time([&] {
            if (RunWhole(arguments) != 0) state.SkipWithError("the fit was refused");
        });
        state.SetIterationTime(1e-3);
        // The result stands in the job still, so it can be written once more.
        Nowhere nowhere;
        std::ostream out(&nowhere);
        parts.Write.Time([&] {
            FitOptions options;
            json ? WriteFitJson(options, nullptr, {}, out) : WriteFitTable(options, nullptr, {}, out, false);
        });
        TakeParts(parts);
        if (Job.Pairs() != kPoints) state.SkipWithError("not all points are paired");
    }
    const double sum = parts.Read.Middle() + parts.Pair.Middle() + parts.Fit.Middle() + parts.Write.Middle();
    state.counters["ms"] = parts.Whole.Middle();
    state.counters["read"] = parts.Read.Middle();
    state.counters["pair"] = parts.Pair.Middle();
    state.counters["fit"] = parts.Fit.Middle();
    state.counters["write"] = parts.Write.Middle();
    state.counters["whole/parts"] = parts.Whole.Middle() / sum;
}

BENCHMARK_CAPTURE(WholeFit, table, false)->UseManualTime()->Iterations(5);
BENCHMARK_CAPTURE(WholeFit, json, true)->UseManualTime()->Iterations(3);

}  // namespace
