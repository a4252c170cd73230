// `corvinade-cli transform` of clouds, its --with, and fits of clouds.
#include <cmath>
#include <filesystem>

#include "cli/fit_command.h"
#include "core/files.h"
#include "core/folders.h"
#include "import/cloud_bytes.h"

using namespace corvinade;

namespace {

using Names = std::vector<std::string>;

// The shift by 5, 6, 7.
const std::string kShift = "1 0 0 5\n0 1 0 6\n0 0 1 7\n0 0 0 1\n";
const std::string kHead =
    "ply\nformat binary_little_endian 1.0\nelement vertex 1\nproperty float x\nproperty float y\nproperty "
    "float z\nproperty uchar red\nend_header\n";

std::string Ply(float x, float y, float z) {
    return kHead + Packed(x) + Packed(y) + Packed(z) + "\x11";
}

class TransformClouds : public FitCommand {
protected:
    static Outcome Command(const std::vector<std::string>& arguments) { return FreshCommandLine(arguments); }
    // With bytes on standard input.
    static Outcome Piped(const std::vector<std::string>& arguments, const std::string& bytes) {
        FreshStart();
        Headless = HeadlessRecord{};
        std::vector<const char*> argv = {"corvinade-cli"};
        for (const std::string& argument : arguments) argv.push_back(argument.c_str());
        std::istringstream in(bytes);
        std::ostringstream out, err;
        const int status =
            RunCommandLine(static_cast<int>(argv.size()), argv.data(), in, out, err, false, false);
        return {status, out.str(), err.str()};
    }
    std::string matrix_ = Write("shift.txt", kShift);
    std::string ply_ = Write("in/a.ply", Ply(1, 2, 3));
};

TEST_F(TransformClouds, AMatrixAJobAndTheJsonOfAFitGiveTheSame) {
    const std::string job = PathOf("shift.cvn");
    const Outcome fit = Command({"fit", start_, target_, "--save", job, "--json"});
    ASSERT_EQ(fit.Status, 0) << fit.Err;
    const std::string json = Write("shift.json", fit.Out);
    for (const std::string& with : {matrix_, job, json}) {
        const std::string out = PathOf("out.ply");
        const Outcome outcome = Command({"transform", "--with", with, ply_, "--out", out, "--overwrite"});
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        EXPECT_EQ(outcome.Err, "1 of 1 files transformed\n");
        EXPECT_EQ(Contents(out), Ply(6, 8, 10)) << with;
    }
    EXPECT_EQ(Command({"transform", job, ply_, "--to", PathOf("to")}).Status, 0);
    EXPECT_EQ(Contents(PathOf("to/a_out.ply")), Ply(6, 8, 10));
    EXPECT_EQ(Command({"transform", job, ply_, "--to", PathOf("back"), "--inverse"}).Status, 0);
    EXPECT_EQ(Contents(PathOf("back/a_out.ply")), Ply(-4, -4, -4));
}

TEST_F(TransformClouds, AJobHasItsUnitAndWithHasMillimetres) {
    const std::string job = PathOf("meter.cvn");
    ASSERT_EQ(Command({"fit", start_, target_, "--length-unit", "m", "--save", job}).Status, 0);
    EXPECT_EQ(Command({"transform", job, ply_, "--to", PathOf("to")}).Status, 0);
    EXPECT_EQ(Contents(PathOf("to/a_out.ply")), Ply(6, 8, 10)) << "metres go 5, 6 and 7 m";
    EXPECT_EQ(Command({"transform", "--with", job, ply_, "--to", PathOf("mm")}).Status, 0);
    EXPECT_EQ(Contents(PathOf("mm/a_out.ply")), Ply(5001, 6002, 7003));
}

TEST_F(TransformClouds, TextKeepsItsFormWhereItIsACloudOrAsked) {
    const std::string cloud = Write("c.xyz", "1 2 3 255\n"), table = Write("t.txt", "A;1;2;3;r\r\n");
    ASSERT_EQ(Command({"transform", "--with", matrix_, cloud, table, "--to", PathOf("to")}).Status, 0);
    EXPECT_EQ(Contents(PathOf("to/c_out.xyz")), "6.000 8.000 10.000 255\n");
    EXPECT_EQ(Contents(PathOf("to/t_out.txt")), "A;6.000;8.000;10.000;r\r\n");
    const std::string job = PathOf("shift.cvn");
    ASSERT_EQ(Command({"fit", start_, target_, "--save", job}).Status, 0);
    ASSERT_EQ(Command({"transform", job, cloud, table, "--to", PathOf("job")}).Status, 0);
    EXPECT_EQ(Contents(PathOf("job/c_out.xyz")), "6.000 8.000 10.000 255\n");
    EXPECT_EQ(Contents(PathOf("job/t_out.txt")), "A\t6.000\t8.000\t10.000\r\n") << "as ever";
    EXPECT_EQ(Command({"transform", job, table, "--out", "-"}).Out, "A\t6.000\t8.000\t10.000\r\n");
    EXPECT_EQ(Command({"transform", job, table, "--out", "-", "--digits", "1"}).Out, "A;6.0;8.0;10.0;r\r\n");
    EXPECT_EQ(Command({"transform", job, table, "--out", "-", "--inverse"}).Out,
              "A;-4.000;-4.000;-4.000;r\r\n");
    EXPECT_EQ(Command({"transform", job, table, "--out", "-", "--columns", "-,z,y,x"}).Out,
              "A;8.000;8.000;8.000;r\r\n");
}

TEST_F(TransformClouds, StandardInputAndOutputAreFiles) {
    EXPECT_EQ(Piped({"transform", "--with", matrix_, "-", "--out", "-"}, Ply(1, 2, 3)).Out, Ply(6, 8, 10));
    EXPECT_EQ(Piped({"transform", "--with", "-", ply_, "--out", "-"}, kShift).Out, Ply(6, 8, 10));
    EXPECT_EQ(Piped({"transform", "--with", matrix_, "-", "--out", "-"}, "A 1 2 3\n").Out,
              "A 6.000 8.000 10.000\n");
    const Outcome bad = Piped({"transform", "--with", matrix_, "-", "--out", PathOf("new.ply")}, kHead);
    EXPECT_EQ(bad.Status, 3);
    EXPECT_NE(bad.Err.find("cut off"), std::string::npos);
    EXPECT_FALSE(File_Exist(PathOf("new.ply")));
}

TEST_F(TransformClouds, AFileThatIsCutOffLeavesTheOldResultAndTheRestIsDone) {
    const std::string cut = Write("in/b.ply", kHead + "1234"), old = Write("to/b_out.ply", "old");
    const Outcome outcome =
        Command({"transform", "--with", matrix_, PathOf("in"), "--to", PathOf("to"), "--overwrite"});
    EXPECT_EQ(outcome.Status, 3);
    EXPECT_EQ(Contents(old), "old");
    EXPECT_EQ(Contents(PathOf("to/a_out.ply")), Ply(6, 8, 10));
    EXPECT_EQ(FilesOfFolder(PathOf("to")), (Names{"a_out.ply", "b_out.ply"}));
    EXPECT_NE(outcome.Err.find("left: Cannot read \"" + cut + "\": it is cut off: 0 of 1"), std::string::npos)
        << outcome.Err;
    EXPECT_NE(outcome.Err.find("1 of 2 files transformed"), std::string::npos);
}

TEST_F(TransformClouds, AFullDiskLeavesNoHalfFile) {
    FileFaults.Refuse = [](const std::string& operation, const std::string& path) {
        return operation == "write" && path.ends_with("_out.ply") ? std::string("No space left on device")
                                                                  : std::string();
    };
    const Outcome outcome = Command({"transform", "--with", matrix_, ply_, "--to", PathOf("to")});
    EXPECT_EQ(outcome.Status, 1) << outcome.Err;
    EXPECT_EQ(FilesOfFolder(PathOf("to")), Names{});
}

TEST_F(TransformClouds, AViewpointThatStaysBehindIsTold) {
    const auto pcd = [](const std::string& viewpoint) {
        return "VERSION 0.7\nFIELDS x y z\nSIZE 4 4 4\nTYPE F F F\nCOUNT 1 1 1\nWIDTH 1\nHEIGHT 1\nVIEWPOINT " +
               viewpoint + "\nPOINTS 1\nDATA ascii\n1 2 3\n";
    };
    const std::string told = "The viewpoint of the cloud is not moved with its points", out = PathOf("o.pcd");
    const Outcome own = Command({"transform", "--with", matrix_, Write("own.pcd", pcd("0 0 5 1 0 0 0")),
                                 "--out", out, "--overwrite"});
    EXPECT_EQ(own.Status, 0) << own.Err;
    EXPECT_NE(own.Err.find(told), std::string::npos) << own.Err;
    EXPECT_NE(Contents(out).find("VIEWPOINT 0 0 5 1 0 0 0\n"), std::string::npos);
    EXPECT_NE(Contents(out).find("\n6.000 8.000 10.000\n"), std::string::npos) << Contents(out);
    const Outcome none = Command({"transform", "--with", matrix_, Write("none.pcd", pcd("0 0 0 1 0 0 0")),
                                  "--out", out, "--overwrite"});
    EXPECT_EQ(none.Err.find(told), std::string::npos) << none.Err;
}

TEST_F(TransformClouds, ResultsAreReplacedWithOverwriteAlone) {
    const std::string out = Write("out.ply", "old");
    EXPECT_EQ(Command({"transform", "--with", matrix_, ply_, "--out", out}).Status, 1);
    EXPECT_EQ(Contents(out), "old");
    EXPECT_EQ(Command({"transform", "--with", matrix_, ply_, "--out", ply_, "--overwrite"}).Status, 2)
        << "no file of the user's is changed";
    EXPECT_EQ(Contents(ply_), Ply(1, 2, 3));
}

TEST_F(TransformClouds, WarningsEndAStrictRunBeforeItWrites) {
    const std::string normals = Write("n.xyz", "1 2 3 0.6 0.8 0.0\n");
    Outcome outcome =
        Command({"transform", "--with", matrix_, normals, "--out", PathOf("n.out"), "--strict"});
    EXPECT_EQ(outcome.Status, 3);
    EXPECT_NE(outcome.Err.find("warning: Columns look like a normal"), std::string::npos) << outcome.Err;
    EXPECT_FALSE(File_Exist(PathOf("n.out")));
    outcome = Command(
        {"transform", "--with", matrix_, normals, "--out", "-", "--strict", "--columns", "x,y,z,nx,ny,nz"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(outcome.Out, "6.000 8.000 10.000 0.600000 0.800000 0.000000\n");
    outcome = Piped({"transform", "--with", matrix_, "-", "--out", PathOf("n.out"), "--strict"},
                    "A 1 2 3 0.6 0.8 0.0\n# nothing\n");
    EXPECT_EQ(outcome.Status, 3);
    EXPECT_FALSE(File_Exist(PathOf("n.out")));
}

TEST_F(TransformClouds, MatricesThatAreNoneAreRefused) {
    const auto refusal = [this](const std::string& text) {
        const Outcome outcome =
            Command({"transform", "--with", Write("m.txt", text), ply_, "--out", PathOf("out.ply")});
        EXPECT_EQ(outcome.Status, 3) << text;
        EXPECT_FALSE(File_Exist(PathOf("out.ply")));
        return outcome.Err;
    };
    EXPECT_NE(refusal("1 0 0 5\n0 1 0 6\n0 0 1 7\n").find("has 12 numbers"), std::string::npos);
    EXPECT_NE(refusal("1 0 0 5\n0 1 x 6\n0 0 1 7\n0 0 0 1\n").find("line 2, column 3: \"x\""),
              std::string::npos);
    EXPECT_NE(refusal("1 0 0 5\n0 1 0 6\n0 0 1 7\n0 0 1 1\n").find("last row"), std::string::npos);
    EXPECT_NE(refusal("1 0 0 5\n0 1 0 6\n1 1 0 7\n0 0 0 1\n").find("singular"), std::string::npos);
    EXPECT_NE(refusal("1 0 0 nan\n0 1 0 6\n0 0 1 7\n0 0 0 1\n").find("column 4: \"nan\""), std::string::npos);
    EXPECT_NE(refusal("{\"schema\": ").find("it is no JSON"), std::string::npos);
    EXPECT_NE(refusal("{}").find("its schema"), std::string::npos);
    EXPECT_NE(refusal("{\"schema\": \"corvinade-fit\"}").find("\"transformation\""), std::string::npos);
    EXPECT_NE(refusal("{\"schema\": \"corvinade-transformation\", \"matrix\": [[1, 0], []]}").find("4 lists"),
              std::string::npos);
    EXPECT_NE(refusal("").find("it is empty"), std::string::npos);
    // What is between the numbers does not matter.
    const std::string commas = Write("c.txt", "# a matrix\n1,0,0,5\n0,1,0,6\n0,0,1,7\n0,0,0,1\n");
    EXPECT_EQ(Command({"transform", "--with", commas, ply_, "--out", "-"}).Out, Ply(6, 8, 10));
    const std::string json = Write(
        "c.json",
        "{\"schema\": \"corvinade-transformation\", \"matrix\": [[1, 0, 0, 5], [0, 1, 0, 6], [0, 0, 1, 7], [0, 0, 0, 1]]}");
    EXPECT_EQ(Command({"transform", "--with", json, ply_, "--out", "-"}).Out, Ply(6, 8, 10));
}

TEST_F(TransformClouds, AResultThatDidNotConvergeIsTakenWhereTheUserSaysSo) {
    const std::string result =
        Write("r.json",
              "{\"schema\": \"corvinade-fit\", \"converged\": false, \"transformation\": {\"matrix\": "
              "[[1, 0, 0, 5], [0, 1, 0, 6], [0, 0, 1, 7], [0, 0, 0, 1]]}}");
    EXPECT_EQ(Command({"transform", "--with", result, ply_, "--out", "-"}).Status, 4);
    const Outcome outcome = Command({"transform", "--with", result, ply_, "--out", "-", "--unconverged"});
    EXPECT_EQ(outcome.Status, 0);
    EXPECT_EQ(outcome.Out, Ply(6, 8, 10));
    EXPECT_NE(outcome.Err.find("warning: The result of the fit did not converge"), std::string::npos);
}

TEST_F(TransformClouds, WrongUsageIsTold) {
    const std::string to = PathOf("to");
    for (const Names& arguments :
         std::vector<Names>{{ply_, "--to", to},
                            {"--with", matrix_, "--to", to},
                            {"--with", matrix_, ply_},
                            {"--with", matrix_, ply_, "--to", to, "--out", "-"},
                            {"--with", matrix_, ply_, ply_, "--out", "-"},
                            {"--with", matrix_, PathOf("in"), "--out", "-"},
                            {"--with", matrix_, "-", "--to", to},
                            {"--with", "-", "-", "--out", "-"},
                            {"--with", matrix_, ply_, "--out", "-", "--json"},
                            {"--with", matrix_, ply_, "--to", to, "--digits", "13"},
                            {"--with", matrix_, ply_, "--to", to, "--columns", "x,y"}}) {
        Names all = arguments;
        all.insert(all.begin(), "transform");
        EXPECT_EQ(Command(all).Status, 2) << Command(all).Err;
    }
    const Outcome columns = Command({"transform", "--with", matrix_, ply_, "--to", to, "--columns", "x,y,z"});
    EXPECT_EQ(columns.Status, 3);
    EXPECT_NE(columns.Err.find("--columns has no place"), std::string::npos);
}

// --- Fits -------------------------------------------------------------------------------------------------

class FitClouds : public FitCommand {};

const std::string kXyz = "property double x\nproperty double y\nproperty double z\nend_header\n";
const std::vector<std::array<double, 3>> kPoints = {{0, 0, 0}, {1000, 0, 0}, {0, 2000, 0}, {0, 0, 3000}};

void ExpectShift(const json& result, double x, double y, double z) {
    const json t = result["transformation"]["translation_mm"];
    EXPECT_NEAR(t[0].get<double>(), x, 1e-6);
    EXPECT_NEAR(t[1].get<double>(), y, 1e-6);
    EXPECT_NEAR(t[2].get<double>(), z, 1e-6);
}

TEST_F(FitClouds, PlyAndPcdArePairedByTheNumbersOfTheirPoints) {
    std::string ply = "ply\nformat binary_big_endian 1.0\nelement vertex 4\n" + kXyz;
    std::string pcd =
        "# .PCD v0.7\nFIELDS x y z\nSIZE 8 8 8\nTYPE F F F\nWIDTH 4\nHEIGHT 1\nPOINTS 4\nDATA binary\n";
    for (const auto& p : kPoints) {
        for (const double value : p) ply += Packed(value, true);
        for (std::size_t k = 0; k < 3; ++k) pcd += Packed(p[k] + 5 + static_cast<double>(k));
    }
    const json result = FitJson({Write("a.ply", ply), Write("b.pcd", pcd)});
    ExpectShift(result, 5, 6, 7);
    EXPECT_EQ(result["points"].size(), 4U);
    EXPECT_EQ(result["points"][0]["name"], "1");
}

TEST_F(FitClouds, PointsOfLandXmlHaveTheUnitOfTheirFile) {
    std::string xml = "<LandXML><Units><Metric linearUnit=\"meter\"/></Units><CgPoints>";
    std::string text;
    for (std::size_t i = 0; i < 4; ++i) {
        const auto& p = kPoints[i];
        xml += "<CgPoint name=\"P" + std::to_string(i) + "\">" + std::to_string(p[1] / 1000) + " " +
               std::to_string(p[0] / 1000) + " " + std::to_string(p[2] / 1000) + "</CgPoint>";
        text += "P" + std::to_string(i) + ";" + std::to_string(p[0] + 5) + ";" + std::to_string(p[1]) + ";" +
                std::to_string(p[2]) + "\n";
    }
    const json result = FitJson({Write("a.xml", xml + "</CgPoints></LandXML>"), Write("b.txt", text)});
    ExpectShift(result, 5, 0, 0);
}

TEST_F(FitClouds, BothSystemsOfOneFileAreFitted) {
    std::string pairs = "name,x,y,z,X,Y,Z\n", plain, map = "mapX,mapY,sourceX,sourceY,enable\n";
    for (std::size_t i = 0; i < 4; ++i) {
        const auto& p = kPoints[i];
        const auto text = [](double value) { return std::to_string(value); };
        const std::string row = text(p[0]) + "," + text(p[1]) + "," + text(p[2]);
        plain += "P" + std::to_string(i) + "," + text(p[0] + 5) + "," + text(p[1] + 6) + "," +
                 text(p[2] + 7) + "," + row + "\n";
        pairs += "P" + std::to_string(i) + "," + row + "," + text(p[0] + 5) + "," + text(p[1] + 6) + "," +
                 text(p[2] + 7) + "\n";
        if (i < 3)
            map += text(p[0] + 50) + "," + text(p[1] - 60) + "," + text(p[0]) + "," + text(p[1]) + ",1\n";
    }
    const json result = FitJson({"--pairs", Write("pairs.csv", pairs)});
    ExpectShift(result, 5, 6, 7);
    EXPECT_EQ(result["points"][0]["name"], "P0");
    ExpectShift(FitJson({"--pairs", Write("plain.csv", plain), "--columns", "name,X,Y,Z,x,y,z"}), 5, 6, 7);
    const json ofMap = FitJson({"--pairs", Write("a.points", map), "--hold", "rotx=0", "--hold", "roty=0"});
    ExpectShift(ofMap, 50, -60, 0);
    EXPECT_NE(ofMap["notes"].dump().find("\"no-height\""), std::string::npos) << ofMap["notes"];
}

TEST_F(FitClouds, TrajectoriesArePairedByTheirTimes) {
    std::string start, target;
    for (std::size_t i = 0; i < 4; ++i) {
        const auto& p = kPoints[i];
        const std::string time = "1305031102.17" + std::to_string(i), turn = " 0 0 0 1\n";
        start += time + " " + std::to_string(p[0]) + " " + std::to_string(p[1]) + " " + std::to_string(p[2]) +
                 turn;
        // The last comes first.
        target = time + " " + std::to_string(p[0]) + " " + std::to_string(p[1] + 9) + " " +
                 std::to_string(p[2]) + turn + target;
    }
    const json result = FitJson({Write("a.tum", start), Write("b.tum", target)});
    ExpectShift(result, 0, 9, 0);
    EXPECT_EQ(result["points"][0]["name"], "1305031102.170");
}

// The same trajectory in metres and in millimetres, the one in UTF-16 without a mark.
TEST_F(FitClouds, WhatTheUserSaysOfACarrierHolds) {
    std::string metres, target;
    for (std::size_t i = 0; i < 4; ++i) {
        const auto& p = kPoints[i];
        const auto row = [&](double x, double y, double z) {
            return std::to_string(i) + ".5 " + std::to_string(x) + " " + std::to_string(y) + " " +
                   std::to_string(z) + " 0 0 0 1\n";
        };
        for (const char c : row(p[0] / 1000, p[1] / 1000, p[2] / 1000)) metres += std::string{c, '\0'};
        target += row(p[0] + 5, p[1], p[2]);
    }
    const std::string start = Write("a.tum", metres), other = Write("b.tum", target);
    const json result = FitJson({start, other, "--start-unit", "m", "--start-encoding", "utf-16le"});
    ExpectShift(result, 5, 0, 0);
    EXPECT_EQ(result["files"][0]["unit"], "m");
    EXPECT_EQ(result["files"][1]["unit"], "mm");
    for (const auto& option : std::vector<std::vector<std::string>>{{"--skip", "1"}, {"--comment", "#"}}) {
        const Outcome outcome = Fit({other, other, option[0], option[1]});
        EXPECT_EQ(outcome.Status, 3) << option[0];
        EXPECT_NE(outcome.Err.find(option[0]), std::string::npos) << outcome.Err;
    }
}

TEST_F(FitClouds, ARowThatIsNoPointIsNotMissingWithoutAWord) {
    const std::string good =
        "name,x,y,z,X,Y,Z\nA,0,0,0,5,0,0\nB,9,0,0,14,0,0\nC,0,9,0,5,9,0\n# end\n,,,,,,\n";
    const std::vector<std::array<std::string, 2>> rows = {
        {"D,0,1o0,9,5,0,9\n", "line 7, column 3: \"1o0\" is not a number (--skip-bad passes it over)"},
        {"D,0,0,9,5,0,\n", "line 7, column 7: the coordinate is missing"},
        {"D,0,0,9,5,nan,9\n", "line 7, column 6: \"nan\" is not a number"},
        {"D\n", "line 7, column 2: the coordinate is missing"},
    };
    for (const auto& [row, why] : rows) {
        const std::string path = Write("p.csv", good + row);
        const Outcome refused = Fit({"--pairs", path});
        EXPECT_EQ(refused.Status, 3);
        EXPECT_NE(refused.Err.find(why), std::string::npos) << refused.Err;
        const json passed = FitJson({"--pairs", path, "--skip-bad"});
        EXPECT_EQ(passed["points"].size(), 3U);
        EXPECT_NE(passed["notes"].dump().find("passed over"), std::string::npos) << passed["notes"];
    }
    ExpectShift(FitJson({"--pairs", Write("g.csv", "Title\n3\n" + good)}), 5, 0, 0);
    const std::string units = Write("u.csv", "name,x,y,z,X,Y,Z\n,m,m,m,m,m,m\nA,0,0,0,5,0,0\n");
    EXPECT_NE(Fit({"--pairs", units}).Err.find("line 2, column 2: \"m\" is not a number"), std::string::npos);
    const std::string lost = Write("lost.tum", "1 0 0 0 0 0 0 1\n2 9 x 0 0 0 0 1\n3 0 9 0 0 0 0 1\n");
    EXPECT_NE(Fit({lost, lost}).Err.find("line 2, column 3: \"x\" is not a number"), std::string::npos);
}

TEST_F(FitClouds, APointOfLandXmlThatIsNoneIsRefusedAndOneWithoutTextIsNoted) {
    const std::string begin =
        "<LandXML><CgPoints><CgPoint name=\"A\">0 0 0</CgPoint>\n<CgPoint name=\"B\">0 900 0</CgPoint>\n"
        "<CgPoint name=\"C\">900 0 0</CgPoint>\n";
    const std::string end = "</CgPoints></LandXML>\n";
    for (const char* const text : {"1 x 3", "1 2", "1 2 3 4", "<!-- c -->1 2 3", "1 <!-- c --> 2 3"}) {
        const std::string path = Write("p.xml", begin + "<CgPoint name=\"D\">" + text + "</CgPoint>" + end);
        const Outcome refused = Fit({path, path});
        EXPECT_EQ(refused.Status, 3) << text;
        EXPECT_NE(refused.Err.find("line 4: "), std::string::npos) << refused.Err;
        EXPECT_NE(refused.Err.find("--skip-bad"), std::string::npos) << refused.Err;
        const json passed = FitJson({path, path, "--skip-bad"});
        EXPECT_EQ(passed["points"].size(), 3u) << text;
        EXPECT_EQ(passed["files"][0]["skipped"], 1) << text;
    }
    const std::string other = Write("o.xml", begin + "<CgPoint name=\"D\" pntRef=\"A\"></CgPoint>" + end);
    EXPECT_EQ(FitJson({other, other})["points"].size(), 3u);
    const std::string out = Write("c.xml", begin + "<!-- <CgPoint name=\"D\">1 x 3</CgPoint> -->" + end);
    const json none = FitJson({out, out});
    EXPECT_EQ(none["notes"].dump().find("lines-kept"), std::string::npos);
    EXPECT_EQ(none["files"][0]["skipped"], 0);
}

TEST_F(FitClouds, FilesTellHowManyBadRowsWerePassedOver) {
    const std::string rows = "# by hand\n1 0 0 0 0 0 0 1\n2 900 0 0 0 0 0 1\n# more\n3 0 900 0 0 0 0 1\n",
                      good = Write("good.tum", rows);
    const json bad = FitJson({Write("bad.tum", rows + "4 9 x 0 0 0 0 1\n5 9\n"), good, "--skip-bad"});
    EXPECT_EQ(bad["files"][0]["skipped"], 2);
    EXPECT_EQ(bad["files"][1]["skipped"], 0);
    const std::string pairs =
        Write("p.csv", "name,x,y,z,X,Y,Z\nA,0,0,0,5,0,0\nB,9,0,0,14,0,0\nC,0,9,0,5,9,0\nD,0,o,9,5,0,9\n");
    const json both = FitJson({"--pairs", pairs, "--skip-bad"});
    EXPECT_EQ(both["files"][0]["skipped"], 1);
    EXPECT_EQ(both["files"][1]["skipped"], 1);
}

// The reader of plain points knows neither, and would take every row otherwise.
TEST_F(TransformClouds, PipesAreADelimiterThatCanBeNamed) {
    const std::string job = PathOf("job.cvn");
    ASSERT_EQ(Command({"fit", start_, target_, "--save", job}).Status, 0);
    const std::string in = Write("in.txt", "A|1|2|3\nB|4|5|6\n");
    EXPECT_EQ(FreshCommandLine({"transform", job, in, "--out", PathOf("o"), "--delimiter", "pipe"}).Status,
              0);
    EXPECT_EQ(Contents(PathOf("o")).substr(0, 2), "A|");
}

TEST_F(TransformClouds, ANameOfAnotherFormChangesNoneAndIsTold) {
    const std::string other = PathOf("o.pcd"), same = PathOf("o.ply");
    const Outcome outcome = Command({"transform", "--with", matrix_, ply_, "--out", other});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(Contents(other), Ply(6, 8, 10));
    EXPECT_NE(outcome.Err.find("though its name says otherwise"), std::string::npos) << outcome.Err;
    EXPECT_EQ(Command({"transform", "--with", matrix_, ply_, "--out", same}).Err,
              "1 of 1 files transformed\n");
}

TEST_F(TransformClouds, AHeadingIsHeededWithoutAnOption) {
    const std::string job = PathOf("job.cvn");
    ASSERT_EQ(Command({"fit", start_, target_, "--save", job}).Status, 0);
    const std::string in = Write("in.csv", "Hochwert;Rechtswert;H\xC3\xB6he [m];Punkt\n2;1;3;A\n5;4;6;B\n");
    const Outcome outcome = FreshCommandLine({"transform", job, in, "--out", PathOf("o.csv")});
    const Outcome said = FreshCommandLine(
        {"transform", job, in, "--out", PathOf("p.csv"), "--columns", "y,x,z,name", "--unit", "m"});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_EQ(said.Status, 0) << said.Err;
    EXPECT_EQ(Contents(PathOf("o.csv")), Contents(PathOf("p.csv")));
    EXPECT_NE(outcome.Err.find("a table of y,x,z,name: it comes out in this form"), std::string::npos)
        << outcome.Err;
}

TEST_F(FitClouds, HeadingsAreNoLinesThatArePassedOver) {
    std::string map = "#CRS: PROJCRS[\"x\"]\nmapX,mapY,sourceX,sourceY,enable\n";
    map += "50,60,0,0,1\n150,60,100,0,1\n50,160,0,100,1\n";
    const json result = FitJson({"--pairs", Write("a.points", map), "--hold", "rotx=0", "--hold", "roty=0"});
    EXPECT_EQ(result["notes"].dump().find("passed over"), std::string::npos) << result["notes"];
}

TEST_F(FitClouds, EqualNamesAreToldWhereCoordinatesPair) {
    const std::string twice =
        Write("twice.xml",
              "<LandXML><CgPoint name=\"A\">0 0 0</CgPoint><CgPoint name=\"A\">0 100 0</CgPoint>"
              "<CgPoint name=\"B\">100 0 0</CgPoint></LandXML>");
    const std::string other = Write("b.txt", "P;0;0;0\nQ;100;0;0\nR;0;100;0\n");
    const json notes = FitJson({twice, other, "--match", "coordinate"})["notes"];
    EXPECT_NE(notes.dump().find("Its points 1 and 2 have the same name"), std::string::npos) << notes;
    EXPECT_NE(notes.dump().find("duplicate-name"), std::string::npos) << notes;
}

TEST_F(FitClouds, BadOnesAreRefused) {
    const std::string good = Write("a.txt", "A;1;2;3\nB;4;5;6\n");
    const auto refusal = [](const std::vector<std::string>& arguments, int status) {
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, status) << outcome.Err;
        return outcome.Err;
    };
    const std::string cut =
        Write("cut.ply", "ply\nformat binary_big_endian 1.0\nelement vertex 4\n" + kXyz + "1");
    EXPECT_NE(refusal({cut, good}, 3).find("cut off"), std::string::npos);
    EXPECT_NE(refusal({good, cut}, 3).find("cut off"), std::string::npos);
    const std::string twice =
        Write("twice.xml",
              "<LandXML><CgPoint name=\"A\">1 2 3</CgPoint><CgPoint name=\"A\">4 5 6</CgPoint></LandXML>");
    EXPECT_NE(refusal({twice, good}, 3).find("its points 1 and 2 have the same name \"A\""),
              std::string::npos);
    EXPECT_NE(refusal({"--pairs", good}, 3).find("--columns name,x,y,z,X,Y,Z"), std::string::npos);
    refusal({good, "--pairs", good}, 2);
    refusal({good, good, "--columns", "name,x,y,z,X,Y,Z"}, 2);  // both systems go with --pairs
    refusal({"--pairs", good, "--match", "distance"}, 2);
}

}  // namespace
