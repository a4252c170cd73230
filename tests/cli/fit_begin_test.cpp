// `corvinade-cli fit`: start values, seed points and direction.
#include <cmath>
#include <numbers>

#include "cli/fit_command.h"
#include "core/job.h"
#include "engine/selection.h"

using namespace corvinade;

namespace {

class FitBegin : public FitCommand {
protected:
    // Three points on a line ahead of three others, turned by 180 degrees about z and by 90 about the new x.
    std::string line_ =
        Write("line.txt", "A;0;0;0\nB;1000;0;0\nC;2000;0;0\nD;0;900;0\nE;0;0;800\nF;300;400;500\n");
    std::string turned_ = Write("turned.txt",
                                "A;10;20;30\nB;-990;20;30\nC;-1990;20;30\nD;10;20;-870\nE;10;-780;30\n"
                                "F;-290;-480;-370\n");

    static void ExpectSameMatrix(const json& a, const json& b, double nearby) {
        for (std::size_t row = 0; row < 3; ++row)
            for (std::size_t column = 0; column < 4; ++column)
                EXPECT_NEAR(a["transformation"]["matrix"][row][column].get<double>(),
                            b["transformation"]["matrix"][row][column].get<double>(),
                            column == 3 ? 1000 * nearby : nearby)
                    << row << ", " << column;
    }
};

}  // namespace

// --- Start values -----------------------------------------------------------------------------------------

TEST_F(FitBegin, AFarStartLeadsToTheSameResultByMoreSteps) {
    const json usual = FitJson({kMeasured, kNominal});
    const json far = FitJson({kMeasured, kNominal, "--start", "rotz=-100", "--start", "TraX=5000"});
    EXPECT_GT(far["iterations"], usual["iterations"]);
    ExpectSameMatrix(far, usual, 1e-9);
}

TEST_F(FitBegin, StartValuesAreInTheUnitsInUse) {
    FitJson({start_, target_, "--start", "rotz=12 30 0", "--start", "tray=0.25", "--length-unit", "m",
             "--parameters", "9", "--start", "scalez=1.5"});
    EXPECT_TRUE(Selection.DialogOpen);
    EXPECT_EQ(Selection.SeedText[kRotZ], "12.5");
    EXPECT_EQ(Selection.SeedText[kTraY], "0.25");
    EXPECT_EQ(Selection.SeedText[kScaleZ], "1.5");
    EXPECT_FALSE(Selection.Seed[kRotX]);
    FitJson({start_, target_});
    EXPECT_FALSE(Selection.DialogOpen) << "without start values nothing is open";
}

TEST_F(FitBegin, AStartValueOfTheCommonScaleActsOnAllAxes) {
    const std::string target = Write("half.txt", "A;5;6;7\nB;505;6;7\nC;5;1006;7\nD;5;6;1507\n");
    const json fit = FitJson({start_, target, "--parameters", "7", "--start", "scalexyz=0.5"});
    for (const json& scale : fit["transformation"]["scales"]) EXPECT_NEAR(scale.get<double>(), 0.5, 1e-10);
}

TEST_F(FitBegin, StartValuesThatCannotBeTakenAreWrongUsage) {
    const std::pair<const char*, const char*> cases[] = {
        {"rotz", "takes a name and a value"},
        {"rotz=", "the value is not a number"},
        {"rotz=abc", "the value is not a number"},
        {"rotz=1 a", "the value is not a number"},
        {"rotz=nan", "the value is not a number"},
        {"scalexyz=1 30 0", "the value is not a number"},
        {"spin=1", "there is no parameter \"spin\"; there are trax"},
        {"scalex=1.1", "only parameters that float have a start value, and this one is not used"},
        {"rotx=1", "only parameters that float have a start value, and this one is held"}};
    for (const auto& [start, message] : cases) {
        const Outcome outcome = Fit({start_, target_, "--hold", "rotx=0", "--start", start});
        EXPECT_EQ(outcome.Status, 2) << start;
        EXPECT_NE(outcome.Err.find(message), std::string::npos) << outcome.Err;
        EXPECT_EQ(outcome.Out, "");
    }
    EXPECT_EQ(Fit({start_, target_, "--parameters", "7", "--start", "scalexyz=0"}).Status, 2);
    EXPECT_EQ(Fit({start_, target_, "--hold", "rotz=1 a"}).Status, 2) << "as with values that are held";
}

TEST_F(FitBegin, AStartBeyondAllNumbersIsNoSilentResult) {
    const Outcome outcome = Fit({start_, target_, "--start", "trax=1e308", "--length-unit", "m"});
    EXPECT_EQ(outcome.Status, 1) << outcome.Out;
    EXPECT_NE(outcome.Err.find("not finite"), std::string::npos) << outcome.Err;
}

TEST_F(FitBegin, AHeldAngleBeyondARightAngleIsShownInTheTripleOfTheSmallerSum) {
    const json fit = FitJson({start_, target_, "--hold", "rotz=170"});
    const json& t = fit["transformation"];
    // (x, y, 170) and (x + 180, 180 - y, -10) are one rotation; tan c = -R(2,1) / R(1,1) in both.
    EXPECT_NEAR(t["rotation"]["c_rad"].get<double>(), -10 / 180.0 * std::numbers::pi, 1e-9);
    EXPECT_NEAR(-t["rotationMatrix"][1][0].get<double>() / t["rotationMatrix"][0][0].get<double>(),
                std::tan(170 / 180.0 * std::numbers::pi), 1e-9);
}

// --- Seed points ------------------------------------------------------------------------------------------

TEST_F(FitBegin, SeedPointsOffOneLineBeginAtTheSolution) {
    const json usual = FitJson({line_, turned_});
    EXPECT_EQ(Job.SeedName[1], "A");
    EXPECT_EQ(Job.SeedName[3], "C");
    const json chosen = FitJson({line_, turned_, "--seed-points", "E,A,D"});
    EXPECT_EQ(Job.SeedName[1], "E");
    EXPECT_EQ(Job.SeedName[2], "A");
    EXPECT_EQ(Job.SeedName[3], "D");
    EXPECT_EQ(Job.SeedIndex[1], 5);
    EXPECT_EQ(Job.SeedIndex[3], 4);
    EXPECT_LT(chosen["iterations"], usual["iterations"]);
    EXPECT_NEAR(chosen["quality"]["s0_mm"].get<double>(), 0, 1e-6);
    ExpectSameMatrix(chosen, usual, 1e-9);
}

TEST_F(FitBegin, SeedPointsWithCommasAreNamedOneByOne) {
    const std::string file = Write("names.txt", "A,1;0;0;0\nB,2;1000;0;0\nC;0;2000;0\nD;0;0;3000\n");
    FitJson(
        {file, file, "--decimal", ",", "--seed-points", "D", "--seed-points", "B,2", "--seed-points", "A,1"});
    EXPECT_EQ(Job.SeedName[1], "D");
    EXPECT_EQ(Job.SeedName[2], "B,2");
    EXPECT_EQ(Job.SeedName[3], "A,1");
}

TEST_F(FitBegin, SeedPointsOfPairsByCoordinateAreNamedAsInEitherFile) {
    const std::string near = Write("near.txt", "p;0.1;0;0\nq;1000;0.1;0\nr;0;2000;0.1\ns;0;0;3000\n");
    FitJson({start_, near, "--match", "coordinate", "--seed-points", "D,q,MCS_A=OCS_p"});
    EXPECT_EQ(Job.SeedName[1], "MCS_D=OCS_s");
    EXPECT_EQ(Job.SeedName[2], "MCS_B=OCS_q");
    EXPECT_EQ(Job.SeedName[3], "MCS_A=OCS_p");
}

TEST_F(FitBegin, SeedPointsThatAreNotThreeIdenticalPointsAreWrongUsage) {
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"A,B"}, "takes the names of three identical points"},
        {{"A,B,C,D"}, "takes the names of three identical points"},
        {{""}, "takes the names of three identical points"},
        {{"A", "B"}, "takes the names of three identical points"},
        {{"A", "B", "C", "D"}, "takes the names of three identical points"},
        {{"A,B,"}, "\"\" is no identical point"},
        {{"A,B,Nobody"}, "\"Nobody\" is no identical point"},
        {{"A, B,C"}, "\" B\" is no identical point"},
        {{"A,B,A"}, "\"A\" is named twice"}};
    for (const auto& [given, message] : cases) {
        std::vector<std::string> arguments = {start_, target_};
        for (const std::string& one : given) {
            arguments.emplace_back("--seed-points");
            arguments.push_back(one);
        }
        const Outcome outcome = Fit(arguments);
        EXPECT_EQ(outcome.Status, 2) << json(given);
        EXPECT_NE(outcome.Err.find(message), std::string::npos) << outcome.Err;
        EXPECT_EQ(outcome.Out, "");
    }
}

TEST_F(FitBegin, AJobOfTwoPairsHasNoThirdSeedPoint) {
    const std::string two = Write("two.txt", "A;5;6;7\nB;1005;6;7\n");
    EXPECT_EQ(Fit({start_, two, "--parameters", "level", "--seed-points", "A,B,C"}).Status, 2);
    EXPECT_EQ(Fit({start_, two, "--parameters", "level"}).Status, 0);
    EXPECT_EQ(Fit({start_, Write("none.txt", "X;1;2;3\nY;4;5;6\nZ;1;1;1\n")}).Status, 1);
}

TEST_F(FitBegin, ASeedPointBehindTheLastThatAJobFileCanNameIsRefused) {
    std::string points;
    for (int i = 1; i <= 32768; ++i)
        points += "P" + std::to_string(i) + ";" + std::to_string(i) + ";" + std::to_string(i % 7) + ";" +
                  std::to_string(i % 11) + "\n";
    const std::string file = Write("many.txt", points);
    EXPECT_EQ(Fit({file, file, "--seed-points", "P1,P2,P3"}).Status, 0);
    const Outcome outcome = Fit({file, file, "--seed-points", "P1,P2," + Job.Start.Name[32768]});
    EXPECT_EQ(outcome.Status, 2);
    EXPECT_NE(outcome.Err.find("32767"), std::string::npos) << outcome.Err;
}

// --- Direction --------------------------------------------------------------------------------------------

TEST_F(FitBegin, TheOtherDirectionIsTheFitOfTheFilesExchanged) {
    const json back = FitJson({kMeasured, kNominal, "--direction", "ocs-mcs", "--leave-out", "F09:z"});
    const json exchanged = FitJson({kNominal, kMeasured, "--leave-out", "F09:z"});
    for (const char* member : {"counts", "parameters", "quality", "startOnly", "targetOnly"})
        EXPECT_EQ(back[member], exchanged[member]) << member;
    EXPECT_EQ(back["points"], exchanged["points"]);
    EXPECT_EQ(back["input"]["start"], kNominal) << "the start is what is transformed";
    EXPECT_EQ(back["input"]["target"], kMeasured);
    EXPECT_EQ(back["input"]["direction"], "ocs-mcs");
    EXPECT_EQ(exchanged["input"]["direction"], "mcs-ocs");
}

TEST_F(FitBegin, TheOtherDirectionIsSaidInTableAndPage) {
    const std::string page = PathOf("page.html");
    const Outcome outcome = Fit({start_, target_, "--direction", "ocs-mcs", "--report", page});
    EXPECT_EQ(outcome.Status, 0) << outcome.Err;
    EXPECT_NE(outcome.Out.find("start         " + target_), std::string::npos) << outcome.Out;
    EXPECT_NE(outcome.Out.find("target        " + start_), std::string::npos);
    EXPECT_NE(outcome.Out.find("direction     OCS => MCS\n"), std::string::npos);
    EXPECT_NE(outcome.Out.find("-5.000"), std::string::npos);
    EXPECT_NE(Contents(page).find("Transformation of OCS to MCS"), std::string::npos);
    EXPECT_NE(Contents(page).find("<title>OCS to MCS"), std::string::npos);
    EXPECT_EQ(Fit({start_, target_, "--direction", "mcs-ocs"}).Out.find("direction"), std::string::npos);
    EXPECT_EQ(Fit({start_, target_, "--direction", "back"}).Status, 2);
}

TEST_F(FitBegin, ARefusalForWantOfPairsNamesTheFilesAsTheyWereGiven) {
    const Outcome outcome =
        Fit({start_, Write("other.txt", "P;5;6;7\nQ;1005;6;7\nR;1;2;3\n"), "--direction", "ocs-mcs"});
    EXPECT_EQ(outcome.Status, 1);
    EXPECT_NE(outcome.Err.find("the start file has 5 points and the target file 3"), std::string::npos)
        << outcome.Err;
}
