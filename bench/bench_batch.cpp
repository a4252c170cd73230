// A batch: a file of 1,000,000 points read, checked, transformed and written, against a limit loop that does
// only what has to be done with the bytes of such a file, and against a text tool of the system. At most 1.5
// times the limit is wanted, and an eighth of the tool's time. And a folder of 1,000 small files against one
// file of as many bytes.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "analysis/batch_file.h"
#include "cli/headless.h"
#include "core/files.h"
#include "core/folders.h"
#include "core/fresh_start.h"
#include "core/job.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/transform.h"
#include "timing.h"

using namespace corvinade;

namespace {

constexpr int kPoints = 1'000'000, kSmallFiles = 1'000;

std::string Lines(int first, int count) {
    std::mt19937_64 random(static_cast<unsigned>(first));
    std::string content;
    std::array<char, 128> line{};
    for (int i = first; i < first + count; ++i) {
        const auto value = [&random](int half) {
            return static_cast<double>(static_cast<std::int64_t>(random() % (20000U * half)) - 10000 * half) /
                   1e4;
        };
        const double x = value(3000), y = value(1500), z = value(800);
        content.append(line.data(), static_cast<std::size_t>(std::snprintf(
                                        line.data(), line.size(), "P%07d;%.4f;%.4f;%.4f\n", i, x, y, z)));
    }
    return content;
}

class BatchFiles {
public:
    BatchFiles()
        : folder_(std::filesystem::temp_directory_path() / ("corvinade-bench-" + std::to_string(getpid()))) {
        for (const char* name : {"small", "small_out"}) std::filesystem::create_directories(folder_ / name);
        std::ofstream(In(), std::ios::binary) << Lines(1, kPoints);
        for (int i = 0; i < kSmallFiles; ++i)
            std::ofstream(Small() + "/" + std::to_string(i) + ".txt", std::ios::binary)
                << Lines(i * (kPoints / kSmallFiles), kPoints / kSmallFiles);
    }
    ~BatchFiles() { std::filesystem::remove_all(folder_); }
    BatchFiles(const BatchFiles&) = delete;
    BatchFiles& operator=(const BatchFiles&) = delete;
    std::string In() const { return folder_ / "points.txt"; }
    std::string Out(const char* who) const { return folder_ / who; }
    std::string Small() const { return folder_ / "small"; }
    std::string SmallOut() const { return folder_ / "small_out"; }

private:
    std::filesystem::path folder_;
};
const BatchFiles& Files() {
    static const BatchFiles files;
    return files;
}

void Begin() {
    FreshStart();
    Headless = HeadlessRecord{};
    Headless.Decimal = '.';
    Job.RotXCopy = 0.3;
    Job.RotYCopy = -0.4;
    Job.RotZCopy = 0.7;
    Job.ScaleX = Job.ScaleY = Job.ScaleZ = 1.00042;
    Job.TraX = 1234.5;
    Job.TraY = -876.25;
    Job.TraZ = 345.125;
    BuildChain();
}

double OurFile() {
    const auto begin = std::chrono::steady_clock::now();
    Run.Delimiter.clear();
    LineCounts counts;
    const BatchInput input = ReadBatchFile(Files().In());
    WriteBatchFile(input, Files().Out("ours.txt"), nullptr, counts);
    return counts.Lines == kPoints ? Milliseconds(begin) : -1;
}

// --- The limit: no checks, no errors, nothing but such lines ----------------------------------------------

double LimitNumber(const char*& at) {
    const bool negative = *at == '-';
    at += negative ? 1 : 0;
    std::int64_t number = 0;
    while (*at != '.') number = number * 10 + (*at++ - '0');
    ++at;
    for (int i = 0; i < 4; ++i) number = number * 10 + (*at++ - '0');
    ++at;
    const double size = static_cast<double>(number) / 1e4;
    return negative ? -size : size;
}

char* LimitText(char* at, double value) {
    *at++ = '\t';
    auto number = static_cast<std::int64_t>(std::fabs(value) * 1000 + 0.5);
    if (value < 0 && number != 0) *at++ = '-';
    std::array<char, 20> digits{};
    int count = 0;
    do {
        digits[static_cast<std::size_t>(count++)] = static_cast<char>('0' + number % 10);
        number /= 10;
    } while (number != 0 || count < 4);
    while (count > 3) *at++ = digits[static_cast<std::size_t>(--count)];
    *at++ = '.';
    while (count > 0) *at++ = digits[static_cast<std::size_t>(--count)];
    return at;
}

double LimitFile() {
    const auto begin = std::chrono::steady_clock::now();
    const int in = open(Files().In().c_str(), O_RDONLY);
    struct stat facts {};
    fstat(in, &facts);
    const auto size = static_cast<std::size_t>(facts.st_size);
    auto* const text = static_cast<char*>(mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, in, 0));
    close(in);
    std::FILE* const out = std::fopen(Files().Out("limit.txt").c_str(), "wb");
    std::setvbuf(out, nullptr, _IONBF, 0);
    constexpr std::size_t kBlock = 1 << 18;
    std::string buffer(kBlock + 256, '\0');
    char* put = buffer.data();
    const auto& M = Chain.Product;
    const char* at = text;
    while (at < text + size) {
        const char* const name = at;
        while (*at != ';') ++at;
        std::memcpy(put, name, static_cast<std::size_t>(at - name));
        put += at - name;
        ++at;
        const double x = LimitNumber(at), y = LimitNumber(at), z = LimitNumber(at);
        put = LimitText(put, Job.TraX + (M(1, 1) * x + M(1, 2) * y + M(1, 3) * z));
        put = LimitText(put, Job.TraY + (M(2, 1) * x + M(2, 2) * y + M(2, 3) * z));
        put = LimitText(put, Job.TraZ + (M(3, 1) * x + M(3, 2) * y + M(3, 3) * z));
        *put++ = '\n';
        if (put < buffer.data() + kBlock) continue;
        std::fwrite(buffer.data(), 1, static_cast<std::size_t>(put - buffer.data()), out);
        put = buffer.data();
    }
    std::fwrite(buffer.data(), 1, static_cast<std::size_t>(put - buffer.data()), out);
    std::fclose(out);
    munmap(text, size);
    return Milliseconds(begin);
}

// The system's text tool; -1 where it is not there.
double ToolFile() {
    const auto& M = Chain.Product;
    std::string program = "{printf \"%s\\t%.3f\\t%.3f\\t%.3f\\n\",$1";
    const std::array<double, 3> shift = {Job.TraX, Job.TraY, Job.TraZ};
    for (int row = 1; row <= 3; ++row) {
        std::array<char, 160> term{};
        std::snprintf(term.data(), term.size(), ",%.17g+(%.17g*$2+%.17g*$3+%.17g*$4)",
                      shift[static_cast<std::size_t>(row) - 1], M(row, 1), M(row, 2), M(row, 3));
        program += term.data();
    }
    const std::string command = "LC_ALL=C mawk -F';' '" + program + "}' " + Files().In() + " > " +
                                Files().Out("tool.txt") + " 2> /dev/null";
    const auto begin = std::chrono::steady_clock::now();
    return std::system(command.c_str()) == 0 ? Milliseconds(begin) : -1;
}

// The results are one text, but for the ends of lines.
bool SameText(const char* who) {
    const FileBytes ours = ReadFile(Files().Out("ours.txt")), other = ReadFile(Files().Out(who));
    std::string_view a = ours.View();
    for (const char c : other.View()) {
        if (!a.empty() && a.front() == '\r') a.remove_prefix(1);
        if (a.empty() || a.front() != c) return false;
        a.remove_prefix(1);
    }
    return a.empty();
}

void FileOfAMillionPoints(benchmark::State& state) {
    Begin();
    std::vector<double> ours, limit, tool, toLimit, toTool;
    OurFile();
    LimitFile();
    for (auto _ : state) {
        ours.push_back(OurFile());
        limit.push_back(LimitFile());
        tool.push_back(ToolFile());
        toLimit.push_back(ours.back() / limit.back());
        if (tool.back() > 0) toTool.push_back(tool.back() / ours.back());
        state.SetIterationTime(ours.back() / 1000);
    }
    // The tool's text has negative zeros.
    if (ours.back() < 0 || !SameText("limit.txt")) state.SkipWithError("the results differ");
    state.counters["ours_ms"] = Median(ours);
    state.counters["limit_ms"] = Median(limit);
    state.counters["ratio"] = Median(toLimit);
    state.counters["mawk_times"] = Median(toTool);
}

void FolderOfSmallFiles(benchmark::State& state) {
    Begin();
    std::vector<double> small, one, ratio;
    OurFile();
    for (auto _ : state) {
        const auto begin = std::chrono::steady_clock::now();
        for (const std::string& name : FilesOfFolder(Files().Small())) {
            LineCounts counts;
            const BatchInput input = ReadBatchFile(JoinPath(Files().Small(), name));
            WriteBatchFile(input, JoinPath(Files().SmallOut(), BatchOutName(name)), nullptr, counts);
        }
        small.push_back(Milliseconds(begin));
        one.push_back(OurFile());
        ratio.push_back(small.back() / one.back());
        state.SetIterationTime(small.back() / 1000);
    }
    state.counters["small_ms"] = Median(small);
    state.counters["one_ms"] = Median(one);
    state.counters["ratio"] = Median(ratio);
}

BENCHMARK(FileOfAMillionPoints)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(7);
BENCHMARK(FolderOfSmallFiles)->Unit(benchmark::kMillisecond)->UseManualTime()->Iterations(7);

}  // namespace
