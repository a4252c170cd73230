// What the user does in the point table: coordinates in and out of the fit, seed points, sorting, copying.
#include <algorithm>

#include "core/changes.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/platform.h"
#include "engine/calculation_window.h"
#include "engine/field_number.h"
#include "engine/seed.h"

namespace corvinade::engine {

namespace {

FormTrafoBerechnung& w = TrafoWindow;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The point that the user sees in a row, whatever the table is sorted by; 0 where there is none, or where
// the job no longer has that point.
int PointSeen(int row) {
    const int point = PointOfRow(w.Points, FilledRow(w.Tabelle.Grid, row));
    const bool still = point >= 1 && point <= Job.Pairs() && 3 * point <= UpperBound(Job.UseFlags) &&
                       Job.Start.Name[At(point)] == w.Points.Names[At(point)];
    return still ? point : 0;
}

// A distance is one observation of the whole point.
bool DistancesInUse() {
    if (IsTrue(CalculationWindow.UseABCActive)) return false;
    const std::string& slot = Job.ParamText[kRDist];
    return w.CheckRDist.Value == 1 || (IsHeldValue(slot) && FieldNumber(slot) != 0);
}

// Turns a use cell over, and the flag of its coordinate with it. The other two flags of a point that a
// distance is measured to follow; their cells stay as they are until the table is filled again.
void TurnUseCell(int point, int axis) {
    bool& shown = w.Points.InUse[At(point)][At(axis)];
    shown = !shown;
    const std::int16_t flag = shown ? 1 : 0;
    const auto first = Job.UseFlags.begin() + 3 * (point - 1) + 1;
    if (DistancesInUse()) {
        std::fill_n(first, 3, flag);
    } else {
        first[axis] = flag;
    }
}

// A deviation stands for its use cell. True when a flag has changed.
bool ActOnCell(int row, int col) {
    if (w.CheckDeviation.Value != 1 || col < kColX || col > kColUseZ) return false;
    if (!IsDeviationRow(w.Points, FilledRow(w.Tabelle.Grid, row))) return false;
    const int point = PointSeen(row);
    if (point == 0) return false;
    TurnUseCell(point, col < kColUseX ? col - kColX : col - kColUseX);
    return true;
}

bool ActOnSelection() {
    const GridRect rect = Selected(w.Tabelle.Grid);
    bool changed = false;
    for (int row = rect.Row; row <= rect.Row2; ++row)
        for (int col = rect.Col; col <= rect.Col2; ++col) changed |= ActOnCell(row, col);
    return changed;
}

// The point whose name the current cell holds becomes a seed point.
bool TakeSeed() {
    const GridState& grid = w.Tabelle.Grid;
    const int point = grid.Col == kColName ? PointSeen(grid.Row) : 0;
    if (point == 0 || ItsASeed(Job.Start.Name[At(point)])) return false;
    TakeAsNewestSeed(point);
    TabelleFüllenNeu();
    return true;
}

void TellOthers() {
    Changed(What::Use);
    RecalculateIfAutomatic();
}

// What a double click and the space bar do.
void Act() {
    LookAt(w.Tabelle.Grid);
    bool changed = ActOnSelection();
    changed |= TakeSeed();
    if (changed) TellOthers();
}

void MoveTo(int row, int col) {
    GridState& grid = w.Tabelle.Grid;
    grid.Row = grid.RowSel = row;
    grid.Col = grid.ColSel = col;
}

// Headings sort by the columns before this one, and the right button collects from them.
constexpr int kColAfterValues = kColUseX;

void SwitchNamed(const Control& field, const char* axis) {
    Switch_MaxPoint(std::string(field.Text), axis);
}

}  // namespace

void FormTrafoBerechnung::Tabelle_Click() {
    w.MenuTabelleCopy.Visible = false;
    GridState& grid = w.Tabelle.Grid;
    if (grid.MouseRow != 0 || grid.Col >= kColAfterValues) return;
    SortByHeading(grid, grid.Col, CalculationWindow.Sorting);
    if (DesktopDefaults.PointTable) KeepPointsTogether(w.Points, grid.Col, grid.Order);
}

void FormTrafoBerechnung::Tabelle_DblClick() {
    const GridState& grid = w.Tabelle.Grid;
    if (grid.MouseRow >= grid.FixedRows && grid.MouseCol >= grid.FixedCols) Act();
}

void FormTrafoBerechnung::Tabelle_SelChange() {
    w.MenuTabelleCopy.Visible = false;
    SetPointGraphicsActive();
}

void FormTrafoBerechnung::Tabelle_Key() {
    GridState& grid = w.Tabelle.Grid;
    if (grid.Key == "Space") Act();
    if (grid.Key == "Ctrl+C" || grid.Key == "Ctrl+Insert") ToClipboard(RectText(grid, Selected(grid)));
}

void FormTrafoBerechnung::Tabelle_RightClick() {
    GridState& grid = w.Tabelle.Grid;
    const GridRect rect = Selected(grid);
    w.MenuTabelleCopy.Visible = rect.Col2 < kColAfterValues;
    if (!w.MenuTabelleCopy.Visible) return;
    TakeGraphValues(grid);
    w.CollectedCells = RectText(grid, rect);
}

void FormTrafoBerechnung::MenuTabelleCopy_Click() {
    w.MenuTabelleCopy.Visible = false;
    ToClipboard(w.CollectedCells);
}

void TakeGraphValues(GridState& grid) {
    const GridRect rect = Selected(grid);
    CalculationWindow.GraphValues.assign(1, 0);
    for (int row = std::max(rect.Row, grid.FixedRows); row <= rect.Row2; ++row)
        CalculationWindow.GraphValues.push_back(FieldNumber(CellText(grid, row, rect.Col)));
}

void SetPointGraphicsActive() {
    LookAt(w.Tabelle.Grid);
    const GridState& grid = w.Tabelle.Grid;
    if (grid.Col != kColName || !Main.MenueGraphics.Checked || !Main.MenuVievMainSheet.Checked) return;
    if (CalculationWindow_Point() != 0) ShowNow(What::PointInTable);
}

int CalculationWindow_Point() {
    return PointSeen(w.Tabelle.Grid.Row);
}

void CalculationWindow_ShowPoint(int point) {
    if (!w.Window.Loaded || point < 1) return;
    GridState& grid = w.Tabelle.Grid;
    LookAt(grid);
    if (PointSeen(grid.Row) == point) return;
    int row = grid.FixedRows;
    while (row < grid.Rows && PointSeen(row) != point) ++row;
    if (row >= grid.Rows) return;
    grid.Row = grid.RowSel = row;
    grid.Col = grid.ColSel = kColName;
    KeepSelectionInside(grid);
}

void Switch_MaxPoint(const std::string& pointName, const std::string& axis) {
    GridState& grid = w.Tabelle.Grid;
    LookAt(grid);
    const int offset = axis == "X" ? 4 : axis == "Y" ? 5 : 6;
    int row = grid.FixedRows;
    while (row < grid.Rows && (CellText(grid, row, kColName) != pointName || PointSeen(row) == 0)) ++row;
    if (pointName.empty() || row >= grid.Rows) return;
    // The name may stand in another row of the point than its use cells.
    const int point = PointSeen(row);
    for (int other = grid.FixedRows; other < grid.Rows; ++other)
        if (FilledRow(grid, other) == DeviationRow(w.Points, point)) row = other;
    MoveTo(row, kColName + offset);
    Act();
}

void FormTrafoBerechnung::TextMaxDevXYZPkt_DblClick() {
    const std::string name = w.TextMaxDevXYZPkt.Text;
    {
        const NoRecalculation none;  // the last change calculates for all of them
        Switch_MaxPoint(name, "X");
        Switch_MaxPoint(name, "Y");
    }
    Switch_MaxPoint(name, "Z");
}
void FormTrafoBerechnung::TextMaxDevXPkt_DblClick() {
    SwitchNamed(w.TextMaxDevXPkt, "X");
}
void FormTrafoBerechnung::TextMaxDevYPkt_DblClick() {
    SwitchNamed(w.TextMaxDevYPkt, "Y");
}
void FormTrafoBerechnung::TextMaxDevZPkt_DblClick() {
    SwitchNamed(w.TextMaxDevZPkt, "Z");
}
void FormTrafoBerechnung::TextMinDevXPkt_DblClick() {
    SwitchNamed(w.TextMinDevXPkt, "X");
}
void FormTrafoBerechnung::TextMinDevYPkt_DblClick() {
    SwitchNamed(w.TextMinDevYPkt, "Y");
}
void FormTrafoBerechnung::TextMinDevZPkt_DblClick() {
    SwitchNamed(w.TextMinDevZPkt, "Z");
}

}  // namespace corvinade::engine
