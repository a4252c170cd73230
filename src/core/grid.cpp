// A grid: a table of cells with a current cell, a selection and a sort state.
#include "core/grid.h"

#include <algorithm>
#include <cmath>
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
    grid.Bar = nullptr;
    grid.Kept.clear();
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

double CellBar(GridState& grid, int row, int col) {
    if (!grid.Bar) return 0;
    LookAt(grid);
    return Inside(grid, row, col) ? grid.Bar(FilledRow(grid, row), col) : 0;
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

void SortGrid(GridState& grid, int col, bool descending, bool bySize) {
    LookAt(grid);
    grid.SortCol = col;
    grid.SortDescending = descending;
    grid.SortBySize = bySize;
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
            numbers.emplace_back(bySize ? std::fabs(number) : number, filled);
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
    // By size what has a size comes first, whichever way.
    const bool textsFirst = descending && !bySize;
    if (textsFirst) put(texts);
    put(numbers);
    if (!textsFirst) put(texts);
}

void SortByHeading(GridState& grid, int col, GridSort& sort) {
    const bool again = sort.Col >= 0 && sort.BySize == grid.MouseShift;
    sort.Descending = grid.MouseShift ? !again || sort.Col != col || !sort.Descending
                                      : sort.Col >= 0 && !sort.BySize && !sort.Descending;
    sort.BySize = grid.MouseShift;
    sort.Col = col;
    SortAgain(grid, sort);
    grid.Row = grid.FixedRows;
    grid.RowSel = grid.Rows - 1;
    KeepSelectionInside(grid);
}

void SortAgain(GridState& grid, const GridSort& sort) {
    grid.Order = grid.Kept;  // rows of the same value stand as a grid that is filled anew has them
    if (sort.Col >= 0) SortGrid(grid, sort.Col, sort.Descending, sort.BySize);
}

bool IsHiddenCol(const GridState& grid, int col) {
    const auto k = static_cast<std::size_t>(col);
    return (k < grid.HiddenCols.size() && grid.HiddenCols[k]) || (k < grid.LeftOut.size() && grid.LeftOut[k]);
}

namespace {

bool IsMoved(const GridState& grid) {
    return !grid.ColOrder.empty() && grid.ColOrder.size() == static_cast<std::size_t>(grid.Cols);
}

}  // namespace

int PlaceOfCol(const GridState& grid, int col) {
    if (!IsMoved(grid)) return col;
    const auto found = std::find(grid.ColOrder.begin(), grid.ColOrder.end(), col);
    return found == grid.ColOrder.end() ? col : static_cast<int>(found - grid.ColOrder.begin());
}

int ColAtPlace(const GridState& grid, int place) {
    const bool moved = IsMoved(grid) && place >= 0 && place < grid.Cols;
    return moved ? grid.ColOrder[static_cast<std::size_t>(place)] : place;
}

GridRect Selected(const GridState& grid) {
    GridRect rect = {grid.Row, grid.Col, grid.RowSel, grid.ColSel};
    if (rect.Row > rect.Row2) std::swap(rect.Row, rect.Row2);
    if (PlaceOfCol(grid, rect.Col) > PlaceOfCol(grid, rect.Col2)) std::swap(rect.Col, rect.Col2);
    return rect;
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
    const int left = PlaceOfCol(grid, rect.Col), right = PlaceOfCol(grid, rect.Col2);
    for (int row = rect.Row; row <= rect.Row2; ++row) {
        if (row > rect.Row) text += kLineEnd;
        bool first = true;
        for (int place = left; place <= right; ++place) {
            const int col = ColAtPlace(grid, place);
            if (IsHiddenCol(grid, col)) continue;
            if (!first) text += '\t';
            first = false;
            AppendWithLineFeeds(CellText(grid, row, col), text);
        }
    }
    return text;
}

std::string TextWithHeadings(GridState& grid) {
    LookAt(grid);
    if (grid.Rows <= grid.FixedRows) return "";
    const GridRect rect = Selected(grid);
    const std::string cells = RectText(grid, rect);
    if (grid.FixedRows == 0) return cells;
    return RectText(grid, {0, rect.Col, grid.FixedRows - 1, rect.Col2}) + kLineEnd + cells;
}

std::string ColumnsText(const GridState& grid) {
    std::string text;
    for (int place = 0; place < grid.Cols; ++place) {
        const int col = ColAtPlace(grid, place);
        const auto k = static_cast<std::size_t>(col);
        if (place > 0) text += ',';
        text += std::to_string(col);
        if (k < grid.LeftOut.size() && grid.LeftOut[k]) text += '-';
    }
    return text;
}

void TakeColumnsText(const std::string& text, GridState& grid) {
    const auto cols = static_cast<std::size_t>(std::max(grid.Cols, 0));
    std::vector<int> order;
    std::vector<bool> leftOut(cols, false), seen(cols, false);
    std::size_t shown = 0;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        std::string part = text.substr(begin, end - begin);
        const bool out = part.ends_with('-');
        if (out) part.pop_back();
        double number = 0;
        if (!TextToNumber(part, '.', number) || number < 0 || number >= static_cast<double>(cols)) return;
        const auto col = static_cast<std::size_t>(number);
        if (static_cast<double>(col) != number || seen[col]) return;
        seen[col] = true;
        leftOut[col] = out;
        shown += out ? 0 : 1;
        order.push_back(static_cast<int>(col));
        begin = end + 1;
    }
    if (order.size() != cols || shown == 0) return;
    grid.ColOrder = std::is_sorted(order.begin(), order.end()) ? std::vector<int>{} : std::move(order);
    grid.LeftOut = shown == cols ? std::vector<bool>{} : std::move(leftOut);
}

}  // namespace corvinade::core
