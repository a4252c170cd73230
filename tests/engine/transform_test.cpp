// The transformation chain and its derivatives.
#include "engine/transform.h"

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "core/job.h"
#include "engine/fit_reference.h"
#include "fit/matrix.h"
#include "support/fixture.h"

using namespace corvinade;

using Transformation = Program;

namespace {

void SetParameters(const std::array<double, 13>& values) {
    for (int k = 1; k <= 13; ++k)
        if (k != kScaleXYZ) ParameterValue(Job, k) = values[static_cast<std::size_t>(k - 1)];
    Job.RotXCopy = Job.RotX;
    Job.RotYCopy = Job.RotY;
    Job.RotZCopy = Job.RotZ;
}

const std::array<double, 13> kSome = {100, -200, 300, 0.4, -0.7, 2.1, 1.1, 0.9, 1.2, 0, 0.05, 0.6, 0.08};

Vec3 Image(double x, double y, double z) {
    Vec3 image;
    TransformPoint(x, y, z, image(1), image(2), image(3));
    return image;
}

// The matrix R K S at the present parameters from elementary rotations.
reference::Point ReferenceImage(const reference::Point& p) {
    std::array<reference::Real, 18> t{};
    for (int k = 1; k < kParameterEnd; ++k) t[static_cast<std::size_t>(k)] = ParameterValue(Job, k);
    return reference::Image(t, p);
}

}  // namespace

TEST_F(Transformation, NeutralParametersLeaveThePointUnchanged) {
    const Vec3 image = Image(12.5, -7, 1e6);
    EXPECT_EQ(image(1), 12.5);
    EXPECT_EQ(image(2), -7);
    EXPECT_EQ(image(3), 1e6);
}

TEST_F(Transformation, FollowsTheChainScaleFrameRotationTranslation) {
    SetParameters(kSome);
    const Vec3 image = Image(10, 20, 30);
    const reference::Point expected = ReferenceImage({10, 20, 30});
    for (int k = 1; k <= 3; ++k)
        EXPECT_NEAR(image(k), static_cast<double>(expected[static_cast<std::size_t>(k - 1)]), 1e-12);
}

TEST_F(Transformation, FollowsEveryChangeOfAParameter) {
    SetParameters(kSome);
    Image(1, 2, 3);
    for (int parameter = 1; parameter <= 13; ++parameter) {
        if (parameter == kScaleXYZ) continue;
        ParameterValue(Job, parameter) += 0.125;
        Job.RotXCopy = Job.RotX;
        Job.RotYCopy = Job.RotY;
        Job.RotZCopy = Job.RotZ;
        const Vec3 image = Image(10, 20, 30);
        const reference::Point expected = ReferenceImage({10, 20, 30});
        for (int k = 1; k <= 3; ++k)
            EXPECT_NEAR(image(k), static_cast<double>(expected[static_cast<std::size_t>(k - 1)]), 1e-12)
                << parameter;
    }
}

TEST_F(Transformation, RotationComesFromTheWorkingCopies) {
    Job.RotZ = 1;
    EXPECT_EQ(Image(1, 0, 0)(1), 1);
    Job.RotZCopy = 1;
    EXPECT_NEAR(Image(1, 0, 0)(1), std::cos(1.0), 1e-16);
    EXPECT_NEAR(Image(1, 0, 0)(2), -std::sin(1.0), 1e-16);
}

TEST_F(Transformation, MatricesAreBuiltOneByOne) {
    SetParameters(kSome);
    BuildRotationMatrix();
    BuildShearMatrix();
    BuildScaleMatrix();
    EXPECT_NEAR(Chain.ShearMatrix(1, 2), std::sin(0.05), 1e-16);
    EXPECT_NEAR(Chain.ShearMatrix(1, 3), std::cos(0.6) * std::sin(0.08), 1e-16);
    EXPECT_NEAR(Chain.ShearMatrix(2, 2), std::cos(0.05), 1e-16);
    EXPECT_NEAR(Chain.ShearMatrix(2, 3), std::sin(0.6) * std::sin(0.08), 1e-16);
    EXPECT_NEAR(Chain.ShearMatrix(3, 3), std::cos(0.08), 1e-16);
    EXPECT_EQ(Chain.ShearMatrix(1, 1), 1);
    EXPECT_EQ(Chain.ShearMatrix(2, 1), 0);
    EXPECT_EQ(Chain.ScaleMatrix(1, 1), 1.1);
    EXPECT_EQ(Chain.ScaleMatrix(2, 2), 0.9);
    EXPECT_EQ(Chain.ScaleMatrix(3, 3), 1.2);
    EXPECT_EQ(Chain.ScaleMatrix(1, 2), 0);
    EXPECT_NEAR(Chain.RotationMatrix(3, 1), std::sin(-0.7), 1e-16);
}

TEST_F(Transformation, AzimuthHasNoEffectWhileItsTiltIsZero) {
    const Vec3 before = Image(10, 20, 30);
    Job.Azimuth = 1;
    const Vec3 after = Image(10, 20, 30);
    for (int k = 1; k <= 3; ++k) EXPECT_EQ(before(k), after(k));
}

TEST_F(Transformation, ShortChainLeavesTheObliqueFrameOut) {
    SetParameters({100, -200, 300, 0.4, -0.7, 2.1, 1.1, 0.9, 1.2, 0, 0, 0, 0});
    const Vec3 expected = Image(10, 20, 30);
    Vec3 image;
    trafo(10, 20, 30, image(1), image(2), image(3), 100, -200, 300, 0.4, -0.7, 2.1, 1.1, 0.9, 1.2, 0);
    for (int k = 1; k <= 3; ++k) EXPECT_NEAR(image(k), expected(k), 1e-12);
}

TEST_F(Transformation, ShortChainTakesOneScaleForAllWhereItIsNotZero) {
    Vec3 one, three;
    trafo(10, 20, 30, one(1), one(2), one(3), 1, 2, 3, 0.1, 0.2, 0.3, 7, 8, 9, 1.5);
    trafo(10, 20, 30, three(1), three(2), three(3), 1, 2, 3, 0.1, 0.2, 0.3, 1.5, 1.5, 1.5, 0);
    for (int k = 1; k <= 3; ++k) EXPECT_EQ(one(k), three(k));
}

TEST_F(Transformation, DerivativesOfTheMatricesAreTheirDifferenceQuotients) {
    const double h = 1e-5;
    for (const double scale : {1.0, 0.0, -2.2}) {  // near 0, and in other quadrants too
        std::array<double, 13> values = kSome;
        for (double& value : values) value *= scale;
        const auto check = [&](int parameter, const Mat3& derivative, const Mat3& matrix, auto build) {
            std::array<double, 13> moved = values;
            moved[static_cast<std::size_t>(parameter - 1)] += h;
            SetParameters(moved);
            build();
            const Mat3 forward = matrix;
            moved[static_cast<std::size_t>(parameter - 1)] -= 2 * h;
            SetParameters(moved);
            build();
            const Mat3 back = matrix;
            for (int i = 1; i <= 3; ++i)
                for (int j = 1; j <= 3; ++j)
                    EXPECT_NEAR(derivative(i, j), (forward(i, j) - back(i, j)) / (2 * h), 1e-9)
                        << parameter << ": " << i << ", " << j;
        };
        for (const auto& [parameter, angle] :
             {std::pair{kRotX, RotationAngle::X}, {kRotY, RotationAngle::Y}, {kRotZ, RotationAngle::Z}}) {
            SetParameters(values);
            check(parameter, RotationDerivative(angle), Chain.RotationMatrix, BuildRotationMatrix);
        }
        for (const auto& [parameter, angle] : {std::pair{kAngleXY, ShearAngle::XY},
                                               {kAzimuth, ShearAngle::Azimuth},
                                               {kAngleZtoXY, ShearAngle::ZtoXY}}) {
            SetParameters(values);
            check(parameter, ShearDerivative(angle), Chain.ShearMatrix, [] { BuildShearMatrix(); });
        }
    }
}

TEST_F(Transformation, AgreesWithPublishedGeocentricTransformations) {
    std::ifstream file(std::string(CORVINADE_SOURCE_DIR) + "/tests/data/engine/reference_rotations.json");
    const double arcsecond = std::atan(1.0) / 45 / 3600;
    const nlohmann::json figures = nlohmann::json::parse(file);
    for (const auto& entry : figures["helmert"]) {
        SCOPED_TRACE(entry["id"].get<std::string>());
        const auto number = [&entry](const char* field, std::size_t k) {
            return entry[field][k].get<double>();
        };
        Vec3 image;
        trafo(number("inp", 0), number("inp", 1), number("inp", 2), image(1), image(2), image(3),
              number("T", 0), number("T", 1), number("T", 2), number("rot_arcsec", 0) * arcsecond,
              number("rot_arcsec", 1) * arcsecond, number("rot_arcsec", 2) * arcsecond, 1, 1, 1,
              1 + entry["scale_ppm"].get<double>() * 1e-6);
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(image(static_cast<int>(k) + 1), number("out", k), entry["tol_m"].get<double>());
    }
}
