// A grid: a table of cells with a current cell, a selection and a sort state.
#include "core/grid.h"

#include <algorithm>
#include <numeric>

#include "core/numbers.h"
#include "core/require.h"
#include "core/text.h"
#include "core/window.h"

namespace {

std::size_t Place(const GridState& grid, int row, int col) {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(grid.Cols) +
           static_cast<std::size_t>(col);
}

bool Inside(const GridState& grid, int row, int col) {
    return row >= 0 && row < grid.Rows && col >= 0 && col < grid.Cols;
}

// What a row is sorted by.
struct SortKey {
    bool IsNumber = false;
    double Number = 0;
    std::string Text;
};

bool Before(const SortKey& a, const SortKey& b) {
    if (a.IsNumber != b.IsNumber) return a.IsNumber;
    return a.IsNumber ? a.Number < b.Number : a.Text < b.Text;
}

SortKey KeyOf(std::string text) {
    SortKey key;
    key.IsNumber = TextToNumber(text, key.Number);
    if (!key.IsNumber) key.Text = std::move(text);
    return key;
}

bool Hidden(const GridState& grid, int col) {
    const auto k = static_cast<std::size_t>(col);
    return k < grid.HiddenCols.size() && grid.HiddenCols[k];
}

std::string WithLineFeeds(const std::string& text) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        result += text[i];
        if (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n')) result += '\n';
    }
    return result;
}

}  // namespace

GridRect Normalised(GridRect rect) {
    if (rect.Row > rect.Row2) std::swap(rect.Row, rect.Row2);
    if (rect.Col > rect.Col2) std::swap(rect.Col, rect.Col2);
    return rect;
}

void SizeGrid(GridState& grid, int rows, int cols) {
    Require(rows >= 0 && cols >= 0);
    grid.Rows = rows;
    grid.Cols = cols;
    grid.Cells.assign(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols), "");
    grid.BackColors.clear();
    grid.Order.clear();
    grid.Fill = nullptr;
    grid.Text = nullptr;
    grid.BackColor = nullptr;
    KeepSelectionInside(grid);
}

void LookAt(GridState& grid) {
    if (!grid.Fill) return;
    const auto fill = std::move(grid.Fill);
    grid.Fill = nullptr;
    fill();
}

int FilledRow(const GridState& grid, int row) {
    const auto k = static_cast<std::size_t>(row);
    return k < grid.Order.size() ? grid.Order[k] : row;
}

std::string CellText(GridState& grid, int row, int col) {
    LookAt(grid);
    if (!Inside(grid, row, col)) return "";
    const int filled = FilledRow(grid, row);
    return grid.Text ? grid.Text(filled, col) : grid.Cells[Place(grid, filled, col)];
}

std::int32_t CellBackColor(GridState& grid, int row, int col) {
    LookAt(grid);
    if (!Inside(grid, row, col)) return kSystemColour;
    const int filled = FilledRow(grid, row);
    if (grid.BackColor) return grid.BackColor(filled, col);
    return grid.BackColors.empty() ? kSystemColour : grid.BackColors[Place(grid, filled, col)];
}

void SetCell(GridState& grid, int row, int col, const std::string& text) {
    Require(Inside(grid, row, col) && !grid.Text);
    grid.Cells[Place(grid, FilledRow(grid, row), col)] = text;
}

void SetCellBackColor(GridState& grid, int row, int col, std::int32_t colour) {
    Require(Inside(grid, row, col) && !grid.BackColor);
    if (grid.BackColors.empty()) grid.BackColors.assign(grid.Cells.size(), kSystemColour);
    grid.BackColors[Place(grid, FilledRow(grid, row), col)] = colour;
}

void SortGrid(GridState& grid, int col, bool descending) {
    LookAt(grid);
    grid.SortCol = col;
    grid.SortDescending = descending;
    if (col < 0 || col >= grid.Cols || grid.Rows <= grid.FixedRows) return;
    if (grid.Order.empty()) {
        grid.Order.resize(static_cast<std::size_t>(grid.Rows));
        std::iota(grid.Order.begin(), grid.Order.end(), 0);
    }
    std::vector<SortKey> keys(grid.Order.size());
    for (int row = grid.FixedRows; row < grid.Rows; ++row)
        keys[static_cast<std::size_t>(FilledRow(grid, row))] = KeyOf(CellText(grid, row, col));
    std::stable_sort(grid.Order.begin() + grid.FixedRows, grid.Order.end(), [&](int a, int b) {
        const SortKey& first = keys[static_cast<std::size_t>(descending ? b : a)];
        const SortKey& second = keys[static_cast<std::size_t>(descending ? a : b)];
        return Before(first, second);
    });
}

GridRect Selected(const GridState& grid) {
    return Normalised({grid.Row, grid.Col, grid.RowSel, grid.ColSel});
}

void KeepSelectionInside(GridState& grid) {
    const auto inside = [](int& place, int first, int count) {
        place = std::max(0, std::clamp(place, std::min(first, count - 1), count - 1));
    };
    if (grid.Rows == 0 || grid.Cols == 0) {
        grid.Row = grid.Col = grid.RowSel = grid.ColSel = grid.TopRow = 0;
        return;
    }
    inside(grid.Row, grid.FixedRows, grid.Rows);
    inside(grid.RowSel, grid.FixedRows, grid.Rows);
    inside(grid.Col, grid.FixedCols, grid.Cols);
    inside(grid.ColSel, grid.FixedCols, grid.Cols);
    inside(grid.TopRow, grid.FixedRows, grid.Rows);
}

std::string RectText(GridState& grid, const GridRect& rect) {
    std::string text;
    for (int row = rect.Row; row <= rect.Row2; ++row) {
        if (row > rect.Row) text += kLineEnd;
        bool first = true;
        for (int col = rect.Col; col <= rect.Col2; ++col) {
            if (Hidden(grid, col)) continue;
            if (!first) text += '\t';
            first = false;
            text += WithLineFeeds(CellText(grid, row, col));
        }
    }
    return text;
}
