// The main sheet: how it is filled, its columns, and what the user does in it.
#include "analysis/form_main_sheet.h"

#include <algorithm>
#include <array>
#include <bit>
#include <numeric>
#include <utility>

#include "core/changes.h"
#include "core/desktop_defaults.h"
#include "core/form_main.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "engine/calculation_window.h"
#include "fit/require.h"

namespace corvinade::analysis {

FormMainSheet MainSheetWindow;

namespace {

FormMainSheet& w = MainSheetWindow;

const ControlEntry kControls[] = {
    {"ComboFilter",
     &w.ComboFilter,
     ComboBox({"All points", "Not in use", "Over tolerance", "Without partner"}),
     {.Click = FormMainSheet::ComboFilter_Click}},
    {"LabelFilter", &w.LabelFilter, Label("")},
    {"MSFlexGrid1",
     &w.MSFlexGrid1,
     Grid(1, 0),
     {.Click = FormMainSheet::MSFlexGrid1_Click,
      .DblClick = FormMainSheet::MSFlexGrid1_DblClick,
      .SelChange = FormMainSheet::MSFlexGrid1_SelChange,
      .RightClick = FormMainSheet::MSFlexGrid1_RightClick,
      .Key = FormMainSheet::MSFlexGrid1_Key}},
};

constexpr int kDefaultWidth = 1000, kRowHeight = 240;  // twips

std::string WidthKey(int col) {
    return "FormMainSheet" + std::to_string(col);
}

void PrepareColumns() {
    GridState& grid = w.MSFlexGrid1.Grid;
    grid.Cols = SheetCols();
    grid.ColWidths.clear();
    for (int col = 0; col < grid.Cols; ++col)
        grid.ColWidths.push_back(LoadColWidth({WidthKey(col), "Col_" + std::to_string(col)}, kDefaultWidth));
    grid.HiddenCols.assign(static_cast<std::size_t>(grid.Cols), false);
    grid.HiddenCols[kColNumber] = true;
    grid.Aligns.assign(static_cast<std::size_t>(grid.Cols), GridAlign::Right);
    // The length stands behind its components.
    constexpr int kBehind = 10;
    if (grid.Cols > kColDeviation3D) {
        grid.ColOrder.resize(static_cast<std::size_t>(grid.Cols));
        std::iota(grid.ColOrder.begin(), grid.ColOrder.end(), 0);
        std::rotate(grid.ColOrder.begin() + kBehind, grid.ColOrder.begin() + kColDeviation3D,
                    grid.ColOrder.end());
    }
    grid.Aligns[kColPointID] = GridAlign::Left;
}

// Under their keys, and how many they are.
void WriteColumnWidths() {
    const std::vector<int>& widths = w.MSFlexGrid1.Grid.ColWidths;
    std::vector<IniLine> lines;
    for (std::size_t col = 0; col < widths.size(); ++col)
        lines.push_back({"Cols", WidthKey(static_cast<int>(col)), PlainText(widths[col])});
    lines.push_back({"Cols", "Cols", std::to_string(widths.size())});
    IniWerteSchreiben(lines);
}

// A switch of the direction changes the points over and leaves the names of the systems where they are.
std::string CaptionOfJob() {
    return "Main Sheet - Data in " + (DirectionSwitched() ? Job.NameMCS : Job.NameOCS) + " - OCS System";
}

// Points that have been replaced since are not shown any more, whoever replaced them.
bool IsOfThisJob(const MainSheetCells& cells) {
    return cells.JobGeneration == Run.JobGeneration;
}

SheetFilter FilterChosen() {
    return static_cast<SheetFilter>(std::max(w.ComboFilter.Index, 0));
}

// The rows that the filter leaves, sorted as before.
void ShowRows() {
    GridState& grid = w.MSFlexGrid1.Grid;
    const SheetFilter filter = FilterChosen();
    const int all = MainSheetRows(w.Cells);
    grid.Kept = IsOfThisJob(w.Cells) ? RowsOfFilter(w.Cells, filter) : std::vector<int>{};
    grid.Rows = grid.Kept.empty() ? all : static_cast<int>(grid.Kept.size());
    w.LabelFilter.Text = filter == SheetFilter::All ? ""
                         : filter == SheetFilter::OverTolerance && !(ToleranceOf(Job) > 0)
                             ? "The job has no tolerance: give one in the calculation window"
                             : PlainText(grid.Rows - 1) + " of " + PlainText(all - 1) + " points";
    // Sorting makes the text of a whole column, so it waits until somebody looks.
    grid.Order = grid.Kept;
    grid.Fill = [] { SortAgain(w.MSFlexGrid1.Grid, MainSheet.Sorting); };
    KeepSelectionInside(grid);
}

void Show(MainSheetCells cells) {
    GridState& grid = w.MSFlexGrid1.Grid;
    w.Cells = std::move(cells);
    w.Cells.Largest = LargestInUse(w.Cells);
    grid.Text = [](int row, int col) {
        return row == 0 || IsOfThisJob(w.Cells) ? MainSheetText(w.Cells, row, col) : "";
    };
    grid.BackColor = [](int row, int col) {
        return IsOfThisJob(w.Cells) ? MainSheetBackColor(w.Cells, row, col) : kSystemColour;
    };
    if (grid.Cols > kColDeviation3D)
        grid.Bar = [](int row, int col) {
            return IsOfThisJob(w.Cells) ? BarOfSheet(w.Cells, row, col) : 0.0;
        };
    ShowRows();
}

// What carries the start points over, bit by bit, so that a value that is no number equals itself.
std::array<std::uint64_t, 12> TransformationOfJob() {
    const std::array<double, 12> parameters = {Job.TraX,     Job.TraY,     Job.TraZ,    Job.RotXCopy,
                                               Job.RotYCopy, Job.RotZCopy, Job.ScaleX,  Job.ScaleY,
                                               Job.ScaleZ,   Job.AngleXY,  Job.Azimuth, Job.AngleZtoXY};
    return std::bit_cast<std::array<std::uint64_t, 12>>(parameters);
}

// Takes all rows, with a yield before each. False when the job, the sheet or another fill has overtaken
// this one meanwhile. A new transformation begins the rows anew, so that all are of the same one.
bool TakeRows(MainSheetCells& cells) {
    const std::uint64_t fill = ++MainSheet.Fills;
    auto transformation = TransformationOfJob();
    for (int row = 1; row < MainSheetRows(cells); ++row) {
        YieldToEvents();
        const bool still =
            w.Window.Loaded && MainSheet.Fills == fill && IsOfThisJob(cells) && PointsOfJob() == cells.Counts;
        if (!still) return false;
        if (const auto present = TransformationOfJob(); present != transformation) {
            transformation = present;
            row = 1;
        }
        TakeRow(cells, row);
    }
    return true;
}

// The selected cells, below their headings where the options say so; "" without a row.
std::string SelectionText() {
    GridState& grid = w.MSFlexGrid1.Grid;
    if (grid.Rows <= grid.FixedRows) return "";
    const GridRect rect = Selected(grid);
    std::string text = RectText(grid, rect);
    if (!IsTrue(Settings.TabelHeadMainSheet)) return text;
    return RectText(grid, {0, rect.Col, 0, rect.Col2}) + kLineEnd + text;
}

// The pop-up menu of the sheet is the main window's menu for editing.
void PopUp(bool open) {
    Main.MenuEdit.Value = open ? 1 : 0;
}

}  // namespace

const WindowEntry FormMainSheet_Entry = {
    .Name = "FormMainSheet",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormMainSheet{}; },
    .Load = FormMainSheet::Form_Load,
    .Unload = FormMainSheet::Form_Unload,
};

void FuellenHaupttabelle() {
    if (!w.Window.Loaded) return;
    const BusyPointer busy;
    w.Window.Caption = CaptionOfJob();
    MainSheetCells cells = BeginMainSheet(PointsOfJob());
    const int points = MainSheetRows(cells) - 1;
    if (points <= 1) {
        ++MainSheet.Fills;  // one that has yielded ends, too
        Show(BeginMainSheet({}));
        ShowMessage("No Data found; Problem in Modul FuellenHaupttabelle");
        return;
    }
    if (!TakeRows(cells)) return;
    Show(std::move(cells));
    Main.MenuVievMainSheet.Checked = true;
}

void MainSheet_ShowPoint(int point) {
    // Pairs come first in the order in which the sheet is filled.
    if (point > w.Cells.Counts.Pairs) return;
    if (const int line = MainSheet_LineOf(point); line != 0) MainSheet_ShowLine(line);
}

int MainSheet_LineOf(int filledRow) {
    if (!w.Window.Loaded || !IsOfThisJob(w.Cells)) return 0;
    GridState& grid = w.MSFlexGrid1.Grid;
    LookAt(grid);
    if (filledRow < grid.FixedRows || filledRow >= MainSheetRows(w.Cells)) return 0;
    if (grid.Order.empty()) return filledRow;
    int line = grid.FixedRows;
    while (line < grid.Rows && FilledRow(grid, line) != filledRow) ++line;
    return line < grid.Rows ? line : 0;
}

void MainSheet_ShowLine(int line) {
    GridState& grid = w.MSFlexGrid1.Grid;
    Require(line >= grid.FixedRows && line < grid.Rows);
    grid.Row = grid.RowSel = line;
    grid.ColSel = grid.Col;
    grid.TopRow = line - w.Window.Place.Height / kRowHeight / 2;
    KeepSelectionInside(grid);
}

int MainSheet_CursorRow() {
    if (!w.Window.Loaded || !IsOfThisJob(w.Cells)) return 0;
    GridState& grid = w.MSFlexGrid1.Grid;
    LookAt(grid);
    const bool onPoint = grid.Row >= grid.FixedRows && grid.Row < grid.Rows;
    return onPoint ? FilledRow(grid, grid.Row) : 0;
}

int MainSheet_Pair() {
    const int point = PairOfRow(w.Cells, FilledRow(w.MSFlexGrid1.Grid, w.MSFlexGrid1.Grid.Row));
    return IsOfThisJob(w.Cells) ? point : 0;
}

void MainSheet_Copy() {
    if (!w.Window.Loaded) return;
    if (const std::string text = SelectionText(); !text.empty()) ToClipboard(text);
}

void MenuEditCopy_Click() {
    Main.MenuEdit.Value = 0;
    MainSheet_Copy();
}

void FormMainSheet::Form_Load() {
    w.ComboFilter.Index = 0;  // put there directly: there is nothing to filter yet
    w.ComboFilter.Text = w.ComboFilter.Items.front();
    PrepareColumns();
    Show(BeginMainSheet({}));
    FuellenHaupttabelle();
}

void FormMainSheet::Form_Unload() {
    WriteColumnWidths();
    PopUp(false);
    Main.MenuVievMainSheet.Checked = false;
}

void FormMainSheet::MSFlexGrid1_Click() {
    GridState& grid = w.MSFlexGrid1.Grid;
    if (grid.MouseRow == 0) SortByHeading(grid, grid.MouseCol, MainSheet.Sorting);
}

// On a name: the picture on top shows the point from near.
void FormMainSheet::MSFlexGrid1_DblClick() {
    const GridState& grid = w.MSFlexGrid1.Grid;
    if (grid.MouseCol == kColPointID && grid.MouseRow >= grid.FixedRows && Main.MenueGraphics.Checked)
        ShowNow(What::PointToZoom);
}

void FormMainSheet::ComboFilter_Click() {
    ShowRows();
}

void MainSheet_FilterAgain() {
    if (!w.Window.Loaded || !IsOfThisJob(w.Cells)) return;
    w.Cells.Largest = LargestInUse(w.Cells);
    if (FilterChosen() != SheetFilter::All) ShowRows();
}

void FormMainSheet::MSFlexGrid1_SelChange() {
    PopUp(false);
    // Points without a partner stand in the pictures too, and in no table beside.
    const bool follows =
        DesktopDefaults.PointsFollow || (MainSheet_Pair() != 0 && Main.MenueGraphics.Checked);
    if (follows) ShowNow(What::PointInSheet);
}

void FormMainSheet::MSFlexGrid1_RightClick() {
    TakeGraphValues(w.MSFlexGrid1.Grid);
    PopUp(true);
}

void FormMainSheet::MSFlexGrid1_Key() {
    if (w.MSFlexGrid1.Grid.Key == "Ctrl+C") MainSheet_Copy();
}

}  // namespace corvinade::analysis
