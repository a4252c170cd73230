// Opening and saving of a job with 1,000,000 points, beside copying a file of that size. Both shall take at
// most 4 times as long as the copy. Two copies are measured: one by the program's own reader and writer (read
// whole, written beside, flushed to disk, renamed), which is what a safe copy takes, and one as a file
// manager makes it (std::filesystem::copy_file, nothing flushed), which is the stricter yardstick: the
// counters "own/plain" hold against it, "own/copy" against the safe one.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <chrono>
#include <filesystem>
#include <string>
#include <vector>

#include "cli/headless.h"
#include "core/files.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/run.h"
#include "fit_data.h"
#include "timing.h"

using namespace corvinade;

namespace {

namespace fs = std::filesystem;

constexpr int kPoints = 1'000'000;

// A job and a copy of it in a folder that is gone at the end.
class JobFolder {
public:
    JobFolder() : folder_(fs::temp_directory_path() / ("corvinade-bench-job-" + std::to_string(getpid()))) {
        fs::create_directories(folder_);
        FillJob(MakeFitData(kPoints, 7), 7);
        Headless = HeadlessRecord{};
        Headless.SettingsDir = folder_;
        SaveFileAs(JobPath());
    }
    ~JobFolder() { fs::remove_all(folder_); }
    JobFolder(const JobFolder&) = delete;
    JobFolder& operator=(const JobFolder&) = delete;
    std::string JobPath() const { return folder_ / "job.cvn"; }
    std::string Copy() const { return folder_ / "copy.cvn"; }

private:
    fs::path folder_;
};

template <class Work>
double TimeOf(Work work) {
    const auto begin = std::chrono::steady_clock::now();
    work();
    return Milliseconds(begin);
}

// One after the other in each round, so that a busy disk meets all three.
template <class Work>
void BesideCopies(benchmark::State& state, const JobFolder& folder, Work work) {
    std::vector<double> own, copy, plain;
    for (auto _ : state) {
        copy.push_back(TimeOf([&] { WriteFile(folder.Copy(), ReadFile(folder.JobPath()).View()); }));
        fs::remove(folder.Copy());
        plain.push_back(TimeOf([&] { fs::copy_file(folder.JobPath(), folder.Copy()); }));
        fs::remove(folder.Copy());
        own.push_back(TimeOf(work));
        state.SetIterationTime(own.back() / 1000);
    }
    state.counters["MB"] = static_cast<double>(fs::file_size(folder.JobPath())) / 1e6;
    state.counters["ms_copy"] = Median(copy);
    state.counters["ms_plain"] = Median(plain);
    state.counters["own/copy"] = Median(own) / Median(copy);
    state.counters["own/plain"] = Median(own) / Median(plain);
}

void JobFileOpen(benchmark::State& state) {
    const JobFolder folder;
    BesideCopies(state, folder, [&] { OpenFile(folder.JobPath()); });
    if (Job.Pairs() != kPoints) state.SkipWithError("not all points were read");
}

void JobFileSave(benchmark::State& state) {
    const JobFolder folder;
    BesideCopies(state, folder, [&] { SaveFileAs(folder.JobPath()); });
}

// Without the disk.
void JobFileBytesToJob(benchmark::State& state) {
    const JobFolder folder;
    const FileBytes bytes = ReadFile(folder.JobPath());
    for (auto _ : state) benchmark::DoNotOptimize(ReadJobBytes(bytes.View(), "job").Job.Start.Count());
}
void JobFileJobToBytes(benchmark::State& state) {
    const JobFolder folder;
    for (auto _ : state) benchmark::DoNotOptimize(JobBytes(Job, {}).size());
}

BENCHMARK(JobFileOpen)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);
BENCHMARK(JobFileSave)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(9);
BENCHMARK(JobFileBytesToJob)->Unit(benchmark::kMillisecond);
BENCHMARK(JobFileJobToBytes)->Unit(benchmark::kMillisecond);

}  // namespace
