// The result of a calculation in the window's fields: parameters with their sigma and significance, quality
// with its trend, and the points with the largest deviations.
#include <cmath>
#include <limits>

#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/refresh.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/clipboard_report.h"
#include "engine/deviation_extremes.h"
#include "engine/field_number.h"

namespace {

FormTrafoBerechnung& w = TrafoWindow;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

std::string Shown(int parameter, double value) {
    return ShownAs(KindOf(parameter), value);
}

// --- Parameters
// -----------------------------------------------------------------------------------------------

bool IsShown(const ParameterControls& row) {
    if (row.Parameter == kScaleXYZ) return row.Check->Value == 1;
    if (row.Parameter >= kRvecX) return IsTrue(CalculationWindow.UseABCActive);
    return true;
}

// After a refusal a held field keeps what the user has typed into it. A held distance or R vector is taken
// in mm as it stands, so it is not shown in another unit, which the next calculation would take for mm.
bool KeepsItsText(const ParameterControls& row) {
    if (row.Check->Value == 1) return false;
    return Calculation.Refused || (row.Parameter >= kRDist && Units.LengthFactor != 1);
}

// How much a scale changes a length, in the words of the length unit; "" where there are none.
std::string ScaleTip(double scale) {
    struct Words {
        const char* Unit;
        double Factor;
        const char* Text;
    };
    constexpr Words kWords[] = {{"millimeter", 1000, " millimeter per meter"},
                                {"inch", 10000, " 10thou per inch"},
                                {"meter", 1000000, " ppm"}};
    for (const Words& words : kWords)
        if (Job.LengthUnitName == words.Unit)
            return FormatNumber((1 - scale) * words.Factor, Units.FmtScale) + words.Text;
    return "";
}

void ShowParameters() {
    for (const ParameterControls& row : ParameterRows()) {
        const double value = ParameterValue(Job, row.Parameter);
        if (IsShown(row) && !KeepsItsText(row)) SetText(*row.Text, Shown(row.Parameter, value));
        row.Text->ToolTip = "delta to last calculation: " +
                            Shown(row.Parameter, value - CalculationWindow.LastSolution[At(row.Parameter)]);
        if (KindOf(row.Parameter) != ParameterKind::Scale) continue;
        if (const std::string tip = ScaleTip(value); !tip.empty()) row.Text->ToolTip = tip;
    }
}

void ShowSigmas() {
    for (const ParameterControls& row : ParameterRows()) {
        const bool ofVector = row.Parameter == kRDist && Calculation.UnknownOf[kRvecX] != 0;
        if (row.Sigma == nullptr || (Calculation.UnknownOf[At(row.Parameter)] == 0 && !ofVector)) continue;
        SetText(*row.Sigma, Shown(row.Parameter, Calculation.Sigma[At(row.Parameter)]));
        SetText(*row.Signifikanz, FormatNumber(Calculation.Significance[At(row.Parameter)], "0.0"));
    }
}

// --- Quality
// --------------------------------------------------------------------------------------------------

std::string NameOf(int point) {
    return point == 0 ? "" : Job.MCS_Name[At(point)];
}

// All quality values, in the order of their fields.
std::array<double, kQualityEnd> QualityValues(const Extremes& found) {
    std::array<double, kQualityEnd> values{};
    values[kSxyz] = Calculation.SigmaXYZ;
    values[kS0] = Calculation.s0;
    values[kSx] = Calculation.sx;
    values[kSy] = Calculation.sy;
    values[kSz] = Calculation.sz;
    values[kMaxDevxyz] = found.Max3D;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        values[kMaxDevX + axis] = found.Max[axis];
        values[kMinDevX + axis] = found.Min[axis];
        values[kMaxMinX + axis] = found.Max[axis] - found.Min[axis];
    }
    return values;
}

void ShowPointNames(const Extremes& found) {
    SetText(w.TextMaxDevXYZPkt, NameOf(found.Max3DPoint));
    const std::array<Control*, 3> largest = {&w.TextMaxDevXPkt, &w.TextMaxDevYPkt, &w.TextMaxDevZPkt};
    const std::array<Control*, 3> smallest = {&w.TextMinDevXPkt, &w.TextMinDevYPkt, &w.TextMinDevZPkt};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        SetText(*largest[axis], NameOf(found.MaxPoint[axis]));
        SetText(*smallest[axis], NameOf(found.MinPoint[axis]));
    }
}

// The value that stands for "no point has all three coordinates in use" is another one than that which the
// search begins with, and has always been: such a job shows the latter.
constexpr double kNoPoint = -1e10;

void ShowQuality() {
    const Extremes found = FindExtremes();
    const auto values = QualityValues(found);
    for (int quality = kSxyz; quality < kQualityEnd; ++quality)
        SetText(*QualityRow(quality).Field, ShownLength(values[At(quality)]));
    if (found.Max3D == kNoPoint) SetText(w.TextMaxDevxyz, "no xyz");
    ShowPointNames(found);
}

void ShowTrends() {
    const auto values = QualityValues(FindExtremes());
    for (int quality = kSxyz; quality < kQualityEnd; ++quality) {
        double& former = CalculationWindow.LastQuality[At(quality)];
        const bool better = std::fabs(values[At(quality)]) < std::fabs(former);
        QualityRow(quality).ArrGreen->Visible = better;
        QualityRow(quality).ArrRed->Visible = !better;
        former = values[At(quality)];
    }
}

// --- Points
// ---------------------------------------------------------------------------------------------------

// Where the pictures show R vectors, the pairs too are shown where the parameters put them and not on their
// target less the residual. The point table has been filled before that, and shows the deviations.
void TransformPairsForRVectors() {
    if (!IsTrue(Settings.ShowRVec) || !Calculation.Finite) return;
    LookAt(w.Tabelle.Grid);
    TransformAllPoints(nullptr);
}

}  // namespace

void ResetArrows() {
    for (int quality = kSxyz; quality < kQualityEnd; ++quality)
        QualityRow(quality).ArrRed->Visible = QualityRow(quality).ArrGreen->Visible = false;
}

void FormThings() {
    const bool calculated = CalculationIsOfThisJob();
    if (calculated) {
        // The question that a rotation may bring up can close the window, and its answer calculate again;
        // that calculation has shown everything then.
        const std::uint64_t started = CalculationWindow.Started;
        ShowParameters();
        if (!IsLoaded("FormTrafoBerechnung") || CalculationWindow.Started != started) return;
        ShowTrends();
        ShowQuality();
        ShowSigmas();
    }
    TabelleFüllenNeu();
    if (!calculated) return;
    TransformPairsForRVectors();
    Run.CalcDone = kTrue;
    ReportToClipboard();
    w.BtnSEED.Enabled = true;
}

// --- Other units
// ----------------------------------------------------------------------------------------------

namespace {

// A value that the user has typed in the units of before, in the present ones.
void Convert(Control& text, int parameter) {
    if (!IsHeldValue(text.Text) || text.Text.empty()) return;
    const ParameterKind kind = KindOf(parameter);
    if (kind == ParameterKind::Scale) return;
    const bool angle = kind == ParameterKind::Angle;
    const double typed = FieldNumber(angle ? SaveWinkelZurück(text.Text) : text.Text);
    const bool asItStands = parameter >= kRDist;  // held distances are taken in mm whatever the unit
    if (asItStands) return;
    SetText(text, Shown(parameter,
                        typed / (angle ? CalculationWindow.AngleFactor : CalculationWindow.LengthFactor)));
}

}  // namespace

void CalculationWindow_UnitsChanged() {
    SetStatus(8, Job.LengthUnitName);
    SetStatus(9, Job.AngleUnitName);
    for (const ParameterControls& row : ParameterRows()) {
        Convert(*row.Text, row.Parameter);
        Convert(*row.SeedText, row.Parameter);
    }
    CalculationWindow.LengthFactor = Units.LengthFactor;
    CalculationWindow.AngleFactor = Units.AngleFactor;
    if (IsTrue(Run.CalcDone) && CalculationIsOfThisJob()) {
        ShowParameters();
        if (!IsLoaded("FormTrafoBerechnung")) return;
        ShowQuality();
        ShowSigmas();
    }
    TabelleFüllenNeu();
}
