// The optimum of L1 and L-infinity along a smooth way.
#include "fit/smooth_norms.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

namespace corvinade::fit {

namespace {

std::size_t At(int i) {
    return static_cast<std::size_t>(i);
}

constexpr int kMostSteps = 200;  // of Newton's method
constexpr int kMostHalvings = 30;
constexpr double kNothing = 1e-11;  // of the objective: what the barrier may be at the end

// Solves S x = b for a symmetric S by Cholesky's method; what S lacks to be positive definite is added to its
// diagonal.
std::vector<double> SolvePositive(const std::vector<double>& S, const std::vector<double>& b) {
    const std::size_t n = b.size();
    double largest = 0;
    for (std::size_t i = 0; i < n; ++i) largest = std::max(largest, std::fabs(S[i * n + i]));
    for (double lift = 0;; lift = std::max(10 * lift, 1e-12 * largest)) {
        std::vector<double> L(n * n), x = b;
        bool positive = true;
        for (std::size_t i = 0; i < n && positive; ++i)
            for (std::size_t j = 0; j <= i && positive; ++j) {
                double sum = S[i * n + j];
                if (i == j) sum += lift;
                for (std::size_t k = 0; k < j; ++k) sum -= L[i * n + k] * L[j * n + k];
                if (i == j) {
                    positive = sum > 1e-14 * largest;
                    L[i * n + i] = positive ? std::sqrt(sum) : 1;
                } else {
                    L[i * n + j] = sum / L[j * n + j];
                }
            }
        if (!positive && lift < 1e6 * largest && std::isfinite(largest) && largest > 0) continue;
        for (std::size_t i = 0; i < n; ++i) {
            for (std::size_t k = 0; k < i; ++k) x[i] -= L[i * n + k] * x[k];
            x[i] /= L[i * n + i];
        }
        for (std::size_t i = n; i-- > 0;) {
            for (std::size_t k = i + 1; k < n; ++k) x[i] -= L[k * n + i] * x[k];
            x[i] /= L[i * n + i];
        }
        return x;
    }
}

double Dot(const std::vector<double>& a, const std::vector<double>& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
}

// A'D A and A'q over the rows in use, `q` left out where it is empty.
void AddProducts(const LinearRows& rows, const std::vector<double>& d, const std::vector<double>& q,
                 std::vector<double>& S, std::vector<double>& Aq) {
    const std::size_t m = At(rows.Columns);
    std::vector<double> a(m);
    Aq.assign(m, 0);
    for (int i = 0; i < rows.Count(); ++i) {
        if (rows.InUse[At(i)] == 0) continue;
        rows.Row(i, a.data());
        for (std::size_t k = 0; k < m; ++k) {
            if (!q.empty()) Aq[k] += q[At(i)] * a[k];
            const double share = d[At(i)] * a[k];
            for (std::size_t j = 0; j <= k; ++j) S[k * m + j] += share * a[j];
        }
    }
    for (std::size_t k = 0; k < m; ++k)
        for (std::size_t j = 0; j < k; ++j) S[j * m + k] = S[k * m + j];
}

template <class Visit>
void EachRow(const LinearRows& rows, Visit visit) {
    for (int i = 0; i < rows.Count(); ++i)
        if (rows.InUse[At(i)] != 0) visit(At(i));
}

// Goes by y, or by the longest of its halves, quarters ... that makes the value smaller as its slope
// promises. Returns how far the value was to fall by the whole of it; 0, and nothing has moved, where no
// share does.
//   value  at the place, once a share has been gone
//   take   what goes along with the share that is gone
double GoAlong(ExactPlace& place, const std::vector<double>& y, double before, double slope,
               const MayGoOn& mayGoOn, const std::function<double(double)>& value,
               const std::function<void(double)>& take) {
    const Parameters parameters = place.Run.Now;
    double share = 1;
    for (int halvings = 0; halvings < kMostHalvings && mayGoOn(); ++halvings, share /= 2) {
        std::vector<double> part = y;
        for (double& entry : part) entry *= share;
        place.Step(part);
        if (value(share) <= before + 1e-4 * share * slope + 1e-14 * std::fabs(before)) {
            take(share);
            return -slope;
        }
        place.Run.Now = parameters;
        place.Linearise();
    }
    return 0;
}

// The sum of t(v) = h + sqrt(h^2 + v^2) with its barrier, h its height: the smooth form of the sum of |v|.
struct SmoothSum {
    ExactPlace& Place;
    double h;
    std::vector<double> Weights;  // multipliers

    double Value() const {
        double sum = 0;
        EachRow(Place.Rows, [&](std::size_t i) {
            const double v = Place.Rows.v[i], t = h + std::hypot(h, v);
            // t - h log(t^2 - v^2), t^2 - v^2 = 2 h t
            sum += t - h * std::log(2 * t / h);
        });
        return sum;
    }
    // One step. Returns how far the value was to fall by it, 0 where no step makes it smaller.
    double Step(const MayGoOn& mayGoOn) {
        const LinearRows& rows = Place.Rows;
        std::vector<double> d(rows.v.size()), w(rows.v.size());
        EachRow(rows, [&](std::size_t i) {
            const double v = rows.v[i], root = std::hypot(h, v), t = h + root;
            w[i] = v / t;
            d[i] = std::max(1 - Weights[i] * v / root, 1e-14) / t;
        });
        std::vector<double> S = Place.Curvature(Weights), none, g = WeightedSum(rows, w);
        AddProducts(rows, d, {}, S, none);
        std::vector<double> y = SolvePositive(S, g);
        for (double& entry : y) entry = -entry;
        std::vector<double> way;
        rows.Times(y.data(), way);
        std::vector<double> next = Weights;
        EachRow(rows, [&](std::size_t i) {
            const double v = rows.v[i];
            const double wanted = w[i] + d[i] * way[i], most = 1 - 0.01 * (1 - std::fabs(Weights[i]));
            next[i] = std::clamp(wanted, -most, most);
            if (!(std::fabs(v) > 0) && !std::isfinite(next[i])) next[i] = 0;
        });
        return GoAlong(
            Place, y, Value(), Dot(g, y), mayGoOn, [this](double) { return Value(); },
            [&](double share) {
                for (std::size_t i = 0; i < next.size(); ++i) Weights[i] += share * (next[i] - Weights[i]);
            });
    }
};

// s - h sum log(s^2 - v^2), s a height above all |v|: the smooth form of the largest.
struct SmoothLargest {
    ExactPlace& Place;
    double h, s;
    std::vector<double> Up, Down;  // multipliers of v <= s and of -v <= s

    double Value(double height) const {
        double sum = height;
        bool below = true;
        EachRow(Place.Rows, [&](std::size_t i) {
            const double v = Place.Rows.v[i];
            below = below && std::fabs(v) < height;
            if (below) sum -= h * (std::log(height - v) + std::log(height + v));
        });
        return below ? sum : std::numeric_limits<double>::infinity();
    }
    std::vector<double> Weights() const {
        std::vector<double> weights(Up.size());
        for (std::size_t i = 0; i < Up.size(); ++i) weights[i] = Up[i] - Down[i];
        return weights;
    }
    double Step(const MayGoOn& mayGoOn) {
        const LinearRows& rows = Place.Rows;
        const std::size_t m = Place.T.size(), n = m + 1;
        std::vector<double> p(rows.v.size()), q(rows.v.size()), w(rows.v.size());
        double c = 0, whole = 0;
        EachRow(rows, [&](std::size_t i) {
            const double v = rows.v[i], up = s - v, down = s + v;
            p[i] = Up[i] / up + Down[i] / down;
            q[i] = Up[i] / up - Down[i] / down;
            w[i] = h / up - h / down;
            c += h / up + h / down;
            whole += p[i];
        });
        std::vector<double> S = Place.Curvature(Weights()), Aq;
        AddProducts(rows, p, q, S, Aq);
        std::vector<double> full(n * n), g = WeightedSum(rows, w);
        for (std::size_t i = 0; i < m; ++i) {
            for (std::size_t j = 0; j < m; ++j) full[i * n + j] = S[i * m + j];
            full[i * n + m] = full[m * n + i] = -Aq[i];
        }
        full[m * n + m] = whole;
        g.push_back(1 - c);
        std::vector<double> y = SolvePositive(full, g);
        for (double& entry : y) entry = -entry;
        const double slope = Dot(g, y), ds = y.back();
        y.pop_back();
        std::vector<double> way;
        rows.Times(y.data(), way);
        std::vector<double> up = Up, down = Down;
        EachRow(rows, [&](std::size_t i) {
            const double v = rows.v[i];
            up[i] = std::max((h - Up[i] * (ds - way[i])) / (s - v), 0.01 * Up[i]);
            down[i] = std::max((h - Down[i] * (ds + way[i])) / (s + v), 0.01 * Down[i]);
        });
        return GoAlong(
            Place, y, Value(s), slope, mayGoOn, [&](double share) { return Value(s + share * ds); },
            [&](double share) {
                s += share * ds;
                for (std::size_t i = 0; i < up.size(); ++i) {
                    Up[i] += share * (up[i] - Up[i]);
                    Down[i] += share * (down[i] - Down[i]);
                }
            });
    }
};

// Follows the barrier down. `size` is the objective, `rows` how often the height counts in it. Each height is
// left near its minimum, where a step to the next one is short beside the slack of the rows that hold it:
// longer ones would be halved again and again, since the residuals curve.
template <class Smooth>
SmoothOptimum Follow(Smooth& smooth, double size, double rows, const MayGoOn& mayGoOn) {
    constexpr double kLower = 0.15, kNearMinimum = 0.05;
    constexpr int kLast = 4;  // steps at the least height: the multipliers come to rest behind the place
    // So many steps, each of so little of the objective, are a valley as good as level: the bound tells how
    // much could be left.
    constexpr int kCreeping = 30;
    constexpr double kLevel = 1e-9;
    SmoothOptimum found;
    int last = 0, creeping = 0;
    const double least = kNothing * size / rows;
    while (found.Steps < kMostSteps && mayGoOn()) {
        const double fall = smooth.Step(mayGoOn);
        ++found.Steps;
        creeping = fall < kLevel * size ? creeping + 1 : 0;
        if (creeping == kCreeping) {
            found.Ended = true;
            break;
        }
        if (fall > kNearMinimum * smooth.h) continue;
        found.Ended = smooth.h <= least;
        if (found.Ended && ++last == kLast) break;
        smooth.h = std::max(kLower * smooth.h, least);
    }
    return found;
}

// What the weights leave over in the unknowns moves the objective by no more than this.
double LeftOver(const LinearRows& rows, const std::vector<double>& weights, double longest) {
    double square = 0;
    for (const double entry : WeightedSum(rows, weights)) square += entry * entry;
    return std::sqrt(square) * longest;
}

double Dual(const LinearRows& rows, const std::vector<double>& weights) {
    double dual = 0;
    EachRow(rows, [&](std::size_t i) { dual += weights[i] * rows.v[i]; });
    return dual;
}

}  // namespace

SmoothOptimum FollowLeastSum(ExactPlace& place, const MayGoOn& mayGoOn) {
    place.Linearise();
    const double size = SumOf(place.Rows), rows = place.Rows.Used;
    if (!(size > 0) || place.T.empty()) return {};
    SmoothSum smooth{place, size / rows, std::vector<double>(place.Rows.v.size())};
    EachRow(place.Rows, [&](std::size_t i) {
        smooth.Weights[i] = place.Rows.v[i] / (smooth.h + std::hypot(smooth.h, place.Rows.v[i]));
    });
    SmoothOptimum found = Follow(smooth, size, rows, mayGoOn);
    found.Weights = std::move(smooth.Weights);
    return found;
}

SmoothOptimum FollowLeastLargest(ExactPlace& place, const MayGoOn& mayGoOn) {
    place.Linearise();
    const double size = LargestOf(place.Rows), rows = 2.0 * place.Rows.Used;
    if (!(size > 0) || place.T.empty()) return {};
    const std::size_t count = place.Rows.v.size();
    SmoothLargest smooth{place, size / rows, 1.5 * size, std::vector<double>(count),
                         std::vector<double>(count)};
    EachRow(place.Rows, [&](std::size_t i) {
        smooth.Up[i] = smooth.h / (smooth.s - place.Rows.v[i]);
        smooth.Down[i] = smooth.h / (smooth.s + place.Rows.v[i]);
    });
    SmoothOptimum found = Follow(smooth, size, rows, mayGoOn);
    found.Weights = smooth.Weights();
    return found;
}

double BoundOfSum(const LinearRows& rows, const std::vector<double>& weights) {
    if (weights.size() != rows.v.size()) return 0;
    double largest = 1;
    EachRow(rows, [&](std::size_t i) { largest = std::max(largest, std::fabs(weights[i])); });
    return std::max(0.0, (Dual(rows, weights) - LeftOver(rows, weights, 2.1 * SumOf(rows))) / largest);
}

double BoundOfLargest(const LinearRows& rows, const std::vector<double>& weights) {
    if (weights.size() != rows.v.size()) return 0;
    double sum = 0;
    EachRow(rows, [&](std::size_t i) { sum += std::fabs(weights[i]); });
    if (!(sum > 0)) return 0;
    const double longest = 2.1 * std::sqrt(static_cast<double>(rows.Used)) * LargestOf(rows);
    return std::max(0.0, (std::fabs(Dual(rows, weights)) - LeftOver(rows, weights, longest)) / sum);
}

}  // namespace corvinade::fit
