// What a shape holds of the parameters, and that the rest of them stays where the passes have left it.
#include "fit/held_directions.h"

#include "core/notes.h"
#include "core/parameter_names.h"
#include "core/settings.h"
#include "engine/monte_carlo.h"
#include "engine/transform.h"
#include "paraboloid/shape_job.h"
#include "paraboloid/shape_passes.h"

using namespace corvinade;

namespace {

class WhatAShapeHolds : public ShapeJob {
protected:
    // A table of so many rows from the axis to the rim, of any height over the radius.
    template <class Height>
    static void TakeTable(int rows, Height height) {
        Job.IsParaboloid = kTrue;
        Job.ParaboloidShape = Matrix(rows, 2);
        for (int row = 1; row <= rows; ++row) {
            Job.ParaboloidShape(row, 1) = kRim * (row - 1) / (rows - 1);
            Job.ParaboloidShape(row, 2) = height(Job.ParaboloidShape(row, 1));
        }
    }
    static void TakePlane() {
        TakeTable(301, [](double) { return 120.0; });
    }
    static double BallAt(double r) { return 3000 - std::sqrt(3000.0 * 3000.0 - r * r); }
    static void TakeBall() { TakeTable(1501, BallAt); }
    // Points at these heights, displaced and with noise.
    template <class Height>
    static void AddPointsOf(int points, const Displacement& d, double noise, Height height) {
        const Matrix shape = Job.ParaboloidShape;
        AddPoints(points, d, 0);
        for (int i = 1; i <= points; ++i) {
            const auto k = static_cast<std::size_t>(i);
            const double r = kRim * std::sqrt(0.5 + 0.48 * NextNumber()), phi = kPi * NextNumber();
            auto p = Before(d, {r * std::cos(phi), r * std::sin(phi), height(r)});
            for (double& coordinate : p) coordinate += noise * NextNumber();
            Job.Start.X[k] = p[0];
            Job.Start.Y[k] = p[1];
            Job.Start.Z[k] = p[2];
        }
        ParaboloidNearestTargets();
    }

    // The told passes alone, as they leave the parameters.
    static JobRecord PassesAlone() {
        const JobRecord before = Job;
        SelectionFromJob();
        ChooseSeeds();
        ParaboloidRun.ParaPass = 1;
        EXPECT_EQ(FitToShape(1e-6), LoopEnd::Rest);
        const JobRecord alone = Job;
        Job = before;
        return alone;
    }

    // The sum of squared distances at the present parameters.
    static double SumOfSquares() {
        Job.RotXCopy = Job.RotX;
        Job.RotYCopy = Job.RotY;
        Job.RotZCopy = Job.RotZ;
        double sum = 0;
        for (int i = 1; i <= Job.Pairs(); ++i) {
            const Vec3 p = StartPoint(i);
            Vec3 X, foot;
            double distance = 0;
            TransformPoint(p(1), p(2), p(3), X(1), X(2), X(3));
            NearestShapePoint(X(1), X(2), X(3), Job.ParaboloidShape, foot(1), foot(2), foot(3), distance);
            sum += distance * distance;
        }
        return sum;
    }

    static std::vector<std::string> NotesOf(NoteCode code) {
        std::vector<std::string> texts;
        for (const Note& note : Notes.List)
            if (note.Code == code) texts.push_back(NoteLine(note));
        return texts;
    }

    static HeldDirections DirectionsHere(int without) {
        ShapePasses passes;
        EXPECT_TRUE(passes.Begin());
        return FindHeldDirections(passes.Fit, FloatingParameters(passes.Fit), without);
    }
    static std::vector<double> SigmasHere() {
        ShapePasses passes;
        EXPECT_TRUE(passes.Begin());
        return SigmasByDistances(passes.Fit);
    }
};

}  // namespace

TEST_F(WhatAShapeHolds, OfAPlaneNoShiftInItIsMoved) {
    TakePlane();
    Job.ParamText[kRotZ] = "0";
    AddPointsOf(60, {.Tx = 0.3, .Tz = 4, .A = 0.002, .B = -0.001}, 0.01, [](double) { return 120.0; });
    const JobRecord alone = PassesAlone();
    Calculate();
    EXPECT_TRUE(Calculation.Converged);
    EXPECT_NEAR(Job.TraX, alone.TraX, 0.01);
    EXPECT_NEAR(Job.TraY, alone.TraY, 0.01);
    for (const int k : {kTraX, kTraY})
        EXPECT_TRUE(std::isnan(Calculation.Sigma[static_cast<std::size_t>(k)]));
    EXPECT_GT(Calculation.Sigma[kTraZ], 0);
    EXPECT_EQ(NotesOf(NoteCode::OpenParameters),
              std::vector<std::string>{"The shape does not hold Tra x, Tra y: what is shown for them is "
                                       "arbitrary, and they have no sigma"});
}

TEST_F(WhatAShapeHolds, TheTurnAboutTheAxisTakesNoPart) {
    for (const double noise : {0.02, 0.3}) {
        SCOPED_TRACE(noise);
        Job = JobRecord{};
        BeginFit();
        FloatParameters(kRigid);
        TakeShape(301);
        AddPoints(80, {.Tx = 5, .Ty = -3, .Tz = 10, .A = 0.03, .B = -0.02}, noise);
        const JobRecord alone = PassesAlone();
        Calculate();
        EXPECT_TRUE(Calculation.Converged);
        EXPECT_NEAR(Job.RotZ, alone.RotZ, 1e-4);
        const std::vector<std::string> open = NotesOf(NoteCode::OpenParameters);
        ASSERT_EQ(open.size(), 1u);
        EXPECT_EQ(open[0].find("The shape does not hold Rot z:"), 0u) << open[0];
    }
}

TEST_F(WhatAShapeHolds, WithTheTurnHeldADishHoldsTheRestAndNothingIsSaid) {
    Job.ParamText[kRotZ] = "0";
    AddPoints(80, {.Tx = 5, .Ty = -3, .Tz = 10, .A = 0.03, .B = -0.02}, 0.02);
    Calculate();
    EXPECT_EQ(NotesOf(NoteCode::ShapeSigma).size(), Notes.List.size());
    EXPECT_EQ(DirectionsHere(0).Held.size(), 5u);
    EXPECT_TRUE(DirectionsHere(0).Open.empty());
}

TEST_F(WhatAShapeHolds, TheJobIsMarkedWithWhatTheShapeDoesNotHold) {
    TakePlane();
    Job.ParamText[kRotZ] = "0";
    AddPointsOf(60, {.Tx = 0.3, .Tz = 4, .A = 0.002, .B = -0.001}, 0.01, [](double) { return 120.0; });
    Calculate();
    EXPECT_EQ(Job.LeftOpen, (decltype(Job.LeftOpen){0, 1, 1})) << "Tra x and Tra y";
    // The next result has its own.
    Job.ParamText[kTraX] = Job.ParamText[kTraY] = "0";
    Job.Collapsed = kTrue;
    Calculate();
    EXPECT_EQ(Job.LeftOpen, decltype(Job.LeftOpen){});
    EXPECT_EQ(Job.Collapsed, kFalse);
}

TEST_F(WhatAShapeHolds, AlongOpenDirectionsTheSumStaysAndAlongHeldOnesItRisesAsTold) {
    const std::vector<std::pair<const char*, std::size_t>> shapes = {{"plane", 3}, {"ball", 3}, {"dish", 5}};
    for (const auto& [name, held] : shapes) {
        SCOPED_TRACE(name);
        Job = JobRecord{};
        BeginFit();
        FloatParameters(kRigid);
        const std::string shape = name;
        if (shape == "plane") TakePlane();
        if (shape == "ball") TakeBall();
        if (shape == "dish") TakeShape(1501);
        AddPointsOf(40, {}, 0, [&shape](double r) {
            return shape == "plane" ? 120 : shape == "ball" ? BallAt(r) : Height(r);
        });
        Job.TraX = Job.TraY = Job.TraZ = Job.RotX = Job.RotY = Job.RotZ = 0;
        Job.ScaleX = Job.ScaleY = Job.ScaleZ = Job.ScaleXYZ = 1;
        ShapePasses passes;
        ASSERT_TRUE(passes.Begin());
        const FloatingParameters floating(passes.Fit);
        const HeldDirections directions = FindHeldDirections(passes.Fit, floating, 0);
        EXPECT_EQ(directions.Held.size(), held);
        EXPECT_EQ(directions.Held.size() + directions.Open.size(), 6u);
        const ParameterPlace begin = floating.Take(passes.Fit.Now);
        const auto sumAt = [&](const ParameterPlace& direction, double way) {
            ParameterPlace place = begin;
            for (std::size_t i = 0; i < place.size(); ++i) place[i] += way * direction[i];
            floating.Put(place, passes.Fit.Now);
            passes.PutIntoJob();
            const double sum = SumOfSquares();
            floating.Put(begin, passes.Fit.Now);
            passes.PutIntoJob();
            return sum;
        };
        constexpr double kWay = 0.2;
        for (std::size_t k = 0; k < directions.Held.size(); ++k) {
            const double rise = sumAt(directions.Held[k], kWay) + sumAt(directions.Held[k], -kWay);
            // The facets of the table make the sum bumpy; the weight is that of the smooth surface.
            EXPECT_NEAR(rise / (2 * kWay * kWay), directions.Weight[k], 0.05 * directions.Weight[k]) << k;
        }
        for (const ParameterPlace& open : directions.Open)
            EXPECT_LT(sumAt(open, kWay), 1e-6 * 40 * kWay * kWay);
    }
}

TEST_F(WhatAShapeHolds, TheRunsOfMonteCarloLeaveTheTurnAloneToo) {
    TakeShape(301);
    AddPoints(60, {.Tx = 5, .Ty = -3, .Tz = 10, .A = 0.03, .B = -0.02}, 0.05);
    Settings.SigmaX = Settings.SigmaY = Settings.SigmaZ = 0.05;
    Settings.MonteCarloRuns = 10;
    MonteCarlo.MonteCarloOn = kTrue;
    Calculate();
    MonteCarlo.MonteCarloOn = kFalse;
    ASSERT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    EXPECT_LT(SigmaOfArray(MonteCarloArray(kRotZ)), 1e-4);
}

TEST_F(WhatAShapeHolds, PointsBeyondTheTableAreCounted) {
    Job.ParamText[kRotZ] = "0";
    AddPoints(80, {.Tz = 3}, 0.02);
    Calculate();
    EXPECT_TRUE(NotesOf(NoteCode::TableExtended).empty());
    // The table ends before the outermost points.
    std::vector<double> radii;
    for (int i = 1; i <= Job.Pairs(); ++i)
        radii.push_back(
            std::hypot(*Job.Start.X[static_cast<std::size_t>(i)], *Job.Start.Y[static_cast<std::size_t>(i)]));
    std::sort(radii.begin(), radii.end());
    const double end = (radii[76] + radii[77]) / 2;  // three are beyond, and nearer than 1 mm to it none
    ASSERT_GT(radii[77] - radii[76], 1);
    Matrix shorter(1501, 2);
    for (int row = 1; row <= 1501; ++row) {
        shorter(row, 1) = end * (row - 1) / 1500;
        shorter(row, 2) = Height(shorter(row, 1));
    }
    Job.ParaboloidShape = shorter;
    Calculate();
    std::string names;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const auto k = static_cast<std::size_t>(i);
        if (std::hypot(*Job.Start.X[k], *Job.Start.Y[k]) > end)
            names += (names.empty() ? "\"" : ", \"") + Job.Start.Name[k] + "\"";
    }
    EXPECT_EQ(std::count(names.begin(), names.end(), ','), 2);
    EXPECT_EQ(NotesOf(NoteCode::TableExtended),
              std::vector<std::string>{"The points " + names +
                                       " lie beyond the end of the shape's table, whose last segment is "
                                       "extended (3 times)"});
}

TEST_F(WhatAShapeHolds, TheNormalIsThatOfTheSurfaceBehindTheTable) {
    TakeShape(1501);
    for (int i = 0; i < 200; ++i) {
        const double r = kRim * (0.5 + 0.49 * NextNumber()), phi = kPi * NextNumber();
        const ShapeFoot foot =
            NearestShapeFoot(r * std::cos(phi), r * std::sin(phi), Height(r) + 0.1, Job.ParaboloidShape);
        double X = 0, Y = 0, Z = 0, distance = 0;
        NearestShapePoint(r * std::cos(phi), r * std::sin(phi), Height(r) + 0.1, Job.ParaboloidShape, X, Y, Z,
                          distance);
        EXPECT_EQ(foot.Distance, distance);
        EXPECT_NEAR(foot.Place(1), X, 1e-12);
        EXPECT_NEAR(foot.Place(3), Z, 1e-12);
        // z = r^2 / (4 f) has the slope r / (2 f).
        const double radius = std::hypot(X, Y), slope = radius / (2 * kFocus), length = std::hypot(slope, 1);
        EXPECT_NEAR(foot.Normal(1), -slope / length * std::cos(phi), 1e-6);
        EXPECT_NEAR(foot.Normal(2), -slope / length * std::sin(phi), 1e-6);
        EXPECT_NEAR(foot.Normal(3), 1 / length, 1e-6);
        EXPECT_FALSE(foot.Beyond);
    }
}

// Many fits of one dish with fresh noise: how far they lie from the truth is what the sigmas should say.
TEST_F(WhatAShapeHolds, TheDistancesTellHowWellItIsKnown) {
    constexpr int kFits = 60;
    const Displacement truth{.Tx = 5, .Ty = -3, .Tz = 10, .A = 0.03, .B = -0.02};
    const std::array<double, 6> at{0, truth.Tx, truth.Ty, truth.Tz, truth.A, truth.B};
    std::array<double, 6> squares{}, told{}, known{};
    std::string note;
    for (int fit = 0; fit < kFits; ++fit) {
        Job = JobRecord{};
        BeginFit();
        FloatParameters(kRigid);
        Job.ParamText[kRotZ] = "0";
        TakeShape(1501);
        for (int skipped = 0; skipped < 211 * fit; ++skipped) NextNumber();  // BeginFit has begun it anew
        AddPoints(40, truth, 0.1);
        Calculate();
        ASSERT_TRUE(Calculation.Converged);
        const std::vector<double> sigmas = SigmasHere();
        for (std::size_t k = 1; k <= 5; ++k) {
            const double off = ParameterValue(Job, static_cast<int>(k)) - at[k];
            squares[k] += off * off / kFits;
            known[k] += sigmas[k] / kFits;
            told[k] += Calculation.Sigma[k] / kFits;
        }
        ASSERT_EQ(NotesOf(NoteCode::ShapeSigma).size(), 1u);
        note = NotesOf(NoteCode::ShapeSigma)[0];
    }
    for (std::size_t k = 1; k <= 5; ++k) {
        SCOPED_TRACE(k);
        const double spread = std::sqrt(squares[k]);
        EXPECT_NEAR(known[k] / spread, 1, 0.3);
        const bool named = note.find(ParameterName(static_cast<int>(k))) != std::string::npos;
        EXPECT_EQ(named, spread > 2 * told[k]) << note;
    }
}
