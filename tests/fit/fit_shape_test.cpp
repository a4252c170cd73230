// The fit to a shape of revolution by itself, against surfaces in closed form.
#include "fit/fit_shape.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "fit/fit.h"
#include "fit/shape.h"
#include "fit/shape_interpolation.h"
#include "fit/shape_way.h"

using namespace corvinade::fit;

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr double kFocus = 1000, kRim = 1500;  // mm

template <class Height>
Matrix Table(int rows, Height height) {
    Matrix shape(rows, 2);
    for (int row = 1; row <= rows; ++row) {
        shape(row, 1) = kRim * (row - 1) / (rows - 1);
        shape(row, 2) = height(shape(row, 1));
    }
    return shape;
}

double Dish(double r) {
    return r * r / (4 * kFocus);
}

FitModel Floating(std::initializer_list<int> parameters) {
    StartChoice choice;
    for (const int k : parameters) choice.Floats[At(k)] = true;
    return ModelOf(choice, FitMode::Coincide);
}

// Rotation about x by a, then y by b, then a shift: where a point of the start system is.
Vec3 Moved(const Vec3& p, double a, double b, const Vec3& shift) {
    const double y = std::cos(a) * p(2) - std::sin(a) * p(3), z = std::sin(a) * p(2) + std::cos(a) * p(3);
    return {std::cos(b) * p(1) + std::sin(b) * z + shift(1), y + shift(2),
            -std::sin(b) * p(1) + std::cos(b) * z + shift(3)};
}

struct Cloud {
    std::array<std::vector<double>, 3> Points;
    std::mt19937 Random{11};

    double Even(double from, double to) { return std::uniform_real_distribution<>(from, to)(Random); }
    template <class Height>
    Cloud(int count, double noise, Height height, double a, double b, const Vec3& shift) {
        for (int i = 0; i < count; ++i) {
            const double r = kRim * std::sqrt(Even(0.02, 0.96)), phi = Even(-3.1, 3.1);
            const Vec3 p = Moved({r * std::cos(phi), r * std::sin(phi), height(r)}, a, b, shift);
            for (int axis = 1; axis <= 3; ++axis)
                Points[At(axis - 1)].push_back(p(axis) + Even(-noise, noise));
        }
    }
    Vec3 Point(std::size_t i) const { return {Points[0][i], Points[1][i], Points[2][i]}; }
};

ShapeProblem ProblemOf(const Cloud& cloud, Matrix shape, std::initializer_list<int> floating) {
    ShapeProblem problem;
    problem.Start = {cloud.Points[0], cloud.Points[1], cloud.Points[2]};
    problem.Shape = std::move(shape);
    problem.Model = Floating(floating);
    return problem;
}

const std::initializer_list<int> kFive = {kTraX, kTraY, kTraZ, kRotX, kRotY};

// X = t + Rz(-c) Ry(-b) Rx(-a) x, written out.
Vec3 Image(const Parameters& p, const Vec3& x) {
    const auto turn = [](double angle, double& u, double& v) {
        const double u0 = u;
        u = std::cos(angle) * u0 + std::sin(angle) * v;
        v = -std::sin(angle) * u0 + std::cos(angle) * v;
    };
    double X = x(1), Y = x(2), Z = x(3);
    turn(p[kRotX], Y, Z);
    turn(p[kRotY], Z, X);
    turn(p[kRotZ], X, Y);
    return {X + p[kTraX], Y + p[kTraY], Z + p[kTraZ]};
}

// The distance from the profile, segment by segment; the last one made longer.
double Distance(const Matrix& shape, const Vec3& p) {
    const double r = std::hypot(p(1), p(2));
    double least = INFINITY;
    for (int row = 1; row < shape.Rows; ++row) {
        const double dr = shape(row + 1, 1) - shape(row, 1), dz = shape(row + 1, 2) - shape(row, 2);
        double t = ((r - shape(row, 1)) * dr + (p(3) - shape(row, 2)) * dz) / (dr * dr + dz * dz);
        t = std::max(t, 0.0);
        if (row + 1 < shape.Rows) t = std::min(t, 1.0);
        least = std::min(least, std::hypot(r - shape(row, 1) - t * dr, p(3) - shape(row, 2) - t * dz));
    }
    return least;
}

double SumOfSquares(const Cloud& cloud, const Matrix& shape, const Parameters& at) {
    double sum = 0;
    for (std::size_t i = 0; i < cloud.Points[0].size(); ++i) {
        const double d = Distance(shape, Image(at, cloud.Point(i)));
        sum += d * d;
    }
    return sum;
}

}  // namespace

TEST(ShapeAlone, TiltAndShiftOfADishComeBack) {
    const Cloud cloud(80, 0, Dish, 0.02, -0.03, {4, -6, 9});
    const Matrix shape = Table(1501, Dish);
    const ShapeResult result = FitShape(ProblemOf(cloud, shape, kFive));
    ASSERT_EQ(result.End, PassEnd::Done);
    // Each point is back on the paraboloid itself; chords of 1 mm lie off it by less than 1e-4.
    for (std::size_t i = 0; i < 80; ++i) {
        const Vec3 p = Image(result.Values, cloud.Point(i));
        EXPECT_NEAR(p(3), Dish(std::hypot(p(1), p(2))), 5e-4) << i;
    }
    const Vec3 vertex = Image(result.Values, Moved({0, 0, 0}, 0.02, -0.03, {4, -6, 9}));
    EXPECT_NEAR(vertex(1), 0, 0.02);
    EXPECT_NEAR(vertex(2), 0, 0.02);
    EXPECT_NEAR(vertex(3), 0, 1e-3);
    EXPECT_TRUE(result.Open.empty());
}

TEST(ShapeAlone, OfPointsWithErrorsNoChangeOfAParameterMakesTheSumLess) {
    const Cloud cloud(60, 0.2, Dish, -0.01, 0.02, {3, 2, -5});
    const Matrix shape = Table(1501, Dish);
    const ShapeResult result = FitShape(ProblemOf(cloud, shape, kFive));
    ASSERT_EQ(result.End, PassEnd::Done);
    const double least = SumOfSquares(cloud, shape, result.Values);
    double residuals = 0;
    for (const double v : result.Residuals) residuals += v * v;
    // Feet may lie beyond the ends of segments, which changes distances by the kinks between them.
    EXPECT_NEAR(residuals, least, 2e-3 * least);
    for (const int k : kFive)
        for (const double way : {-1.0, 1.0}) {
            Parameters beside = result.Values;
            beside[k] += way * (k <= kTraZ ? 0.05 : 0.05 / kRim);
            EXPECT_GT(SumOfSquares(cloud, shape, beside), least) << k;
        }
}

TEST(ShapeAlone, WhatAShapeDoesNotHoldIsOpen) {
    const auto openOf = [](auto height) {
        const Cloud cloud(50, 0.05, height, 0, 0, {0, 0, 0.5});
        return FitShape(ProblemOf(cloud, Table(301, height), {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ}))
            .Open;
    };
    EXPECT_EQ(openOf([](double) { return 120.0; }), (std::vector<int>{kTraX, kTraY, kRotZ}));
    EXPECT_EQ(openOf(Dish), (std::vector<int>{kRotZ}));
}

// Over a plane only the height floats, and it is the mean of what is missing.
TEST(ShapeAlone, TheHeightOverAPlaneIsAMeanInEachRunToo) {
    const Matrix plane = Table(31, [](double) { return 120.0; });
    const Cloud cloud(40, 0.3, [](double) { return 100.0; }, 0, 0, {0, 0, 0});
    const ShapeProblem problem = ProblemOf(cloud, plane, {kTraZ});
    double mean = 0;
    for (const double z : cloud.Points[2]) mean += (120 - z) / 40;
    EXPECT_NEAR(FitShape(problem).Values[kTraZ], mean, 1e-9);

    ShapeRun fit = BeginShape(problem, {});
    const GatheredPoints clean = fit.Points;
    ShapeLoop loop;
    NoiseRecord noise;
    constexpr int kRuns = 2000;
    Column heights(1);
    const MonteCarloEnd end = RunMonteCarloOfShape(
        {.Clean = cloud.Points, .Sigma = {0, 0, 0.2}, .Runs = kRuns}, fit, loop, noise,
        {.Counts = [&heights](int, const Column& values) { heights.push_back(values[kTraZ]); }});
    ASSERT_EQ(end, MonteCarloEnd::Complete);
    ASSERT_EQ(heights.size(), kRuns + 1u);
    const double sigma = 0.2 / std::sqrt(40.0);
    EXPECT_NEAR(MeanOfArray(heights), mean, 4 * sigma / std::sqrt(1.0 * kRuns));
    EXPECT_NEAR(SigmaOfArray(heights), sigma, 4 * sigma / std::sqrt(2.0 * kRuns));
    for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_EQ(fit.Points.Start[axis], clean.Start[axis]);
}

TEST(ShapeAlone, PointsThatTakeNoPartMoveNothing) {
    Cloud cloud(40, 0, Dish, 0.01, 0.01, {1, 2, 3});
    cloud.Points[2][7] += 50;
    ShapeProblem problem = ProblemOf(cloud, Table(1501, Dish), kFive);
    std::vector<double> inUse(120, 1);
    for (const std::size_t i : {21U, 22U, 23U}) inUse[i] = 0;
    problem.InUse = inUse;
    const ShapeResult result = FitShape(problem);
    const Vec3 p = Image(result.Values, cloud.Point(3));
    EXPECT_NEAR(p(3), Dish(std::hypot(p(1), p(2))), 5e-4);
}

TEST(ShapeAlone, TheListenerHearsTheLoopAndMayEndIt) {
    const Cloud cloud(40, 0.1, Dish, 0.02, 0, {1, 2, 3});
    const ShapeProblem problem = ProblemOf(cloud, Table(301, Dish), kFive);
    int passes = 0, fits = 0, asked = 0;
    const ShapeResult whole = FitShape(problem, {.GoesOn =
                                                     [&asked](const ShapeRun&, bool) {
                                                         ++asked;
                                                         return true;
                                                     },
                                                 .Fitted =
                                                     [&fits](const FitRun& fit) {
                                                         ++fits;
                                                         return fit.State.Converged;
                                                     },
                                                 .PassCounts = [&passes](const ShapeRun&) { ++passes; }});
    EXPECT_EQ(whole.End, PassEnd::Done);
    EXPECT_GT(passes, 3);
    EXPECT_GT(fits, passes);
    EXPECT_GT(asked, 40 * passes);
    asked = 0;
    EXPECT_EQ(FitShape(problem, {.GoesOn = [&asked](const ShapeRun&, bool) { return ++asked < 100; }}).End,
              PassEnd::Lost);
    EXPECT_EQ(asked, 100) << "and nobody is asked again";
    EXPECT_EQ(FitShape(problem, {.StopIsWanted = [] { return true; }}).End, PassEnd::Failed);
    passes = 0;
    const ShapeResult rested = FitShape(problem, {.PassCounts = [&passes](const ShapeRun&) { ++passes; },
                                                  .RestIsWanted = [&passes] { return passes >= 2; }});
    EXPECT_EQ(rested.End, PassEnd::Done);
    EXPECT_EQ(passes, 2);
}

namespace {

// A way whose loops are told beforehand, s0 by s0.
struct ToldWay {
    std::vector<double> EndsAt;  // s0 of each loop
    std::vector<bool> Accelerated;
    std::vector<double> Begins;  // TraX that each began at
    ShapeLoop Loop;
    Parameters Now;
    double s0 = 0;
    int Thrown = 0, Rests = 0;

    WaySteps Steps() {
        return {.Loop =
                    [this] {
                        Begins.push_back(Now[kTraX]);
                        Accelerated.push_back(Loop.Accelerates);
                        s0 = EndsAt.at(Begins.size() - 1);
                        Now[kTraX] = 100.0 * static_cast<double>(Begins.size());
                        return LoopEnd::Rest;
                    },
                .GoToRest =
                    [this](bool& moved) {
                        ++Rests;
                        moved = false;
                        return PassEnd::Done;
                    },
                .SearchBeside =
                    [this](BesideSearch& found) {
                        found.Better = true;
                        Now[kTraX] = 7;
                        return PassEnd::Done;
                    },
                .Now = [this] { return Now; },
                .Put = [this](const Parameters& now) { Now = now; },
                .s0 = [this] { return s0; },
                .Stopped = [] { return false; },
                .ThrownOff = [this] { ++Thrown; }};
    }
};

}  // namespace

TEST(WayToAShape, ALoopThatIsThrownOffGoesOnFromItsBestPassWithoutAcceleration) {
    ToldWay way;
    way.EndsAt = {10, 0.9};
    way.Loop.LeastS0 = 1;
    way.Loop.Best[kTraX] = 42;
    EXPECT_EQ(FitToRest(way.Loop, way.Steps()), LoopEnd::Rest);
    EXPECT_EQ(way.Begins, (std::vector<double>{0, 42}));
    EXPECT_EQ(way.Accelerated, (std::vector<bool>{true, false}));
    EXPECT_EQ(way.Thrown, 1);
    EXPECT_EQ(way.Rests, 1);
    EXPECT_TRUE(way.Loop.Accelerates);
}

TEST(WayToAShape, WhatWasThrownOffStaysWhereThePlainPassesAreNoBetter) {
    ToldWay way;
    way.EndsAt = {10, 10, 10};
    way.Loop.LeastS0 = 1;
    way.Loop.Best[kTraX] = 42;
    EXPECT_EQ(FitToRest(way.Loop, way.Steps()), LoopEnd::Rest);
    EXPECT_EQ(way.Begins, (std::vector<double>{0, 42, 100}));
    EXPECT_EQ(way.Thrown, 0);
    ToldWay near;
    near.EndsAt = {1.4};
    near.Loop.LeastS0 = 1;
    EXPECT_EQ(FitToRest(near.Loop, near.Steps()), LoopEnd::Rest);
    EXPECT_EQ(near.Begins.size(), 1u) << "half as much again is near";
}

TEST(WayToAShape, APlaceBesideThatDoesNotKeepItsPromiseIsLeftAgain) {
    ToldWay way;
    way.EndsAt = {2, 1.5};
    way.s0 = 1.5;
    way.Now[kTraX] = 3;
    BesideSearch found;
    EXPECT_EQ(FitBeside(way.Loop, way.Steps(), found), LoopEnd::Rest);
    EXPECT_EQ(way.Begins, (std::vector<double>{7, 3}));
    EXPECT_FALSE(found.Better);
    ToldWay better;
    better.EndsAt = {1};
    better.s0 = 1.5;
    EXPECT_EQ(FitBeside(better.Loop, better.Steps(), found), LoopEnd::Rest);
    EXPECT_EQ(better.Begins, (std::vector<double>{7}));
    EXPECT_TRUE(found.Better);
}

TEST(WayToAShape, ALoopEndsWhereS0RestsWhereItIsStoppedAndWhereACountIsFull) {
    ShapeLoop loop;
    int passes = 0, told = 0;
    const auto steps = [&](std::function<double(int)> s0Of) {
        passes = 0;
        BeginLoop(loop);
        return LoopSteps{.Pass =
                             [&, s0Of](double& s0) {
                                 s0 = s0Of(++passes);
                                 Parameters now;
                                 EndOfPass(loop, {}, s0, true, now);
                                 return PassEnd::Done;
                             },
                         .GoesOn = [] { return true; },
                         .StopIsWanted = [] { return false; },
                         .MostPasses = [&told] { ++told; }};
    };
    EXPECT_EQ(LoopToRest(loop, 0.01, steps([](int i) { return 1 + std::pow(0.5, i); })), LoopEnd::Rest);
    EXPECT_EQ(passes, 7) << "two in turn differ by 1/128";
    EXPECT_EQ(LoopToRest(loop, 0.01, steps([](int i) { return i % 2; })), LoopEnd::Stopped);
    EXPECT_EQ(passes, kMostPasses);
    EXPECT_EQ(told, 1);
    LoopSteps stopped = steps([](int) { return 5.0; });
    stopped.StopIsWanted = [&passes] { return passes == 1; };
    EXPECT_EQ(LoopToRest(loop, 0.01, stopped), LoopEnd::Stopped);
    LoopSteps lost = steps([](int) { return 5.0; });
    lost.GoesOn = [] { return false; };
    EXPECT_EQ(LoopToRest(loop, 0.01, lost), LoopEnd::Lost);
    EXPECT_EQ(passes, 1);
}

// Between neighbours at a distance h a parabola r^2 / (4 f) is off its chord by h^2 / (4 f).
TEST(ShapeAlone, TheTestOfTheInterpolationTellsTheChordsOfAParabola) {
    const InterpolationTest test = TestInterpolation(Table(11, Dish));
    const double h = kRim / 10, off = h * h / (4 * kFocus);
    EXPECT_NEAR(test.Biggest, off, 1e-9);
    EXPECT_NEAR(test.Smallest, off, 1e-9);
    EXPECT_NEAR(test.Average, 7 * off / 4 / 10, 1e-9);
    ASSERT_EQ(test.Deltas.size(), 12u);
    for (std::size_t row = 0; row < 5; ++row) EXPECT_EQ(test.Deltas[row], 0);
    for (std::size_t row = 5; row < 12; ++row) EXPECT_NEAR(test.Deltas[row], off, 1e-9);
}
