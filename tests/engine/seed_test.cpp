// The raw solution and the user's start values.
#include "engine/seed.h"

#include <cmath>

#include "core/platform.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/calculation_window.h"
#include "engine/fit_job.h"
#include "engine/selection.h"
#include "support/fixture.h"

using namespace corvinade;

class Seeds : public Program {
protected:
    Seeds() { BeginFit(); }

    void RunRawSolution() {
        RawSolution(Job.TraX, Job.TraY, Job.TraZ, Job.RotX, Job.RotY, Job.RotZ, Job.ScaleX, Job.ScaleY,
                    Job.ScaleZ);
    }
    // Largest distance between the images of the points and their targets, at the job's parameters.
    static double Miss(const std::array<int, 3>& pairs) {
        std::array<reference::Real, 18> t{};
        for (int k = 1; k < kParameterEnd; ++k) t[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
        double worst = 0;
        for (const int i : pairs) {
            const Vec3 p = StartPoint(i), q = TargetPoint(i);
            const reference::Point image = reference::Image(t, {p(1), p(2), p(3)});
            for (int k = 1; k <= 3; ++k)
                worst = std::max(
                    worst, std::fabs(static_cast<double>(image[static_cast<std::size_t>(k - 1)]) - q(k)));
        }
        return worst;
    }
};

TEST_F(Seeds, RawSolutionCarriesTheThreeSeedPointsOntoTheirTargets) {
    AddCloud({.Points = 9, .Truth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1, 1, 1})});
    Settings.RawScale = 1;
    RunRawSolution();
    EXPECT_LT(Miss({1, 2, 3}), 1e-6);
    EXPECT_NEAR(Job.TraX, 100, 1e-5);
    EXPECT_EQ(Job.ScaleX, 1);
}

TEST_F(Seeds, RawSolutionUsesTheSeedsThatWereChosen) {
    AddCloud({.Points = 9, .Truth = Truth({100, -200, 300, 0.4, -0.7, 2.1, 1, 1, 1})});
    Job.Target.X[2] = 5000;  // a gross error in a pair that is no seed
    Job.SeedIndex = {0, 5, 9, 7};
    RunRawSolution();
    EXPECT_LT(Miss({5, 9, 7}), 1e-6);
}

TEST_F(Seeds, RawSolutionFindsTheScales) {
    AddCloud({.Points = 3, .Truth = Truth({1, 2, 3, 0.1, 0.2, 0.3, 1.5, 1.5, 1.5})});
    RunRawSolution();
    for (const double scale : {Job.ScaleX, Job.ScaleY, Job.ScaleZ}) EXPECT_NEAR(scale, 1.5, 1e-6);
    EXPECT_LT(Miss({1, 2, 3}), 1e-4);
}

TEST_F(Seeds, RawSolutionFindsOneScaleForEachAxis) {
    AddCloud({.Points = 3, .Truth = Truth({1, 2, 3, 0.1, 0.2, 0.3, 1.5, 0.8, 2})});
    RunRawSolution();
    EXPECT_NEAR(Job.ScaleX, 1.5, 1e-6);
    EXPECT_NEAR(Job.ScaleY, 0.8, 1e-6);
    EXPECT_NEAR(Job.ScaleZ, 2, 1e-6);
    EXPECT_LT(Miss({1, 2, 3}), 1e-4);
}

TEST_F(Seeds, RawScalesAreOneWhereASeedCoordinateIsSwitchedOff) {
    AddCloud({.Points = 5, .Truth = Truth({1, 2, 3, 0.1, 0.2, 0.3, 1.5, 1.5, 1.5})});
    Job.UseFlags[3 * 1 + 2] = 0;  // Y of pair 2
    RunRawSolution();
    EXPECT_EQ(Job.ScaleX, 1);
    Settings.RawScale = 0;  // any other value computes them always
    RunRawSolution();
    EXPECT_NEAR(Job.ScaleX, 1.5, 1e-6);
    Settings.RawScale = 2;
    Job.SeedIndex = {0, 3, 4, 5};  // the coordinate belongs to no seed any more
    RunRawSolution();
    EXPECT_NEAR(Job.ScaleX, 1.5, 1e-6);
}

TEST_F(Seeds, RawScalesOfPointsInOnePlaneAreOne) {
    AddPair({0, 0, 7}, {0, 0, 0});
    AddPair({100, 10, 7}, {200, 20, 0});
    AddPair({20, 90, 7}, {40, 180, 0});
    RunRawSolution();
    EXPECT_EQ(Job.ScaleX, 1);
    EXPECT_EQ(Job.ScaleY, 1);
    EXPECT_EQ(Job.ScaleZ, 1);
}

TEST_F(Seeds, ANegativeQuotientGivesScaleOneForThatAxisOnly) {
    // The squared differences of the start points are (1e4, 2500, 400), (900, 6400, 4900) and
    // (4900, 900, 2500); with the squares X = 4, Y = 2.25, Z = -0.5 the squared distances follow.
    const double d12 = std::sqrt(45425.0), d13square = 15550, d23square = 20375;
    const double x = (45425 + d13square - d23square) / (2 * d12);
    AddPair({0, 0, 0}, {0, 0, 0});
    AddPair({100, 50, 20}, {d12, 0, 0});
    AddPair({30, 80, 70}, {x, std::sqrt(d13square - x * x), 0});
    RunRawSolution();
    EXPECT_NEAR(Job.ScaleX, 2, 1e-9);
    EXPECT_NEAR(Job.ScaleY, 1.5, 1e-9);
    EXPECT_EQ(Job.ScaleZ, 1);
}

TEST_F(Seeds, CollinearAndCoincidentSeedPointsDoNotFail) {
    for (const reference::Point& third : {reference::Point{200, 0, 0}, reference::Point{0, 0, 0}}) {
        Job = JobRecord{};
        AddPair({0, 0, 0}, {10, 20, 30});
        AddPair({100, 0, 0}, {10, 120, 30});
        AddPair(third, {10, 20 + third[0], 30});
        RunRawSolution();
        for (int parameter = 1; parameter <= 9; ++parameter)
            EXPECT_TRUE(std::isfinite(ParameterValue(Job, parameter))) << parameter;
    }
    EXPECT_TRUE(Messages().empty());
}

TEST_F(Seeds, FewerThanThreePairsDoNoHarm) {
    for (int pairs = 0; pairs < 3; ++pairs) {
        Job.SeedIndex = {0, 1, 2, 3};
        RunRawSolution();
        EXPECT_TRUE(std::isfinite(Job.TraX));
        AddPair({100.0L * pairs, 3, 5}, {100.0L * pairs, 5, 6});
    }
}

TEST_F(Seeds, GetSeedTakesTheSeedOfAFloatParameterInShownUnits) {
    Units.LengthFactor = 1.0 / 1000;
    Job.TraX = Job.TraY = 7;
    Selection.Float[kTraX] = Selection.Float[kTraY] = Selection.Float[kRotX] = true;
    Selection.Seed[kTraX] = Selection.Seed[kRotX] = true;
    Selection.SeedText[kTraX] = "1.5";
    Selection.SeedText[kTraY] = "9";  // its box is not set
    Selection.SeedText[kRotX] = "90";
    Selection.FieldText.fill(kNotUsed);
    GetSeed();
    EXPECT_EQ(Job.TraX, 1500);
    EXPECT_EQ(Job.TraY, 7);
    EXPECT_NEAR(Job.RotX, kPi / 2, 1e-15);
}

TEST_F(Seeds, GetSeedTakesTheFieldOfAHeldParameter) {
    Job.ScaleX = Job.ScaleZ = 3;
    Selection.FieldText.fill(kNotUsed);
    Selection.FieldText[kScaleX] = "1.25";
    Selection.FieldText[kRotZ] = "12 30 0";
    GetSeed();
    EXPECT_EQ(Job.ScaleX, 1.25);
    EXPECT_EQ(Job.ScaleZ, 3);  // not used: the raw value stays
    EXPECT_NEAR(Job.RotZ, 12.5 / 180 * kPi, 1e-15);
}

TEST_F(Seeds, TheCommonScaleAsSeedActsOnAllThree) {
    Selection.FieldText.fill(kNotUsed);
    Selection.Float[kScaleXYZ] = Selection.Seed[kScaleXYZ] = true;
    Selection.SeedText[kScaleXYZ] = "1.5";
    GetSeed();
    EXPECT_EQ(Job.ScaleXYZ, 1.5);
    EXPECT_EQ(Job.ScaleX, 1.5);
    EXPECT_EQ(Job.ScaleZ, 1.5);
}

TEST_F(Seeds, ItsASeedKnowsTheThreeNames) {
    Job.SeedName = {"", "A", "B", "C"};
    for (const char* name : {"A", "B", "C"}) EXPECT_TRUE(ItsASeed(name));
    EXPECT_FALSE(ItsASeed("D"));
    EXPECT_FALSE(ItsASeed("a"));
}

TEST_F(Seeds, WithoutAChoiceTheFirstPairsAreSeeds) {
    AddCloud({.Points = 2, .Truth = Truth({1, 2, 3, 0, 0, 0, 1, 1, 1})});
    ChooseDefaultSeeds();
    EXPECT_EQ(Job.SeedName, (std::array<std::string, 4>{"", "P1", "P2", ""}));
    EXPECT_EQ(Job.SeedIndex, (std::array<std::int16_t, 4>{0, 1, 2, 0}));
    AddCloud({.Points = 2, .Truth = Truth({1, 2, 3, 0, 0, 0, 1, 1, 1})});
    ChooseDefaultSeeds();
    EXPECT_EQ(Job.SeedName[3], "");  // a choice stays
    Job.SeedName[1].clear();
    ChooseDefaultSeeds();
    EXPECT_EQ(Job.SeedName, (std::array<std::string, 4>{"", "P1", "P2", "P3"}));
    EXPECT_EQ(Job.SeedIndex, (std::array<std::int16_t, 4>{0, 1, 2, 3}));
}

TEST_F(Seeds, ACalculationWithoutAChoiceOfSeedsMakesOne) {
    AddCloud({.Points = 5, .Truth = Truth({1, 2, 3, 0, 0, 0, 1, 1, 1})});
    Job.ParamText.fill("");
    myButtonCalculate();
    EXPECT_EQ(Job.SeedName, (std::array<std::string, 4>{"", "P1", "P2", "P3"}));
}

TEST_F(Seeds, TheNewestSeedPushesTheOthersOn) {
    AddCloud({.Points = 5, .Truth = Truth({1, 2, 3, 0, 0, 0, 1, 1, 1})});
    ChooseDefaultSeeds();
    TakeAsNewestSeed(5);
    EXPECT_EQ(Job.SeedName, (std::array<std::string, 4>{"", "P5", "P1", "P2"}));
    EXPECT_EQ(Job.SeedIndex, (std::array<std::int16_t, 4>{0, 5, 1, 2}));
}

TEST_F(Seeds, ChoosingASeedAgainChangesNothing) {
    AddCloud({.Points = 5, .Truth = Truth({1, 2, 3, 0, 0, 0, 1, 1, 1})});
    ChooseDefaultSeeds();
    for (const int pair : {1, 2, 3}) {
        TakeAsNewestSeed(pair);
        EXPECT_EQ(Job.SeedName, (std::array<std::string, 4>{"", "P1", "P2", "P3"}));
        EXPECT_EQ(Job.SeedIndex, (std::array<std::int16_t, 4>{0, 1, 2, 3}));
    }
}

TEST_F(Seeds, TheResultBecomesTheStartValuesInShownUnits) {
    Job.TraX = 1234.5678;
    Job.TraY = 7;
    Job.RotZ = kPi / 6;
    Job.ScaleX = 1.00000049;
    Job.RDist = 40;
    Units.LengthFactor = 1.0 / 1000;
    Selection.FieldText.fill(kNotUsed);
    Selection.FieldText[kTraX] = "1.235";
    Selection.FieldText[kTraY] = kFloat;
    Selection.FieldText[kRotZ] = "30.0000";
    Selection.FieldText[kScaleX] = "1.000000";
    Selection.FieldText[kRDist] = "0.040";
    Selection.SeedText[kTraY] = "the user's own";
    SeedsFromResult();
    EXPECT_EQ(Selection.SeedText[kTraX], "1.235");
    EXPECT_EQ(Selection.SeedText[kTraY], "the user's own");
    EXPECT_EQ(Selection.SeedText[kTraZ], "");
    EXPECT_EQ(Selection.SeedText[kRotZ], "30.0000");
    EXPECT_EQ(Selection.SeedText[kScaleX], "1.000000");
    EXPECT_EQ(Selection.SeedText[kRDist], "0.040");
}

TEST_F(Seeds, APairThatNoJobFileCanNameIsRefused) {
    AddCloud({.Points = 32768, .Truth = Truth({1, 2, 3, 0, 0, 0, 1, 1, 1})});
    ChooseDefaultSeeds();
    EXPECT_THROW(TakeAsNewestSeed(32768), PlatformError);
    EXPECT_EQ(Job.SeedIndex, (std::array<std::int16_t, 4>{0, 1, 2, 3}));
    TakeAsNewestSeed(32767);
    EXPECT_EQ(Job.SeedIndex, (std::array<std::int16_t, 4>{0, 32767, 1, 2}));
}
