// The rigid transformation between paired points in closed form.
#include "cli/closed_form.h"

#include <cmath>

namespace closed_form {

namespace {

using Real = long double;
using Four = std::array<std::array<Real, 4>, 4>;

// Eigenvector of the largest eigenvalue of a symmetric matrix, by cyclic Jacobi rotations.
std::array<Real, 4> LargestEigenvector(Four a) {
    Four v{};
    for (int i = 0; i < 4; ++i) v[i][i] = 1;
    for (int sweep = 0; sweep < 60; ++sweep)
        for (int p = 0; p < 3; ++p)
            for (int q = p + 1; q < 4; ++q) {
                if (a[p][q] == 0) continue;
                const Real theta = (a[q][q] - a[p][p]) / (2 * a[p][q]);
                const Real t = (theta >= 0 ? 1 : -1) / (std::fabs(theta) + std::sqrt(theta * theta + 1));
                const Real c = 1 / std::sqrt(t * t + 1);
                const Real s = t * c;
                for (int k = 0; k < 4; ++k) {
                    const Real x = a[k][p];
                    const Real y = a[k][q];
                    a[k][p] = c * x - s * y;
                    a[k][q] = s * x + c * y;
                }
                for (int k = 0; k < 4; ++k) {
                    const Real x = a[p][k];
                    const Real y = a[q][k];
                    a[p][k] = c * x - s * y;
                    a[q][k] = s * x + c * y;
                }
                for (int k = 0; k < 4; ++k) {
                    const Real x = v[k][p];
                    const Real y = v[k][q];
                    v[k][p] = c * x - s * y;
                    v[k][q] = s * x + c * y;
                }
            }
    int best = 0;
    for (int i = 1; i < 4; ++i)
        if (a[i][i] > a[best][best]) best = i;
    return {v[0][best], v[1][best], v[2][best], v[3][best]};
}

}  // namespace

Rigid Fit(const std::vector<Point>& start, const std::vector<Point>& target, bool withScale) {
    const auto n = static_cast<Real>(start.size());
    std::array<Real, 3> p{};
    std::array<Real, 3> q{};
    for (std::size_t i = 0; i < start.size(); ++i)
        for (int k = 0; k < 3; ++k) {
            p[k] += start[i][k] / n;
            q[k] += target[i][k] / n;
        }
    Real m[3][3] = {};
    Real spread = 0;
    for (std::size_t i = 0; i < start.size(); ++i)
        for (int r = 0; r < 3; ++r) {
            spread += (start[i][r] - p[r]) * (start[i][r] - p[r]);
            for (int c = 0; c < 3; ++c) m[r][c] += (start[i][r] - p[r]) * (target[i][c] - q[c]);
        }
    const Four n4 = {
        {{m[0][0] + m[1][1] + m[2][2], m[1][2] - m[2][1], m[2][0] - m[0][2], m[0][1] - m[1][0]},
         {m[1][2] - m[2][1], m[0][0] - m[1][1] - m[2][2], m[0][1] + m[1][0], m[2][0] + m[0][2]},
         {m[2][0] - m[0][2], m[0][1] + m[1][0], -m[0][0] + m[1][1] - m[2][2], m[1][2] + m[2][1]},
         {m[0][1] - m[1][0], m[2][0] + m[0][2], m[1][2] + m[2][1], -m[0][0] - m[1][1] + m[2][2]}}};
    const auto [w, x, y, z] = LargestEigenvector(n4);
    const Real R[3][3] = {{w * w + x * x - y * y - z * z, 2 * (x * y - w * z), 2 * (x * z + w * y)},
                          {2 * (x * y + w * z), w * w - x * x + y * y - z * z, 2 * (y * z - w * x)},
                          {2 * (x * z - w * y), 2 * (y * z + w * x), w * w - x * x - y * y + z * z}};
    Real s = 1;
    if (withScale) {
        Real along = 0;
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c) along += R[r][c] * m[c][r];
        s = along / spread;
    }
    Rigid fit{};
    fit.s = static_cast<double>(s);
    std::array<Real, 3> t{};
    for (int r = 0; r < 3; ++r) {
        t[r] = q[r];
        for (int c = 0; c < 3; ++c) {
            t[r] -= s * R[r][c] * p[c];
            fit.R[r][c] = static_cast<double>(R[r][c]);
        }
        fit.t[r] = static_cast<double>(t[r]);
    }
    Real squares = 0;
    for (std::size_t i = 0; i < start.size(); ++i) {
        Point v{};
        for (int r = 0; r < 3; ++r) {
            const Real value = t[r] +
                               s * (R[r][0] * start[i][0] + R[r][1] * start[i][1] + R[r][2] * start[i][2]) -
                               target[i][r];
            squares += value * value;
            v[r] = static_cast<double>(value);
        }
        fit.residuals.push_back(v);
    }
    fit.squares = static_cast<double>(squares);
    return fit;
}

}  // namespace closed_form
