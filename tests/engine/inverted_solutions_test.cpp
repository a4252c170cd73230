// Parameter sets that make up a matrix: against the plain formulas of the chain in long double, and against
// the decomposition into an orthogonal and a triangular matrix, which knows all of them.
#include "engine/inverted_solutions.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

#include "core/units.h"
#include "engine/fit_reference.h"
#include "support/fixture.h"

using namespace corvinade;

using InvertedParameters = Program;

namespace {

const char* const kNoneFound =
    "No inverted Solutions found. Notice: A transformation with any scale in a SEPPARATE Axis does not have "
    "an inverted solution!";

using Real = reference::Real;
using Set = std::array<double, 9>;  // rotation, scales, shear

reference::Square ModelMatrix(const Set& p) {
    const auto at = [&p](std::size_t k) { return static_cast<Real>(p[k]); };
    const reference::Square K = {{{1, std::sin(at(6)), std::cos(at(7)) * std::sin(at(8))},
                                  {0, std::cos(at(6)), std::sin(at(7)) * std::sin(at(8))},
                                  {0, 0, std::cos(at(8))}}};
    reference::Square V = reference::Product(reference::Rotation(at(0), at(1), at(2)), K);
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) V[i][j] *= at(3 + j);
    return V;
}

Mat3 Rounded(const reference::Square& A) {
    Mat3 M;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            M(i, j) =
                static_cast<double>(A[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(j - 1)]);
    return M;
}

Set RowOf(const Matrix& list, int row) {
    Set set{};
    for (int k = 1; k <= 9; ++k) set[static_cast<std::size_t>(k - 1)] = list(row, k);
    return set;
}

// Sum of the differences from W, as the search has it.
double DifferenceFrom(const Mat3& W, const Set& set) {
    const Mat3 V = Rounded(ModelMatrix(set));
    double sum = 0;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) sum += std::fabs(V(i, j) - W(i, j));
    return sum;
}

double AngleBetween(double a, double b) {
    return std::fabs(std::remainder(a - b, 2 * std::numbers::pi));
}

bool Holds(const Matrix& list, const Set& set, double tolerance) {
    for (int row = 1; row <= list.Rows; ++row) {
        const Set other = RowOf(list, row);
        double worst = 0;
        for (std::size_t k = 0; k < 9; ++k)
            worst = std::max(worst,
                             k >= 3 && k < 6 ? std::fabs(other[k] - set[k]) : AngleBetween(other[k], set[k]));
        if (worst <= tolerance) return true;
    }
    return false;
}

// All parameter sets of R K S from one of them: turning the frame about its first axis by half a turn
// changes the signs of two columns of R and of two rows of K; a rotation has two triples of angles; and a
// lean by zt towards az is one by -zt towards the other side.
std::vector<Set> AllSets(const Set& p) {
    constexpr double pi = std::numbers::pi;
    std::vector<Set> sets;
    for (const bool half : {false, true}) {
        Set base = p;
        if (half) {
            base[0] += pi;
            base[6] = pi - p[6];
            base[7] = -p[7];
            base[8] = pi - p[8];
        }
        for (const bool otherTriple : {false, true})
            for (const bool otherLean : {false, true}) {
                Set set = base;
                if (otherTriple)
                    set = {base[0] + pi, pi - base[1], base[2] + pi, p[3],   p[4],
                           p[5],         base[6],      base[7],      base[8]};
                if (otherLean) {
                    set[7] += pi;
                    set[8] = -set[8];
                }
                sets.push_back(set);
            }
    }
    return sets;
}

void ExpectSorted(const Matrix& list) {
    for (int row = 2; row <= list.Rows; ++row) {
        const auto key = [&](int r) { return std::array{list(r, 7), list(r, 3), list(r, 8)}; };
        EXPECT_LE(key(row - 1), key(row)) << row;
    }
}

void ExpectSolutions(const Mat3& W, const Matrix& list, double tolerance) {
    ASSERT_EQ(list.Columns, 9);
    for (int row = 1; row <= list.Rows; ++row) {
        EXPECT_LT(DifferenceFrom(W, RowOf(list, row)), tolerance) << row;
        for (const int k : {1, 2, 3, 7, 8, 9}) EXPECT_LE(std::fabs(list(row, k)), 3.1415926535) << k;
    }
    ExpectSorted(list);
}

}  // namespace

// --- The search -------------------------------------------------------------------------------------------

TEST_F(InvertedParameters, ARotationHasItsTwoTriples) {
    std::mt19937 random(3);
    std::uniform_real_distribution<double> angle(-3.1, 3.1);
    int runs = 0;
    while (runs < 200) {
        const Set p = {angle(random), angle(random), angle(random), 1, 1, 1, 0, 0, 0};
        // The ten digits of the library's pi count by the tangents of the first two angles.
        if (std::fabs(std::cos(p[0])) < 0.1 || std::fabs(std::cos(p[1])) < 0.1) continue;
        SCOPED_TRACE(++runs);
        const Mat3 W = Rounded(ModelMatrix(p));
        Matrix list;
        InvertedSolutions(W, false, false, list);
        ASSERT_EQ(list.Rows, 2);
        ExpectSolutions(W, list, 1e-7);
        constexpr double pi = std::numbers::pi;
        EXPECT_TRUE(Holds(list, p, 1e-8));
        EXPECT_TRUE(Holds(list, {p[0] + pi, pi - p[1], p[2] + pi, 1, 1, 1, 0, 0, 0}, 1e-8));
        for (int k = 4; k <= 6; ++k) EXPECT_EQ(list(1, k), 1) << "without scales they are exactly 1";
        for (int k = 7; k <= 9; ++k) EXPECT_EQ(list(1, k), 0) << "without shear its angles are exactly 0";
    }
}

TEST_F(InvertedParameters, ScalesAreTheLengthsOfTheAxes) {
    const Set p = {0.4, -0.3, 2.0, 0.5, 1.25, 3, 0, 0, 0};
    const Mat3 W = Rounded(ModelMatrix(p));
    Matrix list;
    InvertedSolutions(W, false, true, list);
    ASSERT_EQ(list.Rows, 2);
    EXPECT_TRUE(Holds(list, p, 1e-9));
    ExpectSolutions(W, list, 1e-8);
}

TEST_F(InvertedParameters, WithShearAndScalesAllEightSetsAreFound) {
    std::mt19937 random(5);
    std::uniform_real_distribution<double> angle(-3.1, 3.1), lean(0.05, 0.6), factor(0.5, 2);
    int runs = 0;
    while (runs < 200) {
        const Set p = {angle(random),  angle(random),      angle(random), factor(random), factor(random),
                       factor(random), lean(random) - 0.3, angle(random), lean(random)};
        // Small pivots of the rotation cost digits: the inverse takes no other than those on the diagonal.
        if (std::fabs(std::cos(p[1])) < 0.1 || std::fabs(std::cos(p[2])) < 0.1 ||
            std::fabs(std::cos(p[0])) < 0.1)
            continue;
        SCOPED_TRACE(++runs);
        const Mat3 W = Rounded(ModelMatrix(p));
        Matrix list;
        InvertedSolutions(W, true, true, list);
        EXPECT_EQ(list.Rows, 8);
        ExpectSolutions(W, list, 1e-7);
        for (const Set& set : AllSets(p)) {
            ASSERT_LT(DifferenceFrom(W, set), 1e-14) << "the test's own sets";
            EXPECT_TRUE(Holds(list, set, 1e-7));
        }
    }
}

TEST_F(InvertedParameters, InGonTheSectorsShiftAndTheSetsStay) {
    Units.AngleFactor = 200 / kPi;
    const Set p = {0.4, -0.3, 2.0, 0.5, 1.25, 3, 0.2, -1.1, 0.3};
    const Mat3 W = Rounded(ModelMatrix(p));
    Matrix list;
    InvertedSolutions(W, true, true, list);
    EXPECT_EQ(list.Rows, 8);
    EXPECT_TRUE(Holds(list, p, 1e-7));
}

TEST_F(InvertedParameters, AShearInThePlaneAloneIsFound) {
    const Set p = {0.1, 0.2, 0.3, 1.5, 0.9, 1.1, 0.05, 0, 0};
    const Mat3 W = Rounded(ModelMatrix(p));
    Matrix list;
    InvertedSolutions(W, true, true, list);
    ASSERT_GT(list.Rows, 0);
    ExpectSolutions(W, list, 1.1e-5);
}

TEST_F(InvertedParameters, ShearWithoutScalesHoldsThemAtOne) {
    const Set p = {0.4, -0.3, 2.0, 1, 1, 1, 0.2, -1.1, 0.3};
    const Mat3 W = Rounded(ModelMatrix(p));
    Matrix list;
    InvertedSolutions(W, true, false, list);
    EXPECT_EQ(list.Rows, 8);
    EXPECT_TRUE(Holds(list, p, 1e-7));
    for (int row = 1; row <= list.Rows; ++row)
        for (int k = 4; k <= 6; ++k) EXPECT_EQ(list(row, k), 1);
}

TEST_F(InvertedParameters, RowsDifferSomewhereByMoreThanTheLimit) {
    // The neutral matrix: 0 and half turns about all axes are candidates, some of them twice.
    const Mat3 W = Rounded(ModelMatrix({0, 0, 0, 1, 1, 1, 0, 0, 0}));
    for (const bool shear : {false, true}) {
        Matrix list;
        InvertedSolutions(W, shear, shear, list);
        ASSERT_GE(list.Rows, 2);
        ExpectSolutions(W, list, 1e-5);
        for (int a = 1; a <= list.Rows; ++a)
            for (int b = a + 1; b <= list.Rows; ++b) {
                double most = 0;
                for (int k = 1; k <= 9; ++k) most = std::max(most, std::fabs(list(a, k) - list(b, k)));
                EXPECT_GT(most, 1e-4) << a << ", " << b;
            }
    }
}

// --- No solution ------------------------------------------------------------------------------------------

TEST_F(InvertedParameters, AMatrixThatIsNotOfTheFormSaysSo) {
    Mat3 W = Rounded(ModelMatrix({0.4, -0.3, 2.0, 1, 1, 1, 0, 0, 0}));
    W(1, 2) += 1e-4;
    Matrix list(3, 9);
    InvertedSolutions(W, false, false, list);
    EXPECT_EQ(list.Rows, -1) << "what stood in the list is gone";
    EXPECT_EQ(Messages(), std::vector<std::string>{kNoneFound});
}

TEST_F(InvertedParameters, ScalesThatMayNotBeLookedForAreNotFound) {
    Matrix list;
    InvertedSolutions(Rounded(ModelMatrix({0.4, -0.3, 2.0, 2, 2, 2, 0, 0, 0})), false, false, list);
    EXPECT_EQ(list.Rows, -1);
    EXPECT_EQ(LastMessage(), kNoneFound);
}

TEST_F(InvertedParameters, AMirrorIsNoRotation) {
    const Mat3 W = Rounded({{{1, 0, 0}, {0, 1, 0}, {0, 0, -1}}});
    Matrix list;
    InvertedSolutions(W, false, true, list);
    EXPECT_EQ(list.Rows, -1);
    EXPECT_EQ(LastMessage(), kNoneFound);
}

TEST_F(InvertedParameters, WhatIsNoNumberHasNoSolution) {
    const double inf = std::numeric_limits<double>::infinity();
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), inf, -inf, 1e300, 0.0})
        for (const bool shear : {false, true})
            for (const bool scale : {false, true}) {
                Mat3 W;
                for (double& element : W.Elements) element = bad;
                Matrix list;
                InvertedSolutions(W, shear, scale, list);
                EXPECT_EQ(list.Rows, -1) << bad;
                EXPECT_EQ(LastMessage(), kNoneFound);
            }
}

// --- The shear matrix -------------------------------------------------------------------------------------

TEST_F(InvertedParameters, AShearMatrixSplitsIntoBothItsTriples) {
    std::mt19937 random(8);
    std::uniform_real_distribution<double> angle(-3.1, 3.1), lean(0.02, 3.1);
    for (int run = 0; run < 500; ++run) {
        SCOPED_TRACE(run);
        const double xy = angle(random), az = angle(random), zt = lean(random);
        const Mat3 K = Rounded(ModelMatrix({0, 0, 0, 1, 1, 1, xy, az, zt}));
        Vec3 first, second;
        DecomposeShear(K, first, second);
        EXPECT_LT(AngleBetween(first(1), xy), 1e-8);
        EXPECT_LT(AngleBetween(first(2), az), 1e-7);
        EXPECT_LT(AngleBetween(first(3), zt), 1e-9);
        EXPECT_EQ(second(1), first(1));
        EXPECT_LT(AngleBetween(second(2), az + std::numbers::pi), 1e-7);
        EXPECT_LT(AngleBetween(second(3), -zt), 1e-9);
    }
}

TEST_F(InvertedParameters, AnUprightThirdAxisHasTheAzimuthZero) {
    const Mat3 K = Rounded(ModelMatrix({0, 0, 0, 1, 1, 1, -0.7, 2, 0}));
    Vec3 first, second;
    DecomposeShear(K, first, second);
    for (const Vec3& triple : {first, second}) {
        EXPECT_NEAR(triple(1), -0.7, 1e-12);
        EXPECT_EQ(triple(2), 0);
        EXPECT_EQ(triple(3), 0);
    }
}

TEST_F(InvertedParameters, AnElementBeyondOneCountsAsUpright) {
    Mat3 K = Rounded(ModelMatrix({0, 0, 0, 1, 1, 1, 0, 2, 0}));
    for (const double element : {1.0 + 1e-12, 7.0, -1.0, -7.0}) {
        K(3, 3) = element;
        Vec3 first, second;
        DecomposeShear(K, first, second);
        EXPECT_EQ(first(3), 0) << element;
        EXPECT_EQ(second(3), 0) << element;
        EXPECT_EQ(first(2), 0) << element;
    }
}
