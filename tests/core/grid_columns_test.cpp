// What the user makes of a grid: columns moved and left out, headings copied, numbers by their size, a
// filter.
#include <string>

#include "cli/headless.h"
#include "core/grid.h"
#include "core/window.h"
#include "support/fixture.h"

using namespace corvinade;

namespace {

class GridColumns : public Program {
protected:
    GridColumns() {
        control_.Kind = ControlKind::Grid;
        SizeGrid(grid_, 4, 4);
        grid_.FixedRows = 1;
        const char* const cells[4][4] = {
            {"name", "x", "y", "z"}, {"A", "1", "-5", "7"}, {"B", "-3", "2", "8"}, {"C", "2", "4", "9"}};
        for (int row = 0; row < 4; ++row)
            for (int col = 0; col < 4; ++col) SetCell(grid_, row, col, cells[row][col]);
    }
    std::string Names() {
        std::string names;
        for (int row = 1; row < grid_.Rows; ++row) names += CellText(grid_, row, 0);
        return names;
    }
    Control control_;
    GridState& grid_ = control_.Grid;
};

}  // namespace

TEST_F(GridColumns, MovedColumnsAreCopiedAsTheyStand) {
    grid_.ColOrder = {0, 3, 1, 2};
    EXPECT_EQ(PlaceOfCol(grid_, 3), 1);
    EXPECT_EQ(ColAtPlace(grid_, 1), 3);
    UserSelectCells(control_, {1, 0, 2, 1});  // from the name to x, which stand three columns wide
    EXPECT_EQ(RectText(grid_, Selected(grid_)), "A\t7\t1\r\nB\t8\t-3");
    UserSelectCells(control_, {1, 1, 1, 3});  // drawn from right to left
    EXPECT_EQ(Selected(grid_).Col, 3);
    EXPECT_EQ(RectText(grid_, Selected(grid_)), "7\t1");
    EXPECT_EQ(CellText(grid_, 1, 3), "7") << "a column keeps its number";
}

TEST_F(GridColumns, WhatIsLeftOutIsNotCopied) {
    grid_.LeftOut = {false, false, true};
    EXPECT_TRUE(IsHiddenCol(grid_, 2));
    EXPECT_FALSE(IsHiddenCol(grid_, 3));
    EXPECT_EQ(RectText(grid_, {1, 0, 1, 3}), "A\t1\t7");
}

TEST_F(GridColumns, HeadingsAreCopiedWithShift) {
    UserSelectCells(control_, {2, 1, 3, 2});
    UserKey(control_, "Ctrl+Shift+C");
    EXPECT_EQ(Headless.Clipboard, "x\ty\r\n-3\t2\r\n2\t4");
}

TEST_F(GridColumns, StandInOneLineOfTheSettingsAndComeBack) {
    EXPECT_EQ(ColumnsText(grid_), "0,1,2,3");
    grid_.ColOrder = {0, 3, 1, 2};
    grid_.LeftOut = {false, false, true, false};
    EXPECT_EQ(ColumnsText(grid_), "0,3,1,2-");
    GridState other;
    SizeGrid(other, 2, 4);
    TakeColumnsText("0,3,1,2-", other);
    EXPECT_EQ(ColumnsText(other), "0,3,1,2-");
    for (const char* damaged :
         {"", "0,1,2", "0,1,2,2", "0,1,2,4", "0,1,2,x", "0,1,2,3,4", "0-,1-,2-,3-", "0,,1,2"}) {
        TakeColumnsText(damaged, other);
        EXPECT_EQ(ColumnsText(other), "0,3,1,2-") << damaged;
    }
    TakeColumnsText("0,1,2,3", other);
    EXPECT_TRUE(other.ColOrder.empty());
    EXPECT_TRUE(other.LeftOut.empty());
}

TEST_F(GridColumns, AnOrderOfAnotherGridCountsForNothing) {
    grid_.ColOrder = {1, 0};
    EXPECT_EQ(PlaceOfCol(grid_, 3), 3);
    EXPECT_EQ(RectText(grid_, {1, 0, 1, 3}), "A\t1\t-5\t7");
}

TEST_F(GridColumns, SortBySizeLeavesSignsOut) {
    SortGrid(grid_, 2, true, true);
    EXPECT_EQ(Names(), "ACB");  // 5, 4, 2
    SortGrid(grid_, 2, false, true);
    EXPECT_EQ(Names(), "BCA");
    SortGrid(grid_, 2, false);
    EXPECT_EQ(Names(), "ABC");  // -5, 2, 4
}

// The largest come first, and each further click with Shift goes the other way round.
TEST_F(GridColumns, AClickWithShiftOnAHeadingSortsBySize) {
    GridSort sort;
    const auto click = [&](int col, bool shift) {
        UserClickCell(control_, 0, col, shift);
        SortByHeading(grid_, col, sort);
    };
    click(2, true);
    EXPECT_EQ(Names(), "ACB");
    click(2, true);
    EXPECT_EQ(Names(), "BCA");
    click(1, true);
    EXPECT_EQ(Names(), "BCA");  // 3, 2, 1
    click(1, false);
    EXPECT_EQ(Names(), "BAC");  // -3, 1, 2
    click(1, false);
    EXPECT_EQ(Names(), "CAB");
}

TEST_F(GridColumns, AFilterStaysThroughASort) {
    grid_.Kept = {0, 1, 3};
    grid_.Rows = 3;
    GridSort sort;
    SortAgain(grid_, sort);
    EXPECT_EQ(Names(), "AC");
    sort = {1, true, false};
    SortAgain(grid_, sort);
    EXPECT_EQ(Names(), "CA");
    EXPECT_EQ(FilledRow(grid_, 1), 3);
}
