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
#include "engine/linear_optimum.h"
#include "engine/moments.h"
#include "engine/normal_equations.h"

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr int kMostLinearisations = 60;
constexpr int kMostHalvings = 40;
constexpr double kNear = 1e-6;    // of an objective, above the optimum
constexpr double kAlike = 1e-13;  // sums of residuals that rounding alone may tell apart

// What the two norms differ in.
struct ExactNorm {
    const char* Panel;
    double (*Objective)(const LinearRows&);
    int (*Optimum)(LinearRows, std::vector<double>&, Holding&, const MayGoOn&);
    double (*LowerBound)(const LinearRows&, const Holding&);
};

using Parameters = std::array<double, kParameterEnd>;

Parameters JobParameters() {
    Parameters parameters{};
    for (int k = kTraX; k < kParameterEnd; ++k) parameters[At(k)] = ParameterValue(Job, k);
    return parameters;
}

void SetJobParameters(const Parameters& parameters) {
    for (int k = kTraX; k < kParameterEnd; ++k) ParameterValue(Job, k) = parameters[At(k)];
}

// The state of one run.
struct ExactRun {
    NormFit& Fit;
    const ExactNorm& Kind;
    const FitModel& Model = Adjustment.Model;
    std::uint64_t JobGeneration = Run.JobGeneration;
    Linearisation Place;
    LinearRows Rows;
    std::vector<std::vector<double>> T;
    Holding Held;
    bool AllTold = true;  // the points tell all unknowns apart
    bool Stopped = false;
    double Rounding = 0;  // mm; a shorter way of the points cannot be told from none

    bool JobChanged() const { return Run.JobGeneration != JobGeneration; }

    void Linearise() {
        Place = ::Linearise(Model, Fit.Points);
        AllTold = MakeLinearRows(Fit.Points, Model, Place, Rows, T);
    }

    bool MayGoOn() {
        YieldToEvents();
        Stopped = Stopped || IsTrue(Run.StopRequested) || JobChanged();
        return !Stopped;
    }

    // The corrections of the parameters that y stands for here.
    Column Corrections(const std::vector<double>& y) const {
        Column x(At(Model.Unknowns) + 1);
        for (std::size_t c = 0; c < T.size(); ++c)
            for (int i = 1; i <= Model.Unknowns; ++i) x[At(i)] += y[c] * T[c][At(i - 1)];
        FromCentre(Model, Place, x);
        return x;
    }

    // One step to the optimum of the linear problem, halved until it makes nothing worse. Returns by how much
    // the rows have moved at most, mm; 0 when no step is better.
    double Improve() {
        std::vector<double> y;
        Norm.Exchanges += Kind.Optimum(Rows, y, Held, [this] { return MayGoOn(); });
        if (JobChanged()) return 0;
        const Parameters before = JobParameters();
        const double objective = Kind.Objective(Rows);
        LinearRows way = Rows;
        way.v.assign(way.v.size(), 0);
        way.Move(y.data());
        const double length = LargestOf(way);
        // The bound of the optimum belongs to this very linearisation, so what is near enough stays here.
        if (length <= Rounding) return 0;
        // Of the place that the step begins at, for what is tried is linearised at its own.
        Column x = Corrections(y);
        double share = 1;
        for (int halvings = 0; halvings < kMostHalvings; ++halvings, share /= 2) {
            AddCorrections(Model, x);
            Linearise();
            if (Kind.Objective(Rows) <= objective * (1 + kAlike)) return share * length;
            SetJobParameters(before);
            for (double& correction : x) correction /= 2;
        }
        Linearise();
        return 0;
    }

    // False when the job's points were replaced meanwhile.
    bool Go() {
        Rounding = 1e-13 * Size() + 2e-15 * FarOut();
        Linearise();
        bool ended = false;
        while (!ended && Norm.Linearisations < kMostLinearisations && !Stopped) {
            ++Norm.Linearisations;
            const double moved = Improve();
            if (JobChanged()) return false;
            ended = !Stopped && moved == 0;
            ShowStep();
        }
        const double objective = Kind.Objective(Rows), bound = Kind.LowerBound(Rows, Held);
        Norm.AboveOptimum =
            AllTold ? std::max(0.0, objective - bound) : std::numeric_limits<double>::infinity();
        // A way that ends far above its bound has lost itself. Where an unknown is open there is no bound.
        const bool lost = AllTold && Norm.AboveOptimum > kNear * objective + Rounding * Rows.Used;
        Norm.Converged = ended && !lost;
        Residuals(Fit.Points, Model, Place, Column(At(Model.Unknowns) + 1), Fit.v);
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
        SetStatus(7, FormatNumber(Kind.Objective(Rows) * Units.LengthFactor, Units.FmtLength));
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
    const ExactNorm kind{"L1 optimum: ", SumOf, LeastSum, LowerBoundOfSum};
    ExactRun run{.Fit = fit, .Kind = kind};
    if (!run.Go()) return false;
    for (int i = 1; i <= fit.n; ++i)
        if (fit.P[At(i)] != 0) fit.P[At(i)] = ResidualWeight(fit.v[At(i)]);
    return true;
}

bool RunOnToLeastLargest(NormFit& fit) {
    if (!Begins()) return true;
    const ExactNorm kind{"Loo optimum: ", LargestOf, LeastLargest, LowerBoundOfLargest};
    ExactRun run{.Fit = fit, .Kind = kind};
    return run.Go();
}
