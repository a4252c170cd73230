// Quality of a finished fit.
#include "fit/statistics.h"

#include <algorithm>
#include <cmath>

#include "fit/require.h"

namespace corvinade::fit {

namespace {

constexpr double kTiny = 1e-9;

}  // namespace

double SigmaOfAxis(double squares, double weights) {
    return std::sqrt(squares / std::fabs(weights - 1 + kTiny));
}

void Statistics(const Column& v, const Column& P, int n, double& s0, double& sx, double& sy, double& sz) {
    Require(n % 3 == 0 && UpperBound(v) >= n && UpperBound(P) >= n);
    double vPv = 0, W = 0;
    double squares[3] = {}, weights[3] = {};
    for (std::size_t i = 1; i <= static_cast<std::size_t>(n); i += 3)
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const double residual = v[i + axis], weight = P[i + axis];
            W += weight;
            weights[axis] += weight;
            // What takes no part does not count, however large it is.
            if (weight == 0) continue;
            vPv += residual * weight * residual;
            squares[axis] += residual * residual * weight;
        }
    s0 = W - 1 + kTiny > 0 ? std::sqrt(vPv / (W - 1 + kTiny)) : 0;
    double* const axes[3] = {&sx, &sy, &sz};
    for (std::size_t axis = 0; axis < 3; ++axis) *axes[axis] = SigmaOfAxis(squares[axis], weights[axis]);
}

double MiddleOf(std::vector<double> values) {
    if (values.empty()) return 0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

double MiddleDeviation(std::vector<double> deviations, int unknowns) {
    constexpr std::size_t kCoordinates = 3;
    const std::size_t exact = static_cast<std::size_t>(std::max(0, unknowns)) / kCoordinates;
    if (deviations.size() / 2 >= exact || deviations.size() <= exact) return MiddleOf(std::move(deviations));
    std::sort(deviations.begin(), deviations.end());
    deviations.erase(deviations.begin(), deviations.begin() + static_cast<std::ptrdiff_t>(exact));
    return MiddleOf(std::move(deviations));
}

}  // namespace corvinade::fit
