// Fits under a-priori standard deviations, against published figures, finite differences, and an adjustment
// of conditions with unknowns (Gauss and Helmert) that is written out here.
#include "fit/weighted_fit.h"

#include <gtest/gtest.h>

#include "dense_algebra.h"

using namespace dense;

namespace {

// One value an axis for all pairs, or values of each pair.
struct Sigmas {
    Columns Start, Target;
    PairSigmas View() const { return {{Spans(Start)}, {Spans(Target)}}; }
};

Sigmas Alike(std::array<double, 3> start, std::array<double, 3> target) {
    Sigmas sigmas;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        sigmas.Start[axis] = {start[axis]};
        sigmas.Target[axis] = {target[axis]};
    }
    return sigmas;
}

Sigmas OfEachPair(int count, unsigned seed) {
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> size(0.02, 0.3);
    Sigmas sigmas;
    for (auto* side : {&sigmas.Start, &sigmas.Target})
        for (auto& axis : *side)
            for (int i = 0; i < count; ++i) axis.push_back(size(random));
    return sigmas;
}

// C. Ghilani, P. Wolf, Adjustment Computations, three-dimensional conformal example.
Example Published() {
    return {.Start = {{{1094.883, 503.891, 2349.343, 1395.320},
                       {820.085, 1598.698, 207.658, 1348.853},
                       {109.821, 117.685, 151.387, 215.261}}},
            .Target = {{{10037.810, 10956.680, 8780.080, 10185.800},
                        {5262.090, 5128.170, 4840.290, 4700.210},
                        {772.040, 783.000, 782.620, 851.320}}},
            .InUse = std::vector<double>(12, 1)};
}

TEST(WeightedFit, PublishedFourPoints) {
    const Example example = Published();
    Sigmas sigmas;
    // The book weights the rows of the target by the standard errors that are printed beside the start.
    sigmas.Target = {
        {{0.007, 0.011, 0.006, 0.005}, {0.008, 0.008, 0.005, 0.008}, {0.005, 0.009, 0.007, 0.009}}};
    const PairSigmas view = sigmas.View();
    const FitResult fit = FitOf(example, kSeven, view);
    ASSERT_TRUE(fit.Converged());
    EXPECT_NEAR(fit.Values[kTraX], 10233.858, 5e-4);
    EXPECT_NEAR(fit.Values[kTraY], 6549.981, 5e-4);
    EXPECT_NEAR(fit.Values[kTraZ], 720.897, 5e-4);
    EXPECT_NEAR(fit.Values[kScaleXYZ], 0.94996, 5e-6);
    const AdjustmentStatistics s = StatisticsOfFit(example, fit, &view);
    EXPECT_EQ(s.Redundancy, 5);
    EXPECT_NEAR(s.s0, 8.663, 5e-4);
    // The book scales its standard errors with s0.
    EXPECT_NEAR(s.s0 * s.Sigma(1), 0.065, 5e-4);
    EXPECT_NEAR(s.s0 * s.Sigma(2), 0.071, 5e-4);
    EXPECT_NEAR(s.s0 * s.Sigma(3), 0.213, 5e-4);
    EXPECT_NEAR(s.s0 * s.Sigma(7), 0.00004, 5e-6);
    // 375 of vtpv with 5 of redundancy is far outside: published accuracies were too good.
    EXPECT_NEAR(s.Vtpv, 5 * 8.663 * 8.663, 0.05);
    EXPECT_GT(s.Vtpv, s.ChiSquareHigh);
    EXPECT_NEAR(s.ChiSquareHigh, 12.833, 5e-4);  // tables, 0.975 of 5
    EXPECT_NEAR(s.ChiSquareLow, 0.831, 5e-4);    // 0.025 of 5
}

TEST(WeightedFit, EqualSigmasOfTheTargetAreThePlainFit) {
    for (const auto& floats : {kSix, kSeven, kNine, kTwelve}) {
        const Example example = MakeExample(9, 0.1, 3, floats);
        const FitResult plain = FitOf(example, floats);
        const Sigmas sigmas = Alike({0, 0, 0}, {0.07, 0.07, 0.07});
        const FitResult weighted = FitOf(example, floats, sigmas.View());
        EXPECT_EQ(plain.Values, weighted.Values);
        EXPECT_EQ(plain.Residuals, weighted.Residuals);
        EXPECT_EQ(plain.Weights, weighted.Weights);
        EXPECT_EQ(plain.Q.Elements, weighted.Q.Elements);
    }
}

// Rigid motions turn a sphere of errors into itself, whichever side has them; so does a scale that is held.
TEST(WeightedFit, RoundErrorsOfARigidMotionAreThePlainFit) {
    for (const double scale : {1.0, 1.25}) {
        const Example example = MakeExample(8, 0.1, 4, kSix);
        FitProblem problem;
        problem.Pairs = example.Pairs();
        problem.InUse = example.InUse;
        problem.Choice = Floating(kSix);
        for (const int k : {kScaleX, kScaleY, kScaleZ, kScaleXYZ}) {
            problem.Choice.Held[At(k)] = true;
            problem.Choice.Value[At(k)] = scale;
        }
        const FitResult plain = Fit(problem);
        for (const auto& [start, target] : {std::pair{0.05, 0.02}, std::pair{0.05, 0.0}}) {
            const Sigmas sigmas = Alike({start, start, start}, {target, target, target});
            problem.Sigmas = sigmas.View();
            const FitResult weighted = Fit(problem);
            ASSERT_TRUE(weighted.Converged());
            EXPECT_EQ(weighted.Values, plain.Values);
            EXPECT_EQ(weighted.Residuals, plain.Residuals);
            EXPECT_EQ(weighted.Weights, plain.Weights);
            EXPECT_EQ(weighted.Q.Elements, plain.Q.Elements);
        }
    }
}

// The sum itself, from the definition, with the pair's matrix in use inverted densely.
double Objective(const Example& example, const PairSigmas& sigmas, const Parameters& at) {
    const Mat3 M = MatrixOf(at);
    double sum = 0;
    for (int i = 0; i < example.Count(); ++i) {
        const std::size_t k = At(i);
        const auto image = Image(at, example.Start[0][k], example.Start[1][k], example.Start[2][k]);
        std::vector<int> axes;
        for (int axis = 0; axis < 3; ++axis)
            if (example.InUse[At(3 * i + axis)] != 0) axes.push_back(axis);
        const int n = static_cast<int>(axes.size());
        Dense C(n, n), r(n, 1);
        for (int a = 0; a < n; ++a) {
            r(a, 0) = image[At(axes[At(a)])] - example.Target[At(axes[At(a)])][k];
            for (int b = 0; b < n; ++b)
                for (int j = 1; j <= 3; ++j)
                    C(a, b) += M(axes[At(a)] + 1, j) * M(axes[At(b)] + 1, j) * sigmas.Start.At(j, i) *
                               sigmas.Start.At(j, i);
            C(a, a) += std::pow(sigmas.Target.At(axes[At(a)] + 1, i), 2);
        }
        if (n > 0) sum += (Transposed(r) * Solved(C, r))(0, 0);
    }
    return sum;
}

// Central differences of the objective, each unknown by what its own sigma is: the slope that is left, as a
// share of a standard deviation's.
TEST(WeightedFit, GradientIsZero) {
    unsigned seed = 10;
    for (const auto& floats : {kSix, kSeven, kNine, kTwelve}) {
        // Noise as large as a hundredth of the cell: the weight moves with the parameters here.
        Example example = MakeExample(10, 12, ++seed, floats);
        example.InUse[4] = example.InUse[17] = example.InUse[18] = 0;
        const Sigmas sigmas = OfEachPair(example.Count(), seed);
        const PairSigmas view = sigmas.View();
        const FitResult fit = FitOf(example, floats, view);
        ASSERT_TRUE(fit.Converged());
        const AdjustmentStatistics s = StatisticsOfFit(example, fit, &view);
        const double least = Objective(example, view, fit.Values);
        EXPECT_NEAR(s.Vtpv / least, 1, 1e-10);
        for (int k = 1; k <= fit.Model.Unknowns; ++k) {
            const double step = 1e-2 * s.Sigma(k);
            Parameters more = fit.Values, less = fit.Values;
            Change(fit.Model, k, step, more);
            Change(fit.Model, k, -step, less);
            const double above = Objective(example, view, more), below = Objective(example, view, less);
            // Rounding of the objective alone is 1e-16 * least / step.
            EXPECT_NEAR((above - below) / (2 * step) * s.Sigma(k), 0, 1e-11 * least + 1e-6) << k;
            EXPECT_GT(above, least);
            EXPECT_GT(below, least);
        }
    }
}

// The Lagrange solution: parameters, corrections of all coordinates of both systems, and a multiplier for
// each condition T + M (x + e) - (X + E) = 0, by Newton steps on the linearised conditions, all in one dense
// system.
Parameters GaussHelmert(const Example& example, const FitModel& model, const PairSigmas& sigmas,
                        Parameters p) {
    const int n = example.Count(), u = model.Unknowns, c = 3 * n;
    std::vector<double> e(At(c)), E(At(c));
    for (int pass = 0; pass < 200; ++pass) {
        const Mat3 M = MatrixOf(p);
        Dense A(c, u), w(c, 1), C(c, c);
        for (int i = 0; i < n; ++i) {
            const std::size_t k = At(i);
            double x[3];
            for (int a = 0; a < 3; ++a) x[a] = example.Start[At(a)][k] + e[At(3 * i + a)];
            const Dense rows = RowsAt(model, p, x[0], x[1], x[2]);
            const auto image = Image(p, x[0], x[1], x[2]);
            for (int a = 0; a < 3; ++a) {
                const int row = 3 * i + a;
                for (int j = 0; j < u; ++j) A(row, j) = rows(a, j);
                w(row, 0) = image[At(a)] - (example.Target[At(a)][k] + E[At(row)]);
                // Corrections are counted from the measured values, and not from those of the last pass.
                for (int j = 0; j < 3; ++j) w(row, 0) -= M(a + 1, j + 1) * e[At(3 * i + j)];
                w(row, 0) += E[At(row)];
                for (int b = 0; b < 3; ++b)
                    for (int j = 1; j <= 3; ++j)
                        C(row, 3 * i + b) += M(a + 1, j) * M(b + 1, j) * std::pow(sigmas.Start.At(j, i), 2);
                C(row, row) += std::pow(sigmas.Target.At(a + 1, i), 2);
            }
        }
        // [C A; A' 0] [k; dx] = [-w; 0] with corrections v = P^-1 B' k.
        Dense whole(c + u, c + u), right(c + u, 1);
        for (int i = 0; i < c; ++i) {
            for (int j = 0; j < c; ++j) whole(i, j) = C(i, j);
            for (int j = 0; j < u; ++j) whole(i, c + j) = whole(c + j, i) = A(i, j);
            right(i, 0) = -w(i, 0);
        }
        const Dense solution = Solved(whole, right);
        double largest = 0;
        for (int i = 0; i < n; ++i)
            for (int a = 0; a < 3; ++a) {
                double sum = 0;
                for (int b = 0; b < 3; ++b) sum += M(b + 1, a + 1) * solution(3 * i + b, 0);
                e[At(3 * i + a)] = std::pow(sigmas.Start.At(a + 1, i), 2) * sum;
                E[At(3 * i + a)] = -std::pow(sigmas.Target.At(a + 1, i), 2) * solution(3 * i + a, 0);
            }
        for (int k = 1; k <= u; ++k) {
            Change(model, k, solution(c + k - 1, 0), p);
            largest = std::max(largest, std::fabs(solution(c + k - 1, 0)));
        }
        if (largest < 1e-12) break;
    }
    return p;
}

TEST(WeightedFit, ErrorsInBothSystemsAsGaussAndHelmert) {
    unsigned seed = 30;
    for (const auto& floats : {kSix, kSeven, kNine, kTwelve}) {
        const Example example = MakeExample(7, 6, ++seed, floats);
        const Sigmas sigmas = OfEachPair(example.Count(), seed);
        const PairSigmas view = sigmas.View();
        const FitResult fit = FitOf(example, floats, view);
        ASSERT_TRUE(fit.Converged());
        const FitResult plain = FitOf(example, floats);
        const Parameters truth = GaussHelmert(example, fit.Model, view, plain.Values);
        double apart = 0;
        for (int k = kTraX; k <= kAngleZtoXY; ++k) {
            EXPECT_NEAR(fit.Values[k], truth[k], KindOf(k) == ParameterKind::Length ? 1e-6 : 1e-9) << k;
            apart = std::max(apart, std::fabs(plain.Values[k] - truth[k]));
        }
        EXPECT_GT(apart, 1e-2);  // it is another fit than the plain one
    }
}

// Errors of the start alone: with 12 parameters this is the fit of the inverse with errors of its target.
TEST(WeightedFit, ErrorsOfTheStartAloneAreTheInverseFit) {
    const Example example = MakeExample(9, 5, 77, kTwelve);
    const Sigmas sigmas = OfEachPair(example.Count(), 5);
    const PairSigmas forward{.Start = {Spans(sigmas.Start)}, .Target = {}};
    const FitResult fit = FitOf(example, kTwelve, forward);
    ASSERT_TRUE(fit.Converged());
    Example back = example;
    std::swap(back.Start, back.Target);
    const PairSigmas backward{.Start = {}, .Target = {Spans(sigmas.Start)}};
    const FitResult inverse = FitOf(back, kTwelve, backward);
    ASSERT_TRUE(inverse.Converged());
    // There and back again.
    for (const auto& p : {std::array{0.0, 0.0, 0.0}, std::array{500.0, -300.0, 200.0}}) {
        const auto q = Image(fit.Values, p[0], p[1], p[2]);
        const auto r = Image(inverse.Values, q[0], q[1], q[2]);
        for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_NEAR(r[axis], p[axis], 1e-6);
    }
}

// One sigma for all pairs, and the same said of each: the first is summed up by moments, the second pair by
// pair.
TEST(WeightedFit, OneForAllIsTheSameForEach) {
    unsigned seed = 60;
    for (const auto& floats : {kSix, kSeven, kNine, kTwelve}) {
        Example example = MakeExample(21, 12, ++seed, floats);
        for (const std::size_t i : {4U, 17U, 18U, 19U, 20U, 33U, 35U}) example.InUse[i] = 0;
        const Sigmas alike = Alike({0.2, 0.05, 0.1}, {0.05, 0.1, 0.15});
        Sigmas each = alike;
        for (auto* side : {&each.Start, &each.Target})
            for (auto& axis : *side) axis.assign(21, axis[0]);
        const FitResult one = FitOf(example, floats, alike.View());
        const FitResult other = FitOf(example, floats, each.View());
        ASSERT_TRUE(one.Converged() && other.Converged());
        for (int k = kTraX; k <= kAngleZtoXY; ++k)
            EXPECT_NEAR(one.Values[k], other.Values[k], KindOf(k) == ParameterKind::Length ? 1e-8 : 1e-11)
                << k;
        for (std::size_t i = 1; i < one.Residuals.size(); ++i) {
            EXPECT_NEAR(one.Residuals[i], other.Residuals[i], 1e-8);
            EXPECT_NEAR(one.Weights[i], other.Weights[i], 1e-11);
        }
        const std::size_t last = one.Q.Elements.size() - 1;
        EXPECT_NEAR(one.Q.Elements[last] / other.Q.Elements[last], 1, 1e-9);
    }
}

TEST(WeightedFit, WeightsHaveAMeanOfOne) {
    Example example = MakeExample(8, 0.2, 8, kSeven);
    example.InUse[5] = 0;
    const Sigmas sigmas = OfEachPair(example.Count(), 9);
    const FitResult fit = FitOf(example, kSeven, sigmas.View());
    double sum = 0;
    for (const double weight : fit.Weights) sum += weight;
    EXPECT_NEAR(sum, 23, 1e-10);
    EXPECT_EQ(fit.Weights[6], 0);
}

TEST(WeightedFit, PairsWithoutWeightAreNamed) {
    Example example = MakeExample(6, 0.1, 12, kSeven);
    Sigmas sigmas = OfEachPair(example.Count(), 13);
    sigmas.Start[1][3] = sigmas.Target[1][3] = 0;
    // A turned frame brings errors of the other axes in, so that the start alone would do.
    EXPECT_EQ(FitOf(example, kSeven, sigmas.View()).PairWithoutWeight, 0);
    for (auto& axis : sigmas.Start) axis[3] = 0;
    const FitResult refused = FitOf(example, kSeven, sigmas.View());
    EXPECT_EQ(refused.PairWithoutWeight, 4);
    EXPECT_EQ(refused.Values, FitOf(example, kSeven).Values);
    example.InUse[10] = 0;  // what is out of use needs no weight
    EXPECT_EQ(FitOf(example, kSeven, sigmas.View()).PairWithoutWeight, 0);
    // Errors along one axis alone are no positive definite matrix of three.
    EXPECT_EQ(FitOf(example, kSeven, Alike({0.1, 0, 0}, {0, 0, 0}).View()).PairWithoutWeight, 1);
}

// Of a shift the least sum is at the weighted median of each axis, and the least largest is where two
// residuals are as many sigmas apart: both are found here by trying all.
TEST(WeightedFit, OtherNormsDivideByTheSigmas) {
    const std::vector<int> floats = {kTraX, kTraY, kTraZ};
    const Example example = MakeExample(9, 5, 90, floats);
    const Sigmas sigmas = OfEachPair(example.Count(), 91);
    for (const FitNorm norm : {FitNorm::LeastSum, FitNorm::LeastLargest}) {
        const bool sum = norm == FitNorm::LeastSum;
        const auto objective = [&](const Parameters& at) {
            double total = 0, largest = 0;
            for (std::size_t i = 0; i < 9; ++i)
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    const double v =
                        example.Start[axis][i] + at[kTraX + static_cast<int>(axis)] - example.Target[axis][i];
                    const double share =
                        std::fabs(v) / std::hypot(sigmas.Start[axis][i], sigmas.Target[axis][i]);
                    total += share;
                    largest = std::max(largest, share);
                }
            return sum ? total : largest;
        };
        Parameters best;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            double least = 1e300;
            for (std::size_t i = 0; i < 9; ++i)
                for (std::size_t j = 0; j < 9; ++j) {
                    const auto d = [&](std::size_t k) {
                        return example.Target[axis][k] - example.Start[axis][k];
                    };
                    const auto s = [&](std::size_t k) {
                        return std::hypot(sigmas.Start[axis][k], sigmas.Target[axis][k]);
                    };
                    const double t = sum ? d(i) : (d(i) * s(j) + d(j) * s(i)) / (s(i) + s(j));
                    double total = 0, largest = 0;
                    for (std::size_t k = 0; k < 9; ++k) {
                        total += std::fabs(t - d(k)) / s(k);
                        largest = std::max(largest, std::fabs(t - d(k)) / s(k));
                    }
                    if ((sum ? total : largest) >= least) continue;
                    least = sum ? total : largest;
                    best[kTraX + static_cast<int>(axis)] = t;
                }
        }
        FitProblem problem;
        problem.Pairs = example.Pairs();
        problem.InUse = example.InUse;
        problem.Choice = Floating(floats);
        problem.Norm = norm;
        const double plain = objective(Fit(problem).Values);
        problem.Sigmas = sigmas.View();
        const FitResult fit = Fit(problem);
        ASSERT_TRUE(fit.Converged());
        const double optimum = objective(best), found = objective(fit.Values);
        EXPECT_GE(found, optimum * (1 - 1e-12));
        EXPECT_LE(found, optimum * (sum ? 1.0001 : 1.05));
        EXPECT_GT(plain, found) << optimum;
    }
}

// Far from the origin and with angles near their lock as well.
TEST(WeightedFit, FarFromTheOrigin) {
    Example example = MakeExample(12, 0.3, 21, kSeven);
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t i = 0; i < example.Start[axis].size(); ++i) {
            example.Start[axis][i] += 4e6;
            example.Target[axis][i] -= 3e6;
        }
    const Sigmas sigmas = OfEachPair(example.Count(), 22);
    const PairSigmas view = sigmas.View();
    const FitResult fit = FitOf(example, kSeven, view);
    ASSERT_TRUE(fit.Converged());
    Example near = example;
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t i = 0; i < near.Start[axis].size(); ++i) {
            near.Start[axis][i] -= 4e6;
            near.Target[axis][i] += 3e6;
        }
    const FitResult same = FitOf(near, kSeven, view);
    for (int k = kRotX; k <= kScaleXYZ; ++k) EXPECT_NEAR(fit.Values[k], same.Values[k], 1e-11) << k;
    for (std::size_t i = 1; i < same.Residuals.size(); ++i)
        EXPECT_NEAR(fit.Residuals[i], same.Residuals[i], 1e-7);
}

// Coordinates of a national grid: what rounds them is more than the limit of a correction.
TEST(WeightedFit, CoordinatesOfAGridConverge) {
    for (const double far : {1e7, 3e7, 1e8, 1e9})
        for (unsigned seed = 0; seed < 5; ++seed)
            for (const auto& floats : {kSix, kSeven, kNine, kTwelve})
                for (const bool both : {false, true}) {
                    // Nine coefficients of a matrix have not the digits for start and target beyond that.
                    if (both && floats.size() == kTwelve.size() && far > 5e7) continue;
                    for (const Sigmas& sigmas :
                         {Alike({0.05, 0.05, 0.05}, {0, 0, 0}), Alike({0.05, 0.05, 0.1}, {0.02, 0.02, 0.02}),
                          OfEachPair(10, seed)}) {
                        SCOPED_TRACE(std::to_string(far) + ", " + std::to_string(seed) + ", " +
                                     std::to_string(floats.size()) + (both ? ", both" : ", target"));
                        const Example near = MakeExample(10, 0.05, seed, floats);
                        Example grid = near;
                        for (std::size_t axis = 0; axis < 3; ++axis)
                            for (std::size_t i = 0; i < near.Start[axis].size(); ++i) {
                                if (both) grid.Start[axis][i] += far;
                                grid.Target[axis][i] += far;
                            }
                        const PairSigmas view = sigmas.View();
                        const FitResult fit = FitOf(grid, floats, view);
                        EXPECT_TRUE(fit.Converged());
                        const FitResult same = FitOf(near, floats, view);
                        const double rounding = 1e-6 + 256 * std::numeric_limits<double>::epsilon() * far;
                        for (std::size_t i = 1; i < same.Residuals.size(); ++i)
                            EXPECT_NEAR(fit.Residuals[i], same.Residuals[i], rounding);
                    }
                }
}

}  // namespace
