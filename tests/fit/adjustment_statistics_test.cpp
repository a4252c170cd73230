// Accuracies and reliability against dense algebra, closed forms, and the theory of Gauss and Markov in
// thousands of simulated fits.
#include "fit/adjustment_statistics.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "dense_algebra.h"
#include "fit/distributions.h"

using namespace dense;

namespace {

struct Sigmas {
    Columns Start, Target;
    PairSigmas View() const { return {{Spans(Start)}, {Spans(Target)}}; }
};

Sigmas OfEachPair(int count, unsigned seed) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> size(0.05, 0.3);
    Sigmas sigmas;
    for (auto* side : {&sigmas.Start, &sigmas.Target})
        for (auto& axis : *side)
            for (int i = 0; i < count; ++i) axis.push_back(size(random));
    return sigmas;
}

// What the statistics are made of, with matrices of all observations in use.
struct Long {
    std::vector<int> Index;  // of the observations in use, from 0
    Dense A{0, 0}, C{0, 0}, W{0, 0}, Q{0, 0}, Qvv{0, 0};
    std::vector<double> v;
};

Dense CovarianceOfPair(const Parameters& p, const PairSigmas* sigmas, int pair) {
    Dense C(3, 3);
    const Mat3 M = MatrixOf(p);
    for (int a = 0; a < 3; ++a) {
        for (int b = 0; b < 3 && sigmas != nullptr; ++b)
            for (int j = 1; j <= 3; ++j)
                C(a, b) += M(a + 1, j) * M(b + 1, j) * std::pow(sigmas->Start.At(j, pair), 2);
        C(a, a) += sigmas != nullptr ? std::pow(sigmas->Target.At(a + 1, pair), 2) : 1;
    }
    return C;
}

Long TheLongWay(const Example& example, const FitResult& fit, const PairSigmas* sigmas) {
    Long all;
    for (int i = 0; i < 3 * example.Count(); ++i)
        if (example.InUse[At(i)] != 0) all.Index.push_back(i);
    const int n = static_cast<int>(all.Index.size()), u = fit.Model.Unknowns;
    all.A = Dense(n, u);
    all.C = Dense(n, n);
    for (int row = 0; row < n; ++row) {
        const int pair = all.Index[At(row)] / 3, axis = all.Index[At(row)] % 3;
        const std::size_t k = At(pair);
        const double x = example.Start[0][k], y = example.Start[1][k], z = example.Start[2][k];
        const Dense rows = RowsAt(fit.Model, fit.Values, x, y, z);
        for (int j = 0; j < u; ++j) all.A(row, j) = rows(axis, j);
        const Dense C = CovarianceOfPair(fit.Values, sigmas, pair);
        for (int other = 0; other < n; ++other)
            if (all.Index[At(other)] / 3 == pair) all.C(row, other) = C(axis, all.Index[At(other)] % 3);
        all.v.push_back(Image(fit.Values, x, y, z)[At(axis)] - example.Target[At(axis)][k]);
    }
    all.W = Inverse(all.C);
    // Unknowns of very different size: scaled before the inversion, so that it keeps its digits.
    Dense scaled = all.A;
    std::vector<double> size(At(u));
    for (int j = 0; j < u; ++j) {
        for (int row = 0; row < n; ++row) size[At(j)] = std::max(size[At(j)], std::fabs(all.A(row, j)));
        for (int row = 0; row < n; ++row) scaled(row, j) /= size[At(j)];
    }
    all.Q = Inverse(Transposed(scaled) * all.W * scaled);
    for (int i = 0; i < u; ++i)
        for (int j = 0; j < u; ++j) all.Q(i, j) /= size[At(i)] * size[At(j)];
    all.Qvv = all.C - all.A * all.Q * Transposed(all.A);
    return all;
}

void ExpectAsTheLongWay(const Example& example, const FitResult& fit, const PairSigmas* sigmas) {
    const AdjustmentStatistics s = StatisticsOfFit(example, fit, sigmas);
    ASSERT_FALSE(s.Singular);
    const Long all = TheLongWay(example, fit, sigmas);
    const int n = static_cast<int>(all.Index.size()), u = fit.Model.Unknowns;
    ASSERT_EQ(s.Observations, n);
    ASSERT_EQ(s.Unknowns, u);
    ASSERT_EQ(s.Redundancy, n - u);
    Dense v(n, 1);
    for (int i = 0; i < n; ++i) v(i, 0) = all.v[At(i)];
    const double vtpv = (Transposed(v) * all.W * v)(0, 0);
    EXPECT_NEAR(s.Vtpv / vtpv, 1, 1e-6);
    EXPECT_NEAR(s.s0 / std::sqrt(vtpv / (n - u)), 1, 1e-6);
    const double scale = sigmas != nullptr ? 1 : s.s0;
    for (int i = 1; i <= u; ++i) {
        EXPECT_NEAR(s.Sigma(i) / (scale * std::sqrt(all.Q(i - 1, i - 1))), 1, 1e-6) << i;
        for (int j = 1; j <= u; ++j) {
            const double size = std::sqrt(all.Q(i - 1, i - 1) * all.Q(j - 1, j - 1));
            EXPECT_NEAR(s.Correlation(i, j), all.Q(i - 1, j - 1) / size, 1e-6) << i << " " << j;
            EXPECT_NEAR(s.Covariance(i, j) / (scale * scale * size), all.Q(i - 1, j - 1) / size, 1e-6);
        }
    }
    const Dense R = all.Qvv * all.W, S = all.W * all.Qvv * all.W, Wv = all.W * v;
    double sum = 0;
    for (int row = 0; row < n; ++row) {
        const std::size_t index = At(all.Index[At(row)] + 1);
        sum += s.Redundancies[index];
        EXPECT_NEAR(s.Redundancies[index], R(row, row), 1e-6);
        if (R(row, row) < 1e-4) continue;  // what is left of the dense matrices' digits there is little
        EXPECT_NEAR(s.Standardized[index], Wv(row, 0) / (scale * std::sqrt(S(row, row))), 1e-4);
        EXPECT_NEAR(s.Mdb(index) * std::sqrt(S(row, row)) / (s.Shift * scale), 1, 1e-4);
    }
    EXPECT_NEAR(sum, n - u, 1e-8);  // the redundancies of all coordinates make the redundancy
    // Out of use, and any other point.
    for (int i = 0; i < 3 * example.Count(); ++i) {
        const std::size_t pair = At(i / 3), axis = At(i % 3);
        const double x = example.Start[0][pair], y = example.Start[1][pair], z = example.Start[2][pair];
        const Dense rows = RowsAt(fit.Model, fit.Values, x, y, z);
        const Dense covariance = rows * all.Q * Transposed(rows);
        const Mat3 own = CovarianceOfTransformed(s, {x, y, z});
        for (int j = 0; j < 3; ++j)
            EXPECT_NEAR(own(i % 3 + 1, j + 1) / (scale * scale), covariance(i % 3, j),
                        1e-6 * covariance(0, 0));
        if (example.InUse[At(i)] != 0) continue;
        const double variance =
            CovarianceOfPair(fit.Values, sigmas, i / 3)(i % 3, i % 3) + covariance(i % 3, i % 3);
        const double residual = Image(fit.Values, x, y, z)[axis] - example.Target[axis][pair];
        EXPECT_NEAR(s.Standardized[At(i + 1)], residual / (scale * std::sqrt(variance)), 1e-5);
        EXPECT_TRUE(std::isnan(s.Redundancies[At(i + 1)]));
        EXPECT_TRUE(std::isnan(s.Mdb(At(i + 1))));
    }
}

TEST(AdjustmentStatistics, UnitWeightsAsDenseAlgebra) {
    unsigned seed = 100;
    for (const auto& floats : {kSix, kSeven, kNine, kTwelve}) {
        Example example = MakeExample(8, 0.2, ++seed, floats);
        example.InUse[1] = example.InUse[12] = example.InUse[13] = example.InUse[14] = 0;
        ExpectAsTheLongWay(example, FitOf(example, floats), nullptr);
    }
}

TEST(AdjustmentStatistics, ErrorsOfBothSystemsAsDenseAlgebra) {
    unsigned seed = 200;
    for (const auto& floats : {kSix, kSeven, kNine, kTwelve}) {
        Example example = MakeExample(8, 0.2, ++seed, floats);
        example.InUse[1] = example.InUse[12] = example.InUse[13] = example.InUse[14] = 0;
        const Sigmas sigmas = OfEachPair(8, seed);
        const PairSigmas both = sigmas.View(), target{.Start = {}, .Target = both.Target};
        ExpectAsTheLongWay(example, FitOf(example, floats, both), &both);
        ExpectAsTheLongWay(example, FitOf(example, floats, target), &target);
    }
}

// Any other choice of what floats.
TEST(AdjustmentStatistics, HeldParameters) {
    for (const std::vector<int>& floats :
         {std::vector<int>{kTraX, kTraZ, kRotZ}, {kTraX, kTraY, kTraZ, kRotX, kScaleX, kScaleZ, kAngleXY}}) {
        const Example example = MakeExample(5, 0.2, 5, floats);
        ExpectAsTheLongWay(example, FitOf(example, floats), nullptr);
        const Sigmas sigmas = OfEachPair(5, 6);
        const PairSigmas both = sigmas.View();
        ExpectAsTheLongWay(example, FitOf(example, floats, both), &both);
    }
}

// A shift alone: redundancy 1 - 1/n everywhere, sigma s0 / sqrt(n), the same ellipsoid everywhere.
TEST(AdjustmentStatistics, ShiftInClosedForm) {
    const std::vector<int> floats = {kTraX, kTraY, kTraZ};
    const Example example = MakeExample(6, 0.5, 9, floats);
    const FitResult fit = FitOf(example, floats);
    const AdjustmentStatistics s = StatisticsOfFit(example, fit);
    EXPECT_EQ(s.Redundancy, 15);
    double squares = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double mean = 0;
        for (std::size_t i = 0; i < 6; ++i) mean += (example.Target[axis][i] - example.Start[axis][i]) / 6;
        for (std::size_t i = 0; i < 6; ++i)
            squares += std::pow(example.Start[axis][i] + mean - example.Target[axis][i], 2);
    }
    EXPECT_NEAR(s.s0, std::sqrt(squares / 15), 1e-12);
    for (int k = 1; k <= 3; ++k) EXPECT_NEAR(s.Sigma(k), s.s0 / std::sqrt(6), 1e-12);
    for (std::size_t i = 1; i <= 18; ++i) {
        EXPECT_NEAR(s.Redundancies[i], 5.0 / 6, 1e-12);
        EXPECT_NEAR(s.Standardized[i], fit.Residuals[i] / (s.s0 * std::sqrt(5.0 / 6)), 1e-9);
    }
    const Mat3 covariance = CovarianceOfTransformed(s, {1e5, -3, 7});
    const Ellipsoid ellipsoid = EllipsoidOf(covariance, s.EllipsoidFactor);
    for (int k = 1; k <= 3; ++k)
        EXPECT_NEAR(ellipsoid.SemiAxes(k), s.s0 / std::sqrt(6) * std::sqrt(3 * 3.2874),
                    1e-4 * s.s0);                   // F(3, 15)
    EXPECT_NEAR(s.CriticalPredicted, 4.073, 5e-4);  // Student's t of 15, 0.0005 above, tables
}

TEST(AdjustmentStatistics, EllipsoidTurnsWithItsMatrix) {
    // Semi-axes 3, 2, 1 turned by 30 degrees about z.
    const double c = std::sqrt(0.75), h = 0.5;
    Mat3 covariance;
    covariance(1, 1) = 9 * c * c + 4 * h * h;
    covariance(2, 2) = 9 * h * h + 4 * c * c;
    covariance(1, 2) = covariance(2, 1) = (9 - 4) * c * h;
    covariance(3, 3) = 1;
    const Ellipsoid ellipsoid = EllipsoidOf(covariance, 2);
    for (int k = 1; k <= 3; ++k) EXPECT_NEAR(ellipsoid.SemiAxes(k), 2 * (4 - k), 1e-12);
    EXPECT_NEAR(ellipsoid.Directions(1, 1), c, 1e-12);
    EXPECT_NEAR(ellipsoid.Directions(1, 2), h, 1e-12);
    EXPECT_NEAR(ellipsoid.Directions(2, 1), -h, 1e-12);
    EXPECT_NEAR(ellipsoid.Directions(2, 2), c, 1e-12);
    EXPECT_NEAR(ellipsoid.Directions(3, 3), 1, 1e-12);
}

TEST(AdjustmentStatistics, NoRedundancyHasNoTests) {
    Example example = MakeExample(2, 0.1, 3, kSix);
    example.Start[0].resize(2);
    const std::vector<int> floats = {kTraX, kTraY, kTraZ};
    example.InUse = {1, 1, 1, 0, 0, 0};
    const FitResult fit = FitOf(example, floats);
    const AdjustmentStatistics s = StatisticsOfFit(example, fit);
    EXPECT_FALSE(s.Singular);
    EXPECT_EQ(s.Redundancy, 0);
    EXPECT_TRUE(std::isnan(s.s0));
    EXPECT_TRUE(std::isnan(s.Sigma(1)));
    EXPECT_TRUE(std::isnan(s.CriticalValue));
    for (std::size_t i = 1; i <= 6; ++i) EXPECT_TRUE(std::isnan(s.Standardized[i])) << i;
    const Sigmas sigmas = OfEachPair(2, 4);
    const PairSigmas both = sigmas.View();
    const AdjustmentStatistics known = StatisticsOfFit(example, FitOf(example, floats, both), &both);
    EXPECT_TRUE(std::isnan(known.s0));
    EXPECT_NEAR(known.Sigma(1), std::hypot(sigmas.Start[0][0], sigmas.Target[0][0]), 1e-12);
    EXPECT_TRUE(std::isnan(known.Standardized[1]));
    EXPECT_FALSE(std::isnan(known.Standardized[4]));  // what has had no part is controlled all the same
}

TEST(AdjustmentStatistics, WhatPointsLeaveOpenIsNamed) {
    Example example = MakeExample(5, 0.01, 3, kSix);
    for (std::size_t axis = 1; axis < 3; ++axis)  // all on the x axis: a turn about it is open
        for (std::size_t i = 0; i < 5; ++i) {
            example.Start[axis][i] = 0;
            example.Target[0][i] = example.Start[0][i];
            example.Target[axis][i] = 0.001 * static_cast<double>(i);
        }
    const AdjustmentStatistics s = StatisticsOfFit(example, FitOf(example, kSix));
    EXPECT_TRUE(s.Singular);
    EXPECT_TRUE(s.Undetermined[kRotX]);
    for (const int k : {kTraX, kTraY, kTraZ, kRotY}) EXPECT_FALSE(s.Undetermined[At(k)]) << k;
}

// On a line but for the digits of a file: the design matrix has just its full rank, the normal matrix has
// not. A turn about a line that no axis is parallel to takes all six along.
TEST(AdjustmentStatistics, AllButALineIsNamedToo) {
    const double way[3] = {1, 0.5, 0.3}, noise[6] = {0.03, -0.05, 0.02, 0.04, -0.06, 0.01};
    Example example;
    example.InUse.assign(18, 1);
    for (int i = 0; i < 6; ++i)
        for (int axis = 0; axis < 3; ++axis) {
            const double there = 100 * (axis + 1) + 400 * i * way[axis];
            const double digits = i % 2 == 0 ? 4e-7 : -4e-7;
            example.Start[At(axis)].push_back(there + (axis == 2 ? digits : 0));
            example.Target[At(axis)].push_back(there + axis + 1 + noise[(i + 2 * axis) % 6]);
        }
    const AdjustmentStatistics s = StatisticsOfFit(example, FitOf(example, kSix));
    EXPECT_TRUE(s.Singular);
    for (const int k : kSix) EXPECT_TRUE(s.Undetermined[At(k)]) << k;
}

// Points that fit exactly leave what rounding is, which nothing can be tested by.
TEST(AdjustmentStatistics, RoundingIsNotTested) {
    const Example example = MakeExample(6, 0, 3, kSeven);
    const AdjustmentStatistics s = StatisticsOfFit(example, FitOf(example, kSeven));
    EXPECT_TRUE(s.OfRounding);
    for (std::size_t i = 1; i <= 18; ++i) EXPECT_TRUE(std::isnan(s.Standardized[i]));
}

}  // namespace
