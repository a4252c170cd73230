// The way from the result of a norm's loop to the norm's true optimum.
#include "fit/exact_norms.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "fit/corrections.h"
#include "fit/exact_place.h"
#include "fit/exact_starts.h"
#include "fit/handedness.h"
#include "fit/linear_optimum.h"
#include "fit/mirror.h"
#include "fit/moments.h"
#include "fit/normal_equations.h"
#include "fit/norms.h"
#include "fit/require.h"
#include "fit/small_svd.h"
#include "fit/smooth_norms.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr int kMostLinearisations = 20;  // of a way by exchanges; what has not ended then goes the smooth way
constexpr int kMostHalvings = 40;
constexpr double kNear = 1e-5;    // of an objective, above the optimum
constexpr double kTold = 1e-6;    // less of an objective that a note is worth
constexpr double kTight = 1e-9;   // what exchanges leave that is more is tried the smooth way too
constexpr double kAlike = 1e-13;  // sums of residuals that rounding alone may tell apart

// Models whose residuals are linear in their unknowns, or in the nine elements of a matrix that twelve
// unknowns make up: there is one minimum then.
bool IsLinear(const FitModel& model) {
    for (const int k : {kRotX, kRotY, kRotZ, kAngleXY, kAzimuth, kAngleZtoXY})
        if (model.UnknownOf[At(k)] != 0) return IsAffine(model);
    return true;
}

// What the norms differ in.
struct ExactNorm {
    FitNorm Norm;
    bool Reweighs;  // the weights left are those of the last residuals, and not those of the loop
    double (*Objective)(const LinearRows&);
    int (*Optimum)(LinearRows, std::vector<double>&, Holding&, const MayGoOn&);
    double (*LowerBound)(const LinearRows&, const Holding&);
    SmoothOptimum (*Follow)(ExactPlace&, const MayGoOn&);
    double (*SmoothBound)(const LinearRows&, const std::vector<double>&);
};

// Where a way has ended.
struct WayEnd {
    Parameters Values{};
    double Objective = std::numeric_limits<double>::infinity();
    double Above = std::numeric_limits<double>::infinity();
    bool Ended = false;  // nothing moves any more, and the bound is near
    bool Mirrored = false;
};

// The state of one run.
struct ExactRun {
    NormRun& Fit;
    const ExactNorm& Kind;
    ExactPlace Place{Fit.Run, Fit.Points, Fit.Model};
    Holding Held;
    bool Stopped = false;
    double Rounding = 0;  // mm; a shorter way of the points cannot be told from none

    bool Abandoned() const { return Fit.Abandoned(); }

    bool MayGoOn() {
        const bool goesOn = Fit.Run.Tell(FitStep::Searching);
        Stopped = Stopped || Fit.Stops() || !goesOn;
        return !Stopped;
    }
    double Objective() const { return Kind.Objective(Place.Rows); }

    // One step to the optimum of the linear problem, halved until it makes nothing worse. Returns by how much
    // the rows have moved at most, mm; 0 when no step is better.
    double Improve() {
        std::vector<double> y;
        Fit.Run.Norm.Exchanges += Kind.Optimum(Place.Rows, y, Held, [this] { return MayGoOn(); });
        if (Abandoned()) return 0;
        const Parameters before = Fit.Run.Now;
        const double objective = Objective();
        LinearRows way = Place.Rows;
        way.v.assign(way.v.size(), 0);
        way.Move(y.data());
        const double length = LargestOf(way);
        // The bound of the optimum belongs to this very linearisation, so what is near enough stays here.
        if (length <= Rounding) return 0;
        double share = 1;
        for (int halvings = 0; halvings < kMostHalvings; ++halvings, share /= 2) {
            Place.Step(y);
            if (Objective() <= objective * (1 + kAlike)) return share * length;
            Fit.Run.Now = before;
            Place.Linearise();
            for (double& entry : y) entry /= 2;
        }
        return 0;
    }

    // By exchanges, from the job's parameters on.
    WayEnd ByExchanges(int most) {
        Held = {};
        Place.Linearise();
        bool ended = false;
        for (int k = 0; k < most && !ended && !Stopped; ++k) {
            ++Fit.Run.Norm.Linearisations;
            const double moved = Improve();
            if (Abandoned()) return {};
            ended = !Stopped && moved == 0;
            ShowStep();
        }
        return EndHere(Kind.LowerBound(Place.Rows, Held), ended);
    }

    // The bound is that of what the points tell apart; what they leave open moves no row.
    WayEnd EndHere(double bound, bool ended) const {
        WayEnd end{.Values = Fit.Run.Now, .Objective = Objective()};
        end.Above = std::max(0.0, end.Objective - bound);
        // A way that ends far above its bound has lost itself; one that is at its bound has arrived, whether
        // or not something still moves.
        const double rounding = Rounding * Place.Rows.Used;
        end.Ended = end.Above <= kTight * end.Objective + rounding ||
                    (ended && end.Above <= kNear * end.Objective + rounding);
        end.Mirrored = Determinant3(Place.Here.M) < 0;
        return end;
    }

    // By exchanges, and where these do not end the smooth way, whose end exchanges may bring to the last
    // digit. Only what is no worse is kept.
    WayEnd FromHere() {
        WayEnd best = ByExchanges(kMostLinearisations);
        const bool tight = best.Ended && best.Above <= kTight * best.Objective + Rounding * Place.Rows.Used;
        if (tight || Stopped) return best;
        const SmoothOptimum smooth = Kind.Follow(Place, [this] { return MayGoOn(); });
        Fit.Run.Norm.Linearisations += smooth.Steps;
        ShowStep();
        if (Stopped) return best;
        const WayEnd end = EndHere(Kind.SmoothBound(Place.Rows, smooth.Weights), smooth.Ended);
        if (IsBetter(end, best)) best = end;
        if (!end.Ended) return best;
        constexpr int kFew = 4;
        const WayEnd last = ByExchanges(kFew);
        return IsBetter(last, best) ? last : best;
    }

    // Less, or as little and nearer to its bound.
    bool IsBetter(const WayEnd& a, const WayEnd& b) const {
        const double alike = 1e-9 * std::min(a.Objective, b.Objective) + Rounding * Place.Rows.Used;
        if (std::fabs(a.Objective - b.Objective) > alike) return a.Objective < b.Objective;
        return a.Ended != b.Ended ? a.Ended : a.Above < b.Above;
    }

    // False when the job's points were replaced meanwhile.
    bool Go() {
        Rounding = 1e-13 * Size() + 2e-15 * FarOut();
        const WayEnd first = FromHere();
        if (Abandoned()) return false;
        const bool linear = IsLinear(Place.Model);
        Fit.Run.Norm.Starts = 1;
        Ends ends{first};
        if (!(linear && first.Ended) && !TryOtherStarts(ends)) return false;
        WayEnd best = Chosen(ends, first);
        if (!GoOn(best)) return false;
        Fit.Run.Now = best.Values;
        Place.Linearise();
        const bool told = Place.PointsTellAll();
        Fit.Run.Norm.BoundOfAll = linear && told && static_cast<int>(Place.T.size()) == Place.Model.Unknowns;
        Fit.Run.Norm.AboveOptimum = told ? best.Above : std::numeric_limits<double>::infinity();
        Fit.Run.Norm.Converged = best.Ended && !Stopped;
        const Linearisation at = fit::Linearise(Place.Model, Fit.Run.Now, Fit.Points, Fit.Run.Chain);
        Residuals(Fit.Points, Place.Model, at, Column(At(Place.Model.Unknowns) + 1), Fit.Result.v);
        return true;
    }

    // The best end may be a way that has come to nothing: it goes on from places nearer and nearer to it.
    bool GoOn(WayEnd& best) {
        constexpr int kRounds = 4;
        double share = 0.1;
        std::uint64_t seed = 1;
        for (int round = 0; round < kRounds && !best.Ended && !Stopped; ++round, share /= 10) {
            Fit.Run.Now = best.Values;
            Place.Linearise();
            if (!StepAside(seed, share)) return true;
            const WayEnd end = FromHere();
            if (Abandoned()) return false;
            if (!Stopped && end.Mirrored == best.Mirrored && IsBetter(end, best)) best = end;
        }
        return true;
    }

    // The best end on each side of the mirror.
    struct Ends {
        std::optional<WayEnd> Proper, Mirrored;

        explicit Ends(const WayEnd& first) { Of(first) = first; }
        std::optional<WayEnd>& Of(const WayEnd& end) { return end.Mirrored ? Mirrored : Proper; }
    };

    // The one of both sides that is wanted. What begins at values of the user's own stays there, unless it
    // is mirrored for no reason.
    WayEnd Chosen(const Ends& ends, const WayEnd& first) {
        const bool wanted = NegativeScaleIsWanted(Fit.Choice);
        WayEnd best = ends.Proper ? *ends.Proper : *ends.Mirrored;
        if (ends.Proper && ends.Mirrored) {
            const WayEnd &proper = *ends.Proper, &mirrored = *ends.Mirrored;
            const int redundancy = Place.Rows.Used - Place.Model.Unknowns;
            const auto told = [&] {
                const Linearisation at =
                    fit::Linearise(Place.Model, mirrored.Values, Fit.Points, Fit.Run.Chain);
                return HandednessOf(Fit.Points, at.M, at.Shift, Fit.Kind, Place.Model.Unknowns,
                                    SizeRatio(Fit.Points, Fit.Kind));
            };
            const bool real = Fit.ProperAlone ? false
                              : wanted
                                  ? first.Mirrored || IsBetter(mirrored, proper)
                                  : MirrorMayStand(proper.Objective, mirrored.Objective,
                                                   Rounding * Place.Rows.Used, redundancy, Fit.Kind, told) ||
                                        NothingProperIsBeside(mirrored, proper.Objective);
            best = real ? mirrored : proper;
        }
        const bool otherSide = first.Mirrored && !best.Mirrored;
        const bool less = best.Objective < first.Objective * (1 - kTold) - Rounding * Place.Rows.Used;
        if (Stopped || !(less || otherSide)) return best;
        const double times = TimesAsMuch(first.Objective, best.Objective);
        if (first.Ended && StartsAreOwn(Fit.Choice) && !otherSide) {
            Fit.Remarks.push_back({.Kind = FitRemark::What::OtherOptimumIsLess, .Times = times});
            return first;
        }
        Fit.Remarks.push_back({.Kind = FitRemark::What::OptimumFromOtherStart,
                               .Times = less ? times : 0,
                               .Count = Fit.Run.Norm.Starts});
        return best;
    }

    // The way from a mirrored optimum to the proper side leads through a scale of 0. Where less is left there
    // than at the proper optimum, that one is another solution far off: beside the mirrored one there is
    // none, for all that are nearer and nearer to the mirror are better and better.
    bool NothingProperIsBeside(const WayEnd& mirrored, double proper) {
        double least = std::numeric_limits<double>::infinity();
        for (int k = kScaleX; k <= kScaleZ; ++k) {
            if (Place.Model.UnknownOf[At(k)] == 0) continue;
            Fit.Run.Now = mirrored.Values;
            Fit.Run.Now[k] = 0;
            Place.Linearise();
            least = std::fmin(least, Objective());
        }
        return least < proper * (1 - kTold);
    }

    // From places that the points themselves propose, and from places around the best one, as far off as the
    // residuals are large: another minimum that noise has made is about as near. As many as the rows leave
    // time for, and always the same ones.
    bool TryOtherStarts(Ends& ends) {
        constexpr int kMostStarts = 14, kAside = 4, kRowsInAll = 25000;
        const int starts = std::min(kMostStarts, kRowsInAll / std::max(1, Place.Rows.Used));
        const std::vector<Parameters> proposed = BestProposed(starts - 1 - std::min(starts / 3, kAside));
        if (Abandoned()) return false;
        std::uint64_t seed = 1;
        for (; Fit.Run.Norm.Starts < starts && !Stopped; ++Fit.Run.Norm.Starts) {
            const std::size_t k = At(Fit.Run.Norm.Starts - 1);
            const bool aside = k >= proposed.size();
            Fit.Run.Now = !aside ? proposed[k] : (ends.Proper ? *ends.Proper : *ends.Mirrored).Values;
            Place.Linearise();
            if (aside && !StepAside(seed, 1)) break;
            const WayEnd end = FromHere();
            if (Abandoned()) return false;
            std::optional<WayEnd>& best = ends.Of(end);
            if (!Stopped && (!best || IsBetter(end, *best))) best = end;
        }
        return true;
    }

    // Of the places that the points propose those that a few exchanges bring down farthest, half of them on
    // each side of the mirror if there are both.
    std::vector<Parameters> BestProposed(int most) {
        constexpr int kMostTried = 160, kFollowed = 32, kRowsInAll = 25000, kFew = 2;
        struct Proposal {
            Parameters Values{};
            double Objective = 0;
            bool Mirrored = false;
        };
        std::vector<Proposal> tried;
        const auto take = [&](const Parameters& parameters) {
            Fit.Run.Now = parameters;
            Place.Linearise();
            if (!std::isfinite(Objective())) return;
            tried.push_back({parameters, Objective(), Determinant3(Place.Here.M) < 0});
        };
        const auto sort = [&](std::size_t left) {
            std::stable_sort(tried.begin(), tried.end(),
                             [](const auto& a, const auto& b) { return a.Objective < b.Objective; });
            if (tried.size() > left) tried.resize(left);
        };
        const int rows = std::max(1, Place.Rows.Used);
        for (const Parameters& parameters :
             StartsByPoints(Fit, Place, std::min(kMostTried, 4 * kRowsInAll / rows)))
            take(parameters);
        sort(At(std::min(kFollowed, kRowsInAll / rows)));
        for (Proposal& proposal : tried) {
            if (Stopped) break;
            Fit.Run.Now = proposal.Values;
            const WayEnd end = ByExchanges(kFew);
            if (Abandoned()) return {};
            proposal = {end.Values, end.Objective, end.Mirrored};
        }
        sort(tried.size());
        const bool both =
            std::any_of(tried.begin(), tried.end(), [](const Proposal& each) { return each.Mirrored; });
        std::vector<Parameters> chosen;
        for (const bool mirrored : {false, true}) {
            const int room = both && !mirrored ? (most + 1) / 2 : most;
            double last = -1;
            for (const Proposal& proposal : tried) {
                const bool same = last >= 0 && std::fabs(proposal.Objective - last) <= kTight * last;
                if (proposal.Mirrored != mirrored || same || static_cast<int>(chosen.size()) >= room)
                    continue;
                chosen.push_back(proposal.Values);
                last = proposal.Objective;
            }
        }
        return chosen;
    }

    // False where there are no residuals that tell how far.
    bool StepAside(std::uint64_t& seed, double share) {
        double square = 0;
        for (int i = 0; i < Place.Rows.Count(); ++i)
            if (Place.Rows.InUse[At(i)] != 0) square += Place.Rows.v[At(i)] * Place.Rows.v[At(i)];
        if (!(square > 0)) return false;
        std::vector<double> y(Place.T.size());
        for (double& entry : y) {
            seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
            entry = share * std::sqrt(square) * (static_cast<double>(seed >> 11U) / 4503599627370496.0 - 1);
        }
        Place.Step(y);
        return true;
    }

    // Of the coordinates about their centres.
    double Size() const {
        double size = 0;
        for (const auto& set : {&Fit.Points.Start, &Fit.Points.Target})
            for (const LaneArray& axis : *set)
                for (int k = 0; k < Fit.Points.Count; ++k) size = std::fmax(size, std::fabs(axis[At(k)]));
        return size;
    }

    // How far from the origins: the last digits of the shift and of turns about the origin are that coarse.
    double FarOut() const {
        double far = 0;
        for (int axis = 1; axis <= 3; ++axis)
            far = std::fmax(far, std::fmax(std::fabs(Fit.Points.StartCentre(axis)),
                                           std::fabs(Fit.Points.TargetCentre(axis))));
        return far;
    }

    void ShowStep() { Fit.Run.Tell(FitStep::OptimumStep, Objective()); }
};

constexpr ExactNorm kExactNorms[] = {
    {FitNorm::LeastSum, true, SumOf, LeastSum, LowerBoundOfSum, FollowLeastSum, BoundOfSum},
    {FitNorm::LeastLargest, false, LargestOf, LeastLargest, LowerBoundOfLargest, FollowLeastLargest,
     BoundOfLargest}};

const ExactNorm& KindOf(const NormRun& fit) {
    const auto kind = std::find_if(std::begin(kExactNorms), std::end(kExactNorms),
                                   [&fit](const ExactNorm& row) { return row.Norm == fit.Kind; });
    Require(kind != std::end(kExactNorms));
    return *kind;
}

}  // namespace

void RunOnToOptimum(NormRun& fit) {
    if (fit.Model.Mode != FitMode::Coincide) {
        fit.Run.Norm.Converged = false;
        return;
    }
    if (!fit.Run.State.Finite || fit.Stops()) return;
    ExactRun run{.Fit = fit, .Kind = KindOf(fit)};
    if (!run.Go() || !run.Kind.Reweighs) return;
    for (int i = 1; i <= fit.Rows(); ++i)
        if (fit.P[At(i)] != 0) fit.P[At(i)] = ResidualWeight(fit.Result.v[At(i)]);
}

std::optional<Parameters> SeekOptimum(NormRun& fit) {
    constexpr int kMostPoints = 1000;
    if (fit.Model.Mode != FitMode::Coincide || fit.Points.Count > kMostPoints) return {};
    const FitOutcome before(fit);
    const NormRecord record = fit.Run.Norm;
    const std::vector<FitRemark> remarks = fit.Remarks;
    ExactRun run{.Fit = fit, .Kind = KindOf(fit)};
    if (!run.Go()) return {};
    const Parameters found = fit.Run.Now;
    before.PutBack(fit);
    fit.Run.Norm = record;
    fit.Remarks = remarks;
    if (run.Stopped) return {};
    return found;
}

}  // namespace corvinade::fit
