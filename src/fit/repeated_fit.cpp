// The fit of the plain model by moments for runs that repeat it thousands of times.
#include "fit/repeated_fit.h"

#include <cmath>

#include "fit/corrections.h"
#include "fit/statistics.h"

namespace corvinade::fit {

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

FitEnd FitAgain(RepeatedFit& fit, FitRun& run, const GatheredPoints& points) {
    const int u = fit.Model.Unknowns;
    const double threshold = run.Limits.Threshold;
    IterationState& state = run.State;
    state = IterationState{};
    state.Model = fit.Model;
    for (;;) {
        if (!run.Tell(FitStep::PassBegins)) return FitEnd::Abandoned;
        Linearise(fit.Model, run.Now, points, run.Chain, fit.At);
        if (state.Iterations == 0) SumMoments(points, fit.At, fit.Moments);
        if (!Solve(fit)) return FitEnd::Unfinished;
        double largest = FindLargest(fit.x, u).Size;
        if (largest < threshold && MovedSince(fit.At, fit.Moments) > kFarFromMoments) {
            SumMoments(points, fit.At, fit.Moments);
            if (!Solve(fit)) return FitEnd::Unfinished;
            largest = FindLargest(fit.x, u).Size;
        }
        if (!run.Tell(FitStep::PassEnds, &fit.x)) return FitEnd::Abandoned;
        AddCorrections(fit.Model, fit.x, run.Now);
        ++state.Iterations;
        if (!AllFinite(fit.x, u)) return FitEnd::Unfinished;
        if (largest < threshold) break;
        if (run.Stops()) return FitEnd::Stopped;
        if (state.Iterations > run.Limits.MaxIteration) return FitEnd::Unfinished;
    }
    state.Converged = true;
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

}  // namespace corvinade::fit
