// The values of a chart: points over their numbers, and the range of its value axis.
#pragma once

#include <span>

#include "core/rooms.h"

namespace corvinade::analysis {

struct ChartPoint {
    double Index = 0, Value = 0;
    bool operator==(const ChartPoint&) const = default;
};

// The value axis runs from -L to L.
//
//   m       largest absolute value of the points
//   result  1.3 m, cut to hundredths, on to the next fiftieth, then on to the next tenth; 0.1 for m = 0; not
//           finite where m is beyond what these steps can hold
double ChartLimit(double m);

double LargestAbsolute(std::span<const ChartPoint> points);  // 0 without any

}  // namespace corvinade::analysis
