// A fit by the library: what is handed over is checked, becomes a problem of the mathematics, and its result
// is brought to the form that the program shows.
#include "corvinade/fit.h"

#include <climits>
#include <cmath>

#include "fit/equal_forms.h"
#include "fit/fit.h"
#include "fit/open_parameters.h"
#include "fit/small_svd.h"
#include "fit/statistics.h"

namespace corvinade {

namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

using Columns = std::array<std::vector<double>, 3>;

// The columns of points, as the mathematics takes them; those that stand in memory as such are lent.
class ColumnsOf {
public:
    ColumnsOf(const Points& points, const char* what) {
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double* first = points.Data + static_cast<std::ptrdiff_t>(axis) * points.AxisStep;
            if (points.PointStep == 1) {
                View[axis] = {first, points.Count};
            } else {
                kept_[axis].resize(points.Count);
                for (std::size_t i = 0; i < points.Count; ++i)
                    kept_[axis][i] = first[static_cast<std::ptrdiff_t>(i) * points.PointStep];
                View[axis] = kept_[axis];
            }
            for (std::size_t i = 0; i < points.Count; ++i)
                if (!std::isfinite(View[axis][i]))
                    throw InvalidInput("the coordinates of " + std::string(what) +
                                       " are finite numbers, and that of point " + std::to_string(i) +
                                       " along " + "xyz"[axis] + " is " + std::to_string(View[axis][i]) +
                                       " (points are counted from 0)");
        }
    }
    ColumnsOf(const ColumnsOf&) = delete;
    ColumnsOf& operator=(const ColumnsOf&) = delete;

    std::array<std::span<const double>, 3> View;

private:
    Columns kept_;
};

// Standard deviations of a side by columns: none, one a column, or one a point.
class SigmasOf {
public:
    SigmasOf(std::span<const double> sigmas, std::size_t count, const char* what) {
        if (!sigmas.empty() && sigmas.size() != 3 && sigmas.size() != 3 * count)
            throw InvalidInput("the standard deviations of " + std::string(what) + " are 3 or 3 a point, " +
                               std::to_string(3 * count) + ", and " + std::to_string(sigmas.size()) +
                               " came");
        for (std::size_t i = 0; i < sigmas.size(); ++i) {
            if (!std::isfinite(sigmas[i]) || sigmas[i] < 0)
                throw InvalidInput("standard deviations are finite and not below 0, and " +
                                   std::to_string(sigmas[i]) + " came for " + what + " (number " +
                                   std::to_string(i) + ", from 0)");
            kept_[i % 3].push_back(sigmas[i]);
        }
        for (std::size_t axis = 0; axis < 3; ++axis) Side.Of[axis] = kept_[axis];
    }
    SigmasOf(const SigmasOf&) = delete;
    SigmasOf& operator=(const SigmasOf&) = delete;

    fit::SideSigmas Side;

private:
    Columns kept_;
};

fit::StartChoice ChoiceOf(const ParameterChoice& parameters) {
    fit::StartChoice choice;
    for (std::size_t k = 0; k < kParameters; ++k) {
        const std::size_t number = k + 1;
        choice.Floats[number] = parameters.State[k] == ParameterState::Floats;
        choice.Held[number] = parameters.State[k] == ParameterState::Held;
        if (!choice.Held[number]) continue;
        ParameterChoice().Hold(static_cast<Parameter>(k),
                               parameters.Value[k]);  // refuses what cannot be held
        choice.Value[number] = parameters.Value[k];
    }
    return choice;
}

void CheckSets(const Points& start, const Points& target) {
    if (start.Count != target.Count)
        throw InvalidInput("both sets have as many points, and " + std::to_string(start.Count) + " and " +
                           std::to_string(target.Count) + " came");
    if (start.Count == 0) throw InvalidInput("points were expected, and none came");
    if (start.Count > INT_MAX / 4)
        throw InvalidInput("a fit takes at most " + std::to_string(INT_MAX / 4) + " pairs, and " +
                           std::to_string(start.Count) + " came");
    if (start.Data == nullptr || target.Data == nullptr)
        throw InvalidInput("points were expected, and a null pointer came");
}

// Weights 0 and 1, three a pair.
std::vector<double> UseOf(const FitOptions& options, std::size_t count) {
    if (!options.InUse.empty() && options.InUse.size() != 3 * count)
        throw InvalidInput("what is in use is told of three coordinates a pair, " +
                           std::to_string(3 * count) + ", and " + std::to_string(options.InUse.size()) +
                           " came");
    std::vector<double> use(options.InUse.size());
    for (std::size_t i = 0; i < use.size(); ++i) use[i] = options.InUse[i] != 0 ? 1 : 0;
    return use;
}

// The seed pairs numbered from 1. Of seed coordinates that take no part no raw scales are taken.
void TakeSeeds(const FitOptions& options, std::size_t count, fit::FitProblem& problem) {
    for (std::size_t k = 0; k < 3 && k < count; ++k) {
        const std::size_t pair = options.SeedPairs[k];
        if (pair >= count)
            throw InvalidInput("the seed pairs are among the " + std::to_string(count) +
                               " pairs, from 0 on, and " + std::to_string(pair) + " came");
        problem.SeedPairs[k] = static_cast<int>(pair) + 1;
        for (std::size_t axis = 0; axis < 3 && count >= 3; ++axis)
            if (!problem.InUse.empty() && problem.InUse[3 * pair + axis] == 0) problem.ScalesAreOne = true;
    }
}

fit::FitNorm NormOf(Norm norm) {
    switch (norm) {
        case Norm::L1:
        case Norm::L1Exact:
            return fit::FitNorm::LeastSum;
        case Norm::Loo:
        case Norm::Minimax:
            return fit::FitNorm::LeastLargest;
        default:
            return fit::FitNorm::LeastSquares;
    }
}

// How far M is from carrying all into one plane: 1 for right angles, 0 for a plane, below 0 mirrored.
double HandednessOf(const fit::Mat3& M) {
    double sizes = 1;
    for (int column = 1; column <= 3; ++column) sizes *= std::hypot(M(1, column), M(2, column), M(3, column));
    return sizes > 0 ? fit::Determinant3(M) / sizes : 0;
}

std::string NamesOf(const std::array<bool, fit::kParameterEnd>& parameters) {
    std::string names;
    for (std::size_t k = 0; k < kParameters; ++k)
        if (parameters[k + 1])
            names += (names.empty() ? "" : ", ") + std::string(NameOf(static_cast<Parameter>(k)));
    return names;
}

class ResultMaker {
public:
    ResultMaker(const fit::FitProblem& problem, fit::FitResult& fitted)
        : problem_(problem), fitted_(fitted) {}

    FitResult Make() {
        TakeForm();
        TakeValues();
        TakeSigmas();
        NoteRemarks();
        if (fitted_.State.Finite) NotePoints();
        NoteNorm();
        result_.Residuals.assign(fitted_.Residuals.begin() + 1, fitted_.Residuals.begin() + 1 + Rows());
        return std::move(result_);
    }

private:
    std::ptrdiff_t Rows() const { return static_cast<std::ptrdiff_t>(3 * problem_.Pairs.Start[0].size()); }
    bool Used(std::size_t row) const { return problem_.InUse.empty() || problem_.InUse[row] != 0; }
    void Say(NoteCode code, std::string text) { result_.Notes.push_back({code, std::move(text)}); }

    // The neatest of the equal forms of the result, as the program shows it.
    void TakeForm() {
        fit::TakeWholeTurnsOff(fitted_.Model, fitted_.Values);
        fit::TakeNicerRotation(fitted_.Model, fitted_.Values, fitted_.Q);
        result_.Converged = fitted_.Converged();
        if (!result_.Converged)
            Say(NoteCode::NotConverged, "The calculation did not converge; its result is not the best fit");
        if (fit::TakePositiveForm(fitted_.Model, fitted_.Values, fitted_.Q))
            Say(NoteCode::NearestForm,
                "The result with negative scales is shown in its equal form with positive scales");
    }

    void TakeValues() {
        const fit::Parameters& values = fitted_.Values;
        for (std::size_t k = 0; k < kParameters; ++k) {
            result_.Values[k] = values[static_cast<int>(k) + 1];
            result_.State[k] = problem_.Choice.Floats[k + 1] ? ParameterState::Floats
                               : problem_.Choice.Held[k + 1] ? ParameterState::Held
                                                             : ParameterState::Unused;
        }
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const int i = static_cast<int>(axis);
            result_.Transformation.Translation[axis] = values[fit::kTraX + i];
            result_.Transformation.Rotation[axis] = values[fit::kRotX + i];
            result_.Transformation.Scale[axis] = values[fit::kScaleX + i];
            result_.Transformation.Shear[axis] = values[fit::kAngleXY + i];
        }
        result_.Matrix = MatrixOf(result_.Transformation);
        result_.Iterations = fitted_.State.Iterations;
        result_.NormIterations = fitted_.Norm.Iterations;
        result_.Unknowns = static_cast<std::size_t>(fitted_.Model.Unknowns);
        for (std::size_t row = 0; row < static_cast<std::size_t>(Rows()); ++row)
            if (Used(row)) ++result_.Observations;
    }

    void TakeSigmas() {
        auto& axes = result_.SigmaOfAxis;
        fit::Statistics(fitted_.Residuals, fitted_.Weights, static_cast<int>(Rows()), result_.S0, axes[0],
                        axes[1], axes[2]);
        for (std::size_t k = 0; k < kParameters; ++k)
            if (const int unknown = fitted_.Model.UnknownOf[k + 1]; unknown != 0)
                result_.Sigma[k] = fitted_.HeldByFit[k + 1]
                                       ? kNone
                                       : std::sqrt(std::fabs(fitted_.Q(unknown, unknown))) * result_.S0;
    }

    void NoteRemarks() {
        using What = fit::FitRemark::What;
        for (const fit::FitRemark& remark : fitted_.Remarks) switch (remark.Kind) {
                case What::FitsUnsettled:
                    Say(NoteCode::UnsettledFits,
                        std::to_string(remark.Count) +
                            " inner fits of the norm ended at their limit and did not "
                            "settle; the loop went on with their weights");
                    break;
                case What::HeldWhereMirrored:
                    Say(NoteCode::OpenParameters,
                        NamesOf(fitted_.HeldByFit) +
                            " held by the fit: left to float they lead to a mirrored result, which fits no better "
                            "than noise explains; the points do not determine them, and they have no sigma");
                    break;
                case What::OptimumFromOtherStart:
                    Say(NoteCode::BetterStart,
                        "The way from the weightings ended in an optimum that is not the best; the best one of " +
                            std::to_string(remark.Count) + " starts is taken");
                    break;
                default:
                    Say(NoteCode::BetterStart,
                        "The iteration from its start values ended in a solution that is not the best, or found no "
                        "end; it began again from the best one");
            }
    }

    void NotePoints() {
        fit::Column use(static_cast<std::size_t>(Rows()) + 1, 1);
        for (std::size_t row = 1; row < use.size(); ++row) use[row] = Used(row - 1) ? 1 : 0;
        use[0] = 0;
        fit::GatheredPoints points;
        fit::GatherPoints(problem_.Pairs, use, false, points);
        fit::ChainRecord chain;
        const fit::Linearisation at = fit::Linearise(fitted_.Model, fitted_.Values, points, chain);
        const fit::OpenParameters open = fit::FindOpenParameters(
            points, fitted_.Model, [&use](std::size_t i) { return use[i] != 0; }, fitted_.Values, at);
        for (std::size_t k = 0; k < kParameters; ++k)
            if (open.Open[k + 1]) result_.Sigma[k] = kNone;
        if (open.GimbalLock)
            Say(NoteCode::GimbalLock,
                "Rot y is at a right angle, where Rot x and Rot z turn about the same axis (gimbal lock): only both "
                "together are determined, and neither has a sigma; hold one of them");
        if (open.AzimuthWithoutEffect && !fitted_.HeldByFit[fit::kAzimuth])
            Say(NoteCode::NoEffect,
                "z to xy is 0, where the azimuth has no effect: what is told for it is arbitrary");
        if (open.ByPoints() != 0)
            Say(NoteCode::OpenParameters,
                "The points in use, on one line or in one plane perhaps, leave " +
                    std::to_string(open.ByPoints()) + " of the " + std::to_string(result_.Unknowns) +
                    " parameters open: what is told for " + NamesOf(open.Open) + " is one of many solutions");
        const double handedness = HandednessOf(at.M);
        constexpr double kPlane = 1e-9;
        if (std::fabs(handedness) < kPlane)
            Say(NoteCode::CollapsedScale,
                "The result carries points that are apart onto each other, or into one plane: a scale is 0, or the "
                "angles of the frame have closed up");
        if (handedness < -kPlane)
            Say(NoteCode::Mirrored,
                "The result is mirrored: it carries the points onto their mirror image, as no movement can; look for "
                "names that are exchanged or an axis that points the other way");
        if (result_.Observations == result_.Unknowns)
            Say(NoteCode::NoRedundancy, "no redundancy: sigma says nothing (" +
                                            std::to_string(result_.Observations) + " observations for " +
                                            std::to_string(result_.Unknowns) + " parameters)");
    }

    void NoteNorm() {
        if (!result_.Converged || result_.S0 == 0 || problem_.Norm == fit::FitNorm::LeastSquares) return;
        constexpr double kRounding = 1e-9;  // mm
        if (problem_.Norm == fit::FitNorm::LeastSum)
            Say(NoteCode::NormSigma,
                "Sigma and s0 follow from the weights 1/|deviation| of the norm L1 and do not tell how well the "
                "parameters are known; those of L2 do");
        else if (result_.S0 >= kRounding)
            Say(NoteCode::NormSigma,
                "Sigma counts every point, but the few with the largest deviations make the result of the norm Loo: "
                "where errors are normally distributed it is known worse");
    }

    const fit::FitProblem& problem_;
    fit::FitResult& fitted_;
    FitResult result_;
};

}  // namespace

Points::Points(std::span<const double> rows) : Data(rows.data()), Count(rows.size() / 3) {
    if (rows.size() % 3 != 0)
        throw InvalidInput("points x y z x y z ... were expected, and " + std::to_string(rows.size()) +
                           " numbers came");
}

FitResult Fit(const Points& start, const Points& target, const FitOptions& options) {
    CheckSets(start, target);
    const std::size_t count = start.Count;
    const ColumnsOf from(start, "the start points"), to(target, "the target points");
    const SigmasOf startSigmas(options.StartSigma, count, "the start points"),
        targetSigmas(options.TargetSigma, count, "the target points");
    const std::vector<double> use = UseOf(options, count);
    const bool exact = options.Which == Norm::L1Exact || options.Which == Norm::Minimax;
    const bool weighted = !options.StartSigma.empty() || !options.TargetSigma.empty();
    if (exact && weighted)
        throw InvalidInput(
            "standard deviations go with the norms l2, l1 and loo, and not on to the true optimum");
    if (options.MaxIterations < 1 || options.MaxIterations > SHRT_MAX)
        throw InvalidInput("the limit of iterations is 1 to " + std::to_string(SHRT_MAX) + ", and " +
                           std::to_string(options.MaxIterations) + " came");

    fit::FitProblem problem;
    problem.Pairs.Start = from.View;
    problem.Pairs.Target = to.View;
    problem.InUse = use;
    problem.Choice = ChoiceOf(options.Parameters);
    problem.Norm = NormOf(options.Which);
    problem.ToOptimum = exact;
    problem.Limits.MaxIteration = options.MaxIterations;
    TakeSeeds(options, count, problem);
    if (weighted) problem.Sigmas = fit::PairSigmas{startSigmas.Side, targetSigmas.Side};

    std::size_t observations = use.empty() ? 3 * count : 0;
    for (const double one : use) observations += one != 0 ? 1 : 0;
    const int unknowns = fit::ModelOf(problem.Choice, problem.Mode).Unknowns;
    if (observations < static_cast<std::size_t>(unknowns))
        throw InvalidInput("at least as many observations as unknowns were expected, and there are " +
                           std::to_string(observations) + " for " + std::to_string(unknowns));

    bool stopped = false;
    fit::FitListener listener;
    if (options.StopIsWanted)
        listener.StopIsWanted = [&] { return stopped = stopped || options.StopIsWanted(); };
    fit::FitResult fitted = fit::Fit(problem, listener);
    if (stopped) throw Stopped("the fit has been stopped");
    if (fitted.PairWithoutWeight != 0)
        throw InvalidInput("the standard deviations give pair " +
                           std::to_string(fitted.PairWithoutWeight - 1) +
                           " (from 0) no weight: it has no error on either side");
    return ResultMaker(problem, fitted).Make();
}

}  // namespace corvinade
