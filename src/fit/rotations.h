// The Euler-angle forms of a rotation and their decomposition into angles, rad. Each form is a passive
// rotation: with Rx, Ry, Rz the elementary rotations that turn a point, it is the product of their
// transposes that stands beside it. RotMatrixXYZ, the chain's own form, is in fit/chain.h.
#pragma once

#include "fit/arrays.h"

namespace corvinade::fit {

void RotMatrixYXZ(double a, double b, double c, Mat3& R);  // Ry(-b) Rx(-a) Rz(-c)
void RotMatrixZYX(double a, double b, double c, Mat3& R);  // Rx(-a) Ry(-b) Rz(-c)
void RotMatrixZYZ(double a, double b, double c, Mat3& R);  // Rz(-c) Ry(-b) Rz(-a)
void RotMatrixZXZ(double a, double b, double c, Mat3& R);  // Rz(-c) Rx(-b) Rz(-a)

// Each decomposition finds two triples (a, b, c), -pi to pi each, by trying the two candidates of every
// angle against the matrix. For a rotation both describe it; neither slot is the better one by rule.
// A matrix that is no rotation gives the triples that come nearest among the candidates.
void EulerFromMatrixXYZ(const Mat3& M, Vec3& first, Vec3& second);
void EulerFromMatrixYXZ(const Mat3& M, Vec3& first, Vec3& second);
void EulerFromMatrixZYX(const Mat3& M, Vec3& first, Vec3& second);
void EulerFromMatrixZYZ(const Mat3& M, Vec3& first, Vec3& second);
void EulerFromMatrixZXZ(const Mat3& M, Vec3& first, Vec3& second);

// The inverse of a rotation by MatrixInverse. Its sweep takes the pivots as they come, so that right angles,
// which put about 0 on the diagonal, cost it some or all of its digits; where it is off from the transpose
// by more than 1e-9 the transpose is the answer.
Mat3 InverseRotation(const Mat3& R);

// The rotation about w by its length, rad (Rodrigues' formula), and the derivative of such a turn of M's
// columns at none: w x each column.
Mat3 RotationAbout(const Vec3& w);
Mat3 Turned(const Vec3& w, const Mat3& M);

}  // namespace corvinade::fit
