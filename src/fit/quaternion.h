// Rotation matrix, quaternion and axis with angle.
#pragma once

#include <array>

#include "fit/arrays.h"

namespace corvinade::fit {

// The quaternion of a rotation matrix by Shepperd's rule, its axis-angle form, and the angles of
// RotMatrixXYZ that give the same matrix, rad.
//   record   entries 1 to 8: q0, q1, q2, q3, theta, e1, e2, e3; Require: the caller has sized it so
void MatrixToQuaternion(const Mat3& M, Column& record, double& a, double& b, double& c);

// The angles of RotMatrixXYZ for a unit quaternion. At the pole of b, where a and c cannot be told
// apart, a = c = pi/4 is the fixed answer.
void QuaternionToAngles(double q0, double q1, double q2, double q3, double& a, double& b, double& c);

// The rotation matrix of a quaternion w, x, y, z of any length but 0.
Mat3 RotationOf(const std::array<double, 4>& quaternion);

}  // namespace corvinade::fit
