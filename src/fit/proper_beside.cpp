// A proper result where the best one is mirrored for no reason.
#include "fit/proper_beside.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <initializer_list>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "fit/fit.h"
#include "fit/handedness.h"
#include "fit/mirror.h"
#include "fit/norms.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// What may be held together: one scale, or what closes up the frame in one way.
using Groups = std::vector<std::vector<int>>;
Groups FloatingGroups(const FitModel& model) {
    Groups groups;
    for (const std::vector<int>& group : std::initializer_list<std::vector<int>>{
             {kScaleX}, {kScaleY}, {kScaleZ}, {kScaleXYZ}, {kAngleXY}, {kAzimuth, kAngleZtoXY}}) {
        std::vector<int> floating;
        for (const int k : group)
            if (model.UnknownOf[At(k)] != 0) floating.push_back(k);
        if (!floating.empty()) groups.push_back(std::move(floating));
    }
    return groups;
}

// Those of them that the points hardly determine, by what is left of each in the inverse of the normal
// matrix: what lies in the plane of a plate is determined a hundred times better than what leads out of it.
Groups LooseGroups(const NormRun& fit) {
    constexpr double kLoose = 1e-4;  // of the loosest; squares, as the matrix has them
    const auto looseness = [&fit](const std::vector<int>& group) {
        double most = 0;
        for (const int k : group) {
            const int i = fit.Model.UnknownOf[At(k)];
            const double q = i <= fit.Result.Q.Rows ? fit.Result.Q(i, i) : 0;
            most = std::isfinite(q) ? std::max(most, std::fabs(q)) : std::numeric_limits<double>::infinity();
        }
        return most;
    };
    Groups groups = FloatingGroups(fit.Model);
    double loosest = 0;
    for (const std::vector<int>& group : groups) loosest = std::max(loosest, looseness(group));
    std::erase_if(groups, [&](const auto& group) { return looseness(group) < kLoose * loosest; });
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
    const auto rows = std::count_if(fit.Use().begin() + 1, fit.Use().end(), [](double w) { return w != 0; });
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
    run.P = fit.Use();
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
std::vector<std::vector<int>> WaysToHold(const Groups& groups) {
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

// Tells whether a proper fit with this objective is as good as the mirrored one but for noise.
using AsGood = std::function<bool(double)>;

// The best held fit that is as good as the mirrored one but for noise; nothing where none is, or the fit was
// stopped. A loop that ends nowhere whatever is held is better than a mirrored one: its result is marked as
// not converged.
std::optional<HeldFit> BestHeldFit(NormRun& fit, const NormToHold& norm, const NormToHold& squares,
                                   const Groups& groups, double scale, const AsGood& isAsGood) {
    constexpr int kMostTries = 3;  // of ways with as many parameters, beside the choice by squares
    struct Choice {
        std::vector<int> Way;
        double Squares;
    };
    const std::vector<std::vector<int>> ways = WaysToHold(groups);
    const bool bySquares = norm.Fit == squares.Fit;
    std::optional<HeldFit> best, unsettled;
    for (std::size_t first = 0, end = 0; first < ways.size() && !best; first = end) {
        std::vector<Choice> choices;
        for (end = first; end < ways.size() && ways[end].size() == ways[first].size(); ++end) {
            HeldFit held = FitHolding(fit, squares, ways[end], scale);
            if (fit.Abandoned() || fit.Stops()) return {};
            if (!held.Proper || !held.Ended) continue;
            choices.push_back({ways[end], held.Objective});
            if (bySquares && isAsGood(held.Objective) && (!best || held.Objective < best->Objective))
                best.emplace(std::move(held));
        }
        if (bySquares) continue;
        std::stable_sort(choices.begin(), choices.end(),
                         [](const Choice& a, const Choice& b) { return a.Squares < b.Squares; });
        for (std::size_t i = 0; i < choices.size() && i < kMostTries && !best; ++i) {
            HeldFit held = FitHolding(fit, norm, choices[i].Way, scale);
            if (fit.Abandoned() || fit.Stops()) return {};
            if (!held.Proper || !isAsGood(held.Objective)) continue;
            std::optional<HeldFit>& found = held.Ended ? best : unsettled;
            if (!found) found.emplace(std::move(held));
        }
    }
    return best ? std::move(best) : std::move(unsettled);
}

void Take(NormRun& held, NormRun& fit) {
    const FitModel all = fit.Model;
    fit.Run = held.Run;
    fit.P = std::move(held.P);
    fit.Certificate = held.Certificate;
    fit.Remarks = std::move(held.Remarks);
    fit.HeldByFit = held.HeldByFit;
    fit.LeftByPoses = held.LeftByPoses;
    fit.Remarks.push_back({.Kind = FitRemark::What::HeldWhereMirrored});
    const IterationState state = fit.Run.State;
    SettleHolding(fit.Run, fit.Model, fit.Points, fit.P, fit.LeftByPoses.Directions, fit.Result);
    fit.Run.State = state;
    fit.Run.State.Model = all;
}

}  // namespace

bool HoldWhereMirrored(NormRun& fit, const NormToHold& norm, const NormToHold& squares) {
    const bool known = fit.Model.Mode != FitMode::Distance && fit.SeeksBest;
    const IterationState& state = fit.Run.State;
    if (!known || fit.Stops() || !state.Finite || NegativeScaleIsWanted(fit.Choice)) return true;
    if (IsAffine(fit.Model)) return true;
    const int redundancy = Redundancy(fit);
    if (redundancy <= 0 || FloatingGroups(fit.Model).empty() || !EndsMirrored(fit)) return true;
    const double scale = SizeRatioHere(fit);
    if (!(scale > 0) || !std::isfinite(scale)) return true;
    const double mirrored = norm.Objective(fit), rounding = RoundingOf(fit, norm);
    std::optional<Handedness> told;
    const AsGood isAsGood = [&](double proper) {
        return !MirrorMayStand(proper, mirrored, rounding, redundancy, fit.Kind, [&] {
            if (!told) told = HandednessHere(fit);
            return *told;
        });
    };
    std::optional<HeldFit> held;
    for (const Groups& groups : {LooseGroups(fit), FloatingGroups(fit.Model)}) {
        if (told && told->Sure) break;  // it is mirrored: one look has been enough
        const auto look = [&] {
            if (!held && !fit.Abandoned() && !fit.Stops())
                held = BestHeldFit(fit, norm, squares, groups, scale, isAsGood);
        };
        look();
        if (!StartsAreOwn(fit.Choice)) continue;
        // A start value of the user's own may say where a scale is to be held, or may be far from all that
        // fits.
        const OwnStarts own = std::exchange(fit.Choice.Own, OwnStarts{});
        look();
        fit.Choice.Own = own;
    }
    if (held && !fit.Abandoned() && !fit.Stops()) Take(held->Run, fit);
    return !fit.Abandoned();
}

}  // namespace corvinade::fit
