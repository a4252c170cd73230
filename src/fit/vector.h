// Small vector operations. Results come last; an out vector may be one of the inputs.
#pragma once

#include "fit/arrays.h"

namespace corvinade::fit {

void VecAdd(const Vec3& a, const Vec3& b, Vec3& c);  // c = a + b
void VecSub(const Vec3& a, const Vec3& b, Vec3& c);  // c = a - b
void VecScale(const Vec3& a, double f, Vec3& c);     // c = a f
void VecDot(const Vec3& a, const Vec3& b, double& value);
void VecCross(const Vec3& a, const Vec3& b, Vec3& c);
void VecLength(const Vec3& a, double& value);
void VecNormalize(const Vec3& a, Vec3& c);  // a zero vector stays a zero vector

double Hypot2(double x, double y);
double Hypot3(double x, double y, double z);

// The angle from the Z axis, rad; 0 also along -Z, as ArcCos has it.
double PolarAngle(double x, double y, double z);

// Signed distance of p from the plane through q with the normal n, which need not be a unit vector.
void PlaneDistance(const Vec3& q, const Vec3& n, const Vec3& p, double& value);

// Foot of the perpendicular from p on the line through a with the direction d (any length).
void LinePointFoot(const Vec3& a, const Vec3& d, const Vec3& p, Vec3& f);
double LinePointDistance(const Vec3& a, const Vec3& d, const Vec3& p);

}  // namespace corvinade::fit
