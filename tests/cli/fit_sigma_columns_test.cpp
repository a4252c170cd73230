// `corvinade-cli fit`: standard deviations of each point, from columns of the files.
#include <algorithm>
#include <cmath>

#include "cli/fit_command.h"
#include "core/files.h"
#include "core/notes.h"

using namespace corvinade;

namespace {

struct SigmaRow {
    std::string Name;
    double X, Y, Z;
    double SX, SY, SZ;
};

// Of one transformation, with errors of some tenths.
const std::vector<SigmaRow> kStartRows = {
    {"P10", 0, 0, 0, 0.1, 0.2, 0.3},       {"P2", 1000, 0, 0, 0.2, 0.1, 0.4},
    {"A", 0, 2000, 0, 0.3, 0.3, 0.1},      {"Q", 0, 0, 3000, 0.05, 0.2, 0.2},
    {"only", 500, 600, 700, 9, 9, 9},      {"F", 1000, 2000, 300, 0.1, 0.1, 0.6},
    {"E", 1500, -700, 1000, 0.4, 0.2, 0.1}};
const std::vector<SigmaRow> kTargetRows = {
    {"A", 5.1, 2006.2, 7.3, 0.2, 0.1, 0.1},      {"E", 1505.2, -694.1, 1006.8, 0.1, 0.3, 0.2},
    {"F", 1005.0, 2006.3, 306.9, 0.3, 0.2, 0.1}, {"P10", 4.8, 6.1, 7.2, 0.2, 0.2, 0.2},
    {"P2", 1005.3, 5.8, 6.6, 0.1, 0.1, 0.5},     {"Q", 5.0, 6.4, 3007.1, 0.2, 0.4, 0.1}};

std::string Text(const std::vector<SigmaRow>& rows, const std::string& heading, double unit = 1) {
    std::string text = heading + "\n";
    for (const SigmaRow& row : rows) {
        text += row.Name;
        for (const double value : {row.X, row.Y, row.Z, row.SX, row.SY, row.SZ}) {
            char number[40];
            std::snprintf(number, sizeof number, ";%.9f", value / unit);
            text += number;
        }
        text += "\n";
    }
    return text;
}

class FitSigmaColumns : public FitCommand {
protected:
    static constexpr const char* kHeading = "name;x;y;z;sx;sy;sz";
    std::string s_ = Write("s.csv", Text(kStartRows, kHeading));
    std::string t_ = Write("t.csv", Text(kTargetRows, kHeading));

    // What is the same whichever way the sigmas came.
    static json Figures(std::vector<std::string> arguments) {
        arguments.emplace_back("--statistics");
        json result = FitJson(std::move(arguments));
        for (const char* member : {"input", "files", "notes"}) result.erase(member);
        return result;
    }
    static std::vector<std::string> Codes(const json& result) {
        std::vector<std::string> codes;
        for (const json& note : result["notes"]) codes.push_back(note["code"]);
        return codes;
    }
};

// Sum of r' (St + M Ss M')^-1 r by the rows above, at the transformation of a result; matrices inverted by
// Cramer's rule.
double Objective(const json& result) {
    const json& m = result["transformation"]["matrix"];
    double sum = 0;
    for (const SigmaRow& target : kTargetRows) {
        const SigmaRow& start = *std::find_if(kStartRows.begin(), kStartRows.end(),
                                              [&](const SigmaRow& row) { return row.Name == target.Name; });
        const double p[3] = {start.X, start.Y, start.Z}, q[3] = {target.X, target.Y, target.Z};
        const double s[3] = {start.SX, start.SY, start.SZ}, t[3] = {target.SX, target.SY, target.SZ};
        double r[3], C[3][3] = {};
        for (std::size_t i = 0; i < 3; ++i) {
            r[i] = m[i][3].get<double>() - q[i];
            for (std::size_t j = 0; j < 3; ++j) {
                r[i] += m[i][j].get<double>() * p[j];
                for (std::size_t k = 0; k < 3; ++k)
                    C[i][j] += m[i][k].get<double>() * m[j][k].get<double>() * s[k] * s[k];
            }
            C[i][i] += t[i] * t[i];
        }
        const auto minor = [&C](int i, int j) {
            const int a = (i + 1) % 3, b = (i + 2) % 3, c = (j + 1) % 3, d = (j + 2) % 3;
            return C[a][c] * C[b][d] - C[a][d] * C[b][c];
        };
        const double det = C[0][0] * minor(0, 0) + C[0][1] * minor(0, 1) + C[0][2] * minor(0, 2);
        for (int i = 0; i < 3; ++i)
            for (int j = 0; j < 3; ++j) sum += r[i] * r[j] * minor(i, j) / det;
    }
    return sum;
}

}  // namespace

TEST_F(FitSigmaColumns, GoWithTheirPoints) {
    const json result = FitJson({s_, t_});
    EXPECT_NEAR(result["statistics"]["vtpv"].get<double>(), Objective(result), 1e-6);
    EXPECT_EQ(result["statistics"]["s0Unit"], "");
    // The files in any other order are the same fit.
    std::vector<SigmaRow> start = kStartRows, target = kTargetRows;
    std::reverse(start.begin(), start.end());
    std::rotate(target.begin(), target.begin() + 2, target.end());
    const std::string s = Write("s2.csv", Text(start, kHeading)), t = Write("t2.csv", Text(target, kHeading));
    EXPECT_EQ(Figures({s, t}), Figures({s_, t_}));
}

// No other transformation has a smaller sum: each parameter a little aside makes it larger.
TEST_F(FitSigmaColumns, MakeTheirSumLeast) {
    const json best = FitJson({s_, t_});
    const double least = Objective(best);
    for (std::size_t k = 0; k < 6; ++k)
        for (const double sign : {-1.0, 1.0}) {
            const json& parameter = best["parameters"][k];
            const double step = k < 3 ? 0.01 : 0.0005;  // mm, degrees
            char value[60];
            std::snprintf(value, sizeof value, "%s=%.15g", parameter["name"].get<std::string>().c_str(),
                          parameter["shown"].get<double>() + sign * step);
            EXPECT_GT(Objective(FitJson({s_, t_, "--hold", value})), least);
        }
}

TEST_F(FitSigmaColumns, EqualOnesAreTheOptionBitByBit) {
    std::vector<SigmaRow> start = kStartRows, target = kTargetRows;
    for (SigmaRow& row : start) row.SX = 0.25, row.SY = 0.5, row.SZ = 0.125;
    for (SigmaRow& row : target) row.SX = row.SY = row.SZ = 0.0625;
    const std::string s = Write("se.csv", Text(start, kHeading)), t = Write("te.csv", Text(target, kHeading));
    const std::string plainHeading = "name;x;y;z;-;-;-";
    const std::string ps = Write("sp.csv", Text(start, "name;x;y;z;a;b;c")),
                      pt = Write("tp.csv", Text(target, "name;x;y;z;a;b;c"));
    EXPECT_EQ(Figures({s, t}),
              Figures({ps, pt, "--start-sigma", "0.25,0.5,0.125", "--target-sigma", "0.0625"}));
    EXPECT_EQ(Figures({ps, t}), Figures({ps, pt, "--target-sigma", "0.0625"}));
    // One column for all three.
    std::string one = "name;x;y;z;s\n";
    for (const SigmaRow& row : target)
        one += row.Name + ";" + std::to_string(row.X) + ";" + std::to_string(row.Y) + ";" +
               std::to_string(row.Z) + ";0.0625\n";
    EXPECT_EQ(Figures({ps, Write("one.csv", one)}), Figures({ps, pt, "--target-sigma", "0.0625"}));
}

TEST_F(FitSigmaColumns, AreInTheUnitOfTheirFile) {
    const std::string metres = Write("m.csv", Text(kStartRows, "name;x [m];y [m];z [m];sx;sy;sz", 1000));
    const json a = Figures({metres, t_}), b = Figures({s_, t_});
    EXPECT_NEAR(a["statistics"]["vtpv"].get<double>(), b["statistics"]["vtpv"].get<double>(), 1e-6);
    EXPECT_NEAR(a["parameters"][0]["value"].get<double>(), b["parameters"][0]["value"].get<double>(), 1e-9);
}

TEST_F(FitSigmaColumns, GoBeforeTheOptionWithANote) {
    const json result = FitJson({s_, t_, "--start-sigma", "7"});
    const auto codes = Codes(result);
    EXPECT_EQ(std::count(codes.begin(), codes.end(), "sigma-columns"), 1);
    EXPECT_EQ(result["notes"][0]["file"], s_);
    EXPECT_EQ(result["statistics"], FitJson({s_, t_})["statistics"]);
    EXPECT_TRUE(Codes(FitJson({s_, t_})).empty());
    // The other side has none, and takes its option.
    const std::string bare = Write("bare.csv", Text(kTargetRows, "name;x;y;z;a;b;c"));
    EXPECT_TRUE(Codes(FitJson({s_, bare, "--target-sigma", "0.2"})).empty());
}

TEST_F(FitSigmaColumns, AnAxisWithoutOneIsSaid) {
    const std::string flat = Write("flat.csv", Text(kTargetRows, "name;x;y;z;sx;sy;a"));
    const json result = FitJson({s_, flat});
    ASSERT_EQ(Codes(result), (std::vector<std::string>{"sigma-columns"}));
    EXPECT_NE(result["notes"][0]["text"].get<std::string>().find("no column sz"), std::string::npos);
}

TEST_F(FitSigmaColumns, BadOnesAreRefusedWithTheirPlace) {
    const auto refusal = [this](const char* rows) {
        const Outcome outcome = Fit({Write("bad.csv", std::string("name;x;y;z;sx;sy;sz\n") + rows), t_});
        EXPECT_EQ(outcome.Status, 3);
        return outcome.Err;
    };
    const std::string good = "A;0;2000;0;1;1;1\nE;1500;-700;1000;1;1;1\n";
    for (const char* cell : {"-1", "one", ""}) {
        const std::string told = refusal((good + "F;1000;2000;300;1;" + cell + ";1\n").c_str());
        EXPECT_NE(told.find("line 4, column 6"), std::string::npos) << told;
        EXPECT_NE(told.find("bad.csv"), std::string::npos) << told;
    }
}

TEST_F(FitSigmaColumns, ZeroOnBothSidesIsRefusedWithTheName) {
    std::vector<SigmaRow> start = kStartRows, target = kTargetRows;
    for (SigmaRow& row : start) row.SX = row.SY = row.SZ = row.Name == "F" ? 0 : row.SX;
    const std::string s = Write("s0.csv", Text(start, kHeading));
    EXPECT_EQ(Fit({s, t_}).Status, 0);  // errorless on one side alone
    target[2].SY = 0;
    const std::string t = Write("t0.csv", Text(target, kHeading));
    const Outcome both = Fit({s, t});
    EXPECT_EQ(both.Status, 1);
    EXPECT_NE(both.Err.find("point \"F\""), std::string::npos) << both.Err;
    // A coordinate out of use needs none.
    EXPECT_EQ(Fit({s, t, "--leave-out", "F:y"}).Status, 0);
}

TEST_F(FitSigmaColumns, TravelInTheJob) {
    const std::string job = PathOf("a.cvn"), again = PathOf("b.cvn");
    const json fit = FitJson({s_, t_, "--save", job});
    EXPECT_EQ(CommandLine({"convert", job, again}).Status, 0);
    EXPECT_EQ(Contents(job), Contents(again));
    const json ofJob = FitJson({"--job", again});
    EXPECT_EQ(ofJob["statistics"], fit["statistics"]);
    EXPECT_EQ(ofJob["parameters"], fit["parameters"]);
    // Point by point, in the order of the job: the pairs by name, then the others.
    const json info = json::parse(CommandLine({"info", again, "--json"}).Out);
    EXPECT_EQ(info["sigmas"]["start_mm"][0], (json{0.3, 0.3, 0.1}));   // A
    EXPECT_EQ(info["sigmas"]["start_mm"][1], (json{0.4, 0.2, 0.1}));   // E
    EXPECT_EQ(info["sigmas"]["start_mm"][6], (json{9.0, 9.0, 9.0}));   // only
    EXPECT_EQ(info["sigmas"]["target_mm"][2], (json{0.3, 0.2, 0.1}));  // F
    EXPECT_EQ(info["sigmas"]["target_mm"].size(), 6u);
    const std::string shown = CommandLine({"info", again, "--decimal", "."}).Out;
    EXPECT_NE(shown.find("start 0.05 to 9, 0.1 to 9, 0.1 to 9 (of each point); target 0.1 to 0.3"),
              std::string::npos)
        << shown;
    // An option goes before the job.
    EXPECT_NE(FitJson({"--job", again, "--start-sigma", "1"})["statistics"], fit["statistics"]);
}

TEST_F(FitSigmaColumns, BelongToTheirFilesWhateverTheDirection) {
    const json back = FitJson({s_, t_, "--direction", "ocs-mcs"});
    const json other = FitJson({t_, s_});
    EXPECT_EQ(back["transformation"], other["transformation"]);
    EXPECT_EQ(back["statistics"], other["statistics"]);
    const std::string job = PathOf("back.cvn");
    FitJson({s_, t_, "--direction", "ocs-mcs", "--save", job});
    EXPECT_EQ(json::parse(CommandLine({"info", job, "--json"}).Out)["sigmas"]["start_mm"].size(), 7u);
    EXPECT_EQ(FitJson({"--job", job})["statistics"], back["statistics"]);
}

// Names that stand twice, pairs by place: the points are called otherwise and stand elsewhere.
TEST_F(FitSigmaColumns, GoWithPointsThatArePairedByPlace) {
    std::vector<SigmaRow> start = kStartRows;
    for (SigmaRow& row : start) row.X += 5, row.Y += 6, row.Z += 7;
    const std::string named = Write("named.csv", Text(start, kHeading));
    const json byName = FitJson({named, t_});
    start[1].Name = start[0].Name = start[5].Name = "same";
    std::swap(start[0], start[3]);
    const std::string doubled = Write("doubled.csv", Text(start, kHeading));
    for (const char* way : {"coordinate", "distance"}) {
        const json byPlace = FitJson({doubled, t_, "--match", way, "--tolerance", "2"});
        ASSERT_EQ(byPlace["points"].size(), 6u) << way;
        EXPECT_NEAR(byPlace["statistics"]["vtpv"].get<double>(), byName["statistics"]["vtpv"].get<double>(),
                    1e-6)
            << way;
    }
}

// Each point's own: all pairs equal but one makes another result than equal for all.
TEST_F(FitSigmaColumns, PublishedFourPointsByColumns) {
    const std::string start = Write("ghilani.csv",
                                    "name;x;y;z\n1;1094.883;820.085;109.821\n2;503.891;1598.698;117.685\n"
                                    "3;2349.343;207.658;151.387\n4;1395.320;1348.853;215.261\n");
    const std::string target = Write("ghilani2.csv",
                                     "name;x;y;z;sx;sy;sz\n1;10037.810;5262.090;772.040;0.007;0.008;0.005\n"
                                     "2;10956.680;5128.170;783.000;0.011;0.008;0.009\n"
                                     "3;8780.080;4840.290;782.620;0.006;0.005;0.007\n"
                                     "4;10185.800;4700.210;851.320;0.005;0.008;0.009\n");
    const json result = FitJson({start, target, "--parameters", "7"});
    EXPECT_NEAR(result["parameters"][0]["value"].get<double>(), 10233.858, 5e-4);
    EXPECT_NEAR(result["parameters"][1]["value"].get<double>(), 6549.981, 5e-4);
    EXPECT_NEAR(result["parameters"][2]["value"].get<double>(), 720.897, 5e-4);
    EXPECT_NEAR(result["statistics"]["s0"].get<double>(), 8.663, 5e-4);
    EXPECT_NEAR(result["statistics"]["parameters"][0]["sigmaPosterior"].get<double>(), 0.065, 5e-4);
}

// Both systems in one file, each with sigmas of its own.
TEST_F(FitSigmaColumns, OfOneFileOfPairs) {
    std::string text, swapped;
    for (const SigmaRow& target : kTargetRows) {
        const SigmaRow& start = *std::find_if(kStartRows.begin(), kStartRows.end(),
                                              [&](const SigmaRow& row) { return row.Name == target.Name; });
        std::string row = target.Name;
        for (const double value : {start.X, start.Y, start.Z, target.X, target.Y, target.Z, start.SX,
                                   start.SY, start.SZ, target.SX, target.SY, target.SZ})
            row += ";" + std::to_string(value);
        text += row + "\n";
        swapped = row + "\n" + swapped;
    }
    const std::string heading = "name;x;y;z;X;Y;Z;sx;sy;sz;SX;SY;SZ\n";
    const json expected = FitJson({s_, t_});
    for (const std::string& rows : {text, swapped}) {
        const json result = FitJson({"--pairs", Write("pairs.csv", heading + rows)});
        EXPECT_NEAR(result["statistics"]["vtpv"].get<double>(), expected["statistics"]["vtpv"].get<double>(),
                    1e-6);
        EXPECT_NEAR(result["statistics"]["vtpv"].get<double>(), Objective(result), 1e-6);
    }
    const std::string bare = Write("bare.csv", text);
    const json named = FitJson(
        {"--pairs", bare, "--columns", "name,x,y,z,X,Y,Z,sx,sy,sz,SX,SY,SZ", "--delimiter", "semicolon"});
    EXPECT_NEAR(named["statistics"]["vtpv"].get<double>(), expected["statistics"]["vtpv"].get<double>(),
                1e-6);
    // One for all axes, of one side alone.
    const json one =
        FitJson({"--pairs", bare, "--columns", "name,x,y,z,X,Y,Z,-,-,-,S", "--delimiter", "semicolon"});
    EXPECT_EQ(one["statistics"]["s0Unit"], "");
    // Refused with their place.
    std::string wrong = text;
    wrong.replace(wrong.find("0.100000", wrong.find("E;")), 8, "-0.10000");
    const Outcome negative = Fit({"--pairs", Write("wrong.csv", heading + wrong)});
    EXPECT_EQ(negative.Status, 3);
    EXPECT_NE(negative.Err.find("line 3"), std::string::npos) << negative.Err;
    EXPECT_NE(negative.Err.find("column "), std::string::npos) << negative.Err;
    const Outcome missing =
        Fit({"--pairs", bare, "--columns", "name,x,y,z,X,Y,Z,sx,sy", "--delimiter", "semicolon"});
    EXPECT_EQ(missing.Status, 3);
    EXPECT_NE(missing.Err.find("all three are wanted"), std::string::npos) << missing.Err;
}
