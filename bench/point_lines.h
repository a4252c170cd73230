// Point files as the readers' benchmarks have them, and the yardstick of all readers.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <filesystem>
#include <random>
#include <string>
#include <string_view>

#include "cli/headless.h"
#include "core/files.h"
#include "core/fresh_start.h"

// A folder of files that are written when they are first asked for and deleted at the end.
class BenchFolder {
public:
    explicit BenchFolder(const std::string& name)
        : path_(std::filesystem::temp_directory_path() /
                ("corvinade-" + name + "-" + std::to_string(getpid()))) {
        std::filesystem::create_directories(path_);
    }
    ~BenchFolder() { std::filesystem::remove_all(path_); }
    BenchFolder(const BenchFolder&) = delete;
    BenchFolder& operator=(const BenchFolder&) = delete;
    std::string PathOf(const char* name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

// From -1000 to 1000, four decimals.
inline double AnyCoordinate(std::mt19937_64& random) {
    return static_cast<double>(static_cast<std::int64_t>(random() % 20000000) - 10000000) / 1e4;
}

inline void BeginWithPoint() {
    corvinade::FreshStart();
    corvinade::Headless = corvinade::HeadlessRecord{};
    corvinade::Headless.Decimal = '.';
}

// The yardstick: one plain pass over the bytes of a file, that finds the fields of each line and converts the
// three numbers behind the name.
inline double PlainPass(const std::string& path, char delimiter) {
    const corvinade::FileBytes bytes = corvinade::ReadFile(path);
    double sum = 0;
    for (std::string_view rest = bytes.View(); !rest.empty();) {
        const std::size_t end = rest.find('\n');
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        line.remove_prefix(std::min(line.find(delimiter) + 1, line.size()));
        for (int field = 0; field < 3; ++field) {
            double value = 0;
            const auto stop = std::from_chars(line.data(), line.data() + line.size(), value).ptr;
            sum += value;
            line.remove_prefix(std::min(static_cast<std::size_t>(stop - line.data()) + 1, line.size()));
        }
    }
    return sum;
}
