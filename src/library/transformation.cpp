// Transformations as values, on the chain of the mathematics.
#include "corvinade/transformation.h"

#include <cmath>
#include <string>

#include "corvinade/error.h"
#include "fit/angles.h"
#include "fit/best_transformation.h"
#include "fit/chain.h"
#include "fit/chain_search.h"
#include "fit/placement_forms.h"
#include "fit/quaternion.h"
#include "fit/small_svd.h"

namespace corvinade {

namespace {

std::size_t At(int row, int column) {
    return static_cast<std::size_t>(4 * (row - 1) + column - 1);
}

void CheckMatrix(const Matrix4& matrix) {
    for (const double element : matrix)
        if (!std::isfinite(element))
            throw InvalidInput("a matrix of finite numbers was expected, and " + std::to_string(element) +
                               " came");
    if (matrix[12] != 0 || matrix[13] != 0 || matrix[14] != 0 || matrix[15] != 1)
        throw InvalidInput("the last row of a transformation is 0 0 0 1, and another one came");
}

fit::Mat3 LinearOf(const Matrix4& matrix) {
    fit::Mat3 M;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) M(row, column) = matrix[At(row, column)];
    return M;
}

}  // namespace

Matrix4 Identity() {
    return {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
}

Matrix4 MatrixOf(const Chain& chain) {
    fit::ChainRecord record;
    fit::BuildChain({.Rotation = chain.Rotation, .Scale = chain.Scale, .Shear = chain.Shear}, record);
    Matrix4 matrix = Identity();
    for (int row = 1; row <= 3; ++row) {
        for (int column = 1; column <= 3; ++column) matrix[At(row, column)] = record.Product(row, column);
        matrix[At(row, 4)] = chain.Translation[static_cast<std::size_t>(row - 1)];
    }
    return matrix;
}

Chain ChainOf(const Matrix4& matrix) {
    CheckMatrix(matrix);
    const fit::ChainValues values = fit::ValuesOf(LinearOf(matrix), fit::PlainModel::Affine);
    const fit::Vec3 angles = fit::AnglesOf(values.R);
    Chain chain;
    chain.Translation = {matrix[3], matrix[7], matrix[11]};
    chain.Rotation = {angles(1), angles(2), angles(3)};
    chain.Scale = {values.Value[fit::kScaleX], values.Value[fit::kScaleY], values.Value[fit::kScaleZ]};
    chain.Shear = {values.Value[fit::kAngleXY], values.Value[fit::kAzimuth], values.Value[fit::kAngleZtoXY]};
    return chain;
}

Quaternion QuaternionOf(const Chain& chain) {
    fit::Mat3 R;
    fit::RotMatrixXYZ(chain.Rotation[0], chain.Rotation[1], chain.Rotation[2], R);
    fit::Column record(9);
    double a = 0, b = 0, c = 0;
    fit::MatrixToQuaternion(R, record, a, b, c);
    const double sign = record[1] < 0 ? -1 : 1;
    return {sign * record[1], sign * record[2], sign * record[3], sign * record[4]};
}

std::array<double, 3> AnglesOf(const Quaternion& quaternion) {
    const double size =
        std::hypot(std::hypot(quaternion.W, quaternion.X), std::hypot(quaternion.Y, quaternion.Z));
    if (!std::isfinite(size) || size == 0)
        throw InvalidInput("a quaternion other than 0, of finite numbers, was expected");
    const fit::Mat3 R =
        fit::RotationOf({quaternion.W / size, quaternion.X / size, quaternion.Y / size, quaternion.Z / size});
    const fit::Vec3 angles = fit::AnglesOf(R);
    return {angles(1), angles(2), angles(3)};
}

Matrix4 Invert(const Matrix4& matrix) {
    CheckMatrix(matrix);
    const fit::Mat3 M = LinearOf(matrix);
    // By cofactors: what makes an element large or small does so in the determinant as well.
    const double determinant = fit::Determinant3(M);
    if (determinant == 0 || !std::isfinite(1 / determinant))
        throw InvalidInput("the matrix has no inverse: it carries space into a plane");
    Matrix4 inverse = Identity();
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) {
            const int r1 = column % 3 + 1, r2 = (column + 1) % 3 + 1;
            const int c1 = row % 3 + 1, c2 = (row + 1) % 3 + 1;
            inverse[At(row, column)] = (M(r1, c1) * M(r2, c2) - M(r1, c2) * M(r2, c1)) / determinant;
        }
    for (int row = 1; row <= 3; ++row)
        inverse[At(row, 4)] = -(inverse[At(row, 1)] * matrix[3] + inverse[At(row, 2)] * matrix[7] +
                                inverse[At(row, 3)] * matrix[11]);
    return inverse;
}

Matrix4 Compose(const Matrix4& then, const Matrix4& first) {
    CheckMatrix(then);
    CheckMatrix(first);
    Matrix4 product = Identity();
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 4; ++column) {
            double sum = column == 4 ? then[At(row, 4)] : 0;
            for (int k = 1; k <= 3; ++k) sum += then[At(row, k)] * first[At(k, column)];
            product[At(row, column)] = sum;
        }
    return product;
}

void Apply(const Matrix4& matrix, std::span<const double> from, std::span<double> to) {
    if (from.size() % 3 != 0)
        throw InvalidInput("points x y z x y z ... were expected, and " + std::to_string(from.size()) +
                           " numbers came");
    if (to.size() != from.size())
        throw InvalidInput("room for " + std::to_string(from.size()) +
                           " numbers was expected, and there is for " + std::to_string(to.size()));
    for (std::size_t i = 0; i < from.size(); i += 3) {
        const double x = from[i], y = from[i + 1], z = from[i + 2];
        for (std::size_t row = 0; row < 3; ++row)
            to[i + row] =
                matrix[4 * row] * x + matrix[4 * row + 1] * y + matrix[4 * row + 2] * z + matrix[4 * row + 3];
    }
}

std::vector<std::string> ExportForms() {
    std::vector<std::string> names;
    for (const fit::PlacementForm& form : fit::PlacementForms()) names.emplace_back(form.Name);
    return names;
}

std::string Export(const Matrix4& matrix, std::string_view form, std::string_view name) {
    CheckMatrix(matrix);
    fit::Placement placement;
    placement.Matrix = LinearOf(matrix);
    placement.Shift_mm = {matrix[3], matrix[7], matrix[11]};
    placement.Name = fit::AsIdentifier(std::string(name));
    std::string names;
    for (const fit::PlacementForm& one : fit::PlacementForms()) {
        names += (names.empty() ? "" : ", ") + std::string(one.Name);
        if (form != one.Name) continue;
        const std::string why = fit::WhyNotInForm(one, placement);
        if (!why.empty()) throw InvalidInput(why);
        return one.Text(fit::Described(one, placement));
    }
    throw InvalidInput("a form is one of " + names + ", and \"" + std::string(form) + "\" came");
}

}  // namespace corvinade
