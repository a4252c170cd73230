// What stands behind a result: of one that has not converged the points belong to the parameters all the
// same, far from the origin a fit comes to rest, and what cannot be held in a number is no result.
#include <cmath>

#include "core/notes.h"
#include "core/text.h"
#include "engine/monte_carlo.h"
#include "engine/norm_job.h"
#include "engine/presets.h"
#include "engine/seed.h"
#include "engine/selection.h"
#include "engine/transform.h"

using namespace corvinade;

namespace {

class HonestEnds : public NormTest {
protected:
    static void Begin(const char* preset) {
        SelectPreset(preset);
        ChooseDefaultSeeds();
        SelectionFromJob();
        Notes.List.clear();
    }

    static bool Noted(NoteCode code, const std::string& text = "") {
        for (const Note& note : Notes.List)
            if (note.Code == code && note.Text.find(text) != std::string::npos) return true;
        return false;
    }

    // The largest way between the points that the deviations stand for and those of the parameters, mm.
    static double Contradiction() {
        double largest = 0;
        for (int i = 1; i <= Job.Pairs(); ++i) {
            const Vec3 p = StartPoint(i), q = TargetPoint(i);
            Vec3 image;
            TransformPoint(p(1), p(2), p(3), image(1), image(2), image(3));
            for (int axis = 1; axis <= 3; ++axis) {
                const double shown = Calculation.v[static_cast<std::size_t>(3 * (i - 1) + axis)];
                largest = std::max(largest, std::fabs(image(axis) - q(axis) - shown));
            }
        }
        return largest;
    }

    // Control points of a site in its own system and in a national one, to the millimetre.
    struct Control {
        reference::Point Start, Target;
    };
    static std::vector<Control> ControlPoints() {
        constexpr double kMetre = 1000;
        const double c = std::cos(0.4), s = std::sin(0.4);
        std::vector<Control> points;
        for (int i = 0; i < 7; ++i) {
            const double x = 160 * NextNumber(), y = 90 * NextNumber(), z = 10 * NextNumber();
            const auto noisy = [](double metres) {
                return std::round((metres + 0.002 * NextNumber()) * kMetre);
            };
            points.push_back({{x * kMetre, y * kMetre, z * kMetre},
                              {noisy(c * x - s * y), noisy(s * x + c * y), noisy(z)}});
        }
        return points;
    }
    static void AddControlPoints(double east, double north) {
        for (const Control& point : ControlPoints())
            AddPair(point.Start, {point.Target[0] + 1000 * east, point.Target[1] + 1000 * north,
                                  point.Target[2] + 517000});
    }
};

}  // namespace

TEST_F(HonestEnds, PointsOfAFitAtItsLimitAreThoseOfItsParameters) {
    for (const int norm : {kL2, kL1, kLoo}) {
        Job = JobRecord{};
        BeginFit();
        AddCloud({.Points = 8, .Noise = 300, .Truth = Truth({1, 2, 3, 0.3, 1.2, 2.5, 1, 1, 1, 1})});
        Begin("7");
        Settings.MaxIteration = 1;
        Calculate(norm);
        EXPECT_FALSE(Calculation.Converged);
        EXPECT_LT(Contradiction(), 1e-5) << norm;
    }
}

TEST_F(HonestEnds, ControlPointsInANationalSystemConvergeInEveryNorm) {
    for (const char* preset : {"6", "7", "9", "12"})
        for (const int norm : {kL2, kL1, kLoo}) {
            Job = JobRecord{};
            BeginFit();
            AddControlPoints(691240, 5334700);
            Begin(preset);
            Calculate(norm);
            SCOPED_TRACE(std::string(preset) + " parameters, norm " + std::to_string(norm));
            EXPECT_TRUE(Calculation.Converged);
            EXPECT_TRUE(Messages().empty());
            EXPECT_FALSE(Noted(NoteCode::BetterStart)) << "the iteration has come to rest by itself";
            EXPECT_LT(Contradiction(), 1e-4);
            EXPECT_LT(LargestResidual(), 10) << "mm, noise of 2 mm and 0.5 mm of rounding";
        }
}

TEST_F(HonestEnds, AnOffsetOfTheTargetsChangesNoDeviation) {
    const std::vector<Control> points = ControlPoints();
    for (const int norm : {kL2, kL1, kLoo}) {
        std::vector<Column> deviations;
        for (const double offset : {0.0, 1.0}) {
            Job = JobRecord{};
            BeginFit();
            for (const Control& point : points)
                AddPair(point.Start, {point.Target[0] + 691240000 * offset,
                                      point.Target[1] + 5334700000 * offset, point.Target[2]});
            Begin("7");
            Calculate(norm);
            deviations.push_back(Calculation.v);
        }
        ASSERT_EQ(deviations[0].size(), 22U);
        // The loops of L1 and Loo end within a tolerance of their own.
        const double tolerance = norm == kL2 ? 1e-5 : 2e-3;
        for (std::size_t i = 1; i < deviations[0].size(); ++i)
            EXPECT_NEAR(deviations[0][i], deviations[1][i], tolerance) << norm;
    }
}

TEST_F(HonestEnds, MonteCarloRunsFarFromTheOrigin) {
    AddControlPoints(691240, 5334700);
    Begin("7");
    MonteCarlo.MonteCarloOn = kTrue;
    Settings.MonteCarloRuns = 20;
    Settings.SigmaX = Settings.SigmaY = Settings.SigmaZ = 3;
    Calculate(kL2);
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
}

TEST_F(HonestEnds, WhatNoNumberHoldsIsNoResult) {
    AddCloud({.Points = 6, .Truth = Truth({1, 2, 3, 0, 0, 0, 1, 1, 1, 1})});
    Job.Target.Z[4] = 1e200;
    Begin("6");
    Calculate(kL2);
    EXPECT_FALSE(Calculation.Finite);
}

TEST_F(HonestEnds, AnAzimuthWithoutEffectIsNamedAtThePoleToo) {
    const std::vector<reference::Point> points = {
        {0, 0, 0}, {1000, 0, 0}, {0, 800, 0}, {300, 400, 500}, {700, 100, -200}};
    // Rot y of -90 degrees: (z, y, -x), moved.
    for (const reference::Point& p : points) AddPair(p, {p[2] + 100, p[1] + 200, 300 - p[0]});
    Begin("12");
    Calculate(kL2);
    EXPECT_TRUE(Noted(NoteCode::GimbalLock));
    EXPECT_TRUE(Noted(NoteCode::NoEffect, "Azimuth"));
}

TEST_F(HonestEnds, AnOptimumAtItsBoundHasConverged) {
    // A flat set whose exchanges go on although nothing is to be gained any more.
    const std::vector<reference::Point> start = {
        {291.090718368, 308.654620164, 4.736161095},  {45.377003826, -9.190720171, 3.556976998},
        {269.067385859, 70.544629387, -1.167436152},  {-215.952554266, -391.860791266, 3.075490894},
        {-381.928469469, 247.265234688, 0.452870898}, {464.945328786, 261.065659853, 4.735197846},
        {-363.405987060, 0.371473832, 0.725782872},   {-188.748542688, 3.032488206, -1.431812364}};
    const std::vector<reference::Point> target = {
        {-450.345992198, 560.101337672, -1494.698391178},  {-266.715748582, 825.287784515, -1336.329425177},
        {-783.206589129, 960.209911739, -953.637318704},   {-933.740137822, -848.926736168, -968.716274055},
        {-730.407845782, 819.236323066, -1312.766292858},  {-2187.668248225, 535.610023339, -1223.606999107},
        {-1712.267334403, -13.381869766, -1435.663774667}, {-851.324967447, -56.071428526, -1584.999552611}};
    for (std::size_t i = 0; i < start.size(); ++i) AddPair(start[i], target[i]);
    Begin("6");
    Norm.RunOn = true;
    for (const int norm : {kL1, kLoo}) {
        Calculate(norm);
        const double value = norm == kL1 ? SumOfResiduals() : LargestResidual();
        const bool certified = Norm.AboveOptimum <= 1e-9 * value;
        EXPECT_TRUE(certified) << norm << ": " << Norm.AboveOptimum;
        EXPECT_EQ(Calculation.Converged, certified);
        EXPECT_TRUE(Messages().empty()) << norm;
    }
}

TEST_F(HonestEnds, AnOptimumIsNotAboveThoseWithAScaleHeld) {
    // Points all but in a plane, whose mirrored optimum has no proper one beside it: what is held is told.
    const std::vector<reference::Point> start = {{186.275329759, -374.173000264, -1.172706844},
                                                 {-192.765963560, -361.706037215, 4.165639830},
                                                 {134.946310957, 33.760338542, -2.441930912},
                                                 {118.781552917, 194.320021173, 3.576906571},
                                                 {369.354038395, 358.722432303, 3.837468289}};
    const std::vector<reference::Point> target = {{2213.591541053, -1321.528171749, -1478.320107037},
                                                  {2507.326316749, -1246.311502984, -1259.638111488},
                                                  {2734.437844662, -1423.366023727, -1611.814140651},
                                                  {2933.797698001, -1328.362592797, -1768.772082053},
                                                  {2845.329078426, -1479.167122475, -2044.814341376}};
    for (std::size_t i = 0; i < start.size(); ++i) AddPair(start[i], target[i]);
    Norm.RunOn = true;
    for (const int norm : {kL1, kLoo}) {
        const auto value = [&] { return norm == kL1 ? SumOfResiduals() : LargestResidual(); };
        Begin("9");
        Calculate(norm);
        const double free = value();
        const bool mirrored = Noted(NoteCode::Mirrored);
        const bool isHeld = Noted(NoteCode::OpenParameters, "held at");
        for (const char* held : {"0.01", "0.3", "1", "5"}) {
            Begin("9");
            Job.ParamText[kScaleZ] = held;
            SelectionFromJob();
            Calculate(norm);
            if (!isHeld) {
                EXPECT_LE(free, value() * (1 + 1e-6)) << norm << ", " << held;
            }
        }
        EXPECT_FALSE(mirrored) << norm;
    }
}
