// The transformation X = T + R K S x and the derivatives of its matrices.
#include "fit/chain.h"

#include "fit/matrix.h"

namespace corvinade::fit {

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

}  // namespace

ChainSource ChainSourceOf(const Parameters& p) {
    return {.Rotation = {p[kRotX], p[kRotY], p[kRotZ]},
            .Scale = {p[kScaleX], p[kScaleY], p[kScaleZ]},
            .Shear = {p[kAngleXY], p[kAzimuth], p[kAngleZtoXY]}};
}

void WithScales(const Mat3& M, const std::array<double, 3>& scale, Mat3& scaled) {
    const auto& [x, y, z] = scale;
    const auto times = [](double element, double factor) {
        const double product = element * factor;
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

void TurnChain(const ChainSource& source, ChainRecord& chain) {
    const auto& [rx, ry, rz] = source.Rotation;
    chain.Rotations = {Circle(rx), Circle(ry), Circle(rz)};
    const auto& [a, b, c] = chain.Rotations;
    RotMatrixXYZ(a, b, c, chain.RotationMatrix);
    chain.ForgetProduct();
}

void ShearChain(const ChainSource& source, ChainRecord& chain) {
    const auto& [xy, az, zt] = source.Shear;
    BuildShearMatrix(xy, az, zt, chain.ShearMatrix);
    chain.ForgetProduct();
}

void ScaleChain(const ChainSource& source, ChainRecord& chain) {
    SetRow(chain.ScaleMatrix, 1, source.Scale[0], 0, 0);
    SetRow(chain.ScaleMatrix, 2, 0, source.Scale[1], 0);
    SetRow(chain.ScaleMatrix, 3, 0, 0, source.Scale[2]);
    chain.ForgetProduct();
}

void BuildChain(const ChainSource& source, ChainRecord& chain) {
    const bool turned = source.Rotation != chain.BuiltFrom.Rotation;
    const bool scaled = source.Scale != chain.BuiltFrom.Scale;
    const bool sheared = source.Shear != chain.BuiltFrom.Shear;
    if (!turned && !scaled && !sheared) return;
    if (turned) TurnChain(source, chain);
    if (scaled) ScaleChain(source, chain);
    if (sheared) {
        ShearChain(source, chain);
        chain.RightAngled = IsUnit(chain.ShearMatrix);
    }
    if (turned || sheared)
        chain.RK =
            chain.RightAngled ? chain.RotationMatrix : MatrixProduct(chain.RotationMatrix, chain.ShearMatrix);
    if (scaled || sheared) WithScales(chain.ShearMatrix, source.Scale, chain.KS);
    WithScales(chain.RK, source.Scale, chain.Product);
    chain.BuiltFrom = source;
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

Mat3 ShearDerivative(ShearAngle angle, const std::array<double, 3>& shear) {
    const Circle xy(shear[0]), az(shear[1]), zt(shear[2]);
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

}  // namespace corvinade::fit
