// The axes that angles turn about, against differences of the rotation itself.
#include "fit/turn_axes.h"

#include <gtest/gtest.h>

#include <cmath>

#include "fit/chain.h"

using namespace corvinade::fit;

namespace {

Parameters Turned() {
    Parameters at;
    at[kRotX] = 0.4;
    at[kRotY] = 0.7;
    at[kRotZ] = -1.1;
    return at;
}

FitModel Floating(std::initializer_list<int> angles) {
    FitModel model;
    for (const int angle : angles) model.UnknownOf[static_cast<std::size_t>(angle)] = ++model.Unknowns;
    return model;
}

double Along(const Vec3& a, const Vec3& b) {
    double sum = 0;
    for (int k = 1; k <= 3; ++k) sum += a(k) * b(k);
    return sum;
}

}  // namespace

TEST(TurnAxes, AreThoseOfTheDerivativesOfTheRotation) {
    const Parameters at = Turned();
    const TurnAxes axes(Floating({kRotX, kRotY, kRotZ}), at);
    ASSERT_EQ(axes.Of.size(), 3U);
    Mat3 R;
    RotMatrixXYZ(at[kRotX], at[kRotY], at[kRotZ], R);
    for (int angle = 0; angle < 3; ++angle) {
        constexpr double kStep = 1e-5;
        Parameters more = at, less = at;
        more[kRotX + angle] += kStep;
        less[kRotX + angle] -= kStep;
        Mat3 M, L;
        RotMatrixXYZ(more[kRotX], more[kRotY], more[kRotZ], M);
        RotMatrixXYZ(less[kRotX], less[kRotY], less[kRotZ], L);
        // dR R' is the matrix of the vector product with the axis.
        const auto product = [&](int r, int c) {
            double sum = 0;
            for (int k = 1; k <= 3; ++k) sum += (M(r, k) - L(r, k)) / (2 * kStep) * R(c, k);
            return sum;
        };
        const Vec3& axis = axes.Of[static_cast<std::size_t>(angle)];
        EXPECT_NEAR(axis(1), product(3, 2), 1e-8) << angle;
        EXPECT_NEAR(axis(2), product(1, 3), 1e-8) << angle;
        EXPECT_NEAR(axis(3), product(2, 1), 1e-8) << angle;
    }
}

TEST(TurnAxes, OfTwoAnglesSpanAPlaneByUnitVectorsAtRightAngles) {
    for (const auto& angles : {std::array{kRotX, kRotY}, {kRotX, kRotZ}, {kRotY, kRotZ}}) {
        const TurnAxes axes(Floating({angles[0], angles[1]}), Turned());
        const std::vector<Vec3> span = axes.Span();
        ASSERT_EQ(span.size(), 2U);
        EXPECT_NEAR(Along(span[0], span[0]), 1, 1e-14);
        EXPECT_NEAR(Along(span[1], span[1]), 1, 1e-14);
        EXPECT_NEAR(Along(span[0], span[1]), 0, 1e-14);
        // A unit vector lies in the plane where its parts along the two make up its whole length.
        for (const Vec3& axis : axes.Of)
            EXPECT_NEAR(std::hypot(Along(axis, span[0]), Along(axis, span[1])), 1, 1e-14);
    }
}

TEST(TurnAxes, ATurnAboutTheAxisOfOneAngleIsMarkedAsThatAngleAlone) {
    const TurnAxes axes(Floating({kRotX, kRotZ}), Turned());
    ASSERT_EQ(axes.Of.size(), 2U);
    const std::array<bool, kParameterEnd> first = axes.Marked(axes.Of[0], 1e-6);
    EXPECT_TRUE(first[kRotX]);
    EXPECT_FALSE(first[kRotZ]);
    const std::array<bool, kParameterEnd> second = axes.Marked(axes.Of[1], 1e-6);
    EXPECT_FALSE(second[kRotX]);
    EXPECT_TRUE(second[kRotZ]);
}

TEST(TurnAxes, AreAddedAlongThePrincipalDirectionsOfAForm) {
    // The form has its directions along the columns of a rotation.
    Mat3 R, form;
    RotMatrixXYZ(0.3, -0.5, 0.9, R);
    const std::array<double, 3> values = {2, 5, 11};
    for (int r = 1; r <= 3; ++r)
        for (int c = 1; c <= 3; ++c) {
            form(r, c) = 0;
            for (int k = 1; k <= 3; ++k)
                form(r, c) += values[static_cast<std::size_t>(k - 1)] * R(r, k) * R(c, k);
        }
    std::vector<Vec3> axes;
    AddAxes({Vec3(1, 0, 0), Vec3(0, 1, 0), Vec3(0, 0, 1)}, form, axes);
    ASSERT_EQ(axes.size(), 3U);
    for (int k = 1; k <= 3; ++k) {
        const Vec3 direction(R(1, k), R(2, k), R(3, k));
        double most = 0;
        for (const Vec3& axis : axes) most = std::max(most, std::fabs(Along(axis, direction)));
        EXPECT_NEAR(most, 1, 1e-12) << k;
    }
}
