// The window of the distance scale by its controls.
#include "analysis/form_distance_scale.h"

#include "analysis/distance_job.h"
#include "analysis/import_files.h"
#include "core/files.h"

using namespace corvinade;

namespace {

using DistanceScaleTable = DistanceJob;

TEST_F(DistanceScaleTable, NeedsTwoIdenticalPoints) {
    Pair("A", {0, 0, 0}, {0, 0, 0});
    Open();
    EXPECT_EQ(Messages(), Texts{"There are not enough identically Points for a calculation"});
    EXPECT_FALSE(IsLoaded("FormDistanceScale"));
}

TEST_F(DistanceScaleTable, HasTheHeadingsInTheirOrder) {
    Triangle();
    Open();
    EXPECT_EQ(Cells().Rows, 4);
    EXPECT_EQ(Row(0), (Texts{"Von Pkt", "max delta s", "bei Pkt", "min delta s", "bei Pkt", "max Scale ",
                             "bei Pkt", "min Scale", "bei Pkt", "Schnitt Abs(delta s)", "Schnitt Scale"}));
}

TEST_F(DistanceScaleTable, ShowsExtremesPartnersAndMeansOfEachPoint) {
    Triangle();
    Open();
    // Scales 6/5, 16/13 and 10/12.
    EXPECT_EQ(Row(1), (Texts{"A", "3.000", "C", "1.000", "B", "1.230769", "C", "1.200000", "B", "2.000",
                             "1.215385"}));
    EXPECT_EQ(Row(2), (Texts{"B", "1.000", "A", "-2.000", "C", "1.200000", "A", "0.833333", "C", "1.500",
                             "1.016667"}));
    EXPECT_EQ(Row(3), (Texts{"C", "3.000", "A", "-2.000", "B", "1.230769", "A", "0.833333", "B", "2.500",
                             "1.032051"}));
}

TEST_F(DistanceScaleTable, TwoPointsGiveOnePairAndMeansLikeTheSingleValues) {
    Pair("A", {0, 0, 0}, {0, 0, 0});
    Pair("B", {0, 0, 100}, {0, 99.5, 0});
    Open();
    EXPECT_EQ(Cells().Rows, 3);
    EXPECT_EQ(Row(1), (Texts{"A", "-0.500", "B", "-0.500", "B", "0.995000", "B", "0.995000", "B", "0.500",
                             "0.995000"}));
    EXPECT_EQ(Row(2), (Texts{"B", "-0.500", "A", "-0.500", "A", "0.995000", "A", "0.995000", "A", "0.500",
                             "0.995000"}));
}

TEST_F(DistanceScaleTable, LengthsStandInTheLengthUnitAndScalesDoNot) {
    Triangle();
    Open();
    Units.LengthFactor = 0.001;
    Units.FmtLength = "0.0000";
    EXPECT_EQ(Row(1), (Texts{"A", "0.0030", "C", "0.0010", "B", "1.230769", "C", "1.200000", "B", "0.0020",
                             "1.215385"}));
}

TEST_F(DistanceScaleTable, TheOptionsChooseBetweenRawAndTransformedStartPoints) {
    Pair("A", {0, 0, 0}, {0, 0, 0}, {0, 0, 0});
    Pair("B", {10, 0, 0}, {12, 0, 0}, {11, 0, 0});
    Open();
    EXPECT_EQ(DistanceScaleWindow.OptionWithoutCal.Value, 1);
    EXPECT_EQ(DistanceScale.WithCal, kFalse);
    EXPECT_EQ(Row(1)[1], "2.000");
    UserSetValue(DistanceScaleWindow.OptionWithCal, 1);
    EXPECT_EQ(DistanceScaleWindow.OptionWithoutCal.Value, 0);
    EXPECT_EQ(DistanceScale.WithCal, kTrue);
    EXPECT_EQ(Row(1)[1], "1.000");
    UserSetValue(DistanceScaleWindow.OptionWithoutCal, 1);
    EXPECT_EQ(DistanceScale.WithCal, kFalse);
    EXPECT_EQ(Row(1)[1], "2.000");
}

TEST_F(DistanceScaleTable, AHeadingSortsAndTheCopyFollows) {
    Triangle();
    Open();
    UserClickCell(DistanceScaleWindow.TabelleScale, 0, 9, false);
    EXPECT_EQ(Row(1)[0] + Row(2)[0] + Row(3)[0], "BAC");
    UserSelectCells(DistanceScaleWindow.TabelleScale, {1, 0, 2, 1});
    UserKey(DistanceScaleWindow.TabelleScale, "Ctrl+C");
    EXPECT_EQ(Headless.Clipboard, "B\t1.000\r\nA\t3.000");
    UserSetValue(DistanceScaleWindow.OptionWithCal, 1);
    EXPECT_EQ(Row(1)[0], "B") << "a new calculation is sorted as the one before";
}

TEST_F(DistanceScaleTable, ACopyThatTheClipboardRefusesIsTold) {
    Triangle();
    Open();
    Headless.ClipboardRefuses = true;
    UserKey(DistanceScaleWindow.TabelleScale, "Ctrl+C");
    EXPECT_EQ(LastMessage(), kClipboardRefused);
}

TEST_F(DistanceScaleTable, AnImportWhileItIsOpenIsMeasuredAnew) {
    Triangle();
    Open();
    Headless.Answers["message"].push_back("Yes");
    ImportFiles(Write("s.txt", "K;0;0;0\nL;1;0;0\n"), Write("t.txt", "K;0;0;0\nL;1.25;0;0\n"));
    EXPECT_EQ(Cells().Rows, 3);
    EXPECT_EQ(Row(1)[0], "K");
    EXPECT_EQ(Row(1)[1], "0.250");
}

TEST_F(DistanceScaleTable, ACalculationWhileItIsOpenMovesTheTransformedPoints) {
    AddPairs(8);
    Open();
    UserSetValue(DistanceScaleWindow.OptionWithCal, 1);
    const double before = DistanceScale.Points->From[0][1];
    ShowWindow("FormTrafoBerechnung");
    Calculate();
    EXPECT_NE(DistanceScale.Points->From[0][1], before);
    EXPECT_EQ(DistanceScale.Points->From[0][1], Job.Transformed.X[1]);
}

TEST_F(DistanceScaleTable, ManyPointsShowProgressAndCancelLeavesNoPoints) {
    Cloud(3600);  // 8 steps a pair: more than the work that nobody waits for
    bool seen = false;
    Headless.OnYield = [&seen] {
        seen = IsLoaded("FormProgressBar");
        UserClick(Progress.BtnCancel);
    };
    Open();
    EXPECT_TRUE(seen);
    EXPECT_FALSE(IsLoaded("FormProgressBar"));
    EXPECT_EQ(Cells().Rows, 1);
    Headless.OnYield = nullptr;
    UserClick(DistanceScaleWindow.BtnSaveTrumpetData);
    UserClick(DistanceScaleWindow.BtnTrumpetGraph);
    EXPECT_EQ(Messages(), Texts(2, "There are not enough identically Points for a calculation"));
    UserSetValue(DistanceScaleWindow.OptionWithCal, 1);
    EXPECT_EQ(Cells().Rows, 3601);
}

TEST_F(DistanceScaleTable, ACancelEndsItsOwnWorkAlone) {
    Cloud(3600);
    Headless.OnYield = [] { UserClick(Progress.BtnCancel); };
    Open();
    EXPECT_EQ(Cells().Rows, 1);
    EXPECT_EQ(Run.StopRequested, kFalse) << "the next calculation is not stopped";
    Run.StopRequested = kTrue;  // of work that this one is done within
    Headless.OnYield = nullptr;
    UserSetValue(DistanceScaleWindow.OptionWithCal, 1);
    EXPECT_EQ(Cells().Rows, 3601);
    EXPECT_EQ(Run.StopRequested, kTrue);
}

TEST_F(DistanceScaleTable, AnOptionChosenDuringTheWorkIsTheOneThatStands) {
    Cloud(3600);
    for (std::size_t i = 1; i < Job.Transformed.X.size(); ++i) Job.Transformed.X[i] = 0;
    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        UserSetValue(DistanceScaleWindow.OptionWithCal, 1);
    };
    Open();
    EXPECT_EQ(Cells().Rows, 3601);
    EXPECT_EQ(DistanceScale.WithCal, kTrue);
    EXPECT_EQ(DistanceScale.Points->From[0][7], 0);
}

TEST_F(DistanceScaleTable, AWindowClosedDuringTheWorkStaysClosed) {
    Cloud(3600);
    Headless.OnYield = [] {
        Headless.OnYield = nullptr;
        UserClose(FormDistanceScale_Entry);
    };
    Open();
    EXPECT_FALSE(IsLoaded("FormDistanceScale"));
    EXPECT_FALSE(IsLoaded("FormProgressBar"));
}

TEST_F(DistanceScaleTable, TheFlagIsARecordOfTheRun) {
    const RecordEntry* record = FindRecord("WithCal");
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->Stored, Storage::Run);
}

TEST_F(DistanceScaleTable, EscapeAndOpeningAJobCloseIt) {
    Triangle();
    Open();
    UserEscape(FormDistanceScale_Entry);
    EXPECT_FALSE(IsLoaded("FormDistanceScale"));
    Open();
    EXPECT_EQ(Row(1)[0], "A");
    CloseAllChildForms();
    EXPECT_FALSE(IsLoaded("FormDistanceScale"));
}

}  // namespace
