// Angles that give their rotation back. The decompositions of engine/rotations.h and the angles of a
// quaternion come from quotients that say nothing where two axes fall together; here every set of angles is
// held against its rotation before it leaves the program, and taken from the matrix itself where it is
// another rotation.
#pragma once

#include <array>
#include <cstdint>

#include "core/arrays.h"
#include "core/rooms.h"

namespace corvinade::engine {

// Rotations about axes that turn along: first axis, second, third.
enum class RotationOrder : std::uint8_t { XYZ, ZYX, ZXY, ZXZ, ZYZ };
inline constexpr std::array<RotationOrder, 5> kRotationOrders = {
    RotationOrder::XYZ, RotationOrder::ZYX, RotationOrder::ZXY, RotationOrder::ZXZ, RotationOrder::ZYZ};

// The axes of an order, as its name says them: "XYZ".
const char* AxesOf(RotationOrder order);

// The two sets of angles of one order, each in the order of its rotations, rad.
struct RotationSolutions {
    std::array<double, 3> First{}, Second{};
};

// The difference of matrix elements from which on angles are those of another rotation.
inline constexpr double kSameMatrix = 1e-9;

// The passive rotation that the angles of an order make: the transposes of the elementary rotations, the
// first one rightmost.
Mat3 RotationOf(RotationOrder order, const std::array<double, 3>& angles);

// Both sets of an order by its decomposition; one that does not give R back is replaced by that of the
// matrix. True where one had to be. Angles that are no numbers where R is not finite.
bool SoundSolutions(RotationOrder order, const Mat3& R, RotationSolutions& solutions);

// Both sets of an order by the arc tangents of two elements each, -pi to pi; where the first and the third
// axis fall together one of the many pairs of their angles.
RotationSolutions SolutionsOfMatrix(RotationOrder order, const Mat3& R);

// A rotation as quaternion, as axis and angle, and as the angles about x, y', z'' that come from the
// quaternion.
struct QuaternionForms {
    std::array<double, 4> Quaternion{};  // w x y z
    double Angle = 0;                    // the rotation turns by it about Axis, rad
    Vec3 Axis;
    Vec3 Angles;
    bool FromMatrix = false;  // some of them had to be taken from the rotation itself
};

// By MatrixToQuaternion where that gives R back. Else `own` are the angles about x, y', z'': those that R was
// made of; and axis and angle come from the quaternion by an arc tangent.
QuaternionForms SoundQuaternionForms(const Mat3& R, const Vec3& own);

// Notes that angles were taken from the matrix, once a calculation.
void NoteMatrixAngles();

}  // namespace corvinade::engine
