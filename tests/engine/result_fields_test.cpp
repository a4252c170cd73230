// What the calculation window shows of a result.
#include <cmath>

#include "core/numbers.h"
#include "core/settings.h"
#include "engine/calculation_job.h"
#include "engine/trafo_window.h"

using namespace corvinade;

namespace {

// Four corners of a square of 200 mm and its middle, as target their own places with the deviations of the
// table; three shifts float alone, so that the residuals are known in closed form: start minus target less
// their mean.
class ResultFields : public CalculationJob {
protected:
    static constexpr std::array<std::array<double, 3>, 5> kDeviation = {
        {{0.1, 0.0, -0.2}, {-0.3, 0.2, 0.0}, {0.2, 0.2, 0.1}, {0.0, -0.5, 0.3}, {0.0, 0.1, -0.2}}};

    ResultFields() {
        const std::array<std::array<double, 2>, 5> places = {
            {{-100, -100}, {100, -100}, {100, 100}, {-100, 100}, {0, 0}}};
        for (std::size_t i = 0; i < places.size(); ++i) {
            const double x = places[i][0], y = places[i][1];
            AddPair({x, y, 0}, {x - kDeviation[i][0], y - kDeviation[i][1], -kDeviation[i][2]});
        }
        Open();
        for (Control* const box : {&trafoWindow.CheckRotX, &trafoWindow.CheckRotY, &trafoWindow.CheckRotZ})
            SetValue(*box, 0);
    }

    static double Mean(std::size_t axis) {
        double sum = 0;
        for (const auto& deviation : kDeviation) sum += deviation[axis];
        return sum / 5;
    }
    static double Residual(std::size_t point, std::size_t axis) {
        return kDeviation[point][axis] - Mean(axis);
    }
    // Root of the sum of squares over the number less one.
    static double MeanError(std::size_t axis) {
        double squares = 0;
        for (std::size_t i = 0; i < 5; ++i) squares += Residual(i, axis) * Residual(i, axis);
        return std::sqrt(squares / 4);
    }
};

bool Red(int quality) {
    return QualityRow(quality).ArrRed->Visible && !QualityRow(quality).ArrGreen->Visible;
}
bool Green(int quality) {
    return QualityRow(quality).ArrGreen->Visible && !QualityRow(quality).ArrRed->Visible;
}

}  // namespace

TEST_F(ResultFields, ExtremesTellTheirPoints) {
    Calculate();
    // Means: 0, 0, 0; so the residuals are the deviations themselves.
    EXPECT_EQ(trafoWindow.TextMaxDevX.Text, "0.200");
    EXPECT_EQ(trafoWindow.TextMaxDevXPkt.Text, "P3");
    EXPECT_EQ(trafoWindow.TextMinDevX.Text, "-0.300");
    EXPECT_EQ(trafoWindow.TextMinDevXPkt.Text, "P2");
    EXPECT_EQ(trafoWindow.TextMaxMinX.Text, "0.500");
    EXPECT_EQ(trafoWindow.TextMaxDevY.Text, "0.200");
    EXPECT_EQ(trafoWindow.TextMinDevYPkt.Text, "P4");
    EXPECT_EQ(trafoWindow.TextMaxMinY.Text, "0.700");
    EXPECT_EQ(trafoWindow.TextMaxDevZPkt.Text, "P4");
    EXPECT_EQ(trafoWindow.TextMaxDevxyz.Text, "0.583");  // root of 0.5^2 + 0.3^2
    EXPECT_EQ(trafoWindow.TextMaxDevXYZPkt.Text, "P4");
    EXPECT_EQ(trafoWindow.TextSx.Text, ShownLength(MeanError(0)));
    EXPECT_EQ(trafoWindow.TextSy.Text, ShownLength(MeanError(1)));
    EXPECT_EQ(trafoWindow.TextSz.Text, ShownLength(MeanError(2)));
}

TEST_F(ResultFields, OfEqualExtremesTheFirstPointStays) {
    // P1 and P5 have the same largest downward deviation in z.
    Calculate();
    EXPECT_EQ(trafoWindow.TextMinDevZ.Text, "-0.200");
    EXPECT_NEAR(Calculation.v[3], Calculation.v[15], 1e-12);
    if (Calculation.v[15] >= Calculation.v[3]) {
        EXPECT_EQ(trafoWindow.TextMinDevZPkt.Text, "P1");
    }
}

TEST_F(ResultFields, APointOutOfUseTakesNoPartInTheExtremes) {
    for (std::size_t flag = 10; flag <= 12; ++flag) Job.UseFlags[flag] = 0;
    Calculate();
    EXPECT_NE(trafoWindow.TextMinDevYPkt.Text, "P4");
    EXPECT_NE(trafoWindow.TextMaxDevZPkt.Text, "P4");
    EXPECT_NE(trafoWindow.TextMaxDevXYZPkt.Text, "P4");
}

TEST_F(ResultFields, APointNeedsAllThreeCoordinatesForTheLargestDistance) {
    Job.UseFlags[10] = 0;
    Calculate();
    EXPECT_NE(trafoWindow.TextMaxDevXYZPkt.Text, "P4");
    EXPECT_EQ(trafoWindow.TextMinDevYPkt.Text, "P4") << "its other coordinates count";
}

TEST_F(ResultFields, AJobWithoutAnyWholePointShowsWhatTheSearchBeginsWith) {
    for (std::size_t point = 0; point < 5; ++point) Job.UseFlags[3 * point + 1 + point % 3] = 0;
    Calculate();
    EXPECT_EQ(trafoWindow.TextMaxDevxyz.Text, "-1000000000.000");
    EXPECT_EQ(trafoWindow.TextMaxDevXYZPkt.Text, "");
}

TEST_F(ResultFields, TheFirstRunHasRedArrowsOnly) {
    for (int quality = kSxyz; quality < kQualityEnd; ++quality) {
        EXPECT_FALSE(QualityRow(quality).ArrRed->Visible);
        EXPECT_FALSE(QualityRow(quality).ArrGreen->Visible);
    }
    Calculate();
    for (int quality = kSxyz; quality < kQualityEnd; ++quality) EXPECT_TRUE(Red(quality)) << quality;
}

TEST_F(ResultFields, SmallerThanTheRunBeforeIsGreenAndEqualIsRed) {
    Calculate();
    Calculate();
    for (int quality = kSxyz; quality < kQualityEnd; ++quality) EXPECT_TRUE(Red(quality)) << quality;
    for (std::size_t flag = 10; flag <= 12; ++flag) Job.UseFlags[flag] = 0;
    Calculate();
    EXPECT_TRUE(Green(kSxyz));
    EXPECT_TRUE(Green(kS0));
    EXPECT_TRUE(Green(kSy));
    EXPECT_TRUE(Green(kMaxDevxyz));
    EXPECT_TRUE(Green(kMinDevX + 1)) << "by size, not by sign";
    EXPECT_TRUE(Green(kMaxMinX + 1));
    for (int quality = kSxyz; quality < kQualityEnd; ++quality) EXPECT_TRUE(Green(quality) || Red(quality));
    EXPECT_NEAR(CalculationWindow.LastQuality[kSxyz], Calculation.SigmaXYZ, 0);
}

TEST_F(ResultFields, SigmaAndSignificanceOfShiftsInClosedForm) {
    Calculate();
    // Each shift is the mean of five observations: its cofactor is 1/5.
    double squares = 0;
    for (std::size_t axis = 0; axis < 3; ++axis)
        for (std::size_t i = 0; i < 5; ++i) squares += Residual(i, axis) * Residual(i, axis);
    const double s0 = std::sqrt(squares / 14), sigma = s0 / std::sqrt(5.0);
    EXPECT_EQ(trafoWindow.TextS0.Text, ShownLength(s0));
    EXPECT_EQ(trafoWindow.TextSigmaTraX.Text, ShownLength(sigma));
    EXPECT_EQ(trafoWindow.TextSigmaTraZ.Text, ShownLength(sigma));
    EXPECT_EQ(trafoWindow.TextSignifikanzTraX.Text, "0.0");
    EXPECT_EQ(trafoWindow.TextSigmaRotX.Text, "") << "held";
    EXPECT_EQ(trafoWindow.TextSignifikanzRotX.Text, "");
}

TEST_F(ResultFields, AParameterThatIsHeldLaterKeepsItsFieldsUntilThePresetBlanksThem) {
    SetValue(trafoWindow.CheckRotZ, 1);
    Calculate();
    const std::string sigma = trafoWindow.TextSigmaRotZ.Text;
    EXPECT_NE(sigma, "");
    UserSetValue(trafoWindow.CheckRotZ, 0);
    Calculate();
    EXPECT_EQ(trafoWindow.TextSigmaRotZ.Text, sigma);
    UserSetValue(trafoWindow.Option6Parameter, 0);
    UserSetValue(trafoWindow.Option7Parameter, 1);
    EXPECT_EQ(trafoWindow.TextSigmaRotZ.Text, "");
}

namespace {

class ScaledResult : public CalculationJob {
protected:
    // A cloud grown by 2 per mille.
    ScaledResult() {
        AddCloud({.Points = 8,
                  .Noise = 0.01,
                  .Truth = Truth({1, 2, 3, 0, 0, kPi, 1.002, 1.002, 1.002, 1.002, 0, 0, 0})});
        Open();
        UserSetValue(trafoWindow.Option7Parameter, 1);
    }
};

}  // namespace

TEST_F(ScaledResult, ScaleTipsTellTheChangeOfLengthsWithTheSignTurned) {
    Calculate();
    const auto tip = [](double factor) { return FormatNumber((1 - Job.ScaleXYZ) * factor, Units.FmtScale); };
    EXPECT_EQ(trafoWindow.TextScaleXYZ.ToolTip, tip(1000) + " millimeter per meter");
    EXPECT_EQ(trafoWindow.TextScaleX.ToolTip[0], '-');
    Job.LengthUnitName = "inch";
    RhoFestlegung();
    Calculate();
    EXPECT_EQ(trafoWindow.TextScaleY.ToolTip, tip(10000) + " 10thou per inch");
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    Calculate();
    EXPECT_EQ(trafoWindow.TextScaleZ.ToolTip, tip(1000000) + " ppm");
    Job.LengthUnitName = "feet";
    RhoFestlegung();
    Calculate();
    EXPECT_EQ(trafoWindow.TextScaleZ.ToolTip, "delta to last calculation: 0.000000");
}

TEST_F(ScaledResult, ScalesCountFromOneAndHalfATurnAsNone) {
    Calculate();
    const double scaleSigma = Calculation.Sigma[kScaleXYZ];
    EXPECT_EQ(trafoWindow.TextSigmaScaleXYZ.Text, FormatNumber(scaleSigma, Units.FmtScale));
    EXPECT_EQ(trafoWindow.TextSignifikanzScaleXYZ.Text,
              FormatNumber(std::fabs((Job.ScaleXYZ - 1) / (scaleSigma + 1e-9)), "0.0"));
    EXPECT_NEAR(std::fabs(Job.RotZ), kPi, 1e-3);
    const double turned = kPi - std::fabs(Job.RotZ);
    EXPECT_NEAR(Calculation.Significance[kRotZ], turned / (Calculation.Sigma[kRotZ] + 1e-9), 1e-3);
    EXPECT_LT(Calculation.Significance[kRotZ], 100);
    EXPECT_EQ(trafoWindow.TextSigmaRotZ.Text, WinkelFormat(Calculation.Sigma[kRotZ]));
    EXPECT_EQ(trafoWindow.TextScaleXYZ.Text, FormatNumber(Job.ScaleXYZ, Units.FmtScale));
}

namespace {

// Poses whose tool points, shifted by the tool vector, are the start points.
class ToolResult : public CalculationJob {
protected:
    ToolResult() {
        AddPairs(8, 0.05);
        Job.RobotABC = Matrix(Job.Pairs(), 3);
        for (int i = 1; i <= Job.Pairs(); ++i)
            for (int k = 1; k <= 3; ++k) Job.RobotABC(i, k) = 2 * NextNumber();
        Open();
        UserSetValue(trafoWindow.CheckUseABC, 1);
    }
};

}  // namespace

TEST_F(ToolResult, TheRVectorShowsItsPartsItsLengthAndTheSigmaOfThat) {
    Calculate();
    EXPECT_EQ(trafoWindow.TextRvec_x.Text, ShownLength(Job.Rvec_x));
    EXPECT_EQ(trafoWindow.TextRvec_z.Text, ShownLength(Job.Rvec_z));
    const double length =
        std::sqrt(Job.Rvec_x * Job.Rvec_x + Job.Rvec_y * Job.Rvec_y + Job.Rvec_z * Job.Rvec_z);
    EXPECT_NEAR(Job.RDist, length, 1e-12);
    EXPECT_EQ(trafoWindow.TextRDist.Text, ShownLength(length));
    double variance = 0;
    for (int k = kRvecX; k <= kRvecZ; ++k) {
        const double share = ParameterValue(Job, k) / length;
        const double sigma =
            std::sqrt(std::fabs(Calculation.Q(k - kRvecX + 7, k - kRvecX + 7))) * Calculation.s0;
        variance += share * share * sigma * sigma;
    }
    EXPECT_EQ(trafoWindow.TextSigmaRDist.Text, ShownLength(std::sqrt(variance)));
    EXPECT_EQ(trafoWindow.TextSignifikanzRDist.Text,
              FormatNumber(length / (std::sqrt(variance) + 1e-9), "0.0"));
    EXPECT_EQ(trafoWindow.TextRvec_x.ToolTip.rfind("delta to last calculation: ", 0), 0u);
}

TEST_F(ToolResult, AHeldToolVectorTakesPartAsItStands) {
    UserSetValue(trafoWindow.CheckUseABC, 0);
    UserSetText(trafoWindow.TextRvec_x, "12");
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    Calculate();
    EXPECT_EQ(Job.Rvec_x, 12);
    EXPECT_EQ(trafoWindow.TextRvec_x.Text, "12")
        << "shown in meters it would be another vector in the next calculation";
    Calculate();
    EXPECT_EQ(Job.Rvec_x, 12);
}
