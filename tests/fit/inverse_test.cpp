// The inverse of a transformation, and what a cloud leaves open, by values alone.
#include "fit/inverse.h"

#include <gtest/gtest.h>

#include <cmath>

#include "fit/chain.h"
#include "fit/fit.h"
#include "fit/inverted_solutions.h"
#include "fit/open_parameters.h"

using namespace corvinade::fit;

namespace {

constexpr double kDegree = 57.295779513082323;

Parameters Of(std::initializer_list<double> firstTen) {
    Parameters parameters;
    int k = kTraX;
    for (const double value : firstTen) parameters[k++] = value;
    return parameters;
}

// Of a choice in which translation and rotation float, at the result; all coordinates are in use.
OpenParameters OpenOf(const std::array<std::vector<double>, 3>& start, const Parameters& result) {
    const PairColumns pairs{.Start = {start[0], start[1], start[2]},
                            .Target = {start[0], start[1], start[2]}};
    GatheredPoints points;
    GatherPoints(pairs, Column(3 * start[0].size() + 1, 1), false, points);
    StartChoice choice;
    for (int k = kTraX; k <= kRotZ; ++k) choice.Floats[static_cast<std::size_t>(k)] = true;
    const FitModel model = ModelOf(choice, FitMode::Coincide);
    ChainRecord chain;
    const Linearisation at = Linearise(model, result, points, chain);
    return FindOpenParameters(
        points, model, [](std::size_t) { return true; }, result, at);
}

}  // namespace

TEST(Inverse, LeadsBackToEveryPoint) {
    const Parameters there = Of({120, -4500, 33, 0.4, -1.1, 2.5, 1.25, 0.8, 1.5});
    const InverseMatrix back = InverseOf(there);
    for (const Vec3& point : {Vec3(0, 0, 0), Vec3(1000, -20, 3), Vec3(-7, 555, 1e4)}) {
        Vec3 moved;
        trafo(point(1), point(2), point(3), moved(1), moved(2), moved(3), there[kTraX], there[kTraY],
              there[kTraZ], there[kRotX], there[kRotY], there[kRotZ], there[kScaleX], there[kScaleY],
              there[kScaleZ], 0);
        for (int i = 1; i <= 3; ++i) {
            double x = back.Shift(i);
            for (int j = 1; j <= 3; ++j) x += back.Linear(i, j) * moved(j);
            EXPECT_NEAR(x, point(i), 1e-7);  // its pivots have 1e-12 added
        }
    }
}

TEST(Inverse, OfARotationIsOneOfTheModelsForm) {
    const InverseMatrix back = InverseOf(Of({0, 0, 0, 0.3, 0.2, -0.7}));
    const Matrix solutions = InvertedSolutions(back.Linear, false, false, kDegree);
    ASSERT_GE(solutions.Rows, 1);
    for (int row = 1; row <= solutions.Rows; ++row) {
        Mat3 R;
        RotMatrixXYZ(solutions(row, 1), solutions(row, 2), solutions(row, 3), R);
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j) EXPECT_NEAR(R(i, j), back.Linear(i, j), 1e-5);
    }
}

TEST(Inverse, OfScalesOfTheirOwnAndATurnIsNoneOfARightAngledFrame) {
    const InverseMatrix back = InverseOf(Of({0, 0, 0, 0.3, 0.2, -0.7, 1, 2, 3}));
    EXPECT_LT(InvertedSolutions(back.Linear, false, true, kDegree).Rows, 1);
}

TEST(OpenParameters, OfAnAxisIsTheTurnAboutIt) {
    const OpenParameters open = OpenOf({{{0, 300, 700, 1200}, {0, 0, 0, 0}, {0, 0, 0, 0}}}, Parameters());
    EXPECT_EQ(open.Count, 1);
    for (int k = kTraX; k <= kRotZ; ++k) EXPECT_EQ(open.Open[static_cast<std::size_t>(k)], k == kRotX) << k;
}

TEST(OpenParameters, OfAPlateAreNone) {
    const OpenParameters open = OpenOf({{{0, 300, 0, 300}, {0, 0, 400, 400}, {0, 0, 0, 0}}}, Parameters());
    EXPECT_EQ(open.Count, 0);
}
