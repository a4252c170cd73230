// Least squares under a-priori standard deviations of both systems.
//
// The gradient of the objective is 2 sum A(x + e)' W r, where e = -start M' W r is the correction of the
// start point that the weight stands for, and A(x + e) the design matrix at the corrected point. Steps of
// Gauss and Newton with these rows therefore end where the gradient is zero, weights that move with M
// included.
#include "fit/weighted_fit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "fit/alike_moments.h"
#include "fit/axis_forms.h"
#include "fit/corrections.h"
#include "fit/normal_equations.h"
#include "fit/norms.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

Vec3 StartOf(const GatheredPoints& points, int i) {
    return {points.Start[0][At(i)], points.Start[1][At(i)], points.Start[2][At(i)]};
}

// T + M x - X, whichever coordinates are in use.
Vec3 ResidualOf(const GatheredPoints& points, const Linearisation& at, const Vec3& p, int i) {
    Vec3 r;
    for (int a = 1; a <= 3; ++a)
        r(a) = (at.Shift(a) - points.Target[At(a - 1)][At(i)]) +
               (at.M(a, 1) * p(1) + at.M(a, 2) * p(2) + at.M(a, 3) * p(3));
    return r;
}

Vec3 Times(const Mat3& A, const Vec3& x) {
    Vec3 y;
    for (int i = 1; i <= 3; ++i) y(i) = A(i, 1) * x(1) + A(i, 2) * x(2) + A(i, 3) * x(3);
    return y;
}

double Dot(const Vec3& a, const Vec3& b) {
    return a(1) * b(1) + a(2) * b(2) + a(3) * b(3);
}

// Residuals of coordinates out of use may be anything, no numbers too.
Vec3 InUseOf(const Vec3& r, const double* inUse) {
    return {inUse[0] != 0 ? r(1) : 0, inUse[1] != 0 ? r(2) : 0, inUse[2] != 0 ? r(3) : 0};
}

WeightedSums SumOver(const GatheredPoints& points, const Column& inUse, const PairSigmas& sigmas,
                     const Linearisation& at) {
    WeightedSums sums;
    PairWeights weights(sigmas, at.M);
    for (int i = 0; i < points.Count; ++i) {
        const double* const use = &inUse[At(3 * i + 1)];
        const PairWeight& weight = weights.Of(i, use);
        const Vec3 p = StartOf(points, i);
        const Vec3 r = InUseOf(ResidualOf(points, at, p, i), use);
        const Vec3 Wr = Times(weight.W, r), e = Times(weight.SM, Wr);
        const std::array<double, 4> corrected = {1, p(1) - e(1), p(2) - e(2), p(3) - e(3)};
        const Form4 square = SquareOf(corrected[1], corrected[2], corrected[3]);
        sums.Objective += Dot(r, Wr);
        for (int a = 1; a <= 3; ++a) {
            for (std::size_t k = 0; k < 4; ++k) sums.Gradient[At(a)][k] += Wr(a) * corrected[k];
            for (int b = a; b <= 3; ++b) {
                const double w = weight.W(a, b);
                Form4& sum = sums.Squares[At(AxisPair(a, b))];
                for (std::size_t k = 0; k < square.size(); ++k) sum[k] += w * square[k];
            }
        }
    }
    return sums;
}

// The same of the points as they were measured: w_ab [1 p] [1 p]'.
std::array<Form4, kAxisPairs> SquaresOver(const GatheredPoints& points, const Column& inUse,
                                          const PairSigmas& sigmas, const Linearisation& at) {
    std::array<Form4, kAxisPairs> sums{};
    PairWeights weights(sigmas, at.M);
    for (int i = 0; i < points.Count; ++i) {
        const Vec3 p = StartOf(points, i);
        const Mat3& W = weights.Of(i, &inUse[At(3 * i + 1)]).W;
        const Form4 square = SquareOf(p(1), p(2), p(3));
        for (int a = 1; a <= 3; ++a)
            for (int b = a; b <= 3; ++b)
                for (std::size_t k = 0; k < square.size(); ++k)
                    sums[At(AxisPair(a, b))][k] += W(a, b) * square[k];
    }
    return sums;
}

// The sums of one fit, by the moments of the points where the sigmas are the same for all pairs.
class SumsOfFit {
public:
    SumsOfFit(const NormRun& fit, const PairSigmas& sigmas) : fit_(fit), sigmas_(sigmas) {}

    WeightedSums At(const Linearisation& at) {
        if (!sigmas_.AlikeForAll()) return SumOver(fit_.Points, fit_.InUse, sigmas_, at);
        if (!moments_ || HasLostDigits(*moments_, at))
            moments_.emplace(TakeMoments(fit_.Points, fit_.InUse, at));
        return SumsByMoments(*moments_, sigmas_, at);
    }
    double ObjectiveAt(const Parameters& values) {
        if (!sigmas_.AlikeForAll()) return WeightedObjective(fit_.Points, fit_.InUse, sigmas_, values);
        ChainRecord chain;
        const Linearisation at = Linearise(FitModel{}, values, fit_.Points, chain);
        return SumsByMoments(*moments_, sigmas_, at).Objective;
    }
    // w_ab [1 p] [1 p]' of the points as they were measured.
    std::array<Form4, kAxisPairs> SquaresAt(const Linearisation& at) {
        if (!sigmas_.AlikeForAll()) return SquaresOver(fit_.Points, fit_.InUse, sigmas_, at);
        if (!moments_) moments_.emplace(TakeMoments(fit_.Points, fit_.InUse, at));
        return SquaresByMoments(*moments_, sigmas_, at);
    }

private:
    const NormRun& fit_;
    const PairSigmas& sigmas_;
    std::optional<AlikeMoments> moments_;
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
        const bool taken = Take(fit, sumsOf, at, sums.Objective, centred);
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

// Weights 1 / C_ii of the coordinates in use, scaled to a mean of 1. Gives what they were scaled by.
double TakeScaledWeights(const NormRun& fit, const PairSigmas& sigmas, const Mat3& M, Column& P) {
    constexpr double kSame = 1e-12;
    const std::size_t n = At(3 * fit.Points.Count);
    std::array<double, 3> ofAll{};
    double sum = 0, observations = 0;
    if (sigmas.AlikeForAll()) {
        const Mat3 C = CovarianceOf(sigmas, M, 0);
        std::array<double, 3> inUse{};
        inUse.fill(fit.Points.AllInUse ? fit.Points.Count : 0);
        for (std::size_t i = 1; i <= n && !fit.Points.AllInUse; i += 3)
            for (std::size_t axis = 0; axis < 3; ++axis) inUse[axis] += fit.InUse[i + axis];
        for (std::size_t axis = 0; axis < 3; ++axis) {
            // An axis that nobody uses may well be free of errors.
            if (inUse[axis] > 0) ofAll[axis] = 1 / C(static_cast<int>(axis) + 1, static_cast<int>(axis) + 1);
            sum += inUse[axis] * ofAll[axis];
            observations += inUse[axis];
        }
        const double mean = observations > 0 ? sum / observations : 1;
        for (double& weight : ofAll) weight = std::fabs(weight - mean) <= kSame * mean ? 1 : weight / mean;
        // Those of a plain fit stand there already.
        const bool same = ofAll[0] == 1 && ofAll[1] == 1 && ofAll[2] == 1;
        if (!same || P.size() != fit.InUse.size()) P = fit.InUse;
        for (std::size_t i = 1; i <= n && !same; i += 3)
            for (std::size_t axis = 0; axis < 3; ++axis) P[i + axis] *= ofAll[axis];
        return mean;
    }
    P.assign(n + 1, 0);
    for (int i = 0; i < fit.Points.Count; ++i) {
        const Mat3 C = CovarianceOf(sigmas, M, i);
        for (int axis = 1; axis <= 3; ++axis) {
            const std::size_t index = At(3 * i + axis);
            P[index] = fit.InUse[index] != 0 ? 1 / C(axis, axis) : 0;
            sum += P[index];
            observations += fit.InUse[index];
        }
    }
    const double mean = observations > 0 ? sum / observations : 1;
    for (std::size_t i = 1; i <= n; ++i)
        if (P[i] != 0) P[i] = std::fabs(P[i] - mean) <= kSame * mean ? 1 : P[i] / mean;
    return mean;
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
    const double mean = TakeScaledWeights(fit, sigmas, at.M, fit.P);
    Matrix Q;
    // Where the points leave parameters open the Q of the plain fit says so as it always does.
    const Matrix N = NormalMatrixOf(FormsOf(fit.Model, at), sumsOf.SquaresAt(at));
    if (!InvertPositive(N, fit.Model.Unknowns, Q)) return;
    FromCentre(fit.Model, at, Q);
    for (double& element : Q.Elements) element *= mean;
    fit.Result.Q = std::move(Q);
}

}  // namespace

double WeightedObjective(const GatheredPoints& points, const Column& inUse, const PairSigmas& sigmas,
                         const Parameters& values) {
    ChainRecord chain;
    const Linearisation at = Linearise(FitModel{}, values, points, chain);
    PairWeights weights(sigmas, at.M);
    double sum = 0;
    for (int i = 0; i < points.Count; ++i) {
        const double* const use = &inUse[At(3 * i + 1)];
        const PairWeight& weight = weights.Of(i, use);
        if (!weight.Positive) return std::numeric_limits<double>::quiet_NaN();
        const Vec3 r = InUseOf(ResidualOf(points, at, StartOf(points, i), i), use);
        sum += Dot(r, Times(weight.W, r));
    }
    return sum;
}

int FitWeighted(NormRun& fit, const PairSigmas& sigmas) {
    Require(fit.Model.Mode == FitMode::Coincide);
    const Linearisation at = Linearise(fit.Model, fit.Run.Now, fit.Points, fit.Run.Chain);
    const int asked =
        fit.Points.AllInUse && sigmas.AlikeForAll() ? std::min(1, fit.Points.Count) : fit.Points.Count;
    if (const int pair = PairWithoutWeight(sigmas, at.M, asked, fit.InUse); pair != 0) return pair;
    const bool targetAlone = sigmas.Start.FreeOfErrors();
    Column P;
    if (targetAlone) {
        const Mat3 C = CovarianceOf(sigmas, at.M, 0);
        if (sigmas.AlikeForAll() && C(1, 1) == C(2, 2) && C(2, 2) == C(3, 3)) return 0;  // the plain fit
        TakeScaledWeights(fit, sigmas, at.M, P);
        if (P == fit.InUse) return 0;
    }
    // What the plain fit had to hold stays where that has left it, and has the Q that tells so.
    const FitModel model = fit.Model;
    const Matrix Q = fit.Result.Q;
    fit.Model = WithoutHeld(fit);
    if (targetAlone) {
        fit.P = std::move(P);
        IterateFit(fit);
    } else if (SumsOfFit sums(fit, sigmas); IterateWeighted(fit, sums)) {
        TakeResult(fit, sigmas, sums);
    }
    if (fit.Model.Unknowns < model.Unknowns) fit.Result.Q = Q;
    fit.Model = fit.Run.State.Model = model;
    fit.Run.Norm.Converged = fit.Run.State.Converged;
    fit.Certificate = {};  // it speaks of the plain fit
    return 0;
}

}  // namespace corvinade::fit
