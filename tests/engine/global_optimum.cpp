// Least sums of squares in closed form.
#include "engine/global_optimum.h"

#include <algorithm>
#include <cmath>

namespace optimum {

namespace {

using Square4 = std::array<std::array<Real, 4>, 4>;
using Square3 = std::array<std::array<Real, 3>, 3>;

Point Centre(const std::vector<Point>& points) {
    Point centre{};
    for (const Point& p : points)
        for (std::size_t k = 0; k < 3; ++k) centre[k] += p[k] / static_cast<Real>(points.size());
    return centre;
}

std::vector<Point> Centred(const std::vector<Point>& points) {
    const Point centre = Centre(points);
    std::vector<Point> result = points;
    for (Point& p : result)
        for (std::size_t k = 0; k < 3; ++k) p[k] -= centre[k];
    return result;
}

// Eigenvectors of a symmetric matrix by Jacobi's rotations, the columns of V.
template <std::size_t N>
void Eigen(std::array<std::array<Real, N>, N> A, std::array<Real, N>& values,
           std::array<std::array<Real, N>, N>& V) {
    V = {};
    for (std::size_t k = 0; k < N; ++k) V[k][k] = 1;
    for (int sweep = 0; sweep < 100; ++sweep)
        for (std::size_t p = 0; p < N; ++p)
            for (std::size_t q = p + 1; q < N; ++q) {
                if (A[p][q] == 0) continue;
                const Real theta = (A[q][q] - A[p][p]) / (2 * A[p][q]);
                const Real t = (theta < 0 ? -1 : 1) / (std::fabs(theta) + std::hypot(theta, Real(1)));
                const Real c = 1 / std::hypot(t, Real(1)), s = t * c;
                for (std::size_t k = 0; k < N; ++k) {
                    const Real a = A[k][p], b = A[k][q];
                    A[k][p] = c * a - s * b;
                    A[k][q] = s * a + c * b;
                }
                for (std::size_t k = 0; k < N; ++k) {
                    const Real a = A[p][k], b = A[q][k];
                    A[p][k] = c * a - s * b;
                    A[q][k] = s * a + c * b;
                }
                for (std::size_t k = 0; k < N; ++k) {
                    const Real a = V[k][p], b = V[k][q];
                    V[k][p] = c * a - s * b;
                    V[k][q] = s * a + c * b;
                }
            }
    for (std::size_t k = 0; k < N; ++k) values[k] = A[k][k];
}

// Products of the coordinates, row of the start, column of the target.
Square3 Products(const std::vector<Point>& p, const std::vector<Point>& q) {
    Square3 S{};
    for (std::size_t i = 0; i < p.size(); ++i)
        for (std::size_t a = 0; a < 3; ++a)
            for (std::size_t b = 0; b < 3; ++b) S[a][b] += p[i][a] * q[i][b];
    return S;
}

// The rotation that brings p nearest to q.
Square3 BestRotation(const Square3& S) {
    const Square4 N = {
        {{S[0][0] + S[1][1] + S[2][2], S[1][2] - S[2][1], S[2][0] - S[0][2], S[0][1] - S[1][0]},
         {S[1][2] - S[2][1], S[0][0] - S[1][1] - S[2][2], S[0][1] + S[1][0], S[2][0] + S[0][2]},
         {S[2][0] - S[0][2], S[0][1] + S[1][0], S[1][1] - S[0][0] - S[2][2], S[1][2] + S[2][1]},
         {S[0][1] - S[1][0], S[2][0] + S[0][2], S[1][2] + S[2][1], S[2][2] - S[0][0] - S[1][1]}}};
    std::array<Real, 4> values{};
    Square4 V{};
    Eigen<4>(N, values, V);
    std::size_t best = 0;
    for (std::size_t k = 1; k < 4; ++k)
        if (values[k] > values[best]) best = k;
    const Real w = V[0][best], x = V[1][best], y = V[2][best], z = V[3][best];
    return {{{w * w + x * x - y * y - z * z, 2 * (x * y - w * z), 2 * (x * z + w * y)},
             {2 * (y * x + w * z), w * w - x * x + y * y - z * z, 2 * (y * z - w * x)},
             {2 * (z * x - w * y), 2 * (z * y + w * x), w * w - x * x - y * y + z * z}}};
}

Point Times(const Square3& R, const Point& p) {
    Point result{};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t k = 0; k < 3; ++k) result[row] += R[row][k] * p[k];
    return result;
}

// Of q - s R p.
Real Sum(const std::vector<Point>& p, const std::vector<Point>& q, const Square3& M, Real s) {
    Real sum = 0;
    for (std::size_t i = 0; i < p.size(); ++i) {
        const Point image = Times(M, p[i]);
        for (std::size_t k = 0; k < 3; ++k) sum += (q[i][k] - s * image[k]) * (q[i][k] - s * image[k]);
    }
    return sum;
}

Real BestScale(const std::vector<Point>& p, const std::vector<Point>& q, const Square3& R) {
    Real dot = 0, size = 0;
    for (std::size_t i = 0; i < p.size(); ++i) {
        const Point image = Times(R, p[i]);
        for (std::size_t k = 0; k < 3; ++k) {
            dot += image[k] * q[i][k];
            size += p[i][k] * p[i][k];
        }
    }
    return size > 0 ? std::max(Real(0), dot / size) : 0;
}

Real AffineSum(const std::vector<Point>& p, const std::vector<Point>& q) {
    std::array<Real, 3> spread{};
    Square3 V{};
    Eigen<3>(Products(p, p), spread, V);
    const Real largest = *std::max_element(spread.begin(), spread.end());
    const Square3 C = Products(p, q);
    Square3 M{};
    for (std::size_t k = 0; k < 3; ++k) {
        if (!(spread[k] > Real(1e-15) * largest)) continue;
        for (std::size_t row = 0; row < 3; ++row) {
            Real along = 0;
            for (std::size_t j = 0; j < 3; ++j) along += V[j][k] * C[j][row];
            for (std::size_t j = 0; j < 3; ++j) M[row][j] += along / spread[k] * V[j][k];
        }
    }
    return Sum(p, q, M, 1);
}

}  // namespace

Real LeastSum(Kind kind, const std::vector<Point>& start, const std::vector<Point>& target) {
    const std::vector<Point> p = Centred(start), q = Centred(target);
    if (kind == Kind::Affine) return AffineSum(p, q);
    const Square3 R = BestRotation(Products(p, q));
    return Sum(p, q, R, kind == Kind::Rigid ? 1 : BestScale(p, q, R));
}

Real LeastMirroredSum(const std::vector<Point>& start, const std::vector<Point>& target) {
    std::vector<Point> p = Centred(start);
    for (Point& each : p)
        for (Real& value : each) value = -value;
    const std::vector<Point> q = Centred(target);
    const Square3 R = BestRotation(Products(p, q));
    return Sum(p, q, R, BestScale(p, q, R));
}

}  // namespace optimum
