// The least largest residual of linear rows: the simplex method on the dual, whose columns are the rows.
#include <algorithm>
#include <cmath>

#include "fit/linear_optimum.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr int kMostExchanges = 1000;  // of one search; more go round in a circle

// A column of the dual: a row with a sign, or the bound of an unknown, which makes the first basis possible.
struct DualColumn {
    int Row;  // or -1 - k for unknown k
    double Sign;
};

struct Basis {
    const LinearRows& Rows;
    int n;  // unknowns + 1
    double Bound;
    std::vector<DualColumn> Columns;
    std::vector<double> Matrix;  // n by n, row by row; dual column j is column j

    Basis(const LinearRows& rows, double bound) : Rows(rows), n(rows.Columns + 1), Bound(bound) {}

    std::vector<double> Column(const DualColumn& column) const {
        std::vector<double> a(At(n));
        if (column.Row < 0) {
            a[At(-1 - column.Row)] = column.Sign;
            return a;
        }
        Rows.Row(column.Row, a.data());
        for (int k = 0; k + 1 < n; ++k) a[At(k)] *= column.Sign;
        a[At(n - 1)] = 1;
        return a;
    }
    void Build() {
        Matrix.assign(At(n * n), 0);
        for (int j = 0; j < n; ++j) {
            const std::vector<double> column = Column(Columns[At(j)]);
            for (int i = 0; i < n; ++i) Matrix[At(i * n + j)] = column[At(i)];
        }
    }
    // The point where all residuals of the basis have the height h; y in front, h behind.
    bool Corner(std::vector<double>& corner) const {
        corner.resize(At(n));
        for (int j = 0; j < n; ++j) {
            const DualColumn& column = Columns[At(j)];
            corner[At(j)] = column.Row < 0 ? -Bound : column.Sign * Rows.v[At(column.Row)];
        }
        if (!SolveTransposed(Matrix, n, corner.data())) return false;
        for (int k = 0; k + 1 < n; ++k) corner[At(k)] = -corner[At(k)];
        return true;
    }
};

int WorstRow(const LinearRows& rows, const std::vector<double>& way, double& largest) {
    int worst = -1;
    largest = -1;
    for (int i = 0; i < rows.Count(); ++i) {
        if (rows.InUse[At(i)] == 0) continue;
        const double size = std::fabs(rows.v[At(i)] + way[At(i)]);
        if (size > largest) {
            largest = size;
            worst = i;
        }
    }
    return worst;
}

// Small numbers that differ, so that no exchange leaves the dual where it was and none comes round again.
double Shake(int k) {
    return 1e-12 * (1 + std::fmod(0.6180339887498949 * (k + 1), 1.0));
}

// One search. False when it was ended or lost its way; y is then the best that it had seen.
bool Search(const LinearRows& rows, std::vector<double>& y, Basis& basis, std::vector<double>& weights,
            int& exchanges, const MayGoOn& mayGoOn) {
    const int m = rows.Columns, n = m + 1;
    y.assign(At(m), 0);
    double largest = 0, best = 0;
    std::vector<double> way(rows.v.size(), 0), corner, right(At(n)), a(At(n));
    const int first = WorstRow(rows, way, best);
    if (first < 0) return false;
    basis.Bound = 4 * std::sqrt(static_cast<double>(rows.Used)) * best + 1e-9;
    for (int k = 0; k < m; ++k) right[At(k)] = Shake(k);
    right[At(m)] = 1;
    const double sign = rows.v[At(first)] < 0 ? -1 : 1;
    rows.Row(first, a.data());
    for (int k = 0; k < m; ++k)
        basis.Columns.push_back({-1 - k, right[At(k)] - sign * a[At(k)] < 0 ? -1.0 : 1.0});
    basis.Columns.push_back({first, sign});
    // What rounding of the coordinates leaves of a residual.
    const double tolerance = 1e-13 * best + 1e-15;
    const int last = exchanges + kMostExchanges;
    for (;; ++exchanges) {
        basis.Build();
        weights = right;
        if (!basis.Corner(corner) || !SolveSquare(basis.Matrix, n, weights.data())) return false;
        rows.Times(corner.data(), way);
        const int worst = WorstRow(rows, way, largest);
        if (worst < 0) return false;
        if (largest <= best + tolerance) {
            best = largest;
            y.assign(corner.begin(), corner.end() - 1);
        }
        DualColumn enters{worst, rows.v[At(worst)] + way[At(worst)] < 0 ? -1.0 : 1.0};
        if (largest <= corner[At(m)] + tolerance + 1e-12 * corner[At(m)]) {
            // All rows are below the height; what is left are bounds that the corner may be beyond.
            int beyond = -1;
            for (int k = 0; k < m; ++k)
                if (std::fabs(corner[At(k)]) > basis.Bound * (1 + 1e-9) &&
                    (beyond < 0 || std::fabs(corner[At(k)]) > std::fabs(corner[At(beyond)])))
                    beyond = k;
            if (beyond < 0) return true;
            enters = {-1 - beyond, corner[At(beyond)] < 0 ? -1.0 : 1.0};
        }
        if (exchanges >= last || !mayGoOn()) return false;
        std::vector<double> direction = basis.Column(enters);
        if (!SolveSquare(basis.Matrix, n, direction.data())) return false;
        int leaves = -1;
        double shortest = 0;
        for (int j = 0; j < n; ++j) {
            if (direction[At(j)] <= 1e-11) continue;
            const double ratio = std::max(weights[At(j)], 0.0) / direction[At(j)];
            if (leaves < 0 || ratio < shortest) {
                leaves = j;
                shortest = ratio;
            }
        }
        if (leaves < 0) return false;
        basis.Columns[At(leaves)] = enters;
    }
}

// The directions that leave the rows that hold the largest residual as they are, orthonormal.
std::vector<std::vector<double>> FreeDirections(const LinearRows& rows, const Basis& basis,
                                                const std::vector<double>& weights) {
    const int m = rows.Columns;
    constexpr double kHolds = 1e-9;
    std::vector<std::vector<double>> all, free;
    const auto add = [&](std::vector<double> t, double least, std::vector<std::vector<double>>* to) {
        double size = 0;
        for (const double entry : t) size += entry * entry;
        const double whole = size;
        for (int pass = 0; pass < 2; ++pass)
            for (const std::vector<double>& before : all) {
                double share = 0;
                for (int i = 0; i < m; ++i) share += before[At(i)] * t[At(i)];
                for (int i = 0; i < m; ++i) t[At(i)] -= share * before[At(i)];
            }
        size = 0;
        for (const double entry : t) size += entry * entry;
        if (!(size > least * whole)) return;
        for (double& entry : t) entry /= std::sqrt(size);
        all.push_back(t);
        if (to != nullptr) to->push_back(std::move(t));
    };
    for (int j = 0; j <= m; ++j) {
        if (basis.Columns[At(j)].Row < 0 || weights[At(j)] <= kHolds) continue;
        std::vector<double> a(At(m));
        rows.Row(basis.Columns[At(j)].Row, a.data());
        add(std::move(a), 1e-18, nullptr);
    }
    // Of the unit vectors those with most left come first, or a small rest would be no direction.
    for (const double least : {0.3, 1e-2, 1e-6, 1e-12})
        for (int k = 0; k < m && static_cast<int>(all.size()) < m; ++k) {
            std::vector<double> unit(At(m));
            unit[At(k)] = 1;
            add(std::move(unit), least, &free);
        }
    return free;
}

// Rows that no free direction moves are what they are.
void DropHeldRows(const LinearRows& before, LinearRows& rows) {
    std::array<double, kMostLinearColumns> a{}, b{};
    rows.Used = 0;
    for (int i = 0; i < rows.Count(); ++i) {
        if (rows.InUse[At(i)] == 0) continue;
        before.Row(i, b.data());
        rows.Row(i, a.data());
        double size = 0, whole = 0;
        for (int k = 0; k < rows.Columns; ++k) size += a[At(k)] * a[At(k)];
        for (int k = 0; k < before.Columns; ++k) whole += b[At(k)] * b[At(k)];
        if (size <= 1e-18 * whole) {
            rows.InUse[At(i)] = 0;
        } else {
            ++rows.Used;
        }
    }
}

}  // namespace

int LeastLargest(LinearRows rows, std::vector<double>& y, Holding& holding, const MayGoOn& mayGoOn) {
    int exchanges = 0;
    const int u = rows.Columns;
    y.assign(At(u), 0);
    holding = {};
    // y = y + Z z, Z the free directions so far.
    std::vector<std::vector<double>> Z;
    for (int k = 0; k < u; ++k) {
        Z.emplace_back(At(u));
        Z.back()[At(k)] = 1;
    }
    while (!Z.empty() && rows.Used > 0) {
        Basis basis(rows, 0);
        std::vector<double> z, weights;
        const bool found = Search(rows, z, basis, weights, exchanges, mayGoOn);
        for (std::size_t k = 0; k < Z.size() && k < z.size(); ++k)
            for (int i = 0; i < u; ++i) y[At(i)] += z[k] * Z[k][At(i)];
        if (holding.Rows.empty())
            for (const DualColumn& column : basis.Columns) {
                holding.Rows.push_back(column.Row);
                holding.Sides.push_back(column.Sign);
            }
        if (!found) break;
        const std::vector<std::vector<double>> free = FreeDirections(rows, basis, weights);
        if (free.size() >= Z.size()) break;
        std::vector<std::vector<double>> left;
        for (const std::vector<double>& direction : free) {
            left.emplace_back(At(u));
            for (std::size_t k = 0; k < Z.size(); ++k)
                for (int i = 0; i < u; ++i) left.back()[At(i)] += direction[k] * Z[k][At(i)];
        }
        LinearRows next = rows;
        next.Move(z.data());
        next.TakeColumns(free);
        DropHeldRows(rows, next);
        rows = std::move(next);
        Z = std::move(left);
    }
    return exchanges;
}

double LowerBoundOfLargest(const LinearRows& rows, const Holding& holding) {
    const int m = rows.Columns, n = m + 1;
    if (m == 0) return LargestOf(rows);
    if (static_cast<int>(holding.Rows.size()) != n) return 0;
    // Weights of the holding rows that cancel out in each unknown.
    Basis basis(rows, 0);
    for (std::size_t j = 0; j < holding.Rows.size(); ++j) {
        const int row = holding.Rows[j];
        const double asItLies = row >= 0 && rows.v[At(row)] < 0 ? -1 : 1;
        basis.Columns.push_back({row, holding.Sides.empty() ? asItLies : holding.Sides[j]});
    }
    basis.Build();
    std::vector<double> weights(At(n));
    weights[At(m)] = 1;
    if (!SolveSquare(basis.Matrix, n, weights.data())) return 0;
    double dual = 0, sum = 0, slack = 0;
    std::vector<double> left(At(m)), a(At(n));
    for (int j = 0; j < n; ++j) {
        const DualColumn& column = basis.Columns[At(j)];
        if (column.Row < 0) continue;
        const double weight = column.Sign * weights[At(j)];
        rows.Row(column.Row, a.data());
        for (int k = 0; k < m; ++k) left[At(k)] += weight * a[At(k)];
        dual += weight * rows.v[At(column.Row)];
        sum += std::fabs(weight);
    }
    if (!(sum > 0)) return 0;
    // A y that is no worse than 0 moves no row by more than twice the largest residual.
    for (const double entry : left) slack += entry * entry;
    slack = std::sqrt(slack) * 2.1 * std::sqrt(static_cast<double>(rows.Used)) * LargestOf(rows);
    return std::max(0.0, (std::fabs(dual) - slack) / sum);
}

}  // namespace corvinade::fit
