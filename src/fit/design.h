// The model of a fit and its linearisation at given parameters: all that the rows of the design matrix need
// beyond the points themselves.
#pragma once

#include <array>

#include "fit/arrays.h"
#include "fit/chain.h"
#include "fit/gathered_points.h"
#include "fit/parameters.h"

namespace corvinade::fit {

// What a point's equations demand.
enum class FitMode {
    Coincide,  // three equations: the transformed point is the target point
    Distance,  // one equation: it lies at the distance R_Dist from the target point
    Tool       // three equations: it is the target point less the tool vector turned into the pose's frame
};

// Which parameters float, over one run.
struct FitModel {
    FitMode Mode = FitMode::Coincide;
    int Unknowns = 0;                            // u
    std::array<int, kParameterEnd> UnknownOf{};  // number 1 to u of each parameter; 0 = held
    bool ToolFloats = false;                     // the three parts of the tool vector together
};

// The inner parameters are those whose derivative is a matrix D times the start point: rotations,
// scales and angles of the frame.
inline constexpr int kMostInner = kAngleZtoXY - kRotX + 1;

// Derivative of the transformed point with respect to an inner parameter: D p.
struct InnerDerivative {
    int Unknown = 0;  // its number
    Mat3 D;
    int OnlyColumn = 0;  // 1 to 3: D is zero outside this column; 0: it is full
    Vec3 AtCentre;       // D c, c the centre of the start points
};

struct Linearisation {
    Mat3 M;      // R K S
    Vec3 Shift;  // image of the start centre, reduced by the target centre; mm
    int InnerCount = 0;
    std::array<InnerDerivative, kMostInner> Inner;
    std::array<bool, 4> AxisFloats{};  // 1 to 3: the translation along this axis is an unknown
    double RDist = 0;
    Vec3 Tool;

    // What stands for D c in the column of an inner parameter along an axis. Where the translation of
    // that axis floats the columns are taken of the point less the centre, which is an exact change of
    // parameters: the translation's correction then is that of the cloud's centre.
    double Held(const InnerDerivative& inner, int axis) const {
        return AxisFloats[static_cast<std::size_t>(axis)] ? 0 : inner.AtCentre(axis);
    }
};

// At these parameters; `chain` is built from them, and kept where they are those of the last time.
Linearisation Linearise(const FitModel& model, const Parameters& parameters, const GatheredPoints& points,
                        ChainRecord& chain);
void Linearise(const FitModel& model, const Parameters& parameters, const GatheredPoints& points,
               ChainRecord& chain, Linearisation& at);

}  // namespace corvinade::fit
