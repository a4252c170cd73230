// The outer loop of the fit to a shape.
#include "paraboloid/paraboloid.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>

#include "core/notes.h"
#include "core/numbers.h"
#include "core/platform.h"
#include "core/run.h"
#include "core/text.h"
#include "core/units.h"
#include "core/window.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/calculation_window.h"
#include "engine/equal_forms.h"
#include "engine/monte_carlo.h"
#include "engine/result_notes.h"
#include "engine/seed.h"
#include "engine/start_values.h"
#include "engine/transform.h"
#include "fit/shape.h"
#include "paraboloid/form_stop_para_trafo.h"
#include "paraboloid/shape_passes.h"

namespace corvinade::paraboloid {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

bool CalculationWindowIsOpen() {
    return IsLoaded("FormTrafoBerechnung");
}

void TransformByParameters() {
    Job.RotXCopy = Job.RotX;
    Job.RotYCopy = Job.RotY;
    Job.RotZCopy = Job.RotZ;
    TransformAllPoints(nullptr);
}

// False when the points were replaced meanwhile.
bool ProjectPairs() {
    const std::uint64_t generation = Run.JobGeneration;
    double distance = 0;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        YieldToEvents();
        if (Run.JobGeneration != generation) return false;
        Vec3 nearest;
        const Vec3 point = TransformedPoint(i);
        NearestShapePoint(point(1), point(2), point(3), Job.ParaboloidShape, nearest(1), nearest(2),
                          nearest(3), distance);
        PutTarget(i, nearest);
    }
    return true;
}

// The calculation window gives way to the small one whose button ends the loop.
class WindowGivesWay {
public:
    WindowGivesWay() { TrafoWindow.Window.Enabled = !CalculationWindowIsOpen(); }
    ~WindowGivesWay() {
        CloseStopWindow();
        ParaboloidRun.ParaStopRequested = kFalse;
        TrafoWindow.Window.Enabled = true;
    }
    WindowGivesWay(const WindowGivesWay&) = delete;
    WindowGivesWay& operator=(const WindowGivesWay&) = delete;
};

std::array<bool, kParameterEnd> FloatsOfJob() {
    std::array<bool, kParameterEnd> floats{};
    for (std::size_t k = kTraX; k < kParameterEnd; ++k) floats[k] = Job.ParamText[k] == kFloat;
    return floats;
}

bool Stopped() {
    return IsTrue(Run.StopRequested) || IsTrue(ParaboloidRun.ParaStopRequested);
}

// The way of a job: each of its passes is a whole calculation.
WaySteps StepsOfJob(double tolerance) {
    return {.Loop = [tolerance] { return FitToShape(tolerance); },
            .GoToRest =
                [](bool& moved) {
                    ShapePasses passes;
                    return passes.Begin() ? GoToRest(passes, moved) : PassEnd::Lost;
                },
            .SearchBeside =
                [](BesideSearch& found) {
                    ShapePasses passes;
                    return passes.Begin() ? SearchBeside(passes, found) : PassEnd::Lost;
                },
            .Now = [] { return ParametersOf(Job); },
            .Put = [](const Parameters& now) { PutParameters(now, Job); },
            .s0 = [] { return Calculation.s0; },
            .Stopped = Stopped,
            .ThrownOff =
                [] {
                    AddNote(
                        NoteCode::BetterStart,
                        "The acceleration of the passes along the shape had thrown them off; the result is "
                        "that of passes without it, from the best place that they had come to");
                }};
}

void NoteBeside(const BesideSearch& found) {
    if (found.Better)
        AddNote(NoteCode::BetterStart,
                "The passes along the shape had come to rest at a place that is not the best; the result is "
                "that of a better one beside it");
    if (found.Doubt)
        AddNote(
            NoteCode::UnsettledFits,
            "The rows of the shape are so far apart that the result hangs on them: other start values may "
            "lead to another place, with a smaller s0, and the sigmas do not tell how far off the "
            "parameters may be; rows of the shape that are nearer to each other help");
}

// The sigmas take the places on the shape for measured targets, three coordinates each, which they are not.
void NoteSigmasOfShape(ShapePasses& passes) {
    constexpr double kMuch = 2;
    const std::vector<double> known = SigmasByDistances(passes.Fit);
    std::string names;
    double most = 0;
    for (int k = 1; k < static_cast<int>(known.size()); ++k) {
        const double times = known[At(k)] / Calculation.Sigma[At(k)];
        if (!(times > kMuch) || !std::isfinite(times)) continue;
        names += (names.empty() ? "" : ", ") + std::string(ParameterName(k));
        most = std::max(most, times);
    }
    if (names.empty()) return;
    std::array<char, 32> times{};
    std::snprintf(times.data(), times.size(), most < 10 ? "%.1f" : "%.0f", most);
    AddNote(NoteCode::ShapeSigma,
            "Sigma takes the places on the shape for measured targets; by the distances from "
            "the shape alone it is too small for " +
                names + ", by up to " + times.data() +
                " times; Monte Carlo tells how well the parameters are known");
}

// Parameters that the shape leaves open, which then have no sigma, a scale that has gone to 0, and points
// that the shape does not reach.
void NoteLimitsOfShape() {
    ShapePasses passes;
    if (!passes.Begin()) return;
    const std::vector<int> open = OpenOfShape(passes.Fit);
    std::string names;
    for (const int k : open) {
        names += (names.empty() ? "" : ", ") + std::string(ParameterName(k));
        Calculation.Sigma[At(k)] = Calculation.Significance[At(k)] = std::numeric_limits<double>::quiet_NaN();
        Job.LeftOpen[At(k)] = 1;
    }
    if (!open.empty())
        AddNote(NoteCode::OpenParameters,
                "The shape does not hold " + names + ": what is shown for " +
                    (open.size() == 1 ? "it is arbitrary, and it has no sigma"
                                      : "them is arbitrary, and they have no sigma"));
    NoteCollapseOnShape(passes.Fit.Points);
    if (!IsTrue(Job.Collapsed)) NoteSigmasOfShape(passes);
    int used = 0;
    for (int i = 1; i <= Job.Pairs(); ++i)
        if (Used(i, 1) || Used(i, 2) || Used(i, 3)) ++used;
    if (used <= passes.Fit.Model.Unknowns)
        AddNote(NoteCode::NoRedundancy, "no redundancy: sigma says nothing (" + std::to_string(used) +
                                            " points on the shape, each of which "
                                            "tells one distance from it, for " +
                                            std::to_string(passes.Fit.Model.Unknowns) + " parameters)");
    int beyond = 0;
    std::string points;
    constexpr int kMostNames = 5;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        const Vec3 point = TransformedPoint(i);
        if (!NearestShapeFoot(point(1), point(2), point(3), Job.ParaboloidShape).Beyond) continue;
        if (++beyond <= kMostNames)
            points += (beyond == 1 ? "\"" : ", \"") + Printable(Job.Start.Name[At(i)]) + "\"";
    }
    if (beyond > kMostNames) points += " and " + std::to_string(beyond - kMostNames) + " more";
    if (beyond > 0)
        AddNote(NoteCode::TableExtended,
                (beyond == 1 ? "The point " + points + " lies" : "The points " + points + " lie") +
                    " beyond the end of the shape's table, whose last segment is extended",
                "", 0, beyond);
}

// Where the runs were stopped no loop follows that would have to be stopped again.
bool MonteCarloRuns() {
    ShowWindow("FormStopParaTrafo");
    if (!RunMonteCarloOfShape()) return false;
    if (IsTrue(Run.StopRequested)) StopIt();
    Run.StopRequested = ParaboloidRun.ParaStopRequested = kFalse;
    return true;
}

}  // namespace

void PutTarget(int i, const Vec3& target) {
    Job.Target.SetPoint(i, target(1), target(2), target(3));
}

void BeginOuterLoop() {
    BeginLoop(ParaboloidRun.Loop);
}

bool JobHasShape() {
    if (ShapeServes(Job.ParaboloidShape)) return true;
    ShowMessage(
        "There is no shape of a paraboloid to fit to. Please import a shape file with at least 2 rows.");
    return false;
}

void TakeStartOfShape() {
    SeedPoints seeds = TakeSeedPoints();
    seeds.ScalesAreOne = true;
    TakeStartValues(ReadStartChoice(Job.ParamText), seeds);
    GetSeed();
}

void CountPass() {
    if (ParaboloidRun.ParaPass < kMostPasses) ++ParaboloidRun.ParaPass;
}

void TellOfMostPasses() {
    ShowMessage("Paraboloid stopped after " + PlainText(kMostPasses) + " passes, s0 does not come to rest!");
}

bool CalcParaboloid() {
    if (ParaboloidRun.ParaPass == 1) TakeStartOfShape();
    TransformByParameters();
    if (!ProjectPairs()) return false;
    CountPass();
    const std::uint64_t generation = Run.JobGeneration;
    ButtonCalcErsatz();
    if (Run.JobGeneration != generation || Calculation.Refused) return false;
    ParaboloidRun.S0 = Calculation.s0;
    Parameters now = ParametersOf(Job);
    EndOfPass(ParaboloidRun.Loop, FloatsOfJob(), Calculation.s0, Calculation.Converged && Calculation.Finite,
              now);
    PutParameters(now, Job);
    TransformByParameters();
    return true;
}

bool Paraboloid() {
    if (!CalcParaboloid()) return false;
    if (!CalculationWindowIsOpen()) return true;
    AnzeigeReset();
    SetText(*QualityRow(kS0).Field, ShownLength(Calculation.s0));
    SetText(*QualityRow(kSxyz).Field, ShownLength(Calculation.SigmaXYZ));
    return true;
}

LoopEnd FitToShape(double tolerance) {
    BeginOuterLoop();
    const std::uint64_t generation = Run.JobGeneration;
    ShowWindow("FormStopParaTrafo");
    return LoopToRest(
        ParaboloidRun.Loop, tolerance,
        {.Pass =
             [](double& s0) {
                 if (!Paraboloid()) return PassEnd::Lost;
                 s0 = ParaboloidRun.S0;
                 return PassEnd::Done;
             },
         .GoesOn =
             [generation] {
                 YieldToEvents();
                 return Run.JobGeneration == generation;
             },
         .StopIsWanted = [] { return Stopped() || !Calculation.Converged || !Calculation.Finite; },
         .MostPasses = TellOfMostPasses});
}

void CalculateParaboloid() {
    if (CalculationWindowIsOpen()) TakeSelection();
    const bool runs = IsTrue(MonteCarlo.MonteCarloOn);
    Calculation.Refused = !JobHasShape() || (runs && !MonteCarloCanBeHeld());
    if (Calculation.Refused || CalculationIsRefused()) return;
    const std::uint64_t generation = Run.JobGeneration;
    const WindowGivesWay gives;
    ForgetCalculationNotes();
    Run.CalcDone = kFalse;
    ParaboloidRun.ParaPass = 1;
    ParaboloidRun.ParaStopRequested = kFalse;
    if (runs && !MonteCarloRuns()) return;
    constexpr double kRest = 1e-6;
    const double tolerance = kRest * Units.LengthFactor;
    const WaySteps steps = StepsOfJob(tolerance);
    LoopEnd end = FitToRest(ParaboloidRun.Loop, steps);
    BesideSearch beside;
    if (end == LoopEnd::Rest) end = FitBeside(ParaboloidRun.Loop, steps, beside);
    if (Run.JobGeneration != generation) return;
    if (end == LoopEnd::Stopped) Calculation.Converged = false;  // though the fit of the last pass did
    if (Calculation.Refused) return;
    MarkResult(Calculation.Converged && Calculation.Finite);
    TakePositiveForm(Adjustment.Model, Calculation.Q);
    TransformByParameters();
    if (!Calculation.Finite) return;
    if (runs) BringRunsToFormOfResult();
    NoteLimitsOfShape();
    // Beside a scale that has collapsed lesser ones are all better.
    if (end == LoopEnd::Rest && !IsTrue(Job.Collapsed)) NoteBeside(beside);
}

}  // namespace corvinade::paraboloid
