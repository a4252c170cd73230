// The model of a fit and its linearisation at the present parameters.
#include "engine/design.h"

#include <cmath>

#include "engine/double_double.h"
#include "engine/matrix.h"
#include "engine/selection.h"
#include "engine/transform.h"

namespace {

using ParameterTexts = std::array<std::string, 18>;

bool Floats(const ParameterTexts& ParamText, int parameter) {
    return ParamText[static_cast<std::size_t>(parameter)] == kFloat;
}

bool ToolFloats(const ParameterTexts& ParamText) {
    return Floats(ParamText, kRvecX) && Floats(ParamText, kRvecY) && Floats(ParamText, kRvecZ);
}

// A matrix with one column of another, the rest 0: the derivative by a scale is column j of R K at the
// place of coordinate j.
Mat3 OneColumn(const Mat3& M, int column) {
    Mat3 result;
    for (int row = 1; row <= 3; ++row) result(row, column) = M(row, column);
    return result;
}

void Derive(int parameter, InnerDerivative& inner) {
    const auto rotation = [&inner](RotationAngle angle) {
        const auto& [a, b, c] = Chain.Rotations;
        const Mat3 derivative = RotationDerivative(angle, a, b, c);
        if (Chain.RightAngled) {
            WithScales(derivative, inner.D);
        } else {
            inner.D = MatrixProduct(derivative, Chain.KS);
        }
    };
    const auto shear = [](ShearAngle angle) {
        return MatrixProduct(MatrixProduct(Chain.RotationMatrix, ShearDerivative(angle)), Chain.ScaleMatrix);
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
            inner.D = OneColumn(Chain.RK, inner.OnlyColumn);
            break;
        case kScaleXYZ:
            inner.D = Chain.RK;
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

int CountUnknowns(const ParameterTexts& ParamText) {
    int unknowns = ToolFloats(ParamText) ? 3 : 0;
    for (int parameter = kTraX; parameter <= kRDist; ++parameter)
        if (Floats(ParamText, parameter)) ++unknowns;
    return unknowns;
}

FitMode ChooseMode(const ParameterTexts& ParamText) {
    const bool distanceHeld = !Floats(ParamText, kRDist) && Job.RDist != 0;
    if (!Selection.CheckUseABC && (Selection.CheckRDist || (distanceHeld && Selection.RDistShown)))
        return FitMode::Distance;
    const bool toolHeld = Job.Rvec_x != 0 || Job.Rvec_y != 0 || Job.Rvec_z != 0;
    if (Selection.CheckUseABC || (toolHeld && !Selection.RDistShown)) return FitMode::Tool;
    return FitMode::Coincide;
}

FitModel ChooseModel(const ParameterTexts& ParamText) {
    FitModel model;
    model.Mode = ChooseMode(ParamText);
    model.ToolFloats = ToolFloats(ParamText);
    for (int parameter = kTraX; parameter < kParameterEnd; ++parameter) {
        const bool floats = parameter >= kRvecX ? model.ToolFloats : Floats(ParamText, parameter);
        if (floats) model.UnknownOf[static_cast<std::size_t>(parameter)] = ++model.Unknowns;
    }
    return model;
}

Linearisation Linearise(const FitModel& model, const GatheredPoints& points) {
    Linearisation at;
    Linearise(model, points, at);
    return at;
}

void Linearise(const FitModel& model, const GatheredPoints& points, Linearisation& at) {
    Job.RotXCopy = Job.RotX;
    Job.RotYCopy = Job.RotY;
    Job.RotZCopy = Job.RotZ;
    BuildChain();
    at.InnerCount = 0;
    at.M = Chain.Product;
    at.RDist = Job.RDist;
    at.Tool = {Job.Rvec_x, Job.Rvec_y, Job.Rvec_z};

    // T + M c - q is small where its parts are as large as the hall, so it is summed with twice the
    // digits: each bit lost here would be lost in every deviation.
    const Vec3& c = points.StartCentre;
    const Vec3 T(Job.TraX, Job.TraY, Job.TraZ);
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
        Derive(parameter, inner);
        inner.Unknown = unknown;
        for (int axis = 1; axis <= 3; ++axis)
            inner.AtCentre(axis) =
                inner.D(axis, 1) * c(1) + inner.D(axis, 2) * c(2) + inner.D(axis, 3) * c(3);
    }
}
