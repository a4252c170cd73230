// The texts that a calculation puts on the clipboard, byte by byte.
#include "engine/clipboard_report.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/job.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/fit_job.h"
#include "engine/selection.h"
#include "support/degrees.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class ClipboardReport : public Program {
protected:
    ClipboardReport() {
        BeginFit();
        Job.LengthDigits = 3;
        Job.AngleDigits = 4;
        ShowWindow("FormMain");
        RhoFestlegung();
    }

    // Parameters by number, as a calculation leaves them.
    static void Result(std::initializer_list<double> parameters) {
        int k = 0;
        for (const double value : parameters) ParameterValue(Job, ++k) = value;
    }

    // A pair whose transformed point stands where the test puts it.
    static void AddResult(const reference::Point& start, const Vec3& image, const Vec3& target) {
        AddPair(start, {target(1), target(2), target(3)});
        Job.Transformed.X.back() = image(1);
        Job.Transformed.Y.back() = image(2);
        Job.Transformed.Z.back() = image(3);
        for (int axis = 1; axis <= 3; ++axis) {
            Calculation.v.push_back(image(axis) - target(axis));
            Calculation.P.push_back(1);
        }
    }

    static void EndCalculation() {
        SelectionFromJob();
        Calculation.Done = true;
        Calculation.JobGeneration = Run.JobGeneration;
        Calculation.nObs = 3 * Job.Pairs();
    }

    // Three pairs with the forms that matter: on the negative Y axis, on both sides of the seam, the origin.
    static void ThreePairs() {
        Calculation.v = {0};
        Calculation.P = {0};
        AddResult({1, 2, 3}, {3, 4, 12}, {0, -5, 12});
        AddResult({1000.25, -7, 0}, {-10, 0.1, 0}, {-10, -0.1, 0});
        AddResult({0, 0, 0}, {0, 0, -1}, {0, 0, 0});
        Job.UseFlags[6] = 0;
        Calculation.P[6] = 0;
        Calculation.s0 = 2.5;
        Calculation.sx = 3;
        Calculation.sy = 0.25;
        Calculation.sz = 0.0625;
        Calculation.SigmaXYZ = 3.01;
        Job.PathMCS = "/cell/measured.txt";
        Job.PathOCS = "/cell/nominal.txt";
        Job.NameMCS = "tracker";
        Job.NameOCS = "CAD";
    }

    // Pairs that a rotation by 30 degrees about z and a shift carry exactly onto each other.
    static void ExactJob() {
        const double c = std::cos(30 * kDegree), s = std::sin(30 * kDegree);
        for (const auto& p : {reference::Point{0, 0, 0}, {1000, 0, 0}, {0, 2000, 0}, {0, 0, 3000}})
            AddPair(p, {100 + c * p[0] + s * p[1], -200 - s * p[0] + c * p[1], 300 + p[2]});
    }

    static std::string Calculated(int mode) {
        Settings.ClipboardValue = static_cast<std::int16_t>(mode);
        myButtonCalculate();
        return Headless.Clipboard;
    }
};

constexpr const char* kHeading =
    "PktNr.\tMCS.x \t MCS.y \t MCS.z \t OCS.x \t OCS.y \t OCS.z \t dev.x \t dev.y \t dev.z "
    "\t use.x \t use.y \t use.z \t MCS.r.CYL \t MCS.Phi \t OCS.r.CYL \t OCS.Phi \t dev.r.CYL "
    "\t dev.Phi \t MCS.R.SPH \t MCS.Theta.SPH \t OCS.R.SPH \t OCS.Theta.SPH \t dev.R.SPH "
    "\t dev.Theta.SPH\n";

constexpr const char* kNotice =
    "Notice: Your have NOT calculated a simple 6 parameter transformation, be sure what you are doing!\r\n"
    "ONLY the 3 Translations and the 3 Rotations are copied to clipboard, no other parameter which might be "
    "important in your configuration!\r\n";

// The exact job's inverse: the shift turned back by 30 degrees, 100 cos + 200 sin and 100 sin - 200 cos.
constexpr const char* kInverted = "-186.603\t123.205\t-300.000\t0.0000\t0.0000\t30.0000\t";

}  // namespace

TEST_F(ClipboardReport, TheCompleteProtocolHoldsEverythingInItsPlace) {
    ThreePairs();
    FloatParameters(kRigid);
    Result({100.5, -200.25, 0, 30 * kDegree, -45.5 * kDegree, 180 * kDegree, 1, 1.5, 0.999999, 1,
            0.001 * kDegree, -90 * kDegree, 0, 12.5});
    EndCalculation();
    EXPECT_EQ(CompleteProtocol(),
              CrLf("Start = MCS File: /cell/measured.txt\ttracker\n"
                   "Target = OCS File: /cell/nominal.txt\tCAD\n"
                   "Tra x    \t100.500\n"
                   "Tra y    \t-200.250\n"
                   "Tra z    \t0.000\n"
                   "Rotx \t30.0000\n"
                   "Roty \t-45.5000\n"
                   "Rotz \t180.0000\n"
                   "Scale x    \t1.000000\n"
                   "Scale y    \t1.500000\n"
                   "Scale z    \t0.999999\n"
                   "xy   \t0.0010\n"
                   "Azimuth   \t-90.0000\n"
                   "ZtoXY   \t0.0000\n"
                   "R_Dist   \t12.500\n"
                   "s0 \t2.500\n"
                   "sigma xyz \t3.010\n"
                   "sx   \t3.000\tmax x \t3.000\tmin x   \t0.000\tmax x - min x   \t3.000\n"
                   "sy   \t0.250\tmax y \t9.000\tmin y   \t0.000\tmax y - min y   \t9.000\n"
                   "sz   \t0.063\tmax z \t0.000\tmin z   \t-1.000\tmax z - min z   \t1.000\n") +
                  CrLf(kHeading) +
                  CrLf("P1\t1.000\t2.000\t3.000\t0.000\t-5.000\t12.000\t3.000\t9.000\t0.000\t1\t1\t1"
                       "\t5.000\t53.1301\t5.000\t-90.0000\t0.000\t143.1301"
                       "\t13.000\t22.6199\t13.000\t22.6199\t0.000\t0.0000\n"
                       "P2\t1000.250\t-7.000\t0.000\t-10.000\t-0.100\t0.000\t0.000\t0.200\t0.000\t1\t1\t0"
                       "\t10.000\t179.4271\t10.000\t-179.4271\t0.000\t-1.1459"
                       "\t10.000\t90.0000\t10.000\t90.0000\t0.000\t0.0000\n"
                       // Theta of (0, 0, -1): its cosine is short of -1 by 1e-10, the angle by 1.4e-5.
                       "P3\t0.000\t0.000\t0.000\t0.000\t0.000\t0.000\t0.000\t0.000\t-1.000\t1\t1\t1"
                       "\t0.000\t0.0000\t0.000\t0.0000\t0.000\t0.0000"
                       "\t1.000\t179.9992\t0.000\t90.0000\t1.000\t89.9992\n"));
}

TEST_F(ClipboardReport, TheProtocolNamesTheCommonScaleOnlyWhereItFloats) {
    ThreePairs();
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    Result({0, 0, 0, 0, 0, 0, 1.25, 1.25, 1.25, 1.25});
    EndCalculation();
    EXPECT_NE(CompleteProtocol().find("\r\nScale xyz\t1.250000\r\nScale x    \t1.250000\r\n"),
              std::string::npos);
    Job.ParamText[kScaleXYZ] = "1.25";
    SelectionFromJob();
    EXPECT_EQ(CompleteProtocol().find("Scale xyz"), std::string::npos);
}

TEST_F(ClipboardReport, WithAToolVectorTheProtocolNamesItInsteadOfTheDistance) {
    ThreePairs();
    FloatParameters(kRigid);
    FloatParameters({kRvecX, kRvecY, kRvecZ});
    Result({0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 0, 0, 0, 99, 1.5, -2.5, 0});
    EndCalculation();
    const std::string text = CompleteProtocol();
    EXPECT_NE(
        text.find("ZtoXY   \t0.0000\r\nR_vec_x   \t1.500\r\nR_vec_y   \t-2.500\r\nR_vec_z   \t0.000\r\ns0 "),
        std::string::npos)
        << text;
    EXPECT_EQ(text.find("R_Dist"), std::string::npos);
}

TEST_F(ClipboardReport, TheProtocolFollowsUnitsAndTheSystemsDecimalDelimiter) {
    Job.LengthUnitName = "inch";
    Job.AngleUnitName = "360°60'60''";
    Job.LengthDigits = 1;
    Job.AngleDigits = 2;
    Settings.ScaleDigits = 1;
    RhoFestlegung();
    Headless.Decimal = ',';
    ThreePairs();
    FloatParameters(kRigid);
    Result({254, 0, -25.4, 12.51 * kDegree, 0, -30.5 * kDegree, 1, 1.5, 1, 1});
    EndCalculation();
    const std::string text = CompleteProtocol();
    EXPECT_NE(text.find("Tra x    \t10,0\r\nTra y    \t0,0\r\nTra z    \t-1,0\r\nRotx \t12 30 36,00\r\n"
                        "Roty \t0 0 0,00\r\nRotz \t-30 30 0,00\r\nScale x    \t1,000000000000\r\n"),
              std::string::npos)
        << text;
}

TEST_F(ClipboardReport, WhereNoCoordinateOfAnAxisIsInUseItsExtremesAreThoseOfTheSearch) {
    ThreePairs();
    FloatParameters(kRigid);
    for (const std::size_t row : {1, 4, 7}) Calculation.P[row] = 0;
    EndCalculation();
    EXPECT_NE(CompleteProtocol().find("\tmax x \t-1000000000.000\tmin x   \t1000000000.000\tmax x - min x   "
                                      "\t-2000000000.000\r\n"),
              std::string::npos);
}

TEST_F(ClipboardReport, AProtocolOfAHundredThousandPointsHasALineForEach) {
    Calculation.v = {0};
    Calculation.P = {0};
    for (int i = 0; i < 100000; ++i)
        AddResult({1.0 * i, 2, 3}, {1000.0 + i, 2.5, 3.5}, {1000.25 + i, 2.5, 3.5});
    EndCalculation();
    const std::string text = CompleteProtocol();
    EXPECT_GT(text.size(), 10000000u);
    const auto heading = static_cast<std::ptrdiff_t>(text.find("PktNr."));
    EXPECT_EQ(std::count(text.begin() + heading, text.end(), '\n'), 100001);
}

// --- Robot modes ------------------------------------------------------------------------------------------

TEST_F(ClipboardReport, TheCalculationPutsTheTextOfItsModeOnTheClipboard) {
    ExactJob();
    FloatParameters(kRigid);
    EXPECT_EQ(Calculated(5),
              "100.000\t-200.000\t300.000\t-30.0000\t0.0000\t0.0000\tTrala xyz, Rot -z-y'-x''");
    EXPECT_EQ(Calculated(4), "100.000\t-200.000\t300.000\t0.0000\t0.0000\t-30.0000\t");
    EXPECT_EQ(Calculated(2).substr(0, 18), "Start = MCS File: ");
    EXPECT_EQ(Headless.Clipboard, CompleteProtocol());
}

TEST_F(ClipboardReport, ModesOneAndThreePutNoReportOnTheClipboard) {
    ExactJob();
    FloatParameters(kRigid);
    for (const int mode : {1, 3}) {
        const std::string text = Calculated(mode);
        EXPECT_EQ(text.find("Start = "), std::string::npos) << text;
        EXPECT_EQ(text.find("Trala"), std::string::npos) << text;
        Headless.Clipboard = "the user's own";
        ReportToClipboard();
        EXPECT_EQ(Headless.Clipboard, "the user's own");
    }
}

TEST_F(ClipboardReport, KukaParametersHaveTheToolVectorWhereItIsWanted) {
    Result({1, 2, 3, 10 * kDegree, -20 * kDegree, 30 * kDegree, 1, 1, 1, 1, 0, 0, 0, 0, 4, -5, 6.5});
    Settings.AdTCP = kTrue;
    EXPECT_EQ(KukaParameters(),
              "1.000\t2.000\t3.000\t-30.0000\t20.0000\t-10.0000\t-4.000\t5.000\t-6.500\t"
              "Trala xyz, Rot -z-y'-x'', TCP -x-y-z");
    Settings.AdTCP = kFalse;
    EXPECT_EQ(KukaParameters(), "1.000\t2.000\t3.000\t-30.0000\t20.0000\t-10.0000\tTrala xyz, Rot -z-y'-x''");
}

TEST_F(ClipboardReport, BmwParametersAreTranslationAndNegatedRotation) {
    Result({1, 2, 3, 10 * kDegree, -20 * kDegree, 30 * kDegree});
    EXPECT_EQ(BmwParameters(), "1.000\t2.000\t3.000\t-10.0000\t20.0000\t-30.0000\t");
}

TEST_F(ClipboardReport, InvertedBmwParametersAreThoseOfTheWayBack) {
    ExactJob();
    FloatParameters(kRigid);
    Settings.InvertedBMW = kTrue;
    EXPECT_EQ(Calculated(4), kInverted);
}

TEST_F(ClipboardReport, MoreThanSixParametersAreNoticedInTheInvertedText) {
    ExactJob();
    FloatParameters(kRigid);
    FloatParameters({kScaleXYZ});
    Settings.InvertedBMW = kTrue;
    EXPECT_EQ(Calculated(4), std::string(kNotice) + kInverted) << "a scale that floats, whatever comes out";
    for (const auto& [parameter, text] :
         {std::pair{kScaleXYZ, "1.5"}, {kScaleY, "1.5"}, {kAngleXY, "2"}, {kAngleZtoXY, "-0 30 0"}}) {
        Job.ParamText[kScaleXYZ] = kNotUsed;
        Job.ParamText[static_cast<std::size_t>(parameter)] = text;
        EXPECT_TRUE(Calculated(4).starts_with(kNotice)) << parameter;
        Job.ParamText[static_cast<std::size_t>(parameter)] = kNotUsed;
    }
    for (const auto& [parameter, text] : {std::pair{kScaleXYZ, "1"}, {kAngleXY, "0"}, {kAngleZtoXY, "0"}}) {
        Job.ParamText[static_cast<std::size_t>(parameter)] = text;
        EXPECT_EQ(Calculated(4), kInverted) << "held at what does nothing";
        Job.ParamText[static_cast<std::size_t>(parameter)] = kNotUsed;
    }
}

TEST_F(ClipboardReport, InTheWindowItsFieldsDecideOnTheNotice) {
    ExactJob();
    Job.ParamText.fill("");
    ShowWindow("FormTrafoBerechnung");
    Settings.InvertedBMW = kTrue;
    EXPECT_EQ(Calculated(4), kInverted);
    TrafoWindow.TextAzimuth.Text = "0.0001";
    EXPECT_EQ(BmwParameters(), std::string(kNotice) + kInverted);
    TrafoWindow.TextAzimuth.Text = kNotUsed;
    EXPECT_EQ(BmwParameters(), kInverted);
    TrafoWindow.TextScaleXYZ.Text = "1.000";
    EXPECT_EQ(BmwParameters(), kInverted);
    TrafoWindow.TextScaleXYZ.Text = "0.999";
    EXPECT_EQ(BmwParameters(), std::string(kNotice) + kInverted);
}

TEST_F(ClipboardReport, WithoutParametersOfTheInverseItsTranslationStandsAlone) {
    const double c = std::cos(30 * kDegree), s = std::sin(30 * kDegree);
    for (const auto& p : {reference::Point{0, 0, 0}, {1000, 0, 0}, {0, 2000, 0}, {0, 0, 3000}})
        AddPair(p, {2 * c * p[0] + s * p[1], -2 * s * p[0] + c * p[1], 300 + p[2]});
    FloatParameters(kRigid);
    FloatParameters({kScaleX, kScaleY, kScaleZ});
    Settings.InvertedBMW = kTrue;
    EXPECT_EQ(Calculated(4), std::string(kNotice) + "0.000\t0.000\t-300.000\t");
    EXPECT_NE(LastMessage().find("No inverted Solutions found."), std::string::npos);
}

// --- Where nothing can be written -------------------------------------------------------------------------

TEST_F(ClipboardReport, AClipboardThatRefusesIsToldOnceAndChangesNothing) {
    ThreePairs();
    EndCalculation();
    const std::size_t before = Messages().size();
    Headless.ClipboardRefuses = true;
    for (const int mode : {1, 2, 3, 4, 5}) {
        Settings.ClipboardValue = static_cast<std::int16_t>(mode);
        ReportToClipboard();
    }
    ASSERT_EQ(Messages().size(), before + 3);
    EXPECT_EQ(LastMessage(), "Clipboard coud not be set due unknown error");
    EXPECT_EQ(Headless.Clipboard, "");
}

TEST_F(ClipboardReport, WithoutACalculationOfThisJobNothingIsWritten) {
    AddPair({0, 0, 0}, {1, 1, 1});
    AddPair({5, 0, 0}, {6, 1, 1});
    for (const int mode : {2, 4, 5}) {
        Settings.ClipboardValue = static_cast<std::int16_t>(mode);
        ReportToClipboard();
    }
    EXPECT_EQ(Headless.Clipboard, "");
}
