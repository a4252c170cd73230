// Sorting the rows of a table of numbers.
#include "fit/sort_table.h"

#include <array>
#include <cmath>
#include <limits>
#include <random>

#include "support/fixture.h"

using namespace corvinade;

using SortedTable = Program;

namespace {

Matrix TableOf(const std::vector<std::array<double, 3>>& rows) {
    Matrix table(static_cast<int>(rows.size()), 3);
    for (int i = 1; i <= table.Rows; ++i)
        for (int j = 1; j <= 3; ++j)
            table(i, j) = rows[static_cast<std::size_t>(i - 1)][static_cast<std::size_t>(j - 1)];
    return table;
}

std::vector<double> ColumnOf(const Matrix& table, int column) {
    std::vector<double> values;
    for (int i = 1; i <= table.Rows; ++i) values.push_back(table(i, column));
    return values;
}

}  // namespace

TEST_F(SortedTable, RunsAscendingByTheFirstColumnNamedAndThenByTheNext) {
    Matrix table = TableOf({{1, 2, 9}, {2, 1, 5}, {3, 2, -4}, {4, 1, 7}, {5, -3, 0}});
    SortTable(table, std::array{2, 3});
    EXPECT_EQ(ColumnOf(table, 1), (std::vector<double>{5, 2, 4, 3, 1}));
    EXPECT_EQ(ColumnOf(table, 2), (std::vector<double>{-3, 1, 1, 2, 2})) << "a row moves as a whole";
    EXPECT_EQ(ColumnOf(table, 3), (std::vector<double>{0, 5, 7, -4, 9}));
}

TEST_F(SortedTable, KeepsTheOrderOfRowsThatAreEqualInTheColumnsNamed) {
    Matrix table = TableOf({{1, 1, 0}, {2, 0, 0}, {3, 1, 0}, {4, 0, 0}, {5, 1, 0}});
    SortTable(table, std::array{2});
    EXPECT_EQ(ColumnOf(table, 1), (std::vector<double>{2, 4, 1, 3, 5}));
}

TEST_F(SortedTable, LeavesRowZeroAndColumnZeroWithTheirRow) {
    Matrix table = TableOf({{3, 0, 0}, {1, 0, 0}});
    table(0, 1) = 99;
    table(1, 0) = 30;
    table(2, 0) = 10;
    SortTable(table, std::array{1});
    EXPECT_EQ(table(0, 1), 99);
    EXPECT_EQ(table(1, 0), 10);
    EXPECT_EQ(table(2, 0), 30);
}

TEST_F(SortedTable, PutsWhatIsNoNumberBehindAllNumbers) {
    const double none = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    Matrix table = TableOf({{1, none, 0}, {2, infinite, 0}, {3, none, 0}, {4, -infinite, 0}, {5, 0, 0}});
    SortTable(table, std::array{2});
    EXPECT_EQ(ColumnOf(table, 1), (std::vector<double>{4, 5, 2, 1, 3}));
}

TEST_F(SortedTable, TakesEmptyTablesAndSingleRows) {
    Matrix never;
    SortTable(never, {});
    EXPECT_EQ(never.Rows, -1);
    Matrix empty(0, 3);
    SortTable(empty, std::array{1});
    EXPECT_EQ(empty.Rows, 0);
    Matrix single = TableOf({{7, 8, 9}});
    SortTable(single, std::array{1, 2, 3});
    EXPECT_EQ(ColumnOf(single, 3), std::vector<double>{9});
}

TEST_F(SortedTable, OrdersManyRandomRows) {
    std::mt19937 random(4711);
    std::uniform_int_distribution<int> few(0, 9);
    Matrix table(5000, 3);
    for (int i = 1; i <= table.Rows; ++i) {
        table(i, 1) = few(random);
        table(i, 2) = few(random);
        table(i, 3) = i;
    }
    SortTable(table, std::array{1, 2});
    for (int i = 2; i <= table.Rows; ++i) {
        const auto key = [&](int row) { return std::array{table(row, 1), table(row, 2), table(row, 3)}; };
        ASSERT_LT(key(i - 1), key(i)) << i;
    }
}
