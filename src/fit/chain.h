// The transformation: a fixed chain of matrices that carries a point of the start system into the target
// system, X = T + R K S x.
#pragma once

#include <array>
#include <cmath>
#include <limits>

#include "fit/arrays.h"
#include "fit/parameters.h"

namespace corvinade::fit {

// Sine and cosine of an angle in rad, for procedures that need them again and again.
struct Circle {
    double Sin = 0, Cos = 1;
    Circle() = default;
    explicit Circle(double angle) : Sin(std::sin(angle)), Cos(std::cos(angle)) {}
};

// What the matrices of the chain are made from: angles in rad, scales as factors.
struct ChainSource {
    std::array<double, 3> Rotation{}, Scale{1, 1, 1};
    std::array<double, 3> Shear{};  // xy, azimuth, zt
};
ChainSource ChainSourceOf(const Parameters& parameters);

// The matrices of the chain, and what they were last built from.
struct ChainRecord {
    Mat3 RotationMatrix;  // R = Rz(-c) Ry(-b) Rx(-a): turns coordinates into a frame turned by +a, +b, +c
    Mat3 ShearMatrix;     // K: its columns are the unit vectors of an oblique axis frame
    Mat3 ScaleMatrix;     // S: diagonal
    Mat3 Product;         // R K S, the one matrix that a point goes through
    Mat3 RK, KS;          // parts of it that its derivatives are made of
    bool RightAngled = false;         // K is the unit matrix
    std::array<Circle, 3> Rotations;  // of the angles about x, y, z

    // The values that Product was built from; NaN, which equals nothing, before that.
    ChainSource BuiltFrom;
    ChainRecord() { ForgetProduct(); }
    void ForgetProduct() {
        for (std::array<double, 3>* three : {&BuiltFrom.Rotation, &BuiltFrom.Scale, &BuiltFrom.Shear})
            three->fill(std::numeric_limits<double>::quiet_NaN());
    }
};

// The three matrices and their product, where the values differ from those of the last time.
void BuildChain(const ChainSource& source, ChainRecord& chain);

// One of the three matrices alone, which then no longer belongs to the product that is kept.
void TurnChain(const ChainSource& source, ChainRecord& chain);
void ShearChain(const ChainSource& source, ChainRecord& chain);
void ScaleChain(const ChainSource& source, ChainRecord& chain);

// The matrix of an oblique axis frame; angles in rad. The first axis stays, the second leans from the right
// angle by xy, the third leans from the plane's normal by zt towards the direction az.
void BuildShearMatrix(double xy, double az, double zt, Mat3& K);

// The rotation form Rz(-c) Ry(-b) Rx(-a) of the chain; angles in rad.
void RotMatrixXYZ(double a, double b, double c, Mat3& R);
void RotMatrixXYZ(const Circle& a, const Circle& b, const Circle& c, Mat3& R);

// A matrix times S, the scales of the axes on its diagonal. An element that is 0 stays 0 whatever the scale.
void WithScales(const Mat3& M, const std::array<double, 3>& scale, Mat3& scaled);

// The short chain without K for callers that hold their parameters apart:
// (X, Y, Z) = t + RotMatrixXYZ(rx, ry, rz) (x sx, y sy, z sz). With s other than 0 all scales are s.
void trafo(double x, double y, double z, double& X, double& Y, double& Z, double tx, double ty, double tz,
           double rx, double ry, double rz, double sx, double sy, double sz, double s);

// Element-wise derivatives of R and K with respect to their angles.
enum class RotationAngle { X, Y, Z };
enum class ShearAngle { XY, Azimuth, ZtoXY };
Mat3 RotationDerivative(RotationAngle angle, const Circle& a, const Circle& b, const Circle& c);
Mat3 ShearDerivative(ShearAngle angle, const std::array<double, 3>& shear);

}  // namespace corvinade::fit
