// Monte Carlo: the steps of its runs, their ends, and what they keep.
#include "engine/monte_carlo.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "cli/headless.h"
#include "core/fresh_start.h"
#include "core/records.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/fit_job.h"
#include "engine/noise.h"
#include "engine/norm_job.h"
#include "engine/selection.h"
#include "engine/transform.h"
#include "fit/angles.h"

using namespace corvinade;

namespace {

// As the runs do it.
void AddNoiseOfSettings(GatheredPoints& points) {
    const auto saved = [](const Column& column) { return std::span<const double>(column).subspan(1); };
    AddNoise({saved(MonteCarlo.MCSaveX), saved(MonteCarlo.MCSaveY), saved(MonteCarlo.MCSaveZ)},
             {Settings.SigmaX, Settings.SigmaY, Settings.SigmaZ}, Noise, points);
}

class MonteCarloTest : public NormTest {
protected:
    MonteCarloTest() {
        MonteCarlo.MonteCarloOn = kTrue;
        Settings.MonteCarloRuns = 100;
        Settings.SigmaX = Settings.SigmaY = Settings.SigmaZ = 0.05;
    }

    static void RigidCloud() {
        AddCloud({.Points = 12, .Noise = 0.02, .Truth = kTruth});
        FloatParameters(kRigid);
    }

    // Runs `work` at the first yield of run i of a hundred.
    static void AtRun(int i, void (*work)()) {
        Headless.OnYield = [i, work, done = false]() mutable {
            if (done || !Progress.Window.Loaded || Progress.ProgressBar1.Value != i) return;
            done = true;
            work();
        };
    }

    static double Spread(int parameter) { return SigmaOfArray(MonteCarloArray(parameter)); }
    static std::vector<double> Parameters() {
        std::vector<double> values;
        for (int k = kTraX; k < kParameterEnd; ++k) values.push_back(ParameterValue(Job, k));
        return values;
    }
};

using Runs = MonteCarloTest;

}  // namespace

TEST_F(Runs, EachIsThePlainFitOfTheStartPointsWithItsNoise) {
    RigidCloud();
    FloatParameters({kScaleXYZ});
    Settings.MonteCarloRuns = 3;
    Settings.SigmaY = 0.5;
    Settings.SigmaZ = 2;
    Calculate(kL2);
    ASSERT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    const Matrix results = MonteCarlo.MCResults;
    ASSERT_EQ(results.Rows, 18);
    ASSERT_EQ(results.Columns, 3);

    MonteCarlo.MonteCarloOn = kFalse;
    SeedNoise(kUsualSeed);
    const JobRecord job = Job;
    for (int run = 1; run <= 3; ++run) {
        Job = job;
        for (std::size_t i = 1; i <= 12; ++i) {
            Job.Start.X[i] = *job.Start.X[i] + GaussNoise(Noise, 0, 0.05);
            Job.Start.Y[i] = *job.Start.Y[i] + GaussNoise(Noise, 0, 0.5);
            Job.Start.Z[i] = job.Start.Z[i] + GaussNoise(Noise, 0, 2);
        }
        Calculate(kL2);
        for (const int k : {kTraX, kTraY, kTraZ}) EXPECT_NEAR(results(k, run), ParameterValue(Job, k), 1e-8);
        Mat3 expected, found;
        RotMatrixXYZ(Job.RotX, Job.RotY, Job.RotZ, expected);
        RotMatrixXYZ(results(kRotX, run), results(kRotY, run), results(kRotZ, run), found);
        for (int row = 1; row <= 3; ++row)
            for (int column = 1; column <= 3; ++column)
                EXPECT_NEAR(found(row, column), expected(row, column), 2e-9) << "the library's pi is short";
        EXPECT_NEAR(results(kScaleXYZ, run), Job.ScaleXYZ, 1e-12);
        EXPECT_NEAR(results(kSigmaXYZ, run), Calculation.SigmaXYZ, 1e-10);
    }
}

TEST_F(Runs, AreTheSameWhetherTheyShowTheirTextsOrNot) {
    RigidCloud();
    FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY});
    Job.UseFlags[5] = 0;
    Calculate(kL2);  // each run moves the progress bar and shows its texts
    const Matrix shown = MonteCarlo.MCResults;
    Settings.MonteCarloRuns = 10000;
    SeedNoise(kUsualSeed);
    Calculate(kL2);
    // Those without texts sum their equations in lanes and solve them without the inverse, which rounds
    // otherwise: what is left of it are the last digits of a coordinate as an angle sees it.
    for (int k = 1; k <= kSigmaXYZ; ++k)
        for (int i = 1; i <= 100; ++i)
            ASSERT_NEAR(MonteCarlo.MCResults(k, i), shown(k, i),
                        1e-12 * std::max(1.0, std::fabs(shown(k, i))))
                << k << " " << i;
}

TEST_F(Runs, WithoutTextsEachPassStillEmptiesTheClipboard) {
    RigidCloud();
    Settings.MonteCarloRuns = 10000;
    int kept = 0;
    Headless.OnYield = [&kept] {
        kept += Headless.Clipboard == "mine" && Adjustment.Iterations > 0 ? 1 : 0;
        if (Adjustment.Iterations == 0) Headless.Clipboard = "mine";
        if (MonteCarlo.MonteCarloOn && Progress.Window.Loaded && MonteCarlo.MCResults(kTraX, 30) != 0)
            ::Run.StopRequested = kTrue;
    };
    Calculate(kL2);
    EXPECT_EQ(kept, 0);
    EXPECT_EQ(Headless.Clipboard, "");
}

TEST_F(Runs, WithoutTextsOneThatDoesNotConvergeIsTheLastToo) {
    RigidCloud();
    Settings.MonteCarloRuns = 10000;
    Settings.MaxIteration = 0;
    Calculate(kL2);
    EXPECT_FALSE(IsTrue(MonteCarlo.MonteCarloDone));
    EXPECT_EQ(Messages().size(), 2u);
}

TEST_F(Runs, WithoutTextsAJobReplacedMeanwhileIsLeftAlone) {
    RigidCloud();
    Settings.MonteCarloRuns = 10000;
    Headless.OnYield = [] {
        if (!Progress.Window.Loaded || MonteCarlo.MCResults(kTraX, 20) == 0 || Adjustment.Iterations != 1)
            return;
        Job = JobRecord{};
        ++::Run.JobGeneration;
    };
    Calculate(kL2);
    EXPECT_EQ(Job.TraX, 0);
    EXPECT_FALSE(IsTrue(MonteCarlo.MonteCarloDone));
    EXPECT_FALSE(Progress.Window.Loaded);
}

TEST_F(Runs, TheSolutionThatTheUserSeesIsThatOfThePointsWithoutNoise) {
    RigidCloud();
    Calculate(kL2);
    const std::vector<double> afterRuns = Parameters();
    const Column v = Calculation.v;
    MonteCarlo.MonteCarloOn = kFalse;
    Calculate(kL2);
    EXPECT_EQ(Parameters(), afterRuns);
    EXPECT_EQ(Calculation.v, v);
}

TEST_F(Runs, RotationsAreStoredInTheirNicerTriple) {
    AddCloud({.Points = 12, .Truth = Truth({0, 0, 0, 3.0, 0.2, 3.0, 1, 1, 1, 1})});
    FloatParameters(kRigid);
    Settings.MonteCarloRuns = 5;
    Calculate(kL2);
    for (int run = 1; run <= 5; ++run) {
        double sum = 0;
        for (const int k : {kRotX, kRotY, kRotZ}) {
            const double angle = MonteCarlo.MCResults(k, run);
            EXPECT_LE(std::fabs(angle), kLibraryPi);
            sum += std::fabs(angle);
        }
        // The other triple is (3 - pi, pi - 0.2, 3 - pi).
        EXPECT_NEAR(sum, 2 * (kPi - 3) + kPi - 0.2, 0.01);
    }
}

TEST_F(Runs, ParametersThatAreHeldStayAtZero) {
    RigidCloud();
    Job.ParamText[kRotZ] = "120";
    Job.ParamText[kScaleXYZ] = "1";
    Calculate(kL2);
    for (int k = 1; k <= kSigmaXYZ; ++k) {
        const bool runs = k == kSigmaXYZ || (k <= kRotY);
        for (int i = 1; i <= 100; ++i) EXPECT_EQ(MonteCarlo.MCResults(k, i) != 0, runs) << k << " " << i;
        EXPECT_EQ(Spread(k) > 0, runs);
    }
}

TEST_F(Runs, WithoutNoiseInXNothingInXChanges) {
    RigidCloud();
    for (const int k : {kRotX, kRotY, kRotZ}) Job.ParamText[static_cast<std::size_t>(k)] = "0";
    Settings.SigmaX = 0;
    Column P(37, 1);
    GatheredPoints points, noisy;
    GatherPoints(P, false, points);
    noisy = points;
    MonteCarloInitialisieren();
    AddNoiseOfSettings(noisy);
    MonteCarlo.Shown.reset();
    EXPECT_EQ(noisy.Start[0], points.Start[0]);
    EXPECT_NE(noisy.Start[1], points.Start[1]);
    Calculate(kL2);
    EXPECT_NEAR(Spread(kTraX), 0, 1e-12);
    EXPECT_GT(Spread(kTraY), 0.01);
    EXPECT_GT(Spread(kTraZ), 0.01);
}

TEST_F(Runs, NoiseDoesNotPileUp) {
    RigidCloud();
    Column P(37, 1);
    GatheredPoints points, noisy;
    GatherPoints(P, false, points);
    noisy = points;
    MonteCarloInitialisieren();
    for (int i = 0; i < 10000; ++i) AddNoiseOfSettings(noisy);
    for (std::size_t i = 0; i < 12; ++i)
        for (std::size_t axis = 0; axis < 3; ++axis)
            EXPECT_LT(std::fabs(noisy.Start[axis][i] - points.Start[axis][i]), 0.05 * 6);
    MonteCarloFinalisieren(noisy);
    EXPECT_EQ(noisy.Start, points.Start) << "and it goes without a trace";
}

TEST_F(Runs, TheNoiseIsNeverInTheJob) {
    RigidCloud();
    const JobRecord job = Job;
    int yields = 0;
    Headless.OnYield = [&] {
        ++yields;
        EXPECT_EQ(Job.Start.X, job.Start.X);
        EXPECT_EQ(Job.Start.Y, job.Start.Y);
        EXPECT_EQ(Job.Start.Z, job.Start.Z);
        if (!Progress.Window.Loaded) return;
        for (std::size_t i = 1; i <= 12; ++i) {
            EXPECT_EQ(MonteCarlo.MCSaveX[i], *job.Start.X[i]);
            EXPECT_EQ(MonteCarlo.MCSaveY[i], *job.Start.Y[i]);
            EXPECT_EQ(MonteCarlo.MCSaveZ[i], job.Start.Z[i]);
        }
    };
    Calculate(kL2);
    EXPECT_GT(yields, 200);
    EXPECT_EQ(MonteCarlo.MCSaveX.size(), 13u);
}

TEST_F(Runs, EachOfThemServesEventsAndShowsHowFarItIs) {
    RigidCloud();
    Settings.MonteCarloRuns = 8;
    std::vector<int> shown;
    Headless.OnYield = [&shown] {
        if (!Progress.Window.Loaded) return;
        EXPECT_EQ(Progress.Window.Caption, "Calculating MonteCarlo");
        EXPECT_EQ(::Run.WaitPointers, 1);
        if (shown.empty() || shown.back() != Progress.ProgressBar1.Value)
            shown.push_back(Progress.ProgressBar1.Value);
    };
    Calculate(kL2);
    // Halves go to the even number.
    EXPECT_EQ(shown, (std::vector<int>{12, 25, 38, 50, 62, 75, 88, 100}));
    EXPECT_FALSE(Progress.Window.Loaded);
    EXPECT_EQ(::Run.WaitPointers, 0);
}

TEST_F(Runs, AStopAfterTheFirstRunLeavesTheSolutionOfTheRestoredPoints) {
    RigidCloud();
    const JobRecord job = Job;
    AtRun(2, [] { UserClick(Progress.BtnCancel); });
    Calculate(kL2);
    EXPECT_FALSE(IsTrue(MonteCarlo.MonteCarloDone));
    EXPECT_FALSE(IsTrue(::Run.StopRequested));
    EXPECT_FALSE(Progress.Window.Loaded);
    EXPECT_NE(MonteCarlo.MCResults(kTraX, 1), 0);
    for (int i = 2; i <= 100; ++i) EXPECT_EQ(MonteCarlo.MCResults(kTraX, i), 0) << i;
    EXPECT_EQ(Job.Start.X, job.Start.X);
    EXPECT_EQ(Job.Start.Z, job.Start.Z);
    EXPECT_TRUE(Calculation.Converged);
    const std::vector<double> afterStop = Parameters();
    Headless.OnYield = nullptr;
    MonteCarlo.MonteCarloOn = kFalse;
    Calculate(kL2);
    EXPECT_EQ(Parameters(), afterStop);
}

TEST_F(Runs, NoneBeginsBehindAStop) {
    RigidCloud();
    Settings.MonteCarloRuns = 10000;
    int yieldsBehind = 0;
    bool stopped = false;
    Headless.OnYield = [&] {
        if (!Progress.Window.Loaded) return;
        if (stopped) ++yieldsBehind;
        if (MonteCarlo.MCResults(kTraX, 17) == 0) return;
        stopped = true;
        ::Run.StopRequested = kTrue;
    };
    Calculate(kL2);
    EXPECT_TRUE(stopped);
    EXPECT_LE(yieldsBehind, 1) << "the pass of the run that had begun";
    EXPECT_EQ(MonteCarlo.MCResults(kTraX, 18), 0);
}

TEST_F(Runs, DoneOutlivesAPlainCalculationAndEndsWithAStoppedOne) {
    RigidCloud();
    EXPECT_FALSE(IsTrue(MonteCarlo.MonteCarloDone));
    Calculate(kL2);
    EXPECT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    const Matrix results = MonteCarlo.MCResults;
    MonteCarlo.MonteCarloOn = kFalse;
    Calculate(kL2);
    EXPECT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    EXPECT_EQ(MonteCarlo.MCResults.Elements, results.Elements);
    MonteCarlo.MonteCarloOn = kTrue;
    AtRun(50, [] { ::Run.StopRequested = kTrue; });
    Calculate(kL2);
    EXPECT_FALSE(IsTrue(MonteCarlo.MonteCarloDone));
}

TEST_F(Runs, ResultsOfFormerOnesAreNotDoneWhileLaterOnesReplaceThem) {
    RigidCloud();
    Calculate(kL2);
    ASSERT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    static bool doneMeanwhile;
    doneMeanwhile = true;
    AtRun(50, [] {
        doneMeanwhile = IsTrue(MonteCarlo.MonteCarloDone);
        ++::Run.JobGeneration;
    });
    Calculate(kL2);
    EXPECT_FALSE(doneMeanwhile);
    EXPECT_FALSE(IsTrue(MonteCarlo.MonteCarloDone)) << "half of the results are still missing";
}

TEST_F(Runs, BelongToLeastSquaresAlone) {
    RigidCloud();
    for (const int norm : {kL1, kLoo}) {
        Calculate(norm);
        EXPECT_FALSE(IsTrue(MonteCarlo.MonteCarloDone)) << norm;
        EXPECT_EQ(MonteCarlo.MCResults.Rows, -1) << norm;
    }
}

TEST_F(Runs, AreAtLeastTwoAndAHundredWhereNoNumberIsSet) {
    for (const auto& [set, runs] :
         std::vector<std::array<int, 2>>{{0, 100}, {1, 2}, {-7, 2}, {2, 2}, {3, 3}}) {
        Settings.MonteCarloRuns = set;
        EXPECT_EQ(RunsOfMonteCarlo(), runs) << set;
    }
    RigidCloud();
    Settings.MonteCarloRuns = 1;
    Calculate(kL2);
    EXPECT_EQ(MonteCarlo.MCResults.Columns, 2);
    EXPECT_GT(Spread(kTraX), 0);
}

TEST_F(Runs, MoreThanMemoryHoldsAreRefusedBeforeAnythingChanges) {
    RigidCloud();
    Calculate(kL2);
    const std::vector<double> before = Parameters();
    const Matrix results = MonteCarlo.MCResults;
    Job.Target.Z[1] += 100;
    for (const int runs : {kMostMonteCarloRuns + 1, std::numeric_limits<int>::max()}) {
        Settings.MonteCarloRuns = runs;
        Calculate(kL2);
        EXPECT_EQ(LastMessage(), "The results of " + std::to_string(runs) +
                                     " Monte Carlo runs cannot be held in memory. At most 5000000 runs are "
                                     "possible.");
        EXPECT_TRUE(Calculation.Refused);
        EXPECT_EQ(Parameters(), before);
        EXPECT_EQ(MonteCarlo.MCResults.Elements, results.Elements);
        EXPECT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    }
    Calculate(kL1);
    EXPECT_FALSE(Calculation.Refused) << "the other norms have no runs";
}

TEST_F(Runs, AJobReplacedMeanwhileIsLeftAlone) {
    RigidCloud();
    Calculation.nFloat = 77;
    AtRun(3, [] {
        Job = JobRecord{};
        ++::Run.JobGeneration;
    });
    Calculate(kL2);
    EXPECT_EQ(Calculation.nFloat, 77);
    EXPECT_EQ(Job.Start.X.size(), 1u);
    EXPECT_EQ(Job.TraX, 0);
    EXPECT_FALSE(IsTrue(MonteCarlo.MonteCarloDone));
    EXPECT_FALSE(Progress.Window.Loaded);
    EXPECT_EQ(::Run.WaitPointers, 0);
    EXPECT_TRUE(Messages().empty());
}

TEST_F(Runs, ACalculationInsideAYieldOvertakesThem) {
    RigidCloud();
    bool inside = false, progressShown = false;
    Headless.OnYield = [&] {
        if (inside) {
            progressShown = progressShown || (Progress.Window.Loaded && Progress.ProgressBar1.Value == 100);
        } else if (Progress.ProgressBar1.Value == 30) {
            inside = true;
            Settings.MonteCarloRuns = 4;
            ButtonCalcErsatz();
        }
    };
    Calculate(kL2);
    EXPECT_TRUE(progressShown) << "the inner runs have a window of their own";
    EXPECT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    EXPECT_EQ(MonteCarlo.MCResults.Columns, 4);
    for (int i = 1; i <= 4; ++i) EXPECT_NE(MonteCarlo.MCResults(kTraX, i), 0) << i;
    EXPECT_FALSE(Progress.Window.Loaded);
    EXPECT_EQ(::Run.WaitPointers, 0);
}

TEST_F(Runs, TheProgressWindowMayBeClosedByTheUser) {
    RigidCloud();
    AtRun(30, [] { UserClose(FormProgressBar_Entry); });
    Calculate(kL2);
    EXPECT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    EXPECT_EQ(::Run.WaitPointers, 0);
}

TEST_F(Runs, OneThatDoesNotConvergeIsTheLast) {
    RigidCloud();
    Settings.MaxIteration = 0;
    Calculate(kL2);
    EXPECT_FALSE(IsTrue(MonteCarlo.MonteCarloDone));
    EXPECT_EQ(Messages().size(), 2u) << "of the run and of the fit that the user sees";
    EXPECT_EQ(MonteCarlo.MCResults(kTraX, 1), 0);
}

TEST_F(Runs, NoiseWithoutBoundEndsThem) {
    RigidCloud();
    Settings.SigmaX = std::numeric_limits<double>::infinity();
    Calculate(kL2);
    EXPECT_FALSE(IsTrue(MonteCarlo.MonteCarloDone));
    EXPECT_TRUE(Calculation.Finite) << "the solution without noise is what it was";
    EXPECT_NEAR(Job.TraX, 100, 0.1);
}

TEST_F(Runs, AreTheSameInEachProgramStart) {
    RigidCloud();
    const JobRecord job = Job;
    Calculate(kL2);
    const Matrix first = MonteCarlo.MCResults;
    Calculate(kL2);
    EXPECT_NE(MonteCarlo.MCResults.Elements, first.Elements) << "the sequence goes on in the same program";
    const SettingsRecord settings = Settings;
    FreshStart();
    Job = job;
    Settings = settings;
    MonteCarlo.MonteCarloOn = kTrue;
    Calculate(kL2);
    EXPECT_EQ(MonteCarlo.MCResults.Elements, first.Elements);
}

TEST_F(Runs, TheRecordsAreReadByName) {
    for (const char* name : {"MonteCarloOn", "MonteCarloDone", "MCSaveX", "MCSaveY", "MCSaveZ", "MCResults"})
        EXPECT_NE(FindRecord(name), nullptr) << name;
}

TEST_F(Runs, MeanAndSigmaOfAnArrayByHand) {
    const std::vector<double> a = {1e300, 2, 4, 4, 4, 5, 5, 7, 9};
    EXPECT_EQ(MeanOfArray(a), 5) << "entry 0 does not count";
    EXPECT_DOUBLE_EQ(SigmaOfArray(a), std::sqrt(32.0 / 7));
    EXPECT_EQ(SigmaOfArray(std::vector<double>{0, 3, 3}), 0);
}
