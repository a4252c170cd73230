// Least squares under a-priori standard deviations of both systems.
//
// The gradient of the objective is 2 sum A(x + e)' W r, where e = -start M' W r is the correction of the
// start point that the weight stands for, and A(x + e) the design matrix at the corrected point. Steps of
// Gauss and Newton with these rows therefore end where the gradient is zero, weights that move with M
// included.
#include "fit/weighted_fit.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

#include "fit/alike_moments.h"
#include "fit/axis_forms.h"
#include "fit/corrections.h"
#include "fit/normal_equations.h"
#include "fit/norms.h"
#include "fit/pair_sums.h"
#include "fit/require.h"
#include "fit/scaled_weights.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The sums of one fit, by the moments of the points where the sigmas are the same for all pairs. Those of
// each pair take a pass over the points, and are kept: the objective of a step that is taken is where the
// next one begins.
class SumsOfFit {
public:
    SumsOfFit(const NormRun& fit, const PairSigmas& sigmas) : fit_(fit), sigmas_(sigmas) {}

    WeightedSums At(const Linearisation& at) {
        if (!sigmas_.AlikeForAll()) return OverPairs(at);
        if (!moments_ || HasLostDigits(*moments_, at))
            moments_.emplace(TakeMoments(fit_.Points, fit_.InUse, at));
        return SumsByMoments(*moments_, sigmas_, at);
    }
    double ObjectiveAt(const Parameters& values) {
        ChainRecord chain;
        const Linearisation at = Linearise(FitModel{}, values, fit_.Points, chain);
        if (!sigmas_.AlikeForAll()) return OverPairs(at).Objective;
        return SumsByMoments(*moments_, sigmas_, at).Objective;
    }
    // w_ab [1 p] [1 p]' of the points as they were measured.
    std::array<Form4, kAxisPairs> SquaresAt(const Linearisation& at) {
        if (!sigmas_.AlikeForAll()) return SquaresOverPairs(fit_.Points, fit_.InUse, sigmas_, at);
        if (!moments_) moments_.emplace(TakeMoments(fit_.Points, fit_.InUse, at));
        return SquaresByMoments(*moments_, sigmas_, at);
    }

private:
    struct Known {
        Mat3 M;
        Vec3 Shift;
        WeightedSums Sums;
        bool IsAt(const Linearisation& at) const {
            for (int i = 1; i <= 3; ++i) {
                if (Shift(i) != at.Shift(i)) return false;
                for (int j = 1; j <= 3; ++j)
                    if (M(i, j) != at.M(i, j)) return false;
            }
            return true;
        }
    };
    const WeightedSums& OverPairs(const Linearisation& at) {
        if (!known_ || !known_->IsAt(at))
            known_.emplace(Known{at.M, at.Shift, SumOverPairs(fit_.Points, fit_.InUse, sigmas_, at)});
        return known_->Sums;
    }

    const NormRun& fit_;
    const PairSigmas& sigmas_;
    std::optional<AlikeMoments> moments_;
    std::optional<Known> known_;
};

// The step of the centred unknowns, and by how much it makes the objective less to first order. False where
// the points leave some open.
bool Step(const FitModel& model, const Linearisation& at, const WeightedSums& sums, Column& centred,
          double& gain) {
    const AxisForms forms = FormsOf(model, at);
    Matrix Q;
    if (!InvertPositive(NormalMatrixOf(forms, sums.Squares), model.Unknowns, Q)) return false;
    Column gradient(At(model.Unknowns) + 1);
    for (int k = 1; k <= model.Unknowns; ++k)
        for (int a = 1; a <= 3; ++a)
            for (std::size_t j = 0; j < 4; ++j)
                gradient[At(k)] += forms.Of[At(a)][At(k)][j] * sums.Gradient[At(a)][j];
    centred.assign(gradient.size(), 0);
    for (int j = 1; j <= model.Unknowns; ++j)
        for (int k = 1; k <= model.Unknowns; ++k) centred[At(j)] -= Q(j, k) * gradient[At(k)];
    gain = 0;
    for (int k = 1; k <= model.Unknowns; ++k) gain -= gradient[At(k)] * centred[At(k)];
    return true;
}

// By how much the images are rounded, mm: the shift, and the turn and scales of the points' middle.
double RoundingOfImages(const GatheredPoints& points, const Parameters& values) {
    double far = 0;
    for (int axis = 1; axis <= 3; ++axis)
        far = std::max({far, std::fabs(points.StartCentre(axis)), std::fabs(points.TargetCentre(axis)),
                        std::fabs(values[kTraX + axis - 1])});
    return far * std::numeric_limits<double>::epsilon();
}

// Takes the step, or as much of it as makes the objective less. Far from the minimum a whole one may lead too
// far. False when the objective cannot be made less but by rounding.
bool Take(NormRun& fit, SumsOfFit& sums, const Linearisation& at, double objective, Column centred) {
    constexpr int kMostHalvings = 30;
    constexpr double kRounding = 1e-12;
    const Parameters before = fit.Run.Now;
    for (int k = 0; k < kMostHalvings; ++k) {
        Column x = centred;
        FromCentre(fit.Model, at, x);
        AddCorrections(fit.Model, x, fit.Run.Now);
        if (sums.ObjectiveAt(fit.Run.Now) <= objective * (1 + kRounding)) return true;
        fit.Run.Now = before;
        for (double& each : centred) each /= 2;
    }
    return false;
}

// The iteration. False when it was abandoned.
bool IterateWeighted(NormRun& fit, SumsOfFit& sumsOf) {
    IterationState& state = fit.Run.State;
    const bool finite = state.Finite;
    state = IterationState{};
    state.Model = fit.Model;
    state.Finite = finite;
    double before = std::numeric_limits<double>::infinity();
    for (;;) {
        if (!fit.Run.Tell(FitStep::PassBegins)) return false;
        const Linearisation at = Linearise(fit.Model, fit.Run.Now, fit.Points, fit.Run.Chain);
        const WeightedSums sums = sumsOf.At(at);
        ++state.Iterations;
        Column centred;
        double gain = 0;
        if (!Step(fit.Model, at, sums, centred, gain)) return true;
        state.Finite = AllFinite(centred, fit.Model.Unknowns);
        if (!state.Finite) return true;
        if (!fit.Run.Tell(FitStep::PassEnds, &centred)) return false;
        const double largest = FindLargest(centred, fit.Model.Unknowns).Size;
        // Of a step below the threshold the sum would say what rounding makes of it, and takes a pass.
        bool taken = largest < fit.Run.Limits.Threshold;
        if (taken) {
            FromCentre(fit.Model, at, centred);
            AddCorrections(fit.Model, centred, fit.Run.Now);
        } else {
            taken = Take(fit, sumsOf, at, sums.Objective, centred);
        }
        // What the sum's own rounding keeps from getting less is at rest.
        constexpr double kNearlyThere = 1e-6;
        state.AtRest = !taken && largest < kNearlyThere;
        // Steps that no longer get shorter are those by which far coordinates are rounded.
        constexpr double kNoShorter = 0.9, kNoGain = 1e-10, kOfRounding = 64;
        if (largest > kNoShorter * before && largest > fit.Run.Limits.Threshold)
            state.AtRest = state.AtRest || gain <= kNoGain * sums.Objective ||
                           largest < kOfRounding * RoundingOfImages(fit.Points, fit.Run.Now);
        before = largest;
        state.Converged = largest < fit.Run.Limits.Threshold || state.AtRest;
        if (state.Converged || !taken || state.Iterations > fit.Run.Limits.MaxIteration || fit.Stops())
            return true;
    }
}

// The run's model without the parameters that the plain fit has held.
FitModel WithoutHeld(const NormRun& fit) {
    FitModel model = fit.Model;
    model.Unknowns = 0;
    for (int k = kTraX; k < kParameterEnd; ++k) {
        int& unknown = model.UnknownOf[At(k)];
        unknown = unknown != 0 && !fit.HeldByFit[At(k)] ? ++model.Unknowns : 0;
    }
    return model;
}

void TakeResult(NormRun& fit, const PairSigmas& sigmas, SumsOfFit& sumsOf) {
    const Linearisation at = Linearise(fit.Model, fit.Run.Now, fit.Points, fit.Run.Chain);
    Residuals(fit.Points, fit.Model, at, Column(At(fit.Model.Unknowns) + 1), fit.Result.v);
    const double mean = ScaleWeights(fit.Points, fit.InUse, sigmas, at.M, fit.P).Mean;
    Matrix Q;
    // Where the points leave parameters open the Q of the plain fit says so as it always does.
    const Matrix N = NormalMatrixOf(FormsOf(fit.Model, at), sumsOf.SquaresAt(at));
    if (!InvertPositive(N, fit.Model.Unknowns, Q)) return;
    FromCentre(fit.Model, at, Q);
    for (double& element : Q.Elements) element *= mean;
    fit.Result.Q = std::move(Q);
}

// Whether the matrix of every pair is one multiple of the unit matrix, whatever values the parameters take:
// the sum is a multiple of the plain one then. So it is with equal sigmas of the target, and with those of
// the start too where the transformation turns and keeps all lengths alike, by scales that do not float.
bool IsThePlainFit(const NormRun& fit, const PairSigmas& sigmas, const Mat3& M) {
    constexpr double kRounding = 1e-13;
    const auto round = [](const SideSigmas& side) {
        return side.At(1, 0) == side.At(2, 0) && side.At(2, 0) == side.At(3, 0);
    };
    if (!sigmas.AlikeForAll() || !round(sigmas.Target)) return false;
    if (sigmas.Start.FreeOfErrors()) return true;
    if (!round(sigmas.Start)) return false;
    for (int k = kScaleX; k <= kAngleZtoXY; ++k)
        if (fit.Model.UnknownOf[At(k)] != 0) return false;
    Mat3 square;  // M M'
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            for (int k = 1; k <= 3; ++k) square(i, j) += M(i, k) * M(j, k);
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            if (!(std::fabs(square(i, j) - (i == j ? square(1, 1) : 0)) <= kRounding * square(1, 1)))
                return false;
    return true;
}

}  // namespace

int FitWeighted(NormRun& fit, const PairSigmas& sigmas) {
    Require(fit.Model.Mode == FitMode::Coincide);
    const Linearisation at = Linearise(fit.Model, fit.Run.Now, fit.Points, fit.Run.Chain);
    const bool targetAlone = sigmas.Start.FreeOfErrors(), alike = sigmas.AlikeForAll();
    SumsOfFit sums(fit, sigmas);
    Column P;
    ScaledWeights scaled;
    if (targetAlone && !alike) scaled = ScaleWeights(fit.Points, fit.InUse, sigmas, at.M, P);
    // Where the sums tell that all have a weight there is no need to ask each.
    const bool haveAll = !alike && (targetAlone ? scaled.AllPositive : std::isfinite(sums.At(at).Objective));
    const int asked = alike && fit.Points.AllInUse ? std::min(1, fit.Points.Count) : fit.Points.Count;
    if (const int pair = haveAll ? 0 : PairWithoutWeight(sigmas, at.M, asked, fit.InUse); pair != 0)
        return pair;
    if (IsThePlainFit(fit, sigmas, at.M)) return 0;
    if (targetAlone) {
        if (alike) ScaleWeights(fit.Points, fit.InUse, sigmas, at.M, P);
        if (P == fit.InUse) return 0;
    }
    // What the plain fit had to hold stays where that has left it, and has the Q that tells so.
    const FitModel model = fit.Model;
    const Matrix Q = fit.Result.Q;
    fit.Model = WithoutHeld(fit);
    if (targetAlone) {
        fit.P = std::move(P);
        IterateFit(fit);
    } else if (IterateWeighted(fit, sums)) {
        TakeResult(fit, sigmas, sums);
    }
    if (fit.Model.Unknowns < model.Unknowns) fit.Result.Q = Q;
    fit.Model = fit.Run.State.Model = model;
    fit.Run.Norm.Converged = fit.Run.State.Converged;
    fit.Certificate = {};  // it speaks of the plain fit
    return 0;
}

}  // namespace corvinade::fit
