// Whether points tell right from left, by sets whose answer is known.
#include "fit/handedness.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace corvinade::fit;

namespace {

struct Sets {
    std::array<std::vector<double>, 3> Start, Target;
};

// Points within so much of each direction, with noise on both sides, evenly distributed; the third direction
// of the target turned round.
Sets Mirrored(int points, const std::array<double, 3>& size, double noise, unsigned seed) {
    std::mt19937 numbers(seed);
    std::uniform_real_distribution<double> any(-1, 1);
    Sets sets;
    for (int i = 0; i < points; ++i)
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double x = size[axis] * any(numbers);
            sets.Start[axis].push_back(x + noise * any(numbers));
            sets.Target[axis].push_back((axis == 2 ? -x : x) + noise * any(numbers));
        }
    return sets;
}

Handedness Told(const Sets& sets, FitNorm norm = FitNorm::LeastSquares) {
    const PairColumns pairs{.Start = {sets.Start[0], sets.Start[1], sets.Start[2]},
                            .Target = {sets.Target[0], sets.Target[1], sets.Target[2]}};
    GatheredPoints points;
    GatherPoints(pairs, Column(3 * sets.Start[0].size() + 1, 1), false, points);
    Mat3 M;
    M(1, 1) = M(2, 2) = 1;
    M(3, 3) = -1;
    Vec3 shift;
    for (int i = 1; i <= 3; ++i) shift(i) = M(i, i) * points.StartCentre(i) - points.TargetCentre(i);
    return HandednessOf(points, M, shift, norm, 7, 1);
}

}  // namespace

TEST(Handedness, ABodyTells) {
    for (unsigned seed = 1; seed <= 20; ++seed)
        EXPECT_TRUE(Told(Mirrored(8, {500, 300, 200}, 0.1, seed)).Sure);
}

TEST(Handedness, FourPointsWithoutNoiseTell) {
    EXPECT_TRUE(Told(Mirrored(4, {500, 300, 200}, 0, 3)).Sure);
}

TEST(Handedness, NoiseOfAPlateOrALineTellsNothingHoweverManyPointsThereAre) {
    for (const std::array<double, 3>& size : {std::array<double, 3>{500, 300, 0}, {500, 0, 0}})
        for (const int points : {4, 5, 6, 8, 20, 100, 1000})
            for (unsigned seed = 1; seed <= 100; ++seed)
                EXPECT_FALSE(Told(Mirrored(points, size, 0.1, seed)).Sure) << points << ", seed " << seed;
}

TEST(Handedness, AReliefOfTwiceTheNoiseTellsByManyPoints) {
    for (unsigned seed = 1; seed <= 20; ++seed) {
        EXPECT_FALSE(Told(Mirrored(5, {500, 300, 0.2}, 0.1, seed)).Sure);
        EXPECT_TRUE(Told(Mirrored(200, {500, 300, 0.2}, 0.1, seed)).Sure);
    }
}

TEST(Handedness, WithoutAnyReliefNothingIsTold) {
    const Handedness told = Told(Mirrored(6, {500, 300, 0}, 0, 1));
    EXPECT_FALSE(told.Sure);
    EXPECT_NEAR(told.Root, 0, 1e-10);
}

TEST(Handedness, TheReliefIsThatOfTheStartPointsOffTheirPlane) {
    // 1 mm above and below the plane z = 0 in turns: its best plane, by symmetry.
    Sets sets;
    for (int i = 0; i < 8; ++i) {
        const double a = i * std::acos(-1.0) / 4;
        const std::array<double, 3> p = {100 * std::cos(a), 100 * std::sin(a), i % 2 == 0 ? 1.0 : -1.0};
        for (std::size_t axis = 0; axis < 3; ++axis) {
            sets.Start[axis].push_back(p[axis]);
            sets.Target[axis].push_back(p[axis]);
        }
    }
    const Handedness told = Told(sets);
    EXPECT_NEAR(told.Root, std::sqrt(8.0), 1e-9);
    EXPECT_NEAR(told.Sum, 8, 1e-9);
    EXPECT_NEAR(told.Largest, 1, 1e-9);
}

TEST(Handedness, OfTheLeastSumABlunderIsLeftOut) {
    Sets sets = Mirrored(20, {500, 300, 200}, 0.1, 5);
    sets.Target[0][3] += 1e6;
    EXPECT_FALSE(Told(sets).Sure);
    EXPECT_TRUE(Told(sets, FitNorm::LeastSum).Sure);
}
