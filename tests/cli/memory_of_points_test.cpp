// What a fit takes in memory for each of its points, from the files to the saved job.
#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>

#include "cli/command_line.h"
#include "support/fixture.h"
#include "support/memory_use.h"

using namespace corvinade;

namespace {

class MemoryOfPoints : public Program {
protected:
    // A raster of so many points with names of eight characters, moved by `by`.
    std::string Points(const std::string& name, int count, double by) const {
        std::string text;
        char line[100];
        for (int i = 0; i < count; ++i) {
            std::snprintf(line, sizeof line, "P%07d;%.3f;%.3f;%.3f\n", i, i % 311 + by, i / 311 - by,
                          i % 17 + 2 * by);
            text += line;
        }
        return Write(name, text);
    }
    // Bytes, the most at any time.
    std::size_t PeakOf(int count) const {
        const std::string s = Points("s.txt", count, 0), t = Points("t.txt", count, 1.5);
        const std::string job = PathOf("j.cvn");
        FreshCommandLine({"info", "none"});  // what is made once is there
        std::istringstream in;
        std::ofstream out("/dev/null");  // which keeps nothing of the table
        std::ostringstream err;
        const std::array<const char*, 7> argv = {"corvinade-cli", "fit",       s.c_str(), t.c_str(),
                                                 "--save",        job.c_str(), "--yes"};
        const MemoryUse memory;
        EXPECT_EQ(RunCommandLine(static_cast<int>(argv.size()), argv.data(), in, out, err, false, false), 0)
            << err.str();
        return memory.Peak();
    }
};

}  // namespace

TEST_F(MemoryOfPoints, ImportFitAndSaveTake130BytesForEachPointAtMost) {
    constexpr int kFew = 50'000, kMany = 150'000;
    const std::size_t few = PeakOf(kFew), many = PeakOf(kMany);
    ASSERT_GT(many, few);
    // Two points a pair.
    EXPECT_LE(static_cast<double>(many - few) / (2 * (kMany - kFew)), 130);
    EXPECT_GT(std::filesystem::file_size(PathOf("j.cvn")), std::size_t{kMany} * 100);
}
