// The spread of Monte Carlo against error propagation.
#include <cmath>

#include "engine/monte_carlo.h"
#include "engine/norm_job.h"
#include "engine/selection.h"
#include "engine/transform.h"

using namespace corvinade;

namespace {

constexpr int kRuns = 4000;

class MonteCarloSpread : public NormTest {
protected:
    MonteCarloSpread() {
        MonteCarlo.MonteCarloOn = kTrue;
        Settings.MonteCarloRuns = kRuns;
        Settings.SigmaX = Settings.SigmaY = Settings.SigmaZ = 0.05;
    }

    // Five standard errors of a deviation that is estimated from so many runs.
    static void ExpectSpread(int parameter, double expected) {
        const double tolerance = 5 * expected / std::sqrt(2.0 * (kRuns - 1));
        EXPECT_NEAR(SigmaOfArray(MonteCarloArray(parameter)), expected, tolerance) << parameter;
    }
    static void ExpectMean(int parameter, double expected, double spread) {
        EXPECT_NEAR(MeanOfArray(MonteCarloArray(parameter)), expected, 5 * spread / std::sqrt(1.0 * kRuns))
            << parameter;
    }

    // The corners of a cube about the origin, which the transformation leaves as they are.
    static void Cube(double half) {
        for (const double x : {-half, half})
            for (const double y : {-half, half})
                for (const double z : {-half, half}) AddPair({x, y, z}, {x, y, z});
    }
};

}  // namespace

TEST_F(MonteCarloSpread, OfACubeIsThatOfTheClosedForm) {
    Cube(500);
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    ButtonCalcErsatz();
    ASSERT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    // Normal matrix: 8 for a shift, 8 * 2 * 500^2 for a rotation, 8 * 3 * 500^2 for the scale, and nothing
    // beside the diagonal.
    for (const int k : {kTraX, kTraY, kTraZ}) {
        ExpectSpread(k, 0.05 / std::sqrt(8.0));
        ExpectMean(k, 0, 0.05 / std::sqrt(8.0));
    }
    for (const int k : {kRotX, kRotY, kRotZ}) {
        ExpectSpread(k, 0.05 / (500 * 4.0));
        ExpectMean(k, 0, 0.05 / (500 * 4.0));
    }
    ExpectSpread(kScaleXYZ, 0.05 / (500 * std::sqrt(24.0)));
    // Twenty-four residuals less seven unknowns; each axis divides its sum of squares by seven.
    double squares = 0;
    const std::span<const double> sigmas = MonteCarloArray(kSigmaXYZ);
    for (const double sigma : sigmas.subspan(1)) squares += sigma * sigma;
    const double expected = 0.05 * 0.05 * 17 / 7;
    EXPECT_NEAR(squares / kRuns, expected, 5 * expected * std::sqrt(2.0 / 17 / kRuns));
}

TEST_F(MonteCarloSpread, FollowsTheNoiseOfEachAxis) {
    Cube(500);
    FloatParameters({kTraX, kTraY, kTraZ, kScaleX, kScaleY, kScaleZ});
    for (const int k : {kRotX, kRotY, kRotZ}) Job.ParamText[static_cast<std::size_t>(k)] = "0";
    Settings.SigmaX = 0.01;
    Settings.SigmaY = 0.1;
    Settings.SigmaZ = 0;
    ButtonCalcErsatz();
    ExpectSpread(kTraX, 0.01 / std::sqrt(8.0));
    ExpectSpread(kTraY, 0.1 / std::sqrt(8.0));
    EXPECT_NEAR(SigmaOfArray(MonteCarloArray(kTraZ)), 0, 1e-12);
    ExpectSpread(kScaleX, 0.01 / (500 * std::sqrt(8.0)));
    ExpectSpread(kScaleY, 0.1 / (500 * std::sqrt(8.0)));
    EXPECT_NEAR(SigmaOfArray(MonteCarloArray(kScaleZ)), 0, 1e-14);
}

TEST_F(MonteCarloSpread, OfATiltedCloudIsThatOfTheCovariance) {
    AddCloud({.Points = 30,
              .Centre = {3000, -1000, 500},
              .Truth = Truth({100, -200, 300, 0.4, -0.7, 1.1, 1, 1, 1, 1})});
    FloatParameters(kRigid);
    FloatParameters({kScaleX, kScaleY, kScaleZ, kAngleXY});
    Job.UseFlags[7] = Job.UseFlags[20] = Job.UseFlags[21] = 0;
    ButtonCalcErsatz();
    ASSERT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    const FitModel model = ChooseModel(Job.ParamText);
    for (int k = kTraX; k <= kAngleZtoXY; ++k)
        if (const int j = model.UnknownOf[static_cast<std::size_t>(k)]; j != 0)
            ExpectSpread(k, 0.05 * std::sqrt(Calculation.Q(j, j)));
}

TEST_F(MonteCarloSpread, OfADistanceIsThatOfAMean) {
    // Start points on the axes of space about their common target: each distance takes the noise of one
    // coordinate, and the mean of them all is the unknown.
    for (const double r : {-100.0, 100.0}) {
        AddPair({r, 0, 0}, {0, 0, 0});
        AddPair({0, r, 0}, {0, 0, 0});
        AddPair({0, 0, r}, {0, 0, 0});
    }
    FloatParameters({kRDist});
    Selection.CheckRDist = true;
    for (const int k : {kTraX, kTraY, kTraZ, kRotX, kRotY, kRotZ})
        Job.ParamText[static_cast<std::size_t>(k)] = "0";
    ButtonCalcErsatz();
    ASSERT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    ExpectSpread(kRDist, 0.05 / std::sqrt(6.0));
    ExpectMean(kRDist, 100, 0.05 / std::sqrt(6.0));
}

TEST_F(MonteCarloSpread, OfTheToolVectorIsThatOfTheCovariance) {
    // Poses that differ in orientation separate the tool vector from the shift.
    constexpr int kPoses = 8;
    Job.RobotABC = Matrix(kPoses, 3);
    for (int i = 1; i <= kPoses; ++i) {
        for (int angle = 1; angle <= 3; ++angle) Job.RobotABC(i, angle) = NextNumber() * 1.5;
        const reference::Point p = {900 * NextNumber(), 900 * NextNumber(), 900 * NextNumber()};
        Mat3 G;
        RotMatrixXYZ(-Job.RobotABC(i, 3), -Job.RobotABC(i, 2), -Job.RobotABC(i, 1), G);
        const double t[3] = {20, -30, 150};
        reference::Point q = p;
        for (int row = 1; row <= 3; ++row)
            for (int column = 1; column <= 3; ++column)
                q[static_cast<std::size_t>(row - 1)] += G(row, column) * t[column - 1];
        AddPair(p, q);
    }
    FloatParameters(kRigid);
    FloatParameters({kRvecX, kRvecY, kRvecZ});
    Selection.CheckUseABC = true;
    Selection.RDistShown = false;
    ButtonCalcErsatz();
    ASSERT_TRUE(IsTrue(MonteCarlo.MonteCarloDone));
    const FitModel model = ChooseModel(Job.ParamText);
    const double expected[3] = {20, -30, 150};
    for (int k = kRvecX; k <= kRvecZ; ++k) {
        const int j = model.UnknownOf[static_cast<std::size_t>(k)];
        const double spread = 0.05 * std::sqrt(Calculation.Q(j, j));
        ExpectSpread(k, spread);
        ExpectMean(k, expected[k - kRvecX], spread);
    }
}
