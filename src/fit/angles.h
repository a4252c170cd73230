// Inverse trigonometry that never fails, and angles brought to their range. All angles in rad.
#pragma once

namespace corvinade::fit {

// 15 digits on purpose: results are compared against values computed with this constant.
inline constexpr double kPi = 3.14159265358979;

// The library's pi. It has ten digits on purpose, beside kPi with its fifteen, for the same reason.
inline constexpr double kLibraryPi = 3.1415926535;
inline constexpr double kLibraryTwoPi = 6.283185307;

// Both give 0 for an argument outside -1 to 1. ArcCos is 0 at -1 too, and ArcSin is +pi/2 there: the
// callers that need the sign try both branches.
double ArcCos(double x);
double ArcSin(double x);

// Brings an angle to the range -pi to +pi.
double WrapAngle(double x);

// The direction of (x, y) in the plane, -pi to +pi; 0 for the origin.
double AzimuthAngle(double x, double y);

// The one angle whose sine is about s and whose cosine is about c, both from noisy data. Which of the
// two is believed follows from sectors of 45, 135 and 180 units of which `perRad` make a rad.
double ChooseAngleBySinCos(double s, double c, double perRad);

}  // namespace corvinade::fit
