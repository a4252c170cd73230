// The mathematics knows nothing of the program around it, and so do its tests.
#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include "support/fixture.h"

using namespace corvinade;

namespace fs = std::filesystem;

namespace {

// Without comments.
std::string CodeOf(const std::string& text) {
    std::istringstream lines(text);
    std::string code;
    for (std::string line; std::getline(lines, line);) code += line.substr(0, line.find("//")) + "\n";
    return code;
}

// The first name of job, settings, units, windows, messages or the event loop; "" where there is none.
std::string NameOfTheProgram(const std::string& text) {
    static const std::regex kNames(
        "\\b(Job|Settings|Units|Selection|Calculation|Platform\\w*|Headless|SetStatus|ShowMessage|AskMessage|"
        "AskYesNo|ToClipboard|SetClipboardText|YieldToEvents|Pause|AddNote|Changed|ShowWindow|UnloadWindow|"
        "SetText|IsTrue|StopRequested|JobGeneration|WindowState|FreshStart|iostream|fstream)\\b");
    std::smatch match;
    const std::string code = CodeOf(text);
    return std::regex_search(code, match, kNames) ? match[1].str() : "";
}

// The first header of a room other than fit/; "" where there is none.
std::string OtherHeader(const std::string& text) {
    static const std::regex kInclude("# *include *\"(?!fit/)([a-z_]+/[^\"]+)\"");
    std::smatch match;
    return std::regex_search(text, match, kInclude) ? match[1].str() : "";
}

std::vector<fs::path> FilesIn(const std::string& folder) {
    std::vector<fs::path> files;
    for (const auto& entry : fs::directory_iterator(fs::path(CORVINADE_SOURCE_DIR) / folder))
        if (entry.is_regular_file()) files.push_back(entry.path());
    return files;
}

}  // namespace

TEST(PureFit, NamesNeitherJobNorSettingsNorWindowsNorMessages) {
    std::set<std::string> seen;
    for (const fs::path& path : FilesIn("src/fit")) {
        const std::string text = Contents(path.string());
        EXPECT_EQ(NameOfTheProgram(text), "") << path;
        EXPECT_EQ(OtherHeader(text), "") << path;
        seen.insert(path.filename().string());
    }
    // Of everything that is adjusted the whole way stands here.
    for (const char* header : {"fit.h", "monte_carlo.h", "inverse.h", "bundle_adjustment.h", "fit_shape.h"})
        EXPECT_TRUE(seen.contains(header)) << header;
}

TEST(PureFit, ItsTestsNeedNothingFresh) {
    int tests = 0;
    for (const fs::path& path : FilesIn("tests/fit")) {
        const std::string text = Contents(path.string());
        EXPECT_EQ(OtherHeader(text), "") << path;
        EXPECT_EQ(NameOfTheProgram(text), "") << path;
        if (text.find("TEST") != std::string::npos) ++tests;
    }
    EXPECT_GT(tests, 8);
}

// What hands over works on no number itself: the steps of these stand in fit/ alone.
TEST(PureFit, RoomsThatHandOverSolveNothingThemselves) {
    static const std::regex kSolving(
        "\\b(MatrixInverse|MatrixMultiply|Linearise|NormalMatrix|BundleIteration|FitAgain|Iterate|"
        "NearestShapePoint|FillWithNoise|GaussNoise|ArrayTrend|EqualForms|NicerRotation)\\(");
    const std::set<std::string> kOnePoint = {"paraboloid/paraboloid.cpp", "paraboloid/shape_file.cpp"};
    int files = 0;
    for (const std::string folder : {"bundle", "paraboloid"})
        for (const fs::path& path : FilesIn("src/" + folder)) {
            const std::string name = folder + "/" + path.filename().string();
            std::string code = CodeOf(Contents(path.string()));
            // The job's own targets are put onto the shape point by point, while events are served.
            if (kOnePoint.contains(name))
                code = std::regex_replace(code, std::regex("NearestShapePoint\\("), "");
            std::smatch match;
            EXPECT_FALSE(std::regex_search(code, match, kSolving)) << name << ": " << match[0];
            ++files;
        }
    EXPECT_GT(files, 15);
    EXPECT_TRUE(std::regex_search(std::string("    MatrixInverse(Q, 3, 3, Q);"), kSolving));
}

TEST(PureFit, WhatNamesTheProgramIsSeen) {
    EXPECT_EQ(NameOfTheProgram("double x = Job.TraX;\n"), "Job");
    EXPECT_EQ(NameOfTheProgram("// as in the Job\nint JobsDone = 0;\n"), "");
    EXPECT_EQ(NameOfTheProgram("    if (goOn) YieldToEvents();\n"), "YieldToEvents");
    EXPECT_EQ(NameOfTheProgram("throw PlatformError{\"\"};\n"), "PlatformError");
    EXPECT_EQ(OtherHeader("#include <cmath>\n#include \"fit/a.h\"\n"), "");
    EXPECT_EQ(OtherHeader("#include \"fit/a.h\"\n#  include \"core/job.h\"\n"), "core/job.h");
}
