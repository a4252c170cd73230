// The way from the result of a norm's loop to the norm's true optimum.
#include "engine/exact_norms.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "core/controller.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/corrections.h"
#include "engine/design.h"
#include "engine/exact_place.h"
#include "engine/exact_starts.h"
#include "engine/fit_outcome.h"
#include "engine/mirror.h"
#include "engine/smooth_norms.h"
#include "fit/linear_optimum.h"
#include "fit/moments.h"
#include "fit/normal_equations.h"
#include "fit/small_svd.h"

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

// What the two norms differ in.
struct ExactNorm {
    const char* Panel;
    const char* Value;  // what it makes least
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
    NormFit& Fit;
    const ExactNorm& Kind;
    ExactPlace Place{Fit.Points, Adjustment.Model};
    std::uint64_t JobGeneration = Run.JobGeneration;
    Holding Held;
    bool Stopped = false;
    double Rounding = 0;  // mm; a shorter way of the points cannot be told from none

    bool JobChanged() const { return Run.JobGeneration != JobGeneration; }

    bool MayGoOn() {
        YieldToEvents();
        Stopped = Stopped || IsTrue(Run.StopRequested) || JobChanged();
        return !Stopped;
    }
    double Objective() const { return Kind.Objective(Place.Rows); }

    // One step to the optimum of the linear problem, halved until it makes nothing worse. Returns by how much
    // the rows have moved at most, mm; 0 when no step is better.
    double Improve() {
        std::vector<double> y;
        Norm.Exchanges += Kind.Optimum(Place.Rows, y, Held, [this] { return MayGoOn(); });
        if (JobChanged()) return 0;
        const Parameters before = ParametersOf(Job);
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
            PutParameters(before, Job);
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
            ++Norm.Linearisations;
            const double moved = Improve();
            if (JobChanged()) return {};
            ended = !Stopped && moved == 0;
            ShowStep();
        }
        return EndHere(Kind.LowerBound(Place.Rows, Held), ended);
    }

    // The bound is that of what the points tell apart; what they leave open moves no row.
    WayEnd EndHere(double bound, bool ended) const {
        WayEnd end{.Values = ParametersOf(Job), .Objective = Objective()};
        end.Above = std::max(0.0, end.Objective - bound);
        // A way that ends far above its bound has lost itself.
        end.Ended = ended && end.Above <= kNear * end.Objective + Rounding * Place.Rows.Used;
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
        Norm.Linearisations += smooth.Steps;
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
        if (JobChanged()) return false;
        const bool linear = IsLinear(Place.Model);
        Norm.Starts = 1;
        Ends ends{first};
        if (!(linear && first.Ended) && !TryOtherStarts(ends)) return false;
        WayEnd best = Chosen(ends, first);
        if (!GoOn(best)) return false;
        PutParameters(best.Values, Job);
        Place.Linearise();
        const bool told = Place.PointsTellAll();
        Norm.BoundOfAll = linear && told && static_cast<int>(Place.T.size()) == Place.Model.Unknowns;
        Norm.AboveOptimum = told ? best.Above : std::numeric_limits<double>::infinity();
        Norm.Converged = best.Ended && !Stopped;
        const Linearisation at = ::Linearise(Place.Model, Fit.Points);
        Residuals(Fit.Points, Place.Model, at, Column(At(Place.Model.Unknowns) + 1), Fit.v);
        return true;
    }

    // The best end may be a way that has come to nothing: it goes on from places nearer and nearer to it.
    bool GoOn(WayEnd& best) {
        constexpr int kRounds = 4;
        double share = 0.1;
        std::uint64_t seed = 1;
        for (int round = 0; round < kRounds && !best.Ended && !Stopped; ++round, share /= 10) {
            PutParameters(best.Values, Job);
            Place.Linearise();
            if (!StepAside(seed, share)) return true;
            const WayEnd end = FromHere();
            if (JobChanged()) return false;
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
    WayEnd Chosen(const Ends& ends, const WayEnd& first) const {
        const bool wanted = NegativeScaleIsWanted(Fit.Choice);
        WayEnd best = ends.Proper ? *ends.Proper : *ends.Mirrored;
        if (ends.Proper && ends.Mirrored) {
            const WayEnd &proper = *ends.Proper, &mirrored = *ends.Mirrored;
            const int redundancy = Place.Rows.Used - Place.Model.Unknowns;
            const bool real = wanted ? first.Mirrored || IsBetter(mirrored, proper)
                                     : MirrorIsReal(proper.Objective, mirrored.Objective,
                                                    Rounding * Place.Rows.Used, redundancy, 1);
            best = real ? mirrored : proper;
        }
        const bool otherSide = first.Mirrored && !best.Mirrored;
        const bool less = best.Objective < first.Objective * (1 - kTold) - Rounding * Place.Rows.Used;
        if (Stopped || !(less || otherSide)) return best;
        if (first.Ended && StartsAreOwn(Fit.Choice) && !otherSide) {
            AddNote(NoteCode::BetterElsewhere, "Another optimum has a smaller " + std::string(Kind.Value) +
                                                   " (" + Times(first.Objective, best.Objective) +
                                                   "); the start values that were given keep this one");
            return first;
        }
        AddNote(
            NoteCode::BetterStart,
            "The way from the weightings ended in an optimum that is not the best (" +
                (less ? "its " + std::string(Kind.Value) + " was " + Times(first.Objective, best.Objective)
                      : std::string("a mirrored one that fits no better")) +
                "); the best one of " + std::to_string(Norm.Starts) + " starts is taken");
        return best;
    }

    static std::string Times(double more, double less) {
        if (!(less > 0) || !(more / less < 1e6)) return "larger by far";
        return FormatNumber(more / less, "0.000") + " times as large";
    }

    // From places that the points themselves propose, and from places around the best one, as far off as the
    // residuals are large: another minimum that noise has made is about as near. As many as the rows leave
    // time for, and always the same ones.
    bool TryOtherStarts(Ends& ends) {
        constexpr int kMostStarts = 14, kAside = 4, kRowsInAll = 25000;
        const int starts = std::min(kMostStarts, kRowsInAll / std::max(1, Place.Rows.Used));
        const std::vector<Parameters> proposed = BestProposed(starts - 1 - std::min(starts / 3, kAside));
        if (JobChanged()) return false;
        std::uint64_t seed = 1;
        for (; Norm.Starts < starts && !Stopped; ++Norm.Starts) {
            const std::size_t k = At(Norm.Starts - 1);
            const bool aside = k >= proposed.size();
            PutParameters(!aside ? proposed[k] : (ends.Proper ? *ends.Proper : *ends.Mirrored).Values, Job);
            Place.Linearise();
            if (aside && !StepAside(seed, 1)) break;
            const WayEnd end = FromHere();
            if (JobChanged()) return false;
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
            PutParameters(parameters, Job);
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
            PutParameters(proposal.Values, Job);
            const WayEnd end = ByExchanges(kFew);
            if (JobChanged()) return {};
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

    void ShowStep() const {
        SetStatus(6, Kind.Panel + std::to_string(Norm.Linearisations));
        SetStatus(7, FormatNumber(Objective() * Units.LengthFactor, Units.FmtLength));
    }

    // Models whose residuals are linear in their unknowns, or in the nine elements of a matrix that twelve
    // unknowns make up: there is one minimum then.
    static bool IsLinear(const FitModel& model) {
        const auto floats = [&model](int k) { return model.UnknownOf[At(k)] != 0; };
        bool angles = false, affine = !floats(kScaleXYZ);
        for (int k = kTraX; k <= kAngleZtoXY; ++k) {
            const bool angle = (k >= kRotX && k <= kRotZ) || (k >= kAngleXY && k <= kAngleZtoXY);
            angles = angles || (angle && floats(k));
            affine = affine && (floats(k) || k == kScaleXYZ);
        }
        return !angles || affine;
    }
};

// What a run needs to begin at: the loop's result in the plain model.
bool Begins() {
    if (Adjustment.Model.Mode == FitMode::Coincide) return Adjustment.Finite && !IsTrue(Run.StopRequested);
    Norm.Converged = false;
    ShowMessage(
        "The true optimum of L1 and L-infinity is found for points that are to coincide, not for the "
        "distance R_Dist and the tool vector. The result is that of the weightings.");
    return false;
}

}  // namespace

namespace {

constexpr ExactNorm kLeastSum{"L1 optimum: ",  "sum of deviations", SumOf,     LeastSum,
                              LowerBoundOfSum, FollowLeastSum,      BoundOfSum};
constexpr ExactNorm kLeastLargest{"Loo optimum: ",     "largest deviation", LargestOf,     LeastLargest,
                                  LowerBoundOfLargest, FollowLeastLargest,  BoundOfLargest};

std::optional<Parameters> Seek(NormFit& fit, const ExactNorm& kind) {
    constexpr int kMostPoints = 1000;
    if (Adjustment.Model.Mode != FitMode::Coincide || fit.Points.Count > kMostPoints) return {};
    const FitOutcome before(fit);
    const NormRecord record = Norm;
    const std::vector<Note> notes = Notes.List;
    ExactRun run{.Fit = fit, .Kind = kind};
    const bool done = run.Go();
    if (!done) {
        Adjustment.JobChanged = true;
        return {};
    }
    const Parameters found = ParametersOf(Job);
    before.PutBack(fit);
    Norm = record;
    Notes.List = notes;
    if (run.Stopped) return {};
    return found;
}

}  // namespace

bool RunOnToLeastSum(NormFit& fit) {
    if (!Begins()) return true;
    ExactRun run{.Fit = fit, .Kind = kLeastSum};
    if (!run.Go()) return false;
    for (int i = 1; i <= fit.n; ++i)
        if (fit.P[At(i)] != 0) fit.P[At(i)] = ResidualWeight(fit.v[At(i)]);
    return true;
}

bool RunOnToLeastLargest(NormFit& fit) {
    if (!Begins()) return true;
    ExactRun run{.Fit = fit, .Kind = kLeastLargest};
    return run.Go();
}

std::optional<Parameters> SeekLeastSum(NormFit& fit) {
    return Seek(fit, kLeastSum);
}

std::optional<Parameters> SeekLeastLargest(NormFit& fit) {
    return Seek(fit, kLeastLargest);
}
