// The motion that a cloud goes through.
#pragma once

#include <array>
#include <optional>

#include "core/rooms.h"

namespace corvinade::import {

struct CloudMotion {
    std::array<double, 9> M{1, 0, 0, 0, 1, 0, 0, 0, 1};  // by rows
    std::array<double, 3> T{};                           // in the unit of the cloud
    // What directions turn by: the orthogonal matrix nearest to M, of determinant -1 where M mirrors. Scales
    // of M = R*S leave R, whatever their sizes.
    std::array<double, 9> Turn{1, 0, 0, 0, 1, 0, 0, 0, 1};
    bool Mirrors = false;
    std::array<double, 4> Quaternion{1, 0, 0, 0};  // w, x, y, z of Turn, w >= 0; of no use where it mirrors

    std::array<double, 3> Carry(const std::array<double, 3>& p) const {
        return {M[0] * p[0] + M[1] * p[1] + M[2] * p[2] + T[0],
                M[3] * p[0] + M[4] * p[1] + M[5] * p[2] + T[1],
                M[6] * p[0] + M[7] * p[1] + M[8] * p[2] + T[2]};
    }
    std::array<double, 3> Rotate(const std::array<double, 3>& n) const {
        return {Turn[0] * n[0] + Turn[1] * n[1] + Turn[2] * n[2],
                Turn[3] * n[0] + Turn[4] * n[1] + Turn[5] * n[2],
                Turn[6] * n[0] + Turn[7] * n[1] + Turn[8] * n[2]};
    }
};

// X = T + M*x. Nothing where M is singular, or nearly so: a determinant of less than 1e-12 of the product of
// its rows' lengths. All numbers have to be finite.
std::optional<CloudMotion> MotionOf(const std::array<double, 9>& m, const std::array<double, 3>& t);

// The way back, the inverse of the whole 4 by 4 matrix; nothing where that is nearly singular.
std::optional<CloudMotion> InverseOf(const CloudMotion& motion);

// The same motion for coordinates that are `factor` times as large: those of another unit.
CloudMotion InUnit(CloudMotion motion, double factor);

// Quaternions w, x, y, z: the rotation b, then a.
std::array<double, 4> QuaternionProduct(const std::array<double, 4>& a, const std::array<double, 4>& b);

}  // namespace corvinade::import
