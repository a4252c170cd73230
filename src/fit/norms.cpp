// A calculation in its norm.
#include "fit/norms.h"

#include <algorithm>
#include <cmath>

#include "fit/best_fit.h"
#include "fit/exact_norms.h"
#include "fit/handedness.h"
#include "fit/mirror.h"
#include "fit/proper_beside.h"
#include "fit/require.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// Of the residuals in use, mm.
double SumOfSizes(const NormRun& fit) {
    double sum = 0;
    for (int i = 1; i <= fit.Rows(); ++i)
        if (fit.Use()[At(i)] != 0) sum += std::fabs(fit.Result.v[At(i)]);
    return sum;
}

double LargestSize(const NormRun& fit) {
    double largest = 0;
    for (int i = 1; i <= fit.Rows(); ++i)
        if (fit.Use()[At(i)] != 0) largest = std::max(largest, std::fabs(fit.Result.v[At(i)]));
    return largest;
}

double SumOfSquares(const NormRun& fit) {
    double sum = 0;
    for (int i = 1; i <= fit.Rows(); ++i)
        if (fit.Use()[At(i)] != 0) sum += fit.Result.v[At(i)] * fit.Result.v[At(i)];
    return sum;
}

// The norms that are no single fit.
struct NormLoop {
    FitNorm Norm;
    bool (*Run)(NormRun&);
    double (*Objective)(const NormRun&);  // that it makes least
};
constexpr NormLoop kLoops[] = {{FitNorm::LeastSum, FitL1, SumOfSizes},
                               {FitNorm::LeastLargest, FitLoo, LargestSize}};

const NormLoop& LoopOf(const NormRun& fit) {
    const auto loop = std::find_if(std::begin(kLoops), std::end(kLoops),
                                   [&fit](const NormLoop& row) { return row.Norm == fit.Kind; });
    Require(loop != std::end(kLoops));
    return *loop;
}

bool RunLoop(NormRun& fit) {
    return LoopOf(fit).Run(fit);
}

EndOfFit EndHere(const NormRun& fit) {
    EndOfFit end{
        .Values = fit.Run.Now, .Objective = LoopOf(fit).Objective(fit), .Squares = SumOfSquares(fit)};
    ChainRecord chain;
    BuildChain(ChainSourceOf(fit.Run.Now), chain);
    end.Mirrored = IsMirrored(chain);
    return end;
}

// The first fit as the result, with the weights 0 and 1 that it stands on.
void TakeFirstFit(NormRun& fit) {
    fit.P = fit.InUse;
    fit.Run.Now = fit.FirstOfLoop->Values;
    SettleFit(fit);
}

using Reason = FitRemark::Reason;

// Why the loop's end is no result; none where it is one.
Reason Astray(const NormRun& fit) {
    constexpr double kWorse = 1e-6;
    const EndOfFit end = EndHere(fit), &first = *fit.FirstOfLoop;
    const double least = fit.Run.Norm.NormTolerance;
    if (!fit.Run.State.Finite) return Reason::NoEnd;
    const auto rows = std::count_if(fit.P.begin() + 1, fit.P.end(), [](double w) { return w != 0; });
    if (end.Mirrored && !first.Mirrored && !NegativeScaleIsWanted(fit.Choice) &&
        (fit.ProperAlone ||
         !MirrorMayStand(first.Objective, end.Objective, least, static_cast<int>(rows) - fit.Model.Unknowns,
                         fit.Kind, [&fit] { return HandednessHere(fit); })))
        return Reason::MirroredForNothing;
    if (!(end.Objective <= first.Objective * (1 + kWorse) + least)) return Reason::WorseThanFirstFit;
    // What fits by less than the loop's own tolerance has no residuals to be weighted by.
    if (!fit.Run.Norm.Converged && first.Objective <= least) return Reason::NoEnd;
    return Reason::None;
}

// Residuals as large as a hundredth of the target points' spread are no noise of a measurement: names are
// exchanged perhaps, or an axis is turned round. The weighted fits then have several minima, and it hangs on
// the seed points, that is on the order of the points, which of them the loop comes to.
bool FitsBadly(const NormRun& fit) {
    constexpr double kMostOfSpread = 1e-2;
    bool turns = false;
    for (int k = kRotX; k <= kRotZ; ++k) turns = turns || fit.Model.UnknownOf[At(k)] != 0;
    double spread = 0;
    for (const LaneArray& axis : fit.Points.Target)
        for (int k = 0; k < fit.Points.Count; ++k) {
            const double x = axis[At(k)];
            spread += x * x;
        }
    return turns && fit.FirstOfLoop->Squares > kMostOfSpread * kMostOfSpread * spread;
}

// The loop again, each fit from the same parameters on. False when the fit was abandoned.
bool RunFrom(const Parameters& begin, NormRun& fit) {
    fit.RunsBegin = begin;
    fit.P = fit.InUse;
    fit.Run.Norm.Iterations = fit.Run.Norm.Unsettled = 0;
    fit.Run.Norm.Converged = false;
    return RunLoop(fit);
}

void RemarkAgain(NormRun& fit, Reason why) {
    fit.Remarks.push_back({.Kind = FitRemark::What::LoopBeganAgain, .Why = why});
}

// The first fit where no loop leads anywhere. It is an optimum of this norm only where it leaves no
// residuals.
void TakeAsUnconverged(NormRun& fit) {
    TakeFirstFit(fit);
    fit.Run.Norm.Converged = fit.FirstOfLoop->Objective <= fit.Run.Norm.NormTolerance;
    fit.Run.State.Converged = fit.Run.Norm.Converged;
    fit.Run.Norm.Unsettled = 0;
}

bool GoAgainWhereAstray(NormRun& fit, Reason why) {
    RemarkAgain(fit, why);
    if (!RunFrom(fit.FirstOfLoop->Values, fit)) return false;
    if (fit.Stops() || Astray(fit) == Reason::None) return true;
    TakeAsUnconverged(fit);
    return true;
}

// A loop that has ended, to be held against others.
struct EndOfLoop {
    FitOutcome Outcome;
    Column P;
    NormRecord Record;
    double Objective;
    bool Good;

    explicit EndOfLoop(const NormRun& fit)
        : Outcome(fit),
          P(fit.P),
          Record(fit.Run.Norm),
          Objective(EndHere(fit).Objective),
          Good(Astray(fit) == Reason::None) {}
    bool IsBetter(const EndOfLoop& other, double share) const {
        if (Good != other.Good) return Good;
        if (std::fabs(Objective - other.Objective) > share * other.Objective)
            return Objective < other.Objective;
        return Record.Converged && !other.Record.Converged;
    }
    void PutBack(NormRun& fit) const {
        Outcome.PutBack(fit);
        fit.P = P;
        SetWeights(fit.P, fit.Points);
        fit.Run.Norm = Record;
    }
};

// From the best fit by least squares and from the optimum itself. What differs from the end of these by no
// more than the loop's own tolerance is taken from there, whatever the seed points.
bool GoAgainWhereBad(NormRun& fit) {
    constexpr double kSame = 1e-9, kTolerance = 1e-4;
    const EndOfLoop told(fit);
    std::vector<Parameters> begins = {fit.FirstOfLoop->Values};
    // The way to the optimum that is to follow looks for it from everywhere itself.
    if (!fit.Run.Norm.RunOn)
        if (const auto optimum = SeekOptimum(fit)) begins.push_back(*optimum);
    if (fit.Abandoned() || fit.Stops()) return !fit.Abandoned();
    std::optional<EndOfLoop> best;
    for (const Parameters& begin : begins) {
        if (!RunFrom(begin, fit)) return false;
        if (fit.Stops()) return true;
        const EndOfLoop end(fit);
        if (!best || end.IsBetter(*best, kSame)) best.emplace(end);
    }
    const bool same = std::fabs(best->Objective - told.Objective) <= kSame * told.Objective;
    const bool stays = told.IsBetter(*best, kTolerance) || (same && !best->IsBetter(told, kSame));
    (stays ? told : *best).PutBack(fit);
    if (!(stays ? told : *best).Good) {
        RemarkAgain(fit, Astray(fit));
        TakeAsUnconverged(fit);
        return true;
    }
    if (!stays) RemarkAgain(fit, Reason::OtherFromSeeds);
    return true;
}

// Behind a loop. False when the fit was abandoned.
bool GoAgain(NormRun& fit) {
    if (!fit.FirstOfLoop || fit.Stops()) return true;
    // Of the tool model no optimum is known but that of least squares.
    const bool plain = fit.Model.Mode == FitMode::Coincide;
    const bool mirrored = fit.FirstOfLoop->Mirrored && !NegativeScaleIsWanted(fit.Choice);
    if (plain && (mirrored || FitsBadly(fit))) return GoAgainWhereBad(fit);
    const Reason why = Astray(fit);
    return why == Reason::None || GoAgainWhereAstray(fit, why);
}

// The loop's own rule does not know of fits that have not settled. What was run on to its optimum does not
// stand on them any more.
void RemarkUnsettledFits(NormRun& fit) {
    if (fit.Run.Norm.Unsettled == 0 || (fit.Run.Norm.RunOn && fit.Run.Norm.Converged)) return;
    fit.Remarks.push_back({.Kind = FitRemark::What::FitsUnsettled, .Count = fit.Run.Norm.Unsettled});
}

void RenewWhereUnsettled(NormRun& fit) {
    const IterationState& state = fit.Run.State;
    if (state.Finite && !state.Converged) RenewResiduals(fit.Run, fit.Model, fit.Points, fit.Result.v);
}

}  // namespace

double TimesAsMuch(double more, double less) {
    constexpr double kByFar = 1e6;
    if (!(less > 0) || !(more / less < kByFar)) return std::numeric_limits<double>::infinity();
    return more / less;
}

void IterateFit(NormRun& fit) {
    Iterate(fit.Run, fit.Model, fit.Points, fit.P, fit.Result);
}

void SettleFit(NormRun& fit) {
    SettleHere(fit.Run, fit.Model, fit.Points, fit.P, fit.Result);
}

bool SeekFromStart(NormRun& fit) {
    fit.Run.Now = StartValues(fit.Choice, fit.Seeds);
    IterateFit(fit);
    return !fit.Abandoned() && SeekBestFit(fit);
}

bool SeekBeginOfRuns(NormRun& fit) {
    const std::vector<FitRemark> remarks = fit.Remarks;
    if (!FitLeastSquares(fit)) return false;
    fit.Remarks = remarks;  // the fit behind the runs says it
    const bool held = std::find(fit.HeldByFit.begin(), fit.HeldByFit.end(), true) != fit.HeldByFit.end();
    if (fit.Certificate.BeganAgain || held) fit.RunsBegin = fit.Run.Now;
    if (fit.Run.State.Converged && fit.Run.State.Finite) fit.RunsAgain = fit.Run.Now;
    return true;
}

void TakeBeginOfFit(NormRun& fit) {
    Parameters begin = StartValues(fit.Choice, fit.Seeds);
    if (fit.RunsBegin) {
        for (int k = kTraX; k <= kAngleZtoXY; ++k)
            if (fit.Choice.Floats[At(k)]) begin[k] = (*fit.RunsBegin)[k];
        if (fit.Model.ToolFloats)
            for (const int k : {kRvecX, kRvecY, kRvecZ}) begin[k] = (*fit.RunsBegin)[k];
        if (fit.Choice.Floats[kScaleXYZ])
            for (const int scale : {kScaleX, kScaleY, kScaleZ}) begin[scale] = begin[kScaleXYZ];
    }
    fit.Run.Now = begin;
}

void FitFromStart(NormRun& fit) {
    TakeBeginOfFit(fit);
    IterateFit(fit);
}

void FirstFitOfLoop(NormRun& fit) {
    FitFromStart(fit);
    if (fit.Abandoned() || fit.FirstOfLoop) return;  // a loop that goes again begins at the best
    const FitOutcome told(fit);
    const std::vector<FitRemark> remarks = fit.Remarks;
    const bool sought = SeekBestFit(fit);
    const bool again = fit.Certificate.BeganAgain;
    fit.Certificate = CertificateRecord{};  // it speaks of least squares alone
    if (!sought) return;
    fit.LeftByPoses.PutAtZero = false;
    if (again) {
        fit.RunsBegin = fit.Run.Now;
    } else {
        told.PutBack(fit);
        fit.Remarks = remarks;
    }
    const IterationState& state = fit.Run.State;
    const bool known = fit.Model.Mode != FitMode::Distance && fit.SeeksBest;
    if (known && state.Converged && state.Finite) fit.FirstOfLoop = EndHere(fit);
}

void CountUnsettledFit(NormRun& fit) {
    // One that only rounding moves at its limit has come to rest, and has not settled by its threshold.
    const IterationState& state = fit.Run.State;
    const bool atLimit = !state.Converged || state.AtRest;
    if (state.Finite && atLimit && !fit.Stops()) ++fit.Run.Norm.Unsettled;
}

namespace {

bool FitSquaresAsTheyAre(NormRun& fit) {
    if (!SeekFromStart(fit)) return false;
    RenewWhereUnsettled(fit);
    fit.Run.Norm.Converged = fit.Run.State.Converged;
    return true;
}

bool FitByLoopAsItIs(NormRun& fit) {
    if (!RunLoop(fit) || !GoAgain(fit)) return false;
    if (fit.Run.Norm.RunOn) RunOnToOptimum(fit);
    if (fit.Abandoned()) return false;
    RenewWhereUnsettled(fit);
    RemarkUnsettledFits(fit);
    return true;
}

constexpr NormToHold kSquares{FitSquaresAsTheyAre, SumOfSquares, 2};

}  // namespace

bool FitLeastSquares(NormRun& fit) {
    return FitSquaresAsTheyAre(fit) && HoldWhereMirrored(fit, kSquares, kSquares);
}

bool FitByLoop(NormRun& fit) {
    return FitByLoopAsItIs(fit) &&
           HoldWhereMirrored(fit, {FitByLoopAsItIs, LoopOf(fit).Objective, 1}, kSquares);
}

}  // namespace corvinade::fit
