// The rigid transformation between paired points in closed form, for comparison with what the program
// iterates to. Source: B. K. P. Horn, "Closed-form solution of absolute orientation using unit
// quaternions", J. Opt. Soc. Am. A 4 (1987) 629-642.
#pragma once

#include <array>
#include <vector>

namespace closed_form {

using Point = std::array<double, 3>;

struct Rigid {
    std::array<Point, 3> R;  // X = t + s R x
    Point t;
    double s;
    std::vector<Point> residuals;  // transformed minus target
    double squares;                // sum of their squares
};

// withScale: the similarity that minimises the sum of squares in the target system.
Rigid Fit(const std::vector<Point>& start, const std::vector<Point>& target, bool withScale);

}  // namespace closed_form
