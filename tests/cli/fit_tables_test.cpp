// `corvinade-cli fit` on tables of all kinds: its options for them, what it tells of them, and its refusals.
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <thread>

#include "cli/fit_command.h"
#include "core/notes.h"

using namespace corvinade;

namespace {

class FitTables : public FitCommand {
protected:
    // As a user types it, without a decimal delimiter.
    static Outcome Run(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "fit");
        return FreshCommandLine(arguments);
    }
    static json RunJson(std::vector<std::string> arguments) {
        arguments.emplace_back("--json");
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.Status, 0) << outcome.Err;
        return outcome.Status == 0 ? json::parse(outcome.Out) : json();
    }
    static Outcome Piped(const std::vector<std::string>& arguments, const std::string& text) {
        std::vector<const char*> argv = {"corvinade-cli"};
        for (const std::string& argument : arguments) argv.push_back(argument.c_str());
        FreshStart();
        Headless = HeadlessRecord{};
        std::istringstream in(text);
        std::ostringstream out, err;
        const int status =
            RunCommandLine(static_cast<int>(argv.size()), argv.data(), in, out, err, false, false);
        return Outcome{status, out.str(), err.str()};
    }
    // Everything but the files.
    static json Result(std::vector<std::string> arguments) {
        json result = RunJson(std::move(arguments));
        for (const char* member : {"input", "files", "notes"}) result.erase(member);
        return result;
    }
    // The points of start_ in another form.
    std::string Points(const std::string& name, const std::string& heading, const std::string& gap,
                       double unit = 1, bool comma = false) const {
        std::string text = heading;
        const double rows[5][3] = {{0, 0, 0}, {1000, 0, 0}, {0, 2000, 0}, {0, 0, 3000}, {700, 800, 900}};
        for (int i = 0; i < 5; ++i) {
            text += std::string(1, static_cast<char>('A' + i));
            for (const double value : rows[i]) {
                std::string number = std::to_string(value / unit);
                if (comma) std::replace(number.begin(), number.end(), '.', ',');
                text += gap + number;
            }
            text += "\n";
        }
        return Write(name, text);
    }
};

const char* const kHeading = "Name;X;Y;Z\n";

}  // namespace

TEST_F(FitTables, GiveTheSameAsThePlainFile) {
    const json plain = Result({start_, target_});
    EXPECT_EQ(Result({Points("heading.csv", kHeading, ";"), target_}), plain);
    EXPECT_EQ(Result({Points("blanks.txt", "", "   "), target_}), plain);
    EXPECT_EQ(Result({Points("comma.csv", kHeading, ";", 1, true), target_}), plain);
    EXPECT_EQ(Result({Points("sharp.txt", "# by hand\n", ";"), target_}), plain);
    EXPECT_EQ(Result({Points("pipe.txt", "", "|"), target_}), plain);
}

TEST_F(FitTables, OfOneFileAreReadByItsOwnOptions) {
    const json plain = Result({start_, target_});
    EXPECT_EQ(Result({Points("m.txt", "", ";", 1000), target_, "--start-unit", "m"})["points"].size(), 5u);
    const json metres = Result({Points("m.txt", "", ";", 1000), target_, "--start-unit", "m"});
    const json heading = Result({Points("h.csv", "Name;X [m];Y [m];Z [m]\n", ";", 1000), target_});
    for (std::size_t i = 0; i < 5; ++i)
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double truth = plain["points"][i]["start_mm"][axis].get<double>();
            EXPECT_NEAR(metres["points"][i]["start_mm"][axis].get<double>(), truth, 1e-9);
            EXPECT_NEAR(heading["points"][i]["start_mm"][axis].get<double>(), truth, 1e-9);
        }
    // z and x have changed places in the file of the start points alone.
    const std::string turned =
        Write("turned.txt", "A;0;0;0\nB;0;0;1000\nC;0;2000;0\nD;3000;0;0\nE;900;800;700\n");
    EXPECT_EQ(Result({turned, target_, "--start-columns", "name,z,y,x"}), plain);
    EXPECT_EQ(Result({Points("skip.txt", "7;8;9;10;11\n1 2\n", ";"), target_, "--start-skip", "2"}), plain);
    EXPECT_EQ(Result({Points("own.txt", "~ a comment;1;2;3\n", ";"), target_, "--start-comment", "~"}),
              plain);
    EXPECT_EQ(Result({Points("c.txt", "", ";", 1, true), target_, "--start-decimal", ","}), plain);
    EXPECT_EQ(Run({Points("c.txt", "", ";", 1, true), target_, "--decimal", "."}).Status, 3);
    EXPECT_EQ(Result({start_, Points("t.txt", "", "\t"), "--target-delimiter", "tab"})["points"].size(), 5u);
    EXPECT_EQ(Run({start_, Points("t.txt", "", "\t"), "--target-delimiter", "comma"}).Status, 3);
}

TEST_F(FitTables, InOtherUnitsAreBroughtTogether) {
    // 1 ft = 304.8 mm, 1 in = 25.4 mm, by definition.
    for (const auto& [unit, mm] : std::vector<std::pair<std::string, double>>{
             {"mm", 1}, {"cm", 10}, {"m", 1000}, {"km", 1e6}, {"in", 25.4}, {"ft", 304.8}}) {
        const std::string file = Write("u.txt", "A;0;0;0\nB;1;0;0\nC;0;1;0\nD;0;0;1\n");
        const json fit = RunJson({file, file, "--start-unit", unit, "--target-unit", "mm", "--parameters",
                                  "7", "--length-unit", "m"});
        EXPECT_NEAR(fit["transformation"]["scales"][0].get<double>() * mm, 1, 1e-9) << unit;
        EXPECT_EQ(fit["files"][0]["unit"], unit);
        EXPECT_EQ(fit["files"][1]["unit"], "mm");
        EXPECT_EQ(fit["input"]["lengthUnit"], "meter");
    }
}

TEST_F(FitTables, AreToldWithWhatWasFoundOfThem) {
    const std::string csv = Write(
        "a.csv", "Report\nName,\"X [m]\",Y [m],Z [m],Remark\nA,0,0,0,a\nB,1,0,0,b\nC,0,2,0,c\nD,0,0,3,d\n");
    const json fit = RunJson({csv, target_});
    EXPECT_EQ(fit["files"], json::parse(R"([{"file": ")" + csv + R"(", "format": "table", "encoding": "utf-8",
        "delimiter": "comma", "decimal": ".", "headingLines": 2, "columns": "name,x,y,z,-", "unit": "m",
        "skipped": 0}, {"file": ")" + target_ +
                                        R"(", "format": "plain", "encoding": "utf-8",
        "delimiter": "semicolon", "decimal": ".", "headingLines": 0, "columns": "name,x,y,z", "unit": "mm",
        "skipped": 0}])"));
    const Outcome verbose = Run({csv, target_, "--verbose"});
    EXPECT_NE(verbose.Err.find("START " + csv +
                               ": table, utf-8, comma, decimal ., 2 lines of heading, columns "
                               "name,x,y,z,-, in m, 0 lines passed over\n"),
              std::string::npos)
        << verbose.Err;
    EXPECT_NE(verbose.Err.find("TARGET " + target_ + ": plain, "), std::string::npos) << verbose.Err;
    EXPECT_EQ(RunJson({start_, target_, "--format", "plain"})["files"], RunJson({start_, target_})["files"]);
}

TEST_F(FitTables, BadRowsAreRefusedAndMayBePassedOver) {
    const std::string bad =
        Write("bad.csv", "Name;X;Y;Z\nA;0;0;0\nB;1000;0;0\nQ;12,5x;0;0\nC;0;2000;0\nR;1;2\nD;0;0;3000\n");
    const Outcome refused = Run({bad, target_});
    EXPECT_EQ(refused.Status, 3);
    EXPECT_NE(refused.Err.find("Cannot read \"" + bad +
                               "\", line 4, column 2: \"12,5x\" is not a number (--skip-bad "
                               "passes it over)\n"),
              std::string::npos)
        << refused.Err;
    EXPECT_EQ(refused.Out, "");
    const json passed = RunJson({bad, target_, "--skip-bad"});
    EXPECT_EQ(passed["counts"]["start"], 4);
    EXPECT_EQ(passed["files"][0]["skipped"], 2);
    ASSERT_EQ(passed["notes"].size(), 1u) << passed["notes"].dump();
    EXPECT_EQ(passed["notes"][0]["code"], "lines-skipped");
    EXPECT_EQ(passed["notes"][0]["line"], 4);
    EXPECT_EQ(passed["notes"][0]["count"], 2);
    // A target's text is no longer 0.
    EXPECT_EQ(Run({start_, Write("t.txt", "A;5;6;7\nB;1005;6;seven\nC;5;2006;7\n")}).Status, 3);
}

TEST_F(FitTables, OneCommaForBothIsRefusedUntilAnOptionDecides) {
    const std::string file =
        Write("both.csv", "A,0,5,0,5,0,5\nB,100,5,0,5,0,5\nC,0,5,200,5,0,5\nD,0,5,0,5,300,5\n");
    const Outcome refused = Run({file, file});
    EXPECT_EQ(refused.Status, 3);
    for (const char* part : {"--decimal", "--delimiter", "x 0, y 5, z 0", "x 0,5, y 0,5, z 0,5"})
        EXPECT_NE(refused.Err.find(part), std::string::npos) << part << refused.Err;
    const json joined = RunJson({file, file, "--start-decimal", ",", "--target-decimal", ","});
    EXPECT_EQ(joined["points"][1]["start_mm"], json::parse("[100.5, 0.5, 0.5]"));
    const json apart = RunJson({file, file, "--decimal", ".", "--match", "coordinate"});
    EXPECT_EQ(apart["points"][1]["start_mm"], json::parse("[100, 5, 0]"));
}

TEST_F(FitTables, AreReadFromStandardInputAndPipes) {
    const std::string from = Run({start_, target_, "--csv"}).Out;
    ASSERT_FALSE(from.empty());
    EXPECT_EQ(Piped({"fit", "-", target_, "--csv"}, Contents(start_)).Out, from);
    EXPECT_EQ(Piped({"fit", start_, "-", "--csv"}, Contents(target_)).Out, from);
    EXPECT_EQ(Piped({"fit", "-", "-"}, Contents(start_)).Status, 2);
    const Outcome bad = Piped({"fit", "-", target_}, "A;1;2;3\nB;x;2;3\n");
    EXPECT_EQ(bad.Status, 3);
    EXPECT_NE(bad.Err.find("Cannot read \"standard input\", line 2, column 2"), std::string::npos) << bad.Err;
    const std::string pipe = PathOf("pipe");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    std::thread writer([&] {
        std::FILE* const file = std::fopen(pipe.c_str(), "wb");
        const std::string text = Contents(start_);
        std::fwrite(text.data(), 1, text.size(), file);
        std::fclose(file);
    });
    EXPECT_EQ(Run({pipe, target_, "--csv"}).Out, from);
    writer.join();
}

TEST_F(FitTables, AndFilesOfAllOtherKindsAreReadFromStandardInputToo) {
    const std::string text = Contents(start_);
    for (const std::string format : {"auto", "plain"}) {
        const std::string plain = Run({start_, target_, "--csv", "--format", format}).Out;
        EXPECT_EQ(Piped({"fit", "-", target_, "--csv", "--format", format}, text).Out, plain);
        EXPECT_EQ(Piped({"fit", start_, "-", "--csv", "--format", format}, Contents(target_)).Out, plain);
    }
    // Poses in all forms: with the same names as the points.
    const std::string poses =
        "1;5;6;7;10;20;30\n2;1005;6;7;11;21;31\n3;5;2006;7;12;22;32\n4;5;6;3007;13;23;33\n";
    const std::string points = Write("p.txt", "1;0;0;0\n2;1000;0;0\n3;0;2000;0\n4;0;0;3000\n");
    const std::string file = Write("poses.txt", poses);
    const std::string ofFile = Run({points, file, "--as", "xyzabc", "--csv"}).Out;
    ASSERT_FALSE(ofFile.empty());
    EXPECT_EQ(Piped({"fit", points, "-", "--as", "xyzabc", "--csv"}, poses).Out, ofFile);
    const Outcome wrong = Piped({"fit", points, "-", "--as", "kuka"}, text);
    EXPECT_EQ(wrong.Status, 3);
    EXPECT_NE(wrong.Err.find("Cannot read \"-\""), std::string::npos) << wrong.Err;
    const std::string ply =
        "ply\nformat ascii 1.0\nelement vertex 3\nproperty float x\nproperty float y\nproperty float z\n"
        "end_header\n1 2 3\n4 5 7\n7 9 9\n";
    const std::string cloud = Write("c.ply", ply);
    EXPECT_EQ(Piped({"fit", "-", cloud, "--csv"}, ply).Out, Run({cloud, cloud, "--csv"}).Out);
    const std::string pairs = "x,y,z,X,Y,Z\n0,0,0,1,2,3\n9,0,0,10,2,3\n0,9,0,1,11,3\n";
    EXPECT_EQ(Piped({"fit", "--pairs", "-", "--csv"}, pairs).Out,
              Run({"--pairs", Write("pairs.csv", pairs), "--csv"}).Out);
    EXPECT_EQ(Piped({"fit", "-", target_, "--poses", "-"}, text).Status, 2);
    // What the told reader asks to change is no file here.
    const std::string commas = "A;1,5;2;3\nB;4,5;5;6\nC;7;1;9\n";
    EXPECT_NE(Piped({"fit", "-", target_, "--format", "plain", "--yes"}, commas).Status, 0);
    EXPECT_FALSE(std::filesystem::exists("-"));
}

TEST_F(FitTables, AJobGoesFromCommandToCommandWithoutAFile) {
    const std::string job = PathOf("a.cvn");
    ASSERT_EQ(Run({start_, target_, "--save", job}).Status, 0);
    const Outcome saved = Run({start_, target_, "--save", "-"});
    EXPECT_EQ(saved.Status, 0);
    EXPECT_EQ(saved.Out, Contents(job)) << "the job stands in the place of the table";
    const std::vector<std::vector<std::string>> commands = {
        {"info", job}, {"export", job, "--as", "matrix"}, {"distances", job}, {"fit", "--job", job, "--csv"}};
    for (std::vector<std::string> command : commands) {
        const Outcome ofFile = FreshCommandLine(command);
        std::replace(command.begin(), command.end(), job, std::string("-"));
        const Outcome piped = Piped(command, saved.Out);
        EXPECT_EQ(piped.Status, ofFile.Status) << command[0] << piped.Err;
        if (command[0] == "export" || command[0] == "fit") {
            EXPECT_EQ(piped.Out, ofFile.Out);
        }
        EXPECT_EQ(piped.Out.empty(), ofFile.Out.empty()) << command[0];
    }
    const std::string result = Run({start_, target_, "--json"}).Out;
    EXPECT_EQ(Piped({"export", "-", "--as", "matrix"}, result).Out,
              FreshCommandLine({"export", job, "--as", "matrix"}).Out);
    EXPECT_EQ(Piped({"transform", "--with", "-", start_, "--out", "-"}, saved.Out).Out,
              FreshCommandLine({"transform", "--with", job, start_, "--out", "-"}).Out);
    EXPECT_EQ(Piped({"transform", "-", start_, "--out", "-"}, saved.Out).Out,
              FreshCommandLine({"transform", job, start_, "--out", "-"}).Out);
    EXPECT_EQ(Piped({"export", "-", "--as", "matrix"}, "").Status, 3);
    EXPECT_EQ(Piped({"transform", "-", "-", "--out", "-"}, saved.Out).Status, 2);
}

TEST_F(FitTables, StandardOutputTakesOneOfAll) {
    EXPECT_TRUE(Run({start_, target_, "--report", "-"}).Out.starts_with("<!DOCTYPE html>"));
    for (const std::vector<std::string>& more :
         std::vector<std::vector<std::string>>{{"--save", "-", "--report", "-"},
                                               {"--save", "-", "--export", "ros=-"},
                                               {"--save", "-", "--json"},
                                               {"--report", "-", "--csv"}}) {
        std::vector<std::string> arguments = {start_, target_};
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_EQ(Run(arguments).Status, 2) << more[0] << more[2];
    }
    EXPECT_EQ(FreshCommandLine({"distances", PathOf("a.cvn"), "--pairs", "-"}).Status, 2);
}

TEST_F(FitTables, NumbersThatWouldBecomeNamesAreNeverTakenSilently) {
    const std::string text = "1.125 2.5 3.5 100\n40.25 5.5 6.5 200\n7.5 80.5 9.5 300\n10.5 1.5 120.5 400\n";
    const std::string cloud = Write("cloud.txt", text), xyz = Write("cloud.xyz", text);
    const Outcome refused = Run({cloud, cloud});
    EXPECT_EQ(refused.Status, 3);
    EXPECT_NE(refused.Err.find("--columns"), std::string::npos) << refused.Err;
    EXPECT_EQ(RunJson({xyz, xyz})["points"][1]["start_mm"], json::parse("[40.25, 5.5, 6.5]"));
    EXPECT_EQ(RunJson({cloud, cloud, "--columns", "x,y,z"})["points"][1]["name"], "2");
    const std::string numbered = Write("numbered.txt", "1.1 2 3 1\n1.2 50 6 2\n1.3 8 90 3\n");
    const Outcome warned = Run({numbered, numbered});
    EXPECT_EQ(warned.Status, 0);
    EXPECT_NE(warned.Err.find("warning: The number \"1.1\" is taken as the name"), std::string::npos)
        << warned.Err;
    EXPECT_EQ(Run({numbered, numbered, "--strict"}).Status, 3);
}

TEST_F(FitTables, WrongUsageOfTheirOptionsIsStatusTwo) {
    for (const auto& arguments : std::vector<std::vector<std::string>>{{"--columns", "name,x,y"},
                                                                       {"--columns", "name,x,x,y,z"},
                                                                       {"--columns", "name,x,y,z,w"},
                                                                       {"--columns", ""},
                                                                       {"--unit", "furlong"},
                                                                       {"--encoding", "latin"},
                                                                       {"--format", "csv"},
                                                                       {"--skip", "-1"},
                                                                       {"--decimal", ";"},
                                                                       {"--delimiter", "blank"},
                                                                       {"--format", "plain", "--unit", "m"},
                                                                       {"--format", "plain", "--skip-bad"}}) {
        std::vector<std::string> all = {start_, target_};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Outcome outcome = Run(all);
        EXPECT_EQ(outcome.Status, 2) << arguments[0] << " " << arguments[1] << outcome.Err;
        EXPECT_EQ(outcome.Out, "");
    }
}

TEST_F(FitTables, NeverChangeTheirFile) {
    const std::string file = Points("comma.txt", "", ";", 1, true), before = Contents(file);
    EXPECT_EQ(Run({file, target_, "--yes"}).Status, 0);
    EXPECT_EQ(Contents(file), before);
}

TEST_F(FitTables, ARobotProgramHasAUnitOfItsOwn) {
    const std::string program = Write("p.dat",
                                      "DECL E6POS XP1={X 0,Y 0,Z 0,A 0,B 0,C 0}\n"
                                      "DECL E6POS XP2={X 1000,Y 0,Z 0,A 0,B 0,C 0}\n"
                                      "DECL E6POS XP3={X 0,Y 2000,Z 0,A 0,B 0,C 0}\n");
    const std::string metres = Write("m.csv", "Name;X [m];Y [m];Z [m]\n1;0;0;0\n2;1;0;0\n3;0;2;0\n");
    const json fit = RunJson(
        {metres, program, "--as", "kuka", "--target-unit", "mm", "--length-unit", "m", "--parameters", "7"});
    ASSERT_EQ(fit["points"].size(), 3u);
    EXPECT_EQ(fit["points"][1]["start_mm"][0], 1000);
    EXPECT_EQ(fit["points"][1]["target_mm"][0], 1000);
    EXPECT_EQ(fit["notes"], json::array()) << fit["notes"].dump();
    EXPECT_EQ(fit["files"][1]["format"], "kuka");
}
