// The theory of Gauss and Markov against simulated fits: what the statistics promise of sigmas, ellipsoids
// and tests has to come true in thousands of measurements of the same points. Random numbers begin at fixed
// seeds; limits are four standard deviations of what is counted. CORVINADE_SIMULATED_FITS in the environment
// asks for more fits than these.
#include <gtest/gtest.h>

#include <cstdlib>

#include "dense_algebra.h"
#include "fit/adjustment_statistics.h"

using namespace dense;

namespace {

int Times() {
    const char* const asked = std::getenv("CORVINADE_SIMULATED_FITS");
    return asked != nullptr ? std::max(1000, std::atoi(asked)) : 10000;
}

// How often something came true.
struct Counted {
    int Hits = 0, All = 0;
    void Take(bool hit) {
        Hits += hit ? 1 : 0;
        ++All;
    }
    void Expect(double share, const char* what) const {
        EXPECT_NEAR(Hits / double(All), share, 4 * std::sqrt(share * (1 - share) / All)) << what;
    }
};

struct Cell {
    Columns Start, Target;  // without errors
    std::vector<int> Floats;
    Parameters Truth;
    Columns StartSigma, TargetSigma;
    PairSigmas View() const { return {{Spans(StartSigma)}, {Spans(TargetSigma)}}; }
};

Cell MakeCell(const std::vector<int>& floats, std::array<double, 3> start, std::array<double, 3> target) {
    Cell cell;
    cell.Floats = floats;
    const Example example = MakeExample(6, 0, 42, floats);
    cell.Start = example.Start;
    cell.Target = example.Target;
    for (const int k : floats) cell.Truth[k] = kTruth[k];
    for (std::size_t axis = 0; axis < 3; ++axis) {
        cell.StartSigma[axis] = {start[axis]};
        cell.TargetSigma[axis] = {target[axis]};
    }
    return cell;
}

Example Measured(const Cell& cell, std::mt19937_64& random) {
    std::normal_distribution<double> normal;
    Example example{.Start = cell.Start, .Target = cell.Target, .InUse = std::vector<double>(18, 1)};
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t i = 0; i < 6; ++i) {
            example.Start[axis][i] += cell.StartSigma[axis][0] * normal(random);
            example.Target[axis][i] += cell.TargetSigma[axis][0] * normal(random);
        }
    return example;
}

bool IsInside(const Ellipsoid& ellipsoid, const std::array<double, 3>& centre,
              const std::array<double, 3>& p) {
    double sum = 0;
    for (int k = 1; k <= 3; ++k) {
        double along = 0;
        for (int i = 1; i <= 3; ++i) along += ellipsoid.Directions(k, i) * (p[At(i - 1)] - centre[At(i - 1)]);
        sum += std::pow(along / ellipsoid.SemiAxes(k), 2);
    }
    return sum <= 1;
}

constexpr std::size_t kTested = 5;  // y of pair 2
const Vec3 kFarPoint = {1500, -800, 400};

// As it was measured, and once more with a bias as large as the MDB on one target coordinate. Sigmas known
// beforehand, or not.
void Simulate(const Cell& cell, bool known) {
    const PairSigmas sigmas = cell.View();
    const std::optional<PairSigmas> given = known ? std::optional(sigmas) : std::nullopt;
    const PairSigmas* const view = known ? &sigmas : nullptr;
    const TestLevels levels{.AlphaSingle = 0.05, .AlphaGlobal = 0.05, .Power = 0.8, .Confidence = 0.95};
    std::mt19937_64 random(7);
    Counted alarms, found, covered, passed;
    double squares = 0, factors = 0, ofSigma = 0;
    const int times = Times();
    const auto image = Image(cell.Truth, kFarPoint(1), kFarPoint(2), kFarPoint(3));
    for (int k = 0; k < times; ++k) {
        Example example = Measured(cell, random);
        const FitResult fit = FitOf(example, cell.Floats, given);
        ASSERT_TRUE(fit.Converged());
        const AdjustmentStatistics t = StatisticsOfFit(example, fit, view, levels);
        // Where s0 stands for the sigma the bias is that of the true one, the same in all fits.
        const double bias = t.Mdb(kTested) * (known ? 1 : cell.TargetSigma[0][0] / t.s0);
        alarms.Take(t.IsOutlier(kTested, true));
        if (known) passed.Take(t.Vtpv >= t.ChiSquareLow && t.Vtpv <= t.ChiSquareHigh);
        factors += known ? t.Vtpv / t.Redundancy : t.s0 * t.s0 / std::pow(cell.TargetSigma[0][0], 2);
        squares += std::pow((fit.Values[kTraY] - cell.Truth[kTraY]), 2);
        ofSigma += std::pow(t.Sigma(2), 2);
        covered.Take(IsInside(EllipsoidOf(CovarianceOfTransformed(t, kFarPoint), t.EllipsoidFactor),
                              Image(fit.Values, kFarPoint(1), kFarPoint(2), kFarPoint(3)), image));
        example.Target[1][1] += bias;
        const FitResult biased = FitOf(example, cell.Floats, given);
        found.Take(StatisticsOfFit(example, biased, view, levels).IsOutlier(kTested, true));
    }
    const double redundancy = 18.0 - static_cast<double>(cell.Floats.size());
    EXPECT_NEAR(factors / times, 1, 4 * std::sqrt(2 / redundancy / times));
    EXPECT_NEAR(squares / ofSigma, 1, 4 * std::sqrt(2.0 / times) + 4 * std::sqrt(2 / redundancy / times));
    alarms.Expect(levels.AlphaSingle, "false alarms");
    found.Expect(levels.Power, "power at the MDB");
    covered.Expect(levels.Confidence, "points in their ellipsoid");
    if (known) passed.Expect(1 - levels.AlphaGlobal, "global test");
}

TEST(SimulatedFits, SigmasOfTheTarget) {
    Simulate(MakeCell(kSix, {0, 0, 0}, {0.05, 0.1, 0.2}), true);
}

TEST(SimulatedFits, SigmasOfBothSystems) {
    Simulate(MakeCell(kSeven, {0.2, 0.05, 0.1}, {0.05, 0.1, 0.15}), true);
}

TEST(SimulatedFits, SigmasOfBothSystemsAndTwelveParameters) {
    Simulate(MakeCell(kTwelve, {0.2, 0.05, 0.1}, {0.05, 0.1, 0.15}), true);
}

TEST(SimulatedFits, WithoutSigmas) {
    Simulate(MakeCell(kSeven, {0, 0, 0}, {0.1, 0.1, 0.1}), false);
}

}  // namespace
