// The way from the result of a norm's loop to the norm's true optimum.
#include "engine/exact_norms.h"

#include <algorithm>
#include <cmath>

#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/corrections.h"
#include "engine/exact_place.h"
#include "engine/exact_starts.h"
#include "engine/linear_optimum.h"
#include "engine/moments.h"
#include "engine/normal_equations.h"
#include "engine/small_svd.h"
#include "engine/smooth_norms.h"

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr int kMostLinearisations = 20;  // of a way by exchanges; what has not ended then goes the smooth way
constexpr int kMostHalvings = 40;
constexpr double kNear = 1e-6;    // of an objective, above the optimum
constexpr double kTight = 1e-9;   // what exchanges leave that is more is tried the smooth way too
constexpr double kAlike = 1e-13;  // sums of residuals that rounding alone may tell apart

// What the two norms differ in.
struct ExactNorm {
    const char* Panel;
    double (*Objective)(const LinearRows&);
    int (*Optimum)(LinearRows, std::vector<double>&, Holding&, const MayGoOn&);
    double (*LowerBound)(const LinearRows&, const Holding&);
    SmoothOptimum (*Follow)(ExactPlace&, const MayGoOn&);
    double (*SmoothBound)(const LinearRows&, const std::vector<double>&);
};

// Where a way has ended.
struct WayEnd {
    ParameterArray Parameters{};
    double Objective = std::numeric_limits<double>::infinity();
    double Above = std::numeric_limits<double>::infinity();
    bool Ended = false;  // nothing moves any more, and the bound is near
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
        const ParameterArray before = JobParameters();
        const double objective = Objective();
        LinearRows way = Place.Rows;
        way.v.assign(way.v.size(), 0);
        way.Move(y.data());
        const double length = LargestOf(way);
        // The bound of the optimum belongs to this very linearisation, so what is near enough stays here.
        if (length <= Rounding) return 0;
        // Of the place that the step begins at, for what is tried is linearised at its own.
        Column x = Place.Corrections(y);
        double share = 1;
        for (int halvings = 0; halvings < kMostHalvings; ++halvings, share /= 2) {
            AddCorrections(Place.Model, x);
            Place.Linearise();
            if (Objective() <= objective * (1 + kAlike)) return share * length;
            SetJobParameters(before);
            for (double& correction : x) correction /= 2;
        }
        Place.Linearise();
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

    WayEnd EndHere(double bound, bool ended) const {
        WayEnd end{.Parameters = JobParameters(), .Objective = Objective()};
        // Where an unknown is open there is no bound.
        if (Place.AllTold) end.Above = std::max(0.0, end.Objective - bound);
        // A way that ends far above its bound has lost itself.
        end.Ended =
            ended && (!Place.AllTold || end.Above <= kNear * end.Objective + Rounding * Place.Rows.Used);
        return end;
    }

    // By exchanges, and where these do not end the smooth way, whose end exchanges may bring to the last
    // digit. Only what is no worse is kept.
    WayEnd FromHere() {
        WayEnd best = ByExchanges(kMostLinearisations);
        const bool tight = best.Ended && best.Above <= kTight * best.Objective + Rounding * Place.Rows.Used;
        if (tight || Stopped || !Place.AllTold) return best;
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
        WayEnd best = FromHere();
        if (JobChanged()) return false;
        const bool linear = IsLinear(Place.Model);
        Norm.Starts = 1;
        if (!(linear && best.Ended) && Place.AllTold && !TryOtherStarts(best)) return false;
        SetJobParameters(best.Parameters);
        Place.Linearise();
        Norm.BoundOfAll = linear && static_cast<int>(Place.T.size()) == Place.Model.Unknowns;
        Norm.AboveOptimum = best.Above;
        Norm.Converged = best.Ended && !Stopped;
        Residuals(Fit.Points, Place.Model, Place.Here, Column(At(Place.Model.Unknowns) + 1), Fit.v);
        return true;
    }

    // From places that the points themselves propose, and from places around the best one, as far off as the
    // residuals are large: another minimum that noise has made is about as near. As many as the rows leave
    // time for, and always the same ones.
    bool TryOtherStarts(WayEnd& best) {
        constexpr int kMostStarts = 16, kByPoints = 5, kRowsInAll = 25000;
        const int starts = std::min(kMostStarts, kRowsInAll / std::max(1, Place.Rows.Used));
        const std::vector<ParameterArray> proposed =
            StartsByPoints(Fit, Place, Kind.Objective, std::min(kByPoints, starts - 1));
        const bool mirrored = Mirrored(best.Parameters);
        std::uint64_t seed = 1;
        for (; Norm.Starts < starts && !Stopped; ++Norm.Starts) {
            const std::size_t k = At(Norm.Starts - 1);
            SetJobParameters(k < proposed.size() ? proposed[k] : best.Parameters);
            Place.Linearise();
            if (k >= proposed.size() && !StepAside(seed)) break;
            const WayEnd end = FromHere();
            if (JobChanged()) return false;
            if (!Stopped && IsBetter(end, best) && (mirrored || !Mirrored(end.Parameters))) best = end;
        }
        return true;
    }

    // False where there are no residuals that tell how far.
    bool StepAside(std::uint64_t& seed) {
        double square = 0;
        for (int i = 0; i < Place.Rows.Count(); ++i)
            if (Place.Rows.InUse[At(i)] != 0) square += Place.Rows.v[At(i)] * Place.Rows.v[At(i)];
        if (!(square > 0)) return false;
        std::vector<double> y(Place.T.size());
        for (double& entry : y) {
            seed = seed * 6364136223846793005ULL + 1442695040888963407ULL;
            entry = std::sqrt(square) * (static_cast<double>(seed >> 11U) / 4503599627370496.0 - 1);
        }
        Place.Step(y);
        return true;
    }

    bool Mirrored(const ParameterArray& parameters) {
        SetJobParameters(parameters);
        return Determinant3(::Linearise(Place.Model, Fit.Points).M) < 0;
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

bool RunOnToLeastSum(NormFit& fit) {
    if (!Begins()) return true;
    const ExactNorm kind{"L1 optimum: ", SumOf, LeastSum, LowerBoundOfSum, FollowLeastSum, BoundOfSum};
    ExactRun run{.Fit = fit, .Kind = kind};
    if (!run.Go()) return false;
    for (int i = 1; i <= fit.n; ++i)
        if (fit.P[At(i)] != 0) fit.P[At(i)] = ResidualWeight(fit.v[At(i)]);
    return true;
}

bool RunOnToLeastLargest(NormFit& fit) {
    if (!Begins()) return true;
    const ExactNorm kind{"Loo optimum: ",     LargestOf,          LeastLargest,
                         LowerBoundOfLargest, FollowLeastLargest, BoundOfLargest};
    ExactRun run{.Fit = fit, .Kind = kind};
    return run.Go();
}
