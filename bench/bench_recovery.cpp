// The copy of an unsaved job with 1,000,000 points: the longest time that the user waits for one of its
// slices, beside the whole look at once. Processor time of this thread.
#include <benchmark/benchmark.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <string>

#include "cli/headless.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/recovery.h"
#include "core/run.h"
#include "fit_data.h"

using namespace corvinade;

namespace {

namespace fs = std::filesystem;

double Processor_ms() {
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

void RecoverySlices(benchmark::State& state) {
    const auto points = static_cast<int>(state.range(0));
    const fs::path folder =
        fs::temp_directory_path() / ("corvinade-bench-recovery-" + std::to_string(getpid()));
    fs::create_directories(folder);
    FillJob(MakeFitData(points, 7), 7);
    Headless = HeadlessRecord{};
    Headless.SettingsDir = folder;
    Run.SettingsFilePath = folder / "Corvinade.ini";
    Run.JobFilePath = folder / "job.cvn";
    Run.JobDataValid = kTrue;
    StartRecovery();
    SaveFileAs(Run.JobFilePath);
    KeepRecoveryCopy();
    double now_s = 0, longest_ms = 0, atOnce_ms = 0;
    int slices = 0;
    for (auto _ : state) {
        Job.TraX += 1;
        JobTouched();
        now_s += 100;
        for (bool more = true; more; ++slices) {
            const double from = Processor_ms();
            more = TendRecoverySlice(now_s);
            longest_ms = std::max(longest_ms, Processor_ms() - from);
        }
        state.PauseTiming();
        Job.TraX += 1;
        JobTouched();
        const double from = Processor_ms();
        KeepRecoveryCopy();
        atOnce_ms = std::max(atOnce_ms, Processor_ms() - from);
        state.ResumeTiming();
    }
    if (!Recovery.HasCopy) state.SkipWithError("no copy was written");
    state.counters["slices"] = static_cast<double>(slices) / static_cast<double>(state.iterations());
    state.counters["ms_longest"] = longest_ms;
    state.counters["ms_at_once"] = atOnce_ms;
    EndRecovery();
    fs::remove_all(folder);
}

BENCHMARK(RecoverySlices)->Arg(1'000'000)->Arg(10'000'000)->Iterations(5)->Unit(benchmark::kMillisecond);

}  // namespace
