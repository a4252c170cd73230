// The texts of the details window's clipboard, byte by byte.
#include "engine/details_texts.h"

#include "cli/headless.h"
#include "core/job.h"
#include "core/units.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

// Numbers that no solution has together; what counts here is where each of them stands.
class DetailsTexts : public Program {
protected:
    DetailsTexts() {
        Job.LengthUnitName = "meter";
        Job.AngleUnitName = "mrad";
        Job.LengthDigits = 3;
        Job.AngleDigits = 1;
        RhoFestlegung();
        details_.Rotation = Numbers(0.12345678901234, 10);
        details_.Affine = Numbers(1, 20);
        details_.Scale(1, 1) = 1.5;
        details_.Scale(2, 2) = 2.5;
        details_.Scale(3, 3) = 1e-9;
        details_.Shift = Vec3(1000, -2500, 0.4);
        for (std::size_t k = 0; k < 5; ++k) {
            const double base = static_cast<double>(k + 1) / 10;
            details_.Solutions[k] = {{base, base + 0.01, base + 0.02}, {-base, 0, base + 0.03125}};
        }
        details_.Quaternion = {0.5, -0.5, 0.25, 1.0 / 3};
        details_.Angle = 0.0015;
        details_.Axis = Vec3(0.6, -0.8, 0);
        details_.QuaternionAngles = Vec3(1, -0.00025, 3);
        details_.InverseShift = Vec3(-1000, 2500, 1);
        details_.Inverses = Matrix(2, 9);
        for (int row = 1; row <= 2; ++row)
            for (int column = 1; column <= 9; ++column) details_.Inverses(row, column) = row + column / 100.0;
    }
    // Columns count up by one, rows by `step`.
    static Mat3 Numbers(double first, double step) {
        Mat3 M;
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j) M(i, j) = first + (i - 1) * step + (j - 1);
        return M;
    }

    SolutionDetails details_;

    const std::string rotation_ =
        "0.12345678901234\t1.12345678901234\t2.12345678901234\r\n"
        "10.1234567890123\t11.1234567890123\t12.1234567890123\r\n"
        "20.1234567890123\t21.1234567890123\t22.1234567890123\r\n";
    const std::string affine_ = "1\t2\t3\r\n21\t22\t23\r\n41\t42\t43\r\n";
    const std::string scale_ = "1.5\t0\t0\r\n0\t2.5\t0\r\n0\t0\t1E-09\r\n\r\n";
    const std::string inverse_ =
        "\tSolution 1\tSolution 2\r\n"
        "tra x\t-1.000\t-1.000\r\n"
        "tra y\t2.500\t2.500\r\n"
        "tra z\t0.001\t0.001\r\n"
        "rot x\t1010.0\t2010.0\r\n"
        "rot y'\t1020.0\t2020.0\r\n"
        "rot z''\t1030.0\t2030.0\r\n"
        "scale x\t1.040000\t2.040000\r\n"
        "scale y\t1.050000\t2.050000\r\n"
        "scale z\t1.060000\t2.060000\r\n"
        "xy\t1070.0\t2070.0\r\n"
        "Azimuth z\t1080.0\t2080.0\r\n"
        "z to xy\t1090.0\t2090.0\r\n";
    const std::string homogen_ =
        "0.12345678901234\t1.12345678901234\t2.12345678901234\t1.000\r\n"
        "10.1234567890123\t11.1234567890123\t12.1234567890123\t-2.500\r\n"
        "20.1234567890123\t21.1234567890123\t22.1234567890123\t0.000\r\n"
        "0\t0\t0\t1\r\n\r\n";
    const std::string xyz_ =
        " \tSolution 1\tSolution 2\r\n"
        "Rot x \t100\t-100\r\nRot y' \t110\t0\r\nRot z'' \t120\t131.25\r\n\r\n";
    const std::string zyx_ =
        " \tSolution 1\tSolution 2\r\n"
        "Rot z \t200\t-200\r\nRot y' \t210\t0\r\nRot x'' \t220\t231.25\r\n\r\n";
    const std::string zxy_ =
        " \tSolution 1\tSolution 2\r\n"
        "Rot z \t300\t-300\r\nRot x' \t310\t0\r\nRot y'' \t320\t331.25\r\n\r\n";
    const std::string zxz_ =
        " \tSolution 1\tSolution 2\r\n"
        "Rot z \t400\t-400\r\nRot x' \t410\t0\r\nRot z'' \t420\t431.25\r\n\r\n";
    const std::string zyz_ =
        " \tSolution 1\tSolution 2\r\n"
        "Rot z \t500\t-500\r\nRot y' \t510\t0\r\nRot z'' \t520\t531.25\r\n\r\n";
    const std::string quaternion_ =
        "qw\t0.5\r\nqx\t-0.5\r\nqy\t0.25\r\nqz\t0.333333333333333\r\n"
        "Angel of Rot\t1.5\r\n"
        "Vec x of Rot\t0.6\r\nVec y of Rot\t-0.8\r\nVec z of Rot\t0\r\n"
        "Rot x\t1000\r\nRot y'\t-0.25\r\nRot z''\t3000\r\n";
    const std::string noRuns_ =
        "\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n"
        "\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n\t\r\n";
};

}  // namespace

TEST_F(DetailsTexts, MatricesAreRowsOfThreeInFull) {
    EXPECT_EQ(RotationMatrixText(details_), rotation_);
    EXPECT_EQ(AffineMatrixText(details_), affine_);
    EXPECT_EQ(ScaleMatrixText(details_), scale_);
    EXPECT_EQ(HomogenText(details_), homogen_);
}

TEST_F(DetailsTexts, TheInverseIsCopiedAsItStands) {
    EXPECT_EQ(InverseText(details_), inverse_);
    details_.Inverses = Matrix();
    EXPECT_EQ(InverseText(details_), "no solution\r\n");
}

TEST_F(DetailsTexts, AnglesOfTheOrdersStandInTheAngleUnit) {
    EXPECT_EQ(RotationText(details_, RotationOrder::XYZ), xyz_);
    EXPECT_EQ(RotationText(details_, RotationOrder::ZYX), zyx_);
    EXPECT_EQ(RotationText(details_, RotationOrder::ZXY), zxy_);
    EXPECT_EQ(RotationText(details_, RotationOrder::ZXZ), zxz_);
    EXPECT_EQ(RotationText(details_, RotationOrder::ZYZ), zyz_);
}

TEST_F(DetailsTexts, TheQuaternionHasLabelsOfItsOwn) {
    EXPECT_EQ(QuaternionText(details_), quaternion_);
}

TEST_F(DetailsTexts, TheSpreadIsNineteenRows) {
    EXPECT_EQ(MonteCarloText(details_), noRuns_);
    details_.HasSpread = true;
    for (std::size_t k = 1; k <= 18; ++k) details_.Spread[k] = static_cast<double>(k);
    EXPECT_EQ(MonteCarloText(details_),
              "\t\r\nTra x\t0.001\r\nTra y\t0.002\r\nTra z\t0.003\r\n"
              "Rot x\t4000.0\r\nRot y\t5000.0\r\nRot z\t6000.0\r\n"
              "Scale x\t7.000000\r\nScale y\t8.000000\r\nScale z\t9.000000\r\nScale xyz\t10.000000\r\n"
              "XY\t11000.0\r\nAzimuth\t12000.0\r\nZtoXY\t13000.0\r\nR_Dist\t0.014\r\n"
              "vec_x\t0.015\r\nvec_y\t0.016\r\nvec_z\t0.017\r\ns of sigmaXYZ\t0.018\r\n");
}

TEST_F(DetailsTexts, AllTextsStandOneBehindTheOther) {
    EXPECT_EQ(DetailsText(details_), rotation_ + affine_ + scale_ + inverse_ + homogen_ + xyz_ + zyx_ + zxy_ +
                                         zxz_ + zyz_ + quaternion_ +
                                         "last MonteCarlo - sigma of parameter\r\n" + noRuns_);
}

TEST_F(DetailsTexts, NumbersHaveTheDelimiterOfTheSystem) {
    Headless.Decimal = ',';
    EXPECT_EQ(ScaleMatrixText(details_), "1,5\t0\t0\r\n0\t2,5\t0\r\n0\t0\t1E-09\r\n\r\n");
    EXPECT_NE(QuaternionText(details_).find("Rot y'\t-0,25\r\n"), std::string::npos);
    EXPECT_NE(HomogenText(details_).find("\t-2,500\r\n"), std::string::npos);
}

TEST_F(DetailsTexts, AnglesInDegreesMinutesAndSecondsAreCopiedAsDecimalDegrees) {
    Job.AngleUnitName = "360°60'60''";
    RhoFestlegung();
    details_.Solutions[0].First[0] = 12.5 / 180 * kPi;
    EXPECT_NE(RotationText(details_, RotationOrder::XYZ).find("Rot x \t12.5\t"), std::string::npos);
}
