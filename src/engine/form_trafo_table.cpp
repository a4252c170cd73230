// The point table of the calculation window: how it is filled, its columns, and the buttons about it.
#include <algorithm>

#include "core/changes.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/numbers.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/calculation_window.h"
#include "engine/seed.h"

namespace corvinade::engine {

namespace {

FormTrafoBerechnung& w = TrafoWindow;

constexpr int kDefaultWidth = 900, kNarrow = 200;  // twips

std::string WidthKey(int col) {
    return "col_fb_" + std::to_string(col);
}

// What the table shows is taken and sorted when it is first looked at: with many points that takes longer
// than the calculation.
void FillNow() {
    GridState& grid = w.Tabelle.Grid;
    TakePoints(w.Points);
    grid.Rows = PointTableRows(w.Points);
    grid.Cols = kPointCols;
    grid.Text = [](int row, int col) { return PointTableText(w.Points, row, col); };
    grid.BackColor = [](int row, int col) { return PointTableBackColor(w.Points, row, col); };
    SortAgain(grid, CalculationWindow.Sorting);
    if (DesktopDefaults.PointTable) KeepPointsTogether(w.Points, CalculationWindow.Sorting.Col, grid.Order);
    KeepSelectionInside(grid);
}

}  // namespace

void PreparePointTable() {
    GridState& grid = w.Tabelle.Grid;
    w.Tabelle.ToolTip = "Green Fields indicate Seed Points for Raw Solution; Change Seeds with double Click";
    grid.Cols = kPointCols;
    grid.ColWidths.assign(kPointCols, 0);
    grid.ColWidths[0] = kNarrow;
    for (int col = kColName; col <= kColUseZ; ++col)
        grid.ColWidths[static_cast<std::size_t>(col)] = LoadColWidth({WidthKey(col)}, kDefaultWidth);
    grid.HiddenCols.assign(kPointCols, false);
    grid.HiddenCols[kColPoint] = true;
    grid.Aligns.assign(kPointCols, GridAlign::Left);
    std::fill_n(grid.Aligns.begin() + kColName, 4, GridAlign::Right);
    std::fill_n(grid.Aligns.begin() + kColUseX, 3, GridAlign::Centre);
}

void SchreibeTabellenSpalteBreite_in_ini() {
    const std::vector<int>& widths = w.Tabelle.Grid.ColWidths;
    if (widths.size() != kPointCols) return;
    std::vector<IniLine> lines;
    for (int col = kColName; col <= kColUseZ; ++col)
        lines.push_back({"Cols", WidthKey(col), PlainText(widths[static_cast<std::size_t>(col)])});
    IniWerteSchreiben(lines);
}

void TabelleFüllenNeu() {
    PointTable table;
    table.Measurement = w.CheckMeasurement.Value == 1;
    table.Object = w.CheckObject.Value == 1;
    table.Deviation = w.CheckDeviation.Value == 1;
    if (RowKinds(table) == 0) return;
    ChooseDefaultSeeds();
    table.LengthFactor = Units.LengthFactor;
    table.Format = Units.FmtLength;
    table.Tolerance = ToleranceOf(Job);
    std::copy(Job.SeedName.begin() + 1, Job.SeedName.end(), table.Seeds.begin());
    w.Points = std::move(table);
    w.Tabelle.Grid.Fill = FillNow;
}

void FormTrafoBerechnung::CheckMeasurement_Click() {
    TabelleFüllenNeu();
}
void FormTrafoBerechnung::CheckObject_Click() {
    TabelleFüllenNeu();
}
void FormTrafoBerechnung::CheckDeviation_Click() {
    TabelleFüllenNeu();
}

void FormTrafoBerechnung::BtnUseAllPts_Click() {
    const int flags = std::min(3 * Job.Pairs(), UpperBound(Job.UseFlags));
    std::fill_n(Job.UseFlags.begin() + 1, std::max(flags, 0), std::int16_t{1});
    if (RecalculatesByItself()) {
        BtnCalculate_Click();
    } else {
        TabelleFüllenNeu();
    }
    Changed(What::Use);
}

}  // namespace corvinade::engine
