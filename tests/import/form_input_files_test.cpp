// The input dialog by its controls: what is shown when, its buttons, and the import by ID.
#include <cmath>
#include <filesystem>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "import/input_dialog.h"
#include "import/matching.h"

using namespace corvinade;

// --- Opening ----------------------------------------------------------------------------------------------

TEST_F(InputDialog, OpensByTheMenuEntryWithItsStoredPlace) {
    UserClick(Main.MenuFileInputFiles);
    EXPECT_TRUE(IsLoaded("FormInputFiles"));
    EXPECT_EQ(InputFiles.Window.Place.Height, 10458);
    EXPECT_EQ(InputFiles.Window.Place.Width, 9540);
    EXPECT_EQ(InputFiles.Window.Place.Left, 100);
}

TEST_F(InputDialog, OpensOnIdentifyingByIdAndPrefix) {
    ShowWindow("FormInputFiles");
    EXPECT_EQ(InputFiles.OptionByID.Value, 1);
    EXPECT_EQ(InputFiles.OptionPrefix.Value, 1);
}

TEST_F(InputDialog, OffersMorePointsOnlyWithData) {
    ShowWindow("FormInputFiles");
    EXPECT_FALSE(InputFiles.FrameMoreMCS.Enabled);
    UnloadWindow("FormInputFiles");
    Import();
    ShowWindow("FormInputFiles");
    EXPECT_TRUE(InputFiles.FrameMoreMCS.Enabled);
}

TEST_F(InputDialog, TakesPathsAndNamesOfTheJob) {
    Job.PathMCS = "a.txt";
    Job.PathOCS = "b.txt";
    Job.NameMCS = "Tracker";
    ShowWindow("FormInputFiles");
    EXPECT_EQ(InputFiles.TextNameMCS.Text, "a.txt");
    EXPECT_EQ(InputFiles.TextNameOCS.Text, "b.txt");
    EXPECT_EQ(InputFiles.TextRenameMCS.Text, "Tracker");
    EXPECT_EQ(InputFiles.TextRenameOCS.Text, "OCS");
}

TEST_F(InputDialog, ListsTheSevenKindsAndTakesTheLastOneChosen) {
    Settings.LastDropDownInfoInOCS = 5;
    ShowWindow("FormInputFiles");
    const std::vector<std::string> kinds = {
        "Default - [Ptnr = optional], x, y z",
        "Kuka Robot file (*.dat) A = Rz, B = Ry', C = Rx''",
        "ABB Robot file (*.modx) x y z q1 q2 q3 q4",
        "Fanuc Robot file (*.ls) W = Rx, P = Ry', R = Rz''",
        "only coordinates and R-Angles x, y, z, A = Rz, B = Ry', C = Rx''",
        "only coordinates and quaternions x, y, z, q1, q2, q3, q4",
        "Paraboloid Shape Data"};
    EXPECT_EQ(InputFiles.ComboOCS_Data.Items, kinds);
    EXPECT_EQ(InputFiles.ComboOCS_Data.Index, 5);
    EXPECT_EQ(Job.IsQuaternion, kFalse) << "the dialog alone has chosen so far";
}

TEST_F(InputDialog, ShowsWhatBelongsToTheWayOfIdentifying) {
    ShowWindow("FormInputFiles");
    const FormInputFiles& w = InputFiles;
    EXPECT_FALSE(w.TextMaxOCS.Visible || w.LabelMaxOCS1.Visible || w.LabelMaxOCS2.Visible);
    EXPECT_FALSE(w.CheckRenameMCS.Visible || w.CheckRenameOCS.Visible);
    UserSetValue(InputFiles.OptionByDis, 1);
    EXPECT_TRUE(w.TextMaxOCS.Visible && w.LabelMaxOCS1.Visible && w.LabelMaxOCS2.Visible);
    EXPECT_FALSE(w.CheckRenameMCS.Visible || w.CheckRenameOCS.Visible);
    UserSetValue(InputFiles.OptionByCoordinate, 1);
    EXPECT_FALSE(w.TextMaxOCS.Visible || w.LabelMaxOCS1.Visible || w.LabelMaxOCS2.Visible);
    EXPECT_TRUE(w.CheckRenameMCS.Visible && w.CheckRenameOCS.Visible);
    UserSetValue(InputFiles.OptionByID, 1);
    EXPECT_FALSE(w.CheckRenameMCS.Visible || w.CheckRenameOCS.Visible);
    EXPECT_EQ(w.OptionByCoordinate.Value, 0);
}

TEST_F(InputDialog, UsingOnlyTheFirstPointsShowsHowMany) {
    ShowWindow("FormInputFiles");
    UserSetValue(InputFiles.OptionByDis, 1);
    UserSetValue(InputFiles.CheckUseOnlyFirst, 1);
    EXPECT_TRUE(InputFiles.TextMaxOCS.Visible);
    UserSetValue(InputFiles.CheckUseOnlyFirst, 0);
    EXPECT_FALSE(InputFiles.TextMaxOCS.Visible || InputFiles.LabelMaxOCS1.Visible ||
                 InputFiles.LabelMaxOCS2.Visible);
}

TEST_F(InputDialog, IsNeverSmallerThanItsFramesNeed) {
    IniWerteSchreiben({{"Window", "FormInputFilesHeight", "10"}, {"Window", "FormInputFilesWidth", "20"}});
    ShowWindow("FormInputFiles");
    EXPECT_EQ(InputFiles.Window.Place.Height, 350);
    EXPECT_EQ(InputFiles.Window.Place.Width, 650);
}

// --- The buttons ------------------------------------------------------------------------------------------

TEST_F(InputDialog, BrowsingBeginsInTheLastFolderAndFillsTheText) {
    Settings.LastMCSRoot = "/m";
    Settings.LastOCSRoot = "/o";
    ShowWindow("FormInputFiles");
    InputFiles.FrameMoreMCS.Enabled = true;
    Answer("open", "/x/1.txt");
    Answer("open", "/x/2.txt");
    Answer("open", "/x/3.txt");
    UserClick(InputFiles.BtnBrowseMCS);
    UserClick(InputFiles.ButtonBrowseOCS);
    UserClick(InputFiles.BtnBrowseMoreMCS);
    EXPECT_EQ(InputFiles.TextNameMCS.Text, "/x/1.txt");
    EXPECT_EQ(InputFiles.TextNameOCS.Text, "/x/2.txt");
    EXPECT_EQ(InputFiles.TextNameMoreMCS.Text, "/x/3.txt");
    ASSERT_EQ(Headless.Dialogs.size(), 3u);
    EXPECT_EQ(Headless.Dialogs[0].Text, "/m");
    EXPECT_EQ(Headless.Dialogs[1].Text, "/o");
}

TEST_F(InputDialog, CancelledBrowsingLeavesTheText) {
    Open();
    Answer("open", std::nullopt);
    UserClick(InputFiles.BtnBrowseMCS);
    EXPECT_EQ(InputFiles.TextNameMCS.Text, start_);
}

TEST_F(InputDialog, EditOpensTheFileInTheConfiguredProgram) {
    Settings.Editor = "/usr/bin/gedit";
    Open();
    UserClick(InputFiles.BtnEditMCS);
    UserClick(InputFiles.BtnEditOCS);
    ASSERT_EQ(Headless.Shell.size(), 2u);
    EXPECT_EQ(Headless.Shell[0].Verb, "/usr/bin/gedit");
    EXPECT_EQ(Headless.Shell[0].Path, start_);
    EXPECT_EQ(Headless.Shell[1].Path, target_);
}

TEST_F(InputDialog, ExploreShowsTheFilesFolder) {
    Open();
    UserClick(InputFiles.BtnExploreMCS);
    UserClick(InputFiles.BtnExploreOCS);
    ASSERT_EQ(Headless.Shell.size(), 2u);
    EXPECT_EQ(Headless.Shell[0].Verb, "explore");
    EXPECT_EQ(Headless.Shell[0].Path, folder_);
}

TEST_F(InputDialog, ClipboardTextBecomesAFileWithoutAFurtherLineEnd) {
    Headless.Clipboard = "A;1;2;3\r\nB;4;5;6";
    ShowWindow("FormInputFiles");
    UserClick(InputFiles.BtnMCSfromClip);
    EXPECT_EQ(InputFiles.TextNameMCS.Text, folder_ + "/settings/Corvinade/mcs.txt");
    EXPECT_EQ(Contents(InputFiles.TextNameMCS.Text), Headless.Clipboard);
    UserClick(InputFiles.BtnOCSfromClip);
    EXPECT_EQ(InputFiles.TextNameOCS.Text, folder_ + "/settings/Corvinade/ocs.txt");
}

TEST_F(InputDialog, CancelAndEscapeCloseWithoutEffect) {
    const std::string path = Job.PathMCS;
    Open();
    UserClick(InputFiles.BtnCancel);
    EXPECT_FALSE(IsLoaded("FormInputFiles"));
    Open();
    UserEscape(FormInputFiles_Entry);
    EXPECT_FALSE(IsLoaded("FormInputFiles"));
    EXPECT_EQ(Job.PathMCS, path);
    EXPECT_EQ(Run.JobDataValid, kFalse);
}

TEST_F(InputDialog, ReadsTheSpecialBlocks) {
    const std::string block = "x\nx\nr 1 2 3\nr 4 5 6\nr 7 8 9.5\nx\nx\n";
    start_ = Write("blocks.txt", "head\n" + block + block + "tail\n");
    Open();
    UserClick(InputFiles.BtnSpezial);
    ASSERT_EQ(Spezial.Blocks.size(), 3u);
    EXPECT_EQ(Spezial.Blocks[1](1, 1), 1);
    EXPECT_EQ(Spezial.Blocks[2](2, 3), 6);
    EXPECT_EQ(Spezial.Blocks[2](3, 3), 9.5);
}

TEST_F(InputDialog, SpecialBlocksThatHoldNoNumberAreRefusedWithTheirLine) {
    start_ = Write("blocks.txt", "head\nx\nx\nr 1 2 3\nr 4 five 6\nr 7 8 9\nx\nx\ntail\n");
    Open();
    UserClick(InputFiles.BtnSpezial);
    EXPECT_NE(LastMessage().find("line 5"), std::string::npos) << LastMessage();
    EXPECT_NE(LastMessage().find("five"), std::string::npos);
    EXPECT_EQ(Spezial.Blocks.size(), 1u);
}

TEST_F(InputDialog, ABundleFileIsReadInPlaceOfPointsAndForgotten) {
    Answer("open", PathOf("net.txt"));
    Open();
    UserClick(InputFiles.Command2);
    EXPECT_EQ(InputFiles.BundleFile, PathOf("net.txt"));
    UserClick(InputFiles.BtnApply);
    EXPECT_EQ(InputFiles.BundleFile, "");
    EXPECT_EQ(Run.JobDataValid, kFalse);
}

// --- The import by ID -------------------------------------------------------------------------------------

TEST_F(InputDialog, ImportsByIdAndBringsThePairsToTheFront) {
    Import();
    EXPECT_FALSE(IsLoaded("FormInputFiles"));
    EXPECT_EQ(Messages(), std::vector<std::string>{});
    EXPECT_EQ(Job.Start.Count(), 5);
    EXPECT_EQ(Job.Target.Count(), 5);
    EXPECT_EQ(Job.Pairs(), 4);
    EXPECT_EQ(Job.StartOnly(), 1);
    EXPECT_EQ(Job.TargetOnly(), 1);
    EXPECT_EQ(Names(Job.Start.Name), (std::vector<std::string>{"A", "B", "C", "D", "E"}));
    EXPECT_EQ(Names(Job.Target.Name), (std::vector<std::string>{"A", "B", "C", "D", "F"}));
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Run.JobDirty, kTrue);
    EXPECT_TRUE(Main.MenuTransformation.Enabled);
    EXPECT_TRUE(JobIsWhole(Job));
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(InputDialog, FillsTheWorkingSetWithTheStartPoints) {
    Import();
    EXPECT_EQ(Job.Transformed.Name, Job.Start.Name);
    EXPECT_EQ(Job.Transformed.X, Job.Start.X);
    EXPECT_EQ(Job.Transformed.Y, Job.Start.Y);
    EXPECT_EQ(Job.Transformed.Z, Job.Start.Z);
    EXPECT_EQ(Job.UseFlags.size(), 13u);
}

TEST_F(InputDialog, ElementZeroStaysEmptyThroughAnImport) {
    Import();
    EXPECT_EQ(Job.Start.Name[0], "");
    EXPECT_FALSE(Job.Start.X[0] || Job.Start.Y[0] || Job.Target.X[0] || Job.Target.Y[0] ||
                 Job.Transformed.X[0]);
    EXPECT_EQ(Job.Start.Z[0], 0);
}

TEST_F(InputDialog, WithoutPairsTheJobIsValidAndTheWorkingSetIsTheCopy) {
    target_ = Write("other.txt", "X;1;2;3\r\nY;4;5;6\r\n");
    Import();
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Job.Transformed.X, Job.Start.X);
    EXPECT_EQ(Job.UseFlags.size(), 1u);
}

TEST_F(InputDialog, ApplyLeavesTheDialogOpen) {
    Open();
    UserClick(InputFiles.BtnApply);
    EXPECT_TRUE(IsLoaded("FormInputFiles"));
    EXPECT_EQ(Job.Pairs(), 4);
    EXPECT_TRUE(InputFiles.FrameMoreMCS.Enabled) << "now there are points to add to";
}

TEST_F(InputDialog, TheSameFileTwiceMakesAllPointsIdentical) {
    target_ = start_;
    Import();
    EXPECT_EQ(Job.Pairs(), 5);
    EXPECT_EQ(Job.Start.X, Job.Target.X);
}

TEST_F(InputDialog, AMissingFileIsNamedAndNothingElseHappens) {
    start_ = PathOf("absent.txt");
    Open();
    UserClick(InputFiles.BtnApply);
    EXPECT_EQ(Messages(), std::vector<std::string>{"\r\n\r\n" + start_ + "\r\n\r\n is not existing"});
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Run.WaitPointers, 0);

    start_ = Write("start.txt", kStart);
    target_ = PathOf("gone.txt");
    Open();
    UserSetText(InputFiles.TextNameMCS, start_);
    UserSetText(InputFiles.TextNameOCS, target_);
    UserClick(InputFiles.BtnApply);
    EXPECT_EQ(LastMessage(), "\r\n\r\n" + target_ + "\r\n\r\n is not existing");
}

TEST_F(InputDialog, AFolderInPlaceOfAFileIsNoFile) {
    start_ = folder_;
    Import();
    EXPECT_EQ(LastMessage(), "\r\n\r\n" + folder_ + "\r\n\r\n is not existing");
}

TEST_F(InputDialog, AnEmptyPathIsNoFile) {
    start_ = "";
    Import();
    EXPECT_EQ(LastMessage(), "\r\n\r\n\r\n\r\n is not existing");
}

TEST_F(InputDialog, DoubleNamesStopTheImportAndLeaveNoValidJob) {
    start_ = Write("double.txt", "A;1;1;1\r\nA;2;2;2\r\nB;3;3;3\r\n");
    Import();
    EXPECT_EQ(LastMessage(),
              "There might be a double Pointnumber in the MCS File. \r\nPlease check Point Number A");
    EXPECT_EQ(Run.ImportFailed, kTrue);
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(InputDialog, WritesNamesFoldersPathsAndKindToTheSettings) {
    Open();
    UserSetText(InputFiles.TextRenameMCS, "Tracker");
    UserSetText(InputFiles.TextRenameOCS, "Zelle 3");
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(Job.NameMCS, "Tracker");
    EXPECT_EQ(IniWertLesen("NameMCS"), "Tracker");
    EXPECT_EQ(IniWertLesen("NameOCS"), "Zelle 3");
    EXPECT_EQ(IniWertLesen("LastMCSRoot"), folder_);
    EXPECT_EQ(IniWertLesen("LastOCSRoot"), folder_);
    EXPECT_EQ(IniWertLesen("MCS_FileName"), start_);
    EXPECT_EQ(IniWertLesen("OCS_FileName"), target_);
    EXPECT_EQ(IniWertLesen("LastDropDownInfoInOCS"), "0");
}

TEST_F(InputDialog, PointsAreReadInTheChosenUnit) {
    Job.LengthUnitName = "inch";
    RhoFestlegung();
    Import();
    EXPECT_DOUBLE_EQ(*Job.Start.X[2], 2540);
    EXPECT_DOUBLE_EQ(*Job.Target.Y[3], 206 * 25.4);
}

// --- Replacing points -------------------------------------------------------------------------------------

TEST_F(InputDialog, AsksBeforeItReplacesPoints) {
    Import();
    start_ = Write("start2.txt", "A;1;1;1\r\n");
    Answer("message", "Yes");
    Import();
    ASSERT_EQ(Headless.Dialogs.size(), 1u);
    EXPECT_EQ(Headless.Dialogs[0].Title, "Overwrite old Points?");
    EXPECT_EQ(Headless.Dialogs[0].Text,
              "This will not add points, it will delete the old imported Points and import the new Points");
    EXPECT_EQ(Headless.Dialogs[0].Buttons, (std::vector<std::string>{"Yes", "No"}));
    EXPECT_EQ(Job.Start.Count(), 1);
}

TEST_F(InputDialog, NoLeavesTheJobItsPathsAndItsNamesAlone) {
    Import();
    const std::vector<std::string> names = Job.Start.Name;
    const std::string oldStart = Job.PathMCS;
    start_ = Write("start2.txt", "A;1;1;1\r\n");
    Answer("message", "No");
    Open();
    UserSetText(InputFiles.TextRenameMCS, "Other");
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(Job.Start.Name, names);
    EXPECT_EQ(Job.PathMCS, oldStart);
    EXPECT_EQ(Job.NameMCS, "MCS");
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Run.WaitPointers, 0);
}

TEST_F(InputDialog, AsksEachTimeAlsoOnTheSameData) {
    Open();
    UserClick(InputFiles.BtnApply);
    Answer("message", "Yes");
    UserClick(InputFiles.BtnApply);
    Answer("message", "Yes");
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(Headless.Dialogs.size(), 2u);
    EXPECT_EQ(Job.Pairs(), 4);
}

TEST_F(InputDialog, AFailedImportOverAValidJobLeavesNoValidJobBehind) {
    Import();
    start_ = Write("bad.txt", "A;1;1;1\r\nB;two;2;2\r\n");
    Answer("message", "Yes");
    Import();
    EXPECT_NE(LastMessage().find("line 2"), std::string::npos) << LastMessage();
    EXPECT_NE(LastMessage().find("two"), std::string::npos);
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_TRUE(JobIsWhole(Job));
    EXPECT_EQ(Run.WaitPointers, 0);
    EXPECT_EQ(Contents(start_), "A;1;1;1\r\nB;two;2;2\r\n");
}

TEST_F(InputDialog, NewPointsTakeTheMarksOfTheResultBeforeOff) {
    Import();
    Job.Unconverged = Job.Collapsed = kTrue;
    Job.LeftOpen[kRotX] = 1;
    start_ = PathOf("missing.txt");
    Answer("message", "Yes");
    Import();
    EXPECT_EQ(Job.LeftOpen[kRotX], 1) << "the import has failed";
    start_ = Write("new.txt", kStart);
    Answer("message", "Yes");
    Import();
    EXPECT_EQ(Job.LeftOpen, JobRecord{}.LeftOpen);
    EXPECT_EQ(Job.Collapsed, kFalse);
    EXPECT_EQ(Job.Unconverged, kFalse);
}

// --- A file that cannot be read ---------------------------------------------------------------------------

TEST_F(InputDialog, AnImportThatFailsLeavesThePointsOfBeforeOnTheDesktop) {
    Import();
    ASSERT_EQ(Job.Pairs(), 4);
    const std::vector<std::string> names = Names(Job.Start.Name);
    for (const bool keeps : {true, false}) {
        DesktopDefaults.FailedImport = keeps;
        start_ = Write("broken.txt", "A;0;0;0\r\nB;100;x;0\r\n");
        target_ = Write("broken_too.txt", "A;0;0;0\r\nB;1\r\n");
        Answer("message", "Yes");
        Import();
        UnloadWindow("FormInputFiles");
        EXPECT_EQ(Job.Pairs() == 4 && Names(Job.Start.Name) == names, keeps);
        EXPECT_EQ(IsTrue(Run.JobDataValid), keeps);
    }
}

TEST_F(InputDialog, StaysOpenBehindAnImportThatFailsOnTheDesktop) {
    for (const bool keeps : {true, false}) {
        DesktopDefaults.FailedImport = keeps;
        target_ = Write("doubles.txt", "A;0;0;0\r\nB;1;0;0\r\nA;2;0;0\r\n");
        Import();
        EXPECT_EQ(Job.Pairs(), 0);
        ASSERT_EQ(IsLoaded("FormInputFiles"), keeps);
        if (!keeps) continue;
        EXPECT_EQ(InputFiles.TextNameOCS.Text, target_);
        UnloadWindow("FormInputFiles");
    }
}
