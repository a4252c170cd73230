// The least-squares adjustment.
#include "engine/adjustment.h"

#include <utility>

#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "engine/design.h"
#include "engine/selection.h"
#include "engine/start_values.h"
#include "fit/moments.h"
#include "fit/normal_equations.h"
#include "fit/require.h"

namespace corvinade::engine {

namespace {

using ParameterTexts = std::array<std::string, 18>;

// The poses' angles were read in the unit that was set when the file was read.
void WarnOfAngleUnits() {
    if (!Selection.CheckUseABC || Job.AngleUnitName == "degree" || Adjustment.AngleUnitsConfirmed) return;
    const std::string text =
        std::string("Unit of Angels in Nominal InputFile must be the SAME as in your program Settings") +
        kLineEnd + "Be sure [actual ProgramSetting is " + Job.AngleUnitName +
        "] is the unit of Angles in Nominal File!" + kLineEnd + "Cancel = Don't show this Dialog again ";
    if (AskMessage(text, "Attention Angle UNITs", {"OK", "Cancel"}) == "Cancel")
        Adjustment.AngleUnitsConfirmed = true;
}

// The orientation of the poses is gathered wherever the tool model may turn out to hold.
bool PosesMayCount() {
    return Selection.CheckUseABC || !Selection.RDistShown;
}

// A fresh record, and the model that the job's parameters give.
FitModel BeginRun(int u, int n, const ParameterTexts& ParamText, const GatheredPoints& points) {
    Require(n == 3 * Job.Pairs() && points.Count == Job.Pairs());
    Require(u == CountUnknowns(ParamText));
    BeginAdjustment(ChooseModel(ParamText));
    return Adjustment.Model;
}

// Residuals and inverse where they are wanted, without a copy.
class Lent {
public:
    Lent(Matrix& Q, Column& v) : Q_(Q), v_(v) {
        std::swap(Result.Q, Q_);
        std::swap(Result.v, v_);
    }
    ~Lent() {
        std::swap(Result.Q, Q_);
        std::swap(Result.v, v_);
    }
    Lent(const Lent&) = delete;
    Lent& operator=(const Lent&) = delete;
    IterationResult Result;

private:
    Matrix& Q_;
    Column& v_;
};

void IterateHere(const FitModel& model, Matrix& Q, Column& v, Column& P, GatheredPoints& points) {
    FitRun run = BeginFitOfJob();
    Lent lent(Q, v);
    Iterate(run, model, points, P, lent.Result);
    TakeFit(run);
}

}  // namespace

void BeginAdjustment(const FitModel& model) {
    const bool confirmed = Adjustment.AngleUnitsConfirmed;
    Adjustment = AdjustmentRecord{};
    Adjustment.AngleUnitsConfirmed = confirmed;
    Adjustment.Model = model;
}

bool GatherForFit(const Column& P, GatheredPoints& points) {
    const std::uint64_t generation = Run.JobGeneration;
    WarnOfAngleUnits();
    if (Run.JobGeneration != generation) return false;
    GatherPoints(P, PosesMayCount(), points);
    return true;
}

void BestFitIteration(int u, int n, const ParameterTexts& ParamText, Matrix& Q, Column& v, Column& P) {
    GatheredPoints points;
    if (!GatherForFit(P, points)) {
        Adjustment.JobChanged = true;
        return;
    }
    BestFitIteration(u, n, ParamText, Q, v, P, points);
}

void BestFitIteration(int u, int n, const ParameterTexts& ParamText, Matrix& Q, Column& v, Column& P,
                      GatheredPoints& points) {
    TakeStartValues(ParamText);
    IterateFromHere(u, n, ParamText, Q, v, P, points);
}

void TellOfLimit() {
    if (Adjustment.Iterations > Settings.MaxIteration && !Adjustment.AtRest)
        ShowMessage("Calculation stopped after " + PlainText(Settings.MaxIteration) +
                    " Iterations, Convergence not reached yet!");
}

void IterateQuietly(int u, int n, const ParameterTexts& ParamText, Matrix& Q, Column& v, Column& P,
                    GatheredPoints& points) {
    IterateHere(BeginRun(u, n, ParamText, points), Q, v, P, points);
}

void IterateFromHere(const FitModel& model, Matrix& Q, Column& v, Column& P, GatheredPoints& points) {
    BeginAdjustment(model);
    IterateHere(model, Q, v, P, points);
    if (!Adjustment.JobChanged) TellOfLimit();
}

void IterateFromHere(int u, int n, const ParameterTexts& ParamText, Matrix& Q, Column& v, Column& P,
                     GatheredPoints& points) {
    IterateQuietly(u, n, ParamText, Q, v, P, points);
    if (!Adjustment.JobChanged) TellOfLimit();
}

void IterateFromHere(int u, int n, const ParameterTexts& ParamText, Matrix& Q, GatheredPoints& points,
                     FitOnMoments& fit) {
    const FitModel model = BeginRun(u, n, ParamText, points);
    FitRun run = BeginFitOfJob();
    Iterate(run, model, points, fit, Q);
    TakeFit(run);
    if (!Adjustment.JobChanged) TellOfLimit();
}

}  // namespace corvinade::engine
