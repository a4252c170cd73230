// The solution of the job in all forms: its matrices, the angles of five rotation orders, quaternion, axis
// and angle, the inverse, and the spread of the last Monte Carlo runs.
#pragma once

#include <array>

#include "core/arrays.h"
#include "core/rooms.h"
#include "engine/monte_carlo.h"
#include "engine/sound_angles.h"

namespace corvinade::engine {

struct SolutionDetails {
    Mat3 Rotation, Affine, Scale;                // R, K and S of X = T + R K S x
    Vec3 Shift;                                  // T, mm
    std::array<RotationSolutions, 5> Solutions;  // by RotationOrder
    std::array<double, 4> Quaternion{};          // w x y z of R
    double Angle = 0;                            // R turns by it about Axis, rad
    Vec3 Axis;
    Vec3 QuaternionAngles;  // about x, y', z'', rad
    Vec3 InverseShift;      // mm
    Matrix Inverses;        // a row a solution as in InverseRecord; Rows -1 when there is none

    // Sigma of each array of results, by its number; mm and rad.
    bool HasSpread = false;        // Monte Carlo runs have reached their end
    bool SpreadIsNothing = false;  // these had no noise, and the spread is rounding
    std::array<double, kMonteCarloArrays + 1> Spread{};

    const RotationSolutions& Of(RotationOrder order) const {
        return Solutions[static_cast<std::size_t>(order)];
    }
};

// Takes the present parameters of the job apart. Where they are not finite, the angles are no numbers
// either; angles that would not give the rotation back are those of the matrix, with a note. Where the
// inverse has no parameters of the model's own form, the message of its search comes. Reads Job and
// MonteCarlo; writes Inverse.
SolutionDetails DetailsOfSolution();

}  // namespace corvinade::engine
