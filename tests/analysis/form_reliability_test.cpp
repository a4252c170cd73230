// The window "Reliability" by its controls. Four points are moved by 1, 2, 3 and by errors whose means are 0;
// with the turns held every figure follows by hand.
#include "analysis/form_reliability.h"

#include <array>
#include <cmath>

#include "analysis/form_input_statistic.h"
#include "analysis/import_files.h"
#include "analysis/reliability_tables.h"
#include "cli/headless.h"
#include "core/changes.h"
#include "core/controller.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/measurement_sigmas.h"
#include "core/numbers.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

const char* const kMeasured = "A;0;0;0\r\nB;1000;0;0\r\nC;0;2000;0\r\nD;0;0;3000\r\nE;5;6;7\r\n";
const char* const kNominal = "A;1.1;2.2;3.3\r\nB;1000.9;2.2;3.1\r\nC;1.3;2001.8;2.9\r\nD;0.7;1.8;3002.7\r\n";
constexpr double kErrors[4][3] = {{0.1, 0.2, 0.3}, {-0.1, 0.2, 0.1}, {0.3, -0.2, -0.1}, {-0.3, -0.2, -0.3}};

double SumOfSquares() {
    double sum = 0;
    for (const auto& point : kErrors)
        for (const double error : point) sum += error * error;
    return sum;
}

class ReliabilityWindow : public Program {
protected:
    ReliabilityWindow() {
        StartUp("");
        ImportFiles(Write("start.txt", kMeasured), Write("target.txt", kNominal));
        Job.ParamText.fill(kNotUsed);
        for (const int k : {kTraX, kTraY, kTraZ}) Job.ParamText[static_cast<std::size_t>(k)] = kFloat;
    }
    static void Calculate() {
        Dispatch([] { myButtonCalculate(); });
    }
    static void Open() { ASSERT_TRUE(UserClick(Main.MenuTransformationReliability)); }
    static std::string Cell(Control& grid, int row, int col) { return CellText(grid.Grid, row, col); }
    static double Number(Control& grid, int row, int col) { return Val(Cell(grid, row, col)); }
    static int RowOf(const std::string& point, const std::string& axis) {
        for (int row = 1; row < Reliability.GridPoints.Grid.Rows; ++row)
            if (Cell(Reliability.GridPoints, row, kRelPoint) == point &&
                Cell(Reliability.GridPoints, row, kRelAxis) == axis)
                return row;
        ADD_FAILURE() << point << " " << axis;
        return 1;
    }
    static void Sigmas(const std::array<const char*, 6>& texts) {
        FormReliability& w = Reliability;
        Control* const fields[] = {&w.TextStartSigmaX,  &w.TextStartSigmaY,  &w.TextStartSigmaZ,
                                   &w.TextTargetSigmaX, &w.TextTargetSigmaY, &w.TextTargetSigmaZ};
        for (std::size_t i = 0; i < 6; ++i) UserSetText(*fields[i], texts[i]);
        UserClick(w.BtnApply);
    }
};

}  // namespace

TEST_F(ReliabilityWindow, OpensByMenuAndToolButtonAndCloses) {
    Open();
    EXPECT_TRUE(IsLoaded("FormReliability"));
    EXPECT_NE(Reliability.LabelGlobalTest.Text.find("no calculation yet"), std::string::npos);
    EXPECT_FALSE(Reliability.BtnSnoop.Enabled);
    EXPECT_EQ(Reliability.GridPoints.Grid.Rows, 1);
    UserClick(Reliability.BtnClose);
    EXPECT_FALSE(IsLoaded("FormReliability"));
    UserClick(Main.ToolbarReliability_Reliability);
    EXPECT_TRUE(IsLoaded("FormReliability"));
    EXPECT_TRUE(UserEscape(FormReliability_Entry));
    EXPECT_FALSE(IsLoaded("FormReliability"));
}

TEST_F(ReliabilityWindow, IsFilledBehindEachCalculationWhileItIsOpen) {
    Open();
    Calculate();
    FormReliability& w = Reliability;
    const double s0 = std::sqrt(SumOfSquares() / 9);
    EXPECT_NE(w.LabelGlobalTest.Text.find("No standard deviations"), std::string::npos);
    EXPECT_NE(w.LabelGlobalTest.Text.find(FormatNumber(s0, "0.000")), std::string::npos)
        << w.LabelGlobalTest.Text;
    ASSERT_EQ(w.GridPoints.Grid.Rows, 13);
    // The errors of 0.3 are the worst, those of 0.1 the last.
    for (int row = 1; row <= 4; ++row)
        EXPECT_NEAR(std::fabs(Number(w.GridPoints, row, kRelResidual)), 0.3, 1e-9);
    EXPECT_NEAR(std::fabs(Number(w.GridPoints, 12, kRelResidual)), 0.1, 1e-9);
    const int row = RowOf("C", "x");
    EXPECT_NEAR(Number(w.GridPoints, row, kRelResidual), -0.3, 1e-9);
    EXPECT_EQ(Cell(w.GridPoints, row, kRelRedundancy), FormatNumber(0.75, "0.000"));
    EXPECT_EQ(Cell(w.GridPoints, row, kRelStandardized), FormatNumber(-0.3 / (s0 * std::sqrt(0.75)), "0.00"));
    EXPECT_EQ(Cell(w.GridPoints, row, kRelVerdict), "ok");
    // Three shifts that do not hang together; all points as accurate as they.
    ASSERT_EQ(w.GridCorrelation.Grid.Rows, 4);
    EXPECT_EQ(Cell(w.GridCorrelation, 1, 2), FormatNumber(0, "0.000"));
    EXPECT_EQ(Cell(w.GridCorrelation, 2, 2), FormatNumber(1, "0.000"));
    ASSERT_EQ(w.GridAccuracy.Grid.Rows, 1 + 3 + 5);
    EXPECT_EQ(Cell(w.GridAccuracy, 1, kAccSigma), FormatNumber(s0 / 2, "0.000"));
    EXPECT_EQ(Cell(w.GridAccuracy, 8, kAccName), "E");
    for (const int col : {kAccX, kAccY, kAccZ})
        EXPECT_EQ(Cell(w.GridAccuracy, 8, col), FormatNumber(s0 / 2, "0.000"));
    EXPECT_TRUE(w.GridAccuracy.Grid.HiddenCols[kAccPosterior]);
    // A point out of use, and a calculation: it follows.
    Job.UseFlags[1] = 0;
    Calculate();
    EXPECT_EQ(Cell(w.GridPoints, RowOf("A", "x"), kRelVerdict), "out of use");
    EXPECT_EQ(Cell(w.GridPoints, RowOf("A", "x"), kRelMdb), "");
}

TEST_F(ReliabilityWindow, SaysTheGlobalTestInPlainWords) {
    Calculate();
    Open();
    FormReliability& w = Reliability;
    // 0.06 and 0.08 make 0.1 together: a sum of 58, of 9 expected.
    Sigmas({"0.06", "0.06", "0.06", "0.08", "0.08", "0.08"});
    EXPECT_NE(w.LabelGlobalTest.Text.find("too large"), std::string::npos) << w.LabelGlobalTest.Text;
    EXPECT_NE(w.LabelGlobalTest.Text.find(FormatNumber(SumOfSquares() / 0.01, "0.00")), std::string::npos);
    EXPECT_NE(w.LabelGlobalTest.Text.find(FormatNumber(19.02, "0.00")), std::string::npos);  // chi-square, 9
    EXPECT_NE(w.LabelGlobalTest.BackColor, kSystemColour);
    Sigmas({"", "", "", "0.25", "0.25", "0.25"});
    EXPECT_NE(w.LabelGlobalTest.Text.find("passed"), std::string::npos) << w.LabelGlobalTest.Text;
    EXPECT_EQ(w.LabelGlobalTest.BackColor, kSystemColour);
    Sigmas({"2", "2", "2", "0", "0", "0"});
    EXPECT_NE(w.LabelGlobalTest.Text.find("too small"), std::string::npos) << w.LabelGlobalTest.Text;
    Sigmas({"", "", "", "", "", ""});
    EXPECT_NE(w.LabelGlobalTest.Text.find("No standard deviations"), std::string::npos);
    EXPECT_FALSE(SigmasOf(Job).Any());
}

TEST_F(ReliabilityWindow, TakesTheSigmasOfAWholeSide) {
    Calculate();
    Open();
    FormReliability& w = Reliability;
    EXPECT_EQ(w.LabelStart.Text, "Start, " + Job.NameMCS);
    Sigmas({"0.06", "0.08", "0.1", "0.08", "0.06", "0"});
    EXPECT_EQ(SigmasOf(Job).Start, (SideAccuracy{0.06, 0.08, 0.1}));
    EXPECT_EQ(SigmasOf(Job).Target, (SideAccuracy{0.08, 0.06, 0}));
    EXPECT_NEAR(Number(w.GridAccuracy, 1, kAccSigma), 0.05, 1e-9);  // 0.1 / sqrt(4)
    EXPECT_FALSE(w.GridAccuracy.Grid.HiddenCols[kAccPosterior]);
    // What is no number is refused and named, and nothing changes.
    for (const char* wrong : {"-1", "abc"}) {
        Sigmas({"0.06", wrong, "0.1", "0.08", "0.06", "0"});
        EXPECT_NE(LastMessage().find("y of the start"), std::string::npos);
        EXPECT_NE(LastMessage().find(wrong), std::string::npos);
        EXPECT_EQ(SigmasOf(Job).Start, (SideAccuracy{0.06, 0.08, 0.1}));
    }
    // In the unit in use.
    Job.LengthUnitName = "meter";
    Dispatch([] {
        RhoFestlegung();
        Changed(What::UnitsAndDigits);
    });
    EXPECT_EQ(w.TextStartSigmaZ.Text, PlainText(0.1 / 1000));
    UserSetText(w.TextTargetSigmaZ, PlainText(0.002));
    UserClick(w.BtnApply);
    EXPECT_NEAR((*SigmasOf(Job).Target)[2], 2, 1e-12);
    EXPECT_EQ((*SigmasOf(Job).Start)[0], 0.06);
}

TEST_F(ReliabilityWindow, ReadsADecimalCommaAsTheSystemWritesIt) {
    Calculate();
    Open();
    Headless.Decimal = ',';
    Sigmas({"", "", "", "0,25", "0.25", "2,5e-1"});
    EXPECT_EQ(SigmasOf(Job).Target, (SideAccuracy{0.25, 0.25, 0.25}));
    EXPECT_EQ(Reliability.TextTargetSigmaX.Text, "0,25");
    UserSetText(Reliability.TextAlpha, "0,05");
    EXPECT_EQ(Reliability.Shown->Levels.AlphaSingle, 0.05);
    Headless.Decimal.reset();
}

TEST_F(ReliabilityWindow, SigmasOfEachPointStayUntilASideIsTyped) {
    auto each = std::make_shared<PointAccuracies>();
    for (auto& axis : each->Of) axis = {0.1, 0.2, 0.3, 0.4, 0.5};
    MeasurementSigmas sigmas;
    sigmas.StartOfEach = each;
    sigmas.Target = SideAccuracy{0.1, 0.1, 0.1};
    PutSigmas(sigmas, Job);
    Calculate();
    Open();
    FormReliability& w = Reliability;
    EXPECT_EQ(w.TextStartSigmaX.Text, "");
    EXPECT_NE(w.LabelSigmas.Text.find(PlainText(0.1) + " to " + PlainText(0.5)), std::string::npos);
    UserSetText(w.TextTargetSigmaX, "0.2");
    UserClick(w.BtnApply);
    ASSERT_NE(SigmasOf(Job).StartOfEach, nullptr);
    EXPECT_EQ(SigmasOf(Job).StartOfEach->Of[1][3], 0.4);
    UserSetText(w.TextStartSigmaX, "0.3");
    UserClick(w.BtnApply);
    EXPECT_EQ(SigmasOf(Job).StartOfEach, nullptr);
    EXPECT_EQ(SigmasOf(Job).Start, (SideAccuracy{0.3, 0, 0}));
}

TEST_F(ReliabilityWindow, LevelsChangeTheTests) {
    Calculate();
    Open();
    FormReliability& w = Reliability;
    const double before = w.Shown->CriticalValue;
    UserSetText(w.TextAlpha, "0.05");
    EXPECT_EQ(w.Shown->Levels.AlphaSingle, 0.05);
    EXPECT_EQ(w.Shown->Levels.AlphaGlobal, 0.05);
    EXPECT_LT(w.Shown->CriticalValue, before);
    UserSetText(w.TextPower, "0.9");
    EXPECT_EQ(w.Shown->Levels.Power, 0.9);
    UserSetText(w.TextConfidence, "0.99");
    EXPECT_EQ(w.Shown->Levels.Confidence, 0.99);
    for (const char* wrong : {"1", "0", "-0.5", "x", ""}) {
        UserSetText(w.TextConfidence, wrong);
        EXPECT_NE(w.TextConfidence.BackColor, kSystemColour) << wrong;
        EXPECT_EQ(w.Shown->Levels.Confidence, TestLevels{}.Confidence);
    }
    UserSetText(w.TextAlpha, "");
    EXPECT_EQ(w.TextAlpha.BackColor, kSystemColour);
    EXPECT_EQ(w.Shown->Levels.AlphaSingle, 0.001);
}

TEST_F(ReliabilityWindow, ADoubleClickTakesACoordinateOutAndIn) {
    Calculate();
    Open();
    FormReliability& w = Reliability;
    const double before = Job.TraX;
    // Without automatic calculation the verdict says what comes.
    ASSERT_TRUE(UserDblClickCell(w.GridPoints, RowOf("C", "x"), kRelVerdict));
    EXPECT_FALSE(Used(3, 1));
    EXPECT_EQ(Cell(w.GridPoints, RowOf("C", "x"), kRelVerdict), "out from the next calculation");
    EXPECT_EQ(Job.TraX, before);
    ASSERT_TRUE(UserDblClickCell(w.GridPoints, RowOf("C", "x"), kRelVerdict));
    EXPECT_TRUE(Used(3, 1));
    EXPECT_EQ(Cell(w.GridPoints, RowOf("C", "x"), kRelVerdict), "ok");
    // With it the fit follows: the mean of the other three.
    Job.AutoRecalc = kTrue;
    ASSERT_TRUE(UserDblClickCell(w.GridPoints, RowOf("C", "x"), kRelVerdict));
    EXPECT_NEAR(Job.TraX, 1 + (0.1 - 0.1 - 0.3) / 3, 1e-9);
    EXPECT_EQ(Cell(w.GridPoints, RowOf("C", "x"), kRelVerdict), "out of use");
    ASSERT_TRUE(UserDblClickCell(w.GridPoints, RowOf("C", "x"), kRelVerdict));
    EXPECT_NEAR(Job.TraX, 1, 1e-9);
}

TEST_F(ReliabilityWindow, SnoopsAndTakesItBack) {
    Job.Target.X[2] = 1003.0;  // two millimetres off
    Calculate();
    Open();
    FormReliability& w = Reliability;
    Sigmas({"", "", "", "0.25", "0.25", "0.25"});
    EXPECT_EQ(Cell(w.GridPoints, 1, kRelPoint), "B");
    EXPECT_EQ(Cell(w.GridPoints, 1, kRelVerdict), "outlier");
    EXPECT_NE(CellBackColor(w.GridPoints.Grid, 1, kRelVerdict), kSystemColour);
    EXPECT_FALSE(w.BtnSnoopBack.Enabled);
    UserClick(w.BtnSnoop);
    EXPECT_FALSE(Used(2, 1));
    EXPECT_EQ(std::count(Job.UseFlags.begin() + 1, Job.UseFlags.end(), 0), 1);
    EXPECT_EQ(Cell(w.GridPoints, RowOf("B", "x"), kRelVerdict), "would not fit");
    EXPECT_NE(w.LabelGlobalTest.Text.find("passed"), std::string::npos);
    ASSERT_TRUE(w.BtnSnoopBack.Enabled);
    UserClick(w.BtnSnoopBack);
    EXPECT_TRUE(Used(2, 1));
    EXPECT_EQ(Cell(w.GridPoints, RowOf("B", "x"), kRelVerdict), "outlier");
    EXPECT_FALSE(w.BtnSnoopBack.Enabled);
    // Nothing to find.
    Job.Target.X[2] = 1000.9;
    Calculate();
    UserClick(w.BtnSnoop);
    EXPECT_NE(LastMessage().find("No coordinate"), std::string::npos);
}

TEST_F(ReliabilityWindow, CopiesAllTables) {
    Calculate();
    Open();
    UserClick(Reliability.BtnCopy);
    const std::string& text = Headless.Clipboard;
    EXPECT_NE(text.find(Reliability.LabelGlobalTest.Text), std::string::npos);
    EXPECT_NE(text.find("Point\tAxis\tResidual"), std::string::npos);
    EXPECT_NE(text.find("Correlation\t"), std::string::npos);
    EXPECT_NE(text.find("sigma x\tsigma y"), std::string::npos);
}

TEST_F(ReliabilityWindow, SaysWhyThereIsNothing) {
    Open();
    Job.NormType = 1;
    Calculate();
    EXPECT_NE(Reliability.LabelGlobalTest.Text.find("L2"), std::string::npos)
        << Reliability.LabelGlobalTest.Text;
    Job.NormType = 0;
    // One point of which three shifts are told: no redundancy.
    for (std::size_t i = 4; i < Job.UseFlags.size(); ++i) Job.UseFlags[i] = 0;
    Calculate();
    EXPECT_NE(Reliability.LabelGlobalTest.Text.find("redundancy is 0"), std::string::npos);
}

TEST_F(ReliabilityWindow, TheInputStatisticTellsTheSigmas) {
    UserClick(Main.MenüViewInputStatistic);
    EXPECT_EQ(InputStatistic.TextSigmaStart.Text, "none given");
    Calculate();
    Open();
    Sigmas({"0.06", "0.08", "0.1", "", "", ""});
    EXPECT_EQ(InputStatistic.TextSigmaStart.Text, "0.06, 0.08, 0.1");
    EXPECT_EQ(InputStatistic.TextSigmaTarget.Text, "free of errors");
    EXPECT_NE(InputStatistic.LabelSigmaStart.Text.find(Job.NameMCS), std::string::npos);
}

// Shades grow with the size, whatever the sign, and stay light enough for dark text.
TEST(ReliabilityTables, CorrelationsAreShadedBySize) {
    EXPECT_EQ(CorrelationColour(0.1), kSystemColour);
    const auto green = [](double r) { return (CorrelationColour(r) >> 8) & 0xFF; };
    EXPECT_GT(green(0.4), green(0.7));
    EXPECT_GT(green(0.7), green(1));
    EXPECT_EQ(CorrelationColour(-0.7), CorrelationColour(0.7));
    EXPECT_GE(green(1), 0x80);
}

// The errors of the points are those of kErrors, of which none is larger than 0.3.
TEST_F(ReliabilityWindow, ResidualsBeyondTheToleranceAreMarked) {
    Calculate();
    Open();
    PutTolerance(0.25, Job);
    Changed(What::Coordinates);
    int marked = 0;
    for (int row = 1; row < Reliability.GridPoints.Grid.Rows; ++row)
        if (CellBackColor(Reliability.GridPoints.Grid, row, kRelResidual) == kBeyondTolerance) {
            ++marked;
            EXPECT_NEAR(std::fabs(Number(Reliability.GridPoints, row, kRelResidual)), 0.3, 1e-6);
        }
    int expected = 0;
    for (const auto& point : kErrors)
        for (const double error : point) expected += std::fabs(error) > 0.25 ? 1 : 0;
    EXPECT_EQ(marked, expected);
    EXPECT_EQ(CellBackColor(Reliability.GridPoints.Grid, 1, kRelAxis), kSystemColour);
}
