// The motion that a cloud goes through.
#include "import/cloud_motion.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace corvinade::import {

namespace {

using Nine = std::array<double, 9>;

double Determinant(const Nine& m) {
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
           m[2] * (m[3] * m[7] - m[4] * m[6]);
}

// The matrix of cofactors: the inverse, transposed, times the determinant.
Nine Cofactors(const Nine& m) {
    return {m[4] * m[8] - m[5] * m[7], m[5] * m[6] - m[3] * m[8], m[3] * m[7] - m[4] * m[6],
            m[2] * m[7] - m[1] * m[8], m[0] * m[8] - m[2] * m[6], m[1] * m[6] - m[0] * m[7],
            m[1] * m[5] - m[2] * m[4], m[2] * m[3] - m[0] * m[5], m[0] * m[4] - m[1] * m[3]};
}

double NormOf(const Nine& m) {
    double sum = 0;
    for (const double value : m) sum += value * value;
    return std::sqrt(sum);
}

// The orthogonal factor of the polar decomposition, by Newton's iteration Q <- (g Q + Q^-T / g) / 2 with a
// factor g that brings far ones near (Higham, Computing the polar decomposition, 1986). A rotation is
// returned bit by bit but for its rounding.
Nine NearestOrthogonal(const Nine& m) {
    Nine q = m;
    const double size = NormOf(m);
    for (double& value : q) value /= size;
    for (int step = 0; step < 100; ++step) {
        const double determinant = Determinant(q);
        Nine next = Cofactors(q);
        for (double& value : next) value /= determinant;
        const double g = step < 20 ? std::sqrt(NormOf(next) / NormOf(q)) : 1;
        double change = 0;
        for (std::size_t i = 0; i < 9; ++i) {
            next[i] = (g * q[i] + next[i] / g) / 2;
            change = std::max(change, std::fabs(next[i] - q[i]));
        }
        q = next;
        if (change < 1e-15) break;
    }
    return q;
}

// Of the four, the component of which a root is taken is the largest, so that none is a difference of two
// nearly equal ones (Shepperd, Quaternion from rotation matrix, 1978).
std::array<double, 4> QuaternionOf(const Nine& r) {
    const std::array<double, 4> four = {1 + r[0] + r[4] + r[8], 1 + r[0] - r[4] - r[8],
                                        1 - r[0] + r[4] - r[8], 1 - r[0] - r[4] + r[8]};
    const auto largest = static_cast<std::size_t>(std::max_element(four.begin(), four.end()) - four.begin());
    const double a = r[7] - r[5], b = r[2] - r[6], c = r[3] - r[1];
    const double d = r[1] + r[3], e = r[2] + r[6], f = r[5] + r[7];
    const std::array<std::array<double, 4>, 4> columns = {
        {{four[0], a, b, c}, {a, four[1], d, e}, {b, d, four[2], f}, {c, e, f, four[3]}}};
    std::array<double, 4> q = columns[largest];
    double size = 0;
    for (const double value : q) size += value * value;
    size = std::copysign(std::sqrt(size), q[0]);
    for (double& value : q) value /= size;
    return q;
}

}  // namespace

std::optional<CloudMotion> MotionOf(const std::array<double, 9>& m, const std::array<double, 3>& t) {
    const double determinant = Determinant(m);
    double rows = 1;
    for (std::size_t i = 0; i < 9; i += 3) rows *= std::hypot(m[i], m[i + 1], m[i + 2]);
    if (!std::isfinite(rows) || rows == 0 || !(std::fabs(determinant) >= 1e-12 * rows)) return std::nullopt;
    CloudMotion motion;
    motion.M = m;
    motion.T = t;
    motion.Turn = NearestOrthogonal(m);
    motion.Mirrors = determinant < 0;
    if (!motion.Mirrors) motion.Quaternion = QuaternionOf(motion.Turn);
    return motion;
}

std::optional<CloudMotion> InverseOf(const CloudMotion& motion) {
    const double determinant = Determinant(motion.M);
    const Nine c = Cofactors(motion.M);
    const Nine inverse = {c[0] / determinant, c[3] / determinant, c[6] / determinant,
                          c[1] / determinant, c[4] / determinant, c[7] / determinant,
                          c[2] / determinant, c[5] / determinant, c[8] / determinant};
    std::array<double, 3> shift{};
    for (std::size_t i = 0; i < 3; ++i)
        shift[i] = -(inverse[3 * i] * motion.T[0] + inverse[3 * i + 1] * motion.T[1] +
                     inverse[3 * i + 2] * motion.T[2]);
    return MotionOf(inverse, shift);
}

CloudMotion InUnit(CloudMotion motion, double factor) {
    for (double& value : motion.T) value *= factor;
    return motion;
}

std::array<double, 4> QuaternionProduct(const std::array<double, 4>& a, const std::array<double, 4>& b) {
    return {a[0] * b[0] - a[1] * b[1] - a[2] * b[2] - a[3] * b[3],
            a[0] * b[1] + a[1] * b[0] + a[2] * b[3] - a[3] * b[2],
            a[0] * b[2] - a[1] * b[3] + a[2] * b[0] + a[3] * b[1],
            a[0] * b[3] + a[1] * b[2] - a[2] * b[1] + a[3] * b[0]};
}

}  // namespace corvinade::import
