// A grid: a table of cells with a current cell, a selection and a sort state.
#include "core/grid.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "core/numbers.h"
#include "core/text.h"
#include "core/window.h"
#include "fit/require.h"

namespace corvinade::core {

namespace {

std::size_t Place(const GridState& grid, int row, int col) {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(grid.Cols) +
           static_cast<std::size_t>(col);
}

bool Inside(const GridState& grid, int row, int col) {
    return row >= 0 && row < grid.Rows && col >= 0 && col < grid.Cols;
}

void AppendWithLineFeeds(const std::string& text, std::string& result) {
    if (text.find('\r') == std::string::npos) {
        result += text;
        return;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        result += text[i];
        if (text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n')) result += '\n';
    }
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
    if (grid.Order.size() != static_cast<std::size_t>(grid.Rows)) {
        grid.Order.resize(static_cast<std::size_t>(grid.Rows));
        std::iota(grid.Order.begin(), grid.Order.end(), 0);
    }
    std::vector<std::pair<double, int>> numbers;  // value and filled row
    std::vector<std::pair<std::string, int>> texts;
    for (int row = grid.FixedRows; row < grid.Rows; ++row) {
        const int filled = FilledRow(grid, row);
        std::string text = CellText(grid, row, col);
        double number = 0;
        if (TextToNumber(text, number)) {
            numbers.emplace_back(number, filled);
        } else {
            texts.emplace_back(std::move(text), filled);
        }
    }
    const auto sort = [descending](auto& keys) {
        std::stable_sort(keys.begin(), keys.end(), [descending](const auto& a, const auto& b) {
            return descending ? b.first < a.first : a.first < b.first;
        });
    };
    sort(numbers);
    sort(texts);
    auto place = grid.Order.begin() + grid.FixedRows;
    const auto put = [&place](const auto& keys) {
        for (const auto& key : keys) *place++ = key.second;
    };
    if (descending) put(texts);
    put(numbers);
    if (!descending) put(texts);
}

void SortByHeading(GridState& grid, int col, GridSort& sort) {
    sort.Descending = sort.Col >= 0 && !sort.Descending;
    sort.Col = col;
    SortAgain(grid, sort);
    grid.Row = grid.FixedRows;
    grid.RowSel = grid.Rows - 1;
    KeepSelectionInside(grid);
}

void SortAgain(GridState& grid, const GridSort& sort) {
    grid.Order.clear();  // rows of the same value stand as a grid that is filled anew has them
    if (sort.Col >= 0) SortGrid(grid, sort.Col, sort.Descending);
}

bool IsHiddenCol(const GridState& grid, int col) {
    const auto k = static_cast<std::size_t>(col);
    return k < grid.HiddenCols.size() && grid.HiddenCols[k];
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
            if (IsHiddenCol(grid, col)) continue;
            if (!first) text += '\t';
            first = false;
            AppendWithLineFeeds(CellText(grid, row, col), text);
        }
    }
    return text;
}

}  // namespace corvinade::core
