// Inverse trigonometry that never fails, and angles brought to their range.
#include "fit/angles.h"

#include <cmath>

namespace corvinade::fit {

double ArcCos(double x) {
    const double s2 = 1 - x * x;
    if (s2 < 0) return 0;
    const double s = std::sqrt(s2);
    if (s == 0) return 0;
    return std::atan(-x / s) + 2 * std::atan(1.0);
}

double ArcSin(double x) {
    const double s2 = 1 - x * x;
    if (s2 < 0) return 0;
    const double s = std::sqrt(s2);
    if (s == 0) return kLibraryPi / 2;
    return std::atan(x / s);
}

double WrapAngle(double x) {
    double r = x == 0 ? 0 : x - 2 * std::floor(x / kLibraryTwoPi) * kLibraryPi;
    if (r > kLibraryPi) r -= kLibraryTwoPi;
    if (r < -kLibraryPi) r += kLibraryTwoPi;
    if (r > kLibraryPi || r < -kLibraryPi) r = 0;
    return r;
}

double AzimuthAngle(double x, double y) {
    double phi = std::atan(y / (1e-10 + x));
    if (x < 0 && y != 0) phi += kLibraryPi;
    if (x > 0 && y < 0) phi += kLibraryTwoPi;
    if (x == 0 && y > 0) phi = kLibraryPi / 2;
    if (x == 0 && y < 0) phi = kLibraryPi / 2 + kLibraryPi;
    if (y == 0 && x > 0) phi = 0;
    if (y == 0 && x < 0) phi = kLibraryPi;
    if (phi > kLibraryPi) phi -= kLibraryTwoPi;
    return phi;
}

double ChooseAngleBySinCos(double s, double c, double perRad) {
    const double w1 = WrapAngle(ArcSin(s));
    const double w2 = WrapAngle(ArcCos(c));
    const double w3 = WrapAngle(kPi - w1);
    const double w4 = WrapAngle(-w2);
    const double d12 = std::fabs(w1 - w2), d23 = std::fabs(w2 - w3);
    const double d14 = std::fabs(w1 - w4), d34 = std::fabs(w3 - w4);
    // With another unit than the degree these sectors shift; that is kept.
    const double l45 = 45 / perRad, l135 = 135 / perRad;
    const double l180 = 180 / perRad;
    const bool steep = w1 <= -l45 || w1 >= l45;
    const bool nearPole = steep && (w1 >= -l135 || w1 < -l180) && (w1 <= l135 || w1 > l180);
    if (d12 < d23 && d12 < d14 && d12 < d34) return nearPole ? w2 : w1;
    if (d23 < d14 && d23 < d34) return nearPole ? w2 : w3;
    if (d14 < d34) return nearPole ? w4 : w1;
    return nearPole ? w4 : w3;
}

}  // namespace corvinade::fit
