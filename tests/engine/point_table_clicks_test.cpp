// What a click in the point table does to the use flags and the seed points.
#include "engine/calculation_window.h"
#include "engine/point_table_window.h"

using namespace corvinade;

using PointTableClicks = PointTableWindow;

// --- Coordinates in and out -------------------------------------------------------------------------------

TEST_F(PointTableClicks, ADoubleClickOnAUseCellTurnsItOver) {
    OpenWithFour();
    DblClick(2, 6);
    EXPECT_EQ(Flags(), (Ints{1, 1, 1, 1, 0, 1, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(Cell(2, 6), "");
    EXPECT_EQ(Colour(2, 6), kYellow);
    DblClick(2, 6);
    EXPECT_EQ(FlagsOf(2), (Ints{1, 1, 1}));
    EXPECT_EQ(Cell(2, 6), "X");
    EXPECT_EQ(Colour(2, 6), kWhite);
}

TEST_F(PointTableClicks, ADeviationStandsForItsUseCell) {
    OpenWithFour();
    for (int col = 2; col <= 4; ++col) {
        DblClick(3, col);
        EXPECT_EQ(Cell(3, col + 3), "");
        EXPECT_EQ(FlagsOf(3)[At(col - 2)], 0);
    }
    EXPECT_EQ(FlagsOf(3), (Ints{0, 0, 0}));
    EXPECT_EQ(FlagsOf(2), (Ints{1, 1, 1}));
}

TEST_F(PointTableClicks, OnlyDeviationRowsAct) {
    OpenWithFour();
    UserSetValue(Window().CheckMeasurement, 1);
    UserSetValue(Window().CheckObject, 1);
    for (const int row : {4, 5})
        for (int col = 2; col <= 7; ++col) DblClick(row, col);
    EXPECT_EQ(Flags(), Ints(12, 1));
    DblClick(6, 3);
    EXPECT_EQ(FlagsOf(2), (Ints{1, 0, 1}));
    EXPECT_EQ(Cell(6, 6), "");
}

TEST_F(PointTableClicks, HeadingsAndOtherColumnsChangeNoFlags) {
    OpenWithFour();
    for (int col = 0; col <= 8; ++col) DblClick(0, col);
    DblClick(2, 0);
    DblClick(2, 1);
    DblClick(2, 8);
    EXPECT_EQ(Flags(), Ints(12, 1));
    EXPECT_EQ(SeedNames(), (Texts{"P1", "P2", "P3"}));
}

TEST_F(PointTableClicks, TheSpaceBarActsOnEachCellOfTheSelection) {
    OpenWithFour();
    Select({3, 7, 2, 6});  // from below
    Key("Space");
    EXPECT_EQ(Flags(), (Ints{1, 1, 1, 1, 0, 0, 1, 0, 0, 1, 1, 1}));
    DblClick(2, 6);
    Select({2, 5, 3, 7});
    Key("Space");
    EXPECT_EQ(Flags(), (Ints{1, 1, 1, 0, 0, 1, 0, 1, 1, 1, 1, 1}));
    Key("a");
    EXPECT_EQ(FlagsOf(2), (Ints{0, 0, 1}));
    // A deviation and its use cell in one selection undo each other.
    Select({1, 2, 4, 7});
    Key("Space");
    EXPECT_EQ(Flags(), (Ints{1, 1, 1, 0, 0, 1, 0, 1, 1, 1, 1, 1}));
}

TEST_F(PointTableClicks, WithDistancesTheOtherFlagsOfThePointFollowInSilence) {
    OpenWithFour();
    UserSetValue(Window().CheckRDist, 1);
    DblClick(2, 5);
    EXPECT_EQ(Flags(), (Ints{1, 1, 1, 0, 0, 0, 1, 1, 1, 1, 1, 1}));
    EXPECT_EQ(Row(2), (Texts{"", "P2", "-11.000", "-20.000", "-28.000", "", "X", "X", "2"}));
    // A cell acts by what it shows: this one still shows that it takes part.
    DblClick(2, 6);
    EXPECT_EQ(FlagsOf(2), (Ints{0, 0, 0}));
    DblClick(2, 6);
    EXPECT_EQ(FlagsOf(2), (Ints{1, 1, 1}));
    EXPECT_EQ(Cell(2, 5), "");
    TabelleFüllenNeu();
    EXPECT_EQ(Cell(2, 5), "X");
    DblClick(2, 7);
    TabelleFüllenNeu();
    EXPECT_EQ(Cell(2, 5), "");
}

TEST_F(PointTableClicks, AHeldDistanceCountsUnlessItIsZeroOrTheToolVectorIsInUse) {
    OpenWithFour();
    UserSetValue(Window().CheckRDist, 0);
    for (const char* text : {"", "0", "0.000", "float", "not used"}) {
        Job.ParamText[kRDist] = text;
        DblClick(2, 5);
        DblClick(2, 5);
        DblClick(2, 6);
        EXPECT_EQ(FlagsOf(2), (Ints{1, 0, 1})) << text;
        DblClick(2, 6);
    }
    Job.ParamText[kRDist] = "250.5";
    DblClick(2, 6);
    EXPECT_EQ(FlagsOf(2), (Ints{0, 0, 0}));
    DblClick(2, 6);
    CalculationWindow.UseABCActive = kTrue;
    DblClick(2, 6);
    EXPECT_EQ(FlagsOf(2), (Ints{1, 0, 1}));
}

TEST_F(PointTableClicks, AClickInASortedTableActsOnThePointThatIsSeen) {
    OpenWithFour();
    Click(0, 2);  // dev.x ascending: P4 first
    EXPECT_EQ(Col(1), (Texts{"P4", "P3", "P2", "P1"}));
    EXPECT_EQ(Col(8), (Texts{"4", "3", "2", "1"}));
    DblClick(1, 7);
    EXPECT_EQ(FlagsOf(4), (Ints{1, 1, 0}));
    EXPECT_EQ(Cell(1, 7), "");
    UserSetValue(Window().CheckMeasurement, 1);
    // By value, measured x and deviations in one column.
    EXPECT_EQ(Col(2),
              (Texts{"-12.000", "-11.500", "-11.000", "-10.500", "0.000", "0.000", "100.000", "100.000"}));
    DblClick(2, 2);
    EXPECT_EQ(FlagsOf(3), (Ints{0, 1, 1}));
    DblClick(8, 2);  // a measured point
    EXPECT_EQ(FlagsOf(3), (Ints{0, 1, 1}));
    EXPECT_EQ(FlagsOf(2), (Ints{1, 1, 1}));
}

TEST_F(PointTableClicks, AChangeIsCalculatedWhereEveryChangeIs) {
    OpenWithFour();
    UserSetValue(Window().CheckAutoRec, 1);
    EXPECT_FALSE(Calculation.Done);
    DblClick(1, 1);  // a seed already: nothing has changed
    EXPECT_FALSE(Calculation.Done);
    DblClick(2, 7);
    EXPECT_TRUE(Calculation.Done);
    EXPECT_EQ(Calculation.P[6], 0);
    EXPECT_EQ(Cell(2, 7), "");
}

TEST_F(PointTableClicks, AClickWhileACalculationRunsCountsForTheNextOne) {
    OpenWithFour();
    static int clicks = 0;
    clicks = 0;
    Headless.OnYield = [] {
        if (clicks++ == 0) DblClick(2, 7);
    };
    UserClick(Window().BtnCalculate);
    EXPECT_EQ(FlagsOf(2), (Ints{1, 1, 0}));
    EXPECT_EQ(Cell(2, 7), "");
    clicks = 0;
    UserSetValue(Window().CheckAutoRec, 1);
    UserClick(Window().BtnCalculate);
    EXPECT_EQ(FlagsOf(2), (Ints{1, 1, 1}));
    EXPECT_EQ(Calculation.P[6], 1);  // calculated once more
    EXPECT_EQ(Cell(2, 7), "X");
    EXPECT_EQ(Cell(2, 4), Length(Calculation.v[6]));
}

TEST_F(PointTableClicks, APointThatTheJobNoLongerHasIsLeftAlone) {
    OpenWithFour();
    EXPECT_EQ(Rows(), 5);
    Job.SetPairs(1);
    Job.UseFlags.resize(4);
    DblClick(4, 5);
    DblClick(4, 1);
    Job.Start.Name[1] = "another";
    DblClick(1, 5);
    DblClick(1, 1);
    EXPECT_EQ(Flags(), Ints(3, 1));
    EXPECT_EQ(SeedNames(), (Texts{"P1", "P2", "P3"}));
    Job.Start = PointSet();  // in the middle of an import
    TabelleFüllenNeu();
    EXPECT_EQ(Rows(), 1);
    EXPECT_EQ(Cells().Row, 0);
}

// --- Seeds ------------------------------------------------------------------------------------------------

TEST_F(PointTableClicks, ADoubleClickOnANameMakesItTheFirstSeed) {
    OpenWithFour();
    DblClick(4, 1);
    EXPECT_EQ(SeedNames(), (Texts{"P4", "P1", "P2"}));
    EXPECT_EQ(Job.SeedIndex, (std::array<std::int16_t, 4>{0, 4, 1, 2}));
    EXPECT_EQ(Colour(4, 1), kGreen);
    EXPECT_EQ(Colour(3, 1), kSystemColour);
    EXPECT_EQ(Flags(), Ints(12, 1));
}

TEST_F(PointTableClicks, ADoubleClickOnTheNameOfASeedChangesNothing) {
    OpenWithFour();
    const auto before = Row(2);
    DblClick(2, 1);
    EXPECT_EQ(SeedNames(), (Texts{"P1", "P2", "P3"}));
    EXPECT_EQ(Row(2), before);
    EXPECT_EQ(Flags(), Ints(12, 1));
}

TEST_F(PointTableClicks, InASortedTableTheSeenPointBecomesTheSeed) {
    OpenWithFour();
    Click(0, 2);
    DblClick(1, 1);
    EXPECT_EQ(SeedNames(), (Texts{"P4", "P1", "P2"}));
    EXPECT_EQ(Col(1), (Texts{"P4", "P3", "P2", "P1"}));  // sorted again
    EXPECT_EQ(Colour(1, 1), kGreen);
}

// --- The extremes, all points -----------------------------------------------------------------------------

TEST_F(PointTableClicks, AnExtremesDoubleClickTurnsItsPointOver) {
    OpenWithFour();
    struct Field {
        Control* Name;
        int Axis;
    };
    const Field fields[] = {{&Window().TextMaxDevXPkt, 0}, {&Window().TextMaxDevYPkt, 1},
                            {&Window().TextMaxDevZPkt, 2}, {&Window().TextMinDevXPkt, 0},
                            {&Window().TextMinDevYPkt, 1}, {&Window().TextMinDevZPkt, 2}};
    for (const Field& field : fields) {
        field.Name->Text = "P3";
        UserDblClick(*field.Name);
        Ints expected(3, 1);
        expected[At(field.Axis)] = 0;
        EXPECT_EQ(FlagsOf(3), expected);
        EXPECT_EQ(Cell(3, 5 + field.Axis), "");
        EXPECT_EQ(Cells().Col, 5 + field.Axis);
        EXPECT_EQ(Cells().RowSel, 3);
        UserDblClick(*field.Name);
        EXPECT_EQ(Flags(), Ints(12, 1));
    }
}

TEST_F(PointTableClicks, TheLargestDeviationsDoubleClickTurnsAllThreeOverAndCalculatesOnce) {
    OpenWithFour();
    Job.UseFlags = {0, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0};
    TabelleFüllenNeu();
    Job.AutoRecalc = kTrue;
    Window().TextMaxDevXYZPkt.Text = "P2";
    UserDblClick(Window().TextMaxDevXYZPkt);
    EXPECT_EQ(FlagsOf(2), (Ints{0, 0, 0}));
    EXPECT_EQ(Row(2), (Texts{"", "P2", "-11.000", "-20.000", "-28.000", "", "", "", "2"}));
    // Three coordinates are too few for six parameters, and so were four and five on the way.
    EXPECT_EQ(Messages(), Texts{"This is not a redundant calculation"});
    EXPECT_EQ(Job.AutoRecalc, kTrue);
}

TEST_F(PointTableClicks, WithDistancesTheLargestDeviationsPointIsTurnedOverAsAWhole) {
    OpenWithFour();
    UserSetValue(Window().CheckRDist, 1);
    Window().TextMaxDevXYZPkt.Text = "P2";
    UserDblClick(Window().TextMaxDevXYZPkt);
    EXPECT_EQ(FlagsOf(2), (Ints{0, 0, 0}));
    UserDblClick(Window().TextMaxDevXYZPkt);
    EXPECT_EQ(FlagsOf(2), (Ints{1, 1, 1}));
}

TEST_F(PointTableClicks, SwitchingFindsThePointInEachKindOfTable) {
    OpenWithFour();
    UserSetValue(Window().CheckMeasurement, 1);
    UserSetValue(Window().CheckObject, 1);
    Switch_MaxPoint("P3", "Y");
    EXPECT_EQ(FlagsOf(3), (Ints{1, 0, 1}));
    Click(0, 2);
    Switch_MaxPoint("P3", "Y");
    EXPECT_EQ(FlagsOf(3), (Ints{1, 1, 1}));
    UserSetValue(Window().CheckDeviation, 0);
    Switch_MaxPoint("P3", "Y");  // no use cells are shown
    EXPECT_EQ(FlagsOf(3), (Ints{1, 1, 1}));
}

TEST_F(PointTableClicks, SwitchingAPointThatIsNotThereChangesNothing) {
    OpenWithFour();
    UserSetValue(Window().CheckMeasurement, 1);
    Select({2, 2, 3, 3});
    for (const char* name : {"", "P5", "Pt.ID", "p1"}) Switch_MaxPoint(name, "X");
    EXPECT_EQ(Flags(), Ints(12, 1));
    EXPECT_EQ(Cells().Row, 2);
}

TEST_F(PointTableClicks, AllPointsAreTakenBackIn) {
    OpenWithFour();
    std::fill(Job.UseFlags.begin() + 1, Job.UseFlags.end(), std::int16_t{0});
    TabelleFüllenNeu();
    EXPECT_EQ(Cell(1, 5), "");
    UserClick(Window().BtnUseAllPts);
    EXPECT_EQ(Flags(), Ints(12, 1));
    EXPECT_EQ(Cell(1, 5), "X");
    EXPECT_FALSE(Calculation.Done);
    UserSetValue(Window().CheckAutoRec, 1);
    Job.UseFlags[1] = 0;
    UserClick(Window().BtnUseAllPts);
    EXPECT_TRUE(Calculation.Done);
    EXPECT_EQ(Calculation.P[1], 1);
    EXPECT_EQ(Cell(1, 5), "X");
}

TEST_F(PointTableClicks, TheOtherWindowsAreToldWhereTheyAreOn) {
    OpenWithFour();
    Main.MenueGraphics.Checked = true;
    Main.MenuVievMainSheet.Checked = true;
    EXPECT_TRUE(Click(3, 1));
    EXPECT_TRUE(Click(3, 4));
    EXPECT_TRUE(DblClick(4, 1));
    EXPECT_TRUE(DblClick(4, 5));
    EXPECT_TRUE(UserClick(Window().BtnUseAllPts));
    EXPECT_TRUE(Messages().empty());
}

TEST_F(PointTableClicks, TheMarksOfManyPointsAreTurnedOverAtOnce) {
    constexpr int kMany = 20000;
    for (int i = 0; i < kMany; ++i) AddPair({NextNumber(), NextNumber(), NextNumber()}, {0, 0, 0});
    Open();
    EXPECT_EQ(Rows(), kMany + 1);
    Select({1, 6, kMany, 6});
    Key("Space");
    for (int i = 1; i <= kMany; ++i) ASSERT_EQ(FlagsOf(i), (Ints{1, 0, 1}));
    Click(0, 2);
    for (int row = 2; row <= kMany; ++row) ASSERT_LE(std::stod(Cell(row - 1, 2)), std::stod(Cell(row, 2)));
}
