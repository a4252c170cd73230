// The columns of the design matrix against difference quotients of the transformation itself.
#include "engine/design.h"

#include <cmath>
#include <numbers>

#include "engine/fit_job.h"
#include "engine/transform.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

constexpr double kHalfTurn = std::numbers::pi;

class DesignMatrix : public Program {
protected:
    DesignMatrix() {
        BeginFit();
        for (int i = 0; i < 4; ++i) AddPair({3.0 * i, 7.0 - i, 2.0 * i * i}, {0, 0, 0});
    }

    static void Set(int parameter, double value) {
        ParameterValue(Job, parameter) = value;
        if (parameter == kScaleXYZ) Job.ScaleX = Job.ScaleY = Job.ScaleZ = value;
    }
    static Vec3 Image(const Vec3& p) {
        Job.RotXCopy = Job.RotX;
        Job.RotYCopy = Job.RotY;
        Job.RotZCopy = Job.RotZ;
        Vec3 image;
        TransformPoint(p(1), p(2), p(3), image(1), image(2), image(3));
        return image;
    }
    // By the fourth-order formula of central differences.
    static Vec3 Quotient(int parameter, const Vec3& p) {
        constexpr double h = 1e-3;
        const double at = ParameterValue(Job, parameter);
        const auto image = [&](double step) {
            Set(parameter, at + step);
            return Image(p);
        };
        const Vec3 a = image(-2 * h), b = image(-h), c = image(h), d = image(2 * h);
        Set(parameter, at);
        Vec3 result;
        for (int k = 1; k <= 3; ++k) result(k) = (a(k) - 8 * b(k) + 8 * c(k) - d(k)) / (12 * h);
        return result;
    }
};

}  // namespace

TEST_F(DesignMatrix, HasTheDerivativesOfAllThirteenParameters) {
    GatheredPoints points;
    GatherPoints(Column(13, 1), false, points);
    for (const double turn : {0.0, 0.3, kHalfTurn / 2, kHalfTurn / 2 - 1e-6, kHalfTurn, -kHalfTurn, -2.0})
        for (const bool common : {true, false}) {
            SCOPED_TRACE(turn);
            Job.ParamText.fill(kFloat);
            Job.ParamText[kRDist] = kNotUsed;
            for (int k = kRvecX; k <= kRvecZ; ++k) Job.ParamText[static_cast<std::size_t>(k)] = kNotUsed;
            for (int k = kScaleX; k <= kScaleZ; ++k)
                if (common) Job.ParamText[static_cast<std::size_t>(k)] = kNotUsed;
            if (!common) Job.ParamText[kScaleXYZ] = kNotUsed;
            Set(kTraX, 5);
            Set(kRotX, turn);
            Set(kRotY, 0.4 - turn);
            Set(kRotZ, 0.8 + turn);
            if (common) {
                Set(kScaleXYZ, 1.25);
            } else {
                Set(kScaleX, 1.1);
                Set(kScaleY, 0.7);
                Set(kScaleZ, -1.3);
            }
            Set(kAngleXY, 0.2);
            Set(kAzimuth, turn - 0.5);
            Set(kAngleZtoXY, -0.3);
            const FitModel model = ChooseModel(Job.ParamText);
            const Linearisation at = Linearise(model, points);
            int inner = 0;
            for (int parameter = kTraX; parameter <= kAngleZtoXY; ++parameter) {
                SCOPED_TRACE(parameter);
                const int unknown = model.UnknownOf[static_cast<std::size_t>(parameter)];
                if (unknown == 0) continue;
                for (int i = 1; i <= 4; ++i) {
                    const Vec3 p = StartPoint(i), expected = Quotient(parameter, p);
                    for (int k = 1; k <= 3; ++k) {
                        double column = parameter == k ? 1 : 0;
                        if (parameter > kTraZ) {
                            const InnerDerivative& d = at.Inner[static_cast<std::size_t>(inner)];
                            ASSERT_EQ(d.Unknown, unknown);
                            column = d.D(k, 1) * p(1) + d.D(k, 2) * p(2) + d.D(k, 3) * p(3);
                        }
                        EXPECT_NEAR(column, expected(k), 1e-8);
                    }
                }
                if (parameter > kTraZ) ++inner;
            }
            EXPECT_EQ(model.Unknowns, common ? 10 : 12);
        }
}
