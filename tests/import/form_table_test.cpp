// The window of a table by its controls: what it finds, what the user decides, and what the import makes of
// it.
#include "import/form_table.h"

#include "cli/headless.h"
#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_file.h"
#include "core/measurement_sigmas.h"
#include "core/notes.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "import/input_dialog.h"
#include "import/table_mapping.h"

using namespace corvinade;

namespace {

const char* const kCsv =
    "Point;East [m];North [m];Height [m];Day\r\nA;0;0;0;mon\r\nB;0,1;0;0;mon\r\nC;0;0,2;0;tue\r\nD;0;0;0,3;tue\r\n";

class TableDialog : public InputDialog {
protected:
    // Chooses a file by Browse.
    static void Choose(Control& browse, const std::string& path) {
        Answer("open", path);
        UserClick(browse);
    }
    void OpenTable(const std::string& content, const std::string& name = "start.csv") {
        path_ = Write(name, content);
        if (!IsLoaded("FormInputFiles")) ShowWindow("FormInputFiles");
        Choose(InputFiles.BtnBrowseMCS, path_);
        ASSERT_TRUE(IsLoaded("FormTable"));
    }
    static void Take(Control& list, const std::string& entry) {
        const auto found = std::find(list.Items.begin(), list.Items.end(), entry);
        ASSERT_NE(found, list.Items.end()) << entry;
        UserSetIndex(list, static_cast<int>(found - list.Items.begin()));
    }
    static std::string Roles() {
        std::string roles;
        for (const Control& role : TableWindow.ComboRole)
            if (role.Visible) roles += (roles.empty() ? "" : ",") + role.Text;
        return roles;
    }
    static void ExpectImported() {
        ASSERT_EQ(Job.Pairs(), 4);
        EXPECT_EQ(Job.Start.X[2], 100.0);
        EXPECT_EQ(Job.Start.Y[3], 200.0);
        EXPECT_EQ(Job.Start.Z[4], 300.0);
    }

    std::string path_;
};

}  // namespace

// --- When it opens ----------------------------------------------------------------------------------------

TEST_F(TableDialog, OpensByItselfForAFileThatIsNotPlain) {
    OpenTable(kCsv);
    EXPECT_EQ(TableWindow.LabelFile.Text, "Start system (MCS): " + path_);
    EXPECT_EQ(InputFiles.TextNameMCS.Text, path_);
}

TEST_F(TableDialog, APlainFileIsNotAskedFor) {
    ShowWindow("FormInputFiles");
    Choose(InputFiles.BtnBrowseMCS, start_);
    Choose(InputFiles.ButtonBrowseOCS, target_);
    EXPECT_FALSE(IsLoaded("FormTable"));
    Headless.Clipboard = "A\t1\t2\t3\r\nB\t1\t2\t3\r\n";
    UserClick(InputFiles.BtnMCSfromClip);
    EXPECT_FALSE(IsLoaded("FormTable"));
    EXPECT_EQ(InputFiles.LabelTableMCS.Text, "");
}

TEST_F(TableDialog, ASpreadsheetOnTheClipboardIsAskedFor) {
    ShowWindow("FormInputFiles");
    Headless.Clipboard = "Name\tX\tY\tZ\r\nA\t1\t2\t3\r\n";
    UserClick(InputFiles.BtnMCSfromClip);
    EXPECT_TRUE(IsLoaded("FormTable"));
}

TEST_F(TableDialog, WithADecimalCommaOfTheSystemAFileWithPointsIsAskedFor) {
    Headless.Decimal = ',';
    ShowWindow("FormInputFiles");
    Choose(InputFiles.BtnBrowseMCS, Write("comma.txt", "A;1,5;2;3\r\n"));
    EXPECT_FALSE(IsLoaded("FormTable"));
    Choose(InputFiles.BtnBrowseMCS, Write("point.txt", "A;1.5;2;3\r\n"));
    EXPECT_TRUE(IsLoaded("FormTable"));
}

TEST_F(TableDialog, OfTypedNamesOpensWithOKAndOnceAlone) {
    DesktopDefaults.TypedFiles = true;
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMCS, Write("start.csv", kCsv));
    UserSetText(InputFiles.TextNameOCS, Write("target.csv", kCsv));
    UserClick(InputFiles.BtnOK);
    ASSERT_TRUE(IsLoaded("FormTable"));
    ASSERT_TRUE(IsLoaded("FormInputFiles"));
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_TRUE(Messages().empty());
    UserClick(TableWindow.BtnOK);
    ASSERT_TRUE(IsLoaded("FormTable"));
    EXPECT_EQ(TableWindow.LabelFile.Text, "Target system (OCS): " + InputFiles.TextNameOCS.Text);
    UserClick(TableWindow.BtnOK);
    EXPECT_FALSE(IsLoaded("FormTable"));
    UserClick(InputFiles.BtnOK);
    ExpectImported();
    EXPECT_EQ(Job.Target.Y[3], 200.0);
}

TEST_F(TableDialog, OfTypedNamesThatTheUserClosesLeavesTheFileToTheToldReader) {
    DesktopDefaults.TypedFiles = true;
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMCS, Write("start.csv", kCsv));
    UserSetText(InputFiles.TextNameOCS, target_);
    UserClick(InputFiles.BtnApply);
    ASSERT_TRUE(IsLoaded("FormTable"));
    UserClick(TableWindow.BtnCancel);
    EXPECT_TRUE(Messages().empty());
    UserClick(InputFiles.BtnOK);
    EXPECT_FALSE(IsLoaded("FormTable"));
    EXPECT_FALSE(Messages().empty());
}

TEST_F(TableDialog, OfTypedNamesDoesNotOpenForScripts) {
    ShowWindow("FormInputFiles");
    UserSetText(InputFiles.TextNameMCS, Write("start.csv", kCsv));
    UserSetText(InputFiles.TextNameOCS, target_);
    UserClick(InputFiles.BtnOK);
    EXPECT_FALSE(IsLoaded("FormTable"));
    EXPECT_FALSE(Messages().empty());
}

TEST_F(TableDialog, ARobotProgramAndAShapeAreNotAskedFor) {
    ShowWindow("FormInputFiles");
    UserSetIndex(InputFiles.ComboOCS_Data, static_cast<int>(TargetKind::Shape));
    Choose(InputFiles.ButtonBrowseOCS, Write("t.csv", kCsv));
    EXPECT_FALSE(IsLoaded("FormTable"));
}

TEST_F(TableDialog, OpensByTheButtonOfItsFile) {
    Open();
    UserClick(InputFiles.BtnTableOCS);
    ASSERT_TRUE(IsLoaded("FormTable"));
    EXPECT_EQ(TableWindow.LabelFile.Text, "Target system (OCS): " + target_);
    UserClick(TableWindow.BtnCancel);
    UserClick(InputFiles.BtnTableMCS);
    EXPECT_EQ(TableWindow.LabelFile.Text, "Start system (MCS): " + start_);
    UserEscape(FormTable_Entry);
    EXPECT_FALSE(IsLoaded("FormTable"));
    UserSetText(InputFiles.TextNameMCS, "");
    UserClick(InputFiles.BtnTableMCS);
    EXPECT_FALSE(IsLoaded("FormTable"));
    EXPECT_EQ(LastMessage(), "There is no file for the table: choose one with Browse first");
    UserSetText(InputFiles.TextNameMCS, PathOf("none.csv"));
    UserClick(InputFiles.BtnTableMCS);
    EXPECT_FALSE(IsLoaded("FormTable"));
    EXPECT_NE(LastMessage().find("none.csv"), std::string::npos);
}

TEST_F(TableDialog, GoesWithTheDialog) {
    OpenTable(kCsv);
    UserClick(InputFiles.BtnCancel);
    EXPECT_FALSE(IsLoaded("FormTable"));
}

// --- What it shows ----------------------------------------------------------------------------------------

TEST_F(TableDialog, ShowsWhatWasFoundInItsControls) {
    OpenTable(kCsv);
    EXPECT_EQ(TableWindow.ComboDelimiter.Text, "semicolon");
    EXPECT_EQ(TableWindow.ComboDecimal.Text, ",");
    EXPECT_EQ(TableWindow.ComboEncoding.Text, "utf-8");
    EXPECT_EQ(TableWindow.ComboUnit.Text, "m");
    EXPECT_EQ(TableWindow.TextSkip.Text, "0");
    EXPECT_EQ(TableWindow.TextComment.Text, "# % ! //");
    EXPECT_EQ(TableWindow.CheckStrict.Value, 1);
    EXPECT_EQ(Roles(), "name,x,y,z,-");
    EXPECT_EQ(TableWindow.LabelCount.Text, "4 good rows, 0 bad rows");
    EXPECT_FALSE(TableWindow.LabelProblem.Visible);
    GridState& grid = TableWindow.GridPreview.Grid;
    EXPECT_EQ(grid.Rows, 6);
    EXPECT_EQ(grid.Cols, 6);
    EXPECT_EQ(CellText(grid, 1, 2), "East [m]");
    EXPECT_EQ(CellText(grid, 3, 0), "3");
    EXPECT_EQ(CellText(grid, 3, 2), "0,1");
    EXPECT_EQ(CellBackColor(grid, 1, 2), kPassedOverGround);
    EXPECT_EQ(CellBackColor(grid, 3, 2), kSystemColour);
}

TEST_F(TableDialog, TheUnitIsThatOfTheSettingsWhereTheHeadingHasNone) {
    Job.LengthUnitName = "inch";
    RhoFestlegung();
    OpenTable("Name;X;Y;Z\r\nA;1;2;3\r\n");
    EXPECT_EQ(TableWindow.ComboUnit.Text, "in");
}

TEST_F(TableDialog, CellsThatAreNoNumberAreMarkedAndCountedAfterEachChange) {
    OpenTable("Name;X;Y;Z\r\nA;1;2;3\r\nB;1;x;3\r\nC;1;2;3\r\n");
    GridState& grid = TableWindow.GridPreview.Grid;
    EXPECT_EQ(CellBackColor(grid, 3, 3), kBadCellGround);
    EXPECT_EQ(CellBackColor(grid, 3, 2), kSystemColour);
    EXPECT_EQ(TableWindow.LabelCount.Text, "2 good rows, 1 bad row");
    EXPECT_EQ(TableWindow.LabelProblem.Text,
              "Line 3, column 3: \"x\" is not a number (without \"Strict\" it is passed over)");
    EXPECT_NE(TableWindow.LabelProblem.BackColor, kSystemColour);
    UserSetText(TableWindow.TextSkip, "3");
    EXPECT_EQ(TableWindow.LabelCount.Text, "1 good row, 0 bad rows");
    UserSetText(TableWindow.TextSkip, "");
    UserSetText(TableWindow.TextComment, "B");
    EXPECT_EQ(TableWindow.LabelCount.Text, "2 good rows, 0 bad rows");
    UserClick(TableWindow.BtnAuto);
    EXPECT_EQ(TableWindow.LabelCount.Text, "2 good rows, 1 bad row");
    EXPECT_EQ(TableWindow.TextComment.Text, "# % ! //");
    EXPECT_EQ(TableWindow.TextSkip.Text, "0");
}

TEST_F(TableDialog, ARoleGoesToOneColumnAlone) {
    OpenTable("Name;X;Y;Z;w\r\nA;1;2;3;4\r\n");
    Take(TableWindow.ComboRole[4], "x");
    EXPECT_EQ(Roles(), "name,-,y,z,x");
    EXPECT_EQ(TableWindow.LabelCount.Text, "1 good row, 0 bad rows");
    Take(TableWindow.ComboRole[4], "-");
    EXPECT_EQ(Roles(), "name,-,y,z,-");
    EXPECT_EQ(TableWindow.LabelCount.Text, "no rows counted");
    EXPECT_EQ(TableWindow.LabelProblem.Text, "The column x is missing");
    UserClick(TableWindow.BtnOK);
    EXPECT_EQ(LastMessage(), "The table cannot be taken so. The column x is missing");
    EXPECT_TRUE(IsLoaded("FormTable"));
    Take(TableWindow.ComboRole[1], "x");
    EXPECT_EQ(TableWindow.LabelCount.Text, "1 good row, 0 bad rows");
}

TEST_F(TableDialog, ADelimiterThatIsChosenCutsTheCellsAnewAndAutoFindsItAgain) {
    OpenTable("A;1,5;2,5;3,5\r\nB;1,5;2,5;3,6\r\n");
    EXPECT_EQ(TableWindow.ComboDelimiter.Text, "semicolon");
    Take(TableWindow.ComboDelimiter, "tab");
    EXPECT_EQ(TableWindow.ComboDelimiter.Text, "tab");
    EXPECT_EQ(TableWindow.LabelCount.Text, "no rows counted");
    Take(TableWindow.ComboDelimiter, "auto");
    EXPECT_EQ(TableWindow.ComboDelimiter.Text, "semicolon");
    EXPECT_EQ(TableWindow.LabelCount.Text, "2 good rows, 0 bad rows");
}

TEST_F(TableDialog, TheEncodingIsFoundAndCanBeChosen) {
    OpenTable("Name;X;Y;Z\r\nH\xF6he;1;2;3\r\n");
    EXPECT_EQ(TableWindow.ComboEncoding.Text, "windows-1252");
    EXPECT_EQ(CellText(TableWindow.GridPreview.Grid, 2, 1), "Höhe");
    Take(TableWindow.ComboEncoding, "utf-8");
    EXPECT_EQ(TableWindow.LabelProblem.Text,
              "It is no UTF-8 (\"Encoding\" windows-1252, or utf-16le, utf-16be)");
}

TEST_F(TableDialog, AWrongNumberOfLinesIsTold) {
    OpenTable(kCsv);
    UserSetText(TableWindow.TextSkip, "two");
    EXPECT_EQ(TableWindow.LabelProblem.Text, "\"two\" is no number of lines to skip");
    UserClick(TableWindow.BtnOK);
    EXPECT_TRUE(IsLoaded("FormTable"));
    UserSetText(TableWindow.TextSkip, "0");
    EXPECT_FALSE(TableWindow.LabelProblem.Visible);
}

TEST_F(TableDialog, AnAmbiguousFileIsAskedInsteadOfRefused) {
    OpenTable("P1,1,5,2,5,3,5\nP2,1,6,2,6,3,6\nP3,1,7,2,7,3,7\n");
    EXPECT_EQ(TableWindow.ComboDecimal.Text, "auto");
    EXPECT_NE(TableWindow.LabelProblem.Text.find("two ways"), std::string::npos);
    UserClick(TableWindow.BtnOK);
    EXPECT_TRUE(IsLoaded("FormTable")) << "nothing is decided yet";
    Take(TableWindow.ComboDecimal, ",");
    EXPECT_EQ(TableWindow.LabelCount.Text, "3 good rows, 0 bad rows");
    UserClick(TableWindow.BtnOK);
    EXPECT_FALSE(IsLoaded("FormTable"));
    EXPECT_EQ(InputFiles.LabelTableMCS.Text, "read as a table");
}

// --- Large files ------------------------------------------------------------------------------------------

class LargeTable : public TableDialog {
protected:
    static std::string Rows(int count) {
        std::string text = "Name;X;Y;Z\r\n";
        for (int i = 1; i <= count; ++i)
            text += "P" + std::to_string(i) + ";1.5;2.5;" + std::to_string(i) + "\r\n";
        return text;
    }
};

TEST_F(LargeTable, IsCountedToItsEndWithYields) {
    const std::uint64_t before = Headless.Yields;
    bool told = false;
    Headless.OnYield = [&told] { told = told || TableWindow.LabelCount.Text.find("counting, ") == 0; };
    OpenTable(Rows(60000) + "bad;1;x;3\r\n");
    EXPECT_EQ(TableWindow.LabelCount.Text, "60000 good rows, 1 bad row");
    EXPECT_GT(Headless.Yields, before + 20);
    EXPECT_TRUE(told);
}

TEST_F(LargeTable, AChangeWhileItIsCountedBeginsAnew) {
    OpenTable(Rows(60000));
    const std::uint64_t before = Headless.Yields;
    Headless.OnYield = [before] {
        if (Headless.Yields == before + 3) UserSetText(TableWindow.TextSkip, "59991");
    };
    UserSetText(TableWindow.TextSkip, "10");
    EXPECT_EQ(TableWindow.LabelCount.Text, "10 good rows, 0 bad rows");
    EXPECT_EQ(TableWindow.TextSkip.Text, "59991");
}

TEST_F(LargeTable, ClosingTheWindowEndsTheCount) {
    OpenTable(Rows(60000));
    const std::uint64_t before = Headless.Yields;
    Headless.OnYield = [before] {
        if (Headless.Yields == before + 3) UserClick(TableWindow.BtnCancel);
    };
    UserSetText(TableWindow.TextSkip, "10");
    EXPECT_EQ(Headless.Yields, before + 3);
    EXPECT_FALSE(IsLoaded("FormTable"));
}

TEST_F(LargeTable, OKWhileItIsCountedWaitsForTheCount) {
    OpenTable(Rows(60000));
    const std::uint64_t before = Headless.Yields;
    Headless.OnYield = [before] {
        if (Headless.Yields == before + 3) UserClick(TableWindow.BtnOK);
    };
    UserSetText(TableWindow.TextSkip, "10");
    EXPECT_FALSE(IsLoaded("FormTable"));
    EXPECT_EQ(MappingOfSide(TableSide::Start), "--format table --unit mm --skip 10");
}

TEST_F(LargeTable, TheImportYieldsToAndIsAskedForOnce) {
    OpenTable(Rows(60000));
    UserClick(TableWindow.BtnOK);
    UserSetText(InputFiles.TextNameOCS, Write("t.txt", "P1;0;0;0\r\nP2;0;0;1\r\nP3;0;0;2\r\n"));
    const std::uint64_t before = Headless.Yields;
    Headless.OnYield = [before] {
        if (Headless.Yields == before + 3) UserClick(InputFiles.BtnApply);
    };
    UserClick(InputFiles.BtnApply);
    EXPECT_EQ(Job.Pairs(), 3);
    EXPECT_EQ(Job.Start.Count(), 60000);
}

// --- What the import makes of it --------------------------------------------------------------------------

TEST_F(TableDialog, OKHandsThePointsOnInMillimetres) {
    OpenTable(kCsv);
    UserClick(TableWindow.BtnOK);
    EXPECT_FALSE(IsLoaded("FormTable"));
    UserSetText(InputFiles.TextNameOCS, target_);
    UserClick(InputFiles.BtnOK);
    EXPECT_FALSE(IsLoaded("FormInputFiles"));
    ExpectImported();
    EXPECT_EQ(Contents(path_), kCsv) << "no file of the user's is changed";
}

TEST_F(TableDialog, StandardDeviationsOfItsColumnsGoWithTheirPoints) {
    OpenTable(
        "Point;x [m];y [m];z [m];sx [m];sy [m]\r\nD;0;0;0,3;0,004;0,04\r\nA;0;0;0;0,001;0,01\r\n"
        "B;0,1;0;0;0,002;0,02\r\nC;0;0,2;0;0,003;0,03\r\n");
    UserClick(TableWindow.BtnOK);
    UserSetText(InputFiles.TextNameOCS, target_);
    UserClick(InputFiles.BtnOK);
    ExpectImported();
    const MeasurementSigmas sigmas = SigmasOf(Job);
    ASSERT_TRUE(sigmas.StartOfEach);
    for (std::size_t i = 0; i < 4; ++i) {
        EXPECT_DOUBLE_EQ(sigmas.StartOfEach->Of[0][i], static_cast<double>(i + 1));
        EXPECT_DOUBLE_EQ(sigmas.StartOfEach->Of[1][i], 10.0 * static_cast<double>(i + 1));
        EXPECT_EQ(sigmas.StartOfEach->Of[2][i], 0);
    }
    EXPECT_FALSE(sigmas.AnyOfTarget());
    const auto told = std::find_if(Notes.List.begin(), Notes.List.end(),
                                   [](const Note& note) { return note.Code == NoteCode::SigmaColumns; });
    ASSERT_NE(told, Notes.List.end());
    EXPECT_NE(told->Text.find("no column sz"), std::string::npos) << told->Text;
}

TEST_F(TableDialog, BothSidesCanBeTablesInUnitsOfTheirOwn) {
    OpenTable(kCsv);
    UserClick(TableWindow.BtnOK);
    Choose(InputFiles.ButtonBrowseOCS,
           Write("t.txt", "pt x[in] y[in] z[in]\r\nA 1 0 0\r\nB 2 0 0\r\nC 1 1 0\r\nD 1 0 1\r\n"));
    ASSERT_TRUE(IsLoaded("FormTable"));
    EXPECT_EQ(TableWindow.ComboUnit.Text, "in");
    UserClick(TableWindow.BtnOK);
    UserClick(InputFiles.BtnOK);
    ExpectImported();
    EXPECT_DOUBLE_EQ(Job.Target.X[2].value_or(0), 50.8);
    EXPECT_DOUBLE_EQ(Job.Target.Y[3].value_or(0), 25.4);
}

TEST_F(TableDialog, WithoutStrictBadRowsArePassedOverAndNoted) {
    OpenTable("Name;X;Y;Z\r\nA;0;0;0\r\nB;100;0;0\r\nC;0;200;0\r\nE;1;-;0\r\nD;0;0;300\r\n");
    UserClick(TableWindow.BtnOK);
    EXPECT_EQ(
        LastMessage(),
        "The table cannot be taken so. Line 5, column 3: \"-\" is not a number (without \"Strict\" it is passed over)");
    UserSetValue(TableWindow.CheckStrict, 0);
    EXPECT_EQ(TableWindow.LabelProblem.Text,
              "Bad rows are passed over. The first one: Line 5, column 3: \"-\" is not a number");
    EXPECT_EQ(TableWindow.LabelProblem.BackColor, kSystemColour);
    UserClick(TableWindow.BtnOK);
    UserSetText(InputFiles.TextNameOCS, target_);
    UserClick(InputFiles.BtnOK);
    ExpectImported();
    ASSERT_FALSE(Notes.List.empty());
    EXPECT_EQ(Notes.List[0].Code, NoteCode::LinesSkipped);
    EXPECT_EQ(Notes.List[0].File, path_);
    EXPECT_EQ(Notes.List[0].Line, 5);
    EXPECT_EQ(Notes.List[0].Count, 1);
}

TEST_F(TableDialog, StrictRefusesWhatIsDoubtfulUntilItIsDecided) {
    OpenTable("Alpha;Beta;Gamma;Delta\r\nA;1;2;3\r\n");
    EXPECT_NE(TableWindow.LabelProblem.Text.find("The heading names no columns that are known"),
              std::string::npos);
    UserClick(TableWindow.BtnOK);
    EXPECT_TRUE(IsLoaded("FormTable"));
    Take(TableWindow.ComboRole[1], "y");
    EXPECT_FALSE(TableWindow.LabelProblem.Visible) << TableWindow.LabelProblem.Text;
    UserClick(TableWindow.BtnOK);
    EXPECT_FALSE(IsLoaded("FormTable"));
}

TEST_F(TableDialog, TwoEqualNamesAreToldBeforeTheImport) {
    OpenTable("Name;X;Y;Z\r\nA;1;2;3\r\nB;1;2;3\r\nA;1;2;4\r\n");
    EXPECT_NE(TableWindow.LabelProblem.Text.find("stands in line 2 too, and in line 4"), std::string::npos)
        << TableWindow.LabelProblem.Text;
}

TEST_F(TableDialog, CancelLeavesTheFileToTheToldReader) {
    OpenTable("A 1 2 3\r\nB 1 2 3\r\n", "blanks.txt");
    UserClick(TableWindow.BtnCancel);
    EXPECT_EQ(InputFiles.TextNameMCS.Text, path_);
    EXPECT_EQ(MappingOfSide(TableSide::Start), std::nullopt);
    UserSetText(InputFiles.TextNameOCS, target_);
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(Job.Pairs(), 0);
    EXPECT_FALSE(Messages().empty());
}

TEST_F(TableDialog, ATableWhoseFileHasGoneWrongMeanwhileIsAskedForAgain) {
    OpenTable(kCsv);
    UserClick(TableWindow.BtnOK);
    UserSetText(InputFiles.TextNameOCS, target_);
    Write("start.csv", "Point;East [m];North [m];Height [m]\r\nA;0;0;none\r\n");
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(LastMessage(),
              "Cannot read \"" + path_ +
                  "\", line 2, column 4: \"none\" is not a number (without \"Strict\" it is passed over)");
    EXPECT_TRUE(IsLoaded("FormInputFiles"));
    EXPECT_TRUE(IsLoaded("FormTable"));
    EXPECT_EQ(Job.Start.Count(), 0);
}

TEST_F(TableDialog, ATableIsNotWrittenAnewWithOtherNames) {
    OpenTable(kCsv);
    UserClick(TableWindow.BtnOK);
    UserSetText(InputFiles.TextNameOCS, target_);
    UserSetValue(InputFiles.OptionByCoordinate, 1);
    UserSetValue(InputFiles.CheckRenameMCS, 1);
    UserClick(InputFiles.BtnOK);
    EXPECT_NE(LastMessage().find("is not written anew"), std::string::npos);
    EXPECT_EQ(Contents(path_), kCsv);
}

TEST_F(TableDialog, MorePointsCanBeATable) {
    Import();
    ShowWindow("FormInputFiles");
    Choose(InputFiles.BtnBrowseMoreMCS, Write("more.csv", "Pt;X [cm];Y [cm];Z [cm]\r\nK;1;2;3\r\n"));
    ASSERT_TRUE(IsLoaded("FormTable"));
    UserClick(TableWindow.BtnOK);
    UserSetText(InputFiles.TextPreSuff, "n_");
    const int before = Job.Start.Count();
    UserClick(InputFiles.BtnImportMoreMCS);
    ASSERT_EQ(Job.Start.Count(), before + 1);
    EXPECT_EQ(Job.Start.Name.back(), "n_K");
    EXPECT_EQ(Job.Start.X.back(), 10.0);
}

// --- What is remembered -----------------------------------------------------------------------------------

TEST_F(TableDialog, TheMappingIsRememberedByFile) {
    OpenTable("A|1|2|3|x\r\nB|1|2|3|y\r\n");
    Take(TableWindow.ComboRole[1], "y");
    EXPECT_EQ(Roles(), "name,y,x,z,-") << "they change places";
    Take(TableWindow.ComboUnit, "cm");
    UserClick(TableWindow.BtnOK);
    UserClick(InputFiles.BtnCancel);
    ShowWindow("FormInputFiles");
    Choose(InputFiles.BtnBrowseMCS, path_);
    EXPECT_FALSE(IsLoaded("FormTable")) << "it is known";
    EXPECT_EQ(InputFiles.LabelTableMCS.Text, "read as a table");
    UserClick(InputFiles.BtnTableMCS);
    EXPECT_EQ(Roles(), "name,y,x,z,-");
    EXPECT_EQ(TableWindow.ComboUnit.Text, "cm");
    UserClick(TableWindow.BtnPlain);
    EXPECT_EQ(InputFiles.LabelTableMCS.Text, "");
    EXPECT_EQ(RememberedMapping(path_), "");
}

TEST_F(TableDialog, TheMappingGoesWithTheJob) {
    OpenTable(kCsv);
    Take(TableWindow.ComboUnit, "cm");
    UserClick(TableWindow.BtnOK);
    UserSetText(InputFiles.TextNameOCS, target_);
    UserClick(InputFiles.BtnOK);
    EXPECT_EQ(MappingOfJob(Job, kStartTable), "--format table --unit cm");
    EXPECT_EQ(MappingOfJob(Job, kTargetTable), "");
    SaveFileAs(PathOf("a.cvn"));
    RememberMapping(path_, "");
    OpenFile(PathOf("a.cvn"));
    ShowWindow("FormInputFiles");
    EXPECT_EQ(InputFiles.LabelTableMCS.Text, "read as a table");
    EXPECT_EQ(InputFiles.LabelTableOCS.Text, "");
    UserClick(InputFiles.BtnTableMCS);
    EXPECT_EQ(TableWindow.ComboUnit.Text, "cm");
}

TEST_F(TableDialog, PlainFilesLeaveNothingInJobAndSettings) {
    Import();
    EXPECT_TRUE(Job.OtherMembers.empty());
    EXPECT_EQ(Contents(::Run.SettingsFilePath).find("ImportTable"), std::string::npos);
}
