// Small vector operations.
#include "fit/vector.h"

#include <cmath>

#include "fit/angles.h"

namespace corvinade::fit {

namespace {

// Keeps divisions by a length alive where the length is zero.
constexpr double kTiny = 1e-10;

// Position of the foot of p along d.
double LineParameter(const Vec3& a, const Vec3& d, const Vec3& p) {
    Vec3 toPoint;
    VecSub(p, a, toPoint);
    double along = 0, length = 0;
    VecDot(toPoint, d, along);
    VecLength(d, length);
    return along / (length * length + kTiny);
}

}  // namespace

void VecAdd(const Vec3& a, const Vec3& b, Vec3& c) {
    c = {a(1) + b(1), a(2) + b(2), a(3) + b(3)};
}

void VecSub(const Vec3& a, const Vec3& b, Vec3& c) {
    c = {a(1) - b(1), a(2) - b(2), a(3) - b(3)};
}

void VecScale(const Vec3& a, double f, Vec3& c) {
    c = {a(1) * f, a(2) * f, a(3) * f};
}

void VecDot(const Vec3& a, const Vec3& b, double& value) {
    value = a(1) * b(1) + a(2) * b(2) + a(3) * b(3);
}

void VecCross(const Vec3& a, const Vec3& b, Vec3& c) {
    c = {a(2) * b(3) - a(3) * b(2), a(3) * b(1) - a(1) * b(3), a(1) * b(2) - a(2) * b(1)};
}

void VecLength(const Vec3& a, double& value) {
    value = Hypot3(a(1), a(2), a(3));
}

void VecNormalize(const Vec3& a, Vec3& c) {
    double length = 0;
    VecLength(a, length);
    if (length == 0) length = 1e-9;
    VecScale(a, 1 / length, c);
}

double Hypot2(double x, double y) {
    return std::sqrt(x * x + y * y);
}

double Hypot3(double x, double y, double z) {
    return std::sqrt(x * x + y * y + z * z);
}

double PolarAngle(double x, double y, double z) {
    return ArcCos(z / (Hypot3(x, y, z) + kTiny));
}

void PlaneDistance(const Vec3& q, const Vec3& n, const Vec3& p, double& value) {
    double ofPoint = 0, ofPlane = 0, length = 0;
    VecDot(n, p, ofPoint);
    VecDot(n, q, ofPlane);
    VecLength(n, length);
    value = (ofPoint - ofPlane) / (length + kTiny);
}

void LinePointFoot(const Vec3& a, const Vec3& d, const Vec3& p, Vec3& f) {
    const double t = LineParameter(a, d, p);
    Vec3 along;
    VecScale(d, t, along);
    VecAdd(a, along, f);
}

double LinePointDistance(const Vec3& a, const Vec3& d, const Vec3& p) {
    const double t = LineParameter(a, d, p);
    Vec3 along, across;
    VecScale(d, t, along);
    VecSub(a, p, across);
    VecAdd(across, along, across);
    double value = 0;
    VecLength(across, value);
    return value;
}

}  // namespace corvinade::fit
