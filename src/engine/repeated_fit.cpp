// The fit of the plain model by moments for runs that repeat it thousands of times.
#include "engine/repeated_fit.h"

#include <cmath>

#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/corrections.h"
#include "engine/normal_equations.h"

namespace {

// False when the rows themselves would give digits that the moments have lost.
bool Solve(RepeatedFit& fit) {
    if (!NormalEquations(fit.Model, fit.At, fit.Moments, fit.Equations)) return false;
    SolveSmall(fit.Equations, fit.Model.Unknowns, fit.Centred);
    fit.x = fit.Centred;
    FromCentre(fit.Model, fit.At, fit.x);
    return true;
}

}  // namespace

RepeatedFit::RepeatedFit(const FitModel& model)
    : Model(model), Centred(static_cast<std::size_t>(model.Unknowns) + 1), x(Centred.size()) {}

bool RepeatedFitServes(const FitModel& model, const GatheredPoints& points) {
    return model.Mode == FitMode::Coincide && model.Unknowns <= kMostSmall && MomentsServe(model, points);
}

FitEnd FitAgain(RepeatedFit& fit, const GatheredPoints& points) {
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
        double largest = FindLargest(fit.x, u).Size;
        if (largest < threshold && MovedSince(fit.At, fit.Moments) > kFarFromMoments) {
            SumMoments(points, fit.At, fit.Moments);
            if (!Solve(fit)) return FitEnd::Unfinished;
            largest = FindLargest(fit.x, u).Size;
        }
        ToClipboard({});
        AddCorrections(fit.Model, fit.x);
        ++Adjustment.Iterations;
        if (!AllFinite(fit.x, u)) return FitEnd::Unfinished;
        if (largest < threshold) break;
        if (IsTrue(Run.StopRequested)) return FitEnd::Stopped;
        if (Adjustment.Iterations > Settings.MaxIteration) return FitEnd::Unfinished;
    }
    Adjustment.Converged = true;
    return FitEnd::Converged;
}

double SigmaXYZOf(const RepeatedFit& fit, const GatheredPoints& points) {
    const Vec3 squares = SquaresOfResiduals(points, fit.Model, fit.At, fit.Centred);
    double sum = 0;
    for (std::size_t axis = 1; axis <= 3; ++axis) {
        const double sigma = SigmaOfAxis(squares(static_cast<int>(axis)), fit.Moments.B[axis][0][0]);
        sum += sigma * sigma;
    }
    return std::sqrt(sum);
}
