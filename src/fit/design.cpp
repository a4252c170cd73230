// The model of a fit and its linearisation at given parameters.
#include "fit/design.h"

#include <cmath>

#include "fit/double_double.h"
#include "fit/matrix.h"

namespace corvinade::fit {

namespace {

// A matrix with one column of another, the rest 0: the derivative by a scale is column j of R K at the
// place of coordinate j.
Mat3 OneColumn(const Mat3& M, int column) {
    Mat3 result;
    for (int row = 1; row <= 3; ++row) result(row, column) = M(row, column);
    return result;
}

void Derive(int parameter, const ChainRecord& chain, InnerDerivative& inner) {
    const auto rotation = [&](RotationAngle angle) {
        const auto& [a, b, c] = chain.Rotations;
        const Mat3 derivative = RotationDerivative(angle, a, b, c);
        if (chain.RightAngled) {
            WithScales(derivative, chain.BuiltFrom.Scale, inner.D);
        } else {
            inner.D = MatrixProduct(derivative, chain.KS);
        }
    };
    const auto shear = [&chain](ShearAngle angle) {
        return MatrixProduct(
            MatrixProduct(chain.RotationMatrix, ShearDerivative(angle, chain.BuiltFrom.Shear)),
            chain.ScaleMatrix);
    };
    inner.OnlyColumn = 0;
    switch (parameter) {
        case kRotX:
            rotation(RotationAngle::X);
            break;
        case kRotY:
            rotation(RotationAngle::Y);
            break;
        case kRotZ:
            rotation(RotationAngle::Z);
            break;
        case kScaleX:
        case kScaleY:
        case kScaleZ:
            inner.OnlyColumn = parameter - kScaleX + 1;
            inner.D = OneColumn(chain.RK, inner.OnlyColumn);
            break;
        case kScaleXYZ:
            inner.D = chain.RK;
            break;
        case kAngleXY:
            inner.D = shear(ShearAngle::XY);
            inner.OnlyColumn = 2;
            break;
        case kAzimuth:
            inner.D = shear(ShearAngle::Azimuth);
            inner.OnlyColumn = 3;
            break;
        default:
            inner.D = shear(ShearAngle::ZtoXY);
            inner.OnlyColumn = 3;
            break;
    }
}

}  // namespace

Linearisation Linearise(const FitModel& model, const Parameters& parameters, const GatheredPoints& points,
                        ChainRecord& chain) {
    Linearisation at;
    Linearise(model, parameters, points, chain, at);
    return at;
}

void Linearise(const FitModel& model, const Parameters& parameters, const GatheredPoints& points,
               ChainRecord& chain, Linearisation& at) {
    BuildChain(ChainSourceOf(parameters), chain);
    at.InnerCount = 0;
    at.M = chain.Product;
    at.RDist = parameters[kRDist];
    at.Tool = {parameters[kRvecX], parameters[kRvecY], parameters[kRvecZ]};

    // T + M c - q is small where its parts are as large as the hall, so it is summed with twice the
    // digits: each bit lost here would be lost in every deviation.
    const Vec3& c = points.StartCentre;
    const Vec3 T(parameters[kTraX], parameters[kTraY], parameters[kTraZ]);
    for (int axis = 1; axis <= 3; ++axis) {
        DoubleDouble sum{T(axis), 0};
        for (int j = 1; j <= 3; ++j) sum.AddProduct(at.M(axis, j), c(j));
        sum.Add(-points.TargetCentre(axis));
        at.Shift(axis) = sum.Value();
        at.AxisFloats[static_cast<std::size_t>(axis)] =
            model.UnknownOf[static_cast<std::size_t>(kTraX + axis - 1)] != 0;
    }

    for (int parameter = kRotX; parameter <= kAngleZtoXY; ++parameter) {
        const int unknown = model.UnknownOf[static_cast<std::size_t>(parameter)];
        if (unknown == 0) continue;
        InnerDerivative& inner = at.Inner[static_cast<std::size_t>(at.InnerCount++)];
        Derive(parameter, chain, inner);
        inner.Unknown = unknown;
        for (int axis = 1; axis <= 3; ++axis)
            inner.AtCentre(axis) =
                inner.D(axis, 1) * c(1) + inner.D(axis, 2) * c(2) + inner.D(axis, 3) * c(3);
    }
}

}  // namespace corvinade::fit
