// The window of the distance scale: its table, and the file of all pairs.
#include "analysis/form_distance_scale.h"

#include <algorithm>
#include <utility>

#include "analysis/form_trompete.h"
#include "analysis/pair_progress.h"
#include "analysis/trumpet_file.h"
#include "core/file_state.h"
#include "core/files.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"

namespace corvinade::analysis {

FormDistanceScale DistanceScaleWindow;

const std::array<const char*, kDistanceScaleCols> kDistanceScaleHeadings = {
    "Von Pkt", "max delta s", "bei Pkt", "min delta s",          "bei Pkt",      "max Scale ",
    "bei Pkt", "min Scale",   "bei Pkt", "Schnitt Abs(delta s)", "Schnitt Scale"};

namespace {

FormDistanceScale& w = DistanceScaleWindow;

const ControlEntry kControls[] = {
    {"OptionWithoutCal",
     &w.OptionWithoutCal,
     Option("Start points as &measured", 1),
     {.Click = FormDistanceScale::OptionWithoutCal_Click}},
    {"OptionWithCal",
     &w.OptionWithCal,
     Option("Start points with t&ransformation", 1),
     {.Click = FormDistanceScale::OptionWithCal_Click}},
    {"BtnSaveTrumpetData",
     &w.BtnSaveTrumpetData,
     Button("Save Trumpet &Data"),
     {.Click = FormDistanceScale::BtnSaveTrumpetData_Click}},
    {"BtnTrumpetGraph",
     &w.BtnTrumpetGraph,
     Button("Trumpet &Graph"),
     {.Click = FormDistanceScale::BtnTrumpetGraph_Click}},
    {"TabelleScale",
     &w.TabelleScale,
     Grid(1, 0),
     {.Click = FormDistanceScale::TabelleScale_Click, .Key = FormDistanceScale::TabelleScale_Key}},
};

const RecordEntry kRecords[] = {
    {"WithCal", &DistanceScale.WithCal, Storage::Run},
};

constexpr const char* kNotEnough = "There are not enough identically Points for a calculation";

// Steps of a few nanoseconds that the line of a pair takes.
constexpr std::int64_t kStepsOfALine = 20;

void ShowRows() {
    GridState& grid = w.TabelleScale.Grid;
    grid.Rows = static_cast<int>(std::max<std::size_t>(DistanceScale.Rows.size(), 1));
    grid.Cols = kDistanceScaleCols;
    grid.Aligns.assign(kDistanceScaleCols, GridAlign::Right);
    for (const std::size_t col : {0U, 2U, 4U, 6U, 8U}) grid.Aligns[col] = GridAlign::Left;
    grid.Text = [](int row, int col) -> std::string {
        if (row == 0) return kDistanceScaleHeadings[static_cast<std::size_t>(col)];
        const auto k = static_cast<std::size_t>(row);
        if (k >= DistanceScale.Rows.size()) return "";
        return DistanceScaleText(*DistanceScale.Points, DistanceScale.Rows[k], row, col);
    };
    grid.Order.clear();
    grid.Fill = [] { SortAgain(w.TabelleScale.Grid, DistanceScale.Sorting); };
    KeepSelectionInside(grid);
}

void Take(std::shared_ptr<const DistancePoints> points, std::vector<DistanceExtremes> rows) {
    DistanceScale.Points = std::move(points);
    DistanceScale.Rows = std::move(rows);
    if (w.Window.Loaded) ShowRows();
    Trumpet_PointsChanged();
}

}  // namespace

std::span<const RecordEntry> AnalysisRecords() {
    return kRecords;
}

const WindowEntry FormDistanceScale_Entry = {
    .Name = "FormDistanceScale",
    .State = &w.Window,
    .Controls = kControls,
    .Fresh = [] { w = FormDistanceScale{}; },
    .Load = FormDistanceScale::Form_Load,
    .Escape = FormDistanceScale::Form_Escape,
};

std::string DistanceScaleText(const DistancePoints& points, const DistanceExtremes& row, int point, int col) {
    const auto name = [&points](int number) { return points.Names[static_cast<std::size_t>(number)]; };
    const auto length = [](double value_mm) {
        return FormatNumber(value_mm * Units.LengthFactor, Units.FmtLength);
    };
    const auto scale = [](double value) { return FormatNumber(value, Units.FmtScale); };
    const double others = points.Count() - 1;
    switch (col) {
        case 0:
            return name(point);
        case 1:
            return length(row.MaxDelta);
        case 2:
            return name(row.MaxDeltaAt);
        case 3:
            return length(row.MinDelta);
        case 4:
            return name(row.MinDeltaAt);
        case 5:
            return scale(row.MaxScale);
        case 6:
            return name(row.MaxScaleAt);
        case 7:
            return scale(row.MinScale);
        case 8:
            return name(row.MinScaleAt);
        case 9:
            return length(static_cast<double>(row.SumAbs) / others);
        default:
            return scale(static_cast<double>(row.SumScale) / others);
    }
}

void Distance_Calculation() {
    const BusyPointer busy;
    const std::uint64_t calculation = ++DistanceScale.Calculations;
    const std::uint64_t generation = Run.JobGeneration;
    auto points = std::make_shared<const DistancePoints>(TakeDistancePoints(IsTrue(DistanceScale.WithCal)));
    if (points->Count() < 2) return Take(std::make_shared<const DistancePoints>(), {});
    std::vector<DistanceExtremes> rows;
    bool overtaken = false, whole = false;
    {
        PairProgress progress("Distances - Progress", 8 * points->Pairs());
        whole = MeasurePoints(*points, rows, [&](double share) {
            const bool goesOn = progress.GoesOn(share);
            overtaken = DistanceScale.Calculations != calculation || Run.JobGeneration != generation;
            return goesOn && !overtaken;
        });
    }
    if (overtaken) return;
    if (!whole) return Take(std::make_shared<const DistancePoints>(), {});
    Take(std::move(points), std::move(rows));
}

void DistanceScale_Refill() {
    if (!w.Window.Loaded && !IsLoaded(FormTrompete_Entry.Name)) return;
    // Most of what changes a job leaves these points as they are.
    if (TakeDistancePoints(IsTrue(DistanceScale.WithCal)) == *DistanceScale.Points) return;
    Distance_Calculation();
}

void FormDistanceScale::Form_Load() {
    DistanceScale.WithCal = kFalse;
    w.OptionWithoutCal.Value = 1;
    Take(std::make_shared<const DistancePoints>(), {});
    Distance_Calculation();
}

void FormDistanceScale::Form_Escape() {
    UnloadWindow(FormDistanceScale_Entry.Name);
}

void FormDistanceScale::OptionWithoutCal_Click() {
    DistanceScale.WithCal = kFalse;
    Distance_Calculation();
}

void FormDistanceScale::OptionWithCal_Click() {
    DistanceScale.WithCal = kTrue;
    Distance_Calculation();
}

void FormDistanceScale::BtnSaveTrumpetData_Click() {
    // Held fast: the option may be changed while the file is written.
    const std::shared_ptr<const DistancePoints> points = DistanceScale.Points;
    if (points->Count() < 2) return ShowMessage(kNotEnough);
    const auto path = AskSaveFile({.Title = "Save trumpet data",
                                   .Filter = "Text files|*.txt|All files|*.*",
                                   .Folder = Settings.LastDir,
                                   .Name = "trumpet.txt",
                                   .AsksBeforeReplacing = true});
    if (!path || path->empty()) return;
    if (FileIsThere(*path) &&
        !AskYesNo("File " + *path + " is existing." + kLineEnd + "Will you replace it?"))
        return;
    const BusyPointer busy;
    PairProgress progress("Trumpet data - Progress", kStepsOfALine * points->Pairs());
    WriteTrumpetFile(*path, *points, [&progress](double share) { return progress.GoesOn(share); });
}

void FormDistanceScale::BtnTrumpetGraph_Click() {
    if (DistanceScale.Points->Count() < 2) return ShowMessage(kNotEnough);
    ShowWindow(FormTrompete_Entry.Name);
}

void FormDistanceScale::TabelleScale_Click() {
    GridState& grid = w.TabelleScale.Grid;
    if (grid.MouseRow == 0) SortByHeading(grid, grid.MouseCol, DistanceScale.Sorting);
}

void FormDistanceScale::TabelleScale_Key() {
    GridState& grid = w.TabelleScale.Grid;
    if (grid.Key == "Ctrl+C") ToClipboard(RectText(grid, Selected(grid)));
}

}  // namespace corvinade::analysis
