// The fit of the plain model by moments for runs that repeat it thousands of times.
#include "engine/repeated_fit.h"

#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/corrections.h"
#include "engine/normal_equations.h"

namespace {

// False when the rows themselves would give digits that the moments have lost.
bool Solve(RepeatedFit& fit) {
    const int u = fit.Model.Unknowns;
    if (!NormalEquations(fit.Model, fit.At, fit.Moments, fit.N, fit.w)) return false;
    SolveSilently(fit.N, fit.w, u, fit.Q, fit.Centred);
    fit.x = fit.Centred;
    FromCentre(fit.Model, fit.At, fit.x);
    return true;
}

}  // namespace

RepeatedFit::RepeatedFit(const FitModel& model)
    : Model(model),
      N(model.Unknowns, model.Unknowns),
      Q(model.Unknowns, model.Unknowns),
      w(static_cast<std::size_t>(model.Unknowns) + 1),
      Centred(w.size()),
      x(w.size()) {}

bool RepeatedFitServes(const FitModel& model, const GatheredPoints& points) {
    return model.Mode == FitMode::Coincide && MomentsServe(model, points);
}

FitEnd FitAgain(RepeatedFit& fit, const GatheredPoints& points, Column& v) {
    const std::uint64_t generation = Run.JobGeneration;
    const int u = fit.Model.Unknowns;
    const double threshold = Threshold();
    Adjustment.Model = fit.Model;
    Adjustment.Iterations = 0;
    Adjustment.Converged = false;
    Adjustment.Finite = true;
    for (;;) {
        YieldToEvents();
        if (Run.JobGeneration != generation) return FitEnd::JobChanged;
        Linearise(fit.Model, points, fit.At);
        if (Adjustment.Iterations == 0) SumMoments(points, fit.At, fit.Moments);
        if (!Solve(fit)) return FitEnd::Unfinished;
        if (FindLargest(fit.x, u).Size < threshold && MovedSince(fit.At, fit.Moments) > kFarFromMoments) {
            SumMoments(points, fit.At, fit.Moments);
            if (!Solve(fit)) return FitEnd::Unfinished;
        }
        if (!SetClipboardText({})) ShowMessage(kClipboardRefused);
        AddCorrections(fit.Model, fit.x);
        ++Adjustment.Iterations;
        if (!AllFinite(fit.x, u)) return FitEnd::Unfinished;
        if (FindLargest(fit.x, u).Size < threshold) break;
        if (IsTrue(Run.StopRequested)) return FitEnd::Stopped;
        if (Adjustment.Iterations > Settings.MaxIteration) return FitEnd::Unfinished;
    }
    Adjustment.Converged = true;
    Residuals(points, fit.Model, fit.At, fit.Centred, v);
    return FitEnd::Converged;
}
