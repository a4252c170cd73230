// The least-squares adjustment.
#include "fit/adjustment.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>

#include "fit/corrections.h"
#include "fit/normal_equations.h"
#include "fit/require.h"

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// In the distance model a point has one equation, whose weight is that of its Z coordinate.
void PackWeights(int pairs, Column& P) {
    for (int i = 1; i <= pairs; ++i) P[At(3 * i - 2)] = P[At(3 * i - 1)] = P[At(3 * i)];
}

// The state of one iteration.
struct Iteration {
    FitRun& Run;
    GatheredPoints& Points;
    const FitModel& Model;
    Linearisation At;  // of the last pass
    Matrix N, Q;       // of the centred unknowns
    Column w, centred, x;
    bool ByMoments;  // of the points, or by their rows
    bool MomentsTaken;
    PointMoments& Moments;
    std::unique_ptr<NormalSums> Sums;  // of the rows

    Iteration(FitRun& run, GatheredPoints& points, const FitModel& model, bool taken, PointMoments& moments)
        : Run(run),
          Points(points),
          Model(model),
          N(model.Unknowns, model.Unknowns),
          Q(model.Unknowns, model.Unknowns),
          w(static_cast<std::size_t>(model.Unknowns) + 1),
          centred(w.size()),
          x(w.size()),
          ByMoments(MomentsServe(model, points)),
          MomentsTaken(taken),
          Moments(moments) {
        run.State = IterationState{};
        run.State.Model = model;
        run.Last = Convergence{};
    }

    void TakeMoments() {
        SumMoments(Points, At, {.Tool = Model.Mode == FitMode::Tool}, Moments);
        MomentsTaken = true;
    }

    void LeaveMoments() {
        ByMoments = false;
        if (Moments.Reweighted) TakeResidualWeights(Moments, Points);
    }

    void Equations() {
        if (ByMoments) {
            if (!MomentsTaken) TakeMoments();
            if (NormalEquations(Model, At, Moments, N, w)) return;
            LeaveMoments();
        }
        if (Sums == nullptr) Sums = std::make_unique<NormalSums>();
        SumNormalEquations(Points, Model, At, *Sums);
        NormalEquations(Model, At, *Sums, N, w);
    }

    // Where weights differ by many orders the rounding of the heaviest rows' moments may drown what the
    // others say about an unknown. How much of an unknown is left by the others shows in Q(i,i) N(i,i).
    bool DrownedByWeights() const {
        constexpr double kMostInflated = 1e8;
        if (!ByMoments || !Moments.Reweighted) return false;
        for (int i = 1; i <= Model.Unknowns; ++i)
            if (!(std::fabs(Q(i, i) * N(i, i)) < kMostInflated)) return true;
        return false;
    }

    bool Solve() {
        Equations();
        if (!Run.Tell(FitStep::Summed)) return false;
        SolveNormalEquations(N, w, Model.Unknowns, Q, centred);
        if (!Run.Tell(FitStep::Solved)) return false;
        if (DrownedByWeights()) {
            LeaveMoments();
            return Solve();
        }
        x = centred;
        FromCentre(Model, At, x);
        return true;
    }

    // The pass that is to be the last stands on moments that were taken near it. Those of poor start
    // values are good for the way there, and no more.
    bool SolveFromNear() {
        if (!ByMoments || Moments.Reweighted) return true;
        if (FindLargest(x, Model.Unknowns).Size >= Run.Limits.Threshold ||
            MovedSince(At, Moments) <= kFarFromMoments)
            return true;
        MomentsTaken = false;
        return Solve();
    }

    // One linearisation and solution. False when it was abandoned.
    bool Pass() {
        if (!Run.Tell(FitStep::PassBegins)) return false;
        Linearise(Model, Run.Now, Points, Run.Chain, At);
        if (!Run.Tell(FitStep::Linearised) || !Solve() || !SolveFromNear()) return false;
        if (!Run.Tell(FitStep::PassEnds, &x)) return false;
        AddCorrections(Model, x, Run.Now);
        return true;
    }

    // Far from the origin the rounding of a translation alone is more than the threshold: an iteration whose
    // corrections are no more than that has come to rest, though it never falls below the threshold.
    bool MovesByRoundingOnly() const {
        constexpr double kRounding = 256 * std::numeric_limits<double>::epsilon();
        double far = 0;
        for (int axis = 1; axis <= 3; ++axis) {
            double size = std::fabs(Points.TargetCentre(axis));
            for (int j = 1; j <= 3; ++j) size += std::fabs(this->At.M(axis, j) * Points.StartCentre(j));
            far = std::fmax(far, size);
        }
        for (int k = kTraX; k < kParameterEnd; ++k) {
            const int unknown = Model.UnknownOf[::At(k)];
            if (unknown == 0) continue;
            const double most =
                k <= kTraZ ? std::fmax(Run.Limits.Threshold, kRounding * far) : Run.Limits.Threshold;
            if (!(std::fabs(x[::At(unknown)]) < most)) return false;
        }
        return true;
    }

    // Passes until an end is reached. False when it was abandoned.
    bool Passes() {
        IterationState& state = Run.State;
        const int u = Model.Unknowns;
        LargestCorrection previous;
        for (;;) {
            if (!Pass()) return false;
            const LargestCorrection largest = FindLargest(x, u);
            state.Finite = AllFinite(x, u);
            ++state.Iterations;
            if (state.Iterations > 1 && u > 0)
                Run.Last = {true, previous.Size / (Run.Limits.Threshold + x[::At(previous.Unknown)]),
                            previous.Size, previous.Unknown};
            previous = largest;
            if (!state.Finite) {
                // What is no number stays so in every pass behind, up to the limit.
                state.Iterations = std::max(state.Iterations, Run.Limits.MaxIteration + 1);
                return true;
            }
            if (largest.Size < Run.Limits.Threshold) {
                state.Converged = true;
                return true;
            }
            if (state.Iterations > Run.Limits.MaxIteration) {
                state.Converged = state.AtRest = MovesByRoundingOnly();
                return true;
            }
            if (Run.Stops()) return true;
        }
    }

    // To its end, with the inverse of the parameters themselves. False when it was abandoned.
    bool CarryOut(Matrix& inverse) {
        if (!Passes() || !Run.Tell(FitStep::IterationEnds)) return false;
        inverse = Q;
        FromCentre(Model, At, inverse);
        return true;
    }
};

// While it lives fits take the rows of the points.
class RowsAlone {
public:
    explicit RowsAlone(GatheredPoints& points) : points_(points) { points.ByRows = true; }
    ~RowsAlone() { points_.ByRows = before_; }
    RowsAlone(const RowsAlone&) = delete;
    RowsAlone& operator=(const RowsAlone&) = delete;

private:
    GatheredPoints& points_;
    bool before_ = points_.ByRows;
};

}  // namespace

void Iterate(FitRun& run, const FitModel& model, GatheredPoints& points, Column& P, IterationResult& result) {
    const int n = 3 * points.Count;
    Require(UpperBound(P) >= n);
    if (model.Mode == FitMode::Distance) PackWeights(points.Count, P);
    SetWeights(P, points);
    const Parameters start = run.Now;
    PointMoments moments;
    result.v.resize(At(n) + 1);
    {
        Iteration iteration(run, points, model, false, moments);
        const bool byMoments = iteration.ByMoments;
        if (!iteration.CarryOut(result.Q)) return;
        Residuals(points, model, iteration.At, iteration.centred, result.v);
        if (!byMoments || run.State.Converged || run.Stops()) return;
    }
    run.Now = start;
    const RowsAlone rows(points);
    Iteration iteration(run, points, model, false, moments);
    if (!iteration.CarryOut(result.Q)) return;
    Residuals(points, model, iteration.At, iteration.centred, result.v);
}

void RenewResiduals(FitRun& run, const FitModel& model, const GatheredPoints& points, Column& v) {
    constexpr double kRounding =
        1e-6;  // mm and share: less is what a last correction below the threshold moves
    const Linearisation at = Linearise(model, run.Now, points, run.Chain);
    Column renewed(v.size());
    Residuals(points, model, at, Column(At(model.Unknowns) + 1), renewed);
    for (std::size_t i = 1; i < v.size(); ++i)
        if (!(std::fabs(renewed[i] - v[i]) <= kRounding * (1 + std::fabs(v[i])))) {
            v = std::move(renewed);
            return;
        }
}

void SettleHere(FitRun& run, const FitModel& model, GatheredPoints& points, const Column& P,
                IterationResult& result) {
    const int u = model.Unknowns, n = 3 * points.Count;
    Require(UpperBound(P) >= n);
    run.State = IterationState{};
    run.State.Model = model;
    run.State.Iterations = 1;
    run.State.Converged = true;
    SetWeights(P, points);
    const Linearisation at = Linearise(model, run.Now, points, run.Chain);
    const auto sums = std::make_unique<NormalSums>();
    SumNormalEquations(points, model, at, *sums);
    Matrix N(u, u);
    Column w(At(u) + 1), x(At(u) + 1);
    NormalEquations(model, at, *sums, N, w);
    result.Q = Matrix(u, u);
    SolveNormalEquations(N, w, u, result.Q, x);
    FromCentre(model, at, result.Q);
    result.v.assign(At(n) + 1, 0);
    std::fill(x.begin(), x.end(), 0);
    Residuals(points, model, at, x, result.v);
}

void Iterate(FitRun& run, const FitModel& model, GatheredPoints& points, FitOnMoments& fit, Matrix& Q) {
    Iteration iteration(run, points, model, true, fit.Moments);
    if (!iteration.CarryOut(Q)) return;
    fit.ByMoments = iteration.ByMoments;
    fit.At = iteration.At;
    fit.Centred = std::move(iteration.centred);
}
