// Singular values of small matrices.
#include "fit/small_svd.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

Vec3 ColumnOf(const Mat3& A, int column) {
    return {A(1, column), A(2, column), A(3, column)};
}

void SetColumn(Mat3& A, int column, const Vec3& v) {
    for (int row = 1; row <= 3; ++row) A(row, column) = v(row);
}

Vec3 CrossProduct(const Vec3& a, const Vec3& b) {
    return {a(2) * b(3) - a(3) * b(2), a(3) * b(1) - a(1) * b(3), a(1) * b(2) - a(2) * b(1)};
}

double Length(const Vec3& a) {
    return std::sqrt(a(1) * a(1) + a(2) * a(2) + a(3) * a(3));
}

Vec3 Unit(const Vec3& a) {
    const double length = Length(a);
    return {a(1) / length, a(2) / length, a(3) / length};
}

// A direction across `a`, always the same one.
Vec3 Across(const Vec3& a) {
    int least = 1;
    for (int k = 2; k <= 3; ++k)
        if (std::fabs(a(k)) < std::fabs(a(least))) least = k;
    Vec3 axis;
    axis(least) = 1;
    return Unit(CrossProduct(a, axis));
}

// Completes the first `known` unit columns.
void Complete(Mat3& A, int known) {
    if (known == 0) SetColumn(A, 1, {1, 0, 0});
    if (known <= 1) SetColumn(A, 2, Across(ColumnOf(A, 1)));
    if (known <= 2) SetColumn(A, 3, CrossProduct(ColumnOf(A, 1), ColumnOf(A, 2)));
}

}  // namespace

SmallSvd DecomposeSmall(const std::vector<double>& A, int m, int n) {
    constexpr int kMostSweeps = 60;
    constexpr double kAcross = 1e-15;
    std::vector<double> B = A, V(At(n * n));
    for (int k = 0; k < n; ++k) V[At(k * n + k)] = 1;
    for (int sweep = 0; sweep < kMostSweeps; ++sweep) {
        bool turned = false;
        for (int p = 0; p < n; ++p)
            for (int q = p + 1; q < n; ++q) {
                double pp = 0, qq = 0, pq = 0;
                for (int i = 0; i < m; ++i) {
                    const double a = B[At(i * n + p)], b = B[At(i * n + q)];
                    pp += a * a;
                    qq += b * b;
                    pq += a * b;
                }
                if (!(std::fabs(pq) > kAcross * std::sqrt(pp) * std::sqrt(qq))) continue;
                turned = true;
                const double zeta = (qq - pp) / (2 * pq);
                const double t = (zeta < 0 ? -1 : 1) / (std::fabs(zeta) + std::hypot(1, zeta));
                const double cosine = 1 / std::sqrt(1 + t * t), sine = cosine * t;
                const auto turn = [&](std::vector<double>& X, int rows) {
                    for (int i = 0; i < rows; ++i) {
                        double &a = X[At(i * n + p)], &b = X[At(i * n + q)];
                        const double before = a;
                        a = cosine * before - sine * b;
                        b = sine * before + cosine * b;
                    }
                };
                turn(B, m);
                turn(V, n);
            }
        if (!turned) break;
    }
    std::vector<double> size(At(n));
    for (int k = 0; k < n; ++k) {
        double sum = 0;
        for (int i = 0; i < m; ++i) sum += B[At(i * n + k)] * B[At(i * n + k)];
        size[At(k)] = std::sqrt(sum);
    }
    std::vector<int> order(At(n));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return size[At(a)] > size[At(b)]; });
    SmallSvd result{std::vector<double>(At(n)), std::vector<double>(At(m * n)),
                    std::vector<double>(At(n * n))};
    for (int k = 0; k < n; ++k) {
        const int from = order[At(k)];
        result.s[At(k)] = size[At(from)];
        for (int i = 0; i < m; ++i)
            result.U[At(i * n + k)] = size[At(from)] > 0 ? B[At(i * n + from)] / size[At(from)] : 0;
        for (int i = 0; i < n; ++i) result.V[At(i * n + k)] = V[At(i * n + from)];
    }
    return result;
}

Svd3 DecomposeToLastDigits(const Mat3& A) {
    std::vector<double> rows;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column) rows.push_back(A(row, column));
    const SmallSvd svd = DecomposeSmall(rows, 3, 3);
    Svd3 result;
    for (int k = 0; k < 3; ++k) {
        result.s(k + 1) = svd.s[At(k)];
        for (int i = 0; i < 3; ++i) {
            result.U(i + 1, k + 1) = svd.U[At(i * 3 + k)];
            result.V(i + 1, k + 1) = svd.V[At(i * 3 + k)];
        }
    }
    return result;
}

Svd3 Decompose3(const Mat3& A) {
    Svd3 result = DecomposeToLastDigits(A);
    int known = 0;
    // Below this the column is rounding, and not across the others.
    for (int k = 1; k <= 3; ++k)
        if (result.s(k) > 1e-14 * result.s(1)) ++known;
    Complete(result.U, known);
    return result;
}

double Determinant3(const Mat3& A) {
    return A(1, 1) * (A(2, 2) * A(3, 3) - A(2, 3) * A(3, 2)) -
           A(1, 2) * (A(2, 1) * A(3, 3) - A(2, 3) * A(3, 1)) +
           A(1, 3) * (A(2, 1) * A(3, 2) - A(2, 2) * A(3, 1));
}

Mat3 NearestRotation(const Mat3& H, int sign, double& trace) {
    Svd3 svd = Decompose3(H);
    if (!(svd.s(2) > 1e-14 * svd.s(1))) {
        // What turns about the one direction that H knows stays as near to none as can be.
        const Vec3 u = ColumnOf(svd.U, 1), v = ColumnOf(svd.V, 2);
        const double along = u(1) * v(1) + u(2) * v(2) + u(3) * v(3);
        const Vec3 left(v(1) - along * u(1), v(2) - along * u(2), v(3) - along * u(3));
        if (Length(left) > 1e-3) {
            SetColumn(svd.U, 2, Unit(left));
            SetColumn(svd.U, 3, CrossProduct(u, Unit(left)));
        }
    }
    const double handed = Determinant3(svd.U) * Determinant3(svd.V) < 0 ? -1 : 1;
    const double last = handed * sign;
    Mat3 R;
    for (int row = 1; row <= 3; ++row)
        for (int column = 1; column <= 3; ++column)
            R(row, column) = svd.U(row, 1) * svd.V(column, 1) + svd.U(row, 2) * svd.V(column, 2) +
                             last * svd.U(row, 3) * svd.V(column, 3);
    trace = svd.s(1) + svd.s(2) + last * svd.s(3);
    return R;
}

}  // namespace corvinade::fit
