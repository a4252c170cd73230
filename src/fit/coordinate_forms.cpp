// Points in cylindrical and spherical form.
#include "fit/coordinate_forms.h"

#include "fit/angles.h"
#include "fit/vector.h"

namespace corvinade::fit {

double CylRadius(double x, double y) {
    return Hypot2(x, y);
}

double SphRadius(double x, double y, double z) {
    return Hypot3(x, y, z);
}

double CylPhi(double x, double y) {
    // On the negative X axis the angle is the pi of fifteen digits, which lies above the library's pi of ten
    // and is therefore brought to the other end of the range.
    if (y == 0 && x < 0) return kPi - kLibraryTwoPi;
    return AzimuthAngle(x, y);
}

double SphTheta(double x, double y, double z) {
    return PolarAngle(x, y, z);
}

CoordinateForms FormsOf(const Vec3& p) {
    return {CylRadius(p(1), p(2)), CylPhi(p(1), p(2)), SphRadius(p(1), p(2), p(3)),
            SphTheta(p(1), p(2), p(3))};
}

double PhiDifference(double first, double second) {
    constexpr double kTwoPi = 6.28318530717958;
    const double phi = first - second;
    if (phi > kPi) return phi - kTwoPi;
    if (phi < -kPi) return phi + kTwoPi;
    return phi;
}

CoordinateForms FormDifference(const CoordinateForms& first, const CoordinateForms& second) {
    return {first.CylRadius - second.CylRadius, PhiDifference(first.Phi, second.Phi),
            first.SphRadius - second.SphRadius, first.Theta - second.Theta};
}

}  // namespace corvinade::fit
