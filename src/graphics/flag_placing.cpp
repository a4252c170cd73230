// Flags on many rows, each in a cell of its own.
#include "graphics/flag_placing.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numeric>
#include <optional>
#include <vector>

#include "core/controller.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "graphics/drawing.h"
#include "graphics/flags.h"
#include "graphics/projection.h"
#include "graphics/scene.h"

namespace corvinade::graphics {

namespace {

constexpr int kRightEdge = 15, kLowerEdge = 10;  // pixels of the picture that no flag begins in
constexpr double kFarthest = 1e6;                // pixels; beyond it a place is at the edge all the same

struct Place {
    double X = 0, Y = 0;
};

std::size_t At(int number) {
    return static_cast<std::size_t>(number);
}

Place PixelOfRow(int row) {
    return {Scene.PixelX[At(row)], Scene.PixelY[At(row)]};
}

Place MiddleOfPoints() {
    Place sum;
    int count = 0;
    for (int row = 1; row <= Scene.Rows; ++row) {
        const Place pixel = PixelOfRow(row);
        if (!IsSeen(row) || !std::isfinite(pixel.X) || !std::isfinite(pixel.Y)) continue;
        sum = {sum.X + pixel.X, sum.Y + pixel.Y};
        ++count;
    }
    return count == 0 ? sum : Place{sum.X / count, sum.Y / count};
}

// The cells of the picture, each the size of a flag.
struct Cells {
    double Width = 1, Height = 1;  // of the picture without its edges
    double CellWidth = 1, CellHeight = 1;
    int Columns = 1, Rows = 1;
};

struct Cell {
    int Column = 1, Row = 1;
};

Cells CellsFor(const ScreenWindow& window, const FlagLabel& label) {
    Cells cells;
    cells.Width = std::max(1, PictureWidth(window) - kRightEdge);
    cells.Height = std::max(1, PictureHeight(window) - kLowerEdge);
    cells.CellWidth = std::max(1.0F, label.Width);
    cells.CellHeight = std::max(1.0F, label.Height);
    cells.Columns = std::max(1, static_cast<int>(Int(cells.Width / cells.CellWidth)));
    cells.Rows = std::max(1, static_cast<int>(Int(cells.Height / cells.CellHeight)));
    return cells;
}

Cell CellOf(const Cells& cells, const Place& place) {
    const auto number = [](double at, double size, int count) {
        return std::isfinite(at) ? static_cast<int>(std::clamp(Int(at / size) + 1, 1.0, 1.0 * count)) : 1;
    };
    return {number(place.X, cells.CellWidth, cells.Columns), number(place.Y, cells.CellHeight, cells.Rows)};
}

// --- Start positions --------------------------------------------------------------------------------------

// Where the ray from the middle through the point leaves the picture.
Place BorderPlace(const Cells& cells, const Place& middle, const Place& point) {
    const double a = point.X - middle.X, b = point.Y - middle.Y;
    if (a == 0 && b == 0) return point;
    const double right = cells.Width, lower = cells.Height;
    const double alongX = a == 0 ? kFarthest : ((a > 0 ? right : 0) - middle.X) / a;
    const double alongY = b == 0 ? kFarthest : ((b > 0 ? lower : 0) - middle.Y) / b;
    const double way = std::max(0.0, std::min(alongX, alongY));
    return {std::clamp(middle.X + way * a, 0.0, right), std::clamp(middle.Y + way * b, 0.0, lower)};
}

enum Side : std::size_t { kLinks, kRechts, kOben, kUnten, kSides };

Side NearestSide(const Cells& cells, const Place& point) {
    const std::array<double, kSides> way = {point.X, cells.Width - point.X, point.Y, cells.Height - point.Y};
    return static_cast<Side>(std::min_element(way.begin(), way.end()) - way.begin());
}

// The flags of a side stand one behind the other, in the order of their points, so that no two leader lines
// need to cross.
std::vector<Place> SidePlaces(const Cells& cells, const std::vector<int>& rows) {
    std::vector<Place> places(rows.size());
    std::array<std::vector<std::size_t>, kSides> stacks;
    for (std::size_t i = 0; i < rows.size(); ++i)
        stacks[NearestSide(cells, PixelOfRow(rows[i]))].push_back(i);
    for (std::size_t side = 0; side < kSides; ++side) {
        const bool upright = side == kLinks || side == kRechts;
        const auto along = [&](std::size_t i) {
            const Place pixel = PixelOfRow(rows[i]);
            const double at = upright ? pixel.Y : pixel.X;
            return std::isfinite(at) ? at : 0.0;
        };
        std::stable_sort(stacks[side].begin(), stacks[side].end(),
                         [&](std::size_t a, std::size_t b) { return along(a) < along(b); });
        double next = 0;
        for (const std::size_t i : stacks[side]) {
            places[i] = {side == kRechts ? std::max(0.0, cells.Width - cells.CellWidth)
                         : upright       ? 0
                                         : next,
                         side == kUnten ? std::max(0.0, cells.Height - cells.CellHeight)
                         : upright      ? next
                                        : 0};
            next += upright ? cells.CellHeight : cells.CellWidth;
        }
    }
    return places;
}

std::vector<Place> StartPlaces(const Cells& cells, const FlagPlacing& placing, const std::vector<int>& rows) {
    if (placing.Placement == FlagPlacement::Side) return SidePlaces(cells, rows);
    const Place middle = MiddleOfPoints();
    std::vector<Place> places;
    places.reserve(rows.size());
    for (const int row : rows) {
        const Place point = PixelOfRow(row);
        switch (placing.Placement) {
            case FlagPlacement::Radial:
                places.push_back({middle.X - (middle.X - point.X) * placing.Factor,
                                  middle.Y + (point.Y - middle.Y) * placing.Factor});
                break;
            case FlagPlacement::Border:
                places.push_back(BorderPlace(cells, middle, point));
                break;
            default:
                places.push_back(point);
        }
    }
    return places;
}

// --- Cells ------------------------------------------------------------------------------------------------

std::size_t NumberOf(const Cells& cells, const Cell& cell) {
    return At(cell.Row - 1) * At(cells.Columns) + At(cell.Column - 1);
}

// The free cell nearest to a taken one: squares around it, each from its upper left corner row by row.
std::optional<Cell> FreeCellAround(const Cells& cells, const std::vector<bool>& taken, const Cell& start) {
    const int largest = std::max(cells.Columns, cells.Rows);
    for (int ring = 1; ring <= largest; ++ring)
        for (int row = start.Row - ring; row <= start.Row + ring; ++row) {
            if (row < 1 || row > cells.Rows) continue;
            const bool whole = row == start.Row - ring || row == start.Row + ring;
            for (int column = start.Column - ring; column <= start.Column + ring;
                 column += whole ? 1 : 2 * ring) {
                if (column < 1 || column > cells.Columns) continue;
                if (!taken[NumberOf(cells, {column, row})]) return Cell{column, row};
            }
        }
    return std::nullopt;
}

// --- Flags ------------------------------------------------------------------------------------------------

// The rows whose flags are to be placed: those that get one now among them. Where there can be no more flags
// `full` is set.
std::vector<int> RowsToPlace(ScreenWindow& window, const FlagPlacing& placing, bool& full) {
    std::vector<int> rows;
    int shown = 0;
    for (int row = 1; row <= Scene.Rows; ++row) {
        if (!IsSeen(row)) continue;
        const bool chosen = placing.PutAll && shown++ % std::max(1, placing.Every) == 0;
        if (chosen || FlagOfRow(window, row) != 0) rows.push_back(row);
        full = full || rows.size() > At(kMostFlags);
    }
    if (full) rows.resize(At(kMostFlags));
    return rows;
}

// The size of a cell: that of the active flag, else of the largest that is placed, so that none covers
// another.
FlagLabel CurrentLabel(const ScreenWindow& window, const std::vector<int>& rows) {
    const auto active = static_cast<std::size_t>(window.State.ActiveFlag);
    if (active != 0 && active < window.FlagLabels.size() && window.FlagLabels[active].Row != 0)
        return window.FlagLabels[active];
    FlagLabel largest, label;
    const FlagRecord fresh = NewFlagRecord(window);
    for (const int row : rows) {
        const int flag = FlagOfRow(window, row);
        FillFlagLabel(window, row, flag != 0 ? window.State.Flags[At(flag)] : fresh, label);
        largest.Width = std::max(largest.Width, label.Width);
        largest.Height = std::max(largest.Height, label.Height);
    }
    return largest;
}

// False where the picture is full.
bool PlaceFlags(ScreenWindow& window, const FlagPlacing& placing, const std::vector<int>& rows) {
    const Cells cells = CellsFor(window, CurrentLabel(window, rows));
    const std::vector<Place> places = StartPlaces(cells, placing, rows);
    std::vector<bool>& taken = window.FlagCells;
    taken.assign(At(cells.Columns) * At(cells.Rows), false);
    for (std::size_t i = 0; i < rows.size(); ++i) {
        Cell cell = CellOf(cells, places[i]);
        bool inCell = placing.OnGrid;
        if (taken[NumberOf(cells, cell)]) {
            const std::optional<Cell> free = FreeCellAround(cells, taken, cell);
            if (!free) return false;
            cell = *free;
            inCell = true;
        }
        taken[NumberOf(cells, cell)] = true;
        int flag = FlagOfRow(window, rows[i]);
        if (flag == 0) flag = AddFlag(window, rows[i], 0, 0);
        if (flag == 0) return false;
        FlagRecord& record = FlagOf(window, flag);
        record.Left = ToFlagPlace(inCell ? (cell.Column - 1) * cells.CellWidth : places[i].X);
        record.Top = ToFlagPlace(inCell ? (cell.Row - 1) * cells.CellHeight : places[i].Y);
    }
    return true;
}

}  // namespace

void FlagPutAll(ScreenWindow& window, const FlagPlacing& placing) {
    if (placing.Placement == FlagPlacement::None) return;
    Stelle_Grafik_dar(window);  // what is shown, and where, is that of this window
    bool full = false;
    const std::vector<int> rows = RowsToPlace(window, placing, full);
    if (placing.PutAll) window.State.FlagMode = kTrue;
    if (!rows.empty()) full = !PlaceFlags(window, placing, rows) || full;
    if (placing.PutAll) ProgrammLogik();
    ShowFlagCommands();
    Stelle_Grafik_dar(window);
    if (full) ShowMessage("screen is full, make more views for your flags");
}

}  // namespace corvinade::graphics
