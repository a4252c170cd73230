// The input dialog: pairing by coordinate and by distance, further points, full disks, and the round trip
// through the clipboard.
#include <cmath>
#include <filesystem>

#include "cli/headless.h"
#include "core/controller.h"
#include "core/files.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/form_trafo_berechnung.h"
#include "import/input_dialog.h"
#include "import/matching.h"

using namespace corvinade;

// --- By coordinate and by distance ------------------------------------------------------------------------

TEST_F(InputDialog, ByCoordinateAsksForTheToleranceWithItsText) {
    target_ = Write("near.txt", "p;0.1;0;0\r\nq;100;0.2;0\r\nr;0;200;5\r\n");
    Open();
    UserSetValue(InputFiles.OptionByCoordinate, 1);
    Answer("input", "0.5");
    UserClick(InputFiles.BtnOK);
    ASSERT_FALSE(Headless.Dialogs.empty());
    EXPECT_EQ(Headless.Dialogs[0].Title, "Etta Value");
    EXPECT_EQ(Headless.Dialogs[0].Default, "0.8");
    EXPECT_EQ(Headless.Dialogs[0].Text,
              CrLf("Identify by coordinate comparison works by comparison\n"
                   "of the coordinates in both datasets MCS and OCS WITHOUT\n"
                   "any transformation. It works quick and easy.\n"
                   "\n"
                   "It does not work when MCS and OCS do have significant transformation parameters to each "
                   "other.\n"
                   "\n"
                   "\n"
                   "The accuracy of your Coordinates beetween Start- and Targetsystem is needed to sepperate "
                   "the Data\n"
                   "If you set it too small, maybe no identically point will be detected.\n"
                   "If you set it too big, maybe points will be detected as identically but they are not.\n"
                   "\n"));
    EXPECT_EQ(Job.Pairs(), 2);
    EXPECT_EQ(Job.Start.Name[1], "MCS_A=OCS_p");
    EXPECT_EQ(Job.Target.Name[2], "MCS_B=OCS_q");
    EXPECT_EQ(Job.Start.Name[3].substr(0, 4), "MCS_");
}

TEST_F(InputDialog, AToleranceOfZeroIsAskedForAgain) {
    Open();
    UserSetValue(InputFiles.OptionByCoordinate, 1);
    Answer("input", "0");
    Answer("input", "20");
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(Headless.Dialogs.size(), 2u);
    EXPECT_EQ(Job.Pairs(), 4);
}

TEST_F(InputDialog, WithoutAToleranceTheImportEndsWithoutMatching) {
    for (const auto& nothing : {std::optional<std::string>(""), std::optional<std::string>()}) {
        Open();
        UserSetValue(InputFiles.OptionByCoordinate, 1);
        Answer("input", nothing);
        UserClick(InputFiles.BtnOK);
        EXPECT_EQ(Run.JobDataValid, kFalse);
        EXPECT_EQ(Job.Pairs(), 0);
        EXPECT_EQ(Run.WaitPointers, 0);
        EXPECT_TRUE(JobIsWhole(Job));
    }
}

TEST_F(InputDialog, ByCoordinateUsesTheParametersInMemoryButNoScale) {
    Job.TraX = 5;
    Job.TraY = 6;
    Job.TraZ = 7;
    Job.ScaleX = Job.ScaleY = Job.ScaleZ = 2;
    Open();
    UserSetValue(InputFiles.OptionByCoordinate, 1);
    Answer("input", "0.01");
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(Job.Pairs(), 4);
    EXPECT_EQ(Job.ScaleX, 1);
}

TEST_F(InputDialog, RenamingTheStartPointsRewritesTheirFileAndKeepsTheOldOne) {
    target_ = Write("near.txt", "p;0;0;0\r\nq;100;0;0\r\n");
    for (const char* backups : {".$", ".$.$"}) {
        const std::string before = Contents(start_);
        Open();
        UserSetValue(InputFiles.OptionByCoordinate, 1);
        UserSetValue(InputFiles.CheckRenameMCS, 1);
        Answer("input", "0.5");
        if (IsTrue(Run.JobDataValid)) Answer("message", "Yes");
        UserClick(InputFiles.BtnOK);
        EXPECT_EQ(Contents(start_ + backups), before);
        EXPECT_EQ(Contents(start_), "p;0;0;0\r\nq;100;0;0\r\nC;0;200;0\r\nD;0;0;300\r\nE;10;20;30\r\n");
    }
    EXPECT_EQ(Job.Start.Name[1], "p");
    EXPECT_EQ(Job.Pairs(), 2);
}

TEST_F(InputDialog, AStopDuringTheSearchByCoordinateEndsTheImportAndRewritesNothing) {
    std::string centre, sphere;
    for (int i = 1; i <= 5000; ++i) {
        const double height = 1 - i / 2500.5, width = std::sqrt(1 - height * height);
        centre += "s" + std::to_string(i) + ";0;0;0\r\n";
        sphere += "t" + std::to_string(i) + ";" + PlainText(width * std::cos(i)) + ";" +
                  PlainText(width * std::sin(i)) + ";" + PlainText(height) + "\r\n";
    }
    start_ = Write("centre.txt", centre);
    target_ = Write("sphere.txt", sphere);
    Open();
    UserSetValue(InputFiles.OptionByCoordinate, 1);
    UserSetValue(InputFiles.CheckRenameMCS, 1);
    Answer("input", "5");
    Headless.OnYield = [] { Run.StopRequested = kTrue; };
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(Headless.Yields, 1u);
    EXPECT_EQ(Run.JobDataValid, kFalse);
    EXPECT_EQ(Run.WaitPointers, 0);
    EXPECT_TRUE(JobIsWhole(Job));
    EXPECT_FALSE(File_Exist(start_ + ".$"));
}

TEST_F(InputDialog, TheRewrittenFileHoldsMillimetresWhateverTheUnit) {
    Job.LengthUnitName = "meter";
    RhoFestlegung();
    start_ = Write("m.txt", "A;0.5;0;0\r\nB;1;0;0\r\n");
    target_ = Write("n.txt", "p;0.5;0;0\r\nq;1;0;0\r\n");
    Open();
    UserSetValue(InputFiles.OptionByCoordinate, 1);
    UserSetValue(InputFiles.CheckRenameOCS, 1);
    Answer("input", "0.5");
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(Contents(target_), "A;500;0;0\r\nB;1000;0;0\r\n");
    EXPECT_EQ(Contents(start_), "A;0.5;0;0\r\nB;1;0;0\r\n");
}

TEST_F(InputDialog, ByDistanceFindsPairsInTurnedFrames) {
    // The target is the start turned by 90 degrees about z and shifted; all distances differ.
    start_ = Write("s.txt", "A;0;0;0\r\nB;1000;0;0\r\nC;0;700;0\r\nD;0;0;450\r\nE;310;220;940\r\n");
    target_ =
        Write("t.txt", "v;10;20;30\r\nw;10;1020;30\r\nx;-690;20;30\r\ny;10;20;480\r\nz;-210;330;970\r\n");
    Open();
    UserSetValue(InputFiles.OptionByDis, 1);
    Answer("input", "0.5");
    UserClick(InputFiles.BtnOK);
    ASSERT_FALSE(Headless.Dialogs.empty());
    EXPECT_EQ(Headless.Dialogs[0].Text,
              CrLf("The process of AutoFinding the indentically points might take a while\n"
                   "If you have more than 100 points it might take several minutes!\n"
                   "\n"
                   "It works by comparison of distances in both datasets MCS and OCS.\n"
                   "It works well while you have measured data in MCS and OCS File\n"
                   "\n"
                   "It does not work in some other cases: \n"
                   "- Object Data is design data (lots of equal distances)\n"
                   "- MCS Data and OCS Data have to big differences\n"
                   "- To Much Points\n"
                   "\n"
                   "\n"
                   "The accuracy of your Coordinates beetween Start- and Targetsystem is needed to sepperate "
                   "the Data\n"
                   "If you set it too small, maybe no identically point will be detected.\n"
                   "If you set it too big, maybe points will be detected as identically but they are not.\n"
                   "\n"));
    EXPECT_EQ(Job.Pairs(), 5);
    EXPECT_EQ(Names(Job.Start.Name), (std::vector<std::string>{"MCS_A=OCS_v", "MCS_B=OCS_w", "MCS_C=OCS_x",
                                                               "MCS_D=OCS_y", "MCS_E=OCS_z"}));
    EXPECT_EQ(Job.Start.X.size(), 9u)
        << "the search leaves the coordinate arrays three longer than the names";
    EXPECT_FALSE(IsLoaded("FormProgressBar"));
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(InputDialog, ByDistanceWithoutASolutionGoesOnByNamesWithoutPairs) {
    Open();
    UserSetValue(InputFiles.OptionByDis, 1);
    Answer("input", "0.000001");
    start_ = Write("grid.txt", "A;0;0;0\r\nB;1;0;0\r\nC;0;1;0\r\nD;1;1;0\r\n");
    UserSetText(InputFiles.TextNameMCS, start_);
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(LastMessage(), "Could not solve the auto find problem, maybe try changing ETTA Value");
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Job.Pairs(), 0);
}

TEST_F(InputDialog, AJobThatReplacesThePointsDuringTheSearchIsLeftAsItIs) {
    Open();
    UserSetValue(InputFiles.OptionByDis, 1);
    Answer("input", "0.000001");
    JobRecord other;
    Headless.OnYield = [&] {
        if (Headless.Yields != 3) return;
        Job = JobRecord{};
        Job.Start = PointSet({{"", "b", "a", "c"}, {{}, 1.0, 2.0, 3.0}, {{}, 1.0, 2.0, 3.0}, {0, 1, 2, 3}});
        Job.Target = PointSet({{"", "b", "a"}, {{}, 1.0, 2.0}, {{}, 1.0, 2.0}, {0, 1, 2}});
        Job.Transformed =
            PointSet({{"", "b", "a", "c"}, {{}, 7.0, 8.0, 9.0}, {{}, 7.0, 8.0, 9.0}, {0, 7, 8, 9}});
        Job.SetPairs(2);
        Job.RVecX = Job.RVecY = {{}, {}, {}};
        Job.RVecZ = {0, 0, 0};
        Job.UseFlags = {0, 1, 1, 0, 1, 1, 1};
        Job.PathMCS = "another";
        other = Job;
        Run.JobDirty = kFalse;
        ++Run.JobGeneration;
    };
    UserClick(InputFiles.BtnApply);
    EXPECT_EQ(Job.Start.Name, other.Start.Name);
    EXPECT_EQ(Job.Target.Name, other.Target.Name);
    EXPECT_EQ(Job.Start.X, other.Start.X);
    EXPECT_EQ(Job.Transformed.X, other.Transformed.X);
    EXPECT_EQ(Job.Pairs(), 2);
    EXPECT_EQ(Run.JobDirty, kFalse);
    EXPECT_EQ(Run.ImportFailed, kTrue);
    EXPECT_NE(Settings.MCS_FileName, "another");
}

TEST_F(InputDialog, ElementsThatShortLinesLeaveUnusedNeverPair) {
    start_ = Write("short1.txt", "A;0;0;0\r\nB;100;0;0\r\nC;0;200;0\r\n");
    target_ = Write("short2.txt", "A;5;6;7\r\nB;105;6;7\r\nC;5;206;7\r\n");
    Import();
    for (auto* names : {&Job.Start.Name, &Job.Target.Name}) (*names)[2] = "";
    GetInfoFromData();
    EXPECT_EQ(Job.Pairs(), 2);
    SortForIdentPts();
    GetInfoFromData();
    EXPECT_EQ(Job.Pairs(), 2);
    EXPECT_EQ(Names(Job.Start.Name), (std::vector<std::string>{"A", "C", ""}));
    EXPECT_EQ(Names(Job.Target.Name), (std::vector<std::string>{"A", "C", ""}));
}

// --- When files cannot be written -------------------------------------------------------------------------

TEST_F(InputDialog, AFullDiskAtTheRewrittenFileLeavesTheUsersFileWholeAndTheJobNot) {
    for (const char* operation : {"create", "write", "flush", "rename"}) {
        Open();
        UserSetValue(InputFiles.OptionByCoordinate, 1);
        UserSetValue(InputFiles.CheckRenameMCS, 1);
        Answer("input", "100");
        FileFaults.Refuse = [&](const std::string& asked, const std::string& path) {
            return std::string(asked == operation && path == start_ ? "no space left" : "");
        };
        UserClick(InputFiles.BtnOK);
        FileFaults.Refuse = nullptr;
        EXPECT_NE(Run.LastPlatformError.find("no space left"), std::string::npos) << operation;
        EXPECT_EQ(Contents(start_), kStart) << operation;
        EXPECT_FALSE(File_Exist(start_ + ".$")) << operation;
        EXPECT_EQ(Run.JobDataValid, kFalse);
        EXPECT_TRUE(JobIsWhole(Job));
    }
}

TEST_F(InputDialog, SettingsThatCannotBeWrittenLeaveTheImportedJobWhole) {
    FileFaults.Refuse = [](const std::string& operation, const std::string& path) {
        return std::string(operation == "create" && path.ends_with(".ini") ? "read-only" : "");
    };
    Import();
    EXPECT_EQ(Run.JobDataValid, kTrue);
    EXPECT_EQ(Job.Pairs(), 4);
    EXPECT_TRUE(Main.MenuTransformation.Enabled);
}

TEST_F(InputDialog, AStopEndsTheSearchAndNotTheNextCalculation) {
    std::string grid;
    for (int i = 0; i < 25; ++i)
        grid += "P" + std::to_string(100 + i) + ";" + std::to_string(i % 5) + ";" + std::to_string(i / 5) +
                ";0\n";
    start_ = target_ = Write("grid.txt", grid);
    Open();
    UserSetValue(InputFiles.OptionByDis, 1);
    Answer("input", "0.01");
    Headless.OnYield = [] { ::Run.StopRequested = kTrue; };
    UserClick(InputFiles.BtnOK);
    Headless.OnYield = nullptr;
    EXPECT_EQ(Run.StopRequested, kFalse);
}

// --- More points ------------------------------------------------------------------------------------------

TEST_F(InputDialog, AddsStartPointsWithAPrefix) {
    Import();
    const std::string more = Write("more.txt", "M1;1;2;3\r\nM2;4;5;6\r\n");
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMoreMCS, more);
    UserSetText(InputFiles.TextPreSuff, "n_");
    Run.JobDirty = kFalse;
    UserClick(InputFiles.BtnImportMoreMCS);
    EXPECT_EQ(Job.Start.Count(), 7);
    EXPECT_EQ(Job.StartOnly(), 3);
    EXPECT_EQ(Job.Pairs(), 4);
    EXPECT_EQ(Job.Target.Count(), 5);
    EXPECT_EQ(Job.Start.Name[6], "n_M1");
    EXPECT_EQ(*Job.Start.Y[7], 5);
    EXPECT_EQ(Job.Transformed.Name[7], "n_M2");
    EXPECT_EQ(Job.Transformed.Z[7], 6);
    EXPECT_EQ(Run.JobDirty, kTrue);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(InputDialog, AddsStartPointsWithASuffix) {
    Import();
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMoreMCS, Write("more.txt", "M1;1;2;3\r\n"));
    UserSetValue(InputFiles.Option2, 1);
    UserSetText(InputFiles.TextPreSuff, "_n");
    UserClick(InputFiles.BtnImportMoreMCS);
    EXPECT_EQ(Job.Start.Name[6], "M1_n");
    EXPECT_EQ(InputFiles.OptionPrefix.Value, 0);
}

TEST_F(InputDialog, AddingWithoutAFileAsksForOne) {
    Import();
    ShowWindow("FormInputFiles");
    UserClick(InputFiles.BtnImportMoreMCS);
    EXPECT_EQ(LastMessage(), "Please select a File with the browse button");
}

TEST_F(InputDialog, AddingABadFileLeavesTheJobAsItWas) {
    Import();
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMoreMCS, Write("more.txt", "M1;1;2;3\r\nM2;4;x;6\r\n"));
    UserClick(InputFiles.BtnImportMoreMCS);
    EXPECT_EQ(Job.Start.Count(), 5);
    EXPECT_TRUE(JobIsWhole(Job));
    EXPECT_EQ(Run.JobDataValid, kTrue);
}

// --- The round trip through the clipboard -----------------------------------------------------------------

TEST_F(InputDialog, TheRoundTripCalculatesFromTheClipboardAndAddsTheQuality) {
    Headless.Clipboard =  // a pure shift by (5, 6, 7)
        "A\t0\t0\t0\tA\t5\t6\t7\r\nB\t100\t0\t0\tB\t105\t6\t7\r\nC\t0\t200\t0\tC\t5\t206\t7\r\n"
        "D\t0\t0\t300\tD\t5\t6\t307\r\n";
    UserClick(Main.MenueHelpSpezial);
    EXPECT_EQ(Contents(folder_ + "/settings/Corvinade/mcs.txt"),
              "A\t0\t0\t0\r\nB\t100\t0\t0\r\nC\t0\t200\t0\r\nD\t0\t0\t300\r\n");
    EXPECT_EQ(Contents(folder_ + "/settings/Corvinade/ocs.txt"),
              "A\t5\t6\t7\r\nB\t105\t6\t7\r\nC\t5\t206\t7\r\nD\t5\t6\t307\r\n");
    EXPECT_EQ(Job.Pairs(), 4);
    for (std::size_t i = 1; i < Job.UseFlags.size(); ++i) EXPECT_EQ(Job.UseFlags[i], 1);
    EXPECT_NEAR(Job.TraX, 5, 1e-9);
    EXPECT_NEAR(Job.TraY, 6, 1e-9);
    EXPECT_TRUE(
        Headless.Clipboard.ends_with("\ts0 \t0.000\tSpanne x \t0.000\tSpanne y \t0.000\tSpanne z \t0.000"))
        << Headless.Clipboard;
    EXPECT_EQ(Run.OverwriteQuiet, kFalse);
    EXPECT_FALSE(IsLoaded("FormInputFiles"));
}

TEST_F(InputDialog, TheRoundTripTellsTheSpansOfTheDeviations) {
    // An octahedron, stretched by 0.5 to both sides along x: no shift or rotation can follow that, so the
    // two ends keep deviations of 0.5 and -0.5. With 6 points s0 = sqrt(2 * 0.5^2 / 5) = 0.316 in x
    // alone.
    Headless.Clipboard =
        "A\t100\t0\t0\tA\t100.5\t0\t0\r\nB\t-100\t0\t0\tB\t-100.5\t0\t0\r\n"
        "C\t0\t100\t0\tC\t0\t100\t0\r\nD\t0\t-100\t0\tD\t0\t-100\t0\r\n"
        "E\t0\t0\t100\tE\t0\t0\t100\r\nF\t0\t0\t-100\tF\t0\t0\t-100\r\n";
    UserClick(Main.MenueHelpSpezial);
    EXPECT_TRUE(
        Headless.Clipboard.ends_with("\ts0 \t0.316\tSpanne x \t1.000\tSpanne y \t0.000\tSpanne z \t0.000"))
        << Headless.Clipboard;
}

TEST_F(InputDialog, ARoundTripThatCannotReadItsPointsLeavesNoValidJob) {
    Import();
    ASSERT_EQ(Run.JobDataValid, kTrue);
    Headless.Clipboard = "A\t0\t0\tzero\tA\t5\t6\t7\r\nB\t1\t0\t0\tB\t6\t6\t7\r\n";
    UserClick(Main.MenueHelpSpezial);
    EXPECT_NE(Run.LastPlatformError.find("zero"), std::string::npos);
    EXPECT_EQ(Run.JobDataValid, kFalse) << "half of the points are those of before";
    EXPECT_FALSE(Main.MenuTransformation.Enabled);
    EXPECT_TRUE(JobIsWhole(Job));
}

TEST_F(InputDialog, ARoundTripThatCannotWriteItsFilesLeavesTheJobAlone) {
    Import();
    Headless.Clipboard = "A\t0\t0\t0\tA\t5\t6\t7\r\nB\t1\t0\t0\tB\t6\t6\t7\r\n";
    FileFaults.Refuse = [](const std::string& operation, const std::string& path) {
        return std::string(operation == "flush" && path.ends_with("ocs.txt") ? "no space left" : "");
    };
    UserClick(Main.MenueHelpSpezial);
    EXPECT_NE(Run.LastPlatformError.find("no space left"), std::string::npos);
    EXPECT_EQ(Job.PathMCS, start_);
    EXPECT_EQ(Job.PathOCS, target_);
    EXPECT_EQ(Job.Start.Count(), 5);
    EXPECT_EQ(Run.JobDataValid, kTrue);
}

TEST_F(InputDialog, TheRoundTripReplacesPointsWithoutAQuestion) {
    Import();
    Headless.Clipboard =
        "A\t0\t0\t0\tA\t5\t6\t7\r\nB\t100\t0\t0\tB\t105\t6\t7\r\nC\t0\t200\t0\tC\t5\t206\t7\r\n";
    UserClick(Main.MenueHelpSpezial);
    EXPECT_EQ(Messages(), std::vector<std::string>{});
    EXPECT_EQ(Job.Start.Count(), 3);
}

TEST_F(InputDialog, TheRoundTripRefusesAClipboardWithoutATable) {
    for (const char* text : {"", "nothing", "A\t1\t2\t3\r\n"}) {
        Headless.Clipboard = text;
        UserClick(Main.MenueHelpSpezial);
        ASSERT_FALSE(Headless.Dialogs.empty());
        EXPECT_EQ(Headless.Dialogs.back().Text, "Fehler beim Einlesen");
        EXPECT_EQ(Headless.Dialogs.back().Title, "Corvinade");
    }
    EXPECT_EQ(Run.OverwriteQuiet, kFalse);
}

TEST_F(InputDialog, TheRoundTripSaysWhenTheClipboardRefuses) {
    Headless.Clipboard =
        "A\t0\t0\t0\tA\t5\t6\t7\r\nB\t100\t0\t0\tB\t105\t6\t7\r\nC\t0\t200\t0\tC\t5\t206\t7\r\n";
    Headless.ClipboardRefuses = true;
    UserClick(Main.MenueHelpSpezial);
    EXPECT_EQ(LastMessage(), "Clipboard coud not be set due unknown error");
    EXPECT_EQ(Run.TrafoValid, kTrue);
}

TEST_F(InputDialog, ARoundTripThatFailsWithinACalculationLeavesTheResultOfBefore) {
    target_ = Write("target.txt", "A;5;6;7.5\r\nB;105;6.1;7\r\nC;5;206;7\r\nD;5.3;6;307\r\n");
    Import();
    ShowWindow("FormTrafoBerechnung");
    UserClick(TrafoWindow.BtnCalculate);
    const Parameters before = ParametersOf(Job);
    const double z = Job.Transformed.Z[1];
    // Both delimiters of decimals in one file: the import ends, and the points stay.
    Headless.Clipboard = "A\t1.5\t1,5\t0\tA\t1\t2\t3\r\nB\t2\t3\t4\tB\t5\t6\t7\r\n";
    int yields = 0;
    Headless.OnYield = [&yields] {
        if (++yields == 2) UserClick(Main.MenueHelpSpezial);
    };
    UserClick(TrafoWindow.BtnCalculate);
    Headless.OnYield = nullptr;
    ASSERT_FALSE(Messages().empty());
    EXPECT_NE(LastMessage().find("Found both possible DecimalDelimiters"), std::string::npos)
        << LastMessage();
    EXPECT_EQ(Run.TrafoValid, kTrue);
    EXPECT_EQ(Job.Unconverged, kFalse);
    EXPECT_TRUE(ParametersOf(Job) == before) << "the points that are shown are the image by these";
    EXPECT_EQ(Job.Transformed.Z[1], z);
}

TEST_F(InputDialog, ARoundTripWhoseNamesAreDoubleLeavesNoResultBesideItsPoints) {
    Import();
    ShowWindow("FormTrafoBerechnung");
    UserClick(TrafoWindow.BtnCalculate);
    ASSERT_EQ(Run.TrafoValid, kTrue);
    Headless.Clipboard =
        "A\t0\t0\t0\tA\t5\t6\t7\r\nB\t100\t0\t0\tA\t105\t6\t7\r\nC\t0\t200\t0\tC\t5\t206\t7\r\n";
    UserClick(Main.MenueHelpSpezial);
    ASSERT_NE(LastMessage().find("double Pointnumber"), std::string::npos) << LastMessage();
    EXPECT_EQ(Run.TrafoValid, kFalse);
    EXPECT_FALSE(Main.MenueFileExport.Enabled);
    EXPECT_TRUE(JobIsWhole(Job));
}
