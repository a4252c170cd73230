// The window "Reliability".
#include "analysis/form_reliability.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "analysis/reliability_tables.h"
#include "core/changes.h"
#include "core/job.h"
#include "core/measurement_sigmas.h"
#include "core/numbers.h"
#include "core/parameter_names.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/result_statistics.h"

namespace corvinade::analysis {

FormReliability Reliability;

namespace {

FormReliability& w = Reliability;

const ControlEntry kControls[] = {
    {"LabelGlobalTest", &w.LabelGlobalTest, Label("")},
    {"GridPoints",
     &w.GridPoints,
     Grid(1, 0),
     {.Click = FormReliability::GridPoints_Click, .DblClick = FormReliability::GridPoints_DblClick}},
    {"GridAccuracy", &w.GridAccuracy, Grid(1, 1)},
    {"GridCorrelation", &w.GridCorrelation, Grid(1, 1)},
    {"FrameSigmas", &w.FrameSigmas, Frame("Standard Deviations of the Measurement")},
    {"LabelStart", &w.LabelStart, Label(""), {}, "FrameSigmas"},
    {"TextStartSigmaX", &w.TextStartSigmaX, TextBox(), {}, "FrameSigmas"},
    {"TextStartSigmaY", &w.TextStartSigmaY, TextBox(), {}, "FrameSigmas"},
    {"TextStartSigmaZ", &w.TextStartSigmaZ, TextBox(), {}, "FrameSigmas"},
    {"LabelTarget", &w.LabelTarget, Label(""), {}, "FrameSigmas"},
    {"TextTargetSigmaX", &w.TextTargetSigmaX, TextBox(), {}, "FrameSigmas"},
    {"TextTargetSigmaY", &w.TextTargetSigmaY, TextBox(), {}, "FrameSigmas"},
    {"TextTargetSigmaZ", &w.TextTargetSigmaZ, TextBox(), {}, "FrameSigmas"},
    {"LabelSigmas", &w.LabelSigmas, Label(""), {}, "FrameSigmas"},
    {"BtnApply", &w.BtnApply, Button("A&pply"), {.Click = FormReliability::BtnApply_Click}, "FrameSigmas"},
    {"FrameTests", &w.FrameTests, Frame("Tests")},
    {"LabelAlpha", &w.LabelAlpha, Label("Alpha"), {}, "FrameTests"},
    {"TextAlpha", &w.TextAlpha, TextBox(), {.Change = FormReliability::Level_Change}, "FrameTests"},
    {"LabelPower", &w.LabelPower, Label("Power"), {}, "FrameTests"},
    {"TextPower", &w.TextPower, TextBox(), {.Change = FormReliability::Level_Change}, "FrameTests"},
    {"LabelConfidence", &w.LabelConfidence, Label("Confidence"), {}, "FrameTests"},
    {"TextConfidence", &w.TextConfidence, TextBox(), {.Change = FormReliability::Level_Change}, "FrameTests"},
    {"BtnSnoop", &w.BtnSnoop, Button("S&noop"), {.Click = FormReliability::BtnSnoop_Click}},
    {"BtnSnoopBack", &w.BtnSnoopBack, Button("&Undo Snoop"), {.Click = FormReliability::BtnSnoopBack_Click}},
    {"BtnCopy", &w.BtnCopy, Button("&Copy"), {.Click = FormReliability::BtnCopy_Click}},
    {"BtnClose", &w.BtnClose, Button("Cl&ose"), {.Click = FormReliability::BtnClose_Click}},
};

constexpr std::int32_t kWarningGround = 0x66D1FF;  // amber, red in the low byte

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

struct SigmaField {
    Control& Text;
    const char* Name;
};
std::array<SigmaField, 6> SigmaFields() {
    return {{{w.TextStartSigmaX, "x of the start"},
             {w.TextStartSigmaY, "y of the start"},
             {w.TextStartSigmaZ, "z of the start"},
             {w.TextTargetSigmaX, "x of the target"},
             {w.TextTargetSigmaY, "y of the target"},
             {w.TextTargetSigmaZ, "z of the target"}}};
}

// As the system writes it, or with a point.
bool TakeNumber(const std::string& text, double& value) {
    return TextToNumber(text, value) || TextToNumber(text, '.', value);
}

// Between 0 and 1; a field with another text warns and leaves the level as it is.
void TakeLevel(Control& field, bool mayBeEmpty, double& level, double* alike = nullptr) {
    double value = 0;
    const bool empty = mayBeEmpty && field.Text.empty();
    const bool good = TakeNumber(field.Text, value) && value > 0 && value < 1;
    field.BackColor = good || empty ? kSystemColour : kWarningGround;
    if (!good) return;
    level = value;
    if (alike != nullptr) *alike = value;
}

TestLevels Levels() {
    TestLevels levels;
    TakeLevel(w.TextAlpha, true, levels.AlphaSingle, &levels.AlphaGlobal);
    TakeLevel(w.TextPower, false, levels.Power);
    TakeLevel(w.TextConfidence, false, levels.Confidence);
    return levels;
}

// An empty grid of this size, whose cells are made when they are asked for.
GridState& Sized(Control& control, int rows, int cols, int left) {
    GridState& grid = control.Grid;
    SizeGrid(grid, 0, 0);
    grid.Order.clear();
    grid.SortCol = -1;
    grid.Rows = rows;
    grid.Cols = cols;
    grid.Text = nullptr;
    grid.BackColor = nullptr;
    grid.Aligns.assign(At(cols), GridAlign::Right);
    std::fill_n(grid.Aligns.begin(), std::min(left, cols), GridAlign::Left);
    return grid;
}

void FillPoints() {
    w.Order = w.Shown && !w.Shown->Singular ? WorstFirst(*w.Shown) : std::vector<std::size_t>{};
    GridState& grid = Sized(w.GridPoints, static_cast<int>(w.Order.size()) + 1, kRelCols, kRelResidual);
    grid.Aligns[kRelVerdict] = GridAlign::Centre;
    grid.Text = [](int row, int col) -> std::string {
        static constexpr std::array<const char*, kRelCols> kTitles = {
            "Point", "Axis", "Residual", "Redundancy", "Standardized", "MDB", "Verdict"};
        return row == 0 ? kTitles[At(col)] : CoordinateText(*w.Shown, w.Order[At(row - 1)], col);
    };
    grid.BackColor = [](int row, int col) {
        return row == 0 ? kSystemColour : CoordinateColour(*w.Shown, w.Order[At(row - 1)], col);
    };
    KeepSelectionInside(grid);
}

void FillCorrelation() {
    const std::vector<int> floating =
        w.Shown && !w.Shown->Singular ? FloatingParameters(*w.Shown) : std::vector<int>{};
    const int u = static_cast<int>(floating.size());
    GridState& grid = w.GridCorrelation.Grid;
    SizeGrid(grid, u + 1, u + 1);
    grid.Aligns.assign(At(u + 1), GridAlign::Right);
    grid.Aligns[0] = GridAlign::Left;
    SetCell(grid, 0, 0, "Correlation");
    for (int i = 1; i <= u; ++i) {
        SetCell(grid, 0, i, ParameterName(floating[At(i - 1)]));
        SetCell(grid, i, 0, ParameterName(floating[At(i - 1)]));
        for (int j = 1; j <= u; ++j) {
            const double r = w.Shown->Correlation(i, j);
            SetCell(grid, i, j, std::isfinite(r) ? FormatNumber(r, "0.000") : "");
            if (i != j) SetCellBackColor(grid, i, j, CorrelationColour(r));
        }
    }
    KeepSelectionInside(grid);
}

void FillAccuracy() {
    const bool any = w.Shown && !w.Shown->Singular;
    GridState& grid = Sized(w.GridAccuracy, any ? AccuracyRows(*w.Shown) : 1, kAccCols, 1);
    grid.Aligns[kAccUnit] = GridAlign::Centre;
    grid.HiddenCols.assign(kAccCols, false);
    grid.HiddenCols[kAccPosterior] = any && !w.Shown->APriori;
    static const AdjustmentStatistics kNone;
    grid.Text = [](int row, int col) { return AccuracyText(w.Shown ? *w.Shown : kNone, row, col); };
    KeepSelectionInside(grid);
}

// The sigmas of the job's two sides; what the user is typing stays where the job's have not changed.
void FillSigmas() {
    const MeasurementSigmas sigmas = SigmasOf(Job);
    std::vector<std::string> shown;
    for (const auto* side : {&sigmas.Start, &sigmas.Target})
        for (std::size_t axis = 0; axis < 3; ++axis)
            shown.push_back(*side ? PlainText((**side)[axis] * Units.LengthFactor) : "");
    const bool switched = DirectionSwitched();
    w.LabelStart.Text = "Start, " + (switched ? Job.NameOCS : Job.NameMCS);
    w.LabelTarget.Text = "Target, " + (switched ? Job.NameMCS : Job.NameOCS);
    std::string text = "in " + Job.LengthUnitName + "; empty or 0: free of errors";
    if (sigmas.StartOfEach != nullptr)
        text += kLineEnd + std::string("Start: ") + SigmasInWords({}, sigmas.StartOfEach);
    if (sigmas.TargetOfEach != nullptr)
        text += kLineEnd + std::string("Target: ") + SigmasInWords({}, sigmas.TargetOfEach);
    w.LabelSigmas.Text = text;
    if (shown == w.SigmasShown) return;
    w.SigmasShown = shown;
    for (std::size_t i = 0; i < shown.size(); ++i) SetText(SigmaFields()[i].Text, shown[i]);
}

// The sigmas of a side as they are typed. False, with a message, where one is no number of 0 or more.
bool TakeSide(std::size_t first, std::optional<SideAccuracy>& side) {
    SideAccuracy typed{};
    bool any = false;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const SigmaField field = SigmaFields()[first + axis];
        if (field.Text.Text.empty()) continue;
        any = true;
        if (TakeNumber(field.Text.Text, typed[axis]) && typed[axis] >= 0 && std::isfinite(typed[axis])) {
            typed[axis] /= Units.LengthFactor;
            continue;
        }
        ShowMessage("The standard deviation of " + std::string(field.Name) + " is \"" +
                    Printable(field.Text.Text) + "\" and has to be a number of 0 or more.");
        return false;
    }
    side = any ? std::optional(typed) : std::nullopt;
    return true;
}

void Recalculate() {
    if (IsLoaded("FormTrafoBerechnung")) {
        FormTrafoBerechnung::BtnCalculate_Click();
    } else if (!CalculationWindow.Running) {
        myButtonCalculate();
    }
}

void TurnUse(std::size_t index, bool inUse) {
    if (index >= Job.UseFlags.size()) return;
    Job.UseFlags[index] = inUse ? 1 : 0;
    Run.JobDirty = kTrue;
}

void TellUse() {
    if (IsLoaded("FormTrafoBerechnung")) TabelleFüllenNeu();
    Changed(What::Use);
}

}  // namespace

const WindowEntry FormReliability_Entry = {
    .Name = "FormReliability",
    .State = &Reliability.Window,
    .Controls = kControls,
    .Fresh = [] { Reliability = FormReliability{}; },
    .Load = FormReliability::Form_Load,
    .Escape = FormReliability::Form_Escape,
};

bool IsTurned(std::size_t index) {
    return index < w.UseThen.size() && index < Job.UseFlags.size() && w.UseThen[index] != Job.UseFlags[index];
}

void FillReliability() {
    const BusyPointer busy;
    w.Shown = StatisticsOfResult(Levels());
    w.UseThen = Job.UseFlags;
    w.LabelGlobalTest.Text = w.Shown ? GlobalTestSentence(*w.Shown) : WhyNoStatistics();
    const bool failed = w.Shown && w.Shown->APriori && !w.Shown->Singular && w.Shown->Redundancy > 0 &&
                        (w.Shown->Vtpv > w.Shown->ChiSquareHigh || w.Shown->Vtpv < w.Shown->ChiSquareLow);
    w.LabelGlobalTest.BackColor = failed ? kWarningGround : kSystemColour;
    FillPoints();
    FillCorrelation();
    FillAccuracy();
    FillSigmas();
    w.Snooped.erase(std::remove_if(w.Snooped.begin(), w.Snooped.end(),
                                   [](std::size_t index) { return CoordinateInUse(index); }),
                    w.Snooped.end());
    w.BtnSnoop.Enabled = w.Shown && !w.Shown->Singular;
    w.BtnSnoopBack.Enabled = !w.Snooped.empty();
    w.BtnCopy.Enabled = w.Shown && !w.Shown->Singular;
}

void FormReliability::Form_Load() {
    w.Filling = true;
    w.TextAlpha.ToolTip =
        "Empty: 0.001 for a coordinate, 0.05 for the global test. A number is that of both.";
    w.TextPower.Text = PlainText(TestLevels{}.Power);
    w.TextConfidence.Text = PlainText(TestLevels{}.Confidence);
    w.Filling = false;
    FillReliability();
}

void FormReliability::Form_Escape() {
    UnloadWindow("FormReliability");
}

void FormReliability::GridPoints_Click() {
    GridState& grid = w.GridPoints.Grid;
    if (grid.MouseRow != 0 || grid.Rows < 2) return;
    const bool again = grid.SortCol == grid.MouseCol && grid.SortBySize == grid.MouseShift;
    const bool descending = again ? !grid.SortDescending : grid.MouseShift;
    SortGrid(grid, grid.MouseCol, descending, grid.MouseShift);
}

void FormReliability::GridPoints_DblClick() {
    GridState& grid = w.GridPoints.Grid;
    if (grid.MouseRow < 1 || grid.MouseRow >= grid.Rows) return;
    const std::size_t index = w.Order[At(FilledRow(grid, grid.MouseRow) - 1)];
    if (index >= Job.UseFlags.size()) return;
    TurnUse(index, !CoordinateInUse(index));
    TellUse();
    if (RecalculatesByItself()) Recalculate();
}

void FormReliability::Level_Change() {
    if (!w.Filling && w.Window.Loaded) FillReliability();
}

void FormReliability::BtnApply_Click() {
    MeasurementSigmas sigmas = SigmasOf(Job);
    const auto typed = [](std::size_t first) {
        for (std::size_t i = first; i < first + 3; ++i)
            if (SigmaFields()[i].Text.Text != w.SigmasShown[i]) return true;
        return false;
    };
    const bool start = typed(0), target = typed(3);
    if (!start && !target) return;
    // Sigmas of each point give way to those of their whole side.
    if (start && !TakeSide(0, sigmas.Start)) return;
    if (target && !TakeSide(3, sigmas.Target)) return;
    if (start) sigmas.StartOfEach = nullptr;
    if (target) sigmas.TargetOfEach = nullptr;
    PutSigmas(sigmas, Job);
    Run.JobDirty = kTrue;
    FillSigmas();
    Changed(What::State);
    if (CalculationIsOfThisJob() || IsLoaded("FormTrafoBerechnung")) Recalculate();
}

void FormReliability::BtnSnoop_Click() {
    const BusyPointer busy;
    if (CalculationWindow.Running) return;
    const std::uint64_t generation = Run.JobGeneration;
    const bool turned = w.UseThen != Job.UseFlags;
    if (turned) Recalculate();
    std::size_t taken = 0;
    for (;; ++taken) {
        if (!IsLoaded(FormReliability_Entry.Name) || Run.JobGeneration != generation || !w.Shown) return;
        const Coordinate worst = WorstOutlier(*w.Shown);
        if (worst.Pair == 0) break;
        const std::size_t index = 3 * At(worst.Pair - 1) + At(worst.Axis);
        TurnUse(index, false);
        w.Snooped.push_back(index);
        TellUse();
        Recalculate();
    }
    if (taken == 0) ShowMessage("No coordinate fails its test, so none is taken out.");
}

void FormReliability::BtnSnoopBack_Click() {
    const std::vector<std::size_t> back = w.Snooped;
    w.Snooped.clear();
    for (const std::size_t index : back) TurnUse(index, true);
    TellUse();
    Recalculate();
}

void FormReliability::BtnCopy_Click() {
    std::string text = w.LabelGlobalTest.Text;
    for (Control* grid : {&w.GridPoints, &w.GridAccuracy, &w.GridCorrelation}) {
        text += text.empty() ? "" : std::string(kLineEnd) + kLineEnd;
        text += RectText(grid->Grid, {0, 0, grid->Grid.Rows - 1, grid->Grid.Cols - 1});
    }
    ToClipboard(text);
}

void FormReliability::BtnClose_Click() {
    UnloadWindow("FormReliability");
}

}  // namespace corvinade::analysis
