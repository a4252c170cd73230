// The best transformation of points all but on a line or in a plane.
#include "fit/thin_points.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "fit/matrix.h"
#include "fit/principal_axes.h"
#include "fit/small_svd.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr double kEpsilon = 2.220446049250313e-16;
// Spread along an axis by that along the longest, both squared. Above this the sums about the axes of the
// coordinates have half of their digits left for it.
constexpr double kThin = 1e-7;
// The same of directions along which a mirror image is no finding: a ten thousandth of a millimetre in a
// metre.
constexpr double kFlat = 1e-14;

Mat3 Transposed(const Mat3& A) {
    Mat3 result;
    MatrixTranspose(A, 3, 3, result);
    return result;
}

// What rounding of the coordinates of a set makes of a spread, mm^2.
double RoundingOfSpread(const std::array<LaneArray, 3>& set, const Vec3& centre, int count) {
    constexpr double kDigits = 8;
    double largest = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        double extent = 0;
        for (int i = 0; i < count; ++i) extent = std::max(extent, std::fabs(set[At(axis - 1)][At(i)]));
        largest = std::max(largest, std::fabs(centre(axis)) + extent);
    }
    const double each = kDigits * kEpsilon * largest;
    return count * each * each;
}

double RoundingOfStart(const GatheredPoints& points) {
    return RoundingOfSpread(points.Start, points.StartCentre, points.Count);
}

// Directions, of three with falling spread, that are more than the rounding of the coordinates.
int KnownDirections(const Vec3& spread, double rounding) {
    int known = 0;
    while (known < 3 && spread(known + 1) > rounding) ++known;
    return known;
}

CentredTransformation With(const PointMoments& moments, const Mat3& M) {
    CentredTransformation result{M, BestShift(moments, M), 0};
    result.Gain = GainOf(moments, M, result.Shift);
    return result;
}

// Sums l p about the centre of the points along an axis.
Vec3 CentredSums(const PointMoments& moments, int axis) {
    const auto& B = moments.B[At(axis)];
    Vec3 sums;
    for (int j = 1; j <= 3; ++j)
        sums(j) = moments.m[At(axis)][At(j)] - moments.m[At(axis)][0] * B[0][At(j)] / B[0][0];
    return sums;
}

// Solves C x = b of `known` unknowns, C positive definite, after it is scaled to a unit diagonal; the others
// are 0.
Vec3 SolveScaled(const Mat3& C, const Vec3& b, int known) {
    Mat3 L;
    Vec3 x, y;
    for (int i = 1; i <= known; ++i) {
        for (int j = 1; j <= i; ++j) {
            double sum = C(i, j) / (std::sqrt(C(i, i)) * std::sqrt(C(j, j)));
            for (int k = 1; k < j; ++k) sum -= L(i, k) * L(j, k);
            L(i, j) = i == j ? std::sqrt(std::max(sum, kEpsilon)) : sum / L(j, j);
        }
        y(i) = b(i) / std::sqrt(C(i, i));
        for (int k = 1; k < i; ++k) y(i) -= L(i, k) * y(k);
        y(i) /= L(i, i);
    }
    for (int i = known; i >= 1; --i) {
        x(i) = y(i);
        for (int k = i + 1; k <= known; ++k) x(i) -= L(k, i) * x(k);
        x(i) /= L(i, i);
    }
    for (int i = 1; i <= known; ++i) x(i) /= std::sqrt(C(i, i));
    return x;
}

Mat3 UnitMatrix() {
    Mat3 unit;
    for (int k = 1; k <= 3; ++k) unit(k, k) = 1;
    return unit;
}

// The linear solution over the first `known` directions; what the others are carried to stays.
Mat3 LinearSolution(const PointMoments& moments, int known) {
    Mat3 M = moments.M;
    for (int axis = 1; axis <= 3; ++axis) {
        const Vec3 change = SolveScaled(StartProducts(moments, axis), CentredSums(moments, axis), known);
        for (int j = 1; j <= known; ++j) M(axis, j) += change(j);
    }
    return M;
}

bool IsUpright(const Mat3& M) {
    constexpr double kUpright = 1e-3;
    double size = 1;
    for (int k = 1; k <= 3; ++k) size *= std::hypot(M(1, k), M(2, k), M(3, k));
    return Determinant3(M) > kUpright * size;
}

void TakeAffine(const GatheredPoints& points, const PointMoments& moments, BestTransformations& best) {
    const Mat3 C = StartProducts(moments, 1);
    const Vec3 spread(C(1, 1), C(2, 2), C(3, 3));
    const int known = KnownDirections(spread, RoundingOfStart(points));
    // A transformation that carries the other directions as before, or else as makes it proper.
    const auto proper = [&](int directions) {
        const Mat3 M = LinearSolution(moments, directions);
        return With(moments, IsUpright(M) ? M : CompletedFlat(M, UnitMatrix(), directions));
    };
    if (known < 3) {
        best.Proper = proper(known);
        return;
    }
    const Mat3 M = LinearSolution(moments, 3);
    if (Determinant3(M) >= 0) {
        best.Proper = With(moments, M);
        return;
    }
    best.Mirrored = With(moments, M);
    const int wide = KnownDirections(spread, kFlat * spread(1));
    if (wide == 3) return;
    best.Proper = proper(wide);
    best.ProperIsLeast = false;
}

// Of A with columns of falling size: A = U diag(s) V', U and V rotations, s(3) with the sign of the
// determinant of A.
Svd3 DecomposeScaled(const Mat3& A) {
    Svd3 result = DecomposeToLastDigits(A);
    const auto complete = [](Mat3& Q) {
        const Mat3 P = Q;
        Q(1, 3) = P(2, 1) * P(3, 2) - P(3, 1) * P(2, 2);
        Q(2, 3) = P(3, 1) * P(1, 2) - P(1, 1) * P(3, 2);
        Q(3, 3) = P(1, 1) * P(2, 2) - P(2, 1) * P(1, 2);
        return P(1, 3) * Q(1, 3) + P(2, 3) * Q(2, 3) + P(3, 3) * Q(3, 3) < 0;
    };
    const bool left = complete(result.U), right = complete(result.V);
    if (left != right) result.s(3) = -result.s(3);
    return result;
}

// What rounding of the target coordinates makes of products with start coordinates across the line.
double RoundingOfProducts(const GatheredPoints& points, const Mat3& C) {
    return std::sqrt(RoundingOfSpread(points.Target, points.TargetCentre, points.Count) *
                     (C(2, 2) + C(3, 3)));
}

void TakeTurned(const GatheredPoints& points, const PointMoments& moments, PlainModel model,
                BestTransformations& best) {
    // Cross products in the frame of the reference's rotation, in which they are all but diagonal.
    double none = 0;
    const Mat3 R0 = NearestRotation(moments.M, 1, none), back = Transposed(R0);
    const Mat3 C = StartProducts(moments, 1);
    Mat3 sums;
    for (int axis = 1; axis <= 3; ++axis) {
        const Vec3 row = CentredSums(moments, axis);
        for (int j = 1; j <= 3; ++j) sums(axis, j) = row(j);
    }
    const Mat3 turned = MatrixProduct(back, sums), carried = MatrixProduct(MatrixProduct(back, moments.M), C);
    Mat3 H;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            H(row, column) = turned(row, column) + carried(row, column);
    const Svd3 svd = DecomposeScaled(H);
    if (!(svd.s(2) > RoundingOfProducts(points, C))) return;
    const auto of = [&](double last) {
        Mat3 Q;
        for (int row = 1; row <= 3; ++row)
            for (int column = 1; column <= 3; ++column)
                Q(row, column) = svd.U(row, 1) * svd.V(column, 1) + svd.U(row, 2) * svd.V(column, 2) +
                                 last * svd.U(row, 3) * svd.V(column, 3);
        double factor = 1;
        if (model == PlainModel::Similarity)
            factor = (svd.s(1) + svd.s(2) + last * svd.s(3)) / (C(1, 1) + C(2, 2) + C(3, 3));
        Mat3 M = MatrixProduct(R0, Q);
        for (int row = 1; row <= 3; ++row)
            for (int column = 1; column <= 3; ++column) M(row, column) *= factor;
        return With(moments, M);
    };
    best.Proper = of(1);
    if (model == PlainModel::Similarity && svd.s(3) < -1e-12 * svd.s(2)) best.Mirrored = of(-1);
}

}  // namespace

std::optional<Mat3> AxesOfThinPoints(const GatheredPoints& points, const PointMoments& moments,
                                     PlainModel model) {
    const int axis = model == PlainModel::Affine ? 3 : 2;
    if (model == PlainModel::AxisScales || (model == PlainModel::Affine && !WeighAlike(moments))) return {};
    for (int k = 1; k <= 3; ++k)
        if (!(moments.B[At(k)][0][0] > 0)) return {};
    Mat3 products;
    for (int k = 1; k <= 3; ++k) {
        const Mat3 ofAxis = StartProducts(moments, k);
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j) products(i, j) += ofAxis(i, j);
    }
    const Svd3 svd = Decompose3(products);
    if (!(svd.s(1) > 0) || svd.s(axis) > kThin * svd.s(1)) return {};
    std::vector<int> used;
    for (int i = 0; i < points.Count; ++i)
        if (points.AllInUse ||
            points.Weight[0][At(i)] + points.Weight[1][At(i)] + points.Weight[2][At(i)] > 0)
            used.push_back(i);
    const PrincipalAxes axes = AxesOf(points.Start, used);
    // Nothing more is known than what the usual sums tell.
    if (KnownDirections(axes.Squares, RoundingOfStart(points)) < axis) return {};
    return axes.Axes;
}

GatheredPoints AlongAxes(const GatheredPoints& points, const Mat3& axes) {
    GatheredPoints turned = points;
    for (int k = 1; k <= 3; ++k)
        for (int i = 0; i < points.Padded; ++i)
            turned.Start[At(k - 1)][At(i)] = axes(1, k) * points.Start[0][At(i)] +
                                             axes(2, k) * points.Start[1][At(i)] +
                                             axes(3, k) * points.Start[2][At(i)];
    return turned;
}

BestTransformations BestOfThinPoints(const GatheredPoints& points, const PointMoments& moments,
                                     PlainModel model) {
    // Single coordinates out of use leave no closed form; the search by starts has the same axes.
    if (!WeighAlike(moments)) return BestOfModel(moments, model);
    BestTransformations best;
    best.ClosedForm = true;
    if (model == PlainModel::Affine) {
        TakeAffine(points, moments, best);
    } else {
        TakeTurned(points, moments, model, best);
    }
    return best;
}

}  // namespace corvinade::fit
