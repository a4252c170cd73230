// The chart of one column of the main sheet, and the command that fills it.
#include "analysis/form_grafik.h"

#include <cmath>
#include <cstddef>
#include <optional>

#include "analysis/form_main_sheet.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "engine/field_number.h"
#include "fit/require.h"

namespace corvinade::analysis {

FormGrafik GrafikWindow;

namespace {

FormGrafik& w = GrafikWindow;

const ControlEntry kControls[] = {{"Chart", &w.Chart, Plot()}};

void Empty() {
    w.Points.clear();
    w.Min = w.Max = 0;
    ++w.Fillings;
}

// Points without a partner have no deviations, and names are no numbers.
std::optional<double> ValueOf(const std::string& text, int col) {
    double value = 0;
    if (text.empty() || col == kColPointID) return std::nullopt;
    return TextToNumber(text, value) ? value : FieldAngle(text);
}

// A column of the main sheet, its rows as they stand, each with its number.
std::vector<ChartPoint> ColumnOfSheet(int col) {
    const BusyPointer busy;
    GridState& grid = MainSheetWindow.MSFlexGrid1.Grid;
    LookAt(grid);
    std::vector<ChartPoint> points;
    for (int row = grid.FixedRows; row < grid.Rows; ++row)
        if (const auto value = ValueOf(CellText(grid, row, col), col))
            points.push_back({static_cast<double>(row), *value});
    return points;
}

}  // namespace

const WindowEntry FormGrafik_Entry = {
    .Name = "FormGrafik",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormGrafik{}; },
    .Escape = FormGrafik::Form_Escape,
};

void Grafik_Failed() {
    Empty();
    ShowMessage("Sorry, but do have Problems with Graphs with Windows 7 or higher");
}

void Grafik(std::span<const ChartPoint> array, int first, int last) {
    Require(last < first || (first >= 0 && static_cast<std::size_t>(last) < array.size()));
    ShowWindow("FormGrafik");
    const auto shown = last < first ? array.first(0)
                                    : array.subspan(static_cast<std::size_t>(first),
                                                    static_cast<std::size_t>(last - first) + 1);
    const double limit = ChartLimit(LargestAbsolute(shown));
    if (!std::isfinite(limit)) return Grafik_Failed();
    w.Points.assign(shown.begin(), shown.end());
    w.Min = -limit;
    w.Max = limit;
    ++w.Fillings;
}

void FormGrafik::Form_Escape() {
    UnloadWindow("FormGrafik");
}

void MenuEditGraphData_Click() {
    GridState& grid = MainSheetWindow.MSFlexGrid1.Grid;
    if (!IsTrue(Run.JobDataValid) || Job.Pairs() <= 0) {
        ShowMessage("There are no Points to graph!");
        return;
    }
    if (!MainSheetWindow.Window.Loaded || grid.Rows <= grid.FixedRows) {
        ShowMessage("Open the main sheet and click a cell of the column first.");
        return;
    }
    const GridRect selected = Selected(grid);
    if (selected.Row != selected.Row2) {
        ShowMessage("Only one row can be selected");
        return;
    }
    const std::vector<ChartPoint> points = ColumnOfSheet(selected.Col);
    Grafik(points, 0, static_cast<int>(points.size()) - 1);
}

}  // namespace corvinade::analysis
