// The least sum of absolute residuals of linear rows: from corner to corner, where as many rows as unknowns
// fit exactly, each time down the steepest edge to where the sum along it is least.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "fit/linear_optimum.h"

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr int kMostExchanges = 20000;

std::vector<double> RowsOf(const LinearRows& rows, const std::vector<int>& holding) {
    const int m = rows.Columns;
    std::vector<double> A(At(m * m));
    for (int j = 0; j < m; ++j) rows.Row(holding[At(j)], &A[At(j * m)]);
    return A;
}

// Of rows that nearly fit, as many as tell the unknowns apart.
std::vector<int> FirstCorner(const LinearRows& rows) {
    const int m = rows.Columns;
    std::vector<int> order;
    for (int i = 0; i < rows.Count(); ++i)
        if (rows.InUse[At(i)] != 0) order.push_back(i);
    std::sort(order.begin(), order.end(), [&rows](int a, int b) {
        const double sizeA = std::fabs(rows.v[At(a)]), sizeB = std::fabs(rows.v[At(b)]);
        return sizeA != sizeB ? sizeA < sizeB : a < b;
    });
    std::vector<int> taken;
    std::vector<std::vector<double>> base;
    std::vector<unsigned char> isTaken(rows.v.size());
    for (const double least : {1e-2, 1e-6, 1e-12})
        for (const int row : order) {
            if (static_cast<int>(taken.size()) == m) return taken;
            if (isTaken[At(row)] != 0) continue;
            std::vector<double> a(At(m));
            rows.Row(row, a.data());
            const double whole = std::inner_product(a.begin(), a.end(), a.begin(), 0.0);
            for (int pass = 0; pass < 2; ++pass)
                for (const std::vector<double>& before : base) {
                    const double share = std::inner_product(a.begin(), a.end(), before.begin(), 0.0);
                    for (int k = 0; k < m; ++k) a[At(k)] -= share * before[At(k)];
                }
            const double left = std::inner_product(a.begin(), a.end(), a.begin(), 0.0);
            if (!(left > least * whole) || left <= 0) continue;
            for (double& entry : a) entry /= std::sqrt(left);
            base.push_back(std::move(a));
            taken.push_back(row);
            isTaken[At(row)] = 1;
        }
    return taken;
}

struct BreakPoint {
    double Length, Slope;
    int Row;
};

// The row at which the sum along an edge is least. The sum falls by `slope` at first.
//   Returns the place in `points`, or -1 when it falls for ever.
int LeastAlong(std::vector<BreakPoint>& points, double slope) {
    const auto earlier = [](const BreakPoint& a, const BreakPoint& b) {
        return a.Length != b.Length ? a.Length < b.Length : a.Row < b.Row;
    };
    std::size_t sorted = 0;
    for (std::size_t next = 64; sorted < points.size(); next *= 4) {
        const std::size_t end = std::min(points.size(), sorted + next);
        const auto from = points.begin() + static_cast<std::ptrdiff_t>(sorted);
        const auto to = points.begin() + static_cast<std::ptrdiff_t>(end);
        if (end < points.size()) std::nth_element(from, to, points.end(), earlier);
        std::sort(from, to, earlier);
        for (; sorted < end; ++sorted) {
            slope += 2 * points[sorted].Slope;
            if (slope >= 0) return static_cast<int>(sorted);
        }
    }
    return -1;
}

// The part of the dual that belongs to the holding rows; the others have the signs of their residuals.
bool HoldingWeights(LinearRows& rows, const std::vector<int>& holding, const std::vector<double>& A,
                    std::vector<double>& weights) {
    for (const int row : holding) rows.InUse[At(row)] = 0;
    weights.resize(At(rows.Columns));
    rows.SumOfSigns(weights.data());
    for (const int row : holding) rows.InUse[At(row)] = 1;
    for (double& entry : weights) entry = -entry;
    return SolveTransposed(A, rows.Columns, weights.data());
}

// Rows that fit alike would let exchanges go round in a circle.
void Shake(LinearRows& rows) {
    const double size = 1e-14 * LargestOf(rows);
    for (int i = 0; i < rows.Count(); ++i)
        rows.v[At(i)] += size * (std::fmod(0.6180339887498949 * (i + 1), 1.0) - 0.5);
}

}  // namespace

int LeastSum(LinearRows rows, std::vector<double>& y, Holding& holding, const MayGoOn& mayGoOn) {
    const int m = rows.Columns;
    y.assign(At(m), 0);
    if (m == 0) return 0;
    Shake(rows);
    std::vector<double> weights, way, step(At(m));
    std::vector<BreakPoint> points;
    const std::vector<double> begin = rows.v;
    std::vector<int>& corner = holding.Rows;
    const auto toCorner = [&] {
        rows.v = begin;
        for (int j = 0; j < m; ++j) y[At(j)] = -rows.v[At(corner[At(j)])];
        if (!SolveSquare(RowsOf(rows, corner), m, y.data())) return false;
        rows.Move(y.data());
        return true;
    };
    const auto use = [&](const std::vector<int>& from) {
        corner = from;
        return static_cast<int>(corner.size()) == m && toCorner();
    };
    if (!use(corner) && !use(FirstCorner(rows))) {
        y.assign(At(m), 0);
        holding = {};
        return 0;
    }
    int exchanges = 0;
    for (; exchanges < kMostExchanges && mayGoOn(); ++exchanges) {
        const std::vector<double> A = RowsOf(rows, corner);
        if (!HoldingWeights(rows, corner, A, weights)) break;
        int leaves = 0;
        for (int j = 1; j < m; ++j)
            if (std::fabs(weights[At(j)]) > std::fabs(weights[At(leaves)])) leaves = j;
        const double weight = weights[At(leaves)];
        if (std::fabs(weight) <= 1 + 1e-9) break;
        std::fill(step.begin(), step.end(), 0);
        step[At(leaves)] = weight < 0 ? -1 : 1;
        if (!SolveSquare(A, m, step.data())) break;
        rows.Times(step.data(), way);
        for (const int row : corner) rows.InUse[At(row)] = 0;
        points.clear();
        for (int i = 0; i < rows.Count(); ++i) {
            if (rows.InUse[At(i)] == 0 || std::fabs(way[At(i)]) < 1e-12) continue;
            const double length = -rows.v[At(i)] / way[At(i)];
            if (length >= 0) points.push_back({length, std::fabs(way[At(i)]), i});
        }
        for (const int row : corner) rows.InUse[At(row)] = 1;
        const int place = LeastAlong(points, 1 - std::fabs(weight));
        if (place < 0) break;
        const BreakPoint& enters = points[At(place)];
        // What lies before the new corner has changed sides; the rounding of a step must not say otherwise.
        for (std::size_t i = 0; i < rows.v.size(); ++i) rows.v[i] += enters.Length * way[i];
        for (int k = 0; k < place; ++k) {
            double& passed = rows.v[At(points[At(k)].Row)];
            passed = std::copysign(passed, way[At(points[At(k)].Row)]);
        }
        for (const int row : corner) rows.v[At(row)] = 0;
        rows.v[At(corner[At(leaves)])] = weight < 0 ? -enters.Length : enters.Length;
        corner[At(leaves)] = enters.Row;
        rows.v[At(enters.Row)] = 0;
    }
    holding.Sides.resize(rows.v.size());
    for (std::size_t i = 0; i < rows.v.size(); ++i) holding.Sides[i] = rows.v[i] < 0 ? -1 : 1;
    if (!toCorner()) y.assign(At(m), 0);
    return exchanges;
}

double LowerBoundOfSum(const LinearRows& rows, const Holding& holding) {
    const int m = rows.Columns;
    if (static_cast<int>(holding.Rows.size()) != m) return 0;
    LinearRows sides = rows;
    if (!holding.Sides.empty()) sides.v = holding.Sides;
    std::vector<double> weights;
    const std::vector<double> A = RowsOf(rows, holding.Rows);
    if (!HoldingWeights(sides, holding.Rows, A, weights)) return 0;
    // All rows weigh at most 1 after division by the largest, and cancel out in each unknown.
    double dual = 0, largest = 1, slack = 0;
    std::vector<double> left(At(m)), a(At(m));
    for (const int row : holding.Rows) sides.InUse[At(row)] = 0;
    sides.SumOfSigns(left.data());
    for (int i = 0; i < rows.Count(); ++i)
        if (sides.InUse[At(i)] != 0) dual += sides.v[At(i)] < 0 ? -rows.v[At(i)] : rows.v[At(i)];
    for (int j = 0; j < m; ++j) {
        const int row = holding.Rows[At(j)];
        rows.Row(row, a.data());
        for (int k = 0; k < m; ++k) left[At(k)] += weights[At(j)] * a[At(k)];
        dual += weights[At(j)] * rows.v[At(row)];
        largest = std::max(largest, std::fabs(weights[At(j)]));
    }
    // A y that is no worse than 0 moves the rows by no more than twice the sum of all residuals.
    for (const double entry : left) slack += entry * entry;
    slack = std::sqrt(slack) * 2.1 * SumOf(rows);
    return std::max(0.0, (dual - slack) / largest);
}

}  // namespace corvinade::fit
