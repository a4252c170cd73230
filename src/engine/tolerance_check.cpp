// Whether the job keeps its tolerance, and the fields of the calculation window that say so.
#include "engine/tolerance_check.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "core/changes.h"
#include "core/job.h"
#include "core/job_tolerance.h"
#include "core/numbers.h"
#include "core/run.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/result_state.h"
#include "engine/transform.h"
#include "fit/vector.h"

namespace corvinade::engine {

namespace {

FormTrafoBerechnung& w = TrafoWindow;

constexpr std::int32_t kWrongBack = 0x66D1FF;  // of a field whose text is not taken
constexpr std::int32_t kPassBack = 0xB4E6B4;

bool ReadLength(const std::string& text, double& length) {
    return TextToNumber(text, length) || TextToNumber(text, '.', length);
}

std::string LengthText(double length_mm) {
    return PlainText(length_mm * Units.LengthFactor) + " " + Job.LengthUnitName;
}

void Say(const char* word, const std::string& tip, std::int32_t back) {
    w.LabelVerdict.Text = word;
    w.LabelVerdict.ToolTip = tip;
    w.LabelVerdict.BackColor = back;
    w.LabelVerdict.ForeColor = back == kSystemColour ? kSystemColour : QbColor(0);
    w.LabelVerdict.Visible = *word != 0;
}

void ShowVerdict() {
    if (w.TextTolerance.BackColor == kWrongBack)
        return Say("no length",
                   "The tolerance is a number above 0; as long as it is none, nothing is checked",
                   kWrongBack);
    const ToleranceCheck check = CheckTolerance();
    if (check.Word == Verdict::None) return Say("", "", kSystemColour);
    const bool pass = check.Word == Verdict::Pass;
    Say(WordOf(check.Word),
        PlainText(check.Beyond) + " of " + PlainText(check.InUse) +
            " coordinates in use deviate by more than " + LengthText(check.Tolerance_mm),
        pass ? kPassBack : kBeyondTolerance);
}

}  // namespace

Vec3 DeviationInFit(int pair) {
    const Vec3 image = TransformedPoint(pair), target = TargetPoint(pair);
    const Vec3 way(image(1) - target(1), image(2) - target(2), image(3) - target(3));
    if (!CalculationIsOfThisJob() || Adjustment.Model.Mode != FitMode::Distance) return way;
    const double length = Hypot3(way(1), way(2), way(3));
    const double share = length > 0 ? 1 - Job.RDist / length : 0;
    return {share * way(1), share * way(2), share * way(3)};
}

bool IsBeyond(int pair, int axis, double tolerance_mm) {
    if (!(tolerance_mm > 0) || pair < 1 || pair > std::min(Job.Pairs(), Job.Transformed.Count()) ||
        3 * pair > UpperBound(Job.UseFlags))
        return false;
    return Used(pair, axis) && !(std::fabs(DeviationInFit(pair)(axis)) <= tolerance_mm);
}

ToleranceCheck CheckTolerance() {
    ToleranceCheck check{.Tolerance_mm = ToleranceOf(Job)};
    const bool hasResult = IsTrue(Run.TrafoValid) || StoredResultStands();
    if (!(check.Tolerance_mm > 0) || !hasResult || UpperBound(Job.UseFlags) < 3 * Job.Pairs()) return check;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        for (int axis = 1; axis <= 3; ++axis) {
            if (!Used(i, axis)) continue;
            ++check.InUse;
            if (IsBeyond(i, axis, check.Tolerance_mm)) ++check.Beyond;
        }
    }
    if (check.InUse > 0) check.Word = check.Beyond == 0 ? Verdict::Pass : Verdict::Fail;
    return check;
}

const char* WordOf(Verdict verdict) {
    return verdict == Verdict::None ? "" : verdict == Verdict::Pass ? "pass" : "fail";
}

std::string ToleranceInWords(const ToleranceCheck& check) {
    return LengthText(check.Tolerance_mm) + ": " + WordOf(check.Word) + ", " + PlainText(check.Beyond) +
           " of " + PlainText(check.InUse) + " coordinates in use are beyond it";
}

void ShowTolerance(bool anew) {
    if (!IsLoaded("FormTrafoBerechnung")) return;
    if (anew) {
        const double tolerance = ToleranceOf(Job);
        w.LabelTolerance.Text = "Tolerance [" + Job.LengthUnitName + "]";
        w.TextTolerance.BackColor = kSystemColour;
        w.TextTolerance.Text = tolerance > 0 ? PlainText(tolerance * Units.LengthFactor) : "";
    }
    ShowVerdict();
}

void TextTolerance_Change() {
    const std::string& text = w.TextTolerance.Text;
    double length = 0;
    const bool good = text.empty() || (ReadLength(text, length) && length > 0 && std::isfinite(length));
    w.TextTolerance.BackColor = good ? kSystemColour : kWrongBack;
    const double before = ToleranceOf(Job), now = good ? length / Units.LengthFactor : 0;
    // A number that was shown in another unit may come back with another last digit.
    if (std::fabs(now - before) > 1e-12 * before) {
        PutTolerance(now, Job);
        Run.JobDirty = kTrue;
        Changed(What::Coordinates);
    }
    ShowVerdict();
}

}  // namespace corvinade::engine
