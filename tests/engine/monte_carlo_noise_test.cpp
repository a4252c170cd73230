// The noise: its distribution, its sequence, and where that begins.
#include <cmath>
#include <random>
#include <vector>

#include "core/fresh_start.h"
#include "engine/noise.h"
#include "support/fixture.h"

using namespace corvinade;

using GaussianNoise = Program;

namespace {

// The polar method written down once more, with the C library's logarithm.
struct ByHand {
    std::mt19937 Generator;
    double Uniform() { return static_cast<double>(Generator()) / 4294967296.0; }
    double Next() {
        for (;;) {
            const double u = 2 * Uniform() - 1;
            const double v = 2 * Uniform() - 1;
            const double s = u * u + v * v;
            if (s > 0 && s < 1) return u * std::sqrt(-2 * std::log(s) / s);
        }
    }
};

}  // namespace

TEST_F(GaussianNoise, GivesTheNumbersOfThePolarMethodOneByOne) {
    ByHand hand;
    for (int i = 0; i < 100000; ++i) {
        const double expected = hand.Next();
        ASSERT_NEAR(GaussNoise(Noise, 0, 1), expected, 1e-15 * std::fabs(expected)) << i;
    }
}

TEST_F(GaussianNoise, ManyAtOnceAreTheNumbersOfAsManyCalls) {
    std::vector<double> single(3000);
    for (double& number : single) number = GaussNoise(Noise, 0, 1);
    SeedNoise(kUsualSeed);
    std::vector<double> filled(single.size());
    std::size_t first = 0;
    for (const std::size_t count : {1u, 0u, 3u, 60u, 600u, 1000u, 1336u}) {
        FillWithNoise(Noise, {filled.data() + first, count});
        first += count;
    }
    ASSERT_EQ(first, filled.size());
    EXPECT_EQ(filled, single);
    const double behind = GaussNoise(Noise, 0, 1);
    SeedNoise(kUsualSeed);
    for (std::size_t i = 0; i < single.size(); ++i) GaussNoise(Noise, 0, 1);
    EXPECT_EQ(GaussNoise(Noise, 0, 1), behind) << "and they leave the sequence at the same place";
}

TEST_F(GaussianNoise, HasTheMomentsOfTheNormalDistribution) {
    constexpr int kNumbers = 1000000;
    double sums[5] = {};
    int beyondOne = 0, beyondThree = 0;
    for (int i = 0; i < kNumbers; ++i) {
        const double x = GaussNoise(Noise, 0, 1);
        double power = 1;
        for (double& sum : sums) sum += power, power *= x;
        beyondOne += std::fabs(x) > 1;
        beyondThree += std::fabs(x) > 3;
    }
    // Five standard errors of each.
    EXPECT_NEAR(sums[1] / kNumbers, 0, 5 * std::sqrt(1.0 / kNumbers));
    EXPECT_NEAR(sums[2] / kNumbers, 1, 5 * std::sqrt(2.0 / kNumbers));
    EXPECT_NEAR(sums[3] / kNumbers, 0, 5 * std::sqrt(15.0 / kNumbers));
    EXPECT_NEAR(sums[4] / kNumbers, 3, 5 * std::sqrt(96.0 / kNumbers));
    EXPECT_NEAR(beyondOne / 1e6, std::erfc(1 / std::sqrt(2.0)), 5 * std::sqrt(0.3173 * 0.6827 / kNumbers));
    EXPECT_NEAR(beyondThree / 1e6, std::erfc(3 / std::sqrt(2.0)), 5 * std::sqrt(0.0027 / kNumbers));
}

TEST_F(GaussianNoise, IsStretchedBySigmaAndMovedByTheMean) {
    std::vector<double> plain(100);
    FillWithNoise(Noise, plain);
    SeedNoise(kUsualSeed);
    for (const double number : plain) EXPECT_EQ(GaussNoise(Noise, 5, 0.25), number * 0.25 + 5);
    EXPECT_EQ(GaussNoise(Noise, -3, 0), -3);
}

TEST_F(GaussianNoise, BeginsAnewWithTheProgram) {
    std::vector<double> first(500), second(500), other(500);
    FillWithNoise(Noise, first);
    FreshStart();
    FillWithNoise(Noise, second);
    EXPECT_EQ(second, first);
    FillWithNoise(Noise, other);
    EXPECT_NE(other, first) << "without a new start the sequence goes on";
}

TEST_F(GaussianNoise, ASeedChoosesTheSequence) {
    std::vector<double> first(500), again(500), other(500), usual(500);
    FillWithNoise(Noise, usual);
    SeedNoise(7);
    FillWithNoise(Noise, first);
    SeedNoise(8);
    FillWithNoise(Noise, other);
    SeedNoise(7);
    FillWithNoise(Noise, again);
    EXPECT_EQ(again, first);
    EXPECT_NE(other, first);
    EXPECT_NE(usual, first);
}
