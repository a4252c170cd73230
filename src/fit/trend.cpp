// Sums and trends of a series of numbers.
#include "fit/trend.h"

#include <cmath>
#include <numeric>

namespace corvinade::fit {

void ArrayTrend(const Column& a, double percent, bool& constant) {
    constant = true;
    if (UpperBound(a) < 3) return;
    const double first = a[2] - a[1];
    const double allowed = std::fabs(percent * first / 100);
    // Written so that a step that is no number breaks the pace.
    for (std::size_t i = 3; i < a.size(); ++i)
        constant = constant && std::fabs(a[i] - a[i - 1] - first) <= allowed;
}

void SummeArray(const Column& a, double& sum) {
    sum = a.empty() ? 0 : std::accumulate(a.begin() + 1, a.end(), 0.0);
}

}  // namespace corvinade::fit
