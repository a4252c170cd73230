// A second way to the same fits.
#include "engine/fit_reference.h"

#include <cmath>

namespace reference {

namespace {

using Rows = std::vector<std::vector<Real>>;

std::vector<Real> ResidualsAt(const Problem& problem, const std::array<Real, 18>& t);

Rows Jacobian(const Problem& problem) {
    const std::size_t n = Residuals(problem).size();
    Rows J(n, std::vector<Real>(problem.Free.size()));
    for (std::size_t k = 0; k < problem.Free.size(); ++k) {
        const auto parameter = static_cast<std::size_t>(problem.Free[k]);
        // Five points: the error falls with the fourth power of the step.
        const Real h = parameter <= 3 || parameter >= 14 ? 0.01L : 1e-4L;
        const auto at = [&problem, parameter](Real offset) {
            std::array<Real, 18> moved = problem.Parameters;
            moved[parameter] += offset;
            if (parameter == 10) moved[7] = moved[8] = moved[9] = moved[10];
            return ResidualsAt(problem, moved);
        };
        const auto f1 = at(h), b1 = at(-h), f2 = at(2 * h), b2 = at(-2 * h);
        for (std::size_t i = 0; i < n; ++i) J[i][k] = (8 * (f1[i] - b1[i]) - (f2[i] - b2[i])) / (12 * h);
    }
    return J;
}

std::vector<Real> RowWeights(const Problem& problem) {
    std::vector<Real> weights;
    for (std::size_t i = 0; i < problem.Start.size(); ++i) {
        const Point w = problem.Weight.empty() ? Point{1, 1, 1} : problem.Weight[i];
        if (problem.Mode == Model::Distance) {
            weights.push_back(w[2]);
        } else {
            weights.insert(weights.end(), w.begin(), w.end());
        }
    }
    return weights;
}

// Householder: turns A into an upper triangle and b with it.
void Triangulate(Rows& A, std::vector<Real>& b) {
    const std::size_t n = A.size(), u = A[0].size();
    for (std::size_t k = 0; k < u; ++k) {
        Real norm = 0;
        for (std::size_t i = k; i < n; ++i) norm += A[i][k] * A[i][k];
        norm = std::sqrt(norm);
        if (A[k][k] > 0) norm = -norm;
        std::vector<Real> h(n);
        for (std::size_t i = k; i < n; ++i) h[i] = A[i][k];
        h[k] -= norm;
        Real square = 0;
        for (std::size_t i = k; i < n; ++i) square += h[i] * h[i];
        if (square == 0) continue;
        const auto reflect = [&](auto get) {
            Real dot = 0;
            for (std::size_t i = k; i < n; ++i) dot += h[i] * get(i);
            for (std::size_t i = k; i < n; ++i) get(i) -= 2 * dot / square * h[i];
        };
        for (std::size_t j = k; j < u; ++j) reflect([&](std::size_t i) -> Real& { return A[i][j]; });
        reflect([&](std::size_t i) -> Real& { return b[i]; });
    }
}

std::vector<Real> BackSubstitute(const Rows& R, const std::vector<Real>& b, std::size_t u) {
    std::vector<Real> x(u);
    for (std::size_t k = u; k-- > 0;) {
        Real sum = b[k];
        for (std::size_t j = k + 1; j < u; ++j) sum -= R[k][j] * x[j];
        x[k] = sum / R[k][k];
    }
    return x;
}

std::vector<Real> ResidualsAt(const Problem& problem, const std::array<Real, 18>& t) {
    std::vector<Real> v;
    for (std::size_t i = 0; i < problem.Start.size(); ++i) {
        Point d = Image(t, problem.Start[i]);
        for (std::size_t axis = 0; axis < 3; ++axis) d[axis] -= problem.Target[i][axis];
        if (problem.Mode == Model::Tool) {
            // The usual robot order: Rz(A) Ry(B) Rx(C).
            const Point& pose = problem.Pose[i];
            const Square G = Product(Turn(2, pose[0]), Product(Turn(1, pose[1]), Turn(0, pose[2])));
            for (std::size_t axis = 0; axis < 3; ++axis)
                d[axis] += G[axis][0] * t[15] + G[axis][1] * t[16] + G[axis][2] * t[17];
        }
        if (problem.Mode == Model::Distance) {
            v.push_back(t[14] - std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]));
        } else {
            v.insert(v.end(), d.begin(), d.end());
        }
    }
    return v;
}

}  // namespace

Square Product(const Square& A, const Square& B) {
    Square C{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k) C[i][j] += A[i][k] * B[k][j];
    return C;
}

Square Turn(int axis, Real angle) {
    const auto i = static_cast<std::size_t>((axis + 1) % 3), j = static_cast<std::size_t>((axis + 2) % 3);
    Square R{};
    R[static_cast<std::size_t>(axis)][static_cast<std::size_t>(axis)] = 1;
    R[i][i] = R[j][j] = std::cos(angle);
    R[i][j] = -std::sin(angle);
    R[j][i] = std::sin(angle);
    return R;
}

Square Rotation(Real a, Real b, Real c) {
    return Product(Turn(2, -c), Product(Turn(1, -b), Turn(0, -a)));
}

Point Image(const std::array<Real, 18>& t, const Point& p) {
    const Point scaled = {t[7] * p[0], t[8] * p[1], t[9] * p[2]};
    const Real xy = t[11], az = t[12], zt = t[13];
    const Point oblique = {scaled[0] + std::sin(xy) * scaled[1] + std::cos(az) * std::sin(zt) * scaled[2],
                           std::cos(xy) * scaled[1] + std::sin(az) * std::sin(zt) * scaled[2],
                           std::cos(zt) * scaled[2]};
    const Square R = Rotation(t[4], t[5], t[6]);
    Point image;
    for (std::size_t i = 0; i < 3; ++i)
        image[i] = t[i + 1] + R[i][0] * oblique[0] + R[i][1] * oblique[1] + R[i][2] * oblique[2];
    return image;
}

std::vector<Real> Residuals(const Problem& problem) {
    return ResidualsAt(problem, problem.Parameters);
}

Solution Solve(Problem& problem) {
    const std::vector<Real> weights = RowWeights(problem);
    const std::size_t u = problem.Free.size();
    Solution solution;
    for (int pass = 0; pass < problem.MostPasses && !solution.Converged; ++pass) {
        std::vector<Real> v = Residuals(problem);
        Rows J = Jacobian(problem);
        for (std::size_t i = 0; i < v.size(); ++i) {
            const Real root = std::sqrt(weights[i]);
            v[i] *= -root;
            for (Real& a : J[i]) a *= root;
        }
        Triangulate(J, v);
        const std::vector<Real> x = BackSubstitute(J, v, u);
        Real largest = 0;
        for (std::size_t k = 0; k < u; ++k) {
            problem.Parameters[static_cast<std::size_t>(problem.Free[k])] += x[k];
            if (problem.Free[k] == 10)
                problem.Parameters[7] = problem.Parameters[8] = problem.Parameters[9] =
                    problem.Parameters[10];
            largest = std::max(largest, std::fabs(x[k]));
        }
        solution.Converged = largest < 1e-12L;
        // Q = R^-1 R^-T, column by column.
        Rows inverse(u, std::vector<Real>(u));
        for (std::size_t k = 0; k < u; ++k) {
            std::vector<Real> unit(u);
            unit[k] = 1;
            const std::vector<Real> column = BackSubstitute(J, unit, u);
            for (std::size_t i = 0; i < u; ++i) inverse[i][k] = column[i];
        }
        solution.Q.assign(u, std::vector<Real>(u));
        for (std::size_t i = 0; i < u; ++i)
            for (std::size_t j = 0; j < u; ++j)
                for (std::size_t k = 0; k < u; ++k) solution.Q[i][j] += inverse[i][k] * inverse[j][k];
    }
    solution.v = Residuals(problem);
    return solution;
}

}  // namespace reference
