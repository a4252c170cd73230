// Files by the library: points, and jobs with the fit that they ask for.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <thread>

#include "corvinade/job_file.h"
#include "corvinade/point_file.h"

using namespace corvinade;
using nlohmann::json;
namespace fs = std::filesystem;

namespace {

const std::string kExamples = std::string(CORVINADE_SOURCE_DIR) + "/examples/";

// A folder of the test's own, gone with it.
struct Folder {
    fs::path Path;
    Folder() {
        std::string name = testing::TempDir() + "corvinadeXXXXXX";
        Path = mkdtemp(name.data());
    }
    Folder(const Folder&) = delete;
    ~Folder() { fs::remove_all(Path); }
    std::string Of(const std::string& name, const std::string& text) const {
        std::ofstream(Path / name, std::ios::binary) << text;
        return (Path / name).string();
    }
};

std::string ContentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

template <class Work>
std::string WhatOf(Work work) {
    try {
        work();
    } catch (const InvalidInput& error) {
        return error.what();
    }
    return "";
}

std::string OutputOf(const std::string& arguments) {
    std::FILE* pipe = popen((std::string(CORVINADE_CLI) + " " + arguments + " 2>/dev/null").c_str(), "r");
    std::string text;
    char piece[4096];
    while (const std::size_t size = std::fread(piece, 1, sizeof piece, pipe)) text.append(piece, size);
    pclose(pipe);
    return text;
}

}  // namespace

TEST(PointFiles, AreReadWithHeadingUnitAndSigmas) {
    const Folder folder;
    const std::string path =
        folder.Of("a.csv", "Name;X [m];Y [m];Z [m];s [m]\nA;1,5;2;-0,25;0,001\nB;0;1;2;0,002\n");
    const PointFile file = ReadPoints(path);
    EXPECT_EQ(file.Points.Names, (std::vector<std::string>{"A", "B"}));
    EXPECT_EQ(file.Points.Coordinates, (std::vector<double>{1500, 2000, -250, 0, 1000, 2000}));
    EXPECT_EQ(file.Points.Sigmas, (std::vector<double>{1, 1, 1, 2, 2, 2}));
    EXPECT_EQ(file.Format, "table");
    EXPECT_EQ(file.Unit, "m");
    EXPECT_EQ(file.Points.View().Count, 2U);
}

TEST(PointFiles, AreReadAsIsSaidOfThem) {
    const Folder folder;
    const std::string path = folder.Of("a.txt", "made today\n9 8 7 A\n6 5 4 B\nno beam\n");
    PointFileOptions options;
    options.Columns = "z,y,x,name";
    options.Skip = 1;
    EXPECT_NE(WhatOf([&] { ReadPoints(path, options); }).find("line 4"), std::string::npos);
    options.SkipBad = true;
    options.Unit = "in";
    const PointFile file = ReadPoints(path, options);
    EXPECT_EQ(file.Points.Names, (std::vector<std::string>{"A", "B"}));
    const double expected[] = {7 * 25.4, 8 * 25.4, 9 * 25.4, 4 * 25.4, 5 * 25.4, 6 * 25.4};
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(file.Points.Coordinates[i], expected[i], 1e-12);
    ASSERT_EQ(file.Notes.size(), 1U);
    EXPECT_EQ(file.Notes[0].Code, "lines-skipped");
    EXPECT_EQ(file.Notes[0].Line, 4);
}

TEST(PointFiles, OfACloudHaveItsPoints) {
    const Folder folder;
    const std::string path =
        folder.Of("a.ply",
                  "ply\nformat ascii 1.0\nelement vertex 2\nproperty double x\nproperty double y\n"
                  "property double z\nend_header\n1 2 3\n4 5 6\n");
    const PointFile file = ReadPoints(path);
    EXPECT_EQ(file.Format, "ply");
    EXPECT_EQ(file.Points.Coordinates, (std::vector<double>{1, 2, 3, 4, 5, 6}));
    PointFileOptions options;
    options.Skip = 1;
    EXPECT_NE(WhatOf([&] { ReadPoints(path, options); }).find("of tables alone"), std::string::npos);
}

TEST(PointFiles, ThatCannotBeReadSayWhy) {
    const Folder folder;
    EXPECT_NE(WhatOf([&] { ReadPoints(folder.Path / "none.txt"); }).find("none.txt"), std::string::npos);
    const std::string path = folder.Of("a.txt", "A 1 2 3\nB 1 x 3\nC 1 2 3\n");
    const std::string why = WhatOf([&] { ReadPoints(path); });
    EXPECT_NE(why.find("line 2, column 3"), std::string::npos) << why;
    const auto said = [&](auto change) {
        PointFileOptions options;
        change(options);
        return WhatOf([&] { ReadPoints(path, options); });
    };
    EXPECT_NE(said([](PointFileOptions& o) { o.Unit = "parsec"; }).find("\"parsec\" came"),
              std::string::npos);
    EXPECT_NE(said([](PointFileOptions& o) { o.Encoding = "ebcdic"; }).find("\"ebcdic\" came"),
              std::string::npos);
    EXPECT_NE(said([](PointFileOptions& o) { o.Decimal = ';'; }).find("\";\" came"), std::string::npos);
    EXPECT_NE(said([](PointFileOptions& o) { o.Columns = "name,x,y"; }).find("columns: "), std::string::npos);
}

TEST(PointFiles, EndWhenTold) {
    const Folder folder;
    std::string rows;
    for (int i = 0; i < 20000; ++i) rows += "P" + std::to_string(i) + " 1 2 3\n";
    PointFileOptions options;
    options.StopIsWanted = [] { return true; };
    EXPECT_THROW(ReadPoints(folder.Of("a.txt", rows), options), Stopped);
}

TEST(PointFiles, AreWrittenSoThatTheSameNumbersComeBack) {
    const Folder folder;
    const std::string path = folder.Path / "a.csv";
    NamedPoints points{{"Bohrung 1", "größe", "C"},
                       {0.1, -1.0 / 3, 1e-7, 12345678.901234567, 1e9, -0.5, 2.5, 3, std::nextafter(4.0, 5)},
                       {}};
    EXPECT_TRUE(WritePoints(path, points).empty());
    PointFile again = ReadPoints(path);
    EXPECT_EQ(again.Points.Names, points.Names);
    EXPECT_EQ(again.Points.Coordinates, points.Coordinates);
    EXPECT_TRUE(again.Points.Sigmas.empty());
    points.Sigmas = {0.01, 0.02, 0.03, 0, 0, 0, 1.0 / 7, 1, 2};
    WritePoints(path, points);
    again = ReadPoints(path);
    EXPECT_EQ(again.Points.Coordinates, points.Coordinates);
    EXPECT_EQ(again.Points.Sigmas, points.Sigmas);
}

TEST(PointFiles, AreNotWrittenWhereTheyCouldNotBeReadAgain) {
    const Folder folder;
    const std::string path = folder.Of("a.csv", "as it was");
    const auto said = [&](const NamedPoints& points) { return WhatOf([&] { WritePoints(path, points); }); };
    EXPECT_NE(said({{"A"}, {1, 2}, {}}).find("three a point, 3, and 2 came"), std::string::npos);
    EXPECT_NE(said({{"A"}, {1, 2, 3}, {1}}).find("3, and 1 came"), std::string::npos);
    EXPECT_NE(said({{"A", "A"}, {1, 2, 3, 4, 5, 6}, {}}).find("stands twice"), std::string::npos);
    EXPECT_NE(said({{"A;B"}, {1, 2, 3}, {}}).find("\"A;B\" came"), std::string::npos);
    EXPECT_NE(said({{""}, {1, 2, 3}, {}}).find("\"\" came"), std::string::npos);
    EXPECT_NE(said({{"A"}, {1, NAN, 3}, {}}).find("point \"A\""), std::string::npos);
    EXPECT_NE(said({{"A"}, {1, 2, 3}, {1, -1, 1}}).find("not below 0"), std::string::npos);
    EXPECT_NE(said({}).find("none came"), std::string::npos);
    EXPECT_EQ(ContentOf(path), "as it was");
    EXPECT_NE(WhatOf([&] {
                  WritePoints(folder.Path / "no/a.csv", {{"A"}, {1, 2, 3}, {}});
              }).find("a.csv"),
              std::string::npos);
}

TEST(PointFiles, AreReadInThreadsAtOnce) {
    const std::string path = kExamples + "robot_cell_measured.txt";
    const PointFile alone = ReadPoints(path);
    std::vector<int> good(4);
    {
        std::vector<std::jthread> threads;
        for (int& count : good)
            threads.emplace_back([&] {
                for (int i = 0; i < 50; ++i)
                    count += ReadPoints(path).Points.Coordinates == alone.Points.Coordinates &&
                             ReadJob(kExamples + "robot_cell.cvn").Pairs == 14;
            });
    }
    EXPECT_EQ(good, std::vector<int>(4, 50));
}

TEST(JobFiles, TellTheirPointsAsTheCommandDoes) {
    const std::string path = kExamples + "robot_cell.cvn";
    const JobFile job = ReadJob(path);
    const json told = json::parse(OutputOf("info --json " + path));
    EXPECT_EQ(job.Pairs, told["counts"]["identical"]);
    EXPECT_EQ(job.Start.Names.size(), told["counts"]["start"]);
    EXPECT_EQ(job.Target.Names.size(), told["counts"]["target"]);
    EXPECT_EQ(job.LengthUnit, told["units"]["length"]);
    EXPECT_TRUE(job.McsToOcs);
    const PointFile measured = ReadPoints(kExamples + "robot_cell_measured.txt");
    for (std::size_t i = 0; i < job.Start.Names.size(); ++i) {
        const auto at =
            std::find(measured.Points.Names.begin(), measured.Points.Names.end(), job.Start.Names[i]);
        ASSERT_NE(at, measured.Points.Names.end());
        const auto place = static_cast<std::size_t>(at - measured.Points.Names.begin());
        for (std::size_t axis = 0; axis < 3; ++axis)
            EXPECT_EQ(job.Start.Coordinates[3 * i + axis], measured.Points.Coordinates[3 * place + axis]);
    }
}

class JobFits : public testing::TestWithParam<const char*> {};

// The job is written by the command with these options, and fitted by it and by the library.
TEST_P(JobFits, AreThoseOfTheCommandToTheLastBit) {
    const Folder folder;
    const std::string path = folder.Path / "a.cvn";
    OutputOf("fit " + kExamples + "robot_cell_measured.txt " + kExamples + "robot_cell_nominal.txt " +
             GetParam() + " --save " + path);
    const json told = json::parse(OutputOf("fit --job " + path + " --json"));
    const JobFile job = ReadJob(path);
    EXPECT_EQ(job.Fit.Refusal, "");
    const FitResult result = Fit(job);
    const json& matrix = told["transformation"]["matrix"];
    for (std::size_t i = 0; i < 16; ++i)
        EXPECT_EQ(result.Matrix[i], matrix[i / 4][i % 4].get<double>()) << GetParam() << " element " << i;
    EXPECT_EQ(result.S0, told["quality"]["s0_mm"].get<double>());
    ASSERT_TRUE(job.Result);
    for (std::size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(job.Result->Translation[k], result.Transformation.Translation[k], 1e-6);
}
INSTANTIATE_TEST_SUITE_P(All, JobFits,
                         testing::Values("", "--parameters 7", "--parameters level", "--parameters 12",
                                         "--norm l1 --parameters 7", "--norm loo",
                                         "--leave-out F09 --parameters 9", "--hold traz=0.1 --length-unit m",
                                         "--start-sigma 0.02,0.02,0.05 --target-sigma 0.01"));

TEST(JobFiles, RefuseFitsThatTheLibraryHasNot) {
    const Folder folder;
    const std::string path = folder.Path / "a.cvn";
    OutputOf("fit " + kExamples + "robot_cell_measured.txt " + kExamples +
             "robot_cell_nominal.txt --r-dist --save " + path);
    const JobFile job = ReadJob(path);
    EXPECT_EQ(job.Fit.Refusal, "the job is fitted to distances");
    EXPECT_NE(WhatOf([&] { Fit(job); }).find("fitted to distances"), std::string::npos);
}

TEST(JobFiles, ThatAreDamagedSayWhere) {
    const Folder folder;
    const std::string whole = ContentOf(kExamples + "robot_cell.cvn");
    const std::string path = folder.Of("a.cvn", whole.substr(0, whole.size() / 2));
    EXPECT_NE(WhatOf([&] { ReadJob(path); }).find("a.cvn"), std::string::npos);
    EXPECT_NE(WhatOf([&] { ReadJob(folder.Of("b.cvn", "no job at all")); }).find("b.cvn"), std::string::npos);
    EXPECT_NE(WhatOf([&] { ReadJob(folder.Path / "none.cvn"); }).find("none.cvn"), std::string::npos);
}
