// The norm of a calculation.
#include "engine/norms.h"

#include <algorithm>
#include <cmath>

#include "core/controller.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "engine/adjustment.h"
#include "engine/best_fit.h"
#include "engine/calculation.h"
#include "engine/exact_norms.h"
#include "engine/fit_outcome.h"
#include "engine/mirror.h"
#include "engine/monte_carlo.h"
#include "engine/start_values.h"

namespace {

// The iteration from the start values, held against the best fit. False when the job's points were replaced
// meanwhile.
bool SeekFromStart(NormFit& fit) {
    TakeStartValues(fit.Choice, TakeSeedPoints());
    IterateQuietly(fit.u, fit.n, fit.ParamText, fit.Q, fit.v, fit.P, fit.Points);
    return !Adjustment.JobChanged && SeekBestFit(fit);
}

// Where the start values lead astray they would do so in the runs as well.
bool ChooseBeginOfRuns(NormFit& fit) {
    const std::vector<Note> notes = Notes.List;
    if (!SeekFromStart(fit)) return false;
    Notes.List = notes;  // the fit behind the runs says it
    if (!Certificate.BeganAgain) return true;
    fit.RunsBegin = ParametersOf(Job);
    return true;
}

bool FitL2(NormFit& fit) {
    SetStatus(6, "...L2");
    SetStatus(7, "...L2");
    if (MonteCarloIsInTheFit() && (!ChooseBeginOfRuns(fit) || !RunMonteCarlo(fit))) return false;
    if (!SeekFromStart(fit)) return false;
    TellOfLimit();
    Norm.Converged = Adjustment.Converged;
    return true;
}

// What the loops of L1 and Loo differ in.
struct NormLoop {
    const char* Name;
    const char* Value;  // that it makes least
    bool (*Run)(NormFit&);
    bool (*RunOn)(NormFit&);
    std::optional<Parameters> (*Seek)(NormFit&);
};

// The message of the last inner fit's limit, or of a loop that has come to its limit although its last fit
// converged. The user's stop is no news.
void TellOfLoop(const NormLoop& loop) {
    if (Norm.Converged) return;
    if (!Adjustment.Converged) {
        Adjustment.LimitToldLater = false;
        return TellOfLimit();
    }
    if (IsTrue(Run.StopRequested) || Norm.RunOn) return;
    ShowMessage(std::string(loop.Name) + " stopped after " + PlainText(Norm.Iterations) +
                " Iterations, the " + loop.Value + " does not come to rest!");
}

// The loop's own rule does not know of fits that have not settled. What was run on to its optimum does not
// stand on them any more.
void NoteUnsettledFits(const NormLoop& loop) {
    if (Norm.Unsettled == 0 || (Norm.RunOn && Norm.Converged)) return;
    const bool one = Norm.Unsettled == 1;
    AddNote(NoteCode::UnsettledFits,
            PlainText(Norm.Unsettled) + (one ? " inner fit of " : " inner fits of ") + loop.Name +
                " ended at the limit of " + PlainText(Settings.MaxIteration) +
                " iterations and did not settle; the loop went on with " + (one ? "its" : "their") +
                " weights, and the " + loop.Value + " may be above the least one");
}

// The fits inside a loop show no messages of their own.
struct LimitToldByLoop {
    LimitToldByLoop() { Adjustment.LimitToldLater = true; }
    ~LimitToldByLoop() { Adjustment.LimitToldLater = false; }
    LimitToldByLoop(const LimitToldByLoop&) = delete;
    LimitToldByLoop& operator=(const LimitToldByLoop&) = delete;
};

EndOfFit EndHere(const NormFit& fit) {
    EndOfFit end{.Values = ParametersOf(Job)};
    for (int i = 1; i <= fit.n; ++i) {
        if (!CoordinateInUse(static_cast<std::size_t>(i))) continue;
        const double size = std::fabs(fit.v[static_cast<std::size_t>(i)]);
        end.Objective = Job.NormType == 1 ? end.Objective + size : std::max(end.Objective, size);
        end.Squares += size * size;
    }
    Linearise(Adjustment.Model, fit.Points);
    end.Mirrored = JobIsMirrored();
    return end;
}

// The first fit as the result, with the weights 0 and 1 that it stands on.
void TakeFirstFit(NormFit& fit) {
    fit.P = WeightsFromUseFlags(fit.n);
    PutParameters(fit.FirstOfLoop->Values, Job);
    SettleHere(fit.u, fit.n, fit.ParamText, fit.Q, fit.v, fit.P, fit.Points);
}

// Why the loop's end is no result; "" where it is one.
std::string Astray(const NormFit& fit) {
    constexpr double kWorse = 1e-6;
    const EndOfFit end = EndHere(fit), &first = *fit.FirstOfLoop;
    const double least = Norm.NormTolerance;
    if (!Adjustment.Finite) return "found no end";
    const auto rows = std::count_if(fit.P.begin() + 1, fit.P.end(), [](double w) { return w != 0; });
    if (end.Mirrored && !first.Mirrored && !NegativeScaleIsWanted(fit.Choice) &&
        !MirrorIsReal(first.Objective, end.Objective, least, static_cast<int>(rows) - fit.u, 1))
        return "ended in a mirrored solution that fits no better than noise explains";
    if (!(end.Objective <= first.Objective * (1 + kWorse) + least))
        return "ended in a solution that is worse than that of least squares";
    // What fits by less than the loop's own tolerance has no residuals to be weighted by.
    if (!Norm.Converged && first.Objective <= least) return "found no end";
    return "";
}

// Residuals as large as a hundredth of the target points' spread are no noise of a measurement: names are
// exchanged perhaps, or an axis is turned round. The weighted fits then have several minima, and it hangs on
// the seed points, that is on the order of the points, which of them the loop comes to.
bool FitsBadly(const NormFit& fit) {
    constexpr double kMostOfSpread = 1e-2;
    bool turns = false;
    for (int k = kRotX; k <= kRotZ; ++k)
        turns = turns || Adjustment.Model.UnknownOf[static_cast<std::size_t>(k)] != 0;
    double spread = 0;
    for (const LaneArray& axis : fit.Points.Target)
        for (int k = 0; k < fit.Points.Count; ++k) {
            const double x = axis[static_cast<std::size_t>(k)];
            spread += x * x;
        }
    return turns && fit.FirstOfLoop->Squares > kMostOfSpread * kMostOfSpread * spread;
}

// The loop again, each fit from the same parameters on. False when the job's points were replaced meanwhile.
bool RunFrom(const Parameters& begin, NormFit& fit, const NormLoop& loop) {
    fit.RunsBegin = begin;
    fit.P = WeightsFromUseFlags(fit.n);
    Norm.Iterations = Norm.Unsettled = 0;
    Norm.Converged = false;
    return loop.Run(fit);
}

void NoteAgain(const NormLoop& loop, const std::string& why) {
    AddNote(NoteCode::BetterStart, std::string("The weightings of ") + loop.Name + " " + why +
                                       "; they began again from the best fit");
}

// The first fit where no loop leads anywhere. It is an optimum of this norm only where it leaves no
// residuals.
void TakeAsUnconverged(NormFit& fit) {
    TakeFirstFit(fit);
    Norm.Converged = fit.FirstOfLoop->Objective <= Norm.NormTolerance;
    Adjustment.Converged = Norm.Converged;
    Norm.Unsettled = 0;
}

bool GoAgainWhereAstray(NormFit& fit, const NormLoop& loop, const std::string& why) {
    NoteAgain(loop, why);
    if (!RunFrom(fit.FirstOfLoop->Values, fit, loop)) return false;
    if (IsTrue(Run.StopRequested) || Astray(fit).empty()) return true;
    TakeAsUnconverged(fit);
    return true;
}

// A loop that has ended, to be held against others.
struct EndOfLoop {
    FitOutcome Outcome;
    Column P;
    NormRecord Record = Norm;
    double Objective;
    bool Good;

    explicit EndOfLoop(const NormFit& fit)
        : Outcome(fit), P(fit.P), Objective(EndHere(fit).Objective), Good(Astray(fit).empty()) {}
    bool IsBetter(const EndOfLoop& other, double share) const {
        if (Good != other.Good) return Good;
        if (std::fabs(Objective - other.Objective) > share * other.Objective)
            return Objective < other.Objective;
        return Record.Converged && !other.Record.Converged;
    }
    void PutBack(NormFit& fit) const {
        Outcome.PutBack(fit);
        fit.P = P;
        SetWeights(fit.P, fit.Points);
        Norm = Record;
    }
};

// From the best fit by least squares and from the optimum itself. What differs from the end of these by no
// more than the loop's own tolerance is taken from there, whatever the seed points.
bool GoAgainWhereBad(NormFit& fit, const NormLoop& loop) {
    constexpr double kSame = 1e-9, kTolerance = 1e-4;
    const EndOfLoop told(fit);
    std::vector<Parameters> begins = {fit.FirstOfLoop->Values};
    // The way to the optimum that is to follow looks for it from everywhere itself.
    if (!Norm.RunOn)
        if (const auto optimum = loop.Seek(fit)) begins.push_back(*optimum);
    if (Adjustment.JobChanged || IsTrue(Run.StopRequested)) return !Adjustment.JobChanged;
    std::optional<EndOfLoop> best;
    for (const Parameters& begin : begins) {
        if (!RunFrom(begin, fit, loop)) return false;
        if (IsTrue(Run.StopRequested)) return true;
        const EndOfLoop end(fit);
        if (!best || end.IsBetter(*best, kSame)) best.emplace(end);
    }
    const bool same = std::fabs(best->Objective - told.Objective) <= kSame * told.Objective;
    const bool stays = told.IsBetter(*best, kTolerance) || (same && !best->IsBetter(told, kSame));
    (stays ? told : *best).PutBack(fit);
    Linearise(Adjustment.Model, fit.Points);
    if (!(stays ? told : *best).Good) {
        NoteAgain(loop, Astray(fit));
        TakeAsUnconverged(fit);
        return true;
    }
    if (!stays) NoteAgain(loop, "from the seed points ended elsewhere");
    return true;
}

// Behind a loop. False when the job's points were replaced meanwhile.
bool GoAgain(NormFit& fit, const NormLoop& loop) {
    if (!fit.FirstOfLoop || IsTrue(Run.StopRequested)) return true;
    const bool mirrored = fit.FirstOfLoop->Mirrored && !NegativeScaleIsWanted(fit.Choice);
    if (mirrored || FitsBadly(fit)) return GoAgainWhereBad(fit, loop);
    const std::string why = Astray(fit);
    return why.empty() || GoAgainWhereAstray(fit, loop, why);
}

bool FitByLoop(NormFit& fit, const NormLoop& loop) {
    const LimitToldByLoop quiet;
    if (!loop.Run(fit) || !GoAgain(fit, loop)) return false;
    if (Norm.RunOn && !loop.RunOn(fit)) return false;
    NoteUnsettledFits(loop);
    TellOfLoop(loop);
    return true;
}

}  // namespace

void TakeBeginOfFit(const NormFit& fit) {
    TakeStartValues(fit.Choice, TakeSeedPoints());
    if (!fit.RunsBegin) return;
    for (int k = kTraX; k <= kAngleZtoXY; ++k)
        if (fit.Choice.Floats[static_cast<std::size_t>(k)]) ParameterValue(Job, k) = (*fit.RunsBegin)[k];
    if (fit.Choice.Floats[kScaleXYZ]) Job.ScaleX = Job.ScaleY = Job.ScaleZ = Job.ScaleXYZ;
}

void FitFromStart(NormFit& fit) {
    TakeBeginOfFit(fit);
    IterateFromHere(fit.u, fit.n, fit.ParamText, fit.Q, fit.v, fit.P, fit.Points);
}

void FirstFitOfLoop(NormFit& fit) {
    FitFromStart(fit);
    if (Adjustment.JobChanged || fit.FirstOfLoop) return;  // a loop that goes again begins at the best
    const FitOutcome told(fit);
    const std::vector<Note> notes = Notes.List;
    const bool sought = SeekBestFit(fit);
    const bool again = Certificate.BeganAgain;
    Certificate = CertificateRecord{};  // it speaks of least squares alone
    if (!sought) return;
    if (again) {
        fit.RunsBegin = ParametersOf(Job);
    } else {
        told.PutBack(fit);
        Notes.List = notes;
    }
    const bool plain = Adjustment.Model.Mode == FitMode::Coincide && !IsTrue(Job.IsParaboloid);
    if (plain && Adjustment.Converged && Adjustment.Finite) fit.FirstOfLoop = EndHere(fit);
}

void CountUnsettledFit() {
    if (Adjustment.Finite && !Adjustment.Converged && !IsTrue(Run.StopRequested)) ++Norm.Unsettled;
}

bool FitInNorm(NormFit& fit) {
    const bool runOn = Norm.RunOn;
    Norm = NormRecord{};
    Norm.RunOn = runOn;
    if (!GatherForFit(fit.P, fit.Points)) return false;
    fit.Choice = ReadStartChoice(fit.ParamText);
    bool done = false;
    switch (Job.NormType) {
        case 1:
            done = FitByLoop(fit, {"L1", "sum of residuals", FitL1, RunOnToLeastSum, SeekLeastSum});
            break;
        case 3:
            done = FitByLoop(fit, {"Loo", "largest residual", FitLoo, RunOnToLeastLargest, SeekLeastLargest});
            break;
        default:
            done = FitL2(fit);
    }
    if (done) SetStatus(2, "...ready");
    return done;
}
