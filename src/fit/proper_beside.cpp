// A proper result where the best one is mirrored for no reason.
#include "fit/proper_beside.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "fit/fit.h"
#include "fit/mirror.h"
#include "fit/norms.h"

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// What may be held together: one scale, or what closes up the frame in one way.
std::vector<std::vector<int>> FloatingGroups(const FitModel& model) {
    std::vector<std::vector<int>> groups;
    for (const std::vector<int>& group : std::initializer_list<std::vector<int>>{
             {kScaleX}, {kScaleY}, {kScaleZ}, {kScaleXYZ}, {kAngleXY}, {kAzimuth, kAngleZtoXY}}) {
        std::vector<int> floating;
        for (const int k : group)
            if (model.UnknownOf[At(k)] != 0) floating.push_back(k);
        if (!floating.empty()) groups.push_back(std::move(floating));
    }
    return groups;
}

bool IsScale(int parameter) {
    return parameter >= kScaleX && parameter <= kScaleXYZ;
}

bool EndsMirrored(const NormRun& fit) {
    ChainRecord chain;
    BuildChain(ChainSourceOf(fit.Run.Now), chain);
    return IsMirrored(chain);
}

// Of the points about their middle: the root of the sum of squares.
double SpreadOf(const std::array<LaneArray, 3>& set, const GatheredPoints& points) {
    double squares = 0;
    for (int axis = 0; axis < 3; ++axis) {
        double count = 0, middle = 0;
        const auto inUse = [&](int i) { return points.AllInUse || points.Weight[At(axis)][At(i)] != 0; };
        for (int i = 0; i < points.Count; ++i)
            if (inUse(i)) {
                ++count;
                middle += set[At(axis)][At(i)];
            }
        middle /= std::max(1.0, count);
        for (int i = 0; i < points.Count; ++i)
            if (inUse(i)) squares += (set[At(axis)][At(i)] - middle) * (set[At(axis)][At(i)] - middle);
    }
    return std::sqrt(squares);
}

// What rounding of the coordinates adds to the objective.
double RoundingOf(const NormRun& fit, const NormToHold& norm) {
    constexpr double kDigits = 8 * 2.220446049250313e-16;
    double largest = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        largest = std::max(largest, std::fabs(fit.Points.TargetCentre(axis)));
        for (int i = 0; i < fit.Points.Count; ++i)
            largest = std::max(largest, std::fabs(fit.Points.Target[At(axis - 1)][At(i)]));
    }
    const double each = kDigits * largest;
    const double rows = fit.Kind == FitNorm::LeastLargest ? 1 : fit.Rows();
    return rows * std::pow(each, norm.Power);
}

int Redundancy(const NormRun& fit) {
    const auto rows = std::count_if(fit.InUse.begin() + 1, fit.InUse.end(), [](double w) { return w != 0; });
    return static_cast<int>(rows) - fit.Model.Unknowns;
}

// Lends the gathered points to another run, and has them back with the weights of its own.
class Borrowed {
public:
    Borrowed(NormRun& from, NormRun& to) : from_(from), to_(to) { std::swap(from_.Points, to_.Points); }
    ~Borrowed() {
        std::swap(from_.Points, to_.Points);
        SetWeights(from_.P, from_.Points);
    }
    Borrowed(const Borrowed&) = delete;
    Borrowed& operator=(const Borrowed&) = delete;

private:
    NormRun &from_, &to_;
};

NormRun HoldingThese(const NormRun& fit, const std::vector<int>& parameters, double scale) {
    NormRun run{.Run = fit.Run, .Kind = fit.Kind, .Model = {}, .Choice = fit.Choice, .Seeds = fit.Seeds};
    for (const int k : parameters) {
        run.Choice.Floats[At(k)] = run.Choice.Seeded[At(k)] = false;
        run.Choice.Held[At(k)] = true;
        run.Choice.Value[At(k)] = fit.Choice.Own[At(k)].value_or(IsScale(k) ? scale : 0);
        run.Choice.Own[At(k)].reset();
        run.HeldByFit[At(k)] = true;
    }
    run.Model = ModelOf(run.Choice, fit.Model.Mode);
    run.ProperAlone = true;
    run.InUse = fit.InUse;
    run.P = fit.InUse;
    run.Run.State = {};
    const bool runOn = fit.Run.Norm.RunOn;
    run.Run.Norm = {};
    run.Run.Norm.RunOn = runOn;
    return run;
}

// A fit that holds some parameters.
struct HeldFit {
    NormRun Run;
    double Objective = 0;
    bool Proper = false;
    bool Ended = false;  // it has converged
};

HeldFit FitHolding(NormRun& fit, const NormToHold& norm, const std::vector<int>& parameters, double scale) {
    HeldFit held{.Run = HoldingThese(fit, parameters, scale)};
    const Borrowed points(fit, held.Run);
    if (!norm.Fit(held.Run)) fit.Run.State.Abandoned = true;
    if (fit.Abandoned() || fit.Stops()) return held;
    held.Objective = norm.Objective(held.Run);
    held.Proper = held.Run.Run.State.Finite && !EndsMirrored(held.Run);
    held.Ended = held.Run.Run.Norm.Converged;
    return held;
}

// All ways to hold something, the fewer parameters the sooner.
std::vector<std::vector<int>> WaysToHold(const FitModel& model) {
    const std::vector<std::vector<int>> groups = FloatingGroups(model);
    std::vector<std::vector<int>> ways;
    for (unsigned set = 1; set < 1U << groups.size(); ++set) {
        std::vector<int> way;
        for (std::size_t i = 0; i < groups.size(); ++i)
            if ((set >> i & 1U) != 0) way.insert(way.end(), groups[i].begin(), groups[i].end());
        ways.push_back(std::move(way));
    }
    std::stable_sort(ways.begin(), ways.end(),
                     [](const auto& a, const auto& b) { return a.size() < b.size(); });
    return ways;
}

// The held fit that is best; nothing where none is proper, or the fit was stopped. A loop that ends nowhere
// whatever is held is better than a mirrored one: its result is marked as not converged.
std::optional<HeldFit> BestHeldFit(NormRun& fit, const NormToHold& norm, const NormToHold& squares,
                                   double scale) {
    struct Choice {
        std::vector<int> Way;
        double Squares;
    };
    const std::vector<std::vector<int>> ways = WaysToHold(fit.Model);
    const bool bySquares = norm.Fit == squares.Fit;
    std::optional<HeldFit> best, unsettled;
    for (std::size_t first = 0, end = 0; first < ways.size() && !best; first = end) {
        std::vector<Choice> choices;
        for (end = first; end < ways.size() && ways[end].size() == ways[first].size(); ++end) {
            HeldFit held = FitHolding(fit, squares, ways[end], scale);
            if (fit.Abandoned() || fit.Stops()) return {};
            if (!held.Proper || !held.Ended) continue;
            choices.push_back({ways[end], held.Objective});
            if (bySquares && (!best || held.Objective < best->Objective)) best.emplace(std::move(held));
        }
        std::stable_sort(choices.begin(), choices.end(),
                         [](const Choice& a, const Choice& b) { return a.Squares < b.Squares; });
        for (std::size_t i = 0; i < choices.size() && !best; ++i) {
            HeldFit held = FitHolding(fit, norm, choices[i].Way, scale);
            if (fit.Abandoned() || fit.Stops()) return {};
            if (!held.Proper) continue;
            std::optional<HeldFit>& found = held.Ended ? best : unsettled;
            if (!found) found.emplace(std::move(held));
        }
    }
    return best ? std::move(best) : std::move(unsettled);
}

// The proper transformations come near to the mirrored one where the same scales are all but 0: so near that
// one has to be that may be told from it. With many points even noise of the start points draws a scale
// across them to 0, and away from where it is held. Infinite where that has no proper end.
double ObjectiveNearZero(NormRun& fit, const NormToHold& norm, const NormRun& held, double scale) {
    constexpr double kNearZero = 1e-3;
    std::vector<int> parameters;
    for (int k = kScaleX; k <= kAngleZtoXY; ++k)
        if (held.HeldByFit[At(k)]) parameters.push_back(k);
    // A start value of the user's own says where a scale is held, and nothing of where the mirror lies.
    const OwnStarts own = std::exchange(fit.Choice.Own, OwnStarts{});
    const HeldFit near = FitHolding(fit, norm, parameters, kNearZero * scale);
    fit.Choice.Own = own;
    const bool serves = !fit.Abandoned() && !fit.Stops() && near.Proper;
    return serves ? near.Objective : std::numeric_limits<double>::infinity();
}

void Take(NormRun& held, NormRun& fit) {
    const FitModel all = fit.Model;
    fit.Run = held.Run;
    fit.P = std::move(held.P);
    fit.Certificate = held.Certificate;
    fit.Remarks = std::move(held.Remarks);
    fit.HeldByFit = held.HeldByFit;
    fit.Remarks.push_back({.Kind = FitRemark::What::HeldWhereMirrored});
    const IterationState state = fit.Run.State;
    SettleFit(fit);
    fit.Run.State = state;
    fit.Run.State.Model = all;
}

}  // namespace

bool HoldWhereMirrored(NormRun& fit, const NormToHold& norm, const NormToHold& squares) {
    const bool plain = fit.Model.Mode == FitMode::Coincide && fit.SeeksBest;
    const IterationState& state = fit.Run.State;
    if (!plain || fit.Stops() || !state.Finite || NegativeScaleIsWanted(fit.Choice)) return true;
    if (IsAffine(fit.Model)) return true;
    const int redundancy = Redundancy(fit);
    if (redundancy <= 0 || FloatingGroups(fit.Model).empty() || !EndsMirrored(fit)) return true;
    const double scale = SpreadOf(fit.Points.Target, fit.Points) / SpreadOf(fit.Points.Start, fit.Points);
    if (!(scale > 0) || !std::isfinite(scale)) return true;
    const double mirrored = norm.Objective(fit), rounding = RoundingOf(fit, norm);
    std::optional<HeldFit> held = BestHeldFit(fit, norm, squares, scale);
    if (!held || fit.Abandoned()) return !fit.Abandoned();
    double proper = held->Objective;
    const auto isReal = [&] { return MirrorIsReal(proper, mirrored, rounding, redundancy, norm.Power); };
    if (isReal()) proper = std::fmin(proper, ObjectiveNearZero(fit, norm, held->Run, scale));
    if (!fit.Abandoned() && !fit.Stops() && !isReal()) Take(held->Run, fit);
    return !fit.Abandoned();
}
