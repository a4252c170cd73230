// One calculation in its norm: what its parts share.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "fit/adjustment.h"
#include "fit/arrays.h"
#include "fit/fit_run.h"
#include "fit/gathered_points.h"
#include "fit/parameters.h"
#include "fit/start_values.h"

namespace corvinade::fit {

enum class FitNorm : std::uint8_t {
    LeastSquares,
    LeastSum,     // of the absolute residuals: L1
    LeastLargest  // residual: L-infinity, "Loo"
};

// How the last least-squares fit was held against all other solutions.
struct CertificateRecord {
    enum class Road { None, ClosedForm, Starts };
    Road Kind = Road::None;  // None: it was not looked at (other norms and models, a fit that was stopped)
    int Starts = 0;
    // By how much of itself the sum of squares is above that of the best solution found; 0 within rounding.
    double RelativeAbove = 0;
    bool Mirrored = false;    // the determinant of R K S is below 0
    bool BeganAgain = false;  // the told iteration ended elsewhere, or nowhere
};

// Where a fit of a norm has ended.
struct EndOfFit {
    Parameters Values{};
    double Objective = 0;  // what the norm makes least: the sum (L1) or the largest (Loo) residual, mm
    double Squares = 0;    // sum of the squared residuals, mm^2
    bool Mirrored = false;
};

// What poses turned about one axis leave open of the tool vector (best_tool_fit.h): its part along these
// directions of the flange, unit vectors.
struct PosesLeave {
    std::vector<Vec3> Directions;
    bool PutAtZero = true;  // that part; not in the loops of other norms, which leave it to the errors
    double Turned = 0;      // by how much the poses turn them at most, root mean square, rad
    double Noise = 0;       // of their angles, against which that is judged, rad
    std::array<bool, kParameterEnd> Of{};  // parameters that are arbitrary by that
};

// What a calculation has decided on its own, or leaves to be said, in the order in which it came up.
struct FitRemark {
    enum class What : std::uint8_t {
        IterationBeganAgain,  // from the best solution: it had ended in another one
        IterationFoundNoEnd,  // likewise
        OtherSolutionIsLess,  // start values of the user's own keep this one
        LoopBeganAgain,       // from the best fit, Why
        OptimumFromOtherStart,
        OtherOptimumIsLess,  // start values of the user's own keep this one
        FitsUnsettled,       // Count inner fits ended at their limit, and the loop went on
        HeldWhereMirrored    // parameters in HeldByFit (proper_beside.h)
    };
    enum class Reason : std::uint8_t {
        None,
        MirroredForNothing,  // it ended mirrored, which fits no better than noise explains
        WorseThanFirstFit,   // ... worse than the best fit by least squares
        NoEnd,
        OtherFromSeeds  // from the seed points it ended elsewhere
    };
    What Kind;
    Reason Why = Reason::None;
    // How many times as large what the norm makes least was; infinite where that is by far, 0 where it was a
    // mirrored solution that fits as well.
    double Times = 0;
    int Count = 0;  // inner fits, or starts
};

struct NormRun {
    FitRun Run;  // the parameters as they stand, who listens, the limits
    FitNorm Kind = FitNorm::LeastSquares;
    FitModel Model;
    StartChoice Choice;
    SeedPoints Seeds;
    // Is the best solution of all looked for? Not for the passes of an outer loop, say.
    bool SeeksBest = true;
    // No mirrored solution is taken where there is a proper one, however much better it is.
    bool ProperAlone = false;
    GatheredPoints Points;
    // Three a pair, 0 or 1. Empty in a fit by least squares whose weights are these: they stand in P alone.
    Column InUse;
    Column P;                // three a pair: the weights of the last fit, or those of the next
    IterationResult Result;  // of the last fit
    CertificateRecord Certificate;
    std::vector<FitRemark> Remarks;
    // Of the parameters that float those that the fit has held all the same (proper_beside.h).
    std::array<bool, kParameterEnd> HeldByFit{};
    PosesLeave LeftByPoses;
    // Where the runs of Monte Carlo, and the fits of a loop, begin: at the best fit, where the start values
    // lead the iteration astray. Nothing: at the start values, each run by its own seed points.
    std::optional<Parameters> RunsBegin;
    // Where a run begins again that found no end from there: at the fit of the points as they were measured.
    // Nothing: that has found none either.
    std::optional<Parameters> RunsAgain;
    // Of a loop: where its first fit has ended, with weights 0 and 1. Nothing: it has not settled.
    std::optional<EndOfFit> FirstOfLoop;

    int Rows() const { return 3 * Points.Count; }
    const Column& Use() const { return InUse.empty() ? P : InUse; }
    bool Abandoned() const { return Run.State.Abandoned; }
    bool Stops() const { return Run.Stops(); }
};

// What a fit leaves behind, to be put back where another one turns out to be no better.
struct FitOutcome {
    Parameters Values;
    IterationState State;
    IterationResult Result;

    explicit FitOutcome(const NormRun& fit) : Values(fit.Run.Now), State(fit.Run.State), Result(fit.Result) {}
    void PutBack(NormRun& fit) const {
        fit.Run.Now = Values;
        fit.Run.State = State;
        fit.Result = Result;
    }
};

}  // namespace corvinade::fit
