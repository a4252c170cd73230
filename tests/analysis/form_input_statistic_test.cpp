// The input statistic by its controls: what it shows of an import, and when it is refilled.
#include "analysis/form_input_statistic.h"

#include <array>

#include "analysis/import_files.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/settings.h"
#include "core/units.h"
#include "import/robot_files.h"
#include "support/fixture.h"

using namespace corvinade;

class Statistic : public Program {
protected:
    Statistic() { StartUp(""); }

    static void Open() { ASSERT_TRUE(UserClick(Main.MenüViewInputStatistic)); }
    void Import(const std::string& start, const std::string& target) const {
        ImportFiles(Write("start.txt", start), Write("target.txt", target));
    }
    // Makes the job one of a kind of target file, by its entry in the input dialog, the first being 0.
    static void ChooseKind(int entry) {
        for (const InputKind& kind : InputKinds()) *kind.IsKind = kFalse;
        *InputKinds()[static_cast<std::size_t>(entry)].IsKind = kTrue;
    }
    static std::vector<const Control*> Ranges() {
        return {&InputStatistic.TextRangeA, &InputStatistic.TextRangeB, &InputStatistic.TextRangeC};
    }
    static void ExpectNotInUse() {
        for (const Control* range : Ranges()) {
            EXPECT_EQ(range->Text, "not in use");
            EXPECT_FALSE(range->Enabled);
        }
    }
    static void UseAngles(const char* unit, int digits) {
        Job.AngleUnitName = unit;
        Job.AngleDigits = static_cast<std::int16_t>(digits);
        RhoFestlegung();
    }
};

namespace {

constexpr double kRadPerDegree = 3.14159265358979 / 180;
constexpr int kKuka = 1, kAbb = 2, kFanuc = 3, kAngles = 4, kQuaternions = 5, kParaboloid = 6;

const char* const kStart = "A;0;0;0\r\nB;100;0;0\r\nC;0;200;0\r\nD;0;0;300\r\nE;10;20;30\r\n";
const char* const kTarget = "A;5;6;7\r\nB;105;6;7\r\nC;5;206;7\r\nF;1;1;1\r\n";

}  // namespace

// --- What is shown ----------------------------------------------------------------------------------------

TEST_F(Statistic, OpensByTheMenuEntryWithItsStoredPlace) {
    Open();
    EXPECT_TRUE(IsLoaded("FormInputStatistic"));
    EXPECT_EQ(InputStatistic.Window.Place.Height, 6810);
    EXPECT_EQ(InputStatistic.Window.Place.Width, 6180);
    EXPECT_EQ(InputStatistic.Window.Place.Left, 100);
    EXPECT_EQ(InputStatistic.Window.Place.Top, 100);
}

TEST_F(Statistic, CountsWhatTheImportHasBrought) {
    Import(kStart, kTarget);
    Open();
    EXPECT_EQ(InputStatistic.Text1.Text, "5");
    EXPECT_EQ(InputStatistic.Text2.Text, "4");
    EXPECT_EQ(InputStatistic.Text3.Text, "3");
    EXPECT_EQ(InputStatistic.Text4.Text, "2");
    EXPECT_EQ(InputStatistic.Text5.Text, "1");
}

TEST_F(Statistic, NamesSystemsAndFiles) {
    Import(kStart, kTarget);
    Open();
    EXPECT_EQ(InputStatistic.Label1.Text, "MCS - Points in Tracker File");
    EXPECT_EQ(InputStatistic.Label2.Text, "OCS - Points in CAD File");
    EXPECT_EQ(InputStatistic.Label3.Text, "Identically Points (In both Files)");
    EXPECT_EQ(InputStatistic.Label4.Text, "MCS only - Points only in Tracker");
    EXPECT_EQ(InputStatistic.Label5.Text, "OCS only - Points only in CAD");
    EXPECT_EQ(InputStatistic.Label6.Text, "Tracker Filename");
    EXPECT_EQ(InputStatistic.Label7.Text, "CAD Filename");
    EXPECT_EQ(InputStatistic.Text6.Text, PathOf("start.txt"));
    EXPECT_EQ(InputStatistic.Text7.Text, PathOf("target.txt"));
}

TEST_F(Statistic, WithoutDataAllCountsAreZero) {
    Open();
    for (const Control* count : {&InputStatistic.Text1, &InputStatistic.Text2, &InputStatistic.Text3,
                                 &InputStatistic.Text4, &InputStatistic.Text5})
        EXPECT_EQ(count->Text, "0");
    EXPECT_EQ(InputStatistic.Label6.Text, " Filename");
    ExpectNotInUse();
}

TEST_F(Statistic, CanBeReadAndNotTypedInto) {
    Open();
    for (const ControlEntry& entry : FormInputStatistic_Entry.Controls)
        EXPECT_EQ(entry.Place->Locked, entry.Place->Kind == ControlKind::Text) << entry.Name;
}

// --- The ranges of the angles -----------------------------------------------------------------------------

TEST_F(Statistic, KukaAndQuaternionFilesHaveRanges) {
    UseAngles("degree", 2);
    Run.SpanA = 90 * kRadPerDegree;
    Run.SpanB = 12.25 * kRadPerDegree;
    Run.SpanC = 0;
    for (const int kind : {kKuka, kQuaternions}) {
        ChooseKind(kind);
        Open();
        EXPECT_EQ(InputStatistic.FrameABCRange.Text, "ABC Range in degree");
        EXPECT_EQ(InputStatistic.TextRangeA.Text, "90.00");
        EXPECT_EQ(InputStatistic.TextRangeB.Text, "12.25");
        EXPECT_EQ(InputStatistic.TextRangeC.Text, "0.00");
        for (const Control* range : Ranges()) EXPECT_TRUE(range->Enabled);
        UserEscape(FormInputStatistic_Entry);
    }
}

TEST_F(Statistic, RangesStandInTheAngleUnit) {
    Run.SpanA = 3.14159265358979 / 2;
    Run.SpanB = 3.14159265358979 / 4;
    ChooseKind(kKuka);
    const std::vector<std::array<std::string, 3>> shown = {{"degree", "90.0", "45.0"},
                                                           {"grad (gon)", "100.0", "50.0"},
                                                           {"rad", "1.6", "0.8"},
                                                           {"mrad", "1570.8", "785.4"},
                                                           {"arcsecond", "324000.0", "162000.0"},
                                                           {"arcminute", "5400.0", "2700.0"},
                                                           {"360°60'60''", "90 0 0.0", "45 0 0.0"}};
    for (const auto& [unit, a, b] : shown) {
        UseAngles(unit.c_str(), 1);
        Open();
        EXPECT_EQ(InputStatistic.FrameABCRange.Text, "ABC Range in " + unit);
        EXPECT_EQ(InputStatistic.TextRangeA.Text, a) << unit;
        EXPECT_EQ(InputStatistic.TextRangeB.Text, b) << unit;
        UserEscape(FormInputStatistic_Entry);
    }
}

TEST_F(Statistic, AFanucFileShowsNoRangesThoughItHasSpans) {
    Run.SpanA = Run.SpanB = Run.SpanC = 1;
    ChooseKind(kFanuc);
    EXPECT_EQ(Run.IsFanuc, kTrue);
    Open();
    ExpectNotInUse();
    EXPECT_EQ(Run.SpanA, 1);
}

TEST_F(Statistic, TheOtherKindsShowNoRanges) {
    Run.SpanA = Run.SpanB = Run.SpanC = 1;
    for (const int kind : {0, kAbb, kAngles, kParaboloid}) {
        ChooseKind(kind);
        Open();
        ExpectNotInUse();
        UserEscape(FormInputStatistic_Entry);
    }
}

TEST_F(Statistic, WithoutRangesTheirTitleStaysAsItIs) {
    Open();
    const std::string title = InputStatistic.FrameABCRange.Text;
    EXPECT_EQ(title.find(" in "), std::string::npos) << "no unit has been named yet";
    Job.IsKuka = kTrue;
    FORMfüllen();
    EXPECT_EQ(InputStatistic.FrameABCRange.Text, "ABC Range in degree");
    Job.IsKuka = kFalse;
    FORMfüllen();
    EXPECT_EQ(InputStatistic.FrameABCRange.Text, "ABC Range in degree");
    ExpectNotInUse();
}

// --- Refilling --------------------------------------------------------------------------------------------

TEST_F(Statistic, FollowsAnImportWhileItIsOpen) {
    Open();
    Import(kStart, kTarget);
    EXPECT_EQ(InputStatistic.Text1.Text, "5");
    EXPECT_EQ(InputStatistic.Text3.Text, "3");
    EXPECT_EQ(InputStatistic.Label1.Text, "MCS - Points in Tracker File");
    EXPECT_EQ(InputStatistic.Text7.Text, PathOf("target.txt"));
}

TEST_F(Statistic, FollowsFurtherPointsWhileItIsOpen) {
    Import(kStart, kTarget);
    UnloadWindow("FormInputFiles");
    Open();
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMoreMCS, Write("more.txt", "M1;1;2;3\r\nM2;4;5;6\r\n"));
    UserClick(InputFiles.BtnImportMoreMCS);
    EXPECT_EQ(Job.Start.Count(), 7);
    EXPECT_EQ(InputStatistic.Text1.Text, "7");
    EXPECT_EQ(InputStatistic.Text4.Text, "4");
}

TEST_F(Statistic, AnImportWithoutTheWindowOpensNone) {
    Import(kStart, kTarget);
    EXPECT_FALSE(IsLoaded("FormInputStatistic"));
    EXPECT_EQ(InputStatistic.Text1.Text, "");
}

TEST_F(Statistic, RefillingLoadsTheStoredPlaceAgain) {
    Open();
    InputStatistic.Window.Place = {21, 22, 23, 24};
    FORMfüllen();
    EXPECT_EQ(InputStatistic.Window.Place.Left, 100);
    EXPECT_EQ(InputStatistic.Window.Place.Height, 6810);
}

TEST_F(Statistic, EscapeAndTheCrossCloseItAndItsPlaceIsKept) {
    Open();
    InputStatistic.Window.Place = {21, 22, 23, 24};
    UserEscape(FormInputStatistic_Entry);
    EXPECT_FALSE(IsLoaded("FormInputStatistic"));
    Open();
    EXPECT_EQ(InputStatistic.Window.Place.Left, 21);
    EXPECT_EQ(InputStatistic.Window.Place.Height, 24);
    UserClose(FormInputStatistic_Entry);
    EXPECT_FALSE(IsLoaded("FormInputStatistic"));
    EXPECT_EQ(Run.JobDirty, kFalse);
}

// --- What to do next --------------------------------------------------------------------------------------

TEST_F(Statistic, ScriptsSeeNothingOfTheNextStep) {
    Import(kStart, kTarget);
    Open();
    for (const Control* control :
         {&InputStatistic.LabelNext, &InputStatistic.BtnNextPairs, &InputStatistic.BtnNextCalculation})
        EXPECT_FALSE(control->Visible);
}

TEST_F(Statistic, LeadsToThePairsAndToTheCalculation) {
    DesktopDefaults.AfterImport = true;
    Import(kStart, kTarget);
    UnloadWindow("FormInputFiles");
    ASSERT_TRUE(IsLoaded("FormInputStatistic"));
    EXPECT_TRUE(IsLoaded("FormMainSheet"));
    EXPECT_NE(InputStatistic.LabelNext.Text.find("calculate"), std::string::npos);
    UnloadWindow("FormMainSheet");
    UserClick(InputStatistic.BtnNextPairs);
    EXPECT_TRUE(IsLoaded("FormMainSheet"));
    UserClick(InputStatistic.BtnNextCalculation);
    EXPECT_TRUE(IsLoaded("FormTrafoBerechnung"));
    UserClick(InputStatistic.BtnNextCalculation);
    EXPECT_TRUE(IsLoaded("FormTrafoBerechnung")) << "a second time brings it to the front";
}

TEST_F(Statistic, SaysThatTheNamesMayDifferWhereNoPointHasAPartner) {
    DesktopDefaults.AfterImport = true;
    Import(kStart, "Q1;1;2;3\r\nQ2;4;5;6\r\nQ3;7;8;1\r\n");
    ASSERT_TRUE(IsLoaded("FormInputStatistic"));
    EXPECT_NE(InputStatistic.LabelNext.Text.find("names"), std::string::npos);
    EXPECT_FALSE(InputStatistic.BtnNextCalculation.Enabled);
}
