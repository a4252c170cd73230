// Quantiles against published tables and closed forms.
#include "fit/distributions.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

using namespace corvinade::fit;

namespace {

// Standard tables of statistics, as many digits as these print.
TEST(Distributions, NormalAsInTables) {
    EXPECT_NEAR(NormalQuantile(0.05), 1.6448536269514722, 1e-13);
    EXPECT_NEAR(NormalQuantile(0.025), 1.959963984540054, 1e-13);
    EXPECT_NEAR(NormalQuantile(0.005), 2.5758293035489004, 1e-13);
    EXPECT_NEAR(NormalQuantile(0.0005), 3.2905267314919255, 1e-13);
    EXPECT_NEAR(NormalQuantile(0.975), -1.959963984540054, 1e-13);
    EXPECT_NEAR(NormalQuantile(0.5), 0, 1e-15);
}

TEST(Distributions, StudentAsInTables) {
    EXPECT_NEAR(StudentQuantile(0.025, 1), std::tan(std::acos(-1.0) * 0.475), 1e-11);  // Cauchy
    EXPECT_NEAR(StudentQuantile(0.025, 1), 12.706, 5e-4);
    EXPECT_NEAR(StudentQuantile(0.025, 5), 2.570582, 5e-7);
    EXPECT_NEAR(StudentQuantile(0.05, 10), 1.8124611228107335, 1e-12);
    EXPECT_NEAR(StudentQuantile(0.0005, 4), 8.610, 5e-4);
    EXPECT_NEAR(StudentQuantile(0.005, 30), 2.750, 5e-4);
    EXPECT_NEAR(StudentQuantile(0.025, 120), 1.980, 5e-4);
    // Two degrees of freedom have a closed form: t = (2 p - 1) / sqrt(2 p (1 - p)) of the lower share p.
    for (const double above : {0.4, 0.1, 0.01, 1e-6})
        EXPECT_NEAR(StudentQuantile(above, 2) / ((1 - 2 * above) / std::sqrt(2 * above * (1 - above))), 1,
                    1e-12);
}

TEST(Distributions, ChiSquareAsInTables) {
    EXPECT_NEAR(ChiSquareQuantile(0.05, 3), 7.814727903251179, 1e-12);
    EXPECT_NEAR(ChiSquareQuantile(0.05, 1), 3.841458820694124, 1e-12);
    EXPECT_NEAR(ChiSquareQuantile(0.025, 5), 12.832501994030027, 1e-11);
    EXPECT_NEAR(ChiSquareLowQuantile(0.025, 5), 0.8312116134866625, 1e-12);
    EXPECT_NEAR(ChiSquareQuantile(0.975, 5), 0.8312116134866625, 1e-12);
    EXPECT_NEAR(ChiSquareQuantile(0.01, 10), 23.209, 5e-4);
    EXPECT_NEAR(ChiSquareQuantile(0.05, 100), 124.342, 5e-4);
    // Two degrees of freedom: exp(-x/2).
    for (const double above : {0.9, 0.05, 1e-9})
        EXPECT_NEAR(ChiSquareQuantile(above, 2) / (-2 * std::log(above)), 1, 1e-13);
}

TEST(Distributions, FisherAsInTables) {
    EXPECT_NEAR(FisherQuantile(0.05, 3, 5), 5.4095, 5e-5);
    EXPECT_NEAR(FisherQuantile(0.05, 3, 10), 3.7083, 5e-5);
    EXPECT_NEAR(FisherQuantile(0.05, 3, 120), 2.6802, 5e-5);
    EXPECT_NEAR(FisherQuantile(0.01, 4, 12), 5.412, 5e-4);
    // One over n is the square of Student's.
    const double t = StudentQuantile(0.025, 7);
    EXPECT_NEAR(FisherQuantile(0.05, 1, 7), t * t, 1e-11);
    // Two over n in closed form.
    EXPECT_NEAR(FisherQuantile(0.05, 2, 8), (std::pow(0.05, -2.0 / 8) - 1) * 8 / 2, 1e-12);
}

// Many degrees of freedom are where logarithms of gamma functions lose their digits. Wilson and Hilferty, and
// the expansions of Student's and Fisher's quantiles about their limits, are known to more digits than asked.
TEST(Distributions, ManyDegreesOfFreedom) {
    const double z = NormalQuantile(0.025);
    for (const double n : {1e4, 3e5, 3e6}) {
        const double g1 = (z * z * z + z) / 4,
                     g2 = (5 * std::pow(z, 5) + 16 * z * z * z + 3 * z) / 96;  // A&S 26.7.5
        EXPECT_NEAR(StudentQuantile(0.025, n), z + g1 / n + g2 / (n * n), 1e-11);
        // Cornish and Fisher's expansion to the term of 1/n.
        const double h = n + std::sqrt(2 * n) * z + 2.0 / 3 * (z * z - 1) +
                         (z * z * z - 7 * z) / (9 * std::sqrt(2 * n)) -
                         (6 * std::pow(z, 4) + 14 * z * z - 32) / (405 * n);
        EXPECT_NEAR(ChiSquareQuantile(0.025, n) / h, 1, 1e-10);
        EXPECT_NEAR(FisherQuantile(0.05, 3, n) * 3, ChiSquareQuantile(0.05, 3), 100 / n);
    }
}

TEST(Distributions, PopeTauAsItIsDefined) {
    // Two of redundancy: Student with 1, t = tan(pi (1/2 - above)).
    const double t = std::tan(std::acos(-1.0) * (0.5 - 0.025));
    EXPECT_NEAR(TauQuantile(0.025, 2), std::sqrt(2) * t / std::sqrt(1 + t * t), 1e-12);
    EXPECT_TRUE(std::isnan(TauQuantile(0.025, 1)));
    EXPECT_NEAR(TauQuantile(0.0005, 1e6), NormalQuantile(0.0005), 1e-4);
}

TEST(Distributions, NoNumbersOutsideTheirRange) {
    for (const double p : {0.0, 1.0, -0.1, 1.5, std::nan("")}) {
        EXPECT_TRUE(std::isnan(NormalQuantile(p)));
        EXPECT_TRUE(std::isnan(StudentQuantile(p, 3)));
        EXPECT_TRUE(std::isnan(ChiSquareQuantile(p, 3)));
        EXPECT_TRUE(std::isnan(FisherQuantile(p, 3, 3)));
        EXPECT_TRUE(std::isnan(NormalShift(2, p)));
    }
    EXPECT_TRUE(std::isnan(StudentQuantile(0.05, 0)));
}

// Baarda's table: alpha 0.001 and power 0.8 belong to 4.13; alpha 0.05 and power 0.8 to 2.80.
TEST(Distributions, NormalShiftAsInBaarda) {
    EXPECT_NEAR(NormalShift(NormalQuantile(0.0005), 0.80), 4.13, 0.005);
    EXPECT_NEAR(NormalShift(NormalQuantile(0.025), 0.80), 2.80, 0.005);
    EXPECT_NEAR(NormalShift(NormalQuantile(0.025), 0.90), 3.24, 0.005);
    EXPECT_EQ(NormalShift(NormalQuantile(0.025), 0.04), 0);
}

// The non-central t by simulation, and at the seam of the two ways of computing it.
TEST(Distributions, StudentShiftHasItsPower) {
    std::mt19937_64 random(20);
    std::normal_distribution<double> normal;
    for (const int freedom : {1, 3, 9, 10, 40}) {
        const double critical = StudentQuantile(0.025, freedom);
        const double shift = StudentShift(critical, freedom, 0.8);
        constexpr int kTimes = 40000;
        int found = 0;
        for (int k = 0; k < kTimes; ++k) {
            double squares = 0;
            for (int i = 0; i < freedom; ++i) {
                const double x = normal(random);
                squares += x * x;
            }
            if (std::fabs(normal(random) + shift) > critical * std::sqrt(squares / freedom)) ++found;
        }
        EXPECT_NEAR(found / double(kTimes), 0.8, 4 * std::sqrt(0.16 / kTimes)) << freedom;
    }
    EXPECT_NEAR(StudentShift(2, 9.9999999, 0.8), StudentShift(2, 10.0000001, 0.8), 1e-6);
    EXPECT_NEAR(StudentShift(NormalQuantile(0.0005), 1e6, 0.8), NormalShift(NormalQuantile(0.0005), 0.8),
                1e-4);
}

// With as many degrees of freedom above as below, 1 is in the middle; and a ratio turned over has its tails
// exchanged. Both hold for as many as there may be.
TEST(Distributions, FishersTailsBelongTogetherWithManyDegreesOfFreedomOnBothSides) {
    for (const double freedom : {30.0, 100.0, 1000.0, 1e5, 1e7}) {
        EXPECT_NEAR(FisherAbove(1, freedom, freedom), 0.5, 1e-7) << freedom;
        for (const double f : {0.9, 0.99, 1.0, 1.01})
            EXPECT_NEAR(FisherAbove(f, freedom, 3 * freedom) + FisherAbove(1 / f, 3 * freedom, freedom), 1,
                        1e-9)
                << freedom << ", " << f;
    }
}

// Values of scipy.stats.f.sf.
TEST(Distributions, FisherWithManyDegreesOfFreedomIsThatOfOthers) {
    EXPECT_NEAR(FisherAbove(1.05, 4000, 10000), 0.03185704040895709, 1e-11);
    EXPECT_NEAR(FisherAbove(0.97, 3000, 2000), 0.7732176170152254, 1e-10);
    EXPECT_NEAR(FisherAbove(1.2, 500, 400), 0.028099193680608887, 1e-11);
}

}  // namespace
