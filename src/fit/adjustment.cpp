// The least-squares adjustment.
#include "fit/adjustment.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "fit/corrections.h"
#include "fit/normal_equations.h"
#include "fit/open_parameters.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// In the distance model a point has one equation, whose weight is that of its Z coordinate.
void PackWeights(int pairs, Column& P) {
    for (int i = 1; i <= pairs; ++i) P[At(3 * i - 2)] = P[At(3 * i - 1)] = P[At(3 * i)];
}

// Points that are to coincide have a solution in closed form to go on from (best_fit.h).
bool HasOtherWays(const FitModel& model) {
    return model.Mode == FitMode::Coincide;
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

    // Rot y is at a right angle, and what the corrections of Rot x and Rot z do together is below the
    // threshold.
    bool TurnsNothingAtLock() const {
        constexpr double kAtLock = 1e-6;
        if (HasOtherWays(Model) || !(std::fabs(std::cos(Run.Now[kRotY])) < kAtLock)) return false;
        Mat3 turned;
        for (int k = 0; k < this->At.InnerCount; ++k) {
            const InnerDerivative& inner = this->At.Inner[fit::At(k)];
            const bool either =
                inner.Unknown == Model.UnknownOf[kRotX] || inner.Unknown == Model.UnknownOf[kRotZ];
            for (int i = 1; i <= 3 && either; ++i)
                for (int j = 1; j <= 3; ++j) turned(i, j) += inner.D(i, j) * x[fit::At(inner.Unknown)];
        }
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j)
                if (!(std::fabs(turned(i, j)) < Run.Limits.Threshold)) return false;
        return true;
    }

    // Far from the origin the rounding of a translation alone is more than the threshold: an iteration whose
    // corrections are no more than that has come to rest, though it never falls below the threshold. So has
    // one that only turns Rot x against Rot z at the lock of these angles: where both stand there is any.
    bool MovesByRoundingOnly() const {
        constexpr double kRounding = 256 * std::numeric_limits<double>::epsilon();
        double far = 0;
        for (int axis = 1; axis <= 3; ++axis) {
            double size = std::fabs(Points.TargetCentre(axis));
            for (int j = 1; j <= 3; ++j) size += std::fabs(this->At.M(axis, j) * Points.StartCentre(j));
            far = std::fmax(far, size);
        }
        constexpr double kAtLock_mm = 1e-7;  // what the angles' turning against each other leaves of digits
        const bool locked = TurnsNothingAtLock();
        for (int k = kTraX; k < kParameterEnd; ++k) {
            const int unknown = Model.UnknownOf[fit::At(k)];
            if (unknown == 0 || (locked && (k == kRotX || k == kRotZ))) continue;
            const bool ofPlace = k <= kTraZ;
            double most = ofPlace ? std::fmax(Run.Limits.Threshold, kRounding * far) : Run.Limits.Threshold;
            if (locked && KindOf(k) == ParameterKind::Length) most = std::fmax(most, kAtLock_mm);
            // Away from the origin the two angles take the translation along.
            const Column& corrections = locked && ofPlace ? centred : x;
            if (!(std::fabs(corrections[fit::At(unknown)]) < most)) return false;
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
                Run.Last = {true, previous.Size / (Run.Limits.Threshold + x[fit::At(previous.Unknown)]),
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

// Observations of the tool vector, so heavy that it does not move along these directions.
void HoldTool(const std::vector<Vec3>& still, const FitModel& model, int points, Matrix& N) {
    constexpr double kHeavy = 1e6;  // beside all poses
    for (const Vec3& w : still)
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j)
                N(model.UnknownOf[At(kRvecX + i - 1)], model.UnknownOf[At(kRvecX + j - 1)]) +=
                    kHeavy * points * w(i) * w(j);
}

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

// What rounding of the coordinates adds to a sum of squares, mm^2.
double RoundingOfSquares(const GatheredPoints& points) {
    constexpr double kDigits = 64 * std::numeric_limits<double>::epsilon();
    double far = 0;
    for (int axis = 1; axis <= 3; ++axis)
        far = std::max({far, std::fabs(points.TargetCentre(axis)), std::fabs(points.StartCentre(axis))});
    for (const auto* set : {&points.Start, &points.Target})
        for (const LaneArray& axis : *set)
            for (int i = 0; i < points.Count; ++i) far = std::max(far, std::fabs(axis[At(i)]));
    return 3.0 * points.Count * kDigits * far * kDigits * far;
}

double SumOfSquares(const Column& v, const Column& P) {
    double sum = 0;
    for (std::size_t i = 1; i < v.size(); ++i) sum += P[i] * v[i] * v[i];
    return sum;
}

void Hold(int parameter, FitModel& model) {
    const int unknown = std::exchange(model.UnknownOf[At(parameter)], 0);
    for (int& other : model.UnknownOf)
        if (other > unknown) --other;
    --model.Unknowns;
}

bool IsAtLock(const FitRun& run, double within) {
    return std::fabs(std::cos(run.Now[kRotY])) < within;
}

// Without Rot x where the angles are near their lock.
FitModel WithoutLock(const FitRun& run, const FitModel& model) {
    constexpr double kNear = 0.05;
    FitModel resting = model;
    const bool both = model.UnknownOf[kRotX] != 0 && model.UnknownOf[kRotZ] != 0;
    if (both && IsAtLock(run, kNear)) Hold(kRotX, resting);
    return resting;
}

// Without a shift for each way that points and poses leave open at the present parameters.
FitModel WithoutOpenShifts(const FitRun& run, FitModel model, const GatheredPoints& points, const Column& P) {
    constexpr int kMost = 3;
    for (int held = 0; held < kMost; ++held) {
        ChainRecord chain;
        const Linearisation at = Linearise(model, run.Now, points, chain);
        const OpenParameters open = FindOpenParameters(
            points, model, [&P](std::size_t i) { return P[i] != 0; }, run.Now, at);
        int shift = kTraX;
        while (shift <= kTraZ && (!open.Open[At(shift)] || model.UnknownOf[At(shift)] == 0)) ++shift;
        if (open.ByPoints() == 0 || shift > kTraZ) break;
        Hold(shift, model);
    }
    return model;
}

// The iteration with some parameters left where they are, whose end is the result where it comes to rest and
// is no worse. False where it is not; everything is as it was then.
bool Rests(FitRun& run, const FitModel& model, const FitModel& resting, GatheredPoints& points,
           const Column& P, IterationResult& result) {
    constexpr double kNoWorse = 1e-9, kAtLock = 1e-6;
    // Away from the lock Rot x is not to be left where it is.
    const bool unlocked = resting.UnknownOf[kRotX] == 0 && model.UnknownOf[kRotX] != 0;
    const Parameters before = run.Now;
    const IterationState ended = run.State;
    const IterationResult kept = result;
    run.State.Iterations = 0;
    PointMoments moments;
    Matrix inverse;
    {
        Iteration iteration(run, points, resting, false, moments);
        if (!iteration.CarryOut(inverse)) return true;  // abandoned
    }
    if (run.State.Converged && (!unlocked || IsAtLock(run, kAtLock))) {
        SettleHere(run, model, points, P, result);
        run.State.Iterations = ended.Iterations;
        run.State.AtRest = true;
        const double most = SumOfSquares(kept.v, P) * (1 + kNoWorse);
        if (SumOfSquares(result.v, P) <= most + RoundingOfSquares(points)) return true;
    }
    run.Now = before;
    run.State = ended;
    result = kept;
    return false;
}

// An iteration that has reached its limit where something moves without end and without effect: Rot x at the
// lock of the angles, or what is open.
void RestWithoutWhatMoves(FitRun& run, const FitModel& model, GatheredPoints& points, const Column& P,
                          IterationResult& result) {
    if (HasOtherWays(model) || !run.State.Finite) return;
    const FitModel unlocked = WithoutLock(run, model);
    if (unlocked.Unknowns < model.Unknowns && Rests(run, model, unlocked, points, P, result)) return;
    const FitModel resting = WithoutOpenShifts(run, unlocked, points, P);
    if (resting.Unknowns < unlocked.Unknowns) Rests(run, model, resting, points, P, result);
}

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
    {
        Iteration iteration(run, points, model, false, moments);
        if (!iteration.CarryOut(result.Q)) return;
        Residuals(points, model, iteration.At, iteration.centred, result.v);
        if (run.State.Converged || run.Stops()) return;
    }
    RestWithoutWhatMoves(run, model, points, P, result);
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
    SettleHolding(run, model, points, P, {}, result);
}

void SettleHolding(FitRun& run, const FitModel& model, GatheredPoints& points, const Column& P,
                   const std::vector<Vec3>& still, IterationResult& result) {
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
    HoldTool(still, model, points.Count, N);
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

}  // namespace corvinade::fit
