// Inverse trigonometry that never fails, and angles brought to their range. All angles in rad.
#pragma once

// The library's pi. It has ten digits on purpose, beside kPi with its fifteen (core/units.h): results
// are compared against values computed with it.
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
// two is believed follows from sectors that are degrees only while the shown angle unit is the degree.
double ChooseAngleBySinCos(double s, double c);
