// The sums of a weighted fit in groups of eight, against the same pairs one by one.
#include "fit/pair_sums.h"

#include <gtest/gtest.h>

#include <cmath>

#include "dense_algebra.h"
#include "fit/chain.h"

using namespace dense;

namespace {

struct Sigmas {
    Columns Start, Target;
    PairSigmas View(std::size_t from, std::size_t count) const {
        PairSigmas view;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            view.Start.Of[axis] = std::span<const double>(Start[axis]).subspan(from, count);
            view.Target.Of[axis] = std::span<const double>(Target[axis]).subspan(from, count);
        }
        return view;
    }
};

// Of very different sizes, and of the start or the target alone for some.
Sigmas Uneven(int count) {
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> size(-2, 1);
    Sigmas sigmas;
    for (auto* side : {&sigmas.Start, &sigmas.Target})
        for (auto& axis : *side)
            for (int i = 0; i < count; ++i) axis.push_back(std::pow(10, size(random)));
    for (auto& axis : sigmas.Start) axis[3] = 0;
    for (auto& axis : sigmas.Target) axis[4] = 0;
    return sigmas;
}

struct Gathered {
    GatheredPoints Points;
    Column InUse;
    Linearisation At;
};

// All pairs, at parameters that leave residuals of some tenths.
Gathered GatheredOf(const Example& example, const std::vector<double>& inUse) {
    Gathered all;
    all.InUse.assign(1, 0);
    all.InUse.insert(all.InUse.end(), inUse.begin(), inUse.end());
    GatherPoints(example.Pairs(), all.InUse, false, all.Points);
    SetWeights(all.InUse, all.Points);
    ChainRecord chain;
    all.At = Linearise(FitModel{}, FitOf(example, kSeven).Values, all.Points, chain);
    return all;
}

// The same points about the same centres, pair `i` alone.
WeightedSums SumOfOne(const Gathered& all, const Sigmas& sigmas, int i, bool corrected) {
    GatheredPoints one;
    one.Count = 1;
    one.Padded = kLanes;
    one.AllInUse = false;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        one.Start[axis].resize(kLanes);
        one.Target[axis].resize(kLanes);
        one.Start[axis][0] = all.Points.Start[axis][At(i)];
        one.Target[axis][0] = all.Points.Target[axis][At(i)];
    }
    Column use = {0, all.InUse[At(3 * i + 1)], all.InUse[At(3 * i + 2)], all.InUse[At(3 * i + 3)]};
    // A span of one is the same for all, which a single pair cannot tell apart.
    const PairSigmas view = sigmas.View(At(i), 1);
    if (corrected) return SumOverPairs(one, use, view, all.At);
    return {.Squares = SquaresOverPairs(one, use, view, all.At)};
}

void ExpectNear(double is, double expected, double size) {
    EXPECT_NEAR(is, expected, 1e-9 * size + 1e-9 * std::fabs(expected));
}

void ExpectTheSumOfAll(const std::vector<double>& inUse, int count) {
    const Example example = MakeExample(count, 0.1, 5, kSeven);
    const Sigmas sigmas = Uneven(count);
    const Gathered all = GatheredOf(example, inUse);
    const PairSigmas view = sigmas.View(0, At(count));
    for (const bool corrected : {true, false}) {
        WeightedSums sum, size;
        for (int i = 0; i < count; ++i) {
            const WeightedSums one = SumOfOne(all, sigmas, i, corrected);
            sum.Objective += one.Objective;
            for (std::size_t a = 1; a <= 3; ++a)
                for (std::size_t k = 0; k < 4; ++k) {
                    sum.Gradient[a][k] += one.Gradient[a][k];
                    size.Gradient[a][k] += std::fabs(one.Gradient[a][k]);
                }
            for (std::size_t k = 0; k < kAxisPairs; ++k)
                for (std::size_t j = 0; j < 10; ++j) {
                    sum.Squares[k][j] += one.Squares[k][j];
                    size.Squares[k][j] += std::fabs(one.Squares[k][j]);
                }
        }
        WeightedSums is;
        if (corrected) {
            is = SumOverPairs(all.Points, all.InUse, view, all.At);
        } else {
            is.Squares = SquaresOverPairs(all.Points, all.InUse, view, all.At);
        }
        ExpectNear(is.Objective, sum.Objective, 0);
        for (std::size_t a = 1; a <= 3; ++a)
            for (std::size_t k = 0; k < 4; ++k)
                ExpectNear(is.Gradient[a][k], sum.Gradient[a][k], size.Gradient[a][k]);
        for (std::size_t k = 0; k < kAxisPairs; ++k)
            for (std::size_t j = 0; j < 10; ++j)
                ExpectNear(is.Squares[k][j], sum.Squares[k][j], size.Squares[k][j]);
    }
}

}  // namespace

TEST(PairSums, AreThoseOfThePairsOneByOne) {
    for (const int count : {7, 8, 9, 29}) ExpectTheSumOfAll(std::vector<double>(At(3 * count), 1), count);
}

TEST(PairSums, WithCoordinatesOutOfUse) {
    constexpr int kCount = 43;
    std::vector<double> inUse(3 * kCount, 1);
    for (const int out : {4, 30, 31, 32, 100}) inUse[At(out)] = 0;
    ExpectTheSumOfAll(inUse, kCount);
}

// The first and the last coordinate of whole groups of pairs, each alone.
TEST(PairSums, WithACoordinateOutOfUseAtTheEdgeOfAGroup) {
    constexpr int kCount = 43;
    for (const int out : {0, 23, 24, 47, 48, 95, 96, 119, 120, 3 * kCount - 1}) {
        SCOPED_TRACE(out);
        std::vector<double> inUse(3 * kCount, 1);
        inUse[At(out)] = 0;
        ExpectTheSumOfAll(inUse, kCount);
    }
}

TEST(PairSums, HaveNoObjectiveWhereAPairHasNoWeight) {
    constexpr int kCount = 24;
    const Example example = MakeExample(kCount, 0.1, 5, kSeven);
    std::vector<double> inUse(3 * kCount, 1);
    Sigmas sigmas = Uneven(kCount);
    sigmas.Start[1][9] = sigmas.Target[1][9] = 0;
    sigmas.Start[0][9] = sigmas.Start[2][9] = 0;
    const PairSigmas view = sigmas.View(0, kCount);
    const Gathered all = GatheredOf(example, inUse);
    EXPECT_TRUE(std::isnan(SumOverPairs(all.Points, all.InUse, view, all.At).Objective));
    inUse[3 * 9 + 1] = 0;  // out of use it needs none
    const Gathered without = GatheredOf(example, inUse);
    EXPECT_TRUE(std::isfinite(SumOverPairs(without.Points, without.InUse, view, without.At).Objective));
}
