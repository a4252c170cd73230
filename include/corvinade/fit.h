// The least-squares transformation between two sets of points, as `corvinade-cli fit` finds it: the same
// objects and the same bits. Lengths in mm, angles in rad. There is no state beside the arguments: any number
// of threads may fit at once.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <limits>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "corvinade/error.h"
#include "corvinade/points.h"
#include "corvinade/transformation.h"

namespace corvinade {

// Parameters by number, the index of everything that is held by parameter.
enum class Parameter : int {
    TraX,
    TraY,
    TraZ,
    RotX,
    RotY,
    RotZ,
    ScaleX,
    ScaleY,
    ScaleZ,
    ScaleXYZ,  // one scale of all axes, which the three others then follow
    AngleXY,
    Azimuth,
    AngleZtoXY
};
inline constexpr std::size_t kParameters = 13;

// "trax", "rotz", "scalexyz": as the command line calls them. ParameterByName throws InvalidInput for others.
CORVINADE_API const char* NameOf(Parameter parameter);
CORVINADE_API Parameter ParameterByName(std::string_view name);

enum class ParameterState {
    Unused,  // at the value that changes nothing
    Held,    // at a value that was given
    Floats
};

// What becomes of each parameter.
struct ParameterChoice {
    std::array<ParameterState, kParameters> State{};
    std::array<double, kParameters> Value{};  // of those held

    // Throws InvalidInput for a number that is infinite or none, and for a scale of 0.
    CORVINADE_API void Hold(Parameter parameter, double value);
};

// "level" (shifts and the rotation about z), "6" (rigid), "7" (one scale), "9" (a scale an axis), "12"
// (affine). Throws InvalidInput for another name.
CORVINADE_API ParameterChoice ChoiceByName(std::string_view name);

enum class Norm {
    L2,       // least squares
    L1,       // the least sum of absolute residuals, by weightings
    Loo,      // the least largest residual, by weightings
    L1Exact,  // on to the true optimum of the least sum
    Minimax   // on to the true optimum of the least largest
};
// "l2", "l1", "loo", "l1-exact", "minimax". Throws InvalidInput for another name.
CORVINADE_API Norm NormByName(std::string_view name);

struct FitOptions {
    ParameterChoice Parameters = ChoiceByName("6");
    Norm Which = Norm::L2;
    // Three a pair, x y z: 0 takes no part in the fit, anything else does. Empty: all do.
    std::span<const unsigned char> InUse;
    // A-priori standard deviations of the coordinates of each side, mm, in its own system: none (free of
    // errors), three (of all points alike) or three a point. They do not go with L1Exact and Minimax.
    std::span<const double> StartSigma, TargetSigma;
    std::array<std::size_t, 3> SeedPairs{0, 1, 2};  // that the start values come from, from 0
    int MaxIterations = 100;
    // Asked now and then, from the thread that fits: true ends the fit, which then throws Stopped. It may
    // throw itself, and the fit ends with that.
    std::function<bool()> StopIsWanted;
};

// What a fit has decided on its own, or leaves to be said. The command line tells these and, of the points
// behind a result, some more (docs/manual/20-notes.md).
enum class NoteCode {
    NotConverged,    // the result is not the best fit
    BetterStart,     // the iteration ended elsewhere, and began again from the best solution
    OpenParameters,  // the points leave parameters open, which have no sigma
    GimbalLock,      // likewise Rot x and Rot z, where Rot y is at a right angle
    NoEffect,        // likewise the azimuth, where z to xy is 0
    UnsettledFits,   // inner fits of a norm ended at their limit
    Mirrored,        // the result carries the points onto their mirror image
    CollapsedScale,  // the result carries points that are apart onto each other, or into one plane
    NearestForm,     // negative scales are told in their equal form without
    NoRedundancy,    // as many observations as unknowns: sigmas say nothing
    NormSigma        // the sigmas of a norm follow from its weights
};
struct Note {
    NoteCode Code;
    std::string Text;
};
CORVINADE_API const char* NameOf(NoteCode code);  // "mirrored", as the command line's JSON has it

struct FitResult {
    std::array<double, kParameters> Values{};  // by parameter
    std::array<ParameterState, kParameters> State{};
    // Root of the diagonal of the covariance matrix, s0 times that of Q; NaN where the points leave the
    // parameter open, 0 where it does not float.
    std::array<double, kParameters> Sigma{};
    Chain Transformation;
    Matrix4 Matrix{};
    bool Converged = false;
    int Iterations = 0, NormIterations = 0;
    std::size_t Observations = 0, Unknowns = 0;
    // s0 = sqrt(v'Pv / (sum of weights - 1)), and the same of each axis alone; mm.
    double S0 = 0;
    std::array<double, 3> SigmaOfAxis{};
    std::vector<double> Residuals;  // three a pair, x y z: transformed start minus target, mm
    std::vector<Note> Notes;
};

// The transformation that carries `start` onto `target`, pair by pair.
// Throws InvalidInput: sets of different lengths or without points, coordinates that are infinite or no
// number (also of pairs that take no part), fewer observations than unknowns, seed pairs that are not there,
// sigmas of another length or below 0, a pair whose sigmas give it no weight; Stopped; std::bad_alloc.
CORVINADE_API FitResult Fit(const Points& start, const Points& target, const FitOptions& options = {});

// The library's version, "2.0.64".
CORVINADE_API const char* Version();

}  // namespace corvinade
