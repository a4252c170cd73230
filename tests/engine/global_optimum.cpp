// Least sums of squares in closed form. They are taken in quadruple precision, in which what points stand off
// a line or plane by keeps its digits in products with the largest coordinates.
#include "engine/global_optimum.h"

#include <algorithm>
#include <cmath>

namespace optimum {

namespace {

constexpr Real kEpsilon = 2.220446049250313e-16;  // of doubles

__extension__ using Quad = __float128;
using QuadPoint = std::array<Quad, 3>;
using Square4 = std::array<std::array<Quad, 4>, 4>;
using Square3 = std::array<std::array<Quad, 3>, 3>;

Quad Size(Quad x) {
    return x < 0 ? -x : x;
}

// From the root in long double by Newton's steps, each of which doubles the digits.
Quad Root(Quad x) {
    Quad root = std::sqrt(static_cast<Real>(x));
    for (int step = 0; step < 2 && root > 0; ++step) root = (root + x / root) / 2;
    return root;
}

std::vector<QuadPoint> Centred(const std::vector<Point>& points) {
    QuadPoint centre{};
    for (const Point& p : points)
        for (std::size_t k = 0; k < 3; ++k)
            centre[k] += static_cast<Quad>(p[k]) / static_cast<Quad>(points.size());
    std::vector<QuadPoint> result;
    for (const Point& p : points) result.push_back({p[0] - centre[0], p[1] - centre[1], p[2] - centre[2]});
    return result;
}

// Eigenvectors of a symmetric matrix by Jacobi's rotations, the columns of V.
template <std::size_t N>
void Eigen(std::array<std::array<Quad, N>, N> A, std::array<Quad, N>& values,
           std::array<std::array<Quad, N>, N>& V) {
    constexpr Quad kNothing = 1e-36;  // rounding, of products of 113 bits
    V = {};
    for (std::size_t k = 0; k < N; ++k) V[k][k] = 1;
    for (int sweep = 0; sweep < 100; ++sweep)
        for (std::size_t p = 0; p < N; ++p)
            for (std::size_t q = p + 1; q < N; ++q) {
                if (Size(A[p][q]) <= kNothing * Root(Size(A[p][p] * A[q][q]))) continue;
                const Quad theta = (A[q][q] - A[p][p]) / (2 * A[p][q]);
                const Quad t = (theta < 0 ? -1 : 1) / (Size(theta) + Root(theta * theta + 1));
                const Quad c = 1 / Root(t * t + 1), s = t * c;
                for (std::size_t k = 0; k < N; ++k) {
                    const Quad a = A[k][p], b = A[k][q];
                    A[k][p] = c * a - s * b;
                    A[k][q] = s * a + c * b;
                }
                for (std::size_t k = 0; k < N; ++k) {
                    const Quad a = A[p][k], b = A[q][k];
                    A[p][k] = c * a - s * b;
                    A[q][k] = s * a + c * b;
                }
                for (std::size_t k = 0; k < N; ++k) {
                    const Quad a = V[k][p], b = V[k][q];
                    V[k][p] = c * a - s * b;
                    V[k][q] = s * a + c * b;
                }
            }
    for (std::size_t k = 0; k < N; ++k) values[k] = A[k][k];
}

// Products of the coordinates, row of the start, column of the target.
Square3 Products(const std::vector<QuadPoint>& p, const std::vector<QuadPoint>& q) {
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
    std::array<Quad, 4> values{};
    Square4 V{};
    Eigen<4>(N, values, V);
    std::size_t best = 0;
    for (std::size_t k = 1; k < 4; ++k)
        if (values[k] > values[best]) best = k;
    const Quad w = V[0][best], x = V[1][best], y = V[2][best], z = V[3][best];
    return {{{w * w + x * x - y * y - z * z, 2 * (x * y - w * z), 2 * (x * z + w * y)},
             {2 * (y * x + w * z), w * w - x * x + y * y - z * z, 2 * (y * z - w * x)},
             {2 * (z * x - w * y), 2 * (z * y + w * x), w * w - x * x - y * y + z * z}}};
}

QuadPoint Times(const Square3& R, const QuadPoint& p) {
    QuadPoint result{};
    for (std::size_t row = 0; row < 3; ++row)
        for (std::size_t k = 0; k < 3; ++k) result[row] += R[row][k] * p[k];
    return result;
}

// Of q - s R p.
Quad Sum(const std::vector<QuadPoint>& p, const std::vector<QuadPoint>& q, const Square3& M, Quad s) {
    Quad sum = 0;
    for (std::size_t i = 0; i < p.size(); ++i) {
        const QuadPoint image = Times(M, p[i]);
        for (std::size_t k = 0; k < 3; ++k) sum += (q[i][k] - s * image[k]) * (q[i][k] - s * image[k]);
    }
    return sum;
}

Quad BestScale(const std::vector<QuadPoint>& p, const std::vector<QuadPoint>& q, const Square3& R) {
    Quad dot = 0, size = 0;
    for (std::size_t i = 0; i < p.size(); ++i) {
        const QuadPoint image = Times(R, p[i]);
        for (std::size_t k = 0; k < 3; ++k) {
            dot += image[k] * q[i][k];
            size += p[i][k] * p[i][k];
        }
    }
    return size > 0 && dot > 0 ? dot / size : 0;
}

// Directions with a spread of `nothing` are left out.
Quad AffineSum(const std::vector<QuadPoint>& p, const std::vector<QuadPoint>& q, Quad nothing) {
    std::array<Quad, 3> spread{};
    Square3 V{};
    Eigen<3>(Products(p, p), spread, V);
    const Square3 C = Products(p, q);
    Square3 M{};
    for (std::size_t k = 0; k < 3; ++k) {
        if (!(spread[k] > nothing)) continue;
        for (std::size_t row = 0; row < 3; ++row) {
            Quad along = 0;
            for (std::size_t j = 0; j < 3; ++j) along += V[j][k] * C[j][row];
            for (std::size_t j = 0; j < 3; ++j) M[row][j] += along / spread[k] * V[j][k];
        }
    }
    return Sum(p, q, M, 1);
}

}  // namespace

Real LeastSum(Kind kind, const std::vector<Point>& start, const std::vector<Point>& target) {
    const std::vector<QuadPoint> p = Centred(start), q = Centred(target);
    if (kind == Kind::Affine) {
        // What rounding of the coordinates to doubles makes of a plane.
        Real largest = 0;
        for (const Point& each : start)
            for (const Real value : each) largest = std::max(largest, std::fabs(value));
        const Real each = 8 * kEpsilon * largest;
        return static_cast<Real>(AffineSum(p, q, each * each * static_cast<Real>(start.size())));
    }
    const Square3 R = BestRotation(Products(p, q));
    return static_cast<Real>(Sum(p, q, R, kind == Kind::Rigid ? 1 : BestScale(p, q, R)));
}

Real LeastMirroredSum(const std::vector<Point>& start, const std::vector<Point>& target) {
    std::vector<QuadPoint> p = Centred(start);
    for (QuadPoint& each : p)
        for (Quad& value : each) value = -value;
    const std::vector<QuadPoint> q = Centred(target);
    const Square3 R = BestRotation(Products(p, q));
    return static_cast<Real>(Sum(p, q, R, BestScale(p, q, R)));
}

}  // namespace optimum
