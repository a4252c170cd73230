// The range of a chart's value axis.
#include "analysis/chart.h"

#include <algorithm>
#include <cmath>

#include "core/numbers.h"

namespace corvinade::analysis {

double ChartLimit(double m) {
    double limit = m * 1.3;
    limit = Int(limit / 0.01) * 0.01;
    limit = Int(limit / 0.02) * 0.02 + 0.02;
    return (Int(limit * 10) + 1) / 10;
}

// A value that is no number makes the whole none: there is no range to show it in.
double LargestAbsolute(std::span<const ChartPoint> points) {
    double largest = 0;
    for (const ChartPoint& point : points) {
        if (std::isnan(point.Value)) return point.Value;
        largest = std::max(largest, std::abs(point.Value));
    }
    return largest;
}

}  // namespace corvinade::analysis
