// What the user does in the main sheet: sorting, copying, picking values and points, column widths.

#include "analysis/form_main_sheet.h"
#include "analysis/main_sheet_job.h"
#include "core/files.h"

using namespace corvinade;

namespace {

class MainSheetUse : public MainSheetJob {
protected:
    static bool RightClick(int row, int col) { return UserRightClickCell(Sheet(), row, col); }
    static int CurrentPoint() { return PairOfRow(MainSheetWindow.Cells, FilledRow(Cells(), Cells().Row)); }
};

}  // namespace

// --- Sorting ----------------------------------------------------------------------------------------------

TEST_F(MainSheetUse, HeadingsSortAndEachFurtherClickGoesTheOtherWayRound) {
    FivePoints();
    Open();
    Click(0, 7);
    EXPECT_EQ(Col(7), (Texts{"-1.000", "0.000", "3.000", "", ""}));
    EXPECT_EQ(Col(0), (Texts{"P1", "P2", "P3", "S", "T"}));
    EXPECT_EQ(Selected(Cells()).Row, 1);
    EXPECT_EQ(Selected(Cells()).Row2, 5);
    EXPECT_EQ(Selected(Cells()).Col, 7);
    EXPECT_EQ(Selected(Cells()).Col2, 7);
    Click(0, 7);
    EXPECT_EQ(Col(0), (Texts{"S", "T", "P3", "P2", "P1"}));
    Click(0, 0);
    EXPECT_EQ(Col(0), (Texts{"P1", "P2", "P3", "S", "T"}));
    Click(0, 0);
    EXPECT_EQ(Col(0), (Texts{"T", "S", "P3", "P2", "P1"}));
    EXPECT_EQ(Cell(0, 0), "Point ID");
}

TEST_F(MainSheetUse, ColoursAndNumbersGoWithTheirRows) {
    FivePoints();
    Open();
    Click(0, 7);
    Click(0, 7);
    EXPECT_EQ(Colour(1, 0), kYellow);
    EXPECT_EQ(Colour(2, 0), kOrange);
    EXPECT_EQ(Colour(3, 0), kGreen);
    EXPECT_EQ(Col(22), (Texts{"4", "4", "3", "2", "1"}));
}

TEST_F(MainSheetUse, NumbersAreSortedByTheirValueAndNotByTheirCharacters) {
    for (const double x : {10.0, 9.0, -100.0, -20.0, 1000.0}) AddPair({x, 0, 0}, {x, 0, 0});
    SizeRest();
    Open();
    Click(0, 1);
    EXPECT_EQ(Col(1), (Texts{"-100.000", "-20.000", "9.000", "10.000", "1000.000"}));
}

TEST_F(MainSheetUse, TheSortingOutlivesARefillAndTheWindow) {
    FivePoints();
    Open();
    Click(0, 7);
    Click(0, 7);
    FuellenHaupttabelle();
    EXPECT_EQ(Col(0), (Texts{"S", "T", "P3", "P2", "P1"}));
    Job.Start.X[1] = 1000;  // now the largest deviation
    FuellenHaupttabelle();
    EXPECT_EQ(Col(0), (Texts{"S", "T", "P1", "P3", "P2"}));
    Close();
    Open();
    EXPECT_EQ(Col(0), (Texts{"S", "T", "P1", "P3", "P2"}));
    Click(0, 7);
    EXPECT_EQ(Col(0), (Texts{"P2", "P3", "P1", "S", "T"}));
}

TEST_F(MainSheetUse, AClickOnACellDoesNotSort) {
    FivePoints();
    Open();
    Click(5, 7);
    EXPECT_EQ(MainSheet.Sorting.Col, -1);
    EXPECT_EQ(Cells().Row, 5);
}

TEST_F(MainSheetUse, AnEmptySheetCanBeClickedAndCopied) {
    Open();
    EXPECT_TRUE(Click(0, 7));
    EXPECT_TRUE(RightClick(0, 3));
    EXPECT_EQ(CalculationWindow.GraphValues, Column{0});
    Headless.Clipboard = "before";
    Settings.TabelHeadMainSheet = kTrue;
    EXPECT_TRUE(Key("Ctrl+C"));
    EXPECT_EQ(Headless.Clipboard, "before");
    FivePoints();
    FuellenHaupttabelle();
    EXPECT_EQ(Cell(1, 0), "P1");  // sorted by what was clicked
    EXPECT_EQ(Cells().SortCol, 7);
}

// --- Copying ----------------------------------------------------------------------------------------------

TEST_F(MainSheetUse, TheSelectionIsCopied) {
    FivePoints();
    Open();
    Select({3, 2, 2, 0});
    Key("Ctrl+C");
    EXPECT_EQ(Headless.Clipboard, "P2\t0.000\t200.000\r\nP3\t30.000\t40.000");
    Select({4, 4, 5, 5});
    Key("Ctrl+C");
    EXPECT_EQ(Headless.Clipboard, "\t\r\n4.000\t5.000");
    Headless.Clipboard = "before";
    Key("Space");
    EXPECT_EQ(Headless.Clipboard, "before");
}

TEST_F(MainSheetUse, TheHeadingsGoWithTheCopyWhereTheOptionIsOn) {
    FivePoints();
    Settings.TabelHeadMainSheet = kTrue;
    Open();
    Select({2, 0, 3, 2});
    Key("Ctrl+C");
    EXPECT_EQ(Headless.Clipboard, "Point ID\tMCS.x\tMCS.y\r\nP2\t0.000\t200.000\r\nP3\t30.000\t40.000");
    Settings.TabelHeadMainSheet = 1;  // a flag is tested for -1
    Key("Ctrl+C");
    EXPECT_EQ(Headless.Clipboard, "P2\t0.000\t200.000\r\nP3\t30.000\t40.000");
}

TEST_F(MainSheetUse, TheHiddenNumberIsNotCopied) {
    FivePoints();
    Settings.TabelHeadMainSheet = kTrue;
    Open();
    Select({1, 21, 2, 22});
    Key("Ctrl+C");
    EXPECT_EQ(Headless.Clipboard, "dev.Theta.SPH\r\n0.0000\r\n-0.1698");
}

TEST_F(MainSheetUse, ASortedSheetIsCopiedAsItIsShown) {
    FivePoints();
    Open();
    Click(0, 7);
    Click(0, 7);
    Select({2, 0, 3, 1});
    Key("Ctrl+C");
    EXPECT_EQ(Headless.Clipboard, "T\t\r\nP3\t30.000");
}

TEST_F(MainSheetUse, AClipboardThatRefusesGivesAMessage) {
    FivePoints();
    Open();
    Headless.ClipboardRefuses = true;
    Key("Ctrl+C");
    EXPECT_EQ(Messages(), Texts{"Clipboard coud not be set due unknown error"});
    ProgrammLogik();
    UserClick(Main.MenuEditCopy);
    EXPECT_EQ(Messages().size(), 2U);
}

TEST_F(MainSheetUse, TheMainWindowsCopyCommandsCopyTheSelection) {
    FivePoints();
    Open();
    Select({2, 0, 2, 1});
    UserClick(Main.MenuEditCopy);
    EXPECT_EQ(Headless.Clipboard, "P2\t0.000");
    Select({3, 0, 3, 1});
    UserClick(Main.Toolbar1_Copy);
    EXPECT_EQ(Headless.Clipboard, "P3\t30.000");
    Close();
    UserClick(Main.MenuEditCopy);
    EXPECT_EQ(Headless.Clipboard, "P3\t30.000");
    EXPECT_EQ(Messages(), Texts{});
}

// --- The right button -------------------------------------------------------------------------------------

TEST_F(MainSheetUse, TheRightButtonCollectsTheFirstSelectedColumnAndPopsUpTheEditMenu) {
    FivePoints();
    Open();
    Select({5, 5, 1, 4});
    RightClick(3, 4);
    EXPECT_EQ(CalculationWindow.GraphValues, (Column{0, 101, 0, 27, 0, 4}));
    EXPECT_EQ(Main.MenuEdit.Value, 1);
    EXPECT_EQ(Selected(Cells()).Row, 1);
    EXPECT_EQ(Selected(Cells()).Row2, 5);
    UserClick(Main.MenuEditCopy);
    EXPECT_EQ(Headless.Clipboard,
              "101.000\t-2.000\r\n0.000\t202.000\r\n27.000\t40.000\r\n\t\r\n4.000\t5.000");
    EXPECT_EQ(Main.MenuEdit.Value, 0);
    RightClick(3, 4);
    EXPECT_EQ(Main.MenuEdit.Value, 1);
    Click(1, 1);  // elsewhere: the menu goes
    EXPECT_EQ(Main.MenuEdit.Value, 0);
    RightClick(3, 4);
    Close();
    EXPECT_EQ(Main.MenuEdit.Value, 0);
}

TEST_F(MainSheetUse, CollectedValuesAreReadWithTheSystemsDelimiter) {
    FivePoints();
    Headless.Decimal = ',';
    Open();
    Select({2, 9, 3, 9});
    RightClick(2, 9);
    EXPECT_EQ(CalculationWindow.GraphValues, (Column{0, 0.5, 0}));
}

// --- The current point ------------------------------------------------------------------------------------

TEST_F(MainSheetUse, APointChosenElsewhereBecomesTheCurrentRowInTheMiddle) {
    NamedPairs(500);
    Open();
    MainSheetWindow.Window.Place.Height = 240 * 40;
    Click(3, 5);
    MainSheet_ShowPoint(300);
    EXPECT_EQ(Cells().Row, 300);
    EXPECT_EQ(Cells().RowSel, 300);
    EXPECT_EQ(Cells().Col, 5);
    EXPECT_EQ(Cells().TopRow, 280);
    MainSheet_ShowPoint(2);
    EXPECT_EQ(Cells().Row, 2);
    EXPECT_EQ(Cells().TopRow, 1);
    Click(0, 1);
    Click(0, 1);  // from the last point to the first
    MainSheet_ShowPoint(300);
    EXPECT_EQ(Cells().Row, 201);
    EXPECT_EQ(Cell(201, 0), "P300");
    EXPECT_EQ(CurrentPoint(), 300);
}

TEST_F(MainSheetUse, APointThatTheSheetDoesNotHaveChangesNothing) {
    FivePoints();
    Open();
    Click(2, 3);
    for (const int point : {-1, 0, 4, 5, 99}) MainSheet_ShowPoint(point);
    EXPECT_EQ(Cells().Row, 2);
    ++Run.JobGeneration;  // of another job
    MainSheet_ShowPoint(1);
    EXPECT_EQ(Cells().Row, 2);
}

TEST_F(MainSheetUse, TheNameUnderThePointTablesCursorLeadsToItsRow) {
    FivePoints();
    Open();
    CalculationJob::Open();
    Main.MenueGraphics.Checked = true;
    UserClickCell(TrafoWindow.Tabelle, 3, kColName, false);
    EXPECT_EQ(CurrentPoint(), 3);
    UserClickCell(TrafoWindow.Tabelle, 2, kColX, false);
    EXPECT_EQ(CurrentPoint(), 3);
}

// --- Widths -----------------------------------------------------------------------------------------------

TEST_F(MainSheetUse, WidthsComeFromTheSettingsAndGoBackThere) {
    IniWerteSchreiben({{"Cols", "FormMainSheet0", "1500"},
                       {"Cols", "FormMainSheet21", "700"},
                       {"Cols", "Col_21", "1"},
                       {"Cols", "Col_3", "333"}});
    FivePoints();
    Open();
    ASSERT_EQ(Cells().ColWidths.size(), 23U);
    EXPECT_EQ(Cells().ColWidths[0], 1500);
    EXPECT_EQ(Cells().ColWidths[1], 1000);  // a missing key reads as 1000, as everywhere in the settings
    EXPECT_EQ(Cells().ColWidths[3], 333);
    EXPECT_EQ(Cells().ColWidths[21], 700);
    Cells().ColWidths[4] = 444;
    Close();
    EXPECT_EQ(IniWertLesen("FormMainSheet0"), "1500");
    EXPECT_EQ(IniWertLesen("FormMainSheet3"), "333");
    EXPECT_EQ(IniWertLesen("FormMainSheet4"), "444");
    EXPECT_EQ(IniWertLesen("FormMainSheet21"), "700");
    EXPECT_EQ(IniWertLesen("Cols"), "23");
    EXPECT_NE(Contents(Run.SettingsFilePath).find("[Cols]\r\nFormMainSheet0=1500\r\n"), std::string::npos);
    Open();
    EXPECT_EQ(Cells().ColWidths[3], 333);
    EXPECT_EQ(Cells().ColWidths[4], 444);
}

TEST_F(MainSheetUse, AWidthThatIsNoneIsTheUsualOneAndTheWindowOpens) {
    IniWerteSchreiben({{"Cols", "FormMainSheet1", "wide"},
                       {"Cols", "FormMainSheet2", "0"},
                       {"Cols", "FormMainSheet3", "-7"},
                       {"Cols", "FormMainSheet4", "1e300"},
                       {"Cols", "FormMainSheet5", ""}});
    FivePoints();
    Open();
    for (std::size_t col = 1; col <= 5; ++col) EXPECT_EQ(Cells().ColWidths[col], 1000) << col;
}

TEST_F(MainSheetUse, WidthsThatCannotBeWrittenAreToldAndTheWindowCloses) {
    FivePoints();
    Open();
    FileFaults.Refuse = [](const std::string& operation, const std::string&) {
        return operation == "create" ? "the disk is full" : "";
    };
    Close();
    EXPECT_EQ(Messages().size(), 1U);
    EXPECT_EQ(Main.MenuVievMainSheet.Checked, IsLoaded("FormMainSheet"));
    Close();
    EXPECT_FALSE(IsLoaded("FormMainSheet"));
    EXPECT_FALSE(Main.MenuVievMainSheet.Checked);
    EXPECT_EQ(Messages().size(), 1U);
}
