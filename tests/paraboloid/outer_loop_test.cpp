// The outer loop: its passes, what accelerates them, and what they bring back.
#include <set>

#include "core/form_main.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/calculation_window.h"
#include "engine/form_trafo_berechnung.h"
#include "engine/transform.h"
#include "paraboloid/form_stop_para_trafo.h"
#include "paraboloid/shape_job.h"

using namespace corvinade;

namespace {

const Displacement kDisplaced = {.Tx = 5, .Ty = -3, .Tz = 10, .A = 0.03, .B = -0.02};

class Acceleration : public ShapeJob {
protected:
    Acceleration() {
        FloatParameters({kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ});
        BeginOuterLoop();
    }
    static void Accelerate(double s0) {
        std::array<bool, kParameterEnd> floats{};
        for (std::size_t k = kTraX; k < kParameterEnd; ++k) floats[k] = Job.ParamText[k] == kFloat;
        Parameters now = ParametersOf(Job);
        fit::Accelerate(ParaboloidRun.Loop, floats, s0, now);
        PutParameters(now, Job);
    }
    // A pass that has found TraX and a smaller s0 than the one before.
    void Pass(double traX) {
        Job.TraX = traX;
        s0_ *= 0.9;
        Accelerate(s0_);
    }
    static ParameterTrend& TraX() { return ParaboloidRun.Loop.Trends[0]; }
    double s0_ = 50;
};

class KnownShape : public ShapeJob {
protected:
    // The axis of the shape as the start system has it is what a fit can know: its direction R^T e, and its
    // vertex R^T (0 - t). The rotation about it is not held by a shape of revolution.
    static std::array<double, 3> AxisFound() { return Turned(0, 0, 1); }
    static std::array<double, 3> VertexFound() { return Turned(-Job.TraX, -Job.TraY, -Job.TraZ); }
    static std::array<double, 3> Turned(double x, double y, double z) {
        return Before({.A = Job.RotX, .B = Job.RotY, .C = Job.RotZ}, {x, y, z});
    }
    static std::array<double, 3> Axis(Displacement d) {
        d.Tx = d.Ty = d.Tz = 0;
        return Before(d, {0, 0, 1});
    }
    static double Apart(const std::array<double, 3>& a, const std::array<double, 3>& b) {
        return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
    }
};

using FitToAShape = KnownShape;

}  // namespace

TEST_F(KnownShape, BringsBackTiltAndShiftWithinTheInterpolation) {
    AddPoints(200, kDisplaced);
    Calculate();
    EXPECT_EQ(Messages(), std::vector<std::string>{});
    EXPECT_TRUE(Calculation.Converged);
    // Chords of 1 mm over a radius of curvature of 2000 mm and more: 1 / (8 * 2000) mm.
    constexpr double kChord = 1.0 / 16000;
    EXPECT_LT(Calculation.s0, kChord);
    // Tilt and shift across may make up for each other along the surface: how far is a matter of its depth.
    EXPECT_LT(Apart(AxisFound(), Axis(kDisplaced)), 100 * kChord / kRim);
    EXPECT_LT(Apart(VertexFound(), Before(kDisplaced, {0, 0, 0})), 100 * kChord);
}

TEST_F(KnownShape, BringsBackMoreWithADenserTable) {
    std::array<double, 2> off{};
    for (const int rows : {151, 1501}) {
        Job.Start = Job.Target = PointSet();
        Job.UseFlags = {0};
        Job.SetPairs(0);
        TakeShape(rows);
        AddPoints(200, kDisplaced);
        Calculate();
        off[rows == 151 ? 0 : 1] = Apart(VertexFound(), Before(kDisplaced, {0, 0, 0}));
    }
    EXPECT_LT(off[0], 100 * 100.0 / 16000) << "chords ten times as long";
    EXPECT_LT(off[1], off[0] / 10) << "their error goes with the square";
}

TEST_F(KnownShape, BringsBackALargeDisplacement) {
    const Displacement far = {.Tx = 50, .Ty = -30, .Tz = 100, .A = 0.1, .B = 0.2};
    AddPoints(200, far);
    Calculate();
    EXPECT_LT(Apart(AxisFound(), Axis(far)), 1e-5);
    EXPECT_LT(Apart(VertexFound(), Before(far, {0, 0, 0})), 0.02);
}

TEST_F(KnownShape, WithNoiseIsFoundAsTheDistancesFromItSay) {
    AddPoints(400, kDisplaced, 0.05);
    Calculate();
    // At the least sum of squares no small turn or shift of the points brings them nearer to the surface. The
    // distances are those from z = r^2 / (4 f) itself, by Newton's method from the point's own radius.
    const auto sumOfSquares = [](const Displacement& by) {
        double sum = 0;
        for (int i = 1; i <= Job.Pairs(); ++i) {
            const auto k = static_cast<std::size_t>(i);
            const auto p = Before(by, {*Job.Transformed.X[k], *Job.Transformed.Y[k], Job.Transformed.Z[k]});
            const double r = std::hypot(p[0], p[1]), z = p[2];
            double s = r;
            for (int step = 0; step < 20; ++step) {
                const double slope = s / (2 * kFocus), height = s * s / (4 * kFocus);
                s -= (s - r + (height - z) * slope) / (1 + slope * slope + (height - z) / (2 * kFocus));
            }
            sum += (s - r) * (s - r) + (Height(s) - z) * (Height(s) - z);
        }
        return sum;
    };
    const double here = sumOfSquares({});
    for (const double step : {-1.0, 1.0}) {
        for (const Displacement& by : {Displacement{.Tx = 0.05 * step}, Displacement{.Ty = 0.05 * step},
                                       Displacement{.Tz = 0.01 * step}, Displacement{.A = 3e-5 * step},
                                       Displacement{.B = 3e-5 * step}})
            EXPECT_GT(sumOfSquares(by), here);
    }
    EXPECT_NEAR(Calculation.s0, std::sqrt(here / (3 * Job.Pairs() - 1)), 1e-4);
}

TEST_F(FitToAShape, LeavesTheNearestPointsOfTheShapeAsTargets) {
    AddPoints(50, kDisplaced, 0.3);
    Calculate();
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const auto k = static_cast<std::size_t>(i);
        double X = 0, Y = 0, Z = 0, distance = 0;
        NearestShapePoint(*Job.Transformed.X[k], *Job.Transformed.Y[k], Job.Transformed.Z[k],
                          Job.ParaboloidShape, X, Y, Z, distance);
        EXPECT_NEAR(*Job.Target.X[k], X, 1e-3);
        EXPECT_NEAR(*Job.Target.Y[k], Y, 1e-3);
        EXPECT_NEAR(Job.Target.Z[k], Z, 1e-3);
        EXPECT_NEAR(
            std::hypot(*Job.Transformed.X[k] - X, *Job.Transformed.Y[k] - Y, Job.Transformed.Z[k] - Z),
            distance, 1e-7);
        for (const int axis : {1, 2, 3}) {
            const double deviation = axis == 1   ? *Job.Transformed.X[k] - *Job.Target.X[k]
                                     : axis == 2 ? *Job.Transformed.Y[k] - *Job.Target.Y[k]
                                                 : Job.Transformed.Z[k] - Job.Target.Z[k];
            EXPECT_NEAR(Calculation.v[3 * (k - 1) + static_cast<std::size_t>(axis)], deviation, 1e-6);
        }
    }
}

TEST_F(FitToAShape, AgainGivesTheSame) {
    AddPoints(50, kDisplaced, 0.1);
    Calculate();
    const auto axis = AxisFound(), vertex = VertexFound();
    Calculate();
    EXPECT_LT(Apart(AxisFound(), axis), 1e-6);
    EXPECT_LT(Apart(VertexFound(), vertex), 1e-3);
}

TEST_F(FitToAShape, KeepsWhatIsHeldAndBeginsAtOwnStarts) {
    AddPoints(50, {.Tz = 7}, 0.0);
    Job.ParamText[kRotZ] = "30";
    Job.ParamText[kTraX] = kNotUsed;
    Calculate();
    EXPECT_EQ(Job.TraX, 0);
    EXPECT_NEAR(Job.RotZ, kPi / 6, 1e-12);
    EXPECT_NEAR(Job.TraZ, 7, 1e-3);

    SelectionFromJob();
    Selection.DialogOpen = true;
    Selection.Seed[kTraZ] = true;
    Selection.SeedText[kTraZ] = "123";
    TakeStartOfShape();
    EXPECT_EQ(Job.TraZ, 123);
    EXPECT_NEAR(Job.RotZ, kPi / 6, 1e-12);
    EXPECT_EQ(Job.ScaleX, 1);
}

TEST_F(FitToAShape, FirstStandsAtTheRawSolutionWithScalesOfOne) {
    AddPoints(20, {.Tx = 100, .A = 0.3});
    FloatParameters({kScaleX, kScaleY, kScaleZ});
    Settings.RawScale = 3;
    SelectionFromJob();
    ChooseSeeds();
    TakeStartOfShape();
    EXPECT_EQ(Job.ScaleX, 1);
    EXPECT_EQ(Job.ScaleY, 1);
    EXPECT_EQ(Job.ScaleZ, 1);
}

TEST_F(FitToAShape, LeavesACoordinateOutThatIsNotInUse) {
    AddPoints(100, kDisplaced);
    Job.Start.Z[7] += 400;  // a gross error
    for (const std::size_t i : {19U, 20U, 21U}) Job.UseFlags[i] = 0;
    Calculate();
    EXPECT_LT(Calculation.s0, 1e-4);
    EXPECT_LT(Apart(AxisFound(), Axis(kDisplaced)), 1e-5);
}

TEST_F(FitToAShape, WithTooFewObservationsIsRefusedAndChangesNothing) {
    AddPoints(4, kDisplaced);
    for (std::size_t i = 1; i <= 9; ++i) Job.UseFlags[i] = 0;
    Job.TraX = 77;
    const auto targets = Job.Target.X;
    Calculate();
    EXPECT_EQ(Messages(), std::vector<std::string>{"This is not a redundant calculation"});
    EXPECT_EQ(Job.TraX, 77);
    EXPECT_EQ(Job.Target.X, targets);
    EXPECT_FALSE(IsLoaded("FormStopParaTrafo"));
}

TEST_F(FitToAShape, WithoutAShapeIsRefused) {
    AddPoints(10, kDisplaced);
    Job.ParaboloidShape = Matrix(0, 2);
    Calculate();
    ASSERT_EQ(Messages().size(), 1u);
    EXPECT_NE(LastMessage().find("There is no shape of a paraboloid"), std::string::npos);
    EXPECT_TRUE(Calculation.Refused);
}

TEST_F(FitToAShape, ServesEventsAtEachPointOfEachPass) {
    AddPoints(30, kDisplaced);
    SelectionFromJob();
    ChooseSeeds();
    BeginOuterLoop();
    const std::uint64_t before = Headless.Yields;
    ASSERT_TRUE(CalcParaboloid());
    EXPECT_GE(Headless.Yields - before, 31u);
    EXPECT_EQ(ParaboloidRun.ParaPass, 2);
}

TEST_F(FitToAShape, ShowsItsWindowWhileItRuns) {
    AddPoints(30, kDisplaced);
    int open = 0;
    Headless.OnYield = [&open] { open += IsLoaded("FormStopParaTrafo") ? 1 : 0; };
    Calculate();
    EXPECT_GT(open, 30);
    EXPECT_FALSE(IsLoaded("FormStopParaTrafo"));
}

TEST_F(FitToAShape, OpensItsWindowWhereItWasLeft) {
    ::Run.SettingsFilePath = PathOf("Corvinade.ini");
    AddPoints(30, kDisplaced);
    const WindowPlace left = {4567, 3456, 2345, 1234};
    Headless.OnYield = [&left] { StopParaTrafo.Window.Place = left; };
    Calculate();
    int looked = 0;
    Headless.OnYield = [&left, &looked] {
        if (!IsLoaded("FormStopParaTrafo") || ++looked > 1) return;
        EXPECT_EQ(StopParaTrafo.Window.Place.Left, left.Left);
        EXPECT_EQ(StopParaTrafo.Window.Place.Top, left.Top);
        EXPECT_EQ(StopParaTrafo.Window.Place.Width, left.Width);
        EXPECT_EQ(StopParaTrafo.Window.Place.Height, left.Height);
    };
    Calculate();
    EXPECT_GT(looked, 0);
}

TEST_F(FitToAShape, ThatIsStoppedKeepsItsLastFinishedPass) {
    AddPoints(30, kDisplaced);
    int pass = 0;
    Headless.OnYield = [&pass] {
        if (ParaboloidRun.ParaPass == 4 && pass == 0) {
            pass = ParaboloidRun.ParaPass;
            UserClick(StopParaTrafo.BtnStopParaTrafo);
            EXPECT_TRUE(IsTrue(ParaboloidRun.ParaStopRequested));
            EXPECT_FALSE(IsLoaded("FormStopParaTrafo"));
        }
    };
    Calculate();
    EXPECT_EQ(pass, 4);
    EXPECT_LE(ParaboloidRun.ParaPass, 5);
    EXPECT_FALSE(IsTrue(ParaboloidRun.ParaStopRequested)) << "which ends this fit and not the next";
    EXPECT_GT(Calculation.s0, 1e-3);
    EXPECT_TRUE(Calculation.Done);
    EXPECT_FALSE(Calculation.Converged) << "the fit of the pass did, the loop did not";
}

TEST_F(FitToAShape, ThatIsStoppedBehindTheRestOfS0KeepsTheParametersItsTargetsBelongTo) {
    AddPoints(30, kDisplaced);
    const JobRecord before = Job;
    SelectionFromJob();
    ChooseSeeds();
    ParaboloidRun.ParaPass = 1;
    ASSERT_EQ(FitToShape(1e-6), LoopEnd::Rest);
    JobRecord rested = Job;

    // Behind the loop passes go on that are none of its own: they are not counted.
    Job = before;
    int pass = 0, yields = 0;
    bool stopped = false;
    Headless.OnYield = [&] {
        yields = pass == ParaboloidRun.ParaPass ? yields + 1 : 0;
        pass = ParaboloidRun.ParaPass;
        if (stopped || yields < 300) return;
        stopped = true;
        UserClick(StopParaTrafo.BtnStopParaTrafo);
    };
    Calculate();
    ASSERT_TRUE(stopped);
    for (int parameter = kTraX; parameter <= kRotZ; ++parameter)
        EXPECT_EQ(ParameterValue(Job, parameter), ParameterValue(rested, parameter)) << parameter;
    EXPECT_EQ(Job.Target.X, rested.Target.X);
    EXPECT_EQ(Job.Transformed.Z, rested.Transformed.Z);
}

TEST_F(FitToAShape, WhoseMeanErrorNeverRestsEndsWithTheLastPassThatCanBeCounted) {
    AddPoints(4, {.Tz = 7});
    for (const int parameter : {kTraX, kTraY, kRotX, kRotY, kRotZ})
        Job.ParamText[static_cast<std::size_t>(parameter)] = kNotUsed;
    // A point that is higher with each event.
    const double height = Job.Start.Z[1];
    int yields = 0;
    Headless.OnYield = [&] { Job.Start.Z[1] = height + 5 + 0.001 * (++yields % 997); };
    Calculate();
    EXPECT_EQ(Messages(),
              std::vector<std::string>{"Paraboloid stopped after 32767 passes, s0 does not come to rest!"});
    EXPECT_EQ(ParaboloidRun.ParaPass, 32767);
    EXPECT_FALSE(Calculation.Converged);
}

TEST_F(FitToAShape, ShowsTheMeanErrorsOfEachPassInTheChosenUnit) {
    AddPoints(30, kDisplaced);
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    ShowWindow("FormTrafoBerechnung");
    std::set<std::string> shown;
    Headless.OnYield = [&shown] {
        if (ParaboloidRun.ParaPass < 3) return;
        EXPECT_EQ(TrafoWindow.TextS0.Text, FormatNumber(ParaboloidRun.S0 * 0.001, Units.FmtLength));
        EXPECT_EQ(TrafoWindow.TextSxyz.Text, FormatNumber(Calculation.SigmaXYZ * 0.001, Units.FmtLength));
        EXPECT_EQ(TrafoWindow.TextSx.Text, "") << "of the last calculation";
        shown.insert(TrafoWindow.TextS0.Text);
    };
    CalculateParaboloid();
    EXPECT_GT(shown.size(), 2u);
}

TEST_F(FitToAShape, EndsToo_WhenItsWindowIsClosedOrEscaped) {
    AddPoints(30, kDisplaced);
    for (const bool escape : {false, true}) {
        bool done = false;
        Headless.OnYield = [&] {
            if (ParaboloidRun.ParaPass != 3 || done) return;
            done = true;
            escape ? UserEscape(FormStopParaTrafo_Entry) : UserClose(FormStopParaTrafo_Entry);
        };
        Calculate();
        EXPECT_TRUE(done);
        EXPECT_LE(ParaboloidRun.ParaPass, 4);
    }
}

TEST_F(FitToAShape, EndsToo_WhenAStopIsRequested) {
    AddPoints(30, kDisplaced);
    Headless.OnYield = [] {
        if (ParaboloidRun.ParaPass == 3) ::Run.StopRequested = kTrue;
    };
    Calculate();
    EXPECT_LE(ParaboloidRun.ParaPass, 4);
}

TEST_F(FitToAShape, LeavesAJobAloneThatIsReplacedMeanwhile) {
    AddPoints(30, kDisplaced);
    Headless.OnYield = [] {
        if (ParaboloidRun.ParaPass != 3) return;
        Job = JobRecord{};
        ++::Run.JobGeneration;
        Headless.OnYield = nullptr;
    };
    Calculate();
    EXPECT_EQ(Job.TraZ, 0);
    EXPECT_EQ(Job.Target.X.size(), 1u);
    EXPECT_FALSE(IsLoaded("FormStopParaTrafo"));
}

TEST_F(FitToAShape, WhoseFitsDoNotConvergeSaysSoOnce) {
    AddPoints(30, kDisplaced);
    Settings.MaxIteration = 0;
    Calculate();
    EXPECT_EQ(Messages().size(), 1u);
    EXPECT_FALSE(Calculation.Converged);
}

TEST_F(FitToAShape, OfNumbersThatAreNoneEnds) {
    AddPoints(30, kDisplaced);
    for (int row = 100; row <= 1501; ++row)
        Job.ParaboloidShape(row, 2) = std::numeric_limits<double>::quiet_NaN();
    Calculate();
    EXPECT_FALSE(Calculation.Finite);
}

TEST_F(FitToAShape, ComesToAnEndWithCoarseAndCrookedShapes) {
    AddPoints(30, kDisplaced, 5);
    for (const int rows : {2, 3, 5, 9}) {
        TakeShape(rows);
        Calculate();
        EXPECT_TRUE(std::isfinite(Calculation.s0)) << rows;
    }
    for (int row = 1; row <= 9; ++row) Job.ParaboloidShape(row, 2) = 300 * std::fabs(NextNumber());
    Calculate();
    for (int row = 1; row <= 9; ++row) Job.ParaboloidShape(row, 1) = 1000 * NextNumber();
    Calculate();
}

// --- Acceleration -----------------------------------------------------------------------------------------

TEST_F(Acceleration, ShiftsTheHistoryByOnePlace) {
    for (int i = 1; i <= 8; ++i) Pass(i * i);
    EXPECT_EQ(TraX().History[5], 64);
    EXPECT_EQ(TraX().History[4], 49);
    EXPECT_EQ(TraX().History[0], 9);
    EXPECT_EQ(TraX().History.size(), 6u);
}

TEST_F(Acceleration, AddsNothingAtFirstThenOneSixteenAndEightyOneSteps) {
    // Steps of 1, one behind the other, as the fits find them.
    for (int i = 1; i <= 4; ++i) {
        Pass(i);
        EXPECT_EQ(Job.TraX, i) << "the history is not full yet";
    }
    std::vector<double> added;
    for (int i = 5; i <= 8; ++i) {
        Pass(i);
        added.push_back(Job.TraX - i);
    }
    // Of the four numbers behind a 0 too, all steps are 1.
    EXPECT_EQ(TraX().Boost, 5);
    EXPECT_EQ(added, (std::vector<double>{1, 16, 81, 256}));
}

TEST_F(Acceleration, HoldsBackWhereAStepGoesBackFartherThanTheFirst) {
    for (const double traX : {1.0, 2.0, 3.0, 1.0, 3.0, 1.0}) {
        Pass(traX);
        EXPECT_EQ(Job.TraX, traX);
    }
    EXPECT_EQ(TraX().Boost, 0);
}

TEST_F(Acceleration, GoesOnWithStepsUpToThreeTimesTheFirst) {
    for (const double traX : {0.5, 1.5, 4.5, 7.5, 10.5}) Pass(traX);
    EXPECT_EQ(TraX().Boost, 1) << "a step of 3 differs from the first by twice that";
    BeginOuterLoop();
    for (const double traX : {0.5, 1.5, 4.51, 7.5, 10.5}) Pass(traX);
    EXPECT_EQ(TraX().Boost, 0);
}

TEST_F(Acceleration, BeginsAnewWhereS0Rises) {
    for (int i = 1; i <= 7; ++i) Pass(i);
    EXPECT_GT(TraX().Boost, 0);
    const Column before = TraX().History;
    Job.TraX = 100;
    Accelerate(60);
    for (const ParameterTrend& trend : ParaboloidRun.Loop.Trends) EXPECT_EQ(trend.Boost, 0);
    EXPECT_EQ(TraX().History, before);
    EXPECT_EQ(Job.TraX, 100) << "nothing is accelerated in that pass";
    EXPECT_EQ(ParaboloidRun.Loop.PreviousS0, 60);
}

TEST_F(Acceleration, BeginsAnewWhereS0StaysTheSame) {
    for (int i = 1; i <= 7; ++i) Pass(i);
    Accelerate(ParaboloidRun.Loop.PreviousS0);
    EXPECT_EQ(TraX().Boost, 0);
}

TEST_F(Acceleration, LeavesTheRotationAboutTheAxisAlone) {
    for (int i = 1; i <= 12; ++i) {
        Job.RotZ = 0.01 * i;
        Pass(i);
        EXPECT_EQ(Job.RotZ, 0.01 * i);
    }
    for (const ParameterTrend& trend : ParaboloidRun.Loop.Trends) EXPECT_NE(trend.Parameter, kRotZ);
}

TEST_F(Acceleration, LeavesWhatIsHeldAlone) {
    Job.ParamText[kTraX] = "7";
    for (int i = 1; i <= 12; ++i) {
        Pass(i);
        EXPECT_EQ(Job.TraX, i);
    }
    EXPECT_EQ(TraX().Boost, 0);
    EXPECT_EQ(TraX().History, Column(6));
}

TEST_F(Acceleration, TakesAllFiveParametersByThemselves) {
    const std::array<int, 5> parameters = {kTraX, kTraY, kTraZ, kRotX, kRotY};
    for (int i = 1; i <= 6; ++i) {
        for (std::size_t k = 0; k < 5; ++k)
            ParameterValue(Job, parameters[k]) = static_cast<double>(k + 1) * i;
        Accelerate(50 - i);
    }
    for (std::size_t k = 0; k < 5; ++k) {
        EXPECT_EQ(ParaboloidRun.Loop.Trends[k].Parameter, parameters[k]);
        EXPECT_EQ(ParaboloidRun.Loop.Trends[k].Boost, 3);
        EXPECT_EQ(ParameterValue(Job, parameters[k]), static_cast<double>(k + 1) * (6 + 16));
    }
}
