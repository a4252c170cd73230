// The transformation: a fixed chain of matrices that carries a point of the start system into the
// target system, X = T + R K S x. Its parameters live in the job.
#pragma once

#include <array>
#include <cmath>
#include <limits>

#include "core/arrays.h"

// Sine and cosine of an angle in rad, for procedures that need them again and again.
struct Circle {
    double Sin = 0, Cos = 1;
    Circle() = default;
    explicit Circle(double angle) : Sin(std::sin(angle)), Cos(std::cos(angle)) {}
};

// The matrices of the chain at the parameters they were last built from.
struct ChainRecord {
    Mat3 RotationMatrix;  // R = Rz(-c) Ry(-b) Rx(-a): turns coordinates into a frame turned by +a, +b, +c
    Mat3 ShearMatrix;     // K: its columns are the unit vectors of an oblique axis frame
    Mat3 ScaleMatrix;     // S: diagonal
    Mat3 Product;         // R K S, the one matrix that a point goes through
    Mat3 RK, KS;          // parts of it that its derivatives are made of
    bool RightAngled = false;         // K is the unit matrix
    std::array<Circle, 3> Rotations;  // of the angles about x, y, z

    // The nine values that Product was built from; NaN, which equals nothing, before that.
    std::array<double, 9> BuiltFrom;
    ChainRecord() { BuiltFrom.fill(std::numeric_limits<double>::quiet_NaN()); }
};
inline ChainRecord Chain;

void BuildRotationMatrix();  // from Job.RotXCopy, RotYCopy, RotZCopy (rad)
void BuildShearMatrix();     // from Job.AngleXY, Azimuth, AngleZtoXY (rad)
void BuildScaleMatrix();     // from Job.ScaleX, ScaleY, ScaleZ

// The three matrices and their product, where the job's parameters differ from those of the last time.
void BuildChain();

// The matrix of an oblique axis frame; angles in rad. The first axis stays, the second leans from the right
// angle by xy, the third leans from the plane's normal by zt towards the direction az.
void BuildShearMatrix(double xy, double az, double zt, Mat3& K);

// The engine's rotation form Rz(-c) Ry(-b) Rx(-a); angles in rad.
void RotMatrixXYZ(double a, double b, double c, Mat3& R);
void RotMatrixXYZ(const Circle& a, const Circle& b, const Circle& c, Mat3& R);

// A matrix times S, as the job has the scales.
void WithScales(const Mat3& M, Mat3& scaled);

// The full chain for one point, mm. Rebuilds the three matrices of `Chain` from the job.
void TransformPoint(double x, double y, double z, double& X, double& Y, double& Z);

// The short chain without K for callers that hold their parameters apart from the job:
// (X, Y, Z) = t + RotMatrixXYZ(rx, ry, rz) (x sx, y sy, z sz). With s other than 0 all scales are s.
void trafo(double x, double y, double z, double& X, double& Y, double& Z, double tx, double ty, double tz,
           double rx, double ry, double rz, double sx, double sy, double sz, double s);

// Element-wise derivatives of R and K with respect to their angles, at the present parameters.
enum class RotationAngle { X, Y, Z };
enum class ShearAngle { XY, Azimuth, ZtoXY };
Mat3 RotationDerivative(RotationAngle angle);
Mat3 RotationDerivative(RotationAngle angle, const Circle& a, const Circle& b, const Circle& c);
Mat3 ShearDerivative(ShearAngle angle);
