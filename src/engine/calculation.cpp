// One calculation of the job in its norm.
#include "engine/calculation.h"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "core/controller.h"
#include "core/job.h"
#include "core/notes.h"
#include "core/parameter_names.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/settings.h"
#include "core/text.h"
#include "core/window.h"
#include "engine/adjustment.h"
#include "engine/calculation_window.h"
#include "engine/design.h"
#include "engine/distance_start.h"
#include "engine/equal_forms.h"
#include "engine/field_number.h"
#include "engine/monte_carlo.h"
#include "engine/norm_table.h"
#include "engine/norms.h"
#include "engine/result_notes.h"
#include "engine/result_statistics.h"
#include "engine/selection.h"
#include "engine/transform.h"
#include "fit/vector.h"

namespace corvinade::engine {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr double kSignificanceEps = 1e-9;

// A rotation by 180 degrees counts as none.
double DistanceFromNeutral(int parameter) {
    const double value = ParameterValue(Job, parameter);
    switch (KindOf(parameter)) {
        case ParameterKind::Angle:
            return std::atan(std::tan(value));
        case ParameterKind::Scale:
            return value - 1;
        default:
            return value;
    }
}

// Sigma of the R vector's length, by those of its parts.
void FillToolStatistics() {
    double variance = 0;
    for (const int parameter : {kRvecX, kRvecY, kRvecZ}) {
        const double share = Job.RDist > 0 ? ParameterValue(Job, parameter) / Job.RDist : 0;
        variance += share * share * Calculation.Sigma[At(parameter)] * Calculation.Sigma[At(parameter)];
    }
    Calculation.Sigma[kRDist] = std::sqrt(variance);
    Calculation.Significance[kRDist] = std::fabs(Job.RDist / (Calculation.Sigma[kRDist] + kSignificanceEps));
}

// A scale of 0 leaves nothing of the points, so nothing can be fitted.
std::string ScaleHeldAtZero() {
    constexpr std::array<const char*, 4> kNames = {"Scale x", "Scale y", "Scale z", "Scale xyz"};
    for (int parameter = kScaleX; parameter <= kScaleXYZ; ++parameter) {
        const std::string& text = Job.ParamText[At(parameter)];
        if (IsHeldValue(text) && ParameterFromText(parameter, text) == 0)
            return kNames[At(parameter - kScaleX)];
    }
    return "";
}

// Of an angle as large as this the digits say next to nothing of where it ends within a turn.
std::string AngleHeldFarRound() {
    constexpr double kMost = 1e6;  // rad
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter) {
        const std::string& text = Job.ParamText[At(parameter)];
        if (KindOf(parameter) == ParameterKind::Angle && IsHeldValue(text) &&
            !(std::fabs(ParameterFromText(parameter, text)) <= kMost))
            return ParameterName(parameter);
    }
    return "";
}

// The pairs from which the tool model would take a pose that is turned by nothing: those for which the job
// has no orientation. "" where there are none, and for other models.
std::string PairsWithoutOrientation() {
    if (ChooseMode(Job.ParamText) != FitMode::Tool) return "";
    const int known = Job.RobotABC.Columns >= 3 ? std::max(Job.RobotABC.Rows, 0) : 0;
    if (known >= Job.Pairs()) return "";
    const int without = Job.Pairs() - known;
    return std::to_string(without) + " of the " + std::to_string(Job.Pairs()) +
           " pairs have no orientation, the first is point \"" + Printable(Job.Start.Name[At(known + 1)]) +
           "\"; the tool vector needs that of every pose. A job file keeps the orientations of Kuka programs "
           "and of quaternions alone: please import the robot program again, or load the orientations from a "
           "text file (Load R data, on the command line --poses).";
}

// Choices that no fit can begin with; "" for all others.
std::string WhyNot() {
    if (const std::string pairs = PairsWithoutOrientation(); !pairs.empty()) return pairs;
    if (const std::string sigmas = WhyNotWithSigmas(); !sigmas.empty()) return sigmas;
    if (const std::string scale = ScaleHeldAtZero(); !scale.empty())
        return scale + " is held at 0, which leaves nothing of the points. Please hold it at another value.";
    if (const std::string angle = AngleHeldFarRound(); !angle.empty())
        return angle +
               " is held at an angle of so many turns that its digits do not tell where it ends. Please hold "
               "it within a few turns.";
    if (const std::string name = PairThatStartsOnItsTarget(); !name.empty())
        return "The start values put point \"" + Printable(name) +
               "\" onto its target, where the distance between them has no direction. Please give a seed for "
               "one of the translations, or choose other seed points.";
    return "";
}

// The second points of the R vectors, for the pictures that show them: where the distance model wants each
// transformed point, which is on the line from its target through it, at R_Dist from the target. A pair whose
// points fall together has no such line and no second point, and neither has any pair in the other models.
// Where none are wanted, a job that has no room for them gets none: of a million pairs that is 24 MB.
void FillRVectors(bool wanted) {
    const std::size_t size = At(Job.Pairs()) + 1;
    if (!wanted && std::max({Job.RVecX.size(), Job.RVecY.size(), Job.RVecZ.size()}) <= 1) return;
    Job.RVecX.assign(size, {});
    Job.RVecY.assign(size, {});
    Job.RVecZ.assign(size, 0);
    Job.RVecInFile.fill(-1);
    if (!wanted) return;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const Vec3 target = TargetPoint(i);
        const Vec3 image = TransformedPoint(i);
        const double dx = image(1) - target(1), dy = image(2) - target(2), dz = image(3) - target(3);
        const double share = Job.RDist / Hypot3(dx, dy, dz);
        if (!std::isfinite(share)) continue;
        Job.RVecX[At(i)] = target(1) + share * dx;
        Job.RVecY[At(i)] = target(2) + share * dy;
        Job.RVecZ[At(i)] = target(3) + share * dz;
    }
}

// While the parameters move they are no result, and a job that is saved meanwhile says so. Where the
// calculation leaves without one, the mark of before stands again if nothing has moved, or another job does.
// An import that fails in the midst of the iteration leaves the points of before and the result that is shown
// for them: its parameters come back too.
class MarkedWhileRunning {
public:
    MarkedWhileRunning() {
        Job.Unconverged = kTrue;
        Adjustment.LeftMoving = false;
    }
    ~MarkedWhileRunning() {
        if (Ended || MonteCarlo.Started != started_) return;
        const bool same = Run.JobGeneration == generation_;
        if (!same && Adjustment.LeftMoving && IsTrue(Run.TrafoValid))
            PutParameters(parameters_, Job);
        else if (!same || parameters_ != ParametersOf(Job))
            return;
        Job.Unconverged = before_;
    }
    MarkedWhileRunning(const MarkedWhileRunning&) = delete;
    MarkedWhileRunning& operator=(const MarkedWhileRunning&) = delete;
    bool Ended = false;  // the calculation has a result

private:
    Flag before_ = Job.Unconverged;
    std::uint64_t generation_ = Run.JobGeneration, started_ = MonteCarlo.Started;
    Parameters parameters_ = ParametersOf(Job);
};

// Residuals beyond 1e154 have squares that no number holds, and so has nothing that follows from them.
bool ResidualsAreFinite() {
    double squares = 0;
    for (std::size_t i = 1; i < Calculation.v.size() && i < Calculation.P.size(); ++i)
        if (Calculation.P[i] != 0) squares += Calculation.v[i] * Calculation.v[i];
    return std::isfinite(squares);
}

bool ParametersAreFinite() {
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter)
        if (!std::isfinite(ParameterValue(Job, parameter))) return false;
    return true;
}

}  // namespace

void FillStatistics(const FitModel& model) {
    Statistics(Calculation.v, Calculation.P, Calculation.nObs, Calculation.s0, Calculation.sx, Calculation.sy,
               Calculation.sz);
    Calculation.SigmaXYZ = std::sqrt(Calculation.sx * Calculation.sx + Calculation.sy * Calculation.sy +
                                     Calculation.sz * Calculation.sz);
    Calculation.Sigma.fill(0);
    Calculation.Significance.fill(0);
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter) {
        const int j = model.UnknownOf[At(parameter)];
        if (j == 0) continue;
        const double sigma = std::sqrt(std::fabs(Calculation.Q(j, j))) * Calculation.s0;
        Calculation.Sigma[At(parameter)] = sigma;
        Calculation.Significance[At(parameter)] =
            std::fabs(DistanceFromNeutral(parameter) / (sigma + kSignificanceEps));
    }
}

bool CalculationIsOfThisJob() {
    return Calculation.Done && Calculation.JobGeneration == Run.JobGeneration &&
           Calculation.nObs == 3 * Job.Pairs();
}

void MarkResult(bool converged) {
    std::erase_if(Notes.List, [](const Note& note) { return note.Code == NoteCode::NotConverged; });
    Job.Unconverged = ToFlag(!converged);
    Job.Collapsed = kFalse;
    std::copy(Calculation.HeldByFit.begin(), Calculation.HeldByFit.end(), Job.LeftOpen.begin());
    if (!converged)
        AddNote(NoteCode::NotConverged, "The calculation did not converge; its result is not the best fit");
}

void TransformAllPoints(const Column* v) {
    if (Job.Transformed.Count() < Job.Start.Count()) Job.Transformed = Job.Start;
    int i = 1;
    if (v != nullptr)
        for (; i <= Job.Pairs(); ++i) {
            const Vec3 q = TargetPoint(i);
            const std::size_t row = At(3 * (i - 1));
            Job.Transformed.SetPoint(i, q(1) + (*v)[row + 1], q(2) + (*v)[row + 2], q(3) + (*v)[row + 3]);
        }
    for (; i <= Job.Start.Count(); ++i) {
        const Vec3 p = StartPoint(i);
        Vec3 image;
        TransformPoint(p(1), p(2), p(3), image(1), image(2), image(3));
        Job.Transformed.SetPoint(i, image(1), image(2), image(3));
    }
}

Column WeightsFromUseFlags(int n) {
    Column P(At(n) + 1, 1);
    P[0] = 0;
    for (std::size_t i = 1; i < P.size(); ++i) P[i] = CoordinateInUse(i) ? 1 : 0;
    return P;
}

bool CalculationIsRefused() {
    const Column P = WeightsFromUseFlags(3 * Job.Pairs());
    double W = std::accumulate(P.begin(), P.end(), 0.0);
    if (Selection.CheckRDist && !Selection.CheckUseABC) W /= 3;
    std::string why;
    if (W < CountUnknowns(Job.ParamText)) {
        why = "This is not a redundant calculation";
    } else {
        why = WhyNot();
    }
    Calculation.Refused = !why.empty();
    if (Calculation.Refused) ShowMessage(why);
    return Calculation.Refused;
}

void ButtonCalcErsatz() {
    const std::uint64_t generation = Run.JobGeneration;
    // Both before and after the events: they may change the choice, or close its window.
    if (IsLoaded("FormTrafoBerechnung")) TakeSelection();
    YieldToEvents();
    if (Run.JobGeneration != generation) return;
    if (IsLoaded("FormTrafoDetails")) UnloadWindow("FormTrafoDetails");
    if (IsLoaded("FormTrafoBerechnung")) TakeSelection();
    const bool useABC = Selection.CheckUseABC;
    if (useABC && Selection.CheckRDist)
        ShowMessage("bigbug here in the CODE, you can never use R_Dist AND UseABC");

    if (!IsTrue(Job.IsParaboloid)) ForgetCalculationNotes();  // its passes are one calculation
    if (CalculationIsRefused()) return;
    NoteHeldTexts();
    const bool leastSquares = IsLeastSquares(NormOfJob());
    Calculation.Refused = leastSquares && MonteCarloIsInTheFit() && !MonteCarloCanBeHeld();
    if (Calculation.Refused) return;

    const int u = CountUnknowns(Job.ParamText);
    const int n = 3 * Job.Pairs();
    Column P = WeightsFromUseFlags(n);

    NormFit fit{.u = u, .n = n, .ParamText = Job.ParamText, .P = std::move(P)};
    MarkedWhileRunning marked;
    if (!FitInNorm(fit) || Run.JobGeneration != generation) return;
    NiceRotSolOfFit(Adjustment.Model, fit.Q);
    if (!IsTrue(Job.IsParaboloid)) TakePositiveForm(Adjustment.Model, fit.Q);  // once, behind its passes
    Calculation.Done = true;
    Calculation.JobGeneration = generation;
    Calculation.nFloat = u;
    Calculation.nObs = n;
    Calculation.Q = std::move(fit.Q);
    Calculation.v = std::move(fit.v);
    Calculation.P = std::move(fit.P);
    Calculation.Converged = Norm.Converged;
    Calculation.HeldByFit = fit.HeldByFit;
    Calculation.Finite = ParametersAreFinite() && ResidualsAreFinite();
    marked.Ended = true;
    // A pass of a shape is no result yet; its loop tells when it is one.
    if (!IsTrue(Job.IsParaboloid)) MarkResult(Calculation.Converged && Calculation.Finite);
    Job.RotXCopy = Job.RotX;
    Job.RotYCopy = Job.RotY;
    Job.RotZCopy = Job.RotZ;
    const FitModel& model = Adjustment.Model;
    std::copy(model.UnknownOf.begin(), model.UnknownOf.end(), Calculation.UnknownOf.begin());
    FillStatistics(model);
    if (useABC || !Selection.RDistShown) Job.RDist = Hypot3(Job.Rvec_x, Job.Rvec_y, Job.Rvec_z);
    if (useABC) FillToolStatistics();
    if (!IsTrue(Job.IsParaboloid)) NoteResult(fit);
    fit.Points = GatheredPoints{};  // before the transformed points take as much

    if (leastSquares && MonteCarloIsInTheFit() && Calculation.Finite) BringRunsToFormOfResult();

    // In the distance and the tool model a residual is not the way to the target point.
    if (Calculation.Finite) TransformAllPoints(model.Mode == FitMode::Coincide ? &Calculation.v : nullptr);
    FillRVectors(IsTrue(Settings.ShowRVec) && Calculation.Finite && model.Mode == FitMode::Distance);
    Run.TrafoValid = ToFlag(Calculation.Finite);
    Run.JobDirty = kTrue;
    ProgrammLogik();
}

}  // namespace corvinade::engine
