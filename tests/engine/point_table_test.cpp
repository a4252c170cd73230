// What the point table of the calculation window shows, how it is sorted and copied.
#include "engine/calculation_window.h"
#include "engine/point_table_window.h"

using namespace corvinade;

using PointTableShown = PointTableWindow;

// --- What it shows ----------------------------------------------------------------------------------------

TEST_F(PointTableShown, TheWindowOpensWithHeadingsAndTheDeviations) {
    OpenWithFour();
    EXPECT_EQ(Rows(), 5);
    EXPECT_EQ(Cells().Cols, 9);
    EXPECT_EQ(Row(0), (Texts{"", "Pt.ID", "dev.x", "dev.y", "dev.z", "use.x", "use.y", "use.z", ""}));
    EXPECT_EQ(Row(1), (Texts{"", "P1", "-10.500", "-20.000", "-29.000", "X", "X", "X", "1"}));
    EXPECT_EQ(Row(4), (Texts{"", "P4", "-12.000", "-20.000", "-26.000", "X", "X", "X", "4"}));
    EXPECT_EQ(Window().Tabelle.ToolTip,
              "Green Fields indicate Seed Points for Raw Solution; Change Seeds with double Click");
    EXPECT_FALSE(IsHiddenCol(Cells(), 7));
    EXPECT_TRUE(IsHiddenCol(Cells(), 8));
    for (int col = 1; col <= 4; ++col) EXPECT_EQ(Cells().Aligns[At(col)], GridAlign::Right);
    for (int col = 5; col <= 7; ++col) EXPECT_EQ(Cells().Aligns[At(col)], GridAlign::Centre);
}

TEST_F(PointTableShown, EachBoxGivesEachPointARow) {
    OpenWithFour();
    UserSetValue(Window().CheckMeasurement, 1);
    EXPECT_EQ(Rows(), 9);
    EXPECT_EQ(Row(3), (Texts{"", "P2", "100.000", "0.000", "1.000", "", "", "", "2"}));
    EXPECT_EQ(Row(4), (Texts{"", "", "-11.000", "-20.000", "-28.000", "X", "X", "X", "2"}));
    UserSetValue(Window().CheckObject, 1);
    EXPECT_EQ(Rows(), 13);
    EXPECT_EQ(Row(4), (Texts{"", "P2", "100.000", "0.000", "1.000", "", "", "", "2"}));
    EXPECT_EQ(Row(5), (Texts{"", "", "111.000", "20.000", "29.000", "", "", "", "2"}));
    EXPECT_EQ(Row(6), (Texts{"", "", "-11.000", "-20.000", "-28.000", "X", "X", "X", "2"}));
    UserSetValue(Window().CheckMeasurement, 0);
    EXPECT_EQ(Row(3), (Texts{"", "P2", "111.000", "20.000", "29.000", "", "", "", "2"}));
    EXPECT_EQ(Row(4), (Texts{"", "", "-11.000", "-20.000", "-28.000", "X", "X", "X", "2"}));
    UserSetValue(Window().CheckDeviation, 0);
    EXPECT_EQ(Rows(), 5);
    EXPECT_EQ(Row(2), (Texts{"", "P2", "111.000", "20.000", "29.000", "", "", "", "2"}));
    EXPECT_EQ(Colour(2, 5), kSystemColour);
}

TEST_F(PointTableShown, WithoutABoxTheTableStaysAsItWas) {
    OpenWithFour();
    UserSetValue(Window().CheckDeviation, 0);  // not even looked at before
    EXPECT_EQ(Row(2), (Texts{"", "P2", "-11.000", "-20.000", "-28.000", "X", "X", "X", "2"}));
    DblClick(2, 5);  // without its box nothing acts on a deviation
    DblClick(2, 2);
    EXPECT_EQ(FlagsOf(2), (Ints{1, 1, 1}));
    Job.Start.Name[2] = "other";
    TabelleFüllenNeu();
    EXPECT_EQ(Cell(2, 1), "P2");
    UserSetValue(Window().CheckObject, 1);
    EXPECT_EQ(Cell(2, 1), "other");
}

TEST_F(PointTableShown, LengthsAreShownInTheUnitOfTheJob) {
    OpenWithFour();
    Job.LengthUnitName = "meter";
    Job.LengthDigits = 6;
    RhoFestlegung();
    EXPECT_EQ(Cell(1, 2), "-10.500");  // as it was filled
    CalculationWindow_UnitsChanged();
    EXPECT_EQ(Cell(1, 2), "-0.010500");
    Headless.Decimal = ',';
    EXPECT_EQ(Cell(1, 2), "-0,010500");
}

TEST_F(PointTableShown, UseCellsAreMarkedAndColoured) {
    FourPoints();
    Job.UseFlags[2 + 3] = 0;  // y of the second point
    Open();
    EXPECT_EQ(Row(2), (Texts{"", "P2", "-11.000", "-20.000", "-28.000", "X", "", "X", "2"}));
    EXPECT_EQ(Colour(2, 5), kWhite);
    EXPECT_EQ(Colour(2, 6), kYellow);
    EXPECT_EQ(Colour(2, 4), kSystemColour);
    EXPECT_EQ(Colour(0, 6), kSystemColour);
}

TEST_F(PointTableShown, TheFirstThreePointsAreTheDefaultSeedsAndGreen) {
    OpenWithFour();
    // Chosen by the fill itself, so that a calculation finds them in a table that nobody looked at.
    EXPECT_EQ(SeedNames(), (Texts{"P1", "P2", "P3"}));
    EXPECT_EQ(Job.SeedIndex[3], 3);
    EXPECT_EQ(Colour(0, 1), kSystemColour);
    for (int row = 1; row <= 3; ++row) EXPECT_EQ(Colour(row, 1), kGreen);
    EXPECT_EQ(Colour(4, 1), kSystemColour);
    EXPECT_EQ(Colour(1, 2), kSystemColour);
    UserSetValue(Window().CheckMeasurement, 1);
    EXPECT_EQ(Colour(1, 1), kGreen);
    EXPECT_EQ(Colour(2, 1), kSystemColour);  // no name, no seed
    EXPECT_EQ(Colour(7, 1), kSystemColour);
}

TEST_F(PointTableShown, ChosenSeedsStay) {
    FourPoints();
    Job.SeedName = {"", "P4", "P2", "P1"};
    Job.SeedIndex = {0, 4, 2, 1};
    Open();
    EXPECT_EQ(SeedNames(), (Texts{"P4", "P2", "P1"}));
    EXPECT_EQ(Colour(3, 1), kSystemColour);
    EXPECT_EQ(Colour(4, 1), kGreen);
}

TEST_F(PointTableShown, FewPointsHaveFewSeedsAndAnEmptyNameIsNone) {
    AddPair({1, 2, 3}, {1, 2, 3});
    AddPair({4, 5, 6}, {4, 5, 6});
    AddPair({7, 8, 9}, {4, 5, 6});
    Job.SetPairs(2);
    Open();
    EXPECT_EQ(SeedNames(), (Texts{"P1", "P2", ""}));
    EXPECT_EQ(Rows(), 3);
    Job.SetPairs(3);
    Job.Start.Name[3] = "";
    TabelleFüllenNeu();
    EXPECT_EQ(Colour(2, 1), kGreen);
    EXPECT_EQ(Colour(3, 1), kSystemColour);
}

TEST_F(PointTableShown, AJobWithoutPairsShowsTheHeadingsAlone) {
    Open();
    EXPECT_EQ(Rows(), 1);
    EXPECT_EQ(Cell(0, 1), "Pt.ID");
    EXPECT_EQ(Cells().Row, 0);
    EXPECT_TRUE(Click(0, 2));
    EXPECT_TRUE(DblClick(0, 1));
    EXPECT_TRUE(DblClick(0, 5));
    EXPECT_TRUE(Select({0, 0, 0, 8}));
    for (const char* key : {"Space", "Ctrl+C", "Ctrl+Insert", "Left"}) EXPECT_TRUE(Key(key));
    EXPECT_TRUE(RightClick(0, 2));
    EXPECT_TRUE(UserDblClick(Window().TextMaxDevXYZPkt));
    EXPECT_TRUE(UserClick(Window().BtnUseAllPts));
    EXPECT_TRUE(Messages().empty());
}

TEST_F(PointTableShown, ATableIsTakenWhenItIsFirstLookedAt) {
    OpenWithFour();
    EXPECT_TRUE(Cells().Fill);
    EXPECT_TRUE(Window().Points.Names.empty());
    EXPECT_EQ(Cell(1, 1), "P1");
    EXPECT_FALSE(Cells().Fill);
    // What the job does from now on is not shown until the table is filled again.
    Job.Start.Name[1] = "new";
    Job.Transformed.X[1] = 0.25;
    Job.UseFlags[1] = 0;
    EXPECT_EQ(Row(1), (Texts{"", "P1", "-10.500", "-20.000", "-29.000", "X", "X", "X", "1"}));
    TabelleFüllenNeu();
    EXPECT_EQ(Row(1), (Texts{"", "new", "-10.250", "-20.000", "-29.000", "", "X", "X", "1"}));
}

TEST_F(PointTableShown, TheDirectionSwitchShowsTheOtherSetsDifferences) {
    OpenWithFour();
    EXPECT_EQ(Cell(1, 2), "-10.500");
    UserClick(Window().BtnSwitchMcsOcs);
    EXPECT_EQ(Cell(1, 2), "10.500");
    EXPECT_EQ(Cell(4, 4), "26.000");
}

TEST_F(PointTableShown, ACalculationRefillsTheTable) {
    OpenWithFour();
    EXPECT_EQ(Cell(1, 2), "-10.500");
    UserClick(Window().BtnCalculate);
    // A shift and a rotation leave of the deviations what has no mean.
    double sum = 0;
    for (const std::string& text : Col(2)) sum += std::stod(text);
    EXPECT_NEAR(sum, 0, 2e-3);
    EXPECT_EQ(Cell(1, 2), Length(Calculation.v[1]));
}

TEST_F(PointTableShown, TheTableShowsTheDeviationsAlsoWhereThePicturesShowRVectors) {
    OpenWithFour();
    Settings.ShowRVec = kTrue;
    UserSetValue(Window().CheckTraX, 0);
    UserClick(Window().BtnCalculate);
    EXPECT_EQ(Cell(1, 2), Length(Calculation.v[1]));
    EXPECT_EQ(Cell(3, 4), Length(Calculation.v[9]));
}

// --- Widths -----------------------------------------------------------------------------------------------

TEST_F(PointTableShown, WidthsComeFromTheSettingsAndGoBackThere) {
    IniWerteSchreiben({{"Cols", "col_fb_1", "1500"}, {"Cols", "col_fb_2", "0"}});
    OpenWithFour();
    // A key that is missing reads as 1000, as everywhere in the settings.
    const Ints shown(Cells().ColWidths.begin() + 1, Cells().ColWidths.begin() + 8);
    EXPECT_EQ(shown, (Ints{1500, 900, 1000, 1000, 1000, 1000, 1000}));
    Cells().ColWidths[7] = 333;
    UserClose(*FindWindow("FormTrafoBerechnung"));
    const Texts stored = {"1500", "900", "1000", "1000", "1000", "1000", "333"};
    for (int col = 1; col <= 7; ++col)
        EXPECT_EQ(IniWertLesen("col_fb_" + std::to_string(col)), stored[At(col - 1)]);
    EXPECT_EQ(IniWertLesen("col_fb_0"), "1000");
    EXPECT_EQ(IniWertLesen("col_fb_8"), "1000");
    EXPECT_NE(Contents(Run.SettingsFilePath).find("[Cols]\r\ncol_fb_1=1500\r\n"), std::string::npos);
}

TEST_F(PointTableShown, AWidthThatIsNoneIsTheUsualOneAndTheWindowOpens) {
    IniWertSchreiben("Cols", "col_fb_4", "wide");
    IniWertSchreiben("Cols", "col_fb_5", "-7");
    IniWertSchreiben("Cols", "col_fb_6", "1e300");
    FourPoints();
    EXPECT_TRUE(Dispatch([] { ShowWindow("FormTrafoBerechnung"); }));
    for (const std::size_t col : {4, 5, 6}) EXPECT_EQ(Cells().ColWidths[col], 900);
}

// --- Sorting ----------------------------------------------------------------------------------------------

TEST_F(PointTableShown, HeadingsSortAndEachFurtherClickGoesTheOtherWayRound) {
    OpenWithFour();
    Click(0, 4);
    EXPECT_EQ(Col(4), (Texts{"-29.000", "-28.000", "-27.000", "-26.000"}));
    EXPECT_EQ(Selected(Cells()).Row, 1);
    EXPECT_EQ(Selected(Cells()).Row2, 4);
    EXPECT_EQ(Selected(Cells()).Col2, 4);
    Click(0, 4);
    EXPECT_EQ(Col(4), (Texts{"-26.000", "-27.000", "-28.000", "-29.000"}));
    Click(0, 1);
    EXPECT_EQ(Col(1), (Texts{"P1", "P2", "P3", "P4"}));
    Click(0, 3);  // all the same: as the points stand in the job
    EXPECT_EQ(Col(1), (Texts{"P1", "P2", "P3", "P4"}));
}

TEST_F(PointTableShown, TheHeadingsOfTheUseColumnsDoNothing) {
    OpenWithFour();
    for (int col = 5; col <= 7; ++col) Click(0, col);
    EXPECT_EQ(Col(1), (Texts{"P1", "P2", "P3", "P4"}));
    EXPECT_EQ(CalculationWindow.Sorting.Col, -1);
}

TEST_F(PointTableShown, TheSortingOutlivesARefillAndTheWindow) {
    OpenWithFour();
    Click(0, 2);
    TabelleFüllenNeu();
    EXPECT_EQ(Col(1), (Texts{"P4", "P3", "P2", "P1"}));
    UserClose(*FindWindow("FormTrafoBerechnung"));
    Open();
    EXPECT_EQ(Col(1), (Texts{"P4", "P3", "P2", "P1"}));
    Click(0, 2);
    EXPECT_EQ(Col(1), (Texts{"P1", "P2", "P3", "P4"}));
}

TEST_F(PointTableShown, ARefillKeepsTopRowAndSelection) {
    OpenWithFour();
    Select({2, 3, 4, 5});
    Cells().TopRow = 3;
    TabelleFüllenNeu();
    EXPECT_EQ(Rows(), 5);
    EXPECT_EQ(Cells().TopRow, 3);
    EXPECT_EQ(Cells().Row, 2);
    EXPECT_EQ(Cells().RowSel, 4);
    EXPECT_EQ(Cells().Col, 3);
    EXPECT_EQ(Cells().ColSel, 5);
    Job.SetPairs(2);  // the table shrinks below it
    TabelleFüllenNeu();
    EXPECT_EQ(Rows(), 3);
    EXPECT_EQ(Cells().TopRow, 2);
    EXPECT_EQ(Selected(Cells()).Row2, 2);
}

// --- Copying ----------------------------------------------------------------------------------------------

TEST_F(PointTableShown, TheSelectionIsCopied) {
    OpenWithFour();
    Select({2, 1, 3, 8});
    Key("Ctrl+C");
    EXPECT_EQ(Headless.Clipboard,
              "P2\t-11.000\t-20.000\t-28.000\tX\tX\tX\r\nP3\t-11.500\t-20.000\t-27.000\tX\tX\tX");
    Select({1, 2, 1, 2});
    Key("Ctrl+Insert");
    EXPECT_EQ(Headless.Clipboard, "-10.500");
    Headless.ClipboardRefuses = true;
    Key("Ctrl+C");
    EXPECT_EQ(LastMessage(), "Clipboard coud not be set due unknown error");
}

TEST_F(PointTableShown, TheRightButtonCollectsValuesAndTextAndOpensAMenu) {
    OpenWithFour();
    EXPECT_FALSE(Window().MenuTabelleCopy.Visible);
    Select({4, 4, 2, 2});
    RightClick(1, 1);
    EXPECT_EQ(CalculationWindow.GraphValues, (Column{0, -11, -11.5, -12}));
    EXPECT_TRUE(Window().MenuTabelleCopy.Visible);
    UserClick(Window().MenuTabelleCopy);
    EXPECT_EQ(Headless.Clipboard,
              "-11.000\t-20.000\t-28.000\r\n-11.500\t-20.000\t-27.000\r\n-12.000\t-20.000\t-26.000");
    EXPECT_FALSE(Window().MenuTabelleCopy.Visible);
    EXPECT_EQ(Selected(Cells()).Row, 2);
    EXPECT_EQ(Selected(Cells()).Row2, 4);
    RightClick(1, 1);
    Click(1, 1);  // elsewhere: the menu goes
    EXPECT_FALSE(Window().MenuTabelleCopy.Visible);
}

TEST_F(PointTableShown, TheRightButtonReadsNumbersWithTheSystemsDelimiter) {
    OpenWithFour();
    Headless.Decimal = ',';
    Select({1, 2, 2, 2});
    RightClick(1, 2);
    EXPECT_EQ(CalculationWindow.GraphValues, (Column{0, -10.5, -11}));
    Select({1, 1, 2, 1});  // names are no numbers
    RightClick(1, 1);
    EXPECT_EQ(CalculationWindow.GraphValues, (Column{0, 0, 0}));
}

TEST_F(PointTableShown, TheRightButtonLeavesTheUseColumnsAlone) {
    OpenWithFour();
    Select({1, 4, 2, 5});
    RightClick(1, 4);
    EXPECT_FALSE(Window().MenuTabelleCopy.Visible);
    EXPECT_EQ(CalculationWindow.GraphValues, Column{0});
}
