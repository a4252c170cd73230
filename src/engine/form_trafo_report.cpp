// The result of a calculation in the window's fields: parameters with their sigma and significance, quality
// with its trend, and the points with the largest deviations.
#include <cmath>
#include <optional>

#include "core/controller.h"
#include "core/desktop_defaults.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/clipboard_report.h"
#include "engine/deviation_extremes.h"
#include "engine/field_number.h"
#include "engine/norm_table.h"
#include "engine/result_notes.h"
#include "engine/result_state.h"
#include "engine/selection.h"
#include "engine/undo.h"

namespace corvinade::engine {

namespace {

FormTrafoBerechnung& w = TrafoWindow;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

std::string Shown(int parameter, double value) {
    return ShownAs(KindOf(parameter), value);
}

// --- Parameters -------------------------------------------------------------------------------------------

bool IsShown(const ParameterControls& row) {
    if (row.Parameter == kScaleXYZ) return row.Check->Value == 1;
    if (row.Parameter >= kRvecX) return IsTrue(CalculationWindow.UseABCActive);
    return true;
}

bool SameValue(double a, double b) {
    constexpr double kRounding = 1e-13;
    return a == b || std::fabs(a - b) <= kRounding * std::fabs(a);
}

// A held field is what the next calculation takes its value from. It keeps its text when that says more
// than the result in the field's format would:
//   - what the user has typed since the calculation took the field, or what it refused,
//   - more digits than the format has, or the sign that degrees, minutes and seconds lose,
//   - a distance or R vector in another unit, since they are taken in mm as they stand.
bool KeepsItsText(const ParameterControls& row, double value) {
    if (row.Check->Value == 1) return false;
    if (Calculation.Refused || row.Text->Text != Selection.FieldText[At(row.Parameter)]) return true;
    if (row.Parameter == kRDist && IsTrue(CalculationWindow.UseABCActive)) return false;  // only shown
    if (row.Parameter >= kRDist && Units.LengthFactor != 1) return true;
    return SameValue(ParameterFromText(row.Parameter, Job.ParamText[At(row.Parameter)]), value) &&
           !SameValue(ParameterFromText(row.Parameter, Shown(row.Parameter, value)), value);
}

// How much a scale changes a length, in the words of the length unit; "" where there are none.
std::string ScaleTip(double scale) {
    for (const UnitRow& unit : LengthUnits())
        if (Job.LengthUnitName == unit.Name && unit.ScaleWords != nullptr)
            return FormatNumber((1 - scale) * unit.ScaleFactor, Units.FmtScale) + unit.ScaleWords;
    return "";
}

// `heldToo` is false where the job's values may not be those of the held fields.
void ShowParameters(bool heldToo) {
    for (const ParameterControls& row : ParameterRows()) {
        const double value = ParameterValue(Job, row.Parameter);
        const bool keeps = heldToo ? KeepsItsText(row, value) : row.Check->Value != 1;
        if (IsShown(row) && !keeps) SetText(*row.Text, Shown(row.Parameter, value));
        row.Text->ToolTip = "delta to last calculation: " +
                            Shown(row.Parameter, value - CalculationWindow.LastSolution[At(row.Parameter)]);
        if (KindOf(row.Parameter) != ParameterKind::Scale) continue;
        if (const std::string tip = ScaleTip(value); !tip.empty()) row.Text->ToolTip = tip;
    }
}

constexpr const char* kNothingTrue = "–";
constexpr double kNoSpread_mm = 1e-9;  // rounding leaves more than nothing of residuals that are none

// Why there is no sigma that would say something; "" where there is one, or the fields are as they were.
const char* WhyNoSigma() {
    if (!DesktopDefaults.ResultFields) return "";
    if (!IsLeastSquares(NormOfJob())) return "Sigma and significance are those of least squares (L2) alone";
    if (!(Calculation.s0 > kNoSpread_mm))
        return "The points fit without a residual, so nothing tells how accurate the parameter is";
    return "";
}

void ShowSigmas() {
    for (const ParameterControls& row : ParameterRows()) {
        const bool ofVector = row.Parameter == kRDist && Calculation.UnknownOf[kRvecX] != 0;
        if (row.Sigma == nullptr || (Calculation.UnknownOf[At(row.Parameter)] == 0 && !ofVector)) continue;
        if (IsLeftOpen(row.Parameter)) {
            const bool known = !IsWithoutSigma(row.Parameter);
            SetText(*row.Sigma,
                    known ? Shown(row.Parameter, Calculation.Sigma[At(row.Parameter)]) : kOpenSigma);
            SetText(*row.Signifikanz, kOpenSignificance);
            continue;
        }
        const char* const why = WhyNoSigma();
        row.Sigma->ToolTip = row.Signifikanz->ToolTip = why;
        if (*why != 0) {
            SetText(*row.Sigma, kNothingTrue);
            SetText(*row.Signifikanz, kNothingTrue);
            continue;
        }
        const double sigma = Calculation.Sigma[At(row.Parameter)];
        const bool known = !std::isnan(sigma);
        SetText(*row.Sigma, known ? Shown(row.Parameter, sigma) : "");
        SetText(*row.Signifikanz,
                known ? FormatNumber(Calculation.Significance[At(row.Parameter)], "0.0") : "");
    }
}

// --- Quality ----------------------------------------------------------------------------------------------

std::string NameOf(int point) {
    return point == 0 ? "" : Job.Start.Name[At(point)];
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

void ShowQuality(int from = kSxyz) {
    const Extremes found = FindExtremes();
    const auto values = QualityValues(found);
    for (int quality = from; quality < kQualityEnd; ++quality)
        SetText(*QualityRow(quality).Field, ShownLength(values[At(quality)]));
    if (found.Max3D == kNoPoint) SetText(w.TextMaxDevxyz, "no xyz");
    ShowPointNames(found);
}

void ShowTrends() {
    const auto values = QualityValues(FindExtremes());
    // A first calculation of points is neither better nor worse than one of others, or than none.
    const bool first = DesktopDefaults.ResultFields && ShownResult.TrendOf != Run.JobGeneration;
    for (int quality = kSxyz; quality < kQualityEnd; ++quality) {
        double& former = CalculationWindow.LastQuality[At(quality)];
        const bool better = std::fabs(values[At(quality)]) < std::fabs(former);
        QualityRow(quality).ArrGreen->Visible = better && !first;
        QualityRow(quality).ArrRed->Visible = !better && !first;
        former = values[At(quality)];
    }
    ShownResult.TrendOf = Run.JobGeneration;
}

// --- Points -----------------------------------------------------------------------------------------------

// Where the pictures show R vectors, the pairs too are shown where the parameters put them and not on their
// target less the residual. The point table has been filled before that, and shows the deviations.
void TransformPairsForRVectors() {
    if (!IsTrue(Settings.ShowRVec) || !Calculation.Finite) return;
    LookAt(w.Tabelle.Grid);
    TransformAllPoints(nullptr);
}

}  // namespace

void ShowResultFields(KnownOfResult known) {
    ShowParameters(false);
    if (known == KnownOfResult::Parameters || !IsLoaded("FormTrafoBerechnung")) return;
    ShowQuality(known == KnownOfResult::All ? kSxyz : kMaxDevxyz);
    if (known == KnownOfResult::All) ShowSigmas();
}

void ResetArrows() {
    for (int quality = kSxyz; quality < kQualityEnd; ++quality)
        QualityRow(quality).ArrRed->Visible = QualityRow(quality).ArrGreen->Visible = false;
}

void FormThings() {
    const bool calculated = CalculationIsOfThisJob();
    if (calculated) {
        // The question that a rotation may bring up can close the window, and its answer ask for another
        // calculation; that will show everything.
        NoteUndoStep();  // what the user has chosen; what is written from here on is none of it
        ShowParameters(true);
        LookPastResult();
        if (!IsLoaded("FormTrafoBerechnung") || CalculationWindow.Again) return;
        ShowTrends();
        ShowQuality();
        ShowSigmas();
        if (!Calculation.Refused) ResultIsFresh();
    }
    TabelleFüllenNeu();
    CheckResultState();
    if (!calculated) return;
    TransformPairsForRVectors();
    Run.CalcDone = kTrue;
    ReportToClipboard();
    w.BtnSEED.Enabled = true;
}

// --- Other units ------------------------------------------------------------------------------------------

namespace {

// The number that a text was meant as; nothing where it is none.
std::optional<double> NumberMeant(const std::string& text, bool angle) {
    if (angle && IsItGradMinSek(text)) {
        std::string rest = text;
        for (int field = 1; field <= 3; ++field) {
            double number = 0;
            const std::string part = Zerpflück(rest, ' ');
            if (!part.empty() && !TextToNumber(part, number)) return std::nullopt;
        }
        return GradMinSekToZahl(text);
    }
    const double number = FieldNumber(text);
    double exact = 0;
    if (number == 0 && !TextToNumber(text, exact)) return std::nullopt;
    return number;
}

// The text of a value in the units of before, in the present ones: as results are shown, and with all its
// digits where those would not be enough. Distance and R vector are taken in mm whatever the unit.
std::string InPresentUnits(int parameter, const std::string& text, double lengthBefore, double angleBefore) {
    const ParameterKind kind = KindOf(parameter);
    if (!IsHeldValue(text) || kind == ParameterKind::Scale || parameter >= kRDist) return text;
    const bool angle = kind == ParameterKind::Angle;
    const std::optional<double> number = NumberMeant(text, angle);
    if (!number || !std::isfinite(*number)) return text;
    const double value = *number / (angle ? angleBefore : lengthBefore);
    std::string shown = Shown(parameter, value);
    if (SameValue(ParameterFromText(parameter, shown), value)) return shown;
    return PlainText(value * (angle ? Units.AngleFactor : Units.LengthFactor));
}

}  // namespace

void HeldValues_UnitsChanged(double lengthBefore, double angleBefore) {
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter) {
        std::string& text = Job.ParamText[At(parameter)];
        if (text.empty()) continue;  // a fresh job
        const std::string present = InPresentUnits(parameter, text, lengthBefore, angleBefore);
        if (present != text) text = SaveWinkelZurück(present);
    }
}

void CalculationWindow_UnitsChanged() {
    SetStatus(8, Job.LengthUnitName);
    SetStatus(9, Job.AngleUnitName);
    for (const ParameterControls& row : ParameterRows()) {
        for (Control* const text : {row.Text, row.SeedText})
            SetText(*text, InPresentUnits(row.Parameter, text->Text, CalculationWindow.LengthFactor,
                                          CalculationWindow.AngleFactor));
    }
    CalculationWindow.LengthFactor = Units.LengthFactor;
    CalculationWindow.AngleFactor = Units.AngleFactor;
    if (IsTrue(Run.CalcDone) && CalculationIsOfThisJob()) {
        ShowParameters(false);
        if (!IsLoaded("FormTrafoBerechnung")) return;
        ShowQuality();
        ShowSigmas();
    }
    TabelleFüllenNeu();
}

}  // namespace corvinade::engine
