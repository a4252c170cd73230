// Clouds: a binary one of 10,000,000 points carried through a transformation, against copying its file in
// pieces as large; and a text of 1,000,000 points that keeps its form, against the batch that writes name, X,
// Y, Z of the same file.
#include <benchmark/benchmark.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "analysis/batch_file.h"
#include "cli/headless.h"
#include "cli/transform_cloud.h"
#include "core/file_source.h"
#include "core/file_writer.h"
#include "core/fresh_start.h"
#include "core/run.h"
#include "timing.h"

using namespace corvinade;

namespace {

constexpr int kVertices = 10'000'000, kLines = 1'000'000;

class CloudFiles {
public:
    CloudFiles()
        : folder_(std::filesystem::temp_directory_path() /
                  ("corvinade-bench-cloud-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(folder_);
        std::mt19937 random(5);
        const auto value = [&random] { return static_cast<float>(random() % 10000000) / 1e3F; };
        std::ofstream ply(Path("in.ply"), std::ios::binary);
        ply << "ply\nformat binary_little_endian 1.0\nelement vertex " << kVertices
            << "\nproperty float x\nproperty float y\nproperty float z\nproperty float intensity\nend_header\n";
        for (int i = 0; i < kVertices; ++i) {
            const std::array<float, 4> vertex = {value(), value(), value(), 0.5F};
            std::array<char, sizeof vertex> bytes{};
            std::memcpy(bytes.data(), vertex.data(), sizeof vertex);
            ply.write(bytes.data(), bytes.size());
        }
        std::ofstream text(Path("in.txt"), std::ios::binary);
        std::array<char, 128> line{};
        for (int i = 0; i < kLines; ++i) {
            std::snprintf(line.data(), line.size(), "P%07d;%.4f;%.4f;%.4f\n", i, value(), value(), value());
            text << line.data();
        }
    }
    ~CloudFiles() { std::filesystem::remove_all(folder_); }
    CloudFiles(const CloudFiles&) = delete;
    CloudFiles& operator=(const CloudFiles&) = delete;
    std::string Path(const char* name) const { return folder_ / name; }

private:
    std::filesystem::path folder_;
};
const CloudFiles& Files() {
    static const CloudFiles files;
    return files;
}

double OurCloud(const char* in, const char* out) {
    const auto begin = std::chrono::steady_clock::now();
    CloudOrder order;
    order.Motion = *MotionOf({0.8, -0.6, 0, 0.6, 0.8, 0, 0, 0, 1}, {10, 20, 30});
    order.Wish.Digits = 3;
    bool unwritten = false;
    TransformCloud(
        order, Files().Path(in), Files().Path(out), nullptr, [] { return true; }, unwritten);
    return Milliseconds(begin);
}

double Copy() {
    const auto begin = std::chrono::steady_clock::now();
    FileSource in(Files().Path("in.ply"));
    FileBeside out(Files().Path("copy.ply"));
    std::string block(std::size_t{1} << 20, '\0');
    for (std::size_t count = 0; (count = in.Read(block.data(), block.size())) > 0;)
        out.Write(std::string_view(block).substr(0, count));
    out.Keep(Keeping::Unflushed);
    return Milliseconds(begin);
}

double Batch() {
    const auto begin = std::chrono::steady_clock::now();
    Run.Delimiter.clear();
    LineCounts counts;
    const BatchInput input = ReadBatchFile(Files().Path("in.txt"));
    WriteBatchFile(input, Files().Path("batch.txt"), nullptr, counts);
    return Milliseconds(begin);
}

void Compare(benchmark::State& state, const char* in, const char* out, double (*peer)(), const char* ratio) {
    FreshStart();
    Headless = HeadlessRecord{};
    Headless.Decimal = '.';
    std::vector<double> ours, theirs;
    OurCloud(in, out);
    peer();
    for (auto _ : state) {
        ours.push_back(OurCloud(in, out));
        theirs.push_back(peer());
        state.SetIterationTime(ours.back() / 1e3);
    }
    state.counters["ms"] = Median(ours);
    state.counters[ratio] = Median(ours) / Median(theirs);
}

void BinaryCloudOfTenMillionPoints(benchmark::State& state) {
    Compare(state, "in.ply", "out.ply", Copy, "own/copy");
}
BENCHMARK(BinaryCloudOfTenMillionPoints)->UseManualTime()->Iterations(7)->Unit(benchmark::kMillisecond);

void TextThatKeepsItsForm(benchmark::State& state) {
    Compare(state, "in.txt", "out.txt", Batch, "own/batch");
}
BENCHMARK(TextThatKeepsItsForm)->UseManualTime()->Iterations(7)->Unit(benchmark::kMillisecond);

}  // namespace
