// PCD files of the tools that the format comes from, where they are installed.
#include <cstdlib>

#include "core/files.h"
#include "import/cloud_bytes.h"

using namespace corvinade;

namespace {

// The tools that are here; none of them is no test.
std::vector<std::string> ToolsHere() {
    const std::string tool = "pcl_convert_pcd_ascii_binary";
    if (std::system(("command -v " + tool + " > /dev/null 2>&1").c_str()) != 0) return {};
    return {tool};
}

class CloudTools : public Program, public testing::WithParamInterface<std::string> {
protected:
    // Another form of the file, as the tool writes it: 0 ascii, 1 binary, 2 compressed.
    std::string Converted(const std::string& bytes, int form) const {
        const std::string from = Write("from.pcd", bytes), to = PathOf("to.pcd");
        const std::string command =
            GetParam() + " '" + from + "' '" + to + "' " + std::to_string(form) + " > /dev/null 2>&1";
        EXPECT_EQ(std::system(command.c_str()), 0);
        return Contents(to);
    }
};

std::vector<std::array<double, 3>> PointsOf(const std::string& bytes) {
    const CloudRun run = ReadThrough(bytes, "a.pcd");
    EXPECT_EQ(run.Error, "");
    std::vector<std::array<double, 3>> points;
    // The tools keep 32 bits.
    for (const CloudPoint& point : run.Points)
        points.push_back({static_cast<float>(point.At[0]), static_cast<float>(point.At[1]),
                          static_cast<float>(point.At[2])});
    return points;
}

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(CloudTools);
INSTANTIATE_TEST_SUITE_P(OfTheFormat, CloudTools, testing::ValuesIn(ToolsHere()));

TEST_P(CloudTools, ReadWhatWeWriteAndWriteWhatWeRead) {
    std::string ascii =
        "# .PCD v0.7 - Point Cloud Data file format\nVERSION 0.7\nFIELDS x y z intensity\nSIZE 4 4 4 4\nTYPE F F F F\n"
        "COUNT 1 1 1 1\nWIDTH 500\nHEIGHT 1\nVIEWPOINT 0 0 0 1 0 0 0\nPOINTS 500\nDATA ascii\n";
    std::vector<std::array<double, 3>> expected;
    for (int i = 0; i < 500; ++i) {
        ascii += std::to_string(i) + " 0.5 -" + std::to_string(i % 7) + ".25 " + std::to_string(i % 9) + "\n";
        expected.push_back({static_cast<double>(i), 0.5, -(i % 7) - 0.25});
    }
    for (const int form : {0, 1, 2}) {
        const std::string theirs = Converted(ascii, form);
        EXPECT_EQ(PointsOf(theirs), expected) << form;
        const CloudRun ours = Carried(theirs, "a.pcd");
        EXPECT_EQ(ours.Error, "");
        EXPECT_EQ(PointsOf(Converted(ours.Out, 1)), PointsOf(ours.Out)) << form;
    }
}

}  // namespace
