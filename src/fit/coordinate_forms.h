// Points in cylindrical and spherical form, as the main sheet, the protocol and the flags show them.
#pragma once

#include "fit/arrays.h"

namespace corvinade::fit {

// Distance from the Z axis and from the origin, in the unit of the coordinates.
double CylRadius(double x, double y);
double SphRadius(double x, double y, double z);

// The direction of (x, y) in the plane, rad, -pi to pi: AzimuthAngle of the library in all but the negative
// X axis, which comes out at -pi here, and at +pi there. 0 for the origin.
double CylPhi(double x, double y);

// The angle from the Z axis, rad; 0 also along -Z, as the library's ArcCos has it.
double SphTheta(double x, double y, double z);

// The same for a point, mm and rad.
struct CoordinateForms {
    double CylRadius, Phi, SphRadius, Theta;
};
CoordinateForms FormsOf(const Vec3& point);

// First minus second direction, rad: the short way round, across the seam at the negative X axis too.
double PhiDifference(double first, double second);

// First minus second form.
CoordinateForms FormDifference(const CoordinateForms& first, const CoordinateForms& second);

}  // namespace corvinade::fit
