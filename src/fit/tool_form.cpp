// The sum of squares of the tool model as a function of M.
#include "fit/tool_form.h"

#include <algorithm>
#include <cmath>

#include "fit/small_svd.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr double kEpsilon = 2.220446049250313e-16;

// The sums of one axis with the shift taken at its best value, by places 1 to 6: x, y, z and the pose's row.
struct AxisSums {
    std::array<std::array<double, kMostPlaces>, kMostPlaces> C{};
    std::array<double, kMostPlaces> c{};
    double Gain = 0;  // of the shift alone

    AxisSums(const FitModel& model, const GatheredPoints& points, const PointMoments& moments, int axis) {
        const auto& B = moments.B[At(axis)];
        const auto& m = moments.m[At(axis)];
        if (!(B[0][0] > 0)) return;
        const bool floats = model.UnknownOf[At(kTraX + axis - 1)] != 0;
        if (floats) Gain = m[0] * m[0] / B[0][0];
        // With the translation held an element of M moves the centre as well.
        std::array<double, kMostPlaces> along{};
        for (int j = 1; j <= 3 && !floats; ++j) along[At(j)] = points.StartCentre(j);
        for (std::size_t i = 1; i < kMostPlaces; ++i) {
            c[i] = floats ? m[i] - m[0] * B[0][i] / B[0][0] : m[i] + along[i] * m[0];
            for (std::size_t j = 1; j < kMostPlaces; ++j)
                C[i][j] = floats ? B[i][j] - B[0][i] * B[0][j] / B[0][0]
                                 : B[i][j] + along[i] * B[0][j] + along[j] * B[i][0] +
                                       along[i] * along[j] * B[0][0];
        }
    }
};

double Dot(const Vec3& a, const Vec3& b) {
    return a(1) * b(1) + a(2) * b(2) + a(3) * b(3);
}

Vec3 Times(const Mat3& M, const Vec3& v) {
    Vec3 result;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) result(i) += M(i, j) * v(j);
    return result;
}

Vec3 ColumnOf(const Mat3& M, int column) {
    return {M(1, column), M(2, column), M(3, column)};
}

// The directions of the tool that may move, one a column, the others 0.
Mat3 MovingDirections(const std::vector<Vec3>& still) {
    Mat3 across;
    for (int k = 1; k <= 3; ++k) across(k, k) = 1;
    for (const Vec3& w : still)
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j) across(i, j) -= w(i) * w(j);
    return across;
}

// The inverse of the products of so many poses within the directions that are more than rounding. Rows of
// poses are unit vectors.
Mat3 InverseWithin(const Mat3& products, double poses) {
    constexpr double kLeast = 1e-13;
    const Svd3 svd = Decompose3(products);
    Mat3 inverse;
    for (int k = 1; k <= 3; ++k) {
        if (!(svd.s(k) > kLeast * poses)) continue;
        for (int i = 1; i <= 3; ++i)
            for (int j = 1; j <= 3; ++j) inverse(i, j) += svd.V(i, k) * svd.V(j, k) / svd.s(k);
    }
    return inverse;
}

}  // namespace

ToolForm::ToolForm(const FitModel& model, const GatheredPoints& points, const PointMoments& moments,
                   const std::vector<Vec3>& still)
    : model_(model), points_(points), moments_(moments) {
    Mat3 products;
    double rows = 0;
    for (int axis = 1; axis <= 3; ++axis) {
        const AxisSums sums(model, points, moments, axis);
        rows += moments.B[At(axis)][0][0];
        const_ += sums.Gain;
        for (int i = 1; i <= 3; ++i) {
            const auto row = At(3 * (axis - 1) + i - 1);
            b_[row] = sums.c[At(i)];
            for (int j = 1; j <= 3; ++j) {
                A_[row][At(3 * (axis - 1) + j - 1)] = sums.C[At(i)][At(j)];
                across_[row][At(j - 1)] = sums.C[At(i)][At(3 + j)];
                products(i, j) += sums.C[At(3 + i)][At(3 + j)];
            }
            toolSlope_(i) += sums.c[At(3 + i)];
        }
    }
    const Svd3 svd = Decompose3(products);
    for (int k = 1; k <= 3; ++k)
        directions_[At(3 - k)] = {ColumnOf(svd.V, k), rows > 0 ? std::sqrt(svd.s(k) / (rows / 3)) : 0};
    if (!model.ToolFloats) return;
    const Mat3 moving = MovingDirections(still);
    Mat3 within;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j)
            for (int k = 1; k <= 3; ++k)
                for (int l = 1; l <= 3; ++l) within(i, j) += moving(i, k) * products(k, l) * moving(l, j);
    inverse_ = InverseWithin(within, rows / 3);
    const_ += Dot(toolSlope_, Times(inverse_, toolSlope_));
    for (std::size_t row = 0; row < 9; ++row) {
        const Vec3 ofTool = Times(inverse_, {across_[row][0], across_[row][1], across_[row][2]});
        b_[row] -= Dot(ofTool, toolSlope_);
        for (std::size_t column = 0; column < 9; ++column)
            A_[row][column] -= Dot(ofTool, {across_[column][0], across_[column][1], across_[column][2]});
    }
}

ToolForm::Elements ToolForm::ChangeTo(const Mat3& M) const {
    Elements d;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) d[At(3 * (i - 1) + j - 1)] = M(i, j) - moments_.M(i, j);
    return d;
}

double ToolForm::Gain(const Mat3& M) const {
    const Elements d = ChangeTo(M);
    double gain = const_;
    for (std::size_t i = 0; i < 9; ++i) {
        double Ad = 0;
        for (std::size_t j = 0; j < 9; ++j) Ad += A_[i][j] * d[j];
        gain += d[i] * (2 * b_[i] - Ad);
    }
    return gain;
}

double ToolForm::RoundingNearby() const {
    double size = 0;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) size += std::fabs(b_[At(3 * (i - 1) + j - 1)] * moments_.M(i, j));
    return 64 * kEpsilon * size;
}

Vec3 ToolForm::ToolChange(const Elements& d) const {
    Vec3 slope = toolSlope_;
    for (std::size_t row = 0; row < 9; ++row)
        for (int k = 1; k <= 3; ++k) slope(k) -= across_[row][At(k - 1)] * d[row];
    return Times(inverse_, slope);
}

Vec3 ToolForm::ToolOf(const Mat3& M) const {
    const Vec3 change = ToolChange(ChangeTo(M));
    return {moments_.Tool(1) + change(1), moments_.Tool(2) + change(2), moments_.Tool(3) + change(3)};
}

Vec3 ToolForm::ShiftOf(const Mat3& M) const {
    const Elements d = ChangeTo(M);
    const Vec3 tool = ToolChange(d);
    Vec3 shift = moments_.Shift;
    for (int axis = 1; axis <= 3; ++axis) {
        const auto& B = moments_.B[At(axis)];
        const bool floats = model_.UnknownOf[At(kTraX + axis - 1)] != 0;
        if (floats && B[0][0] > 0) {
            double sum = moments_.m[At(axis)][0];
            for (int j = 1; j <= 3; ++j)
                sum -= B[0][At(j)] * d[At(3 * (axis - 1) + j - 1)] + B[0][At(3 + j)] * tool(j);
            shift(axis) += sum / B[0][0];
        } else {
            for (int j = 1; j <= 3; ++j)
                shift(axis) += d[At(3 * (axis - 1) + j - 1)] * points_.StartCentre(j);
        }
    }
    return shift;
}

ToolForm::LeastOfAll ToolForm::Least() const {
    constexpr double kLeast = 1e-12;
    std::vector<double> A;
    for (const Elements& row : A_) A.insert(A.end(), row.begin(), row.end());
    const SmallSvd svd = DecomposeSmall(A, 9, 9);
    Mat3 M = moments_.M;
    for (std::size_t k = 0; k < 9; ++k) {
        if (!(svd.s[k] > kLeast * svd.s[0])) continue;
        double along = 0;
        for (std::size_t i = 0; i < 9; ++i) along += svd.U[i * 9 + k] * b_[i];
        for (std::size_t i = 0; i < 9; ++i)
            M(static_cast<int>(i) / 3 + 1, static_cast<int>(i) % 3 + 1) +=
                along / svd.s[k] * svd.V[i * 9 + k];
    }
    return {M, Gain(M), svd.s[8]};
}

ToolForm::Elements ToolForm::SlopeAt(const Mat3& M) const {
    const Elements d = ChangeTo(M);
    Elements slope = b_;
    for (std::size_t i = 0; i < 9; ++i)
        for (std::size_t j = 0; j < 9; ++j) slope[i] -= A_[i][j] * d[j];
    return slope;
}

ToolForm::Elements ToolForm::Curved(const Mat3& D) const {
    Elements curved{};
    for (std::size_t i = 0; i < 9; ++i)
        for (int row = 1; row <= 3; ++row)
            for (int column = 1; column <= 3; ++column)
                curved[i] += A_[i][At(3 * (row - 1) + column - 1)] * D(row, column);
    return curved;
}

double ToolForm::BestFactor(const Mat3& M) const {
    const Elements curved = Curved(M), slope = SlopeAt(Mat3{});
    double along = 0, square = 0;
    for (int i = 1; i <= 3; ++i)
        for (int j = 1; j <= 3; ++j) {
            along += slope[At(3 * (i - 1) + j - 1)] * M(i, j);
            square += curved[At(3 * (i - 1) + j - 1)] * M(i, j);
        }
    return square > 0 ? along / square : 0;
}

}  // namespace corvinade::fit
