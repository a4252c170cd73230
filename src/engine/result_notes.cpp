// What there is to say of a result that its numbers alone do not tell.
#include "engine/result_notes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <numbers>
#include <string>

#include "core/job.h"
#include "core/notes.h"
#include "core/numbers.h"
#include "engine/adjustment.h"
#include "engine/calculation.h"
#include "engine/collapse.h"
#include "engine/design.h"
#include "engine/norm_table.h"
#include "engine/parameter_kind.h"
#include "fit/loose_scales.h"
#include "fit/loose_turns.h"
#include "fit/open_parameters.h"
#include "fit/other_place.h"
#include "fit/other_turn.h"
#include "fit/small_svd.h"

namespace corvinade::engine {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

void TakeSigma(int parameter) {
    constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
    Calculation.Sigma[At(parameter)] = Calculation.Significance[At(parameter)] = kNone;
    // The length of the tool vector is no better known than its parts.
    if (parameter >= kRvecX && parameter <= kRvecZ)
        Calculation.Sigma[kRDist] = Calculation.Significance[kRDist] = kNone;
}

void TakeSigmaOfAngles(const FitModel& model) {
    for (int k = kRotX; k <= kRotZ; ++k)
        if (model.UnknownOf[At(k)] != 0) TakeSigma(k);
}

void NoteOpen(const NormFit& fit, const OpenParameters& open, const FitModel& model) {
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (open.Open[At(k)]) TakeSigma(k);
    std::array<bool, kParameterEnd> byPoints = open.Open;
    if (open.GimbalLock) {
        AddNote(
            NoteCode::GimbalLock,
            "Rot y is at a right angle, where Rot x and Rot z turn about the same axis (gimbal lock): only "
            "both together are determined, and neither has a sigma; hold one of them");
    }
    if (open.AzimuthWithoutEffect) {
        if (!fit.HeldByFit[kAzimuth])  // else that is told already
            AddNote(NoteCode::NoEffect,
                    "z to xy is 0, where the Azimuth has no effect: what is shown for it is arbitrary");
        byPoints[kAzimuth] = false;
    }
    if (open.ByPoints() == 0) return;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (byPoints[At(k)]) Job.LeftOpen[At(k)] = 1;
    AddNote(NoteCode::OpenParameters,
            (model.Mode == FitMode::Tool
                 ? std::string("The points and poses in use, turned about one axis alone perhaps, leave ")
                 : std::string("The points in use, on one line or in one plane perhaps, leave ")) +
                std::to_string(open.ByPoints()) + " of the " + std::to_string(model.Unknowns) +
                " parameters open: what is shown for " + NamesOf(byPoints) +
                " is arbitrary and has no sigma");
}

std::string DirectionText(const Vec3& w) {
    return "(" + FormatNumber(w(1), "0.000") + ", " + FormatNumber(w(2), "0.000") + ", " +
           FormatNumber(w(3), "0.000") + ")";
}

// What the poses determine of the tool vector by the errors of their angles alone.
void NoteLeftByPoses(const PosesLeave& left) {
    if (left.Directions.empty()) return;
    bool told = true;  // the rank of the design matrix shows as much
    for (int k = kTraX; k < kParameterEnd; ++k) {
        if (!left.Of[At(k)]) continue;
        told = told && Job.LeftOpen[At(k)] != 0;
        TakeSigma(k);
        Job.LeftOpen[At(k)] = 1;
    }
    if (told) return;
    std::string directions;
    for (const Vec3& w : left.Directions)
        directions += (directions.empty() ? "" : " and ") + DirectionText(w);
    constexpr double kDegree = 3.14159265358979323846 / 180;
    AddNote(NoteCode::OpenParameters,
            "The poses in use are turned about one axis alone but for " +
                FormatNumber(left.Turned / kDegree, "0.00000") +
                " degree, which errors of their angles explain (such as of " +
                FormatNumber(left.Noise / kDegree, "0.00000") +
                " degree): they do not tell the tool vector along " + directions +
                " of the flange from a translation, and this part of it is " +
                (left.PutAtZero ? "put at 0" : "what those errors make of it") + "; what is shown for " +
                NamesOf(left.Of) + " is arbitrary and has no sigma; turn the poses about a second axis");
}

// Turns that the sum does not depend on, though the rank of the design matrix does not show it: at gimbal
// lock, whose axes do not reach every turn, and where the targets are what lies on one line or at one place.
// And those that noise alone determines.
void NoteLooseTurns(const JudgedResult& result, const OpenParameters& open) {
    const FitModel& model = result.Model;
    std::array<bool, kParameterEnd> free{}, hardly{};
    int turns = 0;
    double sigma = 0;
    for (const LooseTurn& turn : FindLooseTurns(result)) {
        turns += turn.Open ? 1 : 0;
        if (!turn.Open) sigma = std::max(sigma, turn.Sigma);
        for (int k = kTraX; k < kParameterEnd; ++k)
            if (turn.Moves[At(k)]) (turn.Open ? free : hardly)[At(k)] = true;
    }
    const auto told = [](const std::array<bool, kParameterEnd>& marked) {
        for (int k = kRotX; k <= kRotZ; ++k)
            if (marked[At(k)] && Job.LeftOpen[At(k)] == 0) return false;
        return true;
    };
    if (turns > 0 && (turns > open.ByPoints() || !told(free))) {
        for (int k = kTraX; k < kParameterEnd; ++k) {
            if (!free[At(k)]) continue;
            TakeSigma(k);
            Job.LeftOpen[At(k)] = 1;
        }
        AddNote(
            NoteCode::OpenParameters,
            (model.Mode == FitMode::Tool ? std::string("The points in use, or the tips of their poses, are")
                                         : std::string("The points in use, or their targets, are")) +
                " on one line or at one place, so that a turn leaves the deviations as they are: what is "
                "shown for " +
                NamesOf(free) + " is arbitrary and has no sigma");
    }
    // Of a collapsed scale nothing is known anyway.
    if (sigma == 0 || IsTrue(Job.Collapsed) || told(hardly)) return;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (hardly[At(k)]) Job.LeftOpen[At(k)] = 1;
    constexpr double kNothing = 1;  // rad: a sigma of this size says no more
    AddNote(
        NoteCode::HardlyKnown,
        (model.Mode == FitMode::Tool
             ? std::string(
                   "The points in use, or the tips of their poses, are so near to one line or one place "
                   "that a turn is ")
             : std::string("The points in use, or their targets, are so near to one line or one place that a "
                           "turn is ")) +
            (sigma < kNothing ? "known to " + ShownAngle(sigma) + " " + Job.AngleUnitName + " only"
                              : std::string("not known at all")) +
            ": what is shown for " + NamesOf(hardly) +
            " is as good as open, and what lies off the points is put all but anywhere");
}

// The result shows a held angle as it was given, not in the form that turns Rot y by more than a right angle.
bool ShowsHeldAngles(const NormFit& fit, const FitModel& model) {
    constexpr double kSame = 1e-6, kRightAngle = std::numbers::pi / 2;
    if (std::fabs(Job.RotY) > kRightAngle) return false;
    for (int k = kRotX; k <= kRotZ; ++k)
        if (model.UnknownOf[At(k)] == 0 &&
            std::fabs(std::remainder(ParameterValue(Job, k) - fit.Choice.Value[At(k)],
                                     2 * std::numbers::pi)) > kSame)
            return false;
    return true;
}

// Points on a line that what is held lets lie in two ways.
void NoteOtherTurn(const NormFit& fit, const JudgedResult& result) {
    const bool told = std::any_of(&Job.LeftOpen[kRotX], &Job.LeftOpen[kRotZ] + 1,
                                  [](const auto& mark) { return mark != 0; });
    if (told || IsTrue(Job.Collapsed)) return;
    const OtherTurn other = FindOtherTurn(result, ShowsHeldAngles(fit, result.Model));
    if (other.Angle == 0) return;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (other.Moves[At(k)]) Job.LeftOpen[At(k)] = 1;
    AddNote(
        NoteCode::HardlyKnown,
        "The points in use, or their targets, are so near to one line that another result, turned about it by " +
            ShownAngle(other.Angle) + " " + Job.AngleUnitName +
            ", keeps what is held and fits as well: what is shown for " + NamesOf(other.Moves) +
            " is one of two, and what lies off the points may be put elsewhere");
}

// Flat points that what is held lets lie otherwise by other scales.
void NoteOtherPlace(const NormFit& fit, const JudgedResult& result) {
    if (IsTrue(Job.Collapsed)) return;
    OtherPlace other = FindOtherPlace(result);
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (Job.LeftOpen[At(k)] != 0 || fit.HeldByFit[At(k)]) other.Moves[At(k)] = false;
    if (std::find(other.Moves.begin(), other.Moves.end(), true) == other.Moves.end()) return;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (other.Moves[At(k)]) Job.LeftOpen[At(k)] = 1;
    AddNote(NoteCode::HardlyKnown,
            "The points in use are so near to one line or one plane that another result, with other scales, "
            "keeps what is held and fits as well: what is shown for " +
                NamesOf(other.Moves) +
                " is one of several, and what lies off the points may be put elsewhere; hold more, or start "
                "from values that are near");
}

// Of those that are not told as open already.
void NoteLooseScales(const NormFit& fit, const JudgedResult& result) {
    const FitModel& model = result.Model;
    std::array<bool, kParameterEnd> open{};
    for (int k = kTraX; k < kParameterEnd; ++k) open[At(k)] = Job.LeftOpen[At(k)] != 0;
    LooseScales loose = FindLooseScales(result, open);
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (Job.LeftOpen[At(k)] != 0 || fit.HeldByFit[At(k)]) loose.Of[At(k)] = false;
    if (!loose.Any() || IsTrue(Job.Collapsed)) return;
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (loose.Of[At(k)]) Job.LeftOpen[At(k)] = 1;
    AddNote(
        NoteCode::HardlyKnown,
        (model.Mode == FitMode::Tool
             ? std::string(
                   "The points in use, or the tips of their poses, stand off a plane, a line or one place by "
                   "little more than their noise, which alone determines ")
             : std::string(
                   "The points in use, or their targets, stand off a plane or a line by little more than "
                   "their noise, which alone determines ")) +
            NamesOf(loose.Of) +
            ": what is shown is as good as open, and what lies off the points is put "
            "all but anywhere; hold what leads across them");
}

// Near the lock the two angles are determined, but by little.
void NoteNearLock(const FitModel& model) {
    constexpr double kNear = 1e-4;
    const double cosine = std::fabs(std::cos(Job.RotY));
    if (cosine > kNear || model.UnknownOf[kRotX] == 0 || model.UnknownOf[kRotZ] == 0) return;
    const bool known = !IsLeftOpen(kRotX) && !IsLeftOpen(kRotZ);
    AddNote(NoteCode::GimbalLock,
            std::string(
                "Rot y is all but at a right angle (gimbal lock): Rot x and Rot z are hardly told apart") +
                (known ? ", and their sigmas are large" : "") +
                "; what both do together is as well determined as ever");
}

// How far R K S is from carrying all into one plane: 1 for right angles, 0 for a plane, below 0 mirrored.
double Handedness(const Mat3& M) {
    double sizes = 1;
    for (int column = 1; column <= 3; ++column)
        sizes *= std::sqrt(M(1, column) * M(1, column) + M(2, column) * M(2, column) +
                           M(3, column) * M(3, column));
    return sizes > 0 ? Determinant3(M) / sizes : 0;
}

// The weights of a least sum are 1/|deviation|, and next to nothing is left of the deviations that count
// most. Those of a least largest deviation tell what the points would have made of the parameters by a least
// sum of squares, while the result hangs on as many coordinates as there are unknowns, and one.
void NoteSigmaOfNorm() {
    if (!Calculation.Converged || Calculation.s0 == 0) return;
    switch (NormOfJob().Fit) {
        case FitNorm::LeastSquares:
            return;
        case FitNorm::LeastSum:
            AddNote(
                NoteCode::NormSigma,
                "Sigma, significance, s0 and the mean errors follow from the weights 1/|deviation| of the "
                "norm L1 and do not tell how well the parameters are known; those of L2 do, and Monte Carlo");
            return;
        case FitNorm::LeastLargest:
            constexpr double kRounding = 1e-9;  // mm
            if (Calculation.s0 < kRounding) return;
            AddNote(NoteCode::NormSigma,
                    "Sigma and significance count every point, but the few with the largest deviations make "
                    "the result of the norm Loo: where errors are normally distributed it is known worse, of "
                    "many points several times; Monte Carlo tells how well");
    }
}

// What is marked as open, or as good as open, has no significance, wherever the result is shown.
void TakeSignificanceOfMarked(const FitModel& model) {
    for (int k = kTraX; k < kParameterEnd; ++k) {
        if (model.UnknownOf[At(k)] == 0 || Job.LeftOpen[At(k)] == 0) continue;
        Calculation.Significance[At(k)] = std::numeric_limits<double>::quiet_NaN();
        if (k >= kRvecX && k <= kRvecZ)
            Calculation.Significance[kRDist] = std::numeric_limits<double>::quiet_NaN();
    }
}

void NoteRedundancy(const NormFit& fit, const FitModel& model) {
    int observations = 0;
    for (int i = 1; i <= Job.Pairs(); ++i) {
        if (model.Mode == FitMode::Distance) {
            observations += Used(i, 3) ? 1 : 0;
            continue;
        }
        for (int axis = 1; axis <= 3; ++axis) observations += Used(i, axis) ? 1 : 0;
    }
    if (observations != fit.u) return;
    AddNote(NoteCode::NoRedundancy, "no redundancy: sigma says nothing (" + std::to_string(observations) +
                                        " observations for " + std::to_string(fit.u) + " parameters)");
    AddNote(
        NoteCode::EqualResiduals,
        "As many observations as parameters: the deviations are 0, or equal, whatever was measured, and no "
        "error can show in them");
}

}  // namespace

bool IsLeftOpen(int parameter) {
    return Calculation.Finite && std::isnan(Calculation.Significance[At(parameter)]);
}

bool IsWithoutSigma(int parameter) {
    return Calculation.Finite && std::isnan(Calculation.Sigma[At(parameter)]);
}

std::string NamesLeftOpen() {
    std::array<bool, kParameterEnd> open{};
    for (int k = kTraX; k < kParameterEnd; ++k)
        open[At(k)] = Calculation.UnknownOf[At(k)] != 0 && IsLeftOpen(k);
    return NamesOf(open);
}

void NoteCollapseOnShape(const GatheredPoints& points) {
    const FitModel& model = Adjustment.Model;
    if (!NoteCollapse(model, points, Linearise(model, points))) return;
    TakeSigmaOfAngles(model);
}

void NoteResult(const NormFit& fit) {
    if (!Calculation.Finite) return;
    const FitModel& model = Adjustment.Model;
    if (model.Unknowns != fit.u) return;
    const Linearisation at = Linearise(model, fit.Points);
    const OpenParameters open = FindOpenParameters(fit.Points, model, CoordinateInUse, ParametersOf(Job), at);
    constexpr double kPlane = 1e-9;
    NoteTooNear(model);
    const bool onePlace = NoteCollapse(model, fit.Points, at);
    if (onePlace) TakeSigmaOfAngles(model);
    if (!onePlace) NoteOpen(fit, open, model);
    NoteLeftByPoses(fit.LeftByPoses);
    if (!onePlace && !IsTrue(Job.IsParaboloid)) {
        const Parameters values = ParametersOf(Job);
        const JudgedResult result = {fit.Points,
                                     model,
                                     at,
                                     values,
                                     CoordinateInUse,
                                     NormOfJob().Fit == FitNorm::LeastSum,
                                     fit.LeftByPoses.Directions};
        NoteLooseTurns(result, open);
        NoteOtherTurn(fit, result);
        NoteOtherPlace(fit, result);
        NoteLooseScales(fit, result);
    }
    for (int k = kTraX; k < kParameterEnd; ++k)
        if (fit.HeldByFit[At(k)]) TakeSigma(k);  // what the fit did of it is told already
    if (!onePlace && !open.GimbalLock) NoteNearLock(model);
    const double handedness = Handedness(at.M);
    if (!onePlace && std::fabs(handedness) < kPlane)
        NoteCollapsed("The result carries every body into one plane: the angles of its frame have closed up");
    if (!onePlace && handedness < -kPlane)
        AddNote(NoteCode::Mirrored,
                "The result is mirrored: it carries the points onto their mirror image, as no movement can; "
                "look for names that are exchanged or an axis that points the other way");
    TakeSignificanceOfMarked(model);
    NoteRedundancy(fit, model);
    NoteSigmaOfNorm();
}

}  // namespace corvinade::engine
