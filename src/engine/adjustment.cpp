// The least-squares adjustment.
#include "engine/adjustment.h"

#include <algorithm>
#include <cmath>
#include <memory>

#include "core/controller.h"
#include "core/job.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/require.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/units.h"
#include "engine/corrections.h"
#include "engine/design.h"
#include "engine/moments.h"
#include "engine/normal_equations.h"
#include "engine/parameter_values.h"
#include "engine/selection.h"
#include "engine/start_values.h"

namespace {

using ParameterTexts = std::array<std::string, 18>;

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

// The poses' angles were read in the unit that was set when the file was read.
void WarnOfAngleUnits() {
    if (!Selection.CheckUseABC || Job.AngleUnitName == "degree" || Adjustment.AngleUnitsConfirmed) return;
    const std::string text =
        std::string("Unit of Angels in Nominal InputFile must be the SAME as in your program Settings") +
        kLineEnd + "Be sure [actual ProgramSetting is " + Job.AngleUnitName +
        "] is the unit of Angles in Nominal File!" + kLineEnd + "Cancel = Don't show this Dialog again ";
    if (AskMessage(text, "Attention Angle UNITs", {"OK", "Cancel"}) == "Cancel")
        Adjustment.AngleUnitsConfirmed = true;
}

// In the distance model a point has one equation, whose weight is that of its Z coordinate.
void PackWeights(Column& P) {
    for (int i = 1; i <= Job.nIdent; ++i) P[At(3 * i - 2)] = P[At(3 * i - 1)] = P[At(3 * i)];
}

// The orientation of the poses is gathered wherever the tool model may turn out to hold.
bool PosesMayCount() {
    return Selection.CheckUseABC || !Selection.RDistShown;
}

// The corrections of all passes as text, which the clipboard shows while the iteration runs.
struct CorrectionTrace {
    bool Kept = Selection.CheckRDist;
    std::string Text;

    void Add(const Column& x, int u) {
        if (Kept) {
            for (int i = 1; i <= u; ++i) Text += PlainText(x[At(i)]) + "\t";
            Text += kLineEnd;
        }
        ToClipboard(Text);
    }
};

// What panels 3 to 5 show. The numbers are kept, and made text only where somebody can read them: when
// events are served and when the run is over.
struct ConvergenceStatus {
    bool Known = false;
    double Ratio = 0, Largest = 0;
    int Unknown = 1;

    void Show() const {
        if (!Known) return;
        SetStatus(3, "Convergence Ratio: " + FormatNumber(Ratio, Units.FmtLength));
        SetStatus(4, "on VarNumber: " + std::to_string(Unknown));
        SetStatus(5, "delta x(i): " + PlainText(Largest));
    }
};

// The state of one run.
struct AdjustmentRun {
    GatheredPoints& Points;
    const FitModel& Model;
    std::uint64_t JobGeneration = Run.JobGeneration;
    Linearisation At;  // of the last pass
    Matrix N, Q;       // of the centred unknowns
    Column w, centred, x;
    bool ByMoments;  // of the points, or by their rows
    bool MomentsTaken;
    PointMoments& Moments;
    std::unique_ptr<NormalSums> Sums;  // of the rows
    CorrectionTrace Trace;
    ConvergenceStatus Status;

    AdjustmentRun(GatheredPoints& points, const FitModel& model, bool taken, PointMoments& moments)
        : Points(points),
          Model(model),
          N(model.Unknowns, model.Unknowns),
          Q(model.Unknowns, model.Unknowns),
          w(static_cast<std::size_t>(model.Unknowns) + 1),
          centred(w.size()),
          x(w.size()),
          ByMoments(MomentsServe(model, points)),
          MomentsTaken(taken),
          Moments(moments) {}

    void TakeMoments() {
        SumMoments(Points, At, {.Tool = Model.Mode == FitMode::Tool}, Moments);
        MomentsTaken = true;
    }

    void LeaveMoments() {
        ByMoments = false;
        if (Moments.Reweighted) TakeResidualWeights(Moments, Points);
    }

    void Equations() {
        if (ByMoments) {
            if (!MomentsTaken) TakeMoments();
            if (NormalEquations(Model, At, Moments, N, w)) return;
            LeaveMoments();
        }
        if (Sums == nullptr) Sums = std::make_unique<NormalSums>();
        SumNormalEquations(Points, Model, At, *Sums);
        NormalEquations(Model, At, *Sums, N, w);
    }

    // Where weights differ by many orders the rounding of the heaviest rows' moments may drown what the
    // others say about an unknown. How much of an unknown is left by the others shows in Q(i,i) N(i,i).
    bool DrownedByWeights() const {
        constexpr double kMostInflated = 1e8;
        if (!ByMoments || !Moments.Reweighted) return false;
        for (int i = 1; i <= Model.Unknowns; ++i)
            if (!(std::fabs(Q(i, i) * N(i, i)) < kMostInflated)) return true;
        return false;
    }

    void Solve() {
        Equations();
        SolveNormalEquations(N, w, Model.Unknowns, Adjustment.Iterations, Q, centred);
        if (DrownedByWeights()) {
            LeaveMoments();
            return Solve();
        }
        x = centred;
        FromCentre(Model, At, x);
    }

    // The pass that is to be the last stands on moments that were taken near it. Those of poor start
    // values are good for the way there, and no more.
    void SolveFromNear() {
        if (!ByMoments || Moments.Reweighted) return;
        if (FindLargest(x, Model.Unknowns).Size >= Threshold() || MovedSince(At, Moments) <= kFarFromMoments)
            return;
        MomentsTaken = false;
        Solve();
    }

    // One linearisation and solution. False when the job's points were replaced meanwhile.
    bool Pass() {
        Status.Show();
        SetStatus(2, "... calculating Matrix for LeastSquare calc...");
        YieldToEvents();
        if (Run.JobGeneration != JobGeneration) return false;
        At = Linearise(Model, Points);
        SetStatus(2, "... start of Least Square calc...");
        Solve();
        SolveFromNear();
        Trace.Add(x, Model.Unknowns);
        AddCorrections(Model, x);
        return true;
    }
};

// Passes until an end is reached. False when the job's points were replaced meanwhile.
bool Iterate(AdjustmentRun& run) {
    const double eps = Threshold();
    const int u = run.Model.Unknowns;
    LargestCorrection previous;
    for (;;) {
        if (!run.Pass()) return false;
        const LargestCorrection largest = FindLargest(run.x, u);
        Adjustment.Finite = AllFinite(run.x, u);
        ++Adjustment.Iterations;
        if (Adjustment.Iterations > 1 && u > 0)
            run.Status = {true, previous.Size / (eps + run.x[At(previous.Unknown)]), previous.Size,
                          previous.Unknown};
        previous = largest;
        if (!Adjustment.Finite) {
            // What is no number stays so in every pass behind, up to the limit.
            Adjustment.Iterations = std::max(Adjustment.Iterations, Settings.MaxIteration + 1);
            return true;
        }
        if (largest.Size < eps) {
            Adjustment.Converged = true;
            return true;
        }
        if (Adjustment.Iterations > Settings.MaxIteration || IsTrue(Run.StopRequested)) return true;
    }
}

// A fresh record of the run, and the model that the job's parameters give.
const FitModel& BeginRun(int u, int n, const ParameterTexts& ParamText, const GatheredPoints& points) {
    Require(n == 3 * Job.nIdent && points.Count == Job.nIdent);
    Require(u == CountUnknowns(ParamText));
    const bool confirmed = Adjustment.AngleUnitsConfirmed, later = Adjustment.LimitToldLater;
    Adjustment = AdjustmentRecord{};
    Adjustment.AngleUnitsConfirmed = confirmed;
    Adjustment.LimitToldLater = later;
    Adjustment.Model = ChooseModel(ParamText);
    return Adjustment.Model;
}

// What the run leaves: `v` and Q. False when the job's points were replaced meanwhile.
bool CarryOut(AdjustmentRun& run, Matrix& Q) {
    if (!Iterate(run)) {
        Adjustment.JobChanged = true;
        return false;
    }
    run.Status.Show();
    Q = run.Q;
    FromCentre(run.Model, run.At, Q);
    return true;
}

// While it lives fits take the rows of the points.
class RowsAlone {
public:
    explicit RowsAlone(GatheredPoints& points) : points_(points) { points.ByRows = true; }
    ~RowsAlone() { points_.ByRows = before_; }
    RowsAlone(const RowsAlone&) = delete;
    RowsAlone& operator=(const RowsAlone&) = delete;

private:
    GatheredPoints& points_;
    bool before_ = points_.ByRows;
};

}  // namespace

bool GatherForFit(const Column& P, GatheredPoints& points) {
    const std::uint64_t generation = Run.JobGeneration;
    WarnOfAngleUnits();
    if (Run.JobGeneration != generation) return false;
    GatherPoints(P, PosesMayCount(), points);
    return true;
}

void BestFitIteration(int u, int n, const ParameterTexts& ParamText, Matrix& Q, Column& v, Column& P) {
    GatheredPoints points;
    if (!GatherForFit(P, points)) {
        Adjustment.JobChanged = true;
        return;
    }
    BestFitIteration(u, n, ParamText, Q, v, P, points);
}

void BestFitIteration(int u, int n, const ParameterTexts& ParamText, Matrix& Q, Column& v, Column& P,
                      GatheredPoints& points) {
    TakeStartValues(ParamText);
    IterateFromHere(u, n, ParamText, Q, v, P, points);
}

void TellOfLimit() {
    if (Adjustment.LimitToldLater) return;
    if (Adjustment.Iterations > Settings.MaxIteration)
        ShowMessage("Calculation stopped after " + PlainText(Settings.MaxIteration) +
                    " Iterations, Convergence not reached yet!");
}

void IterateQuietly(int u, int n, const ParameterTexts& ParamText, Matrix& Q, Column& v, Column& P,
                    GatheredPoints& points) {
    Require(UpperBound(P) >= n);
    const FitModel model = BeginRun(u, n, ParamText, points);
    if (model.Mode == FitMode::Distance) PackWeights(P);
    SetWeights(P, points);
    const ParameterValues start = JobParameters();
    PointMoments moments;
    v.resize(At(n) + 1);
    {
        AdjustmentRun run(points, model, false, moments);
        const bool byMoments = run.ByMoments;
        if (!CarryOut(run, Q)) return;
        Residuals(points, model, run.At, run.centred, v);
        if (!byMoments || Adjustment.Converged || IsTrue(Run.StopRequested)) return;
    }
    // Thin clouds far from the origin cost the moments digits that the rows keep.
    SetJobParameters(start);
    BeginRun(u, n, ParamText, points);
    const RowsAlone rows(points);
    AdjustmentRun run(points, model, false, moments);
    if (!CarryOut(run, Q)) return;
    Residuals(points, model, run.At, run.centred, v);
}

void IterateFromHere(int u, int n, const ParameterTexts& ParamText, Matrix& Q, Column& v, Column& P,
                     GatheredPoints& points) {
    IterateQuietly(u, n, ParamText, Q, v, P, points);
    if (!Adjustment.JobChanged) TellOfLimit();
}

void SettleHere(int u, int n, const ParameterTexts& ParamText, Matrix& Q, Column& v, Column& P,
                GatheredPoints& points) {
    Require(UpperBound(P) >= n);
    const FitModel model = BeginRun(u, n, ParamText, points);
    Adjustment.Iterations = 1;
    Adjustment.Converged = true;
    SetWeights(P, points);
    const Linearisation at = Linearise(model, points);
    const auto sums = std::make_unique<NormalSums>();
    SumNormalEquations(points, model, at, *sums);
    Matrix N(u, u);
    Column w(At(u) + 1), x(At(u) + 1);
    NormalEquations(model, at, *sums, N, w);
    Q = Matrix(u, u);
    SolveNormalEquations(N, w, u, Adjustment.Iterations, Q, x);
    FromCentre(model, at, Q);
    v.assign(At(n) + 1, 0);
    std::fill(x.begin(), x.end(), 0);
    Residuals(points, model, at, x, v);
}

void IterateFromHere(int u, int n, const ParameterTexts& ParamText, Matrix& Q, GatheredPoints& points,
                     FitOnMoments& fit) {
    const FitModel model = BeginRun(u, n, ParamText, points);
    AdjustmentRun run(points, model, true, fit.Moments);
    if (!CarryOut(run, Q)) return;
    fit.ByMoments = run.ByMoments;
    fit.At = run.At;
    fit.Centred = std::move(run.centred);
    TellOfLimit();
}
