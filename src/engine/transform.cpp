// The transformation X = T + R K S x and the derivatives of its matrices.
#include "engine/transform.h"

#include <algorithm>

#include "core/job.h"
#include "engine/matrix.h"

namespace {

void SetRow(Mat3& M, int row, double x, double y, double z) {
    M(row, 1) = x;
    M(row, 2) = y;
    M(row, 3) = z;
}

bool IsUnit(const Mat3& M) {
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            if (M(row, column) != (row == column ? 1 : 0)) return false;
    return true;
}

// A matrix built on its own no longer belongs to the product that is kept.
void ForgetProduct() {
    Chain.BuiltFrom.fill(std::numeric_limits<double>::quiet_NaN());
}

void TurnChain() {
    Chain.Rotations = {Circle(Job.RotXCopy), Circle(Job.RotYCopy), Circle(Job.RotZCopy)};
    const auto& [a, b, c] = Chain.Rotations;
    RotMatrixXYZ(a, b, c, Chain.RotationMatrix);
}

void ShearChain() {
    BuildShearMatrix(Job.AngleXY, Job.Azimuth, Job.AngleZtoXY, Chain.ShearMatrix);
}

void ScaleChain() {
    SetRow(Chain.ScaleMatrix, 1, Job.ScaleX, 0, 0);
    SetRow(Chain.ScaleMatrix, 2, 0, Job.ScaleY, 0);
    SetRow(Chain.ScaleMatrix, 3, 0, 0, Job.ScaleZ);
}

}  // namespace

void WithScales(const Mat3& M, Mat3& scaled) {
    const double x = Job.ScaleX, y = Job.ScaleY, z = Job.ScaleZ;
    const auto times = [](double element, double scale) {
        const double product = element * scale;
        return element != 0 ? product : 0;
    };
    for (int row = 1; row <= 3; ++row)
        SetRow(scaled, row, times(M(row, 1), x), times(M(row, 2), y), times(M(row, 3), z));
}

void RotMatrixXYZ(double angleA, double angleB, double angleC, Mat3& R) {
    RotMatrixXYZ(Circle(angleA), Circle(angleB), Circle(angleC), R);
}

void RotMatrixXYZ(const Circle& a, const Circle& b, const Circle& c, Mat3& R) {
    SetRow(R, 1, b.Cos * c.Cos, c.Sin * a.Cos + b.Sin * a.Sin * c.Cos, a.Sin * c.Sin - b.Sin * a.Cos * c.Cos);
    SetRow(R, 2, -c.Sin * b.Cos, a.Cos * c.Cos - b.Sin * a.Sin * c.Sin,
           a.Sin * c.Cos + b.Sin * a.Cos * c.Sin);
    SetRow(R, 3, b.Sin, -a.Sin * b.Cos, a.Cos * b.Cos);
}

void BuildShearMatrix(double angleXY, double azimuth, double angleZtoXY, Mat3& K) {
    const Circle xy(angleXY), az(azimuth), zt(angleZtoXY);
    SetRow(K, 1, 1, xy.Sin, az.Cos * zt.Sin);
    SetRow(K, 2, 0, xy.Cos, az.Sin * zt.Sin);
    SetRow(K, 3, 0, 0, zt.Cos);
}

void BuildRotationMatrix() {
    TurnChain();
    ForgetProduct();
}

void BuildShearMatrix() {
    ShearChain();
    ForgetProduct();
}

void BuildScaleMatrix() {
    ScaleChain();
    ForgetProduct();
}

void BuildChain() {
    const std::array<double, 9> parameters = {Job.RotXCopy, Job.RotYCopy, Job.RotZCopy,
                                              Job.ScaleX,   Job.ScaleY,   Job.ScaleZ,
                                              Job.AngleXY,  Job.Azimuth,  Job.AngleZtoXY};
    const auto changed = [&parameters](std::size_t from) {
        return !std::equal(&parameters[from], &parameters[from] + 3, &Chain.BuiltFrom[from]);
    };
    const bool turned = changed(0), scaled = changed(3), sheared = changed(6);
    if (!turned && !scaled && !sheared) return;
    if (turned) TurnChain();
    if (scaled) ScaleChain();
    if (sheared) {
        ShearChain();
        Chain.RightAngled = IsUnit(Chain.ShearMatrix);
    }
    if (turned || sheared)
        Chain.RK =
            Chain.RightAngled ? Chain.RotationMatrix : MatrixProduct(Chain.RotationMatrix, Chain.ShearMatrix);
    if (scaled || sheared) WithScales(Chain.ShearMatrix, Chain.KS);
    WithScales(Chain.RK, Chain.Product);
    Chain.BuiltFrom = parameters;
}

void TransformPoint(double x, double y, double z, double& X, double& Y, double& Z) {
    BuildChain();
    const Mat3& M = Chain.Product;
    const Vec3 turned(M(1, 1) * x + M(1, 2) * y + M(1, 3) * z, M(2, 1) * x + M(2, 2) * y + M(2, 3) * z,
                      M(3, 1) * x + M(3, 2) * y + M(3, 3) * z);
    X = Job.TraX + turned(1);
    Y = Job.TraY + turned(2);
    Z = Job.TraZ + turned(3);
}

void trafo(double x, double y, double z, double& X, double& Y, double& Z, double tx, double ty, double tz,
           double rx, double ry, double rz, double sx, double sy, double sz, double s) {
    if (s != 0) sx = sy = sz = s;
    Mat3 R;
    RotMatrixXYZ(rx, ry, rz, R);
    const Vec3 scaled(x * sx, y * sy, z * sz);
    X = tx + (R(1, 1) * scaled(1) + R(1, 2) * scaled(2) + R(1, 3) * scaled(3));
    Y = ty + (R(2, 1) * scaled(1) + R(2, 2) * scaled(2) + R(2, 3) * scaled(3));
    Z = tz + (R(3, 1) * scaled(1) + R(3, 2) * scaled(2) + R(3, 3) * scaled(3));
}

Mat3 RotationDerivative(RotationAngle angle) {
    return RotationDerivative(angle, Circle(Job.RotXCopy), Circle(Job.RotYCopy), Circle(Job.RotZCopy));
}

Mat3 RotationDerivative(RotationAngle angle, const Circle& a, const Circle& b, const Circle& c) {
    Mat3 D;
    switch (angle) {
        case RotationAngle::X:
            SetRow(D, 1, 0, -c.Sin * a.Sin + b.Sin * a.Cos * c.Cos, a.Cos * c.Sin + b.Sin * a.Sin * c.Cos);
            SetRow(D, 2, 0, -a.Sin * c.Cos - b.Sin * a.Cos * c.Sin, a.Cos * c.Cos - b.Sin * a.Sin * c.Sin);
            SetRow(D, 3, 0, -a.Cos * b.Cos, -a.Sin * b.Cos);
            break;
        case RotationAngle::Y:
            SetRow(D, 1, -b.Sin * c.Cos, b.Cos * a.Sin * c.Cos, -b.Cos * a.Cos * c.Cos);
            SetRow(D, 2, c.Sin * b.Sin, -b.Cos * a.Sin * c.Sin, b.Cos * a.Cos * c.Sin);
            SetRow(D, 3, b.Cos, a.Sin * b.Sin, -a.Cos * b.Sin);
            break;
        case RotationAngle::Z:
            SetRow(D, 1, -b.Cos * c.Sin, c.Cos * a.Cos - b.Sin * a.Sin * c.Sin,
                   a.Sin * c.Cos + b.Sin * a.Cos * c.Sin);
            SetRow(D, 2, -c.Cos * b.Cos, -a.Cos * c.Sin - b.Sin * a.Sin * c.Cos,
                   -a.Sin * c.Sin + b.Sin * a.Cos * c.Cos);
            break;
    }
    return D;
}

Mat3 ShearDerivative(ShearAngle angle) {
    const Circle xy(Job.AngleXY), az(Job.Azimuth), zt(Job.AngleZtoXY);
    Mat3 D;
    switch (angle) {
        case ShearAngle::XY:
            D(1, 2) = xy.Cos;
            D(2, 2) = -xy.Sin;
            break;
        case ShearAngle::Azimuth:
            D(1, 3) = -az.Sin * zt.Sin;
            D(2, 3) = az.Cos * zt.Sin;
            break;
        case ShearAngle::ZtoXY:
            D(1, 3) = az.Cos * zt.Cos;
            D(2, 3) = az.Sin * zt.Cos;
            D(3, 3) = -zt.Sin;
            break;
    }
    return D;
}
