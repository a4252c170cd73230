// Files that spreadsheets and programs of point clouds wrote, number by number, and through `transform`.
#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>

#include "cli/fit_command.h"
#include "core/numbers.h"
#include "support/program_path.h"

namespace {

const std::string kFolder = std::string(CORVINADE_SOURCE_DIR) + "/tests/data/other-programs/";

using At = std::array<double, 3>;

// The points of all files, as the README beside them has them.
At TruthOf(int i) {
    const auto mod = [](int a, int b) { return static_cast<double>(a % b); };
    return {mod(677 * i, 4001) - 2000 + mod(i, 8) / 8, mod(1291 * i, 3001) - 1500 + mod(3 * i, 8) / 8,
            mod(411 * i, 1501) + mod(5 * i, 8) / 8};
}

std::string NameOf(int i, bool hasNames) {
    if (!hasNames) return std::to_string(i + 1);
    const std::map<int, std::string> others = {{3, "Loch 4"}, {7, "Tr\xC3\xA4ger 8"}, {11, "Bore 1\" left"}};
    const auto other = others.find(i);
    return other == others.end() ? "P" + std::to_string(i + 1) : other->second;
}

struct Written {
    const char* File;
    const char *Format, *Encoding, *Delimiter, *Decimal;  // as `files` tells them; null: of no matter
    bool HasNames;
    std::vector<std::string> More;
    double Nearness = 0;  // of numbers that the program has cut itself
};

const std::vector<Written> kWritten = {
    {"calc-utf8-commas.csv", "table", "utf-8", "comma", ".", true, {}},
    {"calc-1252-semicolons.csv", "table", "windows-1252", "semicolon", ".", true, {}},
    {"calc-utf16-tabs.txt", "table", "utf-16le", "tab", ".", true, {}},
    {"calc-mac-semicolons.csv", "table", "utf-8", "semicolon", ".", true, {}},
    {"calc-german-semicolons.csv", "table", "utf-8", "semicolon", ",", true, {}},
    {"calc-german-commas.csv", "table", "utf-8", "comma", ",", true, {}},
    {"calc-german-tabs.csv", "table", "utf-8", "tab", ",", true, {}},
    {"gnumeric-plain.csv", "table", "utf-8", "comma", ".", true, {}},
    {"gnumeric-semicolons-crlf.csv", "table", "utf-8", "semicolon", ".", true, {}},
    {"gnumeric-tabs-mac.txt", "table", "utf-8", "tab", ".", true, {}},
    {"gnumeric-1252.csv", "table", "windows-1252", "semicolon", ".", true, {}},
    {"gnumeric-utf16.csv", "table", "utf-16le", "comma", ".", true, {"--encoding", "utf-16le"}},
    {"gnumeric-german.csv", "table", "utf-8", "semicolon", ",", true, {}},
    {"cloudcompare-ascii.asc", "table", "utf-8", "semicolon", ".", false, {}},
    {"cloudcompare-comma.pts", "table", "utf-8", "comma", ".", false, {}},
    {"cloudcompare-count.asc", "table", "utf-8", nullptr, ".", false, {}},
    {"cloudcompare-ascii.ply", "ply", nullptr, nullptr, nullptr, false, {}, 0.00501},
    {"cloudcompare-binary-le.ply", "ply", nullptr, nullptr, nullptr, false, {}},
    {"cloudcompare-binary-be.ply", "ply", nullptr, nullptr, nullptr, false, {}},
    {"cloudcompare-normals.ply", "ply", nullptr, nullptr, nullptr, false, {}},
    {"pcl-ascii.pcd", "pcd", nullptr, nullptr, nullptr, false, {}},
    {"pcl-binary.pcd", "pcd", nullptr, nullptr, nullptr, false, {}},
    {"pcl-compressed.pcd", "pcd", nullptr, nullptr, nullptr, false, {}},
    {"pcl-xyz.pcd", "pcd", nullptr, nullptr, nullptr, false, {}},
    {"pcl-normals.pcd", "pcd", nullptr, nullptr, nullptr, false, {}},
    {"pcl-ascii.ply", "ply", nullptr, nullptr, nullptr, false, {}},
    {"pcl-binary.ply", "ply", nullptr, nullptr, nullptr, false, {}},
};

class OtherPrograms : public FitCommand {
protected:
    // The points of a file by their names.
    static std::map<std::string, At> PointsOf(const std::string& path, const std::vector<std::string>& more,
                                              json& facts) {
        std::vector<std::string> arguments = {"fit", path, path, "--json"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = FreshCommandLine(arguments);
        EXPECT_EQ(outcome.Status, 0) << path << outcome.Err;
        std::map<std::string, At> points;
        if (outcome.Status != 0) return points;
        const json root = json::parse(outcome.Out);
        facts = root["files"][0];
        for (const json& point : root["points"]) points[point["name"]] = point["start_mm"].get<At>();
        return points;
    }
    static void ExpectTruth(const std::map<std::string, At>& points, const Written& file, bool turned) {
        ASSERT_EQ(points.size(), 24u) << file.File;
        for (int i = 0; i < 24; ++i) {
            const auto found = points.find(NameOf(i, file.HasNames));
            ASSERT_NE(found, points.end()) << file.File << " " << i;
            At truth = TruthOf(i);
            if (turned) truth = {10 - truth[1], 20 + truth[0], 30 + truth[2]};
            for (std::size_t axis = 0; axis < 3; ++axis)
                EXPECT_NEAR(found->second[axis], truth[axis], file.Nearness) << file.File << " " << i;
        }
    }
    std::string turn_ = Write("turn.txt", "0 -1 0 10\n1 0 0 20\n0 0 1 30\n0 0 0 1\n");
};

}  // namespace

TEST_F(OtherPrograms, TheirFilesAreReadNumberByNumber) {
    for (const Written& file : kWritten) {
        json facts;
        ExpectTruth(PointsOf(kFolder + file.File, file.More, facts), file, false);
        EXPECT_EQ(facts["format"], file.Format) << file.File;
        const std::pair<const char*, const char*> told[] = {
            {"encoding", file.Encoding}, {"delimiter", file.Delimiter}, {"decimal", file.Decimal}};
        for (const auto& [member, value] : told)
            if (value != nullptr) {
                EXPECT_EQ(facts[member], value) << file.File;
            }
    }
}

TEST_F(OtherPrograms, WhatCannotBeReadForCertainIsRefused) {
    const auto refusal = [](const std::string& file, const std::vector<std::string>& more) {
        std::vector<std::string> arguments = {"fit", kFolder + file, kFolder + file};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Outcome outcome = FreshCommandLine(arguments);
        EXPECT_EQ(outcome.Status, 3) << file;
        return outcome.Err;
    };
    // The last column touches the numbers before it.
    EXPECT_NE(refusal("calc-fixed.txt", {}).find("line 1: the heading has 5 words, and its rows have 4"),
              std::string::npos);
    EXPECT_NE(refusal("calc-fixed.txt", {"--columns", "name,x,y,z"}).find("\"0seen\" is not a number"),
              std::string::npos);
    EXPECT_NE(refusal("gnumeric-utf16.csv", {}).find("--encoding utf-16le"), std::string::npos);
    EXPECT_NE(refusal("gnumeric-shown.txt", {})
                  .find("line 2, column 2: \"\xE2\x88\x92"
                        "2000\" is not a number"),
              std::string::npos);
}

TEST_F(OtherPrograms, TheirFilesComeThroughATransformationInTheirForm) {
    for (const Written& file : kWritten) {
        if (file.Encoding != nullptr && file.More.size() > 0) continue;  // transform needs a mark
        const std::string there = PathOf(file.File), back = PathOf(std::string("back-") + file.File);
        const Outcome moved =
            FreshCommandLine({"transform", "--with", turn_, kFolder + file.File, "--out", there});
        ASSERT_EQ(moved.Status, 0) << file.File << moved.Err;
        json facts;
        ExpectTruth(PointsOf(there, {}, facts), file, true);
        EXPECT_EQ(facts["format"], file.Format) << file.File;
        ASSERT_EQ(FreshCommandLine({"transform", "--with", turn_, "--inverse", there, "--out", back}).Status,
                  0);
        ExpectTruth(PointsOf(back, {}, facts), file, false);
    }
    // Where no number has fewer decimals than the result the way there and back changes no byte.
    for (const char* file : {"cloudcompare-ascii.asc", "cloudcompare-comma.pts", "cloudcompare-count.asc",
                             "cloudcompare-binary-be.ply", "cloudcompare-binary-le.ply",
                             "cloudcompare-normals.ply", "pcl-binary.pcd", "pcl-binary.ply"})
        EXPECT_EQ(Contents(PathOf(std::string("back-") + file)), Contents(kFolder + file)) << file;
}

// The program's own adjustment, whose scale and rotation its window told with six digits, and whose residuals
// stand in its file, in pixels.
TEST_F(OtherPrograms, ControlPointsOfAMapAreAdjustedAsTheirProgramDid) {
    const std::string path = kFolder + "qgis-residuals.points";
    const json result = FitJson(
        {"--pairs", path, "--parameters", "7", "--hold", "rotx=0", "--hold", "roty=0", "--hold", "traz=0"});
    std::map<std::string, double> values;
    for (const json& parameter : result["parameters"]) values[parameter["name"]] = parameter["shown"];
    EXPECT_NEAR(values["scalexyz"], 0.497958, 5e-7);
    EXPECT_NEAR(values["rotz"], -0.00914611, 5e-9);  // theirs is counted clockwise

    std::istringstream lines(Contents(path));
    std::string line;
    std::getline(lines, line);  // the system
    std::getline(lines, line);  // the heading
    const json& points = result["points"];
    ASSERT_EQ(points.size(), 5u);  // the sixth is switched off
    for (std::size_t i = 0; i < 5; ++i) {
        ASSERT_TRUE(std::getline(lines, line));
        std::vector<double> fields;
        std::istringstream row(line);
        for (std::string field; std::getline(row, field, ',');) fields.push_back(std::stod(field));
        ASSERT_EQ(fields.size(), 8u);
        EXPECT_EQ(points[i]["name"], std::to_string(i + 1));
        EXPECT_EQ(points[i]["target_mm"][0], fields[0]);
        EXPECT_EQ(points[i]["target_mm"][1], fields[1]);
        EXPECT_EQ(points[i]["start_mm"][0], fields[2]);
        EXPECT_EQ(points[i]["start_mm"][1], fields[3]);
        EXPECT_NEAR(points[i]["residual3D_mm"].get<double>() / values["scalexyz"], fields[7], 1e-6) << i;
    }
}

TEST_F(OtherPrograms, ControlPointsThatAreSwitchedOffAreLeftOutAndToldOf) {
    for (const char* file : {"qgis-plain.points", "qgis-residuals.points"}) {
        const std::string path = kFolder + file;
        for (const json& result : {FitJson({"--pairs", path}), FitJson({path, path})}) {
            EXPECT_EQ(result["points"].size(), 5u) << file;
            const json& notes = result["notes"];
            const auto found = std::find_if(notes.begin(), notes.end(), [](const json& note) {
                return note["code"] == "points-disabled";
            });
            ASSERT_NE(found, notes.end()) << file;
            EXPECT_EQ((*found)["line"], 8) << file;
        }
        // A transformation carries all of them.
        const std::string there = PathOf(file);
        const Outcome moved = FreshCommandLine({"transform", "--with", turn_, path, "--out", there});
        ASSERT_EQ(moved.Status, 0) << moved.Err;
        const std::string after = Contents(there);
        EXPECT_EQ(std::count(after.begin(), after.end(), '\n'), 8) << file;
        EXPECT_EQ(after.find("205.12195"), std::string::npos) << file;  // x of the last one has moved
    }
    const std::string heading = "mapX,mapY,sourceX,sourceY,enable,dX,dY,residual\n";
    const std::string rows = "1,2,3,4,1,0,0,0\n5,2,7,4,1,0,0,0\n1,9,3,11,1,0,0,0\n";
    // Points behind one that is switched off keep the numbers of their rows.
    const json result = FitJson({"--pairs", Write("numbers.points", heading + "8,8,8,8,0,0,0,0\n" + rows)});
    EXPECT_EQ(result["points"][0]["name"], "2");
    // What is neither on nor off is not guessed.
    const Outcome odd =
        FreshCommandLine({"fit", "--pairs", Write("odd.points", heading + rows + "1,2,3,4,maybe,0,0,0\n")});
    EXPECT_EQ(odd.Status, 3);
    EXPECT_NE(odd.Err.find("line 5: \"maybe\" of the column enable is neither 0 nor 1"), std::string::npos)
        << odd.Err;
}

// The program itself, with the locales of this system made where it has them not.
TEST_F(OtherPrograms, GermanFrenchAndNoLocaleGiveTheSameBytes) {
    const std::vector<std::string> locales = {"C", "de_DE.UTF-8", "fr_FR.UTF-8"};
    const auto made = [this](const std::string& name) {
        return "localedef -i " + name + " -f UTF-8 '" + PathOf(name + ".UTF-8") + "' >/dev/null 2>&1";
    };
    ASSERT_EQ(std::system((made("de_DE") + " & " + made("fr_FR") + " && wait $!").c_str()), 0);
    const std::string table = kFolder + "calc-german-commas.csv";
    const auto files = [&](const std::string& locale) {
        const std::string to = PathOf("in-" + locale);
        std::filesystem::create_directory(to);
        const std::string fit = "fit '" + kMeasured + "' '" + kNominal + "' ";
        std::string script = "cd '" + to + "' && export LC_ALL=" + locale + " LANG=" + locale + " LOCPATH='" +
                             PathOf("") + "'\n";
        int number = 0;
        for (const std::string& command :
             {fit + "--save a.cvn --report a.html --export kuka-base=b --details",
              fit + "--json --statistics", fit + "--csv", fit + "--protocol", std::string("info a.cvn"),
              std::string("convert a.cvn a.csv"), std::string("convert a.cvn a.json"),
              std::string("distances a.cvn --pairs p.txt --trumpet t.svg"),
              std::string("export a.cvn --as urdf"), std::string("export a.cvn --as points"),
              "transform --with a.cvn '" + table + "' --out -", std::string("render a.cvn --out r.svg"),
              "transform a.cvn '" + table + "' '" + kNominal + "' --to many --json",
              "bundle '" + kExamples + "hall_network.txt'", std::string("completion bash"),
              std::string("info none.cvn --json")}) {
            const std::string out = std::to_string(++number);
            script += "'" + ProgramPath() + "' " + command + " > " + out + ".out 2> " + out + ".err\n";
        }
        EXPECT_EQ(std::system((script + "true").c_str()), 0);
        std::map<std::string, std::string> contents;
        for (const auto& entry : std::filesystem::directory_iterator(to))
            contents[entry.path().filename().string()] = Contents(entry.path().string());
        return contents;
    };
    const auto inC = files("C");
    EXPECT_EQ(inC.size(), 40u + 1);
    EXPECT_NE(inC.at("2.out").find("\"corvinade-fit\""), std::string::npos);
    for (const std::string& locale : {locales[1], locales[2]}) EXPECT_EQ(files(locale), inC) << locale;
}
