// From the job to a fit of its points, and back.
#include "engine/job_fit.h"

#include <memory>
#include <string>
#include <utility>

#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/adjustment.h"
#include "engine/corrections.h"
#include "engine/norm_table.h"
#include "engine/norms.h"
#include "engine/selection.h"
#include "engine/transform.h"

namespace corvinade::engine {

namespace {

// What the program does with what it hears.
struct Audience {
    const NormRow& Kind = LeastSquares();
    std::uint64_t JobGeneration = Run.JobGeneration;
    bool TraceKept = Selection.CheckRDist;
    std::string Trace;  // the corrections of all passes, which the clipboard shows while the iteration runs

    bool Hear(const FitEvent& event) {
        switch (event.Step) {
            case FitStep::PassBegins:
                return BeginPass(event);
            case FitStep::Linearised:
                SetStatus(2, "... start of Least Square calc...");
                break;
            case FitStep::Summed:
                ShowSummed(event.Iterations);
                break;
            case FitStep::Solved:
                ShowSolved();
                break;
            case FitStep::PassEnds:
                ShowCorrections(*event.Corrections);
                break;
            case FitStep::IterationEnds:
                ShowConvergence(event.Last);
                break;
            case FitStep::LoopRound:
                ShowRound(event);
                break;
            case FitStep::OptimumStep:
                ShowOptimum(event);
                break;
            case FitStep::Searching:
                return Serve(event);
        }
        return true;
    }

    bool BeginPass(const FitEvent& event) {
        if (event.Iterations == 0) Trace.clear();
        Adjustment.Iterations = event.Iterations;
        ShowConvergence(event.Last);
        SetStatus(2, "... calculating Matrix for LeastSquare calc...");
        return Serve(event);
    }

    bool Serve(const FitEvent& event) const {
        PutParameters(event.Now, Job);
        Norm.Iterations = event.Rounds;
        Norm.Linearisations = event.Steps;
        YieldToEvents();
        const bool goesOn = Run.JobGeneration == JobGeneration;
        Adjustment.LeftMoving = !goesOn && ParametersOf(Job) == event.Now;
        return goesOn;
    }

    // Panels 6 and 7.
    void ShowRound(const FitEvent& event) const {
        Kind.ShowRound(event.Value * Units.LengthFactor, event.Rounds);
    }
    void ShowOptimum(const FitEvent& event) const {
        SetStatus(6, Kind.Steps + std::to_string(event.Steps));
        SetStatus(7, FormatNumber(event.Value * Units.LengthFactor, Units.FmtLength));
    }

    // Panels 3 to 5.
    static void ShowConvergence(const Convergence& last) {
        if (!last.Known) return;
        SetStatus(3, "Convergence Ratio: " + FormatNumber(last.Ratio, Units.FmtLength));
        SetStatus(4, "on VarNumber: " + std::to_string(last.Unknown));
        SetStatus(5, "delta x(i): " + PlainText(last.Largest));
    }

    // The texts are there already, so that a step of the status costs no memory. The products of the rows are
    // summed block by block, so the first ones come together.
    static void ShowSummed(int iterations) {
        static const std::string transposed = "calculating A transposed...", AtP = "calculating At * P... ",
                                 AtPA = "calculating At * P * A... ", inversion = "doing Matrix inversion...";
        SetStatus(1, "Iteration " + std::to_string(iterations));
        for (const std::string* step : {&transposed, &AtP, &AtPA, &inversion}) SetStatus(2, *step);
    }
    static void ShowSolved() {
        static const std::string AtPl = "calculating At * P * l... ",
                                 result = "calculating Resultsvector... ",
                                 corrections = "calculating corrections... ";
        for (const std::string* step : {&AtPl, &result, &corrections}) SetStatus(2, *step);
    }

    void ShowCorrections(const Column& x) {
        if (TraceKept) {
            for (std::size_t i = 1; i < x.size(); ++i) Trace += PlainText(x[i]) + "\t";
            Trace += kLineEnd;
        }
        ToClipboard(Trace);
    }
};

FitRun BeginHeardBy(std::function<bool(const FitEvent&)> hear) {
    FitRun run;
    run.Limits = {.MaxIteration = Settings.MaxIteration, .Threshold = Threshold()};
    run.Listener = {.Hear = std::move(hear), .StopIsWanted = [] { return IsTrue(Run.StopRequested); }};
    run.Now = ParametersOf(Job);
    run.Chain = Chain;
    run.Norm = Norm;
    return run;
}

}  // namespace

FitRun BeginFitOfJob(FitNorm norm) {
    const auto audience = std::make_shared<Audience>(Audience{.Kind = NormOfFit(norm)});
    return BeginHeardBy([audience](const FitEvent& event) { return audience->Hear(event); });
}

FitRun BeginQuietFitOfJob() {
    return BeginHeardBy([generation = Run.JobGeneration](const FitEvent& event) {
        if (event.Step == FitStep::PassEnds) ToClipboard({});
        if (event.Step != FitStep::PassBegins) return true;
        PutParameters(event.Now, Job);
        YieldToEvents();
        return Run.JobGeneration == generation;
    });
}

void TakeFit(const FitRun& run) {
    Adjustment.JobChanged = run.State.Abandoned;
    if (Adjustment.JobChanged) return;
    Adjustment.Iterations = run.State.Iterations;
    Adjustment.Converged = run.State.Converged;
    Adjustment.AtRest = run.State.AtRest;
    Adjustment.Finite = run.State.Finite;
    PutParameters(run.Now, Job);
    Chain = run.Chain;
    const auto& [x, y, z] = run.Chain.BuiltFrom.Rotation;
    Job.RotXCopy = x;
    Job.RotYCopy = y;
    Job.RotZCopy = z;
}

}  // namespace corvinade::engine
