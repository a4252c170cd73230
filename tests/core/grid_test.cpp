// Grids as state: cells, order, selection, and cells that are made when they are looked at.
#include "core/grid.h"

#include "cli/headless.h"
#include "core/window.h"
#include "support/fixture.h"

using namespace corvinade;

class Grids : public Program {
protected:
    // One column of texts below one heading.
    static GridState ColumnOf(const std::vector<std::string>& texts) {
        GridState grid;
        grid.FixedRows = 1;
        SizeGrid(grid, static_cast<int>(texts.size()) + 1, 1);
        SetCell(grid, 0, 0, "heading");
        for (std::size_t i = 0; i < texts.size(); ++i) SetCell(grid, static_cast<int>(i) + 1, 0, texts[i]);
        return grid;
    }
    static std::vector<std::string> Shown(GridState& grid, int col = 0) {
        std::vector<std::string> texts;
        for (int row = grid.FixedRows; row < grid.Rows; ++row) texts.push_back(CellText(grid, row, col));
        return texts;
    }
    using Texts = std::vector<std::string>;
};

TEST_F(Grids, NumbersAreSortedByTheirValue) {
    GridState grid = ColumnOf({"10", "9", "-100", "1E+01", "0.5", "-0.001"});
    SortGrid(grid, 0, false);
    EXPECT_EQ(Shown(grid), (Texts{"-100", "-0.001", "0.5", "9", "10", "1E+01"}));
    SortGrid(grid, 0, true);
    EXPECT_EQ(Shown(grid), (Texts{"10", "1E+01", "9", "0.5", "-0.001", "-100"}));
    EXPECT_EQ(CellText(grid, 0, 0), "heading");
    EXPECT_EQ(grid.SortCol, 0);
    EXPECT_TRUE(grid.SortDescending);
}

TEST_F(Grids, NumbersStandBeforeOtherTextsAndBehindThemTheOtherWayRound) {
    GridState grid = ColumnOf({"b", "2", "", "10", "B", "a", "1 2"});
    SortGrid(grid, 0, false);
    EXPECT_EQ(Shown(grid), (Texts{"2", "10", "", "1 2", "B", "a", "b"}));
    SortGrid(grid, 0, true);
    EXPECT_EQ(Shown(grid), (Texts{"b", "a", "B", "1 2", "", "10", "2"}));
}

TEST_F(Grids, TheDecimalCommaMakesNumbersWhereTheSystemHasIt) {
    GridState grid = ColumnOf({"10,5", "9,75", "9.8"});
    SortGrid(grid, 0, false);
    EXPECT_EQ(Shown(grid), (Texts{"9.8", "10,5", "9,75"}));  // one number, two texts
    Headless.Decimal = ',';
    SortGrid(grid, 0, false);
    EXPECT_EQ(Shown(grid), (Texts{"9,75", "10,5", "9.8"}));
}

TEST_F(Grids, RowsOfTheSameValueKeepTheirOrderBothWays) {
    GridState grid;
    SizeGrid(grid, 6, 2);
    const Texts values = {"1", "0", "1.0", "0", "x", "x"};
    for (int row = 0; row < 6; ++row) {
        SetCell(grid, row, 0, values[static_cast<std::size_t>(row)]);
        SetCell(grid, row, 1, std::to_string(row));
    }
    SortGrid(grid, 0, false);
    EXPECT_EQ(Shown(grid, 1), (Texts{"1", "3", "0", "2", "4", "5"}));
    SortGrid(grid, 0, true);
    EXPECT_EQ(Shown(grid, 1), (Texts{"4", "5", "0", "2", "1", "3"}));
}

TEST_F(Grids, SortingMovesTheColoursWithTheirCells) {
    GridState grid = ColumnOf({"2", "1"});
    SetCellBackColor(grid, 1, 0, 7);
    SortGrid(grid, 0, false);
    EXPECT_EQ(CellBackColor(grid, 1, 0), kSystemColour);
    EXPECT_EQ(CellBackColor(grid, 2, 0), 7);
    EXPECT_EQ(FilledRow(grid, 2), 1);
    SetCell(grid, 2, 0, "two");  // cells are written where they are seen
    EXPECT_EQ(Shown(grid), (Texts{"1", "two"}));
}

TEST_F(Grids, WhatCannotBeSortedStaysAsItIs) {
    GridState none;
    SortGrid(none, 0, false);
    EXPECT_EQ(none.Rows, 0);
    GridState empty = ColumnOf({});
    SortGrid(empty, 0, true);
    EXPECT_EQ(CellText(empty, 0, 0), "heading");
    GridState grid = ColumnOf({"2", "1"});
    SortGrid(grid, 5, false);
    SortGrid(grid, -1, false);
    EXPECT_EQ(Shown(grid), (Texts{"2", "1"}));
}

TEST_F(Grids, AnOrderOfAnotherSizeIsForgotten) {
    GridState grid = ColumnOf({"3", "2", "1"});
    SortGrid(grid, 0, false);
    grid.Rows = 3;
    SortGrid(grid, 0, false);
    EXPECT_EQ(Shown(grid), (Texts{"2", "3"}));
}

TEST_F(Grids, TextOfCellsHasTabsAndLineEnds) {
    GridState grid;
    SizeGrid(grid, 2, 3);
    SetCell(grid, 0, 0, "a");
    SetCell(grid, 0, 1, "secret");
    SetCell(grid, 0, 2, "two\rlines");
    SetCell(grid, 1, 0, "line\r\nfeed\r");
    SetCell(grid, 1, 2, "d");
    EXPECT_EQ(RectText(grid, {0, 0, 1, 2}),
              "a\tsecret\ttwo\r\nlines\r\n"
              "line\r\nfeed\r\n\t\td");
    grid.HiddenCols = {false, true};
    EXPECT_EQ(RectText(grid, {0, 0, 0, 2}), "a\ttwo\r\nlines");
    EXPECT_EQ(RectText(grid, {0, 1, 0, 1}), "");
    EXPECT_EQ(RectText(grid, {1, 2, 1, 2}), "d");
}

TEST_F(Grids, CellsOutsideAreEmpty) {
    GridState grid = ColumnOf({"1"});
    EXPECT_EQ(CellText(grid, -1, 0), "");
    EXPECT_EQ(CellText(grid, 0, 1), "");
    EXPECT_EQ(CellText(grid, 2, 0), "");
    EXPECT_EQ(CellBackColor(grid, 2, 0), kSystemColour);
    EXPECT_DEATH(SetCell(grid, 2, 0, "x"), "internal error");
    EXPECT_DEATH(SizeGrid(grid, -1, 0), "internal error");
}

TEST_F(Grids, TheSelectionStaysInsideAGridThatShrinks) {
    GridState grid;
    grid.FixedRows = grid.FixedCols = 1;
    SizeGrid(grid, 10, 5);
    EXPECT_EQ(grid.Row, 1);
    EXPECT_EQ(grid.Col, 1);
    grid.Row = 9;
    grid.RowSel = 3;
    grid.Col = 2;
    grid.ColSel = 4;
    grid.TopRow = 8;
    SizeGrid(grid, 5, 4);
    EXPECT_EQ(grid.Row, 4);
    EXPECT_EQ(grid.TopRow, 4);
    const GridRect rect = Selected(grid);
    EXPECT_EQ(rect.Row, 3);
    EXPECT_EQ(rect.Row2, 4);
    EXPECT_EQ(rect.Col, 2);
    EXPECT_EQ(rect.Col2, 3);
    SizeGrid(grid, 1, 1);  // headings alone
    EXPECT_EQ(grid.Row, 0);
    EXPECT_EQ(grid.ColSel, 0);
    SizeGrid(grid, 0, 0);
    EXPECT_EQ(grid.RowSel, 0);
}

TEST_F(Grids, AGridIsFilledWhenItIsFirstLookedAt) {
    static int fills = 0, texts = 0;
    fills = texts = 0;
    Control control = Grid(1, 0);
    GridState& grid = control.Grid;
    grid.Fill = [&grid] {
        ++fills;
        grid.Rows = 4;
        grid.Cols = 1;
        grid.Text = [](int row, int) { return ++texts, std::to_string(10 - row); };
        grid.BackColor = [](int row, int) { return row; };
        KeepSelectionInside(grid);
    };
    EXPECT_EQ(fills, 0);
    EXPECT_EQ(CellText(grid, 3, 0), "7");
    EXPECT_EQ(CellBackColor(grid, 3, 0), 3);
    EXPECT_EQ(fills, 1);
    EXPECT_EQ(texts, 1);  // for the cell that was asked for alone
    SortGrid(grid, 0, false);
    EXPECT_EQ(Shown(grid), (Texts{"7", "8", "9"}));
    EXPECT_EQ(CellBackColor(grid, 1, 0), 3);
    EXPECT_DEATH(SetCell(grid, 1, 0, ""), "internal error");
    EXPECT_EQ(fills, 1);
    grid.Fill = [] { ++fills; };
    EXPECT_TRUE(UserKey(control, "Space"));
    EXPECT_EQ(fills, 2);
}

TEST_F(Grids, AClickMovesTheCurrentCellAndRunsItsHandlers) {
    static std::string events;
    events.clear();
    Control control = Grid(1, 1);
    const ControlEntry entry = {"grid",
                                &control,
                                {.Click = [] { events += "click "; },
                                 .DblClick = [] { events += "double "; },
                                 .SelChange = [] { events += "selection "; },
                                 .RightClick = [] { events += "right "; },
                                 .Key = [] { events += "key "; }}};
    control.Entry = &entry;
    GridState& grid = control.Grid;
    SizeGrid(grid, 5, 5);
    EXPECT_TRUE(UserClickCell(control, 2, 3, false));
    EXPECT_EQ(grid.Row, 2);
    EXPECT_EQ(grid.ColSel, 3);
    EXPECT_TRUE(UserClickCell(control, 4, 1, true));
    EXPECT_EQ(grid.Row, 2);
    EXPECT_EQ(grid.RowSel, 4);
    EXPECT_EQ(grid.Col, 3);
    EXPECT_EQ(grid.ColSel, 1);
    EXPECT_TRUE(UserRightClickCell(control, 1, 1));  // leaves the selection
    EXPECT_EQ(Selected(grid).Row, 2);
    EXPECT_EQ(grid.MouseRow, 1);
    EXPECT_TRUE(UserClickCell(control, 0, 4, false));  // a heading
    EXPECT_EQ(grid.MouseRow, 0);
    EXPECT_EQ(grid.Row, 1);
    EXPECT_EQ(grid.Col, 4);
    EXPECT_TRUE(UserSelectCells(control, {4, 4, 2, 2}));
    EXPECT_EQ(Selected(grid).Row, 2);
    EXPECT_EQ(Selected(grid).Col2, 4);
    EXPECT_TRUE(UserDblClickCell(control, 3, 3));
    EXPECT_TRUE(UserKey(control, "a"));
    EXPECT_EQ(events,
              "selection click selection click right selection click selection selection click double key ");
    EXPECT_DEATH(UserClickCell(control, 5, 0, false), "internal error");
}

TEST_F(Grids, AHeadingSortsAscendingFirstAndThenTheOtherWayRoundEachTime) {
    GridState grid = ColumnOf({"2", "1", "3"});
    GridSort sort;
    SortAgain(grid, sort);  // never sorted
    EXPECT_EQ(Shown(grid), (Texts{"2", "1", "3"}));
    SortByHeading(grid, 0, sort);
    EXPECT_EQ(Shown(grid), (Texts{"1", "2", "3"}));
    EXPECT_EQ(Selected(grid).Row, 1);
    EXPECT_EQ(Selected(grid).Row2, 3);
    SortByHeading(grid, 0, sort);
    EXPECT_EQ(Shown(grid), (Texts{"3", "2", "1"}));
    GridState again = ColumnOf({"5", "4", "6"});
    SortAgain(again, sort);
    EXPECT_EQ(Shown(again), (Texts{"6", "5", "4"}));
    SortByHeading(again, 0, sort);
    EXPECT_EQ(Shown(again), (Texts{"4", "5", "6"}));
}
