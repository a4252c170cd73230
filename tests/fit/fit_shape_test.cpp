// The fit to a shape of revolution by itself, against surfaces in closed form.
#include "fit/fit_shape.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "fit/fit.h"
#include "fit/shape.h"

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
                                                     [&asked](const ShapeRun&) {
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
    EXPECT_EQ(FitShape(problem, {.GoesOn = [&asked](const ShapeRun&) { return ++asked < 100; }}).End,
              PassEnd::Lost);
    EXPECT_EQ(asked, 100) << "and nobody is asked again";
    EXPECT_EQ(FitShape(problem, {.StopIsWanted = [] { return true; }}).End, PassEnd::Failed);
    passes = 0;
    const ShapeResult rested = FitShape(problem, {.PassCounts = [&passes](const ShapeRun&) { ++passes; },
                                                  .RestIsWanted = [&passes] { return passes >= 2; }});
    EXPECT_EQ(rested.End, PassEnd::Done);
    EXPECT_EQ(passes, 2);
}
